// The data stream module: buffers, queues, acquisition and counters.
#include "device_module.h"
#include "library.h"
#include "stream_module.h"

using namespace ry::gentl;

namespace {

template <typename Body>
GC_ERROR WithStream(DS_HANDLE stream, Body&& body) {
    return WithModule<StreamModule>(
        stream,
        [&](const std::shared_ptr<StreamModule>& module) -> GC_ERROR { return body(*module); });
}

}  // namespace

extern "C" {

RYGENTL_API GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* buffer, size_t size,
                                      void* userPointer, BUFFER_HANDLE* bufferHandle) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        return s.Announce(buffer, size, userPointer, bufferHandle);
    });
}

RYGENTL_API GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE bufferHandle, void** buffer,
                                    void** userPointer) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        return s.Revoke(bufferHandle, buffer, userPointer);
    });
}

RYGENTL_API GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE bufferHandle) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR { return s.Queue(bufferHandle); });
}

RYGENTL_API GC_ERROR DSFlushQueue(DS_HANDLE stream, ACQ_QUEUE_TYPE operation) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR { return s.Flush(operation); });
}

RYGENTL_API GC_ERROR DSStartAcquisition(DS_HANDLE stream, ACQ_START_FLAGS flags, uint64_t) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        // The frame count is not a limit here: the stream runs until it is stopped.
        if (flags != ACQ_START_FLAGS_DEFAULT)
            return GC_ERR_INVALID_PARAMETER;
        return s.StartAcquisition();
    });
}

RYGENTL_API GC_ERROR DSStopAcquisition(DS_HANDLE stream, ACQ_STOP_FLAGS flags) {
    return WithStream(stream,
                      [&](StreamModule& s) -> GC_ERROR { return s.StopAcquisition(flags); });
}

RYGENTL_API GC_ERROR DSStartBufferGrabbing(DS_HANDLE stream) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR { return s.SetGrabbing(true); });
}

RYGENTL_API GC_ERROR DSStopBufferGrabbing(DS_HANDLE stream) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR { return s.SetGrabbing(false); });
}

RYGENTL_API GC_ERROR DSSetForceQueueBuffer(DS_HANDLE stream, bool8_t force) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        s.SetForceQueue(force != 0);
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR DSSetClearBuffer(DS_HANDLE stream, bool8_t clear) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        s.SetClearBuffer(clear != 0);
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR DSRecoverQueuedBuffer(DS_HANDLE stream) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR { return s.RecoverQueued(); });
}

RYGENTL_API GC_ERROR DSGetInfo(DS_HANDLE stream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type,
                               void* buffer, size_t* size) {
    return WithStream(
        stream, [&](StreamModule& s) -> GC_ERROR { return s.GetInfo(cmd, type, buffer, size); });
}

RYGENTL_API GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE bufferHandle,
                                     BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                                     size_t* size) {
    return WithStream(stream, [&](StreamModule& s) -> GC_ERROR {
        return s.GetBufferInfo(bufferHandle, cmd, type, buffer, size);
    });
}

RYGENTL_API GC_ERROR DSClose(DS_HANDLE stream) {
    return Guarded([&]() -> GC_ERROR {
        const auto module = TheLibrary().handles.Remove<StreamModule>(stream);
        if (!module)
            return GC_ERR_INVALID_HANDLE;
        module->Close();
        return GC_ERR_SUCCESS;
    });
}

}  // extern "C"

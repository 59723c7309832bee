// The camera's buffer pool: blocks it allocates, announces to its stream, queues, and
// revokes and frees again; and the rebuild when the image format changes.
#include <new>

#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::TL;
using core::kLogDebug;
using core::kLogErr;

namespace {

// width x height is an unsigned 32-bit product; the rest is done in double precision and
// truncated, and the block size is its low 32 bits.
uint32_t BufferSize(uint32_t width, uint32_t height, uint32_t bitsPerPixel) {
    const uint32_t pixels = width * height;
    const double bytes = static_cast<double>(pixels) * bitsPerPixel * 0.125;
    return static_cast<uint32_t>(static_cast<uint64_t>(bytes));
}

// Revokes every handle, front to back; the first refusal ends the revoking.
RESULT RevokeAll(std::list<void*>& handles, void* stream) {
    for (void* handle : handles) {
        void* data = nullptr;
        void* user = nullptr;
        if (TL().DSRevokeBuffer(stream, handle, &data, &user) != GC_ERR_SUCCESS)
            return RESULT_ERROR;
    }
    handles.clear();
    return RESULT_SUCCESS;
}

}  // namespace

RESULT RyCamera::CreateBuffer(unsigned int width, unsigned int height, unsigned int bitsPerPixel,
                              unsigned int count, std::list<void*>& handles, void* const stream,
                              void*** bufferArrayOut) {
    RY_CAMERA_SITE(CreateBuffer);
    if (width == 0 || height == 0 || count == 0)
        return RESULT_ERROR_INVALID_PARAMETER;
    const uint32_t size = BufferSize(width, height, bitsPerPixel);
    acquisition::BufferTable& table = m_Shared->buffers;
    const auto announcedBefore = handles.size();
    try {
        table.Reset(count);
        for (uint32_t i = 0; i < count; ++i) {
            if (!table.Fill(i, size)) {
                // Nothing of this pool stays: what was announced is revoked before its
                // memory goes.
                while (handles.size() > announcedBefore) {
                    void* data = nullptr;
                    void* user = nullptr;
                    TL().DSRevokeBuffer(stream, handles.back(), &data, &user);
                    handles.pop_back();
                }
                table.Clear();
                return RESULT_ERROR;
            }
            void* handle = nullptr;
            const GC_ERROR rc =
                TL().DSAnnounceBuffer(stream, table.Array()[i], size, nullptr, &handle);
            if (rc != GC_ERR_SUCCESS)
                return core::ResultFromTransportCode(rc);
            handles.push_back(handle);
        }
        if (bufferArrayOut != nullptr)
            *bufferArrayOut = table.Array();
        if (m_Shared->independentCallback != 0)
            m_Shared->copyBuffer = acquisition::MakeCopyBuffer(size);
        return RESULT_SUCCESS;
    } catch (const std::bad_alloc& error) {
        RY_LOG_EVENT(kSite, kLogErr, L"CreateBuffer - bad_alloc caught : %ls\n",
                     core::Widen(error.what()).c_str());
        if (bufferArrayOut != nullptr)
            *bufferArrayOut = nullptr;
        // Blocks still announced to a stream that refused to revoke them stay with the
        // table until the pool is deleted, so the stream never writes into freed memory.
        const RESULT revoked = stream != nullptr ? RevokeAll(handles, stream) : RESULT_SUCCESS;
        if (revoked != RESULT_SUCCESS)
            return revoked;
        handles.clear();
        table.Clear();
        return RESULT_ERROR_MEMORY_ALLOCATION;
    } catch (const std::exception& error) {
        RY_LOG_EVENT(kSite, kLogErr, L"CreateBuffer - exception caught : %ls\n",
                     core::Widen(error.what()).c_str());
        return RESULT_ERROR;
    } catch (...) {
        return RESULT_ERROR_EXCEPTION;
    }
}

RESULT RyCamera::RearrangeQueue(std::list<void*>& handles, void* const stream) {
    RY_CAMERA_SITE(RearrangeQueue);
    if (stream == nullptr)
        return RESULT_ERROR;
    return RY_GUARDED(kSite, [&] {
        for (void* handle : handles) {
            const GC_ERROR rc = TL().DSQueueBuffer(stream, handle);
            if (rc != GC_ERR_SUCCESS)
                return core::ResultFromTransportCode(rc);
        }
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::StartAcquisition(void* const stream) {
    if (stream == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    return core::ResultFromTransportCode(
        TL().DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1));
}

RESULT RyCamera::StopAcquisition(void* const stream) {
    if (stream == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    return core::ResultFromTransportCode(TL().DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
}

RESULT RyCamera::SetRegisterEvent(void* const stream, void** eventOut, void* arg) {
    RY_CAMERA_SITE(SetRegisterEvent);
    if (stream == nullptr || eventOut == nullptr)
        return RESULT_ERROR;
    return RY_GUARDED(kSite, [&] {
        // The handle lands in a local copy of the third argument: the caller's slot is only
        // checked, never filled.
        void* local = arg;
        return core::ResultFromTransportCode(TL().GCRegisterEvent(
            stream, EVENT_NEW_BUFFER, reinterpret_cast<EVENT_HANDLE*>(&local)));
    });
}

RESULT RyCamera::DeleteBuffer() {
    RY_CAMERA_SITE(DeleteBuffer);
    camera::CameraShared& shared = *m_Shared;
    shared.copyBuffer = {};
    if (shared.newBufferEventRegistered && shared.newBufferEvent != nullptr) {
        TL().EventFlush(shared.newBufferEvent);
        const GC_ERROR rc = TL().GCUnregisterEvent(shared.newBufferEvent, EVENT_NEW_BUFFER);
        if (rc != GC_ERR_SUCCESS)
            return core::ResultFromTransportCode(rc);
        shared.newBufferEvent = nullptr;
        shared.newBufferEventRegistered = false;
    }
    RESULT result = RESULT_SUCCESS;
    if (shared.stream != nullptr) {
        for (void* handle : m_BufferHandleList) {
            void* data = nullptr;
            void* user = nullptr;
            const GC_ERROR rc = TL().DSRevokeBuffer(shared.stream, handle, &data, &user);
            if (rc != GC_ERR_SUCCESS)
                result = core::ResultFromTransportCode(rc);
        }
    }
    // Handles mean nothing without their stream, which revokes them when it closes.
    m_BufferHandleList.clear();
    acquisition::BufferTable& table = shared.buffers;
    for (uint32_t i = 0; i < table.Count(); ++i) {
        RY_LOG_EVENT(kSite, kLogDebug, L"DeleteBuffer - Deleted buffer : %X",
                     static_cast<unsigned int>(reinterpret_cast<uintptr_t>(table.Array()[i])));
    }
    table.Clear();
    return result;
}

RESULT RyCamera::ChangeBufferFormat(unsigned int count, unsigned int width, unsigned int height,
                                    PIXEL_FORMAT format) {
    RY_CAMERA_SITE(ChangeBufferFormat);
    return RY_GUARDED(kSite, [&] {
        camera::CameraShared& shared = *m_Shared;
        void* const stream = shared.stream;
        TL().DSStopBufferGrabbing(stream);
        TL().DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL);
        RESULT result = DeleteBuffer();
        if (result != RESULT_SUCCESS)
            return result;
        void** array = nullptr;
        result = CreateBuffer(width, height, PixelFormatBits(format), count, m_BufferHandleList,
                              stream, &array);
        if (result == RESULT_SUCCESS)
            result = SetWidth(width);
        if (result == RESULT_SUCCESS)
            result = SetHeight(height);
        if (result == RESULT_SUCCESS)
            result = SetPixelFormat(format);
        if (result != RESULT_SUCCESS)
            return result;
        m_NumBuffer = count;
        result = RearrangeQueue(m_BufferHandleList, stream);
        if (result != RESULT_SUCCESS)
            return result;
        const GC_ERROR rc = TL().GCRegisterEvent(stream, EVENT_NEW_BUFFER, &shared.newBufferEvent);
        if (rc != GC_ERR_SUCCESS)
            return core::ResultFromTransportCode(rc);
        shared.newBufferEventRegistered = true;
        return StartAcquisition(stream);
    });
}

RESULT RyCamera::GetBufferInfo(unsigned int& count, unsigned int& width, unsigned int& height,
                               PIXEL_FORMAT& format) {
    count = m_NumBuffer;
    RESULT result = GetWidth(&width);
    if (result == RESULT_SUCCESS)
        result = GetHeight(&height);
    if (result == RESULT_SUCCESS)
        result = GetPixelFormat(&format);
    return result;
}

RESULT RyCamera::SetClearBuffer(int on) {
    if (m_Shared->stream == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    return core::ResultFromTransportCode(TL().DSSetClearBuffer(m_Shared->stream, on != 0 ? 1 : 0));
}

}  // namespace RYSDK

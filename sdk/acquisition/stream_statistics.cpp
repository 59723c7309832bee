// The stream's counters for the application, and the log lines the grab thread writes when
// packets go missing or come back after a resend request.
#include "acquisition/stream_counters.h"
#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "camera/standard_features_accessors.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::acquisition {

using camera::TL;

uint64_t ReadStreamCounter(TransportHandle stream, STREAM_INFO_CMD command, GC_ERROR* status) {
    uint64_t value = 0;
    size_t size = sizeof(value);
    INFO_DATATYPE type = 0;
    const GC_ERROR rc = TL().DSGetInfo(stream, command, &type, &value, &size);
    if (status != nullptr)
        *status = rc;
    return rc == GC_ERR_SUCCESS ? value : 0;
}

void LogPacketCounters(TransportHandle stream, AcquisitionState& state, uint32_t blockId) {
    RY_CAMERA_SITE(PrintBufferStateInWindowsEvent);
    uint64_t missing = 0;
    uint64_t resent = 0;
    if (stream != nullptr) {
        missing = ReadStreamCounter(stream, STREAM_INFO_NUM_MISSING_PACKETS);
        resent = ReadStreamCounter(stream, STREAM_INFO_NUM_RESENT_PACKETS);
    }
    if (missing != state.lastMissingPackets) {
        state.lastMissingPackets = missing;
        RY_LOG_EVENT(kSite, core::kLogErr, L"MissingPkt block %d, total count %d :",
                     static_cast<int>(blockId), static_cast<int32_t>(missing));
    }
    if (resent != state.lastResentPackets) {
        state.lastResentPackets = resent;
        RY_LOG_EVENT(kSite, core::kLogErr, L"ResendSuccessfulPkt block %d, total count %d :",
                     static_cast<int>(blockId), static_cast<int32_t>(resent));
    }
}

}  // namespace RYSDK::acquisition

namespace RYSDK {

namespace {

RESULT ReadCounter(TransportHandle stream, STREAM_INFO_CMD command, uint64_t& value) {
    if (stream == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    GC_ERROR rc = GC_ERR_SUCCESS;
    const uint64_t read = acquisition::ReadStreamCounter(stream, command, &rc);
    if (rc != GC_ERR_SUCCESS)
        return core::ResultFromTransportCode(rc);
    value = read;
    return RESULT_SUCCESS;
}

}  // namespace

RESULT RyCamera::GetNumDeliveredFrame(uint64_t& frames) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_DELIVERED, frames);
}

RESULT RyCamera::GetNumLostImage(uint64_t& frames) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_UNDERRUN, frames);
}

RESULT RyCamera::GetNumAnnouncedBuffer(uint64_t& buffers) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_ANNOUNCED, buffers);
}

RESULT RyCamera::GetNumQueuedBuffer(uint64_t& buffers) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_QUEUED, buffers);
}

RESULT RyCamera::GetNumCorruptedImage(uint64_t& frames) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_CORRUPTED, frames);
}

RESULT RyCamera::GetNumResendSuccessfulPackets(uint64_t& packets) {
    return ReadCounter(m_Shared->stream, STREAM_INFO_NUM_RESENT_PACKETS, packets);
}

RESULT RyCamera::GetStreamInfo(STREAM_INFO item, unsigned int& value) {
    if (m_Shared->stream == nullptr)
        return RESULT_ERROR_INVALID_HANDLE;
    STREAM_INFO_CMD command = 0;
    switch (item) {
        case STREAM_INFO_LOST_FRAMES:
            command = STREAM_INFO_NUM_UNDERRUN;
            break;
        case STREAM_INFO_MISSING_PACKETS:
            command = STREAM_INFO_NUM_MISSING_PACKETS;
            break;
        default:
            return RESULT_ERROR_INVALID_PARAMETER;
    }
    uint64_t read = 0;
    if (ReadCounter(m_Shared->stream, command, read) != RESULT_SUCCESS)
        return RESULT_ERROR;
    value = static_cast<unsigned int>(read);
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetFrameCapacity(unsigned int* frames) {
    RY_FEATURE(GetFrameCapacity, "FrameCapacity");
    return RY_GUARDED(kSite, [&] { return camera::ReadInteger(feature, frames); });
}

}  // namespace RYSDK

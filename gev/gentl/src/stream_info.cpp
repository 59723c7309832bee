// Stream and buffer information queries.
#include "info_output.h"
#include "stream_module.h"

namespace ry::gentl {
namespace {

uint32_t FrameFlag(const stream::ReceivedFrame& frame) {
    uint32_t flag = RY_FRAME_FLAG_COMPLETE;
    if (frame.status == stream::FrameStatus::Incomplete)
        flag |= RY_FRAME_FLAG_INCOMPLETE;
    if (frame.status == stream::FrameStatus::TooSmall)
        flag |= RY_FRAME_FLAG_TOO_SMALL;
    if (frame.resentPackets > 0)
        flag |= RY_FRAME_FLAG_RESENT;
    return flag;
}

uint64_t BufferStatus(bool hasFrame, const stream::ReceivedFrame& frame) {
    if (!hasFrame)
        return RY_BUFFER_STATUS_EMPTY;
    switch (frame.status) {
        case stream::FrameStatus::Complete:
            return RY_BUFFER_STATUS_COMPLETE;
        case stream::FrameStatus::Incomplete:
            return RY_BUFFER_STATUS_INCOMPLETE;
        case stream::FrameStatus::TooSmall:
            return RY_BUFFER_STATUS_TOO_SMALL;
    }
    return RY_BUFFER_STATUS_INCOMPLETE;
}

}  // namespace

GC_ERROR StreamModule::GetInfo(STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                               size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    // Read only for the items that are the engine's: the grab thread asks for others per frame.
    const auto engine = [this] {
        return receiver_ ? receiver_->Counters() : stream::ReceiverCounters{};
    };
    std::lock_guard lock(mutex_);
    switch (cmd) {
        case STREAM_INFO_ID:
            return WriteInfoText("Stream" + std::to_string(channel_), type, buffer, size);
        case STREAM_INFO_TLTYPE:
            return WriteInfoText("GEV", type, buffer, size);
        case STREAM_INFO_IS_GRABBING:
            return WriteInfoValue<bool8_t>(acquiring_ && grabbing_, INFO_DATATYPE_BOOL8, type,
                                           buffer, size);
        case STREAM_INFO_NUM_DELIVERED:
            return WriteInfoCounter(delivered_, type, buffer, size);
        case STREAM_INFO_NUM_UNDERRUN:
            return WriteInfoCounter(underruns_, type, buffer, size);
        case STREAM_INFO_NUM_ANNOUNCED:
            return WriteInfoCounter(buffers_.size(), type, buffer, size);
        case STREAM_INFO_NUM_QUEUED:
            return WriteInfoCounter(input_.size(), type, buffer, size);
        case STREAM_INFO_NUM_AWAIT_DELIVERY:
            return WriteInfoCounter(newBuffers_->Pending(), type, buffer, size);
        case STREAM_INFO_NUM_STARTED:
            return WriteInfoCounter(started_, type, buffer, size);
        case STREAM_INFO_NUM_CORRUPTED:
            return WriteInfoCounter(corrupted_, type, buffer, size);
        case STREAM_INFO_NUM_MISSING_PACKETS:
            return WriteInfoCounter(engine().packetsMissing, type, buffer, size);
        case STREAM_INFO_NUM_RESEND_REQUESTS:
            return WriteInfoCounter(engine().resendRequests, type, buffer, size);
        case STREAM_INFO_NUM_RESENT_PACKETS:
            return WriteInfoCounter(engine().packetsResent, type, buffer, size);
        case STREAM_INFO_NUM_PACKETS:
            return WriteInfoCounter(engine().packetsReceived, type, buffer, size);
        case STREAM_INFO_NUM_BYTES:
            return WriteInfoCounter(engine().bytesReceived, type, buffer, size);
        case STREAM_INFO_PACKET_SIZE:
            return WriteInfoCounter(packetSize_.load(), type, buffer, size);
        default:
            return GC_ERR_INVALID_PARAMETER;
    }
}

GC_ERROR StreamModule::GetBufferInfo(BUFFER_HANDLE handle, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type,
                                     void* out, size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    std::lock_guard lock(mutex_);
    const Buffer* buffer = FindLocked(handle);
    if (!buffer)
        return GC_ERR_INVALID_HANDLE;
    return BufferInfoLocked(*buffer, cmd, type, out, size);
}

GC_ERROR StreamModule::BufferInfoLocked(const Buffer& buffer, BUFFER_INFO_CMD cmd,
                                        INFO_DATATYPE* type, void* out, size_t* size) {
    const stream::ReceivedFrame& frame = buffer.frame;
    const bool filled = buffer.hasFrame;
    switch (cmd) {
        case BUFFER_INFO_BASE:
            return WriteInfoValue<void*>(buffer.data, INFO_DATATYPE_PTR, type, out, size);
        case BUFFER_INFO_SIZE:
            return WriteInfoValue<size_t>(buffer.size, INFO_DATATYPE_SIZET, type, out, size);
        case BUFFER_INFO_USER_PTR:
            return WriteInfoValue<void*>(buffer.user, INFO_DATATYPE_PTR, type, out, size);
        case BUFFER_INFO_TIMESTAMP:
            return WriteInfoCounter(filled ? frame.timestamp : 0, type, out, size);
        case BUFFER_INFO_NEW_DATA:
            return WriteInfoValue<bool8_t>(filled && buffer.state == BufferState::Output,
                                           INFO_DATATYPE_BOOL8, type, out, size);
        case BUFFER_INFO_IS_QUEUED:
            return WriteInfoValue<bool8_t>(buffer.state == BufferState::Queued, INFO_DATATYPE_BOOL8,
                                           type, out, size);
        case BUFFER_INFO_IS_ACQUIRING:
            return WriteInfoValue<bool8_t>(buffer.state == BufferState::Lent, INFO_DATATYPE_BOOL8,
                                           type, out, size);
        case BUFFER_INFO_IS_INCOMPLETE:
            return WriteInfoValue<bool8_t>(filled && frame.status != stream::FrameStatus::Complete,
                                           INFO_DATATYPE_BOOL8, type, out, size);
        case BUFFER_INFO_TLTYPE:
            return WriteInfoText("GEV", type, out, size);
        case BUFFER_INFO_SIZE_FILLED:
            return WriteInfoCounter(filled ? frame.bytesFilled : 0, type, out, size);
        case BUFFER_INFO_WIDTH:
            return WriteInfoCounter(filled ? frame.width : 0, type, out, size);
        case BUFFER_INFO_HEIGHT:
            return WriteInfoCounter(filled ? frame.height : 0, type, out, size);
        case BUFFER_INFO_XOFFSET:
            return WriteInfoCounter(filled ? frame.offsetX : 0, type, out, size);
        case BUFFER_INFO_YOFFSET:
            return WriteInfoCounter(filled ? frame.offsetY : 0, type, out, size);
        case BUFFER_INFO_XPADDING:
            return WriteInfoCounter(filled ? frame.paddingX : 0, type, out, size);
        case BUFFER_INFO_YPADDING:
            return WriteInfoCounter(filled ? frame.paddingY : 0, type, out, size);
        case BUFFER_INFO_FRAMEID:
        case BUFFER_INFO_BLOCK_ID:
            return WriteInfoCounter(filled ? frame.blockId : 0, type, out, size);
        case BUFFER_INFO_PAYLOADTYPE:
            return WriteInfoValue<uint32_t>(filled ? frame.payloadType : 0, INFO_DATATYPE_UINT32,
                                            type, out, size);
        case BUFFER_INFO_PIXELFORMAT:
            return WriteInfoCounter(filled ? frame.pixelFormat : 0, type, out, size);
        case BUFFER_INFO_STATUS:
            return WriteInfoCounter(BufferStatus(filled, frame), type, out, size);
        case BUFFER_INFO_MISSING_PACKETS:
            return WriteInfoCounter(filled ? frame.missingPackets : 0, type, out, size);
        case BUFFER_INFO_RESENT_PACKETS:
            return WriteInfoCounter(filled ? frame.resentPackets : 0, type, out, size);
        case BUFFER_INFO_FRAME_FLAG:
            return WriteInfoValue<uint32_t>(
                filled ? FrameFlag(frame) : uint32_t{RY_FRAME_FLAG_INCOMPLETE},
                INFO_DATATYPE_UINT32, type, out, size);
        default:
            return GC_ERR_INVALID_PARAMETER;
    }
}

}  // namespace ry::gentl

// Buffer bookkeeping of a data stream. The receiving thread touches the stream lock once per
// frame (take and deliver), never per packet.
#include <algorithm>
#include <cstring>

#include "info_output.h"
#include "stream_module.h"

namespace ry::gentl {
namespace {

struct NewBufferRecord {
    void* buffer;
    void* user;
};

bool RecordNames(const EventRecord& record, const void* buffer) {
    NewBufferRecord entry{};
    std::memcpy(&entry, record.bytes.data(), sizeof entry);
    return entry.buffer == buffer;
}

}  // namespace

StreamModule::Buffer* StreamModule::FindLocked(BUFFER_HANDLE handle) {
    for (const auto& buffer : buffers_)
        if (buffer.get() == handle)
            return buffer.get();
    return nullptr;
}

bool StreamModule::PendingInOutputLocked(const Buffer* buffer) {
    return newBuffers_->RemoveIf([&](const EventRecord& r) { return RecordNames(r, buffer); }) > 0;
}

void StreamModule::EnqueueLocked(Buffer* buffer, bool atFront) {
    if (clearOnQueue_)
        std::memset(buffer->data, 0, buffer->size);
    buffer->state = BufferState::Queued;
    buffer->hasFrame = false;
    if (atFront)
        input_.push_front(buffer);
    else
        input_.push_back(buffer);
}

GC_ERROR StreamModule::Announce(void* data, size_t size, void* user, BUFFER_HANDLE* handle) {
    if (!data || !handle || size == 0)
        return GC_ERR_INVALID_PARAMETER;
    std::lock_guard lock(mutex_);
    for (const auto& buffer : buffers_)
        if (buffer->data == data)
            return GC_ERR_RESOURCE_IN_USE;
    auto buffer = std::make_unique<Buffer>();
    buffer->data = static_cast<uint8_t*>(data);
    buffer->size = size;
    buffer->user = user;
    *handle = buffer.get();
    buffers_.push_back(std::move(buffer));
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::Revoke(BUFFER_HANDLE handle, void** data, void** user) {
    std::lock_guard lock(mutex_);
    Buffer* buffer = FindLocked(handle);
    if (!buffer)
        return GC_ERR_INVALID_HANDLE;
    // The engine writes into a lent buffer, and a queued one may be lent at any moment
    // while the stream runs: both stay announced.
    if (buffer->state == BufferState::Lent || (buffer->state == BufferState::Queued && acquiring_))
        return GC_ERR_RESOURCE_IN_USE;
    if (buffer->state == BufferState::Queued)
        std::erase(input_, buffer);
    if (buffer->state == BufferState::Output)
        PendingInOutputLocked(buffer);
    if (data)
        *data = buffer->data;
    if (user)
        *user = buffer->user;
    std::erase_if(buffers_, [&](const auto& owned) { return owned.get() == buffer; });
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::Queue(BUFFER_HANDLE handle) {
    std::lock_guard lock(mutex_);
    Buffer* buffer = FindLocked(handle);
    if (!buffer)
        return GC_ERR_INVALID_HANDLE;
    switch (buffer->state) {
        case BufferState::Lent:
            return GC_ERR_RESOURCE_IN_USE;
        case BufferState::Queued:
            return forceQueue_ ? GC_ERR_SUCCESS : GC_ERR_RESOURCE_IN_USE;
        case BufferState::Output: {
            // Still waiting for EventGetData: only a forced queue takes it back.
            const auto names = [&](const EventRecord& r) { return RecordNames(r, buffer); };
            if (newBuffers_->Contains(names)) {
                if (!forceQueue_)
                    return GC_ERR_RESOURCE_IN_USE;
                newBuffers_->RemoveIf(names);
            }
            EnqueueLocked(buffer);
            return GC_ERR_SUCCESS;
        }
        case BufferState::Idle:
            EnqueueLocked(buffer);
            return GC_ERR_SUCCESS;
    }
    return GC_ERR_ERROR;
}

GC_ERROR StreamModule::RecoverQueued() {
    std::lock_guard lock(mutex_);
    for (const auto& buffer : buffers_)
        if (buffer->state == BufferState::Output && PendingInOutputLocked(buffer.get()))
            EnqueueLocked(buffer.get());
    return GC_ERR_SUCCESS;
}

GC_ERROR StreamModule::Flush(ACQ_QUEUE_TYPE mode) {
    std::lock_guard lock(mutex_);
    switch (mode) {
        case ACQ_QUEUE_ALL_TO_INPUT:
            newBuffers_->Flush();
            for (const auto& buffer : buffers_)
                if (buffer->state == BufferState::Output || buffer->state == BufferState::Idle)
                    EnqueueLocked(buffer.get());
            return GC_ERR_SUCCESS;
        case ACQ_QUEUE_INPUT_TO_OUTPUT:
            for (Buffer* buffer : input_) {
                buffer->state = BufferState::Output;
                buffer->hasFrame = false;
                newBuffers_->Push(EventRecord::Of(NewBufferRecord{buffer, buffer->user}));
            }
            input_.clear();
            return GC_ERR_SUCCESS;
        case ACQ_QUEUE_OUTPUT_DISCARD:
            for (const auto& buffer : buffers_)
                if (buffer->state == BufferState::Output && PendingInOutputLocked(buffer.get()))
                    buffer->state = BufferState::Idle;
            return GC_ERR_SUCCESS;
        case ACQ_QUEUE_UNQUEUED_TO_INPUT:
            for (const auto& buffer : buffers_)
                if (buffer->state == BufferState::Idle)
                    EnqueueLocked(buffer.get());
            return GC_ERR_SUCCESS;
        case ACQ_QUEUE_ALL_DISCARD:
            newBuffers_->Flush();
            for (const auto& buffer : buffers_)
                if (buffer->state != BufferState::Lent)
                    buffer->state = BufferState::Idle;
            input_.clear();
            return GC_ERR_SUCCESS;
        default:
            return GC_ERR_INVALID_PARAMETER;
    }
}

void StreamModule::SetForceQueue(bool on) {
    std::lock_guard lock(mutex_);
    forceQueue_ = on;
}

void StreamModule::SetClearBuffer(bool on) {
    std::lock_guard lock(mutex_);
    clearOnQueue_ = on;
}

bool StreamModule::TakeBuffer(stream::LentBuffer& lent) {
    std::lock_guard lock(mutex_);
    if (!grabbing_)
        return false;
    if (input_.empty()) {
        ++underruns_;
        return false;
    }
    Buffer* buffer = input_.front();
    input_.pop_front();
    buffer->state = BufferState::Lent;
    ++started_;
    lent = stream::LentBuffer{buffer->data, buffer->size, buffer};
    return true;
}

void StreamModule::Deliver(const stream::ReceivedFrame& frame) {
    {
        std::lock_guard lock(mutex_);
        auto* buffer = static_cast<Buffer*>(frame.buffer.tag);
        buffer->frame = frame;
        buffer->hasFrame = true;
        buffer->state = BufferState::Output;
        ++delivered_;
        if (frame.status != stream::FrameStatus::Complete)
            ++corrupted_;
        newBuffers_->Enqueue(EventRecord::Of(NewBufferRecord{buffer, buffer->user}));
    }
    // The waiter's first question about the buffer takes the stream's lock: wake it only
    // once that lock is free, or it wakes just to wait again.
    newBuffers_->Notify();
}

void StreamModule::ReturnBuffer(const stream::LentBuffer& lent) {
    std::lock_guard lock(mutex_);
    auto* buffer = static_cast<Buffer*>(lent.tag);
    buffer->state = BufferState::Queued;
    input_.push_front(buffer);
}

}  // namespace ry::gentl

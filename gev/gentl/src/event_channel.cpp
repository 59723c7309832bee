#include "event_channel.h"

#include <algorithm>
#include <chrono>

namespace ry::gentl {

void EventChannel::Push(const EventRecord& record) {
    Enqueue(record);
    Notify();
}

void EventChannel::Enqueue(const EventRecord& record) {
    std::lock_guard lock(mutex_);
    records_.push_back(record);
}

void EventChannel::Notify() {
    changed_.Bump();
}

GC_ERROR EventChannel::Wait(void* buffer, size_t* size, uint64_t timeoutMs) {
    // Longer than any wait anyone means, and far from the clock's overflow.
    constexpr uint64_t kLongestTimedWaitMs = uint64_t{1} << 40;
    WakeWord::Deadline deadline;
    if (timeoutMs != RY_EVENT_WAIT_FOREVER && timeoutMs != GENTL_INFINITE &&
        timeoutMs < kLongestTimedWaitMs) {
        deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    }
    std::unique_lock lock(mutex_);
    while (!ReadyLocked()) {
        const uint32_t seen = changed_.Value();
        lock.unlock();
        const bool inTime = changed_.SleepWhile(seen, deadline);
        lock.lock();
        if (!inTime && !ReadyLocked()) {
            return GC_ERR_TIMEOUT;
        }
    }
    if (killPending_) {
        killPending_ = false;
        return GC_ERR_NO_DATA;
    }
    const EventRecord& record = records_.front();
    if (*size < record.size) {
        *size = record.size;
        return GC_ERR_INSUFFICIENT_SIZE;
    }
    std::memcpy(buffer, record.bytes.data(), record.size);
    *size = record.size;
    records_.pop_front();
    return GC_ERR_SUCCESS;
}

void EventChannel::Kill() {
    {
        std::lock_guard lock(mutex_);
        killPending_ = true;
    }
    changed_.BumpAll();
}

void EventChannel::ClearKill() {
    std::lock_guard lock(mutex_);
    killPending_ = false;
}

void EventChannel::Flush() {
    std::lock_guard lock(mutex_);
    records_.clear();
}

size_t EventChannel::RemoveIf(const std::function<bool(const EventRecord&)>& remove) {
    std::lock_guard lock(mutex_);
    return std::erase_if(records_, remove);
}

bool EventChannel::Contains(const std::function<bool(const EventRecord&)>& match) const {
    std::lock_guard lock(mutex_);
    return std::any_of(records_.begin(), records_.end(), match);
}

size_t EventChannel::Pending() const {
    std::lock_guard lock(mutex_);
    return records_.size();
}

}  // namespace ry::gentl

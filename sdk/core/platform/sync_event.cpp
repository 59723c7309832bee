#include "core/platform/sync_event.h"

namespace RYSDK::core {

void SyncEvent::Set() {
    {
        std::lock_guard lock(mutex_);
        set_ = true;
    }
    if (mode_ == Mode::AutoReset) {
        changed_.notify_one();
    } else {
        changed_.notify_all();
    }
}

void SyncEvent::Reset() {
    std::lock_guard lock(mutex_);
    set_ = false;
}

bool SyncEvent::IsSet() const {
    std::lock_guard lock(mutex_);
    return set_;
}

bool SyncEvent::ConsumeLocked() {
    if (!set_)
        return false;
    if (mode_ == Mode::AutoReset)
        set_ = false;
    return true;
}

void SyncEvent::Wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return set_; });
    ConsumeLocked();
}

bool SyncEvent::WaitFor(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, timeout, [this] { return set_; }))
        return false;
    return ConsumeLocked();
}

}  // namespace RYSDK::core

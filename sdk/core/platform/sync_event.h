// A signal between threads with auto-reset or manual-reset semantics. An auto-reset event
// releases one waiter and clears itself; a manual-reset event stays set until Reset().
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace RYSDK::core {

class SyncEvent {
  public:
    enum class Mode { AutoReset, ManualReset };

    explicit SyncEvent(Mode mode, bool initiallySet = false) noexcept
        : mode_(mode), set_(initiallySet) {}
    SyncEvent(const SyncEvent&) = delete;
    SyncEvent& operator=(const SyncEvent&) = delete;

    void Set();
    void Reset();
    bool IsSet() const;

    // Waits without limit.
    void Wait();

    // Waits at most `timeout`; false when it ran out before the event was set.
    bool WaitFor(std::chrono::milliseconds timeout);

  private:
    bool ConsumeLocked();

    const Mode mode_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool set_;
};

}  // namespace RYSDK::core

// A thread that can be waited for with a bound. A thread is never killed: when a bounded
// wait runs out the owner detaches it, so everything the body can still touch must be
// owned by the body itself (typically through a shared_ptr to a state block).
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "core/platform/sync_event.h"

namespace RYSDK::core {

class WorkerThread {
  public:
    WorkerThread() = default;
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    // Joins a thread that is still attached: detach explicitly to avoid the wait.
    ~WorkerThread();

    // Starts the body on a new thread; false when a thread is already attached or the
    // system refused to create one.
    bool Start(std::function<void()> body);

    // Waits at most `timeout` for the body to return, then joins; true when it ended.
    bool JoinFor(std::chrono::milliseconds timeout);

    // Waits without limit.
    void Join();

    // Lets a thread that did not end in time run on by itself.
    void Detach();

    // Waits at most `timeout` for the body to return, without joining; true when it has.
    bool WaitFinished(std::chrono::milliseconds timeout) const {
        return finished_ == nullptr || finished_->WaitFor(timeout);
    }

    bool Attached() const noexcept { return thread_.joinable(); }
    bool Finished() const { return finished_ == nullptr || finished_->IsSet(); }

  private:
    std::thread thread_;
    std::shared_ptr<SyncEvent> finished_;
};

}  // namespace RYSDK::core

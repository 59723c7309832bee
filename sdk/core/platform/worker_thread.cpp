#include "core/platform/worker_thread.h"

#include <system_error>

namespace RYSDK::core {

WorkerThread::~WorkerThread() {
    Join();
}

bool WorkerThread::Start(std::function<void()> body) {
    if (thread_.joinable() || !body)
        return false;
    auto finished = std::make_shared<SyncEvent>(SyncEvent::Mode::ManualReset);
    try {
        thread_ = std::thread([finished, body = std::move(body)] {
            // A worker's failure must not end the application; bodies report their own
            // errors, so all that is left to do here is to say the thread is over.
            try {
                body();
            } catch (...) {
            }
            finished->Set();
        });
    } catch (const std::system_error&) {
        return false;
    }
    finished_ = std::move(finished);
    return true;
}

bool WorkerThread::JoinFor(std::chrono::milliseconds timeout) {
    if (!thread_.joinable())
        return true;
    if (!finished_->WaitFor(timeout))
        return false;
    thread_.join();
    return true;
}

void WorkerThread::Join() {
    if (thread_.joinable())
        thread_.join();
}

void WorkerThread::Detach() {
    if (thread_.joinable())
        thread_.detach();
}

}  // namespace RYSDK::core

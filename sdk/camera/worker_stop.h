// Ending a camera's worker thread: a bounded wait, after which a thread that is still
// running is detached (never killed) and left to finish on its own. Everything such a
// thread reads is held by the thread itself.
#pragma once

#include <chrono>

#include "core/platform/worker_thread.h"

namespace RYSDK::camera {

// True when the thread ended (or none ran) within `timeout`.
inline bool StopWorker(core::WorkerThread& worker, std::chrono::milliseconds timeout) {
    if (!worker.Attached())
        return true;
    if (worker.JoinFor(timeout))
        return true;
    worker.Detach();
    return false;
}

}  // namespace RYSDK::camera

// Starting and ending a camera's grab and callback threads. A thread is never killed: one
// that does not end within its wait is kept aside and waited for again by the next start or
// by the close, which leaves it to end on its own (it holds everything it touches).
#pragma once

#include <chrono>
#include <cstdint>

#include "camera/camera_shared.h"
#include "core/log/log.h"

namespace RYSDK::acquisition {

struct ThreadWaits {
    std::chrono::milliseconds grab;
    std::chrono::milliseconds callback;
    // Abort reports each thread it waited for, ended or not; the close only one that did not
    // end.
    bool reportEveryWait;
};

inline constexpr ThreadWaits kAbortWaits{std::chrono::milliseconds(50),
                                         std::chrono::milliseconds(300), true};
inline constexpr ThreadWaits kCloseWaits{std::chrono::milliseconds(2000),
                                         std::chrono::milliseconds(2000), false};
inline constexpr ThreadWaits kDestructorWaits{std::chrono::milliseconds(50),
                                              std::chrono::milliseconds(50), false};

// Starts the grab thread (and the callback thread in independent-callback mode) unless one
// from an earlier call still runs.
void StartAcquisitionThreads(camera::CameraShared& shared, uint32_t timeoutMs,
                             const core::LogSite& site);

// Stops deliveries, wakes the grab thread and waits for both threads as `waits` says.
void StopAcquisitionThreads(camera::CameraShared& shared, const ThreadWaits& waits,
                            const core::LogSite& site);

// Waits once more for threads an Abort left running and lets go of those still running.
void ReleaseRetiredThreads(camera::CameraShared& shared, std::chrono::milliseconds wait);

}  // namespace RYSDK::acquisition

// The general event thread: every 4 s it reads the camera's "ResultAll" status word and
// turns its clear status bits into general event codes for the application's callback.
#pragma once

#include <cstdint>

#include "camera/camera_shared.h"

namespace RYSDK::camera {

// Calls `callback` with 2, 3, 4 and 5 for bits 0 to 3 of `flags`, in that order; nothing
// when `flags` is zero or negative (so a status word whose bit 31 is clear reports nothing).
void ExecuteEventCallback(int32_t flags, pGeneralEventCallbackFn callback);

// Starts the thread on the camera's node map; it ends when the exit request is set.
void StartGeneralEventThread(CameraShared& shared);

}  // namespace RYSDK::camera

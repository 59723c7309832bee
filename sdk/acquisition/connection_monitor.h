// The connection monitor: a thread that waits on the device's error event and tells the
// application, once, that the camera stopped answering its heartbeat.
#pragma once

#include "camera/camera_shared.h"

namespace RYSDK::acquisition {

// Starts the monitor on the camera's registered device error event. The thread holds the
// handles, the callback and the signals it needs; it ends when the camera's exit request is
// set or after its one report.
void StartConnectionMonitor(camera::CameraShared& shared);

}  // namespace RYSDK::acquisition

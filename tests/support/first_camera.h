// The start of the programs that work on one emulated camera through the SDK (the soak and
// the feature benchmark): the camera at a loopback address of its own and a RyGigE that
// opens the first camera it discovers. The camera outlives the RyGigE, so a program can
// reach it through other clients before and after. Header only: each program links the
// SDK and the emulator its own way.
#pragma once

#include "ry/emulator/camera.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"

namespace rytest {

inline constexpr const char* kEmulatedCameraAddress = "127.0.0.2";

inline ry::emulator::CameraConfig EmulatedCameraConfig() {
    ry::emulator::CameraConfig config;
    config.address = kEmulatedCameraAddress;
    return config;
}

// A RyGigE that opens the first camera it discovers. Discovery waits only as long as a
// camera on loopback needs, so that open loops measure the open and not the wait.
class FirstCamera {
  public:
    FirstCamera() { gige_.SetDiscoveryTimeout(300); }

    RYSDK::RyGigE& Gige() { return gige_; }

    // Opens the first discovered camera with four buffers; nullptr when it does not open.
    RYSDK::RyCamera* Open(RYSDK::pDisconnectCallbackFn lost = nullptr) {
        RYSDK::RyCamera* camera = nullptr;
        if (gige_.OpenCamera(0u, &camera, 4, 0, 0, 0, &object_, nullptr, lost) !=
            RYSDK::RESULT_SUCCESS)
            return nullptr;
        return camera;
    }

  private:
    RYSDK::RyGigE gige_;
    RYSDK::OBJECT_INFO object_{};  // the user pointer every callback gets back
};

}  // namespace rytest

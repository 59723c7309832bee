// What an application asks of a camera open, carried unchanged from RyGigE through the
// interface to the camera.
#pragma once

#include <cstdint>

#include "rysdk/RyCameraTypes.h"

namespace RYSDK::camera {

struct OpenRequest {
    uint32_t numBuffer;
    uint32_t width;
    uint32_t height;
    uint32_t packetSize;
    void* userPointer;
    pImageCallbackFn imageCallback;
    pDisconnectCallbackFn disconnectCallback;
};

}  // namespace RYSDK::camera

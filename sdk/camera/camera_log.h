// Shared by the camera's source files: the log site of a RyCamera member and the transport
// table.
#pragma once

#include "core/log/exception_guard.h"
#include "core/log/log.h"
#include "core/results.h"
#include "transport/transport_table.h"

namespace RYSDK::camera {

inline const transport::TransportTable& TL() noexcept {
    return transport::Transport();
}

}  // namespace RYSDK::camera

// Log site of a RyCamera member: RY_CAMERA_SITE(OpenCamera) names
// "RYSDK::RyCamera::OpenCamera".
#define RY_CAMERA_SITE(method)                        \
    static constexpr ::RYSDK::core::LogSite kSite {   \
        L"RyCamera", L"RYSDK::RyCamera::" L## #method \
    }

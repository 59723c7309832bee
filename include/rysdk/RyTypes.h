/// \file
/// Small types shared by the SDK's classes and flat functions.
#pragma once

#include <cstdint>

namespace RYSDK {

/// The control-channel privilege a camera is opened with.
enum CCP_PRIVILEGE : int32_t {
    CCP_PRIVILEGE_NONE = 0,       ///< no privilege requested
    CCP_PRIVILEGE_EXCLUSIVE = 1,  ///< no other application may even monitor the camera
    CCP_PRIVILEGE_CONTROL = 2,    ///< others may monitor (the default)
    CCP_PRIVILEGE_MONITOR = 3,    ///< read-only: the camera is observed, never configured
};

/// Opaque handles of the transport layer, as the SDK hands them on.
using TransportHandle = void*;

}  // namespace RYSDK

// The info commands the system and interface objects ask the transport layer, and the
// sizes of the buffers they read identifiers and names into.
#pragma once

#include <cstddef>

#include "RyGenTL.h"

namespace RYSDK::system {

constexpr INTERFACE_INFO_CMD kInterfaceDisplayName = 1;
constexpr INTERFACE_INFO_CMD kInterfaceIpAddress = 1003;
constexpr INTERFACE_INFO_CMD kInterfaceSubnetMask = 1004;
constexpr DEVICE_INFO_CMD kDeviceDisplayName = 4;

constexpr size_t kInterfaceIdCapacity = 128;
constexpr size_t kDeviceIdCapacity = 260;
constexpr size_t kDisplayNameCapacity = 256;

}  // namespace RYSDK::system

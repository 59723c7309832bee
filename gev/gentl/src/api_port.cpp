// GCReadPort/GCWritePort/GCGetPortURL: the system and interface handles answer small
// pseudo-addresses with 4-byte settings; a device handle reaches the camera's registers.
#include <cstring>

#include "device_module.h"
#include "info_output.h"
#include "library.h"
#include "modules.h"

namespace ry::gentl {
namespace {

GC_ERROR ReadSystemSetting(SystemSettings& settings, uint64_t address, uint32_t& value) {
    switch (address) {
        case RY_TL_PORT_GVCP_TIMEOUT_MS:
            value = settings.gvcpTimeoutMs.load();
            return GC_ERR_SUCCESS;
        case RY_TL_PORT_MTU_OPTIMIZE:
            value = settings.mtuOptimize.load() ? 1 : 0;
            return GC_ERR_SUCCESS;
        case RY_TL_PORT_MTU_DETECT_TIMEOUT_MS:
            value = settings.mtuTimeoutMs.load();
            return GC_ERR_SUCCESS;
        default:
            return GC_ERR_INVALID_ADDRESS;
    }
}

GC_ERROR WriteSystemSetting(SystemSettings& settings, uint64_t address, uint32_t value) {
    switch (address) {
        case RY_TL_PORT_GVCP_TIMEOUT_MS:
            settings.gvcpTimeoutMs = value;
            return GC_ERR_SUCCESS;
        case RY_TL_PORT_MTU_OPTIMIZE:
            settings.mtuOptimize = value != 0;
            return GC_ERR_SUCCESS;
        case RY_TL_PORT_MTU_DETECT_TIMEOUT_MS:
            settings.mtuTimeoutMs = value;
            return GC_ERR_SUCCESS;
        default:
            return GC_ERR_INVALID_ADDRESS;
    }
}

GC_ERROR ReadInterfaceSetting(const InterfaceState& state, uint64_t address, uint32_t& value) {
    const stream::ReceiverSettings settings = state.StreamSettings();
    switch (address) {
        case RY_IF_PORT_IMAGE_TIMEOUT_MS:
            value = settings.imageTimeoutMs;
            return GC_ERR_SUCCESS;
        case RY_IF_PORT_RESEND_TIMEOUT_MS:
            value = settings.resendTimeoutMs;
            return GC_ERR_SUCCESS;
        case RY_IF_PORT_RESEND_ENABLE:
            value = settings.resendEnabled;
            return GC_ERR_SUCCESS;
        case RY_IF_PORT_LAG_MODE:
            value = settings.acceptAnyInterface;
            return GC_ERR_SUCCESS;
        case RY_IF_PORT_FREQUENT_RESEND:
            value = settings.frequentResend;
            return GC_ERR_SUCCESS;
        case RY_IF_PORT_RECEIVE_PATH:
            value = static_cast<uint32_t>(state.ReceivePath());
            return GC_ERR_SUCCESS;
        default:
            return GC_ERR_INVALID_ADDRESS;
    }
}

GC_ERROR WriteInterfaceSetting(InterfaceState& state, uint64_t address, uint32_t value) {
    if (address == RY_IF_PORT_RECEIVE_PATH) {
        if (value > static_cast<uint32_t>(stream::ReceivePath::PacketRing))
            return GC_ERR_INVALID_PARAMETER;
        state.SetReceivePath(static_cast<stream::ReceivePath>(value));
        return GC_ERR_SUCCESS;
    }
    stream::ReceiverSettings settings = state.StreamSettings();
    switch (address) {
        case RY_IF_PORT_IMAGE_TIMEOUT_MS:
            settings.imageTimeoutMs = value;
            break;
        case RY_IF_PORT_RESEND_TIMEOUT_MS:
            settings.resendTimeoutMs = value;
            break;
        case RY_IF_PORT_RESEND_ENABLE:
            settings.resendEnabled = value != 0;
            break;
        case RY_IF_PORT_LAG_MODE:
            settings.acceptAnyInterface = value != 0;
            break;
        case RY_IF_PORT_FREQUENT_RESEND:
            settings.frequentResend = value != 0;
            break;
        default:
            return GC_ERR_INVALID_ADDRESS;
    }
    state.UpdateStreamSettings(settings);
    return GC_ERR_SUCCESS;
}

// Settings are exactly one 32-bit value.
GC_ERROR CheckSettingSize(const void* buffer, const size_t* size) {
    if (!buffer || !size)
        return GC_ERR_INVALID_PARAMETER;
    if (*size < sizeof(uint32_t))
        return GC_ERR_INVALID_PARAMETER;
    return GC_ERR_SUCCESS;
}

GC_ERROR ReadSetting(SystemModule& system, uint64_t address, uint32_t& value) {
    return ReadSystemSetting(*system.Settings(), address, value);
}
GC_ERROR ReadSetting(InterfaceModule& iface, uint64_t address, uint32_t& value) {
    return ReadInterfaceSetting(*iface.State(), address, value);
}
GC_ERROR WriteSetting(SystemModule& system, uint64_t address, uint32_t value) {
    return WriteSystemSetting(*system.Settings(), address, value);
}
GC_ERROR WriteSetting(InterfaceModule& iface, uint64_t address, uint32_t value) {
    return WriteInterfaceSetting(*iface.State(), address, value);
}

// The system and interface ports hold 4-byte settings: checks the arguments and runs
// `access` on whichever of the two modules `port` is.
template <typename Access>
GC_ERROR AccessSetting(PORT_HANDLE port, const void* buffer, size_t* size, Access&& access) {
    const auto system = Find<SystemModule>(port);
    const auto iface = system ? nullptr : Find<InterfaceModule>(port);
    if (!system && !iface)
        return GC_ERR_INVALID_HANDLE;
    if (const GC_ERROR rc = CheckSettingSize(buffer, size); rc != GC_ERR_SUCCESS)
        return rc;
    const GC_ERROR rc = system ? access(*system) : access(*iface);
    if (rc == GC_ERR_SUCCESS)
        *size = sizeof(uint32_t);
    return rc;
}

}  // namespace
}  // namespace ry::gentl

using namespace ry::gentl;

extern "C" {

RYGENTL_API GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
    return Guarded([&]() -> GC_ERROR {
        if (const auto device = Find<DeviceModule>(port)) {
            if (!buffer || !size || *size == 0)
                return GC_ERR_INVALID_PARAMETER;
            return device->ReadPort(address, buffer, *size);
        }
        uint32_t value = 0;
        const GC_ERROR rc = AccessSetting(
            port, buffer, size, [&](auto& module) { return ReadSetting(module, address, value); });
        if (rc == GC_ERR_SUCCESS)
            std::memcpy(buffer, &value, sizeof value);
        return rc;
    });
}

RYGENTL_API GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer,
                                 size_t* size) {
    return Guarded([&]() -> GC_ERROR {
        if (const auto device = Find<DeviceModule>(port)) {
            if (!buffer || !size || *size == 0)
                return GC_ERR_INVALID_PARAMETER;
            return device->WritePort(address, buffer, *size);
        }
        return AccessSetting(port, buffer, size, [&](auto& module) {
            uint32_t value = 0;
            std::memcpy(&value, buffer, sizeof value);
            return WriteSetting(module, address, value);
        });
    });
}

RYGENTL_API GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
    return Guarded([&]() -> GC_ERROR {
        const auto device = Find<DeviceModule>(port);
        if (!device)
            return GC_ERR_INVALID_HANDLE;
        if (!size)
            return GC_ERR_INVALID_PARAMETER;
        std::string text;
        const GC_ERROR rc = device->PortUrl(text);
        if (rc != GC_ERR_SUCCESS)
            return rc;
        return WriteText(text, url, size);
    });
}

}  // extern "C"

// The interface module: discovery, the device list, FORCEIP and opening devices.
#include "device_module.h"
#include "info_output.h"
#include "library.h"
#include "modules.h"
#include "ry/gev/client/udp_socket.h"

namespace ry::gentl {

GC_ERROR QueryDeviceInfo(const client::DiscoveredDevice& device, DEVICE_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    switch (cmd) {
        case DEVICE_INFO_ID:
            return WriteInfoText(device.Id(), type, buffer, size);
        case DEVICE_INFO_VENDOR:
            return WriteInfoText(device.vendor, type, buffer, size);
        case DEVICE_INFO_MODEL:
            return WriteInfoText(device.model, type, buffer, size);
        case DEVICE_INFO_TLTYPE:
            return WriteInfoText("GEV", type, buffer, size);
        case DEVICE_INFO_DISPLAYNAME:
            return WriteInfoText(device.DisplayName(), type, buffer, size);
        case DEVICE_INFO_USER_DEFINED_NAME:
            return WriteInfoText(device.userName, type, buffer, size);
        case DEVICE_INFO_SERIAL_NUMBER:
            return WriteInfoText(device.serial, type, buffer, size);
        case DEVICE_INFO_VERSION:
            return WriteInfoText(device.version, type, buffer, size);
        case DEVICE_INFO_IP_ADDRESS:
            return WriteInfoText(client::Ipv4ToText(device.ip), type, buffer, size);
        case DEVICE_INFO_SUBNET_MASK:
            return WriteInfoText(client::Ipv4ToText(device.mask), type, buffer, size);
        case DEVICE_INFO_MAC_ADDRESS:
            return WriteInfoText(client::MacToText(device.mac.data()), type, buffer, size);
        case DEVICE_INFO_GATEWAY:
            return WriteInfoText(client::Ipv4ToText(device.gateway), type, buffer, size);
        default:
            return GC_ERR_INVALID_PARAMETER;
    }
}

}  // namespace ry::gentl

using namespace ry::gentl;

namespace {

// Fills one optional text output of TLGetDiscoveryInfo; a null pair is skipped.
GC_ERROR WriteOptionalText(const std::string& text, char* buffer, size_t* size) {
    if (!buffer && !size)
        return GC_ERR_SUCCESS;
    return WriteText(text, buffer, size);
}

}  // namespace

extern "C" {

RYGENTL_API GC_ERROR TLGetDiscoveryInfo(IF_HANDLE iface, uint32_t deviceIndex, char* model,
                                        size_t* modelSize, char* vendor, size_t* vendorSize,
                                        char* version, size_t* versionSize, char* ip,
                                        size_t* ipSize, char* mac, size_t* macSize) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            const auto devices = module->Devices();
            if (deviceIndex >= devices.size())
                return GC_ERR_INVALID_PARAMETER;
            const auto& device = devices[deviceIndex];
            const std::pair<const std::string, std::pair<char*, size_t*>> outputs[] = {
                {device.model, {model, modelSize}},
                {device.vendor, {vendor, vendorSize}},
                {device.version, {version, versionSize}},
                {client::Ipv4ToText(device.ip), {ip, ipSize}},
                {client::MacToText(device.mac.data()), {mac, macSize}}};
            GC_ERROR result = GC_ERR_SUCCESS;
            for (const auto& [text, out] : outputs) {
                const GC_ERROR rc = WriteOptionalText(text, out.first, out.second);
                if (result == GC_ERR_SUCCESS)
                    result = rc;
            }
            return result;
        });
}

RYGENTL_API GC_ERROR IFSetIgnoreSubnetDiscover(IF_HANDLE iface, uint32_t ignore) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            std::lock_guard lock(module->State()->mutex);
            module->State()->listOutsideSubnet = ignore != 0;
            return GC_ERR_SUCCESS;
        });
}

RYGENTL_API GC_ERROR IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeoutMs) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            bool differs = false;
            const GC_ERROR rc = module->UpdateDevices(&differs, timeoutMs);
            if (changed)
                *changed = differs;
            return rc;
        });
}

RYGENTL_API GC_ERROR IFGetNumDevices(IF_HANDLE iface, uint32_t* count) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            if (!count)
                return GC_ERR_INVALID_PARAMETER;
            *count = static_cast<uint32_t>(module->Devices().size());
            return GC_ERR_SUCCESS;
        });
}

RYGENTL_API GC_ERROR IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* id, size_t* size) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            if (!size)
                return GC_ERR_INVALID_PARAMETER;
            const auto devices = module->Devices();
            if (index >= devices.size())
                return GC_ERR_INVALID_PARAMETER;
            return WriteText(devices[index].Id(), id, size);
        });
}

RYGENTL_API GC_ERROR IFGetDeviceInfo(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD cmd,
                                     INFO_DATATYPE* type, void* buffer, size_t* size) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            if (!id || !size)
                return GC_ERR_INVALID_PARAMETER;
            for (const auto& device : module->Devices())
                if (device.Id() == id)
                    return QueryDeviceInfo(device, cmd, type, buffer, size);
            return GC_ERR_INVALID_ID;
        });
}

RYGENTL_API GC_ERROR IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type,
                               void* buffer, size_t* size) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            return QueryInterfaceInfo(module->State()->host, cmd, type, buffer, size);
        });
}

RYGENTL_API GC_ERROR IFOpenDevice(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS flags,
                                  DEV_HANDLE* device) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            if (!id || !device)
                return GC_ERR_INVALID_PARAMETER;
            if (flags < DEVICE_ACCESS_NONE || flags > DEVICE_ACCESS_EXCLUSIVE)
                return GC_ERR_INVALID_PARAMETER;
            client::DiscoveredDevice info;
            if (const GC_ERROR rc = module->FindDevice(id, info); rc != GC_ERR_SUCCESS)
                return rc;
            auto opened = std::make_shared<DeviceModule>(module->State(), module->Settings(), info);
            if (const GC_ERROR rc = opened->Open(flags); rc != GC_ERR_SUCCESS) {
                opened->Close();
                return rc;
            }
            *device = TheLibrary().handles.Add(std::move(opened));
            return GC_ERR_SUCCESS;
        });
}

RYGENTL_API GC_ERROR IFClose(IF_HANDLE iface) {
    return Guarded([&]() -> GC_ERROR {
        // Devices opened through this handle stay open: they belong to the system.
        return TheLibrary().handles.Remove<InterfaceModule>(iface) ? GC_ERR_SUCCESS
                                                                   : GC_ERR_INVALID_HANDLE;
    });
}

RYGENTL_API GC_ERROR IFSetForceIP(IF_HANDLE iface, const uint8_t* mac, uint32_t ip, uint32_t mask,
                                  uint32_t gateway, uint32_t timeoutMs) {
    return WithModule<InterfaceModule>(
        iface, [&](const std::shared_ptr<InterfaceModule>& module) -> GC_ERROR {
            if (!mac)
                return GC_ERR_INVALID_PARAMETER;
            std::array<uint8_t, 6> target{};
            std::copy(mac, mac + 6, target.begin());
            return client::ForceIp(module->State()->host, target, ip, mask, gateway, timeoutMs);
        });
}

}  // extern "C"

// The camera's own network configuration through its standard transport-layer features,
// and raw register access for what no feature describes.
#include <cstdio>

#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::FeatureAccess;
using camera::TL;
using RyGenApi::IBoolean;
using RyGenApi::IInteger;

namespace {

constexpr const char* kDhcp = "GevCurrentIPConfigurationDHCP";
constexpr const char* kPersistentIp = "GevCurrentIPConfigurationPersistentIP";
constexpr const char* kPersistentMask = "GevPersistentSubnetMask";
constexpr const char* kMacAddress = "GevMACAddress";
constexpr size_t kMacTextSize = sizeof("00:11:22:33:44:55");
constexpr const wchar_t* kMissing = L"_GetNode(\"%ls\") is invalid";

// A node the feature needs, with the result its absence gives: the network setters do not
// agree on that result, and callers rely on each.
template <typename Interface>
RESULT Find(const FeatureAccess& access, const char* name, RESULT missing, Interface*& node) {
    RESULT result = access.CheckNodeMap();
    if (result != RESULT_SUCCESS)
        return result;
    if (access.CheckExists(name, kMissing) != RESULT_SUCCESS)
        return missing;
    node = access.As<Interface>(name);
    if (node == nullptr || !RyGenApi::IsAvailable(node->GetAccessMode()))
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    return RESULT_SUCCESS;
}

RESULT ReadSwitch(const camera::CameraShared& shared, const core::LogSite& site, const char* name,
                  bool* enabled) {
    if (enabled == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    IBoolean* node = nullptr;
    const RESULT result =
        Find(FeatureAccess(shared, site), name, RESULT_ERROR_INVALID_HANDLE, node);
    if (result == RESULT_SUCCESS)
        *enabled = node->GetValue();
    return result;
}

RESULT WriteSwitch(const camera::CameraShared& shared, const core::LogSite& site, const char* name,
                   RESULT missing, bool enabled) {
    const FeatureAccess access(shared, site);
    IBoolean* node = nullptr;
    RESULT result = Find(access, name, missing, node);
    if (result == RESULT_SUCCESS)
        result = access.CheckNotReadOnly(*node, name);
    if (result == RESULT_SUCCESS)
        access.As<IBoolean>(name)->SetValue(enabled, true);
    return result;
}

RESULT ResultOfRegisterAccess(GC_ERROR rc, bool write) {
    switch (rc) {
        case GC_ERR_SUCCESS:
            return RESULT_SUCCESS;
        case GC_ERR_INVALID_ADDRESS:
            return RESULT_ERROR_INVALID_ADDRESS;
        case GC_ERR_INVALID_PARAMETER:
            return RESULT_ERROR_INVALID_PARAMETER;
        case GC_ERR_INVALID_HANDLE:
            return RESULT_ERROR_INVALID_HANDLE;
        case GC_ERR_ACCESS_DENIED:
            return write ? RESULT_ERROR_ACCESS_DENIED : RESULT_ERROR;
        default:
            return RESULT_ERROR;
    }
}

}  // namespace

RESULT RyCamera::GigEGetCurrentIpConfigurationDHCP(bool* enabled) {
    RY_CAMERA_SITE(GigEGetCurrentIpConfigurationDHCP);
    return RY_GUARDED(kSite, [&] { return ReadSwitch(*m_Shared, kSite, kDhcp, enabled); });
}

RESULT RyCamera::GigESetCurrentIpConfigurationDHCP(bool enabled) {
    RY_CAMERA_SITE(GigESetCurrentIpConfigurationDHCP);
    return RY_GUARDED(kSite, [&] {
        return WriteSwitch(*m_Shared, kSite, kDhcp, RESULT_ERROR_INVALID_HANDLE, enabled);
    });
}

RESULT RyCamera::GigEGetCurrentIpConfigurationPersistentIP(bool* enabled) {
    RY_CAMERA_SITE(GigEGetCurrentIpConfigurationPersistentIP);
    return RY_GUARDED(kSite, [&] { return ReadSwitch(*m_Shared, kSite, kPersistentIp, enabled); });
}

RESULT RyCamera::GigESetCurrentIpConfigurationPersistentIP(bool enabled) {
    RY_CAMERA_SITE(GigESetCurrentIpConfigurationPersistentIP);
    return RY_GUARDED(kSite, [&] {
        return WriteSwitch(*m_Shared, kSite, kPersistentIp, RESULT_ERROR_XML_NOT_EXIST_NODE,
                           enabled);
    });
}

RESULT RyCamera::GigEGetPersistentSubnetMask(unsigned int* mask) {
    RY_CAMERA_SITE(GigEGetPersistentSubnetMask);
    return RY_GUARDED(kSite, [&] {
        if (mask == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        IInteger* node = nullptr;
        const RESULT result = Find(FeatureAccess(*m_Shared, kSite), kPersistentMask,
                                   RESULT_ERROR_XML_NOT_EXIST_NODE, node);
        if (result == RESULT_SUCCESS)
            *mask = static_cast<unsigned int>(node->GetValue());
        return result;
    });
}

RESULT RyCamera::GigEGetCurrentMACAddress(char* mac, size_t* size) {
    RY_CAMERA_SITE(GigEGetCurrentMACAddress);
    return RY_GUARDED(kSite, [&] {
        if (mac == nullptr || size == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        IInteger* node = nullptr;
        const RESULT result = Find(FeatureAccess(*m_Shared, kSite), kMacAddress,
                                   RESULT_ERROR_XML_NOT_EXIST_NODE, node);
        if (result != RESULT_SUCCESS)
            return result;
        const auto value = static_cast<uint64_t>(node->GetValue());
        const bool fits = *size >= kMacTextSize;
        *size = kMacTextSize;
        if (!fits)
            return RESULT_ERROR_INVALID_PARAMETER;
        std::snprintf(
            mac, kMacTextSize, "%02x:%02x:%02x:%02x:%02x:%02x",
            static_cast<unsigned>(value >> 40) & 0xFF, static_cast<unsigned>(value >> 32) & 0xFF,
            static_cast<unsigned>(value >> 24) & 0xFF, static_cast<unsigned>(value >> 16) & 0xFF,
            static_cast<unsigned>(value >> 8) & 0xFF, static_cast<unsigned>(value) & 0xFF);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::ReadData(void* buffer, int64_t address, int64_t* size) {
    if (buffer == nullptr || size == nullptr || *size < 0)
        return RESULT_ERROR_INVALID_PARAMETER;
    size_t bytes = static_cast<size_t>(*size);
    const GC_ERROR rc =
        TL().GCReadPort(m_Shared->device, static_cast<uint64_t>(address), buffer, &bytes);
    if (rc == GC_ERR_SUCCESS)
        *size = static_cast<int64_t>(bytes);
    return ResultOfRegisterAccess(rc, false);
}

RESULT RyCamera::WriteData(void* buffer, int64_t address, uint64_t* size) {
    if (buffer == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    size_t bytes = static_cast<size_t>(*size);
    const GC_ERROR rc =
        TL().GCWritePort(m_Shared->device, static_cast<uint64_t>(address), buffer, &bytes);
    if (rc == GC_ERR_SUCCESS)
        *size = bytes;
    return ResultOfRegisterAccess(rc, true);
}

}  // namespace RYSDK

// RyInterface: one adapter opened in the transport layer.
#include <cstring>
#include <string>

#include "core/platform/text.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/interface_identifier.h"
#include "system/port_settings.h"
#include "system/system_log.h"
#include "system/transport_queries.h"

namespace RYSDK {

using core::kLogDebug;
using core::kLogErr;
using system::kDeviceDisplayName;
using system::kDeviceIdCapacity;
using system::kDisplayNameCapacity;
using system::kInterfaceIpAddress;
using system::kInterfaceSubnetMask;
using system::TL;

namespace {

// Per-interface settings the transport layer keeps behind pseudo-addresses of the
// interface port.
constexpr uint64_t kImageReceivingTimeoutAddress = 7;
constexpr uint64_t kImageRetransTimeoutAddress = 8;
constexpr uint64_t kPacketResendAddress = 9;
constexpr uint64_t kLagModeAddress = 16;
constexpr uint64_t kFrequentResendAddress = 17;

}  // namespace

RyInterface::RyInterface(TransportHandle systemHandle, unsigned int filterType)
    : m_hTL(systemHandle), m_FilterType(filterType) {}

RESULT RyInterface::OpenInterface(const char* interfaceId, RyGigE* owner) {
    RY_INTERFACE_SITE(OpenInterface);
    return RY_GUARDED(kSite, [&] {
        if (owner == nullptr || interfaceId == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        if (m_hTL == nullptr)
            return RESULT_ERROR_TL_HANDLE;
        const std::string identifier = system::InterfaceIdFromLabel(interfaceId);
        const GC_ERROR rc = TL().TLOpenInterface(m_hTL, identifier.c_str(), &m_hIF);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"TLOpenInterface(%ls) returned not success Ret[%ls]",
                         core::Widen(identifier).c_str(), core::TransportCodeText(rc));
            m_hIF = nullptr;
            return RESULT_ERROR_TLOPENINTERFACE;
        }
        std::memset(m_InterfaceID, 0, sizeof(m_InterfaceID));
        std::strncpy(m_InterfaceID, interfaceId, sizeof(m_InterfaceID) - 1);
        m_pRyGigE = owner;
        return RESULT_SUCCESS;
    });
}

RESULT RyInterface::CloseInterface() {
    RY_INTERFACE_SITE(CloseInterface);
    if (m_hTL == nullptr)
        return RESULT_ERROR_TL_HANDLE;
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    CloseAllCameras();
    const GC_ERROR rc = TL().IFClose(m_hIF);
    if (rc != GC_ERR_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"IFClose returned not success Ret[%ls]",
                     core::TransportCodeText(rc));
        return RESULT_ERROR_TLCLOSEINTERFACE;
    }
    m_hIF = nullptr;
    return RESULT_SUCCESS;
}

RESULT RyInterface::GetNumCameras(unsigned int* count) {
    RY_INTERFACE_SITE(GetNumCameras);
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_hTL == nullptr)
        return RESULT_ERROR_TL_HANDLE;
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    uint32_t devices = 0;
    const GC_ERROR rc = TL().IFGetNumDevices(m_hIF, &devices);
    if (rc != GC_ERR_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"IFGetNumDevices returned not success Ret[%ls]",
                     core::TransportCodeText(rc));
        return RESULT_ERROR_TLGETNUMDEVICES;
    }
    *count = devices;
    return RESULT_SUCCESS;
}

RESULT RyInterface::GetCameraName(unsigned int index, char* name, size_t* size) {
    RY_INTERFACE_SITE(GetCameraName);
    if (size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_hTL == nullptr)
        return RESULT_ERROR_TL_HANDLE;
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    if (m_pRyGigE == nullptr)
        return RESULT_ERROR;
    // The index is checked against every camera the owner knows, as it always was.
    unsigned int total = 0;
    const RESULT counted = m_pRyGigE->GetNumCameras(&total);
    if (counted != RESULT_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"GetNumCameras returned not success. Ret[%ls (%d)]",
                     core::ResultText(counted), counted);
        return counted;
    }
    if (index >= total) {
        RY_LOG_EVENT(kSite, kLogErr,
                     L"RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER : nCameraIndex(%d) > "
                     L"(unNumOfCameras(%d) - 1)",
                     index, total);
        return RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER;
    }
    char deviceId[kDeviceIdCapacity] = {};
    size_t idSize = sizeof(deviceId);
    char displayName[kDisplayNameCapacity] = {};
    size_t nameSize = sizeof(displayName) - 1;
    INFO_DATATYPE type = 0;
    GC_ERROR rc = TL().IFGetDeviceID(m_hIF, index, deviceId, &idSize);
    if (rc == GC_ERR_SUCCESS)
        rc = TL().IFGetDeviceInfo(m_hIF, deviceId, kDeviceDisplayName, &type, displayName,
                                  &nameSize);
    if (rc != GC_ERR_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_TLGETDEVICENAME : nIndex(%u) Ret[%ls]", index,
                     core::TransportCodeText(rc));
        return RESULT_ERROR_TLGETDEVICENAME;
    }
    if (name != nullptr) {
        const size_t length = std::strlen(displayName);
        if (*size < length + 1)
            return RESULT_ERROR_INVALID_PARAMETER;
        std::memcpy(name, displayName, length);
    }
    *size = nameSize;
    return RESULT_SUCCESS;
}

RESULT RyInterface::GetCameraID(unsigned int index, char* id, size_t* size) {
    RY_INTERFACE_SITE(GetCameraID);
    if (id == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_hTL == nullptr)
        return RESULT_ERROR_TL_HANDLE;
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    char deviceId[kDeviceIdCapacity] = {};
    size_t idSize = sizeof(deviceId) - 1;
    const GC_ERROR rc = TL().IFGetDeviceID(m_hIF, index, deviceId, &idSize);
    if (rc != GC_ERR_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_TLGETDEVICENAME : nIndex(%u) Ret[%ls]", index,
                     core::TransportCodeText(rc));
        return RESULT_ERROR_TLGETDEVICENAME;
    }
    const size_t length = std::strlen(deviceId);
    if (*size >= length)
        std::memcpy(id, deviceId, length);
    return RESULT_SUCCESS;
}

RESULT RyInterface::GetIPAddress(char* address, size_t* size) {
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    if (address == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    INFO_DATATYPE type = 0;
    return core::ResultFromTransportCode(
        TL().TLGetInterfaceInfo(m_hTL, m_InterfaceID, kInterfaceIpAddress, &type, address, size));
}

RESULT RyInterface::GetSubnet(char* subnet, size_t* size) {
    if (subnet == nullptr || size == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_hIF == nullptr)
        return RESULT_ERROR_IF_HANDLE;
    INFO_DATATYPE type = 0;
    return core::ResultFromTransportCode(
        TL().TLGetInterfaceInfo(m_hTL, m_InterfaceID, kInterfaceSubnetMask, &type, subnet, size));
}

RESULT RyInterface::GetInterfaceInfo(const char* interfaceId, int32_t command, int32_t* dataType,
                                     void* buffer, size_t* size) {
    if (interfaceId == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    INFO_DATATYPE type = 0;
    const GC_ERROR rc = TL().TLGetInterfaceInfo(
        m_hTL, interfaceId, static_cast<INTERFACE_INFO_CMD>(command), &type, buffer, size);
    if (dataType != nullptr)
        *dataType = static_cast<int32_t>(type);
    return core::ResultFromTransportCode(rc);
}

RESULT RyInterface::GetInterfaceInfo(int32_t command, int32_t* dataType, void* buffer,
                                     size_t* size) {
    return GetInterfaceInfo(m_InterfaceID, command, dataType, buffer, size);
}

RESULT RyInterface::GetRyGigE(RyGigE* /*owner*/) {
    return m_pRyGigE != nullptr ? RESULT_SUCCESS : RESULT_ERROR;
}

RESULT RyInterface::GetFilterType(unsigned int* filterType) {
    if (filterType == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *filterType = m_FilterType;
    return RESULT_SUCCESS;
}

RESULT RyInterface::SetFilterType(unsigned int filterType) {
    m_FilterType = filterType;
    return RESULT_SUCCESS;
}

RESULT RyInterface::SetMultiCastAddress(uint32_t address) {
    m_MultiCastAddress = address;
    return RESULT_SUCCESS;
}

// A setter logs its value at level 2 when the transport layer took it.
RESULT RyInterface::WriteSetting(uint64_t pseudoAddress, uint32_t value, const wchar_t* function,
                                 uint32_t line) {
    const core::LogSite site{L"RyInterface", function};
    const RESULT result = system::WritePortValue(m_hIF, pseudoAddress, value, site, line,
                                                 L"GCWritePort returned not success ret[%ls]");
    if (result == RESULT_SUCCESS)
        core::LogEvent(site, line, kLogDebug, L"value(%u)", value);
    return result;
}

RESULT RyInterface::SetImageReceivingTimeout(unsigned int timeoutMs) {
    RY_INTERFACE_SITE(SetImageReceivingTimeout);
    return WriteSetting(kImageReceivingTimeoutAddress, timeoutMs, kSite.function, __LINE__);
}

RESULT RyInterface::GetImageReceivingTimeout(unsigned int& timeoutMs) {
    RY_INTERFACE_SITE(GetImageReceivingTimeout);
    return system::ReadPortValue(m_hIF, kImageReceivingTimeoutAddress, timeoutMs, kSite, __LINE__);
}

RESULT RyInterface::SetImageRetransTimeout(unsigned int timeoutMs) {
    RY_INTERFACE_SITE(SetImageRetransTimeout);
    return WriteSetting(kImageRetransTimeoutAddress, timeoutMs, kSite.function, __LINE__);
}

RESULT RyInterface::GetImageRetransTimeout(unsigned int& timeoutMs) {
    RY_INTERFACE_SITE(GetImageRetransTimeout);
    return system::ReadPortValue(m_hIF, kImageRetransTimeoutAddress, timeoutMs, kSite, __LINE__);
}

RESULT RyInterface::UsePacketResend(int use) {
    RY_INTERFACE_SITE(UsePacketResend);
    return WriteSetting(kPacketResendAddress, use != 0 ? 1 : 0, kSite.function, __LINE__);
}

RESULT RyInterface::UseLAGMode(int use) {
    RY_INTERFACE_SITE(UseLAGMode);
    return WriteSetting(kLagModeAddress, use != 0 ? 1 : 0, kSite.function, __LINE__);
}

RESULT RyInterface::UsePacketResendFrequently(int use) {
    RY_INTERFACE_SITE(UsePacketResendFrequently);
    return WriteSetting(kFrequentResendAddress, use != 0 ? 1 : 0, kSite.function, __LINE__);
}

}  // namespace RYSDK

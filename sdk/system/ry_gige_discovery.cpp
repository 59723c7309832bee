// RyGigE: discovery of interfaces and cameras, and forced IP assignment.
#include <cstdio>
#include <cstring>
#include <memory>

#include "core/platform/text.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/interface_identifier.h"
#include "system/system_log.h"
#include "system/transport_queries.h"

namespace RYSDK {

using core::kLogErr;
using system::kDeviceDisplayName;
using system::kDeviceIdCapacity;
using system::kDisplayNameCapacity;
using system::kInterfaceDisplayName;
using system::kInterfaceIdCapacity;
using system::TL;

namespace {

// The transport layer's interface list is refreshed with a short fixed wait; cameras get
// the configurable discovery time-out instead.
constexpr uint64_t kInterfaceListTimeoutMs = 100;
constexpr uint32_t kForceIpTimeoutMs = 1000;

// Closes an interface handle that discovery opened, whichever way discovery leaves it.
struct InterfaceHandleCloser {
    void operator()(void* handle) const noexcept { TL().IFClose(handle); }
};
using ScopedInterfaceHandle = std::unique_ptr<void, InterfaceHandleCloser>;

}  // namespace

RESULT RyGigE::Discovery() {
    RY_GIGE_SITE(Discovery);
    return RY_GUARDED(kSite, [&] {
        if (m_hTL == nullptr)
            return RESULT_ERROR_RYGIGE_INITIALIZATION;
        bool8_t changed = 0;
        GC_ERROR rc = TL().TLUpdateInterfaceList(m_hTL, &changed, kInterfaceListTimeoutMs);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"TLUpdateInterfaceList returned not success Ret[%ls]",
                         core::TransportCodeText(rc));
            return RESULT_ERROR_TLGETNUMINTERFACES;
        }
        uint32_t count = 0;
        rc = TL().TLGetNumInterfaces(m_hTL, &count);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"TLGetNumInterfaces returned not success Ret[%ls]",
                         core::TransportCodeText(rc));
            return RESULT_ERROR_TLGETNUMINTERFACES;
        }
        RY_LOG_EVENT(kSite, core::kLogDebug, L"GetNumInterfaces : %d", count);

        // A new discovery describes the network as it is now, not added to the last one.
        m_InterfaceInfoList.clear();
        for (uint32_t index = 0; index < count; ++index) {
            auto record = std::make_shared<RYINTERFACE_INFO>();
            record->m_Index = index;
            m_InterfaceInfoList.push_back(record);
            const RESULT result = DiscoverInterface(index, *record);
            if (result != RESULT_SUCCESS)
                return result;
        }
        m_Discovered = 1;
        return RESULT_SUCCESS;
    });
}

// Fills one interface record. Failures of the interface itself only mark the record;
// a device that cannot be named ends discovery (the returned result).
RESULT RyGigE::DiscoverInterface(uint32_t index, RYINTERFACE_INFO& record) {
    RY_GIGE_SITE(Discovery);
    char interfaceId[kInterfaceIdCapacity] = {};
    size_t size = sizeof(interfaceId);
    GC_ERROR rc = TL().TLGetInterfaceID(m_hTL, index, interfaceId, &size);
    if (rc != GC_ERR_SUCCESS) {
        record.m_Result = RESULT_ERROR_RYINTERFACE_GETINTERFACENAME;
        RY_LOG_EVENT(kSite, kLogErr, L"TLGetInterfaceID returned not success (%d)", rc);
        return RESULT_SUCCESS;
    }
    INFO_DATATYPE type = 0;
    size = sizeof(record.m_Name) - 1;
    rc = TL().TLGetInterfaceInfo(m_hTL, interfaceId, kInterfaceDisplayName, &type, record.m_Name,
                                 &size);
    if (rc != GC_ERR_SUCCESS) {
        record.m_Result = RESULT_ERROR_RYINTERFACE_GETINTERFACENAME;
        RY_LOG_EVENT(kSite, kLogErr, L"TLGetInterfaceInfo returned not success (%d)", rc);
        return RESULT_SUCCESS;
    }
    IF_HANDLE rawHandle = nullptr;
    rc = TL().TLOpenInterface(m_hTL, interfaceId, &rawHandle);
    if (rc != GC_ERR_SUCCESS) {
        record.m_Result = RESULT_ERROR_RYINTERFACE_OPENINTERFACE;
        RY_LOG_EVENT(kSite, kLogErr, L"TLOpenInterface returned not success (%d)", rc);
        return RESULT_SUCCESS;
    }
    const ScopedInterfaceHandle interfaceHandle(rawHandle);
    TL().IFSetIgnoreSubnetDiscover(rawHandle, m_IgnoreSubnet ? 1 : 0);
    bool8_t changed = 0;
    rc = TL().IFUpdateDeviceList(rawHandle, &changed, m_DiscoveryTimeout);
    if (rc != GC_ERR_SUCCESS) {
        record.m_Result = RESULT_ERROR_RYINTERFACE_OPENINTERFACE;
        RY_LOG_EVENT(kSite, kLogErr, L"IFUpdateDeviceList returned not success (%d)", rc);
        return RESULT_SUCCESS;
    }
    return DiscoverCameras(rawHandle, record);
}

RESULT RyGigE::DiscoverCameras(TransportHandle interfaceHandle, RYINTERFACE_INFO& record) {
    RY_GIGE_SITE(Discovery);
    uint32_t count = 0;
    const GC_ERROR rc = TL().IFGetNumDevices(interfaceHandle, &count);
    if (rc != GC_ERR_SUCCESS) {
        record.m_Result = RESULT_ERROR_RYINTERFACE_GETNUMDEVICES;
        RY_LOG_EVENT(kSite, kLogErr, L"IFGetNumDevices returned not success (%d)", rc);
        return RESULT_SUCCESS;
    }
    for (uint32_t index = 0; index < count; ++index) {
        auto camera = std::make_unique<RYCAMERA_INFO>();
        camera->m_DeviceIndex = index;
        char version[128] = {};
        size_t sizes[5] = {sizeof(camera->m_ModelName), sizeof(camera->m_ManufacturerName),
                           sizeof(version), sizeof(camera->m_IPAddress),
                           sizeof(camera->m_MACAddress)};
        TL().TLGetDiscoveryInfo(interfaceHandle, index, camera->m_ModelName, &sizes[0],
                                camera->m_ManufacturerName, &sizes[1], version, &sizes[2],
                                camera->m_IPAddress, &sizes[3], camera->m_MACAddress, &sizes[4]);

        char deviceId[kDeviceIdCapacity] = {};
        size_t size = sizeof(deviceId);
        GC_ERROR rc = TL().IFGetDeviceID(interfaceHandle, index, deviceId, &size);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"IFGetDeviceID returned not success Ret[%ls]",
                         core::TransportCodeText(rc));
            return RESULT_ERROR_TLGETDEVICENAME;
        }
        char displayName[kDisplayNameCapacity] = {};
        INFO_DATATYPE type = 0;
        size = sizeof(displayName);
        rc = TL().IFGetDeviceInfo(interfaceHandle, deviceId, kDeviceDisplayName, &type, displayName,
                                  &size);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"IFGetDeviceInfo returned not success Ret[%ls]",
                         core::TransportCodeText(rc));
            return RESULT_ERROR_TLGETDEVICENAME;
        }
        // The identifier buffer is larger than the record's name; a longer identifier is cut.
        const size_t length = strnlen(deviceId, sizeof(camera->m_Name) - 1);
        std::memcpy(camera->m_Name, deviceId, length);
        camera->m_Name[length] = '\0';
        record.AddCameraInfo(camera.release());
    }
    return RESULT_SUCCESS;
}

RESULT RyGigE::SetForceIP(const unsigned char* mac, uint32_t ip, uint32_t subnet,
                          uint32_t gateway) {
    RY_GIGE_SITE(SetForceIP);
    return RY_GUARDED(kSite, [&] {
        if (mac == nullptr || ip == 0 || subnet == 0) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_INVALID_PARAMETER : pMac(0x%X) nIP(0x%X) nSubnet(0x%X)",
                         static_cast<unsigned int>(reinterpret_cast<uintptr_t>(mac)), ip, subnet);
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        for (const auto& record : m_InterfaceInfoList) {
            const std::string interfaceId = system::InterfaceIdFromName(record->m_Name);
            RyInterface adapter(m_hTL, m_FilterType);
            if (adapter.OpenInterface(interfaceId.c_str(), this) != RESULT_SUCCESS)
                continue;
            const GC_ERROR rc = TL().IFSetForceIP(adapter.GetInterfaceHandle(), mac, ip, subnet,
                                                  gateway, kForceIpTimeoutMs);
            adapter.CloseInterface();
            if (rc != GC_ERR_SUCCESS)
                return core::ResultFromTransportCode(rc);
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK

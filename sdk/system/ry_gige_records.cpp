// RyGigE: counting and describing what discovery found, and opening interfaces.
#include <cstring>
#include <memory>

#include "core/platform/text.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/interface_identifier.h"
#include "system/system_log.h"

namespace RYSDK {

using core::kLogErr;

namespace {

bool SameName(const char* recordName, const char* name) {
    return name != nullptr && std::strcmp(recordName, name) == 0;
}

}  // namespace

RESULT RyGigE::GetDiscoveryInfo(DISCOVERY_INFO& info) {
    unsigned int cameras = 0;
    GetNumCameras(&cameras);
    info.m_Discovered = m_Discovered;
    info.m_NumInterfaces = static_cast<uint32_t>(m_InterfaceInfoList.size());
    info.m_NumCameras = cameras;
    info.m_DiscoveryTimeout = m_DiscoveryTimeout;
    info.m_IgnoreSubnet = m_IgnoreSubnet ? 1 : 0;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetNumInterfaces(unsigned int* count) {
    RY_GIGE_SITE(GetNumInterfaces);
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_InterfaceInfoList.empty()) {
        RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_INVALID_PARAMETER : nTot(%d)", 0);
        return RESULT_ERROR;
    }
    *count = static_cast<unsigned int>(m_InterfaceInfoList.size());
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetNumCameras(unsigned int* count) {
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    uint64_t total = 0;
    for (const auto& record : m_InterfaceInfoList)
        total += record->m_CameraCount;
    if (static_cast<int32_t>(total) < 0)
        return RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER;
    *count = static_cast<unsigned int>(total);
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetNumCameras(unsigned int interfaceIndex, unsigned int* count) {
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *count = 0;
    for (const auto& record : m_InterfaceInfoList) {
        if (record->m_Index == interfaceIndex && record->m_CameraCount != 0) {
            *count = static_cast<unsigned int>(record->m_CameraCount);
            break;
        }
    }
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetNumCameras(const char* interfaceName, unsigned int* count) {
    if (count == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *count = 0;
    for (const auto& record : m_InterfaceInfoList) {
        if (SameName(record->m_Name, interfaceName) && record->m_CameraCount != 0) {
            *count = static_cast<unsigned int>(record->m_CameraCount);
            break;
        }
    }
    return RESULT_SUCCESS;
}

const RYCAMERA_INFO* RyGigE::FindCameraRecord(unsigned int globalIndex) const noexcept {
    unsigned int position = 0;
    for (const auto& record : m_InterfaceInfoList) {
        for (const auto& camera : record->m_CameraList) {
            if (position++ == globalIndex)
                return camera.get();
        }
    }
    return nullptr;
}

RYINTERFACE_INFO* RyGigE::FindInterfaceRecord(const char* name) noexcept {
    for (const auto& record : m_InterfaceInfoList) {
        if (SameName(record->m_Name, name))
            return record.get();
    }
    return nullptr;
}

RESULT RyGigE::GetCameraInfo(unsigned int index, RYCAMERA_INFO* info) {
    if (info == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    if (m_InterfaceInfoList.empty())
        return RESULT_ERROR_RYINTERFACE_NO_NIC;
    const RYCAMERA_INFO* camera = FindCameraRecord(index);
    if (camera == nullptr)
        return RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE;
    *info = *camera;
    return RESULT_SUCCESS;
}

RESULT RyGigE::GetCameraInfo(const char* name, RYCAMERA_INFO* info) {
    if (info == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    for (const auto& record : m_InterfaceInfoList) {
        for (const auto& camera : record->m_CameraList) {
            if (SameName(camera->m_Name, name)) {
                *info = *camera;
                return RESULT_SUCCESS;
            }
        }
    }
    return RESULT_ERROR;
}

namespace {

// Copies the flat fields and appends copies of the camera records the caller then owns.
void CopyInterfaceRecord(const RYINTERFACE_INFO& from, RYINTERFACE_INFO& to) {
    to.m_ErrorFlag = from.m_ErrorFlag;
    to.m_Result = from.m_Result;
    to.m_Index = from.m_Index;
    std::memcpy(to.m_Name, from.m_Name, sizeof(to.m_Name));
    for (const auto& camera : from.m_CameraList) {
        auto copy = std::make_unique<RYCAMERA_INFO>(*camera);
        to.AddCameraInfo(copy.release());
    }
}

}  // namespace

RESULT RyGigE::GetInterfaceInfo(unsigned int index, RYINTERFACE_INFO* info) {
    RY_GIGE_SITE(GetInterfaceInfo);
    return RY_GUARDED(kSite, [&] {
        if (info == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        if (index >= m_InterfaceInfoList.size())
            return RESULT_ERROR;
        auto it = m_InterfaceInfoList.begin();
        std::advance(it, index);
        CopyInterfaceRecord(**it, *info);
        return RESULT_SUCCESS;
    });
}

RESULT RyGigE::GetInterfaceInfo(const char* name, RYINTERFACE_INFO* info) {
    RY_GIGE_SITE(GetInterfaceInfo);
    return RY_GUARDED(kSite, [&] {
        if (info == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const RYINTERFACE_INFO* record = FindInterfaceRecord(name);
        if (record == nullptr)
            return RESULT_ERROR;
        CopyInterfaceRecord(*record, *info);
        return RESULT_SUCCESS;
    });
}

// Opens the interface of a record once; later calls hand out the same object. A failure
// marks the record; the callers say what failed in their own words.
RESULT RyGigE::OpenInterfaceOfRecord(RYINTERFACE_INFO& record, RyInterface** out) {
    const auto existing = m_Interfaces.find(record.m_Name);
    if (existing != m_Interfaces.end()) {
        *out = existing->second.get();
        return RESULT_SUCCESS;
    }
    auto adapter = std::make_shared<RyInterface>(m_hTL, m_FilterType);
    adapter->SetMultiCastAddress(m_MultiCastAddress);
    const std::string interfaceId = system::InterfaceIdFromName(record.m_Name);
    const RESULT result = adapter->OpenInterface(interfaceId.c_str(), this);
    if (result != RESULT_SUCCESS) {
        record.m_ErrorFlag = 1;
        record.m_Result = RESULT_ERROR_TLOPENINTERFACE;
        return result;
    }
    *out = adapter.get();
    m_Interfaces.emplace(record.m_Name, std::move(adapter));
    return RESULT_SUCCESS;
}

namespace {

RESULT ReportInterfaceOpen(const RYINTERFACE_INFO& record, RESULT result) {
    RY_GIGE_SITE(OpenInterface);
    if (result != RESULT_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"pRyInterface->OpenInterface : %ls - Ret[%ls (%d)]",
                     core::Widen(system::InterfaceIdFromName(record.m_Name)).c_str(),
                     core::ResultText(result), result);
    }
    return result;
}

}  // namespace

// Opening an interface needs the transport layer open and the network discovered.
RESULT RyGigE::PrepareInterfaceOpen() {
    RY_GIGE_SITE(OpenInterface);
    if (m_hTL == nullptr) {
        const RESULT opened = Open();
        if (opened != RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_INITIALIZATION : Open is failed Ret[%ls (%d)]",
                         core::ResultText(opened), opened);
            return RESULT_ERROR_RYGIGE_INITIALIZATION;
        }
    }
    if (m_Discovered == 0 && Discovery() != RESULT_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_DISCOVERY");
        return RESULT_ERROR_DISCOVERY;
    }
    return RESULT_SUCCESS;
}

RESULT RyGigE::OpenInterface(unsigned int index, RyInterface** out) {
    RY_GIGE_SITE(OpenInterface);
    return RY_GUARDED(kSite, [&] {
        if (out == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const RESULT prepared = PrepareInterfaceOpen();
        if (prepared != RESULT_SUCCESS)
            return prepared;
        const auto count = static_cast<unsigned int>(m_InterfaceInfoList.size());
        if (index >= count) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_INITIALIZATION : nIndex(%d) > numInterfaces(%d) - 1", index,
                         count);
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        auto it = m_InterfaceInfoList.begin();
        std::advance(it, index);
        return ReportInterfaceOpen(**it, OpenInterfaceOfRecord(**it, out));
    });
}

RESULT RyGigE::OpenInterface(const char* name, RyInterface** out) {
    RY_GIGE_SITE(OpenInterface);
    return RY_GUARDED(kSite, [&] {
        if (out == nullptr || name == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const RESULT prepared = PrepareInterfaceOpen();
        if (prepared != RESULT_SUCCESS)
            return prepared;
        RYINTERFACE_INFO* record = FindInterfaceRecord(name);
        if (record == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_CANNOT_FIND_INTERFACE : Name(%ls) can't find",
                         core::Widen(name).c_str());
            return RESULT_ERROR_CANNOT_FIND_INTERFACE;
        }
        return ReportInterfaceOpen(*record, OpenInterfaceOfRecord(*record, out));
    });
}

}  // namespace RYSDK

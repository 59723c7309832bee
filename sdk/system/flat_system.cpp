// Flat functions of the system object: the process-wide RyGigE and its settings.
#include <cstring>

#include "system/flat_forward.h"

using RYSDK::RyGigE;
using RYSDK::flat::HandOut;
using RYSDK::flat::OnSystem;
using RYSDK::flat::OpenCameraOf;

// A failing Open keeps the object as the process-wide one without handing it out, so every
// later call gives RESULT_ERROR_OPENED_ALREADY until CloseRyGigE. That is deliberate.
extern "C" RYSDK_API ::RESULT OpenRyGigE(RYGIGE_HANDLE* handle) {
    RY_FLAT_SITE(OpenRyGigE);
    return RY_GUARDED(kSite, [&] {
        if (handle == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        RyGigE* system = nullptr;
        if (!RYSDK::flat::CreateSystem(system))
            return RYSDK::RESULT_ERROR_OPENED_ALREADY;
        const RYSDK::RESULT result = system->Open();
        if (result == RYSDK::RESULT_SUCCESS)
            *handle = RYSDK::flat::ToHandle(system);
        return result;
    });
}

extern "C" RYSDK_API ::RESULT CloseRyGigE(RYGIGE_HANDLE* handle) {
    RY_FLAT_SITE(CloseRyGigE);
    return RY_GUARDED(kSite, [&] {
        if (handle == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        std::unique_ptr<RyGigE> system = RYSDK::flat::TakeSystem(*handle);
        if (system == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        system->Close();
        system.reset();
        *handle = nullptr;
        return RYSDK::RESULT_SUCCESS;
    });
}

namespace {

template <typename Plain>
void CopyName(Plain& plain, const char* name) noexcept {
    std::memcpy(plain.m_Name, name, sizeof(plain.m_Name));
    plain.m_Name[sizeof(plain.m_Name) - 1] = '\0';
}

}  // namespace

// The interface's own fields only: a C record cannot own the camera list.
extern "C" RYSDK_API ::RESULT RyDiscoveryInterfaceInfo(RYGIGE_HANDLE handle, uint32_t index,
                                                       RYINTERFACE_INFO* info) {
    RY_FLAT_SITE(RyDiscoveryInterfaceInfo);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        if (info == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        RYSDK::RYINTERFACE_INFO record;
        if (system.GetInterfaceInfo(index, &record) != RYSDK::RESULT_SUCCESS)
            return RYSDK::RESULT_ERROR_CANNOT_FIND_INTERFACE;
        info->m_ErrorFlag = record.m_ErrorFlag;
        info->m_Result = record.m_Result;
        info->m_Index = record.m_Index;
        CopyName(*info, record.m_Name);
        return RYSDK::RESULT_SUCCESS;
    });
}

extern "C" RYSDK_API ::RESULT RyDiscoveryCameraInfo(RYGIGE_HANDLE handle, uint32_t index,
                                                    RYCAMERA_INFO* info) {
    RY_FLAT_SITE(RyDiscoveryCameraInfo);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        if (info == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        // The record is written only when the camera is found.
        return system.GetCameraInfo(index, RYSDK::flat::As<RYSDK::RYCAMERA_INFO>(info)) ==
                       RYSDK::RESULT_SUCCESS
                   ? RYSDK::RESULT_SUCCESS
                   : RYSDK::RESULT_ERROR_CANNOT_FIND_INTERFACE;
    });
}

extern "C" RYSDK_API ::RESULT RyOpenCameraByIndex(RYGIGE_HANDLE handle, uint32_t index,
                                                  RYCAMERA_HANDLE* camera, uint32_t nNumBuffer,
                                                  uint32_t nWidth, uint32_t nHeight,
                                                  uint32_t nPacketSize, void* object,
                                                  pImageCallbackFn imageCallback,
                                                  pDisconnectCallbackFn disconnectCallback) {
    RY_FLAT_SITE(RyOpenCameraByIndex);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        return OpenCameraOf(system, index, camera, nNumBuffer, nWidth, nHeight, nPacketSize, object,
                            imageCallback, disconnectCallback);
    });
}

extern "C" RYSDK_API ::RESULT RyOpenCameraByName(RYGIGE_HANDLE handle, const char* name,
                                                 RYCAMERA_HANDLE* camera, uint32_t nNumBuffer,
                                                 uint32_t nWidth, uint32_t nHeight,
                                                 uint32_t nPacketSize, void* object,
                                                 pImageCallbackFn imageCallback,
                                                 pDisconnectCallbackFn disconnectCallback) {
    RY_FLAT_SITE(RyOpenCameraByName);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        return OpenCameraOf(system, name, camera, nNumBuffer, nWidth, nHeight, nPacketSize, object,
                            imageCallback, disconnectCallback);
    });
}

extern "C" RYSDK_API ::RESULT RyOpenInterfaceByIndex(RYGIGE_HANDLE handle, uint32_t index,
                                                     RYINTERFACE_HANDLE* adapter) {
    RY_FLAT_SITE(RyOpenInterfaceByIndex);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        return HandOut<RYSDK::RyInterface>(adapter, [&](RYSDK::RyInterface** opened) {
            return system.OpenInterface(index, opened);
        });
    });
}

extern "C" RYSDK_API ::RESULT RyOpenInterfaceByName(RYGIGE_HANDLE handle, const char* name,
                                                    RYINTERFACE_HANDLE* adapter) {
    RY_FLAT_SITE(RyOpenInterfaceByName);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        return HandOut<RYSDK::RyInterface>(adapter, [&](RYSDK::RyInterface** opened) {
            return system.OpenInterface(name, opened);
        });
    });
}

RY_FLAT_FORWARD(System, RySetIgnoreSubnet, (RYGIGE_HANDLE handle, int32_t ignore),
                SetIgnoreSubnet(ignore))

extern "C" RYSDK_API ::RESULT RyGetIgnoreSubnet(RYGIGE_HANDLE handle, int32_t* ignore) {
    RY_FLAT_SITE(RyGetIgnoreSubnet);
    return OnSystem(handle, kSite, [&](RyGigE& system) {
        return RYSDK::flat::ReadSwitch(ignore,
                                       [&](bool* value) { return system.GetIgnoreSubnet(*value); });
    });
}

RY_FLAT_FORWARD(System, RyDiscovery, (RYGIGE_HANDLE handle), Discovery())
RY_FLAT_FORWARD(System, RyGetNumInterfaces, (RYGIGE_HANDLE handle, uint32_t* count),
                GetNumInterfaces(count))
RY_FLAT_FORWARD(System, RyGetNumCameras, (RYGIGE_HANDLE handle, uint32_t* count),
                GetNumCameras(count))
RY_FLAT_FORWARD(System, RyGetNumCamerasByIndex,
                (RYGIGE_HANDLE handle, uint32_t interfaceIndex, uint32_t* count),
                GetNumCameras(interfaceIndex, count))
RY_FLAT_FORWARD(System, RyGetNumCamerasByName,
                (RYGIGE_HANDLE handle, const char* interfaceName, uint32_t* count),
                GetNumCameras(interfaceName, count))
RY_FLAT_FORWARD(System, RyForceIP,
                (RYGIGE_HANDLE handle, const uint8_t* mac, uint32_t ip, uint32_t subnet,
                 uint32_t gateway),
                SetForceIP(mac, ip, subnet, gateway))
RY_FLAT_FORWARD(System, RyUseMTUOptimize, (RYGIGE_HANDLE handle, int32_t use), UseMTUOptimize(use))
RY_FLAT_FORWARD(System, RySetMTUTimeout, (RYGIGE_HANDLE handle, uint32_t timeoutMs),
                SetMTUTimeout(timeoutMs))
RY_FLAT_FORWARD_OUT(System, RyGetMTUTimeout, (RYGIGE_HANDLE handle, uint32_t* timeoutMs), timeoutMs,
                    GetMTUTimeout(*timeoutMs))
RY_FLAT_FORWARD(System, RySetGVCPTimeout, (RYGIGE_HANDLE handle, uint32_t timeoutMs),
                SetGVCPTimeout(timeoutMs))
RY_FLAT_FORWARD_OUT(System, RyGetGVCPTimeout, (RYGIGE_HANDLE handle, uint32_t* timeoutMs),
                    timeoutMs, GetGVCPTimeout(*timeoutMs))
RY_FLAT_FORWARD(System, RySetMultiCastAddress, (RYGIGE_HANDLE handle, uint32_t address),
                SetMultiCastAddress(address))
RY_FLAT_FORWARD_OUT(System, RyGetMultiCastAddress, (RYGIGE_HANDLE handle, uint32_t* address),
                    address, GetMultiCastAddress(*address))
RY_FLAT_FORWARD(System, RySetDiscoveryTimeout, (RYGIGE_HANDLE handle, uint32_t timeoutMs),
                SetDiscoveryTimeout(timeoutMs))
RY_FLAT_FORWARD_OUT(System, RyGetDiscoveryTimeout, (RYGIGE_HANDLE handle, uint32_t* timeoutMs),
                    timeoutMs, GetDiscoveryTimeout(*timeoutMs))
RY_FLAT_FORWARD(System, RySetCCPPrivilege, (RYGIGE_HANDLE handle, CCP_PRIVILEGE privilege),
                SetCCPPrivilege(RYSDK::flat::Enum<RYSDK::CCP_PRIVILEGE>(privilege)))
RY_FLAT_FORWARD(System, RyUserLogging,
                (RYGIGE_HANDLE handle, const wchar_t* label, const wchar_t* file,
                 const wchar_t* function, uint32_t line, const wchar_t* message),
                UserLogging(label, file, function, line, message))

// RyInterface: the cameras opened through an adapter, kept by device identifier.
#include <cstring>
#include <string>

#include "camera/open_request.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/system_log.h"
#include "system/transport_queries.h"

namespace RYSDK {

using core::kLogErr;
using system::kDeviceIdCapacity;
using system::TL;

namespace {

// The device identifier at a position of the adapter's device list.
bool DeviceIdAt(TransportHandle adapter, uint32_t index, std::string& id) {
    char text[kDeviceIdCapacity] = {};
    size_t size = sizeof(text) - 1;
    if (TL().IFGetDeviceID(adapter, index, text, &size) != GC_ERR_SUCCESS)
        return false;
    id = text;
    return true;
}

bool AdapterListsDevice(TransportHandle adapter, const char* name) {
    uint32_t count = 0;
    if (TL().IFGetNumDevices(adapter, &count) != GC_ERR_SUCCESS)
        return false;
    std::string id;
    for (uint32_t index = 0; index < count; ++index) {
        if (DeviceIdAt(adapter, index, id) && id == name)
            return true;
    }
    return false;
}

}  // namespace

RyInterface::~RyInterface() {
    CloseAllCameras();
}

RESULT RyInterface::OpenCameraNamed(const std::string& name, RyCamera** out,
                                    const camera::OpenRequest& request) {
    auto camera = std::make_unique<RyCamera>(this, m_FilterType);
    if (m_pRyGigE != nullptr)
        camera->SetCCPPrivilege(m_pRyGigE->GetCCPPrivilege());
    const RESULT result = camera->OpenCamera(
        name.c_str(), request.numBuffer, request.width, request.height, request.packetSize,
        request.userPointer, request.imageCallback, request.disconnectCallback);
    if (result != RESULT_SUCCESS && result != RESULT_ERROR_RYCAMERA_GETXML) {
        // Not filed yet, so the close releases what the open reached without destroying;
        // the object goes with this scope.
        camera->CloseCamera();
        return result;
    }
    *out = camera.get();
    m_Cameras.emplace(name, std::move(camera));
    return result;
}

RESULT RyInterface::OpenCamera(unsigned int index, RyCamera** camera, uint32_t nNumBuffer,
                               uint32_t nWidth, uint32_t nHeight, uint32_t nPacketSize,
                               void* pUserPointer, pImageCallbackFn pImageCallbackFn,
                               pDisconnectCallbackFn pDisconnectCallbackFn) {
    RY_INTERFACE_SITE(OpenCamera);
    return RY_GUARDED(kSite, [&] {
        if (camera == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        if (m_hIF == nullptr)
            return RESULT_ERROR_IF_HANDLE;
        uint32_t count = 0;
        TL().IFGetNumDevices(m_hIF, &count);
        if (index >= count) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER : nCameraIndex(%u) >= "
                         L"unNumOfCameras(%u)",
                         index, count);
            return RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER;
        }
        std::string name;
        if (!DeviceIdAt(m_hIF, index, name)) {
            RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_TLGETDEVICENAME : nCameraIndex(%u)", index);
            return RESULT_ERROR_TLGETDEVICENAME;
        }
        return OpenCameraNamed(name, camera,
                               {nNumBuffer, nWidth, nHeight, nPacketSize, pUserPointer,
                                pImageCallbackFn, pDisconnectCallbackFn});
    });
}

RESULT RyInterface::OpenCamera(const char* name, RyCamera** camera, uint32_t nNumBuffer,
                               uint32_t nWidth, uint32_t nHeight, uint32_t nPacketSize,
                               void* pUserPointer, pImageCallbackFn pImageCallbackFn,
                               pDisconnectCallbackFn pDisconnectCallbackFn) {
    RY_INTERFACE_SITE(OpenCamera);
    return RY_GUARDED(kSite, [&] {
        if (camera == nullptr || name == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        if (m_hIF == nullptr)
            return RESULT_ERROR_IF_HANDLE;
        if (!AdapterListsDevice(m_hIF, name)) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST : Name(%ls) can't find",
                         core::Widen(name).c_str());
            return RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST;
        }
        return OpenCameraNamed(name, camera,
                               {nNumBuffer, nWidth, nHeight, nPacketSize, pUserPointer,
                                pImageCallbackFn, pDisconnectCallbackFn});
    });
}

RyCamera* RyInterface::FindCamera(const char* name) const noexcept {
    if (name == nullptr)
        return nullptr;
    const auto found = m_Cameras.find(name);
    return found == m_Cameras.end() ? nullptr : found->second.get();
}

bool RyInterface::HoldsCamera(const RyCamera* camera) const noexcept {
    for (const auto& [name, held] : m_Cameras) {
        if (held.get() == camera)
            return true;
    }
    return false;
}

void RyInterface::DestroyCamera(RyCamera* camera) noexcept {
    for (auto it = m_Cameras.begin(); it != m_Cameras.end(); ++it) {
        if (it->second.get() == camera) {
            // Taken out before it is destroyed, so the map never holds a dead camera.
            auto node = m_Cameras.extract(it);
            return;
        }
    }
}

// Each camera leaves the map before its close, so its close finds nothing to destroy and
// the node taken out destroys it afterwards.
void RyInterface::CloseAllCameras() noexcept {
    while (!m_Cameras.empty()) {
        auto node = m_Cameras.extract(m_Cameras.begin());
        node.mapped()->CloseCamera();
    }
}

RESULT RyInterface::RemoveCameraList() {
    CloseAllCameras();
    return RESULT_SUCCESS;
}

}  // namespace RYSDK

// RyGigE: opening a camera by global index, by name or by interface and index, and closing
// it through whichever interface holds it.
#include "camera/open_request.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/camera_selection.h"
#include "system/system_log.h"

namespace RYSDK {

using core::kLogErr;

// Hands the chosen camera to its interface. A camera whose description could not be loaded
// is handed out all the same, so the application can still reach it.
RESULT RyGigE::OpenSelectedCamera(RESULT selected, const system::CameraTarget& target,
                                  RyCamera** camera, const camera::OpenRequest& request) {
    RY_GIGE_SITE(OpenCamera);
    if (selected != RESULT_SUCCESS)
        return selected;
    if (camera == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    RyCamera* opened = nullptr;
    const RESULT result = target.adapter->OpenCamera(
        target.cameraName.c_str(), &opened, request.numBuffer, request.width, request.height,
        request.packetSize, request.userPointer, request.imageCallback, request.disconnectCallback);
    if (result == RESULT_SUCCESS || result == RESULT_ERROR_RYCAMERA_GETXML)
        *camera = opened;
    if (result != RESULT_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"OpenCamera returned not success. Ret[%ls (%d)]",
                     core::ResultText(result), result);
    }
    return result;
}

RESULT RyGigE::OpenCamera(unsigned int index, RyCamera** camera, uint32_t nNumBuffer,
                          uint32_t nWidth, uint32_t nHeight, uint32_t nPacketSize,
                          void* pUserPointer, pImageCallbackFn pImageCallbackFn,
                          pDisconnectCallbackFn pDisconnectCallbackFn) {
    system::CameraTarget target;
    const RESULT selected = system::CameraSelection::ByIndex(*this, index, target);
    return OpenSelectedCamera(selected, target, camera,
                              {nNumBuffer, nWidth, nHeight, nPacketSize, pUserPointer,
                               pImageCallbackFn, pDisconnectCallbackFn});
}

RESULT RyGigE::OpenCamera(const char* name, RyCamera** camera, uint32_t nNumBuffer, uint32_t nWidth,
                          uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                          pImageCallbackFn pImageCallbackFn,
                          pDisconnectCallbackFn pDisconnectCallbackFn) {
    system::CameraTarget target;
    const RESULT selected = system::CameraSelection::ByName(*this, name, target);
    return OpenSelectedCamera(selected, target, camera,
                              {nNumBuffer, nWidth, nHeight, nPacketSize, pUserPointer,
                               pImageCallbackFn, pDisconnectCallbackFn});
}

RESULT RyGigE::OpenCamera(const char* interfaceName, unsigned int index, RyCamera** camera,
                          uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                          uint32_t nPacketSize, void* pUserPointer,
                          pImageCallbackFn pImageCallbackFn,
                          pDisconnectCallbackFn pDisconnectCallbackFn) {
    system::CameraTarget target;
    const RESULT selected =
        system::CameraSelection::ByInterface(*this, interfaceName, index, target);
    return OpenSelectedCamera(selected, target, camera,
                              {nNumBuffer, nWidth, nHeight, nPacketSize, pUserPointer,
                               pImageCallbackFn, pDisconnectCallbackFn});
}

RESULT RyGigE::CloseCamera(RyCamera* camera) {
    RY_GIGE_SITE(CloseCamera);
    if (camera == nullptr) {
        RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_INVALID_PARAMETER : pCamera is NULL");
        return RESULT_ERROR_INVALID_PARAMETER;
    }
    for (const auto& [name, adapter] : m_Interfaces) {
        if (adapter->HoldsCamera(camera))
            return camera->CloseCamera();
    }
    RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_INVALID_PARAMETER : pCamera(%p) is unknown",
                 static_cast<void*>(camera));
    return RESULT_ERROR_INVALID_PARAMETER;
}

}  // namespace RYSDK

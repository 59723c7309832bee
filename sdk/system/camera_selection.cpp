#include "system/camera_selection.h"

#include <cstring>

#include "core/platform/text.h"
#include "rysdk/RyGigE.h"
#include "rysdk/RyInterface.h"
#include "system/interface_identifier.h"
#include "system/system_log.h"

namespace RYSDK::system {

using core::kLogErr;

namespace {

RY_GIGE_SITE(OpenCamera);

struct Preparation {
    RESULT result = RESULT_SUCCESS;
    bool openFailed = false;  // otherwise discovery failed
};

// The by-index and by-interface forms report a failed preparation alike.
RESULT ReportIndexFormPreparation(const Preparation& prepared, unsigned int index) {
    if (prepared.result == RESULT_SUCCESS)
        return RESULT_SUCCESS;
    if (prepared.openFailed) {
        RY_LOG_EVENT(kSite, kLogErr, L"Open returned not success. CameraIndex(%d) Ret[%ls (%d)]",
                     index, core::ResultText(prepared.result), prepared.result);
    } else {
        RY_LOG_EVENT(kSite, kLogErr, L"Discovery returned not success. Ret[%ls (%d)]",
                     core::ResultText(prepared.result), prepared.result);
    }
    return prepared.result;
}

struct ChosenCamera {
    RYINTERFACE_INFO* record = nullptr;
    const RYCAMERA_INFO* camera = nullptr;
};

// The total the index forms check against: every camera of every interface.
RESULT CheckIndexAgainstTotal(RyGigE& gige, unsigned int index, bool fullStop) {
    unsigned int total = 0;
    const RESULT counted = gige.GetNumCameras(&total);
    if (counted != RESULT_SUCCESS) {
        RY_LOG_EVENT(kSite, kLogErr, L"GetNumCameras returned not success. Ret[%ls (%d)]",
                     core::ResultText(counted), counted);
    }
    if (total == 0) {
        RY_LOG_EVENT(kSite, kLogErr,
                     fullStop ? L"RESULT_ERROR_NO_CAMERAS : unNumOfCamera is zero."
                              : L"RESULT_ERROR_NO_CAMERAS");
        return RESULT_ERROR_NO_CAMERAS;
    }
    if (index > total - 1) {
        RY_LOG_EVENT(kSite, kLogErr,
                     fullStop ? L"RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER : nCameraIndex(%d) > "
                                L"(unNumOfCameras(%d) - 1)."
                              : L"RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER : nCameraIndex(%d) > "
                                L"(unNumOfCameras(%d) - 1)",
                     index, total);
        return RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER;
    }
    return RESULT_SUCCESS;
}

}  // namespace

// Friends of RyGigE reach its records and interfaces through these.
struct CameraSelectionAccess {
    // The transport layer opened and the network discovered, as a camera open needs them.
    static Preparation Prepare(RyGigE& gige) {
        if (gige.m_hTL == nullptr) {
            const RESULT opened = gige.Open();
            if (opened != RESULT_SUCCESS)
                return {opened, true};
        }
        if (gige.m_Discovered == 0)
            return {gige.Discovery(), false};
        return {RESULT_SUCCESS, false};
    }

    static ChosenCamera AtGlobalIndex(RyGigE& gige, unsigned int index) {
        unsigned int position = 0;
        for (const auto& record : gige.m_InterfaceInfoList) {
            if (record->m_CameraCount == 0)
                continue;
            for (const auto& camera : record->m_CameraList) {
                if (position++ == index)
                    return {record.get(), camera.get()};
            }
        }
        return {};
    }

    static ChosenCamera WithName(RyGigE& gige, const char* name) {
        for (const auto& record : gige.m_InterfaceInfoList) {
            for (const auto& camera : record->m_CameraList) {
                if (std::strcmp(camera->m_Name, name) == 0)
                    return {record.get(), camera.get()};
            }
        }
        return {};
    }

    static ChosenCamera OnInterface(RyGigE& gige, const char* interfaceName, unsigned int index) {
        RYINTERFACE_INFO* record = gige.FindInterfaceRecord(interfaceName);
        if (record == nullptr)
            return {};
        const RYCAMERA_INFO* camera = record->GetCameraInfo(index);
        return camera == nullptr ? ChosenCamera{} : ChosenCamera{record, camera};
    }

    static RESULT OpenAdapter(RyGigE& gige, const ChosenCamera& chosen, CameraTarget& target) {
        RESULT opened = gige.OpenInterfaceOfRecord(*chosen.record, &target.adapter);
        if (opened == RESULT_SUCCESS)
            target.cameraName = chosen.camera->m_Name;
        return opened;
    }
};

RESULT CameraSelection::ByIndex(RyGigE& gige, unsigned int index, CameraTarget& target) {
    return RY_GUARDED(kSite, [&] {
        RESULT result = ReportIndexFormPreparation(CameraSelectionAccess::Prepare(gige), index);
        if (result != RESULT_SUCCESS)
            return result;
        result = CheckIndexAgainstTotal(gige, index, true);
        if (result != RESULT_SUCCESS)
            return result;
        const ChosenCamera chosen = CameraSelectionAccess::AtGlobalIndex(gige, index);
        if (chosen.camera == nullptr)
            return RESULT_ERROR;
        if (CameraSelectionAccess::OpenAdapter(gige, chosen, target) != RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_TLOPENINTERFACE : OpenInterface returned not success. "
                         L"InterfaceID(%ls)",
                         core::Widen(InterfaceIdFromName(chosen.record->m_Name)).c_str());
            return RESULT_ERROR_TLOPENINTERFACE;
        }
        return RESULT_SUCCESS;
    });
}

RESULT CameraSelection::ByName(RyGigE& gige, const char* name, CameraTarget& target) {
    return RY_GUARDED(kSite, [&] {
        if (name == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        const Preparation prepared = CameraSelectionAccess::Prepare(gige);
        if (prepared.result != RESULT_SUCCESS) {
            if (prepared.openFailed) {
                RY_LOG_EVENT(kSite, kLogErr, L"Open returned not success(%d)", prepared.result);
            } else {
                RY_LOG_EVENT(kSite, kLogErr, L"Discovery ret[%ls (%d)]",
                             core::ResultText(prepared.result), prepared.result);
            }
            return prepared.result;
        }
        const ChosenCamera chosen = CameraSelectionAccess::WithName(gige, name);
        if (chosen.camera == nullptr) {
            RY_LOG_EVENT(kSite, kLogErr,
                         L"RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST : Name(%ls) can't find",
                         core::Widen(name).c_str());
            return RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST;
        }
        if (CameraSelectionAccess::OpenAdapter(gige, chosen, target) != RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"OpenInterface retuned not success. ID(%ls)",
                         core::Widen(InterfaceIdFromName(chosen.record->m_Name)).c_str());
            return RESULT_ERROR_TLOPENINTERFACE;
        }
        return RESULT_SUCCESS;
    });
}

RESULT CameraSelection::ByInterface(RyGigE& gige, const char* interfaceName, unsigned int index,
                                    CameraTarget& target) {
    return RY_GUARDED(kSite, [&] {
        if (interfaceName == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        RESULT result = ReportIndexFormPreparation(CameraSelectionAccess::Prepare(gige), index);
        if (result != RESULT_SUCCESS)
            return result;
        result = CheckIndexAgainstTotal(gige, index, false);
        if (result != RESULT_SUCCESS)
            return result;
        const ChosenCamera chosen = CameraSelectionAccess::OnInterface(gige, interfaceName, index);
        if (chosen.camera == nullptr)
            return RESULT_ERROR;
        const RESULT opened = CameraSelectionAccess::OpenAdapter(gige, chosen, target);
        if (opened != RESULT_SUCCESS) {
            RY_LOG_EVENT(kSite, kLogErr, L"RESULT_ERROR_TLOPENINTERFACE : Ret[%ls (%d)]",
                         core::ResultText(opened), opened);
            return RESULT_ERROR_TLOPENINTERFACE;
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK::system

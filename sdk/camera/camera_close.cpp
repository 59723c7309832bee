// RyCamera::CloseCamera: threads first (each with a bounded wait), then the stream, the
// buffers, the device and the node map; every transport failure is remembered and closing
// goes on, so the last failure is what the caller sees.
#include <chrono>

#include "acquisition/acquisition_threads.h"
#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "camera/worker_stop.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyInterface.h"

namespace RYSDK::camera {

using core::kLogDebug;

namespace {

// The older register-driven generation is told to stop streaming through this register.
constexpr uint64_t kLegacyAcquisitionStopRegister = 0x00088138;
constexpr std::chrono::milliseconds kConnectionThreadWait{2000};
constexpr std::chrono::milliseconds kGeneralEventThreadWait{500};

}  // namespace

struct CloseSteps {
    RyCamera& camera;
    CameraShared& shared;
    const core::LogSite& site;
    RESULT result = RESULT_SUCCESS;

    void Remember(GC_ERROR rc) {
        if (rc != GC_ERR_SUCCESS)
            result = core::ResultFromTransportCode(rc);
    }

    void StopLegacyStream() {
        if (camera.m_StreamMode != 1 || camera.m_PlainDevice != 0 || shared.device == nullptr)
            return;
        const uint32_t zero = 0;
        size_t size = sizeof(zero);
        if (TL().GCWritePort(shared.device, kLegacyAcquisitionStopRegister, &zero, &size) !=
            GC_ERR_SUCCESS) {
            result = RESULT_ERROR;
        }
    }

    void StopThreads() {
        acquisition::StopAcquisitionThreads(shared, acquisition::kCloseWaits, site);
        acquisition::ReleaseRetiredThreads(shared, acquisition::kCloseWaits.grab);
        ThreadSignals& signals = *shared.signals;
        signals.stop.Set();
        // The exit request goes out before the event is unregistered, so the woken monitor
        // leaves instead of waiting again.
        signals.exitRequest.store(1);
        if (shared.connectionThread.Attached()) {
            TL().GCUnregisterEvent(shared.deviceErrorEvent, EVENT_ERROR);
            if (!StopWorker(shared.connectionThread, kConnectionThreadWait))
                RY_LOG_EVENT(site, kLogDebug, L"Thread didn't exit : m_pThrDisconnect");
        }
        shared.deviceErrorEvent = nullptr;
        if (shared.generalEventThread.Attached() &&
            !StopWorker(shared.generalEventThread, kGeneralEventThreadWait)) {
            RY_LOG_EVENT(site, kLogDebug, L"Thread didn't exit : m_pThrGeneralEvent");
        }
    }

    void StopStream() {
        if (camera.m_StreamMode != 1 || shared.stream == nullptr)
            return;
        Remember(TL().DSStopAcquisition(shared.stream, ACQ_STOP_FLAGS_KILL));
        if (shared.newBufferEventRegistered && shared.newBufferEvent != nullptr) {
            Remember(TL().EventFlush(shared.newBufferEvent));
            Remember(TL().GCUnregisterEvent(shared.newBufferEvent, EVENT_NEW_BUFFER));
            shared.newBufferEvent = nullptr;
            shared.newBufferEventRegistered = false;
        }
    }

    void ReleaseDevice() {
        const RESULT deleted = camera.DeleteBuffer();
        if (deleted != RESULT_SUCCESS)
            result = deleted;
        if (shared.stream != nullptr)
            Remember(TL().DSClose(shared.stream));
        if (shared.device != nullptr) {
            if (camera.m_Privilege != CCP_PRIVILEGE_MONITOR)
                Remember(TL().CloseCCP(shared.device));
            Remember(TL().DevClose(shared.device));
        }
        shared.stream = nullptr;
        shared.device = nullptr;
        shared.port->SetPortHandle(nullptr);
        shared.serial.SetCamHandle(nullptr);
        shared.nodeMap.reset();
        camera.m_Opened = 0;
    }

    RESULT Run() {
        RY_LOG_EVENT(site, kLogDebug, L"CloseCamera - Start");
        StopLegacyStream();
        StopThreads();
        StopStream();
        ReleaseDevice();
        return result;
    }
};

}  // namespace RYSDK::camera

namespace RYSDK {

RESULT RyCamera::CloseCamera() {
    RY_CAMERA_SITE(CloseCamera);
    RESULT result = RESULT_SUCCESS;
    camera::CloseSteps steps{*this, *m_Shared, kSite};
    const RESULT guarded = RY_GUARDED(kSite, [&] { return steps.Run(); });
    // An exception ends the close with the result reached so far.
    result = guarded == RESULT_ERROR_EXCEPTION ? steps.result : guarded;
    // The interface destroys this object: nothing of it may be touched after this line.
    if (m_pRyInterface != nullptr)
        m_pRyInterface->DestroyCamera(this);
    return result;
}

}  // namespace RYSDK

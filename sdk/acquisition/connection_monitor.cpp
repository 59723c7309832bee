#include "acquisition/connection_monitor.h"

#include <chrono>

#include "camera/camera_log.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::acquisition {

using camera::TL;

namespace {

constexpr uint64_t kErrorEventWaitMs = 1000;
constexpr uint32_t kUnreadable = 0xFFFFFFFF;

struct MonitorContext {
    std::shared_ptr<camera::ThreadSignals> signals;
    TransportHandle device;
    TransportHandle errorEvent;
    pDisconnectCallbackFn callback;
    OBJECT_INFO* object;
};

// True once the transport layer reports the link lost; false when the wait ended for any
// other reason (time-out, a kill, an event that still says connected).
bool WaitForLoss(const MonitorContext& context) {
    RY_DEVICE_ERROR_DATA data{};
    size_t size = sizeof(data);
    const auto began = std::chrono::steady_clock::now();
    const GC_ERROR rc = TL().EventGetData(context.errorEvent, &data, &size, kErrorEventWaitMs);
    if (rc == GC_ERR_SUCCESS)
        return data.connected == 0;
    // An event that can no longer be waited on answers at once; keep the usual pace
    // instead of spinning until the camera's close asks the thread to leave.
    if (rc != GC_ERR_TIMEOUT) {
        const auto waited = std::chrono::steady_clock::now() - began;
        context.signals->stop.WaitFor(
            std::chrono::milliseconds(kErrorEventWaitMs) -
            std::chrono::duration_cast<std::chrono::milliseconds>(waited));
    }
    return false;
}

void Report(const MonitorContext& context, const core::LogSite& site) {
    RY_LOG_EVENT(site, core::kLogDebug, L"Disconnected");
    DISCONNECT_INFO info{kUnreadable, kUnreadable};
    uint32_t timeout = 0;
    if (TL().DevGetHeartBeatTimeout(context.device, &timeout) == GC_ERR_SUCCESS)
        info.heartBeatTimeout = timeout;
    int32_t count = 0;
    if (TL().DevGetHeartBeatTimeoutCheckCount(context.device, &count) == GC_ERR_SUCCESS)
        info.heartBeatTimeoutTryCount = static_cast<uint32_t>(count);
    if (context.callback != nullptr)
        context.callback(context.object, info);
}

void ErrorCheckThread(const MonitorContext& context) {
    RY_CAMERA_SITE(ErrorCheckThread);
    RY_GUARDED(kSite, [&] {
        while (context.signals->exitRequest.load() == 0) {
            if (WaitForLoss(context)) {
                Report(context, kSite);
                break;
            }
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace

void StartConnectionMonitor(camera::CameraShared& shared) {
    MonitorContext context{shared.signals, shared.device, shared.deviceErrorEvent,
                           shared.disconnectCallback,
                           static_cast<OBJECT_INFO*>(shared.userPointer)};
    shared.connectionThread.Start([context] { ErrorCheckThread(context); });
}

}  // namespace RYSDK::acquisition

namespace RYSDK {

RESULT RyCamera::SetHeartBeatTimeoutTryCount(int count) {
    const GC_ERROR rc = camera::TL().DevSetHeartBeatTimeoutCheckCount(m_Shared->device, count);
    if (rc == GC_ERR_ERROR)
        return RESULT_ERROR;
    return core::ResultFromTransportCode(rc);
}

RESULT RyCamera::GetHeartBeatTimeoutTryCount(int& count) {
    int32_t value = 0;
    const GC_ERROR rc = camera::TL().DevGetHeartBeatTimeoutCheckCount(m_Shared->device, &value);
    if (rc == GC_ERR_SUCCESS)
        count = value;
    return core::ResultFromTransportCode(rc);
}

}  // namespace RYSDK

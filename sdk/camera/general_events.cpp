#include "camera/general_events.h"

#include <chrono>

#include "camera/camera_log.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::camera {

namespace {

constexpr std::chrono::milliseconds kStatusPollPeriod{4000};

void GeneralEventCheckThread(const std::shared_ptr<ThreadSignals>& signals,
                             const std::shared_ptr<DeviceNodeMap>& nodeMap) {
    RY_CAMERA_SITE(GeneralEventCheckThread);
    RY_GUARDED(kSite, [&] {
        while (signals->exitRequest.load() == 0) {
            auto* status = dynamic_cast<RyGenApi::IInteger*>(nodeMap->map._GetNode("ResultAll"));
            if (status != nullptr) {
                const auto word = static_cast<uint32_t>(status->GetValue());
                ExecuteEventCallback(static_cast<int32_t>(~word),
                                     signals->generalEventCallback.load());
            }
            signals->stop.WaitFor(kStatusPollPeriod);
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace

void ExecuteEventCallback(int32_t flags, pGeneralEventCallbackFn callback) {
    if (flags <= 0 || callback == nullptr)
        return;
    static constexpr EventType kCodes[] = {EVENT_TYPE_STATUS_BIT0, EVENT_TYPE_STATUS_BIT1,
                                           EVENT_TYPE_STATUS_BIT2, EVENT_TYPE_STATUS_BIT3};
    for (int bit = 0; bit < 4; ++bit) {
        if ((flags & (1 << bit)) != 0)
            callback(kCodes[bit]);
    }
}

void StartGeneralEventThread(CameraShared& shared) {
    std::shared_ptr<ThreadSignals> signals = shared.signals;
    std::shared_ptr<DeviceNodeMap> nodeMap = shared.nodeMap;
    shared.generalEventThread.Start(
        [signals, nodeMap] { GeneralEventCheckThread(signals, nodeMap); });
}

}  // namespace RYSDK::camera

namespace RYSDK {

RESULT RyCamera::SetGeneralEventCallback(pGeneralEventCallbackFn callback) {
    if (callback == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    m_Shared->signals->generalEventCallback.store(callback);
    return RESULT_SUCCESS;
}

int RyCamera::IsValidEventType(uint32_t type) {
    return (type & 0x5u) != 0 ? 1 : 0;
}

}  // namespace RYSDK

// Starting and stopping acquisition: the camera is commanded through its features, or
// through fixed registers on the older register-driven generation, and the grab thread (with
// the callback thread, in independent-callback mode) is started or stopped.
#include <arpa/inet.h>

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <utility>

#include "acquisition/acquisition_threads.h"
#include "acquisition/grab_thread.h"
#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using camera::TL;
using core::kLogDebug;
using core::kLogErr;

namespace {

// Registers of the older generation; values are written big-endian.
constexpr uint64_t kLegacyModeRegister = 0x88130;   // 1 continuous, 2 multi-frame
constexpr uint64_t kLegacyStartRegister = 0x88134;  // 1 starts
constexpr uint64_t kLegacyStopRegister = 0x88138;   // 0 stops
constexpr uint64_t kLegacyFrameCountRegister = 0x8815C;
constexpr uint32_t kLegacyContinuous = 1;
constexpr uint32_t kLegacyMultiFrame = 2;
constexpr unsigned int kShortestTimeoutMs = 1000;
constexpr uint32_t kWaitObject0 = 0;
constexpr uint32_t kWaitTimeout = 0x102;
constexpr uint32_t kWaitFailed = 0xFFFFFFFF;

GC_ERROR WriteLegacyRegister(TransportHandle device, uint64_t address, uint32_t value) {
    const uint32_t bigEndian = htonl(value);
    size_t size = sizeof(bigEndian);
    return TL().GCWritePort(device, address, &bigEndian, &size);
}

// Writes the registers in order; the first failure is logged and ends the sequence.
RESULT WriteLegacySequence(TransportHandle device, const core::LogSite& site,
                           std::initializer_list<std::pair<uint64_t, uint32_t>> writes) {
    for (const auto& [address, value] : writes) {
        if (WriteLegacyRegister(device, address, value) != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(site, kLogErr, L"eRet[%ls (%d)] is not success",
                         L"ERROR : Default error code returned", 1);
            return RESULT_ERROR;
        }
    }
    return RESULT_SUCCESS;
}

// Frames completed since the last acquisition ended are dropped, and frames the camera
// sends from now on go into buffers before the grab thread runs. Under the queue manager the
// application holds buffers of its own, which stay where they are.
void BeginDelivery(const camera::CameraShared& shared) {
    if (shared.stream == nullptr)
        return;
    if (shared.queueManager == 0)
        TL().DSFlushQueue(shared.stream, ACQ_QUEUE_ALL_TO_INPUT);
    TL().DSStartBufferGrabbing(shared.stream);
}

bool Executable(RyGenApi::ICommand* command) {
    return command != nullptr && RyGenApi::IsWritable(command->GetAccessMode());
}

RESULT StartContinuousByFeatures(camera::CameraShared& shared, bool monitorMode,
                                 const core::LogSite& site) {
    RY_LOG_EVENT(site, kLogDebug, L"New GigE Model");
    const camera::FeatureAccess access(shared, site);
    if (access.CheckNodeMap() != RESULT_SUCCESS)
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    auto* mode = access.As<RyGenApi::IEnumeration>("AcquisitionMode");
    if (mode == nullptr) {
        RY_LOG_EVENT(site, kLogErr, L"_GetNode(\"AcquisitionMode\") is NULL");
        return RESULT_ERROR_XML_NOT_EXIST_NODE;
    }
    RyGenApi::IEnumEntry* continuous = mode->GetEntryByName("Continuous");
    if (continuous == nullptr)
        RY_LOG_EVENT(site, kLogErr, L"GetEntryByName(\"Continuous\") is NULL");
    else
        mode->SetIntValue(continuous->GetValue(), true);
    if (monitorMode) {
        RY_LOG_EVENT(site, kLogDebug, L"_bMonitorMode is TRUE");
        return RESULT_SUCCESS;
    }
    auto* start = access.As<RyGenApi::ICommand>("AcquisitionStart");
    if (Executable(start))
        start->Execute(true);
    return RESULT_SUCCESS;
}

RESULT SnapByRegisters(camera::CameraShared& shared, unsigned int frames, uint32_t timeoutMs,
                       const core::LogSite& site) {
    RY_LOG_EVENT(site, kLogDebug, L"Old GigE Model");
    if (WriteLegacySequence(shared.device, site, {{kLegacyStopRegister, 0}}) != RESULT_SUCCESS)
        return RESULT_ERROR;
    shared.framesToGrab = frames;
    shared.acquisition->grabbing.store(1);
    acquisition::StartAcquisitionThreads(shared, timeoutMs, site);
    return WriteLegacySequence(shared.device, site,
                               {{kLegacyModeRegister, kLegacyMultiFrame},
                                {kLegacyFrameCountRegister, frames},
                                {kLegacyStartRegister, 1}});
}

}  // namespace

RESULT RyCamera::Grab() {
    RY_CAMERA_SITE(Grab);
    return RY_GUARDED(kSite, [&] {
        camera::CameraShared& shared = *m_Shared;
        BeginDelivery(shared);
        if (m_PlainDevice == 0) {
            RY_LOG_EVENT(kSite, kLogDebug, L"Old GigE Model");
            const RESULT result = WriteLegacySequence(shared.device, kSite,
                                                      {{kLegacyStopRegister, 0},
                                                       {kLegacyModeRegister, kLegacyContinuous},
                                                       {kLegacyStartRegister, 1}});
            if (result != RESULT_SUCCESS)
                return result;
            shared.framesToGrab = acquisition::kContinuousPasses;
        } else {
            const RESULT result = StartContinuousByFeatures(shared, m_MonitorMode != 0, kSite);
            if (result != RESULT_SUCCESS)
                return result;
        }
        shared.acquisition->grabbing.store(1);
        if (m_StreamMode == 1)
            acquisition::StartAcquisitionThreads(shared, m_AcquisitionTimeout, kSite);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::Snap(unsigned int frames) {
    RY_CAMERA_SITE(Snap);
    return RY_GUARDED(kSite, [&] {
        camera::CameraShared& shared = *m_Shared;
        BeginDelivery(shared);
        if (m_PlainDevice == 0)
            return SnapByRegisters(shared, frames, m_AcquisitionTimeout, kSite);
        RY_LOG_EVENT(kSite, kLogDebug, L"New GigE Model");
        const camera::FeatureAccess access(shared, kSite);
        if (access.CheckNodeMap() != RESULT_SUCCESS)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        auto* start = access.As<RyGenApi::ICommand>("AcquisitionStart");
        if (!Executable(start))
            return RESULT_SUCCESS;
        if (auto* mode = access.As<RyGenApi::IEnumeration>("AcquisitionMode"); mode != nullptr) {
            RyGenApi::IEnumEntry* multi = mode->GetEntryByName("MultiFrame");
            if (multi == nullptr)
                RY_LOG_EVENT(kSite, kLogErr, L"GetEntryByName(\"MultiFrame\"); is invalid");
            else
                mode->SetIntValue(multi->GetValue(), true);
        }
        if (access.CheckExists("AcquisitionFrameCount", L"_GetNode(\"%ls\") is invalid") !=
            RESULT_SUCCESS)
            return RESULT_ERROR_XML_NOT_EXIST_NODE;
        if (auto* count = access.As<RyGenApi::IInteger>("AcquisitionFrameCount"); count != nullptr)
            count->SetValue(std::clamp<int64_t>(frames, count->GetMin(), count->GetMax()), true);
        else
            RY_LOG_EVENT(kSite, kLogDebug, L"GenApi::IInteger* pInteger is invalid");
        start->Execute(true);
        shared.acquisition->grabbing.store(1);
        acquisition::StartAcquisitionThreads(shared, m_AcquisitionTimeout, kSite);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::Abort() {
    RY_CAMERA_SITE(Abort);
    return RY_GUARDED(kSite, [&] {
        if (m_StreamMode == 2)
            return AcquisitionStop();
        camera::CameraShared& shared = *m_Shared;
        if (shared.stream != nullptr)
            TL().DSStopBufferGrabbing(shared.stream);
        if (m_PlainDevice != 0) {
            RY_LOG_EVENT(kSite, kLogDebug, L"New GigE Model");
            AcquisitionStop();
        } else {
            RY_LOG_EVENT(kSite, kLogDebug, L"Old GigE Model");
            const GC_ERROR rc = WriteLegacyRegister(shared.device, kLegacyStopRegister, 0);
            if (rc != GC_ERR_SUCCESS)
                return core::ResultFromTransportCode(rc);
        }
        acquisition::StopAcquisitionThreads(shared, acquisition::kAbortWaits, kSite);
        if (shared.stream != nullptr)
            TL().DSRecoverQueuedBuffer(shared.stream);
        if (shared.newBufferEvent != nullptr)
            TL().EventFlush(shared.newBufferEvent);
        // Eight flushes, as applications of the older generation have always seen.
        for (int flush = 0; flush < 8; ++flush) {
            if (shared.stream != nullptr)
                TL().DSFlushQueue(shared.stream, ACQ_QUEUE_ALL_TO_INPUT);
        }
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::AcquisitionStop() {
    return acquisition::ExecuteAcquisitionStop(m_Shared->nodeMap.get());
}

RESULT RyCamera::GetGrabCondition(int& grabbing) {
    grabbing = m_Shared->acquisition->grabbing.load();
    return RESULT_SUCCESS;
}

RESULT RyCamera::UseIndependentCallback(int on) {
    m_Shared->independentCallback = on;
    return RESULT_SUCCESS;
}

RESULT RyCamera::UseQueueManager(int on) {
    m_Shared->queueManager = on;
    return RESULT_SUCCESS;
}

RESULT RyCamera::AcquisitionModeOpt(int on) {
    m_Shared->continuousHonoursFrameCount = on;
    return RESULT_SUCCESS;
}

RESULT RyCamera::SetAcquisitionTimeOut(unsigned int ms) {
    if (!m_Shared->nodeMap)
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    if (ms != 0 && ms < kShortestTimeoutMs)
        return RESULT_ERROR_INVALID_PARAMETER;
    m_AcquisitionTimeout = ms;
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetAcquisitionTimeOut(unsigned int* ms) {
    if (!m_Shared->nodeMap)
        return RESULT_ERROR;
    if (ms == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    *ms = m_AcquisitionTimeout;
    return RESULT_SUCCESS;
}

uint32_t RyCamera::WaitGrabThread(unsigned int ms) {
    const auto& thread = m_Shared->grabThread;
    if (!thread || !thread->Attached())
        return kWaitFailed;
    return thread->WaitFinished(std::chrono::milliseconds(ms)) ? kWaitObject0 : kWaitTimeout;
}

}  // namespace RYSDK

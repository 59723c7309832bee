#include "acquisition/acquisition_threads.h"

#include "acquisition/grab_thread.h"
#include "camera/camera_log.h"
#include "camera/worker_stop.h"

namespace RYSDK::acquisition {

using camera::TL;
using core::kLogDebug;

namespace {

// How long a start waits for a thread that an Abort left running.
constexpr std::chrono::milliseconds kRetiredThreadWait{2000};

GrabSession MakeSession(camera::CameraShared& shared, uint32_t timeoutMs) {
    GrabSession session;
    session.state = shared.acquisition;
    session.nodeMap = shared.nodeMap;
    session.signals = shared.signals;
    session.stream = shared.stream;
    session.newBufferEvent = shared.newBufferEvent;
    session.imageCallback = shared.imageCallback;
    session.userObject = static_cast<OBJECT_INFO*>(shared.userPointer);
    session.copyBuffer = shared.copyBuffer;
    session.timeoutMs = timeoutMs;
    session.independentCallback = shared.independentCallback != 0;
    session.queueManager = shared.queueManager != 0;
    session.continuousHonoursFrameCount = shared.continuousHonoursFrameCount != 0;
    session.framesToGrab = shared.framesToGrab;
    session.sessionId = shared.acquisition->session.fetch_add(1) + 1;
    return session;
}

// True when no thread of an earlier start runs in `slot` any more.
bool SlotFree(std::unique_ptr<core::WorkerThread>& slot) {
    if (slot && slot->Attached()) {
        if (!slot->WaitFinished(std::chrono::milliseconds(0)))
            return false;
        slot->Join();
    }
    return true;
}

void Retire(camera::CameraShared& shared, std::unique_ptr<core::WorkerThread>& slot) {
    if (slot && slot->Attached())
        shared.retiredThreads.push_back(std::move(slot));
    slot.reset();
}

// Waits for the thread in `slot`; one still running afterwards is kept aside.
void WaitAndRetire(camera::CameraShared& shared, std::unique_ptr<core::WorkerThread>& slot,
                   std::chrono::milliseconds wait, bool reportEveryWait, const wchar_t* text,
                   const core::LogSite& site) {
    if (!slot || !slot->Attached()) {
        slot.reset();
        return;
    }
    const bool ended = slot->JoinFor(wait);
    if (reportEveryWait || !ended)
        RY_LOG_EVENT(site, kLogDebug, text);
    Retire(shared, slot);
}

}  // namespace

void ReleaseRetiredThreads(camera::CameraShared& shared, std::chrono::milliseconds wait) {
    for (auto& thread : shared.retiredThreads)
        camera::StopWorker(*thread, wait);
    shared.retiredThreads.clear();
}

void StartAcquisitionThreads(camera::CameraShared& shared, uint32_t timeoutMs,
                             const core::LogSite& site) {
    ReleaseRetiredThreads(shared, kRetiredThreadWait);
    if (!SlotFree(shared.grabThread))
        return;  // the grab thread of an earlier call goes on serving this one
    if (shared.independentCallback != 0 && !shared.copyBuffer.data)
        shared.copyBuffer = MakeCopyBuffer(shared.buffers.BlockSize());
    const GrabSession session = MakeSession(shared, timeoutMs);
    shared.grabThread = std::make_unique<core::WorkerThread>();
    shared.grabThread->Start([session] { RunGrabLoop(session); });
    RY_LOG_EVENT(site, kLogDebug, L"myGrabContinuosThread thread execute");
    if (!session.independentCallback || session.imageCallback == nullptr)
        return;
    if (!SlotFree(shared.callbackThread))
        return;
    shared.callbackThread = std::make_unique<core::WorkerThread>();
    shared.callbackThread->Start([session] { RunCallbackLoop(session); });
    RY_LOG_EVENT(site, kLogDebug, L"ThrGrabCallbackThread thread execute");
}

void StopAcquisitionThreads(camera::CameraShared& shared, const ThreadWaits& waits,
                            const core::LogSite& site) {
    AcquisitionState& state = *shared.acquisition;
    StopDeliveries(state);
    if (shared.newBufferEvent != nullptr)
        TL().EventKill(shared.newBufferEvent);
    WaitAndRetire(shared, shared.grabThread, waits.grab, waits.reportEveryWait,
                  L"Thread didn't exit : m_pThrGrab", site);
    WaitAndRetire(shared, shared.callbackThread, waits.callback, waits.reportEveryWait,
                  L"Thread didn't exit : m_pThrGrabCallback", site);
    state.grabbing.store(0);
}

}  // namespace RYSDK::acquisition

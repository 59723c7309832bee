// Frames handed to the application off the grab thread: the callback thread, which copies
// the newest frame before its callback sees it, and GetGrabData for applications that poll.
#include <algorithm>
#include <chrono>
#include <cstring>

#include "acquisition/grab_thread.h"
#include "camera/camera_log.h"
#include "rysdk/RyCamera.h"

namespace RYSDK::acquisition {

namespace {

constexpr std::chrono::milliseconds kCallbackPoll{10};

// The frames of which camera the calling thread is handing to the application.
thread_local const AcquisitionState* tDelivering = nullptr;

// The bytes a frame of this geometry holds, as the buffer pool sizes its blocks.
size_t FrameBytes(const IMAGE_INFO& image) {
    const uint32_t pixels = image.width * image.height;
    const uint32_t bits = PixelFormatBits(static_cast<uint32_t>(image.pixelFormat));
    return static_cast<size_t>(static_cast<double>(pixels) * bits * 0.125);
}

// Copies the slot's frame into the copy buffer and takes its buffer; false when the slot
// holds nothing new.
// Once taken, the buffer is this thread's alone, so the copy runs without the slot's lock,
// which the grab thread takes for every frame.
bool CopyNewest(const GrabSession& session, FrameSlot& frame, void*& buffer) {
    buffer = session.state->TakeNewest(frame);
    if (buffer == nullptr)
        return false;
    uint8_t* copy = session.copyBuffer.data.get();
    if (copy != nullptr && frame.image.pImage != nullptr) {
        const size_t bytes = std::min(FrameBytes(frame.image), session.copyBuffer.size);
        std::memcpy(copy, frame.image.pImage, bytes);
    }
    frame.image.pImage = copy;
    return true;
}

}  // namespace

bool DeliveringOnThisThread(const AcquisitionState& state) noexcept {
    return tDelivering == &state;
}

DeliveryScope::DeliveryScope(const AcquisitionState& state) noexcept : previous_(tDelivering) {
    tDelivering = &state;
}

DeliveryScope::~DeliveryScope() {
    tDelivering = previous_;
}

void StopDeliveries(AcquisitionState& state) {
    state.grabbing.store(0);
    if (!DeliveringOnThisThread(state)) {
        const std::lock_guard<std::mutex> waitForDelivery(state.deliveryMutex);
    }
}

void RunCallbackLoop(const GrabSession& session) {
    RY_CAMERA_SITE(GrabCallbackThread);
    AcquisitionState& state = *session.state;
    RY_GUARDED(kSite, [&] {
        while (state.grabbing.load() != 0) {
            if (!state.callbackReady.WaitFor(kCallbackPoll))
                continue;
            const std::lock_guard<std::mutex> gate(state.deliveryMutex);
            FrameSlot frame;
            void* buffer = nullptr;
            if (state.grabbing.load() == 0 || !CopyNewest(session, frame, buffer))
                continue;
            // The pixels are in the copy now: the stream may have the buffer back.
            RequeueUnlessManaged(session.queueManager, session.stream, buffer);
            const DeliveryScope delivering(state);
            session.imageCallback(&frame.object, &frame.image);
        }
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK::acquisition

namespace RYSDK {

RESULT RyCamera::SetImageCallback(pImageCallbackFn callback) {
    m_Shared->imageCallback = callback;
    return RESULT_SUCCESS;
}

RESULT RyCamera::GetGrabData(IMAGE_INFO* info) {
    RY_CAMERA_SITE(GetGrabData);
    return RY_GUARDED(kSite, [&] {
        if (m_Shared->imageCallback != nullptr) {
            RY_LOG_EVENT(kSite, core::kLogErr, L"callback function pointer is not null");
            return RESULT_ERROR_RYCAMERA_CALLBACK_NOT_NULL;
        }
        if (info == nullptr)
            return RESULT_ERROR_INVALID_PARAMETER;
        acquisition::AcquisitionState& state = *m_Shared->acquisition;
        // The frame handed out last time is given back to the stream now.
        acquisition::RequeueUnlessManaged(m_Shared->queueManager != 0, m_Shared->stream,
                                          state.TakePendingBuffer());
        state.grabRequest.Set();
        const bool done =
            m_AcquisitionTimeout == 0
                ? (state.grabDone.Wait(), true)
                : state.grabDone.WaitFor(std::chrono::milliseconds(m_AcquisitionTimeout));
        if (!done) {
            RY_LOG_EVENT(kSite, core::kLogErr, L"RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT ");
            return RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT;
        }
        *info = state.TakeImage().image;
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK

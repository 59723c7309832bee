// What a camera's grab thread, its callback thread and the application's calls share while
// the camera acquires. The threads hold this block themselves, so one that outlives its
// bounded wait (and is detached) still finds it.
//
// Who writes what:
//   grabbing             the application (Grab, Snap, Abort, close) and the grab thread at
//                        its end; read by every thread
//   slot                 the grab thread writes, the callback thread and GetGrabData read;
//                        always under slotMutex
//   last* totals         the grab thread only
//   deliveryMutex        held by whichever thread is handing a frame to the application;
//                        Abort and close take it once to wait for a delivery under way
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "core/platform/sync_event.h"
#include "rysdk/RyCameraTypes.h"

namespace RYSDK::acquisition {

// The passes of a continuous acquisition: it has no end of its own.
constexpr int64_t kContinuousPasses = 0xFFFFFFFF;

// The newest frame handed from the grab thread to the callback thread or a poller.
struct FrameSlot {
    OBJECT_INFO object{};
    IMAGE_INFO image{};
};

// The block the callback thread copies each frame into before its callback sees it.
struct CopyBuffer {
    std::shared_ptr<uint8_t[]> data;
    size_t size = 0;
};

// A zero-filled copy buffer of `size` bytes.
inline CopyBuffer MakeCopyBuffer(size_t size) {
    return CopyBuffer{std::make_shared<uint8_t[]>(size), size};
}

struct AcquisitionState {
    std::atomic<int32_t> grabbing{0};
    // Counts Grab and Snap calls; a grab thread clears `grabbing` at its end only while no
    // later call has started a session of its own.
    std::atomic<uint64_t> session{0};

    std::mutex slotMutex;
    FrameSlot slot;                 // guarded by slotMutex
    void* pendingBuffer = nullptr;  // guarded by slotMutex: the slot's buffer, until
                                    // the callback thread has copied it

    // Serialises the handing over of frames with the calls that stop them: after Abort or
    // close has cleared `grabbing` and taken this once, no delivery begins.
    std::mutex deliveryMutex;

    core::SyncEvent grabRequest{core::SyncEvent::Mode::AutoReset};
    core::SyncEvent grabDone{core::SyncEvent::Mode::AutoReset};
    core::SyncEvent callbackReady{core::SyncEvent::Mode::AutoReset};

    // Counters as the grab thread last saw them; a log line marks each block at which one
    // moved. They survive acquisitions, as the stream's own counters do.
    uint64_t lastLostFrames = 0;
    uint64_t lastMissingPackets = 0;
    uint64_t lastResentPackets = 0;

    // Stores the frame and the buffer it lies in for the callback thread or a poller; returns
    // the buffer of a frame it replaced before that was taken.
    void* SetImage(const OBJECT_INFO* object, const IMAGE_INFO& image, void* buffer) {
        const std::lock_guard<std::mutex> lock(slotMutex);
        slot.object = object != nullptr ? *object : OBJECT_INFO{};
        slot.image = image;
        void* replaced = pendingBuffer;
        pendingBuffer = buffer;
        return replaced;
    }

    void* TakePendingBuffer() {
        const std::lock_guard<std::mutex> lock(slotMutex);
        return std::exchange(pendingBuffer, nullptr);
    }

    // The slot's frame and its buffer, which is no longer the slot's.
    void* TakeNewest(FrameSlot& frame) {
        const std::lock_guard<std::mutex> lock(slotMutex);
        frame = slot;
        return std::exchange(pendingBuffer, nullptr);
    }

    FrameSlot TakeImage() {
        const std::lock_guard<std::mutex> lock(slotMutex);
        return slot;
    }
};

// True on a thread that is handing a frame of `state` to the application right now: calls
// that wait for deliveries must not wait for their own.
bool DeliveringOnThisThread(const AcquisitionState& state) noexcept;

// Marks the calling thread as delivering frames of `state` while it lives.
class DeliveryScope {
  public:
    explicit DeliveryScope(const AcquisitionState& state) noexcept;
    ~DeliveryScope();
    DeliveryScope(const DeliveryScope&) = delete;
    DeliveryScope& operator=(const DeliveryScope&) = delete;

  private:
    const AcquisitionState* previous_;
};

// Clears `grabbing` and waits for a delivery under way to return, unless the caller is that
// delivery. Afterwards no frame reaches the application until the next Grab or Snap.
void StopDeliveries(AcquisitionState& state);

}  // namespace RYSDK::acquisition

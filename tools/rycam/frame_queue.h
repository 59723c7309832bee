// Frames handed from the camera's grab thread to rycam's main thread. The image callback
// only copies (or counts) a frame; converting and writing files happen on the main thread,
// so a slow disk never holds up the camera's buffers.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

#include "rysdk/RyCameraTypes.h"

namespace rycam {

struct Frame {
    uint32_t format = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t blockId = 0;
    std::vector<uint8_t> data;
};

class FrameQueue {
  public:
    // Holds frames of at most `byteBudget` bytes in all; 0 keeps none and only counts.
    explicit FrameQueue(size_t byteBudget) : budget_(byteBudget) {}

    // The image callback: `object->pUserPointer` is the queue. Thread: the grab thread.
    static void Callback(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image);

    // The next frame, or nullopt when none came within `wait`.
    std::optional<Frame> Take(std::chrono::milliseconds wait);

    uint64_t Received() const;
    uint64_t ReceivedBytes() const;
    // Frames that found the queue full (the writer was behind).
    uint64_t Skipped() const;

  private:
    void Offer(const RYSDK::IMAGE_INFO& image);

    const size_t budget_;
    size_t queuedBytes_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Frame> frames_;
    uint64_t received_ = 0;
    uint64_t receivedBytes_ = 0;
    uint64_t skipped_ = 0;
};

}  // namespace rycam

#include "frame_queue.h"

#include "frame_convert.h"

namespace rycam {

void FrameQueue::Callback(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image) {
    if (object != nullptr && object->pUserPointer != nullptr && image != nullptr)
        static_cast<FrameQueue*>(object->pUserPointer)->Offer(*image);
}

void FrameQueue::Offer(const RYSDK::IMAGE_INFO& image) {
    const size_t bytes = FrameBytes(image.pixelFormat, image.width, image.height);
    const std::lock_guard lock(mutex_);
    ++received_;
    receivedBytes_ += bytes;
    if (budget_ == 0)
        return;
    if (queuedBytes_ + bytes > budget_ || image.pImage == nullptr) {
        ++skipped_;
        return;
    }
    const auto* pixels = static_cast<const uint8_t*>(image.pImage);
    frames_.push_back(Frame{image.pixelFormat, image.width, image.height, image.blockId,
                            std::vector<uint8_t>(pixels, pixels + bytes)});
    queuedBytes_ += bytes;
    arrived_.notify_one();
}

std::optional<Frame> FrameQueue::Take(std::chrono::milliseconds wait) {
    std::unique_lock lock(mutex_);
    if (!arrived_.wait_for(lock, wait, [this] { return !frames_.empty(); }))
        return std::nullopt;
    Frame frame = std::move(frames_.front());
    frames_.pop_front();
    queuedBytes_ -= frame.data.size();
    return frame;
}

uint64_t FrameQueue::Received() const {
    const std::lock_guard lock(mutex_);
    return received_;
}

uint64_t FrameQueue::ReceivedBytes() const {
    const std::lock_guard lock(mutex_);
    return receivedBytes_;
}

uint64_t FrameQueue::Skipped() const {
    const std::lock_guard lock(mutex_);
    return skipped_;
}

}  // namespace rycam

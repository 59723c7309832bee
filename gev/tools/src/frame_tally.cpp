#include "frame_tally.h"

#include <sys/resource.h>

namespace ry::gev::tools {
namespace {

constexpr uint64_t kLargestShortId = 0xFFFF;
constexpr uint64_t kHalfShortRange = 0x8000;

}  // namespace

double ProcessCpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// A 16-bit id far below the newest one is the next lap, not a frame from long ago. The lap is
// 65535 ids long because 0 is never used.
uint64_t FrameTally::Unwrap(uint64_t blockId) {
    if (frames_ > 0 && newestRaw_ <= kLargestShortId && blockId < newestRaw_ &&
        newestRaw_ - blockId > kHalfShortRange)
        wrapOffset_ += kLargestShortId;
    return blockId + wrapOffset_;
}

void FrameTally::Add(uint64_t blockId, bool complete, uint64_t bytes) {
    const uint64_t unwrapped = Unwrap(blockId);
    if (frames_ == 0) {
        first_ = newest_ = unwrapped;
        newestRaw_ = blockId;
    } else if (unwrapped > newest_) {
        newest_ = unwrapped;
        newestRaw_ = blockId;
    }
    if (unwrapped >= first_)
        delivered_.insert(unwrapped);
    ++frames_;
    bytes_ += bytes;
    if (complete)
        completeBytes_ += bytes;
    else
        ++incomplete_;
}

StreamFigures FrameTally::Figures() const {
    StreamFigures figures;
    figures.frames = frames_;
    figures.incomplete = incomplete_;
    figures.bytes = bytes_;
    figures.completeBytes = completeBytes_;
    const uint64_t span = frames_ > 0 ? newest_ - first_ + 1 : 0;
    figures.lost = span - delivered_.size();
    return figures;
}

}  // namespace ry::gev::tools

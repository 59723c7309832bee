#include "trailer_times.h"

#include <time.h>

namespace ry::bench {
namespace {

// A stamp older than this belongs to a frame the receiver never delivered.
constexpr int64_t kStaleNs = 1'000'000'000;

}  // namespace

int64_t MonotonicNs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void TrailerTimes::Stamp(uint64_t blockId) {
    sentNs_[blockId & 0xFFFF].store(MonotonicNs(), std::memory_order_release);
}

int64_t TrailerTimes::Take(uint64_t blockId, int64_t nowNs) {
    const int64_t sent = sentNs_[blockId & 0xFFFF].exchange(0, std::memory_order_acq_rel);
    const int64_t elapsed = nowNs - sent;
    return sent == 0 || elapsed < 0 || elapsed > kStaleNs ? kBeforeStamp : elapsed;
}

}  // namespace ry::bench

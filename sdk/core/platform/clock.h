// Time sources of the SDK: a millisecond tick for time-outs and a high-resolution counter
// for log records. Both are monotonic; neither follows wall-clock changes.
#pragma once

#include <cstdint>

namespace RYSDK::core {

// Milliseconds since an arbitrary start, wrapping at 2^32 like a 32-bit tick count.
uint32_t TickCountMs() noexcept;

// Nanoseconds since an arbitrary start.
int64_t PerformanceCounter() noexcept;

// Milliseconds elapsed from `start` (a TickCountMs value) to now, correct across a wrap.
inline uint32_t TicksSince(uint32_t start) noexcept {
    return TickCountMs() - start;
}

}  // namespace RYSDK::core

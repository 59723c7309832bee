// When the emulator handed each frame's trailer to the kernel, by block id, for the time
// from a frame's last packet to the receiver's callback. The emulator's stream thread (in
// the parent) stamps, the receiver's callback (in a child) takes. CLOCK_MONOTONIC is one
// clock for every process of the machine.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace ry::bench {

int64_t MonotonicNs();

class TrailerTimes {
  public:
    // The callback ran before the stamp was there: on loopback the receiver can wake and
    // finish the frame while the emulator's send has not returned yet.
    static constexpr int64_t kBeforeStamp = -1;

    void Stamp(uint64_t blockId);
    // Nanoseconds from the stamp of `blockId` to `nowNs`, or kBeforeStamp. Takes the stamp
    // away, so a block id that comes round again is never timed from its predecessor.
    int64_t Take(uint64_t blockId, int64_t nowNs);

  private:
    // 16-bit block ids index it directly; 64-bit ones by their low bits, which repeat only
    // after far more frames than are ever in flight.
    std::array<std::atomic<int64_t>, 1 << 16> sentNs_{};
};

static_assert(std::atomic<int64_t>::is_always_lock_free, "shared between processes");

}  // namespace ry::bench

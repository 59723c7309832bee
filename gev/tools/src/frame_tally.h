// Counts the frames an application receives, for the streaming benchmarks: complete and
// incomplete frames, bytes, and frames never delivered at all, told from the block ids.
#pragma once

#include <cstdint>
#include <set>

namespace ry::gev::tools {

// What one streaming run saw.
struct StreamFigures {
    uint64_t frames = 0;  // delivered, complete or not
    uint64_t incomplete = 0;
    uint64_t lost = 0;           // block ids between the first and the newest never delivered
    uint64_t bytes = 0;          // filled into delivered buffers
    uint64_t completeBytes = 0;  // of complete frames only
    double seconds = 0;
    double cpuSeconds = 0;  // the whole receiving process (RUSAGE_SELF) over the run
};

// CPU seconds of the whole process so far (RUSAGE_SELF: every thread, user and system).
double ProcessCpuSeconds();

class FrameTally {
  public:
    // 16-bit block ids wrap from 65535 to 1. A receiver may deliver a frame late (after a
    // newer one) or twice; lost are the ids from the first delivered up to the newest that
    // were never delivered. Ids older than the first one count as frames only.
    void Add(uint64_t blockId, bool complete, uint64_t bytes);
    // Frame and byte counts and the lost frames; seconds and CPU are the caller's.
    StreamFigures Figures() const;

  private:
    uint64_t Unwrap(uint64_t blockId);

    uint64_t frames_ = 0;
    uint64_t incomplete_ = 0;
    uint64_t bytes_ = 0;
    uint64_t completeBytes_ = 0;
    uint64_t first_ = 0;            // unwrapped
    uint64_t newest_ = 0;           // unwrapped
    std::set<uint64_t> delivered_;  // unwrapped ids from first_ on
    uint64_t newestRaw_ = 0;
    uint64_t wrapOffset_ = 0;
};

}  // namespace ry::gev::tools

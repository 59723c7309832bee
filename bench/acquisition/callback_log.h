// What a receiver's image callback records: the block id, whether the frame was complete,
// its bytes and the time since its trailer was sent. The callback stays as light as an
// application's empty one (a clock read, an exchange and a store into memory allocated and
// touched beforehand); counting and sorting wait for the end of the run.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "receiver_summary.h"

namespace ry::bench {

class CallbackLog {
  public:
    CallbackLog(TrailerTimes& trailers, size_t capacity);

    // From the receiver's callback thread (one thread at a time).
    void Record(uint64_t blockId, bool complete, uint64_t bytes);

    // Frames count only between the two: the start of a stream is left out.
    void Open() { open_.store(true, std::memory_order_release); }
    void Close() { open_.store(false, std::memory_order_release); }

    // Frame counts and latencies of what was recorded while open.
    void Summarize(ReceiverSummary& summary) const;

  private:
    struct Entry {
        uint64_t blockId;
        uint64_t bytes;
        int64_t latencyNs;
        bool complete;
    };

    TrailerTimes& trailers_;
    std::vector<Entry> entries_;
    std::atomic<size_t> count_{0};
    std::atomic<uint64_t> unrecorded_{0};
    std::atomic<bool> open_{false};
};

}  // namespace ry::bench

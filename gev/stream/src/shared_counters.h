// Counters the receiving thread publishes once per batch and that any thread may read. Each
// field is a relaxed atomic: readers want recent totals, not a consistent snapshot.
#pragma once

#include <atomic>
#include <cstdint>

#include "ry/gev/stream/frame_receiver.h"

namespace ry::gev::stream::detail {

class SharedCounters {
  public:
    void Add(const ReceiverCounters& delta) {
        AddField(framesDelivered_, delta.framesDelivered);
        AddField(framesIncomplete_, delta.framesIncomplete);
        AddField(framesDroppedNoBuffer_, delta.framesDroppedNoBuffer);
        AddField(packetsReceived_, delta.packetsReceived);
        AddField(packetsMissing_, delta.packetsMissing);
        AddField(packetsResent_, delta.packetsResent);
        AddField(resendRequests_, delta.resendRequests);
        AddField(bytesReceived_, delta.bytesReceived);
        AddField(packetsDuplicated_, delta.packetsDuplicated);
        AddField(packetsRejected_, delta.packetsRejected);
        AddField(packetsIgnored_, delta.packetsIgnored);
    }

    ReceiverCounters Snapshot() const {
        ReceiverCounters c;
        c.framesDelivered = framesDelivered_.load(std::memory_order_relaxed);
        c.framesIncomplete = framesIncomplete_.load(std::memory_order_relaxed);
        c.framesDroppedNoBuffer = framesDroppedNoBuffer_.load(std::memory_order_relaxed);
        c.packetsReceived = packetsReceived_.load(std::memory_order_relaxed);
        c.packetsMissing = packetsMissing_.load(std::memory_order_relaxed);
        c.packetsResent = packetsResent_.load(std::memory_order_relaxed);
        c.resendRequests = resendRequests_.load(std::memory_order_relaxed);
        c.bytesReceived = bytesReceived_.load(std::memory_order_relaxed);
        c.packetsDuplicated = packetsDuplicated_.load(std::memory_order_relaxed);
        c.packetsRejected = packetsRejected_.load(std::memory_order_relaxed);
        c.packetsIgnored = packetsIgnored_.load(std::memory_order_relaxed);
        return c;
    }

  private:
    static void AddField(std::atomic<uint64_t>& field, uint64_t delta) {
        if (delta != 0) {
            field.fetch_add(delta, std::memory_order_relaxed);
        }
    }

    std::atomic<uint64_t> framesDelivered_{0};
    std::atomic<uint64_t> framesIncomplete_{0};
    std::atomic<uint64_t> framesDroppedNoBuffer_{0};
    std::atomic<uint64_t> packetsReceived_{0};
    std::atomic<uint64_t> packetsMissing_{0};
    std::atomic<uint64_t> packetsResent_{0};
    std::atomic<uint64_t> resendRequests_{0};
    std::atomic<uint64_t> bytesReceived_{0};
    std::atomic<uint64_t> packetsDuplicated_{0};
    std::atomic<uint64_t> packetsRejected_{0};
    std::atomic<uint64_t> packetsIgnored_{0};
};

}  // namespace ry::gev::stream::detail

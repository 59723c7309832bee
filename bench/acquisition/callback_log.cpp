#include "callback_log.h"

#include <algorithm>

namespace ry::bench {
namespace {

double PercentileUs(const std::vector<int64_t>& sortedNs, double fraction) {
    if (sortedNs.empty()) {
        return 0;
    }
    const auto index = static_cast<size_t>(fraction * static_cast<double>(sortedNs.size() - 1));
    return static_cast<double>(sortedNs[index]) / 1e3;
}

}  // namespace

CallbackLog::CallbackLog(TrailerTimes& trailers, size_t capacity)
    : trailers_(trailers), entries_(capacity) {}

void CallbackLog::Record(uint64_t blockId, bool complete, uint64_t bytes) {
    const int64_t now = MonotonicNs();
    // Taken even outside the window, so that no stamp outlives its frame.
    const int64_t latency = trailers_.Take(blockId, now);
    if (!open_.load(std::memory_order_acquire)) {
        return;
    }
    const size_t index = count_.load(std::memory_order_relaxed);
    if (index == entries_.size()) {
        unrecorded_.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    entries_[index] = {blockId, bytes, latency, complete};
    count_.store(index + 1, std::memory_order_release);
}

void CallbackLog::Summarize(ReceiverSummary& summary) const {
    const size_t count = count_.load(std::memory_order_acquire);
    ry::gev::tools::FrameTally tally;
    std::vector<int64_t> latencies;
    latencies.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const Entry& entry = entries_[i];
        tally.Add(entry.blockId, entry.complete, entry.bytes);
        const bool beforeStamp = entry.latencyNs == TrailerTimes::kBeforeStamp;
        summary.beforeStamp += beforeStamp ? 1 : 0;
        latencies.push_back(beforeStamp ? 0 : entry.latencyNs);
    }
    std::sort(latencies.begin(), latencies.end());
    const double seconds = summary.figures.seconds;
    const double cpuSeconds = summary.figures.cpuSeconds;
    summary.figures = tally.Figures();
    summary.figures.seconds = seconds;
    summary.figures.cpuSeconds = cpuSeconds;
    summary.latencyMedianUs = PercentileUs(latencies, 0.5);
    summary.latencyP99Us = PercentileUs(latencies, 0.99);
    summary.unrecorded = unrecorded_.load(std::memory_order_relaxed);
}

}  // namespace ry::bench

#include "stream_report.h"

#include <cstdio>

namespace rycam {
namespace {

void Line(const char* label, uint64_t value) {
    std::printf("%-24s %llu\n", label, static_cast<unsigned long long>(value));
}

// A counter the stream may not have (no stream, an older camera): "n/a".
template <typename Read>
void Counter(const char* label, Read&& read) {
    uint64_t value = 0;
    if (read(value) == RYSDK::RESULT_SUCCESS)
        Line(label, value);
    else
        std::printf("%-24s n/a\n", label);
}

}  // namespace

void PrintStreamReport(RYSDK::RyCamera& camera, const FrameQueue& queue, const GrabTally& tally) {
    const double seconds = tally.seconds > 0 ? tally.seconds : 1e-9;
    const double megabytes = static_cast<double>(queue.ReceivedBytes()) / 1e6;
    Line("frames received", queue.Received());
    if (tally.written > 0 || tally.unconverted > 0) {
        Line("files written", tally.written);
        if (tally.unconverted > 0)
            Line("  of them raw", tally.unconverted);
    }
    if (queue.Skipped() > 0)
        Line("frames not saved (busy)", queue.Skipped());
    std::printf("%-24s %.2f s (%.1f frames/s, %.1f MB/s)\n", "elapsed", tally.seconds,
                static_cast<double>(queue.Received()) / seconds, megabytes / seconds);
    Counter("delivered by stream", [&](uint64_t& v) { return camera.GetNumDeliveredFrame(v); });
    Counter("lost (no free buffer)", [&](uint64_t& v) { return camera.GetNumLostImage(v); });
    Counter("incomplete", [&](uint64_t& v) { return camera.GetNumCorruptedImage(v); });
    Counter("packets resent", [&](uint64_t& v) { return camera.GetNumResendSuccessfulPackets(v); });
    Counter("packets missing", [&](uint64_t& v) {
        unsigned int missing = 0;
        const RYSDK::RESULT result =
            camera.GetStreamInfo(RYSDK::STREAM_INFO_MISSING_PACKETS, missing);
        v = missing;
        return result;
    });
}

}  // namespace rycam

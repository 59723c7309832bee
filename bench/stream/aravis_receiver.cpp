#include "aravis_receiver.h"

#include <sys/resource.h>

#include <chrono>

namespace ry::bench {
namespace {

using Clock = std::chrono::steady_clock;

double CpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace

std::optional<ReceiverReport> MeasureAravis(const AravisRun& run) {
    auto stream = AravisStream::Open(run);
    if (!stream || !stream->Start()) {
        return std::nullopt;
    }
    ReceiverReport result;
    result.packetSocketOpen = PacketSocketOpen();
    ry::gev::tools::FrameTally tally;
    const double cpuStart = CpuSeconds();
    const auto start = Clock::now();
    stream->Recycle(start + std::chrono::duration_cast<Clock::duration>(
                                std::chrono::duration<double>(run.seconds)),
                    [&tally](ArvBuffer* buffer) {
                        size_t size = 0;
                        arv_buffer_get_data(buffer, &size);
                        tally.Add(arv_buffer_get_frame_id(buffer),
                                  arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS, size);
                    });
    auto& figures = result.figures;
    figures = tally.Figures();
    figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    figures.cpuSeconds = CpuSeconds() - cpuStart;
    stream->Stop();
    return result;
}

}  // namespace ry::bench

#include "aravis_receiver.h"

#include <chrono>

namespace ry::bench {

using Clock = std::chrono::steady_clock;
using ry::gev::tools::ProcessCpuSeconds;

std::optional<ReceiverReport> MeasureAravis(const AravisRun& run) {
    auto stream = AravisStream::Open(run);
    if (!stream || !stream->Start()) {
        return std::nullopt;
    }
    ReceiverReport result;
    result.packetSocketOpen = PacketSocketOpen();
    ry::gev::tools::FrameTally tally;
    const double cpuStart = ProcessCpuSeconds();
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
    figures.cpuSeconds = ProcessCpuSeconds() - cpuStart;
    stream->Stop();
    return result;
}

}  // namespace ry::bench

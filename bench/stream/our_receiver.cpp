#include "our_receiver.h"

#include <cstdio>

#include "bench_session.h"

namespace ry::bench {

std::optional<ReceiverReport> MeasureOurs(const OurRun& run, DeliveryLog& log) {
    const int inherited = OwnedPacketSockets();
    ry::gev::tools::BenchOptions options;
    options.device = run.deviceAddress;
    options.seconds = run.seconds;
    options.packetSize = run.packetSize;
    options.buffers = run.buffers;
    options.receivePath = run.receivePath;
    ry::gev::tools::BenchSession session;
    std::string error;
    if (!session.Open(options, error) || !session.StartStreaming(options)) {
        std::fprintf(stderr, "ours: cannot open the camera or its stream %s\n", error.c_str());
        return std::nullopt;
    }
    MeasuredRun measured(run.seconds, run.emulator, inherited, log);
    while (measured.Going()) {
        session.NextFrame([&measured](uint64_t blockId, bool complete, uint64_t bytes) {
            measured.Delivered(blockId, complete, bytes);
        });
    }
    const ReceiverReport report = measured.Finish();
    session.StopStreaming();
    return report;
}

}  // namespace ry::bench

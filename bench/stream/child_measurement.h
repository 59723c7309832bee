// Runs one receiver in a child process of its own, so getrusage(RUSAGE_SELF) there counts
// that receiver's threads and nothing of the sender or of the receivers measured before.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "bench_session.h"

namespace ry::bench {

// What a receiver reports from its child process. Aravis falls back to its plain socket
// silently when it cannot open a packet socket, so the child says whether one was open.
struct ReceiverReport {
    ry::gev::tools::StreamFigures figures;
    bool packetSocketOpen = false;
    // Receiver, emulator and every CPU's soft interrupts over the run (on loopback the
    // kernel's copy into a packet ring is done in the sender's soft interrupt).
    double machineCpuSeconds = 0;
};

// Forks, runs `measure` in the child and returns what it reported; nullopt when the child
// failed, crashed or overran `limit` (it is then killed by its PID).
std::optional<ReceiverReport> MeasureInChild(
    const std::function<std::optional<ReceiverReport>()>& measure, std::chrono::seconds limit);

}  // namespace ry::bench

// What one receiver's child process leaves for the parent in the shared mapping, and the
// mapping itself: the emulator's trailer stamps and that summary.
#pragma once

#include <cstdint>

#include "frame_tally.h"
#include "trailer_times.h"

namespace ry::bench {

// The SDK's own stream counters since the camera was opened (warm-up included).
struct SdkCounters {
    uint64_t delivered = 0;
    uint64_t lost = 0;       // no free buffer when a frame began
    uint64_t corrupted = 0;  // delivered incomplete
    uint64_t missingPackets = 0;
};

struct ReceiverSummary {
    // Frames that reached the callback during the window; cpuSeconds is the process's.
    ry::gev::tools::StreamFigures figures;
    double senderCpuSeconds = 0;
    double machineCpuSeconds = 0;
    double latencyMedianUs = 0;  // trailer sent to callback
    double latencyP99Us = 0;
    uint64_t beforeStamp = 0;  // callbacks that ran before the trailer's send had returned
    uint64_t unrecorded = 0;   // callbacks past the log's capacity
    bool packetSocketOpen = false;
    bool hasSdkCounters = false;
    SdkCounters sdk;
};

struct RunBoard {
    TrailerTimes trailers;
    ReceiverSummary summary;
};

}  // namespace ry::bench

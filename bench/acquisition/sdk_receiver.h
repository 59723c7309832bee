// Our SDK as an application drives it: RyGigE discovers the camera, OpenCamera with an
// image callback that only records, Grab, the measurement window, Abort, and the SDK's
// own stream counters.
#pragma once

#include <cstdint>
#include <optional>

#include "child_measurement.h"
#include "receiver_summary.h"

namespace ry::bench {

struct SdkRun {
    uint32_t packetSize = 9000;
    uint32_t buffers = 16;
    double seconds = 3;
};

// Runs in the child; leaves its summary on the board. Nullopt (with the reason printed)
// when the camera cannot be found, opened or started.
std::optional<ReceiverReport> MeasureSdk(const SdkRun& run, RunBoard& board);

}  // namespace ry::bench

// The statistics printed after a grab: what rycam received, and the stream's own counters.
#pragma once

#include <cstdint>

#include "frame_queue.h"
#include "rysdk/RyCamera.h"

namespace rycam {

struct GrabTally {
    uint64_t written = 0;      // files written
    uint64_t unconverted = 0;  // frames of a format without a conversion, kept raw
    double seconds = 0;
};

void PrintStreamReport(RYSDK::RyCamera& camera, const FrameQueue& queue, const GrabTally& tally);

}  // namespace rycam

// Aravis's receiver on the same camera, for the side-by-side comparison: ArvGvStream on its
// plain UDP socket or in its raw packet-socket mode (which needs CAP_NET_RAW).
#pragma once

#include <optional>

#include "aravis_stream.h"
#include "child_measurement.h"
#include "frame_timing.h"

namespace ry::bench {

// Opens the camera, streams for `run.seconds` and counts like ry-stream-bench does, logging
// each frame's delivery. Also tells whether a packet socket was open while streaming.
// Nullopt when the camera or the stream cannot be set up.
std::optional<ReceiverReport> MeasureAravis(const AravisRun& run, DeliveryLog& log);

}  // namespace ry::bench

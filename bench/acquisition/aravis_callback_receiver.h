// Aravis's receiver in its callback form: ArvStream calls back on its own stream thread for
// each finished buffer (where the callback records, as ours does), and the application's
// thread only hands the buffers back.
#pragma once

#include <optional>

#include "aravis_stream.h"
#include "child_measurement.h"
#include "receiver_summary.h"

namespace ry::bench {

// Runs in the child; leaves its summary on the board. Nullopt (with the reason printed)
// when the camera or the stream cannot be set up.
std::optional<ReceiverReport> MeasureAravisCallback(const AravisRun& run, RunBoard& board);

}  // namespace ry::bench

// The course every receiver's run takes once its stream flows: a warm-up the log does not
// count, then the window in which it does, with the CPU time spent in it.
#pragma once

#include <chrono>
#include <functional>

#include "callback_log.h"

namespace ry::bench {

// Keeps the receiver going until the time given: the SDK's needs nothing, Aravis's wants
// its buffers back.
using KeepGoing = std::function<void(std::chrono::steady_clock::time_point until)>;

// Fills the summary's seconds and CPU figures; the frame figures are the log's to fill.
void MeasureWindow(CallbackLog& log, double seconds, const KeepGoing& keepGoing,
                   ReceiverSummary& summary);

// For the callback's records: a run at up to this many frames per second never fills them.
size_t LogCapacity(double seconds);

}  // namespace ry::bench

#include "measurement_window.h"

#include "cpu_clock.h"

namespace ry::bench {
namespace {

using Clock = std::chrono::steady_clock;
// Long enough for the frames of the stream's first moments, which may come late (after a
// frame time-out), to be out of the way: the window measures the steady state.
constexpr auto kWarmUp = std::chrono::seconds(1);
constexpr double kMostFramesPerSecond = 50000;

}  // namespace

void MeasureWindow(CallbackLog& log, double seconds, const KeepGoing& keepGoing,
                   ReceiverSummary& summary) {
    keepGoing(Clock::now() + kWarmUp);
    log.Open();
    const CpuReading start = ReadCpu();
    keepGoing(start.at +
              std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds)));
    const CpuSpent spent = Between(start, ReadCpu());
    log.Close();
    summary.figures.seconds = spent.seconds;
    summary.figures.cpuSeconds = spent.process;
    summary.senderCpuSeconds = spent.sender;
    summary.machineCpuSeconds = spent.machine;
}

size_t LogCapacity(double seconds) {
    return static_cast<size_t>(seconds * kMostFramesPerSecond) + 1;
}

}  // namespace ry::bench

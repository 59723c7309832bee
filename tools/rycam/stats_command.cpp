// rycam stats CAMERA [--seconds S]: streams continuously for a while, counting frames
// without keeping them, and prints the stream's statistics.
#include <chrono>
#include <cstdio>
#include <thread>

#include "camera_session.h"
#include "commands.h"
#include "frame_queue.h"
#include "progress.h"
#include "stream_report.h"

namespace rycam {

int StatsCommand(int argc, char** argv) {
    const auto arguments = ParseArguments(
        argc, argv, "rycam stats CAMERA [--seconds S] [--buffers N] [--no-progress] [--timeout MS]",
        {"--seconds", "--buffers", "--timeout"}, {"--no-progress"}, 1, 1);
    if (!arguments)
        return kExitUsage;
    const auto seconds = arguments->Number("--seconds", 3);
    const auto buffers = arguments->Number("--buffers", 16);
    if (!seconds || !buffers || *buffers == 0)
        return kExitUsage;
    FrameQueue counter(0);  // counts only
    Session session;
    const OpenSettings settings{static_cast<unsigned int>(*buffers), FrameQueue::Callback,
                                &counter};
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0], settings);
        status != kExitOk)
        return status;
    const auto start = std::chrono::steady_clock::now();
    if (const RYSDK::RESULT result = session.Camera().Grab(); result != RYSDK::RESULT_SUCCESS)
        return ReportFailure("starting the acquisition", result);
    {
        Progress progress(0, StderrIsTerminal() && !arguments->Has("--no-progress"));
        const auto end = start + std::chrono::seconds(*seconds);
        while (std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            progress.Update(counter.Received());
        }
    }
    session.Camera().Abort();
    GrabTally tally;
    tally.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    PrintStreamReport(session.Camera(), counter, tally);
    return counter.Received() > 0 ? kExitOk : kExitFailure;
}

}  // namespace rycam

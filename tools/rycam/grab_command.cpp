// rycam grab CAMERA --count N --output DIR: a counted burst of frames, each converted with
// the SDK's own conversions and written as a PNG file (a format without a conversion is
// written raw), with a progress bar on a terminal and the stream's statistics at the end.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "camera_session.h"
#include "commands.h"
#include "frame_queue.h"
#include "png_writer.h"
#include "progress.h"
#include "stream_report.h"

namespace rycam {
namespace {

constexpr const char* kUsage =
    "rycam grab CAMERA [--count N] [--output DIR] [--buffers N] [--frame-timeout MS] "
    "[--no-progress] [--timeout MS]";
// Frames waiting for the writer, beyond the camera's own buffers: writing PNG files is
// slower than most cameras, so a burst is held in memory up to this much.
constexpr size_t kQueueBytes = size_t{1} << 30;

struct GrabOptions {
    unsigned long count = 0;
    unsigned long buffers = 0;
    unsigned long frameTimeoutMs = 0;
    std::filesystem::path output;
};

bool WriteRaw(const std::filesystem::path& path, const Frame& frame, std::string& error) {
    std::ofstream raw(path, std::ios::binary);
    raw.write(reinterpret_cast<const char*>(frame.data.data()),
              static_cast<std::streamsize>(frame.data.size()));
    if (!raw)
        error = "the write failed";
    return static_cast<bool>(raw);
}

bool SaveFrame(const Frame& frame, const std::filesystem::path& directory, uint64_t number,
               GrabTally& tally) {
    Picture picture;
    const bool converted = ConvertFrame(frame.format, frame.width, frame.height, frame.data.data(),
                                        frame.data.size(), picture);
    char name[32];
    std::snprintf(name, sizeof(name), "frame_%05llu.%s", static_cast<unsigned long long>(number),
                  converted ? "png" : "raw");
    const std::filesystem::path path = directory / name;
    std::string error;
    const bool written = converted ? WritePng(path, picture, error) : WriteRaw(path, frame, error);
    if (!written) {
        std::fprintf(stderr, "\nrycam: cannot write %s: %s\n", path.c_str(), error.c_str());
        return false;
    }
    ++tally.written;
    tally.unconverted += converted ? 0 : 1;
    return true;
}

// Takes frames until every one of the burst is saved or was skipped (the queue was full);
// false when one could not be written or the camera stopped sending.
bool SaveFrames(FrameQueue& queue, const GrabOptions& options, bool progressShown,
                GrabTally& tally) {
    Progress progress(options.count, progressShown);
    for (uint64_t saved = 0; saved + queue.Skipped() < options.count;) {
        std::optional<Frame> frame = queue.Take(std::chrono::milliseconds(options.frameTimeoutMs));
        if (!frame) {
            std::fprintf(stderr, "\nrycam: no frame for %lu ms after %llu of %lu\n",
                         options.frameTimeoutMs, static_cast<unsigned long long>(saved),
                         options.count);
            return false;
        }
        if (!SaveFrame(*frame, options.output, saved, tally))
            return false;
        progress.Update(++saved);
    }
    return true;
}

std::optional<GrabOptions> ReadOptions(const Arguments& arguments) {
    const auto count = arguments.Number("--count", 10);
    const auto buffers = arguments.Number("--buffers", 16);
    const auto frameTimeout = arguments.Number("--frame-timeout", 5000);
    if (!count || !buffers || !frameTimeout)
        return std::nullopt;
    if (*count == 0 || *buffers == 0) {
        std::fprintf(stderr, "rycam: --count and --buffers must be at least 1\n");
        return std::nullopt;
    }
    return GrabOptions{*count, *buffers, *frameTimeout, arguments.Get("--output", "frames")};
}

}  // namespace

int GrabCommand(int argc, char** argv) {
    const auto arguments = ParseArguments(
        argc, argv, kUsage, {"--count", "--output", "--buffers", "--frame-timeout", "--timeout"},
        {"--no-progress"}, 1, 1);
    const auto options = arguments ? ReadOptions(*arguments) : std::nullopt;
    if (!options)
        return kExitUsage;
    std::error_code error;
    std::filesystem::create_directories(options->output, error);
    if (error) {
        std::fprintf(stderr, "rycam: cannot create %s: %s\n", options->output.c_str(),
                     error.message().c_str());
        return kExitFailure;
    }
    FrameQueue queue(kQueueBytes);
    Session session;
    const OpenSettings settings{static_cast<unsigned int>(options->buffers), FrameQueue::Callback,
                                &queue};
    if (const int status = session.OpenCamera(*arguments, arguments->positional[0], settings);
        status != kExitOk)
        return status;
    const auto start = std::chrono::steady_clock::now();
    if (const RYSDK::RESULT result =
            session.Camera().Snap(static_cast<unsigned int>(options->count));
        result != RYSDK::RESULT_SUCCESS)
        return ReportFailure("starting the acquisition", result);
    GrabTally tally;
    const bool complete =
        SaveFrames(queue, *options, StderrIsTerminal() && !arguments->Has("--no-progress"), tally);
    tally.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    session.Camera().Abort();
    PrintStreamReport(session.Camera(), queue, tally);
    std::printf("%-24s %s\n", "written to", options->output.c_str());
    return complete ? kExitOk : kExitFailure;
}

}  // namespace rycam

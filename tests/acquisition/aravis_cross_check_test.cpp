// Aravis's own tool streams from a second emulated camera in a namespace of its own while the
// SDK grabs from the first: an independent receiver must find the same stream whole while
// ours does.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <future>
#include <regex>
#include <string>

#include "frame_collector.h"

namespace rytest {
namespace {

using namespace RYSDK;
using namespace std::chrono_literals;

constexpr const char* kAravisTest = "/usr/bin/arv-camera-test-0.8";

// Runs `command` through the shell and returns what it printed.
std::string Capture(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr)
        return output;
    char chunk[4096];
    size_t read = 0;
    while ((read = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0)
        output.append(chunk, read);
    ::pclose(pipe);
    return output;
}

long Figure(const std::string& report, const std::string& name) {
    const std::regex line(name + R"(\s*=\s*(\d+))");
    std::smatch match;
    return std::regex_search(report, match, line) ? std::stol(match[1]) : -1;
}

TEST_F(AcquisitionTest, AravisStreamsFromASecondCameraWhileTheSdkGrabs) {
    if (::access(kAravisTest, X_OK) != 0)
        GTEST_SKIP() << kAravisTest << " is not installed (Debian package aravis-tools-cli)";
    OpenWithCallback(FastCamera(100.0), &FrameCollector::Callback, 16);
    const std::string command =
        "unshare --net sh -c 'ip link set lo up; " RY_EMULATOR_PATH
        " --fps 100 >/dev/null 2>&1 & camera=$!; sleep 0.5; timeout -s INT 3 " +
        std::string(kAravisTest) + " -f 100 2>&1; kill $camera' 2>&1";
    auto aravis = std::async(std::launch::async, [&] { return Capture(command); });
    ASSERT_EQ(camera_->Grab(), RESULT_SUCCESS);
    const std::string report = aravis.get();
    ASSERT_EQ(camera_->Abort(), RESULT_SUCCESS);

    EXPECT_GT(Figure(report, "n_completed_buffers"), 100) << report;
    EXPECT_EQ(Figure(report, "n_failures"), 0) << report;
    EXPECT_EQ(Figure(report, "n_missing_frames"), 0) << report;
    EXPECT_EQ(Figure(report, "n_size_mismatch_errors"), 0) << report;
    // Sanitizer builds receive more slowly; what arrives must still be whole.
    const auto frames = frames_.Frames();
    EXPECT_GT(frames.size(), 10u);
    for (const ReceivedFrame& frame : frames)
        EXPECT_TRUE(frame.matchesTestImage) << "block " << frame.info.blockId;
}

}  // namespace
}  // namespace rytest

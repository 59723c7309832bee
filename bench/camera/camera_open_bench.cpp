// ry-camera-open-bench: how long a camera open and close take, ours beside Aravis's, on one
// emulated camera in the same run. Ours is RyGigE::OpenCamera until it returns with the
// camera opened (device and control privilege, the zipped description read, unzipped and
// built into a node map, the stream destination set, the stream opened with its buffers
// announced and queued and acquisition started) and RyGigE::CloseCamera. Aravis's is
// arv_camera_new plus its first feature read, and the release of its last reference. The two
// alternate, cycle after cycle, so a noisy machine weighs on both alike.
//
// It discovers, so it runs in a private network namespace:
//   bash scripts/in-private-net.sh build/bin/ry-camera-open-bench [--cycles=N]
// For figures that do not move with the machine's load, count instructions instead:
//   bash scripts/in-private-net.sh valgrind --tool=callgrind build/bin/ry-camera-open-bench
#include <arv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "first_camera.h"
#include "loop_program.h"

namespace {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Samples {
    std::vector<double> open;
    std::vector<double> close;
};

double Percentile(std::vector<double> values, double fraction) {
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const auto index = static_cast<size_t>(fraction * static_cast<double>(values.size() - 1));
    return values[index];
}

bool OursOnce(rytest::FirstCamera& first, Samples& samples) {
    auto start = Clock::now();
    RYSDK::RyCamera* camera = first.Open();
    if (camera == nullptr)
        return false;
    samples.open.push_back(MillisecondsSince(start));
    start = Clock::now();
    if (first.Gige().CloseCamera(camera) != RYSDK::RESULT_SUCCESS)
        return false;
    samples.close.push_back(MillisecondsSince(start));
    return true;
}

bool AravisOnce(Samples& samples) {
    GError* error = nullptr;
    auto start = Clock::now();
    ArvCamera* camera = arv_camera_new(rytest::kEmulatedCameraAddress, &error);
    if (camera == nullptr) {
        std::fprintf(stderr, "Aravis: %s\n", error != nullptr ? error->message : "no camera");
        g_clear_error(&error);
        return false;
    }
    arv_camera_get_integer(camera, "Width", &error);
    samples.open.push_back(MillisecondsSince(start));
    g_clear_error(&error);
    start = Clock::now();
    g_object_unref(camera);
    samples.close.push_back(MillisecondsSince(start));
    return true;
}

void PrintRow(const char* name, const std::vector<double>& values) {
    std::printf("%-14s %9.3f %9.3f %9.3f\n", name, Percentile(values, 0.5), Percentile(values, 0.1),
                Percentile(values, 0.9));
}

}  // namespace

int main(int argc, char** argv) {
    int cycles = 50;
    if (const int status = rytest::PrepareLoopProgram(argc, argv, cycles); status != 0)
        return status;
    const ry::emulator::Camera emulator(rytest::EmulatedCameraConfig());
    rytest::FirstCamera first;
    unsigned int found = 0;
    if (first.Gige().Open() != RYSDK::RESULT_SUCCESS ||
        first.Gige().GetNumCameras(&found) != RYSDK::RESULT_SUCCESS || found != 1) {
        std::fprintf(stderr, "the emulated camera was not discovered\n");
        return 1;
    }
    arv_update_device_list();

    Samples ours, aravis;
    for (int i = 0; i < cycles; ++i) {
        if (!OursOnce(first, ours) || !AravisOnce(aravis)) {
            std::fprintf(stderr, "cycle %d failed\n", i);
            return 1;
        }
    }
    std::printf("camera open and close, %d cycles each, milliseconds (zipped description)\n",
                cycles);
    std::printf("%-14s %9s %9s %9s\n", "", "median", "p10", "p90");
    PrintRow("ours open", ours.open);
    PrintRow("aravis open", aravis.open);
    PrintRow("ours close", ours.close);
    PrintRow("aravis close", aravis.close);
    std::printf("open ratio ours/aravis (medians): %.2f\n",
                Percentile(ours.open, 0.5) / Percentile(aravis.open, 0.5));
    return 0;
}

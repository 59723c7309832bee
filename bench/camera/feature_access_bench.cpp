// ry-camera-feature-bench: what one feature access costs through the SDK beside Aravis, on
// one emulated camera in the same run: a read, a read after the node map dropped its cache,
// a write with verification, and a read by name (the emulator marks its registers NoCache,
// so its reads always go to the camera: one register round trip); Aravis's arv_camera_get_integer
// and arv_device_get_integer_feature_value for the same feature. Each figure is the median over
// batches, in microseconds per access.
//   bash scripts/in-private-net.sh build/bin/ry-camera-feature-bench [--cycles=N]
#include <arv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include "first_camera.h"
#include "loop_program.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kPerBatch = 100;

// Microseconds per call, the median over `batches` batches.
double MedianMicroseconds(int batches, const std::function<void()>& call) {
    std::vector<double> samples;
    for (int b = 0; b < batches; ++b) {
        const auto start = Clock::now();
        for (int i = 0; i < kPerBatch; ++i)
            call();
        samples.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count() /
                          kPerBatch);
    }
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    int batches = 20;
    if (const int status = rytest::PrepareLoopProgram(argc, argv, batches); status != 0)
        return status;
    const ry::emulator::Camera emulator(rytest::EmulatedCameraConfig());
    rytest::FirstCamera first;
    RYSDK::RyCamera* camera = first.Open();
    if (camera == nullptr) {
        std::fprintf(stderr, "the emulated camera did not open\n");
        return 1;
    }
    unsigned int width = 0;
    char text[32];
    const double cached = MedianMicroseconds(batches, [&] { camera->GetWidth(&width); });
    const double uncached = MedianMicroseconds(batches, [&] {
        camera->InvalidateNodes();
        camera->GetWidth(&width);
    });
    const double byName = MedianMicroseconds(batches, [&] {
        uint64_t size = sizeof(text);
        camera->GetCustomCommand("Width", text, &size);
    });
    unsigned int next = 640;
    const double write = MedianMicroseconds(batches, [&] {
        next = next == 640 ? 644 : 640;
        camera->SetWidth(next);
    });
    first.Gige().CloseCamera(camera);

    arv_update_device_list();
    GError* error = nullptr;
    ArvCamera* peer = arv_camera_new(rytest::kEmulatedCameraAddress, &error);
    if (peer == nullptr) {
        std::fprintf(stderr, "Aravis: %s\n", error != nullptr ? error->message : "no camera");
        return 1;
    }
    ArvDevice* device = arv_camera_get_device(peer);
    const double aravisCamera =
        MedianMicroseconds(batches, [&] { arv_camera_get_integer(peer, "Width", nullptr); });
    const double aravisDevice = MedianMicroseconds(
        batches, [&] { arv_device_get_integer_feature_value(device, "Width", nullptr); });
    g_object_unref(peer);

    std::printf("feature access, microseconds per call (median of %d batches of %d)\n", batches,
                kPerBatch);
    std::printf("%-40s %9.3f\n", "ours GetWidth", cached);
    std::printf("%-40s %9.3f\n", "ours GetWidth after InvalidateNodes", uncached);
    std::printf("%-40s %9.3f\n", "ours SetWidth, with verification", write);
    std::printf("%-40s %9.3f\n", "ours GetCustomCommand(\"Width\")", byName);
    std::printf("%-40s %9.3f\n", "aravis arv_camera_get_integer", aravisCamera);
    std::printf("%-40s %9.3f\n", "aravis arv_device_get_integer_feature_value", aravisDevice);
    return 0;
}

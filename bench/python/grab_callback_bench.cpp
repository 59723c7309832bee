// ry-grab-callback-bench: the C++ side of bench/python/compare.py. Opens the first camera
// discovery finds, grabs continuously with an image callback on the grab thread that
// touches every 4096th byte of the frame (what the Python side does with frame.array), and
// prints one line of figures for the measured seconds after a warm-up:
//   fps=F frames=N gaps=G lost=L cpu_s_per_gb=C
// gaps: block ids skipped between delivered frames; lost: the SDK's lost-frame counter.
//   ry-grab-callback-bench [SECONDS] [WARM_UP_SECONDS] [BUFFERS]
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "rysdk/RyCamera.h"
#include "rysdk/RyGigE.h"

namespace {

constexpr size_t kTouchStride = 4096;

struct Tally {
    std::atomic<bool> measuring{false};
    std::atomic<uint64_t> frames{0};
    std::atomic<uint64_t> bytes{0};
    std::atomic<uint64_t> gaps{0};
    std::atomic<uint64_t> checksum{0};
    uint32_t lastBlockId = 0;  // grab thread only
};

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void OnImage(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image) {
    auto& tally = *static_cast<Tally*>(object->pUserPointer);
    const size_t size = size_t{image->width} * image->height *
                        ((static_cast<uint32_t>(image->pixelFormat) >> 16) & 0xFF) / 8;
    const auto* pixels = static_cast<const uint8_t*>(image->pImage);
    uint64_t sum = 0;
    for (size_t offset = 0; pixels != nullptr && offset < size; offset += kTouchStride)
        sum += pixels[offset];
    tally.checksum.fetch_add(sum, std::memory_order_relaxed);
    if (tally.lastBlockId != 0 && image->blockId != tally.lastBlockId + 1 && tally.measuring.load())
        tally.gaps.fetch_add(image->blockId - tally.lastBlockId - 1);
    tally.lastBlockId = image->blockId;
    if (tally.measuring.load()) {
        tally.frames.fetch_add(1);
        tally.bytes.fetch_add(size);
    }
}

int Fail(const char* what, RYSDK::RESULT result) {
    std::fprintf(stderr, "ry-grab-callback-bench: %s failed (%d)\n", what,
                 static_cast<int>(result));
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 5.0;
    const double warmUp = argc > 2 ? std::atof(argv[2]) : 1.0;
    const auto buffers = static_cast<uint32_t>(argc > 3 ? std::atoi(argv[3]) : 16);
    RYSDK::RyGigE gige;
    gige.SetDiscoveryTimeout(300);
    if (const RYSDK::RESULT result = gige.Open(); result != RYSDK::RESULT_SUCCESS)
        return Fail("opening the SDK", result);
    Tally tally;
    RYSDK::OBJECT_INFO object{&tally, nullptr};
    RYSDK::RyCamera* camera = nullptr;
    if (const RYSDK::RESULT result =
            gige.OpenCamera(0u, &camera, buffers, 0, 0, 0, &object, OnImage, nullptr);
        result != RYSDK::RESULT_SUCCESS)
        return Fail("opening the camera", result);
    uint64_t lostBefore = 0;
    camera->GetNumLostImage(lostBefore);
    camera->Grab();
    std::this_thread::sleep_for(std::chrono::duration<double>(warmUp));
    const double cpuStart = CpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    tally.measuring = true;
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    tally.measuring = false;
    const double elapsed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double cpu = CpuSeconds() - cpuStart;
    uint64_t lostAfter = 0;
    camera->GetNumLostImage(lostAfter);
    camera->Abort();
    gige.CloseCamera(camera);
    gige.Close();
    const double gigabytes = static_cast<double>(tally.bytes.load()) / 1e9;
    std::printf("fps=%.2f frames=%llu gaps=%llu lost=%llu cpu_s_per_gb=%.4f\n",
                static_cast<double>(tally.frames.load()) / elapsed,
                static_cast<unsigned long long>(tally.frames.load()),
                static_cast<unsigned long long>(tally.gaps.load()),
                static_cast<unsigned long long>(lostAfter - lostBefore),
                gigabytes > 0 ? cpu / gigabytes : 0.0);
    return 0;
}

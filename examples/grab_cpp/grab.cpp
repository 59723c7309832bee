// Grabs frames from the first camera the SDK discovers, through the C++ classes, and prints
// what arrived: the frames counted in an image callback, then the stream's counters.
//
//   grab [FRAMES]        (default 30)
//
// Build against the installed SDK with CMake (find_package(RyGigE)) or with
//   c++ -std=c++20 grab.cpp $(pkg-config --cflags --libs RyGigE)
#include <rysdk/RyCamera.h>
#include <rysdk/RyGigE.h>
#include <rysdk/RyResult.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// What the image callback records. It runs on the camera's grab thread; main reads it.
struct Tally {
    std::mutex lock;
    std::condition_variable arrived;
    uint32_t frames = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    RYSDK::PIXEL_FORMAT format{};
    uint32_t lastBlockId = 0;
};

// The SDK hands back the OBJECT_INFO given at open; its user pointer is the tally. The
// image record and its pixels are valid only until this function returns.
void OnImage(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image) {
    auto* tally = static_cast<Tally*>(object->pUserPointer);
    {
        std::lock_guard guard(tally->lock);
        ++tally->frames;
        tally->width = image->width;
        tally->height = image->height;
        tally->format = image->pixelFormat;
        tally->lastBlockId = image->blockId;
    }
    tally->arrived.notify_one();
}

int Fail(const char* what, RYSDK::RESULT result) {
    const wchar_t* text = RYSDK::GetResultText(result);
    std::fprintf(stderr, "grab: %s failed: %ls (%d)\n", what, text ? text : L"?",
                 static_cast<int>(result));
    return 1;
}

void PrintStatistics(RYSDK::RyCamera& camera, const Tally& tally, double seconds) {
    uint64_t delivered = 0;
    uint64_t lost = 0;
    uint64_t incomplete = 0;
    camera.GetNumDeliveredFrame(delivered);
    camera.GetNumLostImage(lost);
    camera.GetNumCorruptedImage(incomplete);
    std::printf("frames received   %u\n", tally.frames);
    std::printf("image             %u x %u, pixel format 0x%08X\n", tally.width, tally.height,
                static_cast<unsigned>(tally.format));
    std::printf("last block id     %u\n", tally.lastBlockId);
    std::printf("elapsed           %.2f s (%.1f frames/s)\n", seconds,
                seconds > 0 ? tally.frames / seconds : 0.0);
    std::printf("delivered frames  %llu\n", static_cast<unsigned long long>(delivered));
    std::printf("lost frames       %llu\n", static_cast<unsigned long long>(lost));
    std::printf("incomplete frames %llu\n", static_cast<unsigned long long>(incomplete));
}

int Grab(RYSDK::RyGigE& system, uint32_t wanted) {
    Tally tally;
    RYSDK::OBJECT_INFO object{&tally, nullptr};
    RYSDK::RyCamera* camera = nullptr;
    // 8 buffers at the camera's current size and packet size; no disconnect callback.
    RYSDK::RESULT result = system.OpenCamera(0u, &camera, 8, 0, 0, 0, &object, OnImage, nullptr);
    if (result != RYSDK::RESULT_SUCCESS) {
        if (camera != nullptr)
            system.CloseCamera(camera);
        return Fail("OpenCamera", result);
    }
    const auto start = Clock::now();
    result = camera->Snap(wanted);
    if (result != RYSDK::RESULT_SUCCESS) {
        system.CloseCamera(camera);
        return Fail("Snap", result);
    }
    uint32_t frames = 0;
    {
        std::unique_lock guard(tally.lock);
        tally.arrived.wait_for(guard, std::chrono::seconds(10),
                               [&] { return tally.frames >= wanted; });
        frames = tally.frames;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    // After Abort returns no callback runs any more, so the tally is read without the lock.
    camera->Abort();
    PrintStatistics(*camera, tally, seconds);
    system.CloseCamera(camera);  // destroys the camera: the pointer is invalid from here
    return frames == wanted ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned long parsed = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 30;
    const uint32_t wanted = parsed == 0 ? 1 : static_cast<uint32_t>(parsed);
    RYSDK::RyGigE system;
    system.SetDiscoveryTimeout(500);
    RYSDK::RESULT result = system.Open();  // opens the transport layer and discovers
    if (result != RYSDK::RESULT_SUCCESS)
        return Fail("Open", result);
    unsigned int cameras = 0;
    system.GetNumCameras(&cameras);
    if (cameras == 0) {
        std::fprintf(stderr, "grab: no camera found\n");
        system.Close();
        return 3;
    }
    const int status = Grab(system, wanted);
    system.Close();
    return status;
}

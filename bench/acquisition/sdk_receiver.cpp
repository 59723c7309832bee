#include "sdk_receiver.h"

#include <cstdio>
#include <thread>

#include "measurement_window.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyEventLog.h"
#include "rysdk/RyGigE.h"

namespace ry::bench {
namespace {

constexpr unsigned int kDiscoveryTimeoutMs = 300;

uint64_t FrameBytes(const RYSDK::IMAGE_INFO& image) {
    const uint64_t bitsPerPixel = (static_cast<uint32_t>(image.pixelFormat) >> 16) & 0xFF;
    return uint64_t{image.width} * image.height * bitsPerPixel / 8;
}

// What an application's empty callback would do, plus the record.
void OnImage(RYSDK::OBJECT_INFO* object, RYSDK::IMAGE_INFO* image) {
    static_cast<CallbackLog*>(object->pUserPointer)
        ->Record(image->blockId, image->bufferStatus == 0, FrameBytes(*image));
}

// The camera the SDK opened, closed through the object that opened it.
class OpenedCamera {
  public:
    OpenedCamera(RYSDK::RyGigE& gige, RYSDK::RyCamera* camera) : gige_(gige), camera_(camera) {}
    ~OpenedCamera() { gige_.CloseCamera(camera_); }
    OpenedCamera(const OpenedCamera&) = delete;
    OpenedCamera& operator=(const OpenedCamera&) = delete;
    RYSDK::RyCamera* operator->() const { return camera_; }

  private:
    RYSDK::RyGigE& gige_;
    RYSDK::RyCamera* camera_;
};

bool Failed(RYSDK::RESULT result, const char* what) {
    if (result == RYSDK::RESULT_SUCCESS) {
        return false;
    }
    std::fprintf(stderr, "ours: %s failed (%d)\n", what, static_cast<int>(result));
    return true;
}

SdkCounters ReadCounters(const OpenedCamera& camera) {
    SdkCounters counters;
    unsigned int missing = 0;
    camera->GetNumDeliveredFrame(counters.delivered);
    camera->GetNumLostImage(counters.lost);
    camera->GetNumCorruptedImage(counters.corrupted);
    camera->GetStreamInfo(RYSDK::STREAM_INFO_MISSING_PACKETS, missing);
    counters.missingPackets = missing;
    return counters;
}

}  // namespace

std::optional<ReceiverReport> MeasureSdk(const SdkRun& run, RunBoard& board) {
    RYSDK::SetEventLogCallback(nullptr, nullptr);
    RYSDK::RyGigE gige;
    gige.SetDiscoveryTimeout(kDiscoveryTimeoutMs);
    unsigned int cameras = 0;
    if (Failed(gige.Open(), "RyGigE::Open") || Failed(gige.GetNumCameras(&cameras), "discovery"))
        return std::nullopt;
    CallbackLog log(board.trailers, LogCapacity(run.seconds));
    RYSDK::OBJECT_INFO object{&log, nullptr};
    RYSDK::RyCamera* opened = nullptr;
    if (cameras != 1 || Failed(gige.OpenCamera(0u, &opened, run.buffers, 0, 0, run.packetSize,
                                               &object, &OnImage, nullptr),
                               "OpenCamera"))
        return std::nullopt;
    const OpenedCamera camera(gige, opened);
    if (Failed(camera->Grab(), "Grab"))
        return std::nullopt;
    ReceiverSummary& summary = board.summary;
    MeasureWindow(
        log, run.seconds, [](auto until) { std::this_thread::sleep_until(until); }, summary);
    if (Failed(camera->Abort(), "Abort"))
        return std::nullopt;
    log.Summarize(summary);
    summary.hasSdkCounters = true;
    summary.sdk = ReadCounters(camera);
    return ReceiverReport{summary.figures, false};
}

}  // namespace ry::bench

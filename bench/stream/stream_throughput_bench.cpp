// How fast the receiving engine takes 2048x2048 Mono8 frames in 9000-byte packets (and, for
// comparison, 1500-byte ones) over loopback, on each receive path, and what it costs the
// receiving thread. Two ways of sending:
//  - window: the camera keeps at most a few frames ahead of the frames handed back, which
//    finds the highest lossless rate the pair sustains;
//  - paced: the camera sends at a fixed rate without looking back, as a real camera does;
//    lost or incomplete frames show that the receiver did not keep up.
// Counters: GBps (payload), frames_complete, frames_incomplete, frames_dropped (no buffer or
// never closed), rx_cpu_s_per_GB (RUSAGE_THREAD of the receiving thread, read inside the
// deliver callback) and tx_cpu_s_per_GB (the sender, which on loopback also pays the
// kernel's delivery into the receiving socket).
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "loopback_camera.h"
#include "ry/gev/stream/frame_receiver.h"

namespace {

using ry::bench::CameraShape;
using ry::bench::LoopbackCamera;
using namespace ry::gev::stream;

constexpr size_t kBuffers = 16;
constexpr uint32_t kFramesAhead = 6;

double ThreadCpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// The application side: a pool of buffers returned the moment a frame is handed back.
class BufferPool {
  public:
    explicit BufferPool(size_t bytes) : storage_(kBuffers, std::vector<uint8_t>(bytes)) {
        for (auto& buffer : storage_) {
            free_.push_back(LentBuffer{buffer.data(), buffer.size(), nullptr});
        }
    }

    bool Take(LentBuffer& buffer) {
        std::lock_guard lock(mutex_);
        if (free_.empty()) {
            return false;
        }
        buffer = free_.back();
        free_.pop_back();
        return true;
    }

    void Give(const LentBuffer& buffer) {
        std::lock_guard lock(mutex_);
        free_.push_back(buffer);
    }

  private:
    std::vector<std::vector<uint8_t>> storage_;
    std::mutex mutex_;
    std::vector<LentBuffer> free_;
};

struct DeliveryTally {
    std::atomic<uint64_t> delivered{0};
    std::atomic<uint64_t> complete{0};
    std::atomic<uint64_t> incomplete{0};
    std::atomic<bool> firstFrameExact{false};
    // Written and read on the receiving thread only, until Stop joins it.
    double cpuAtFirstFrame = 0;
    double cpuAtLastFrame = 0;
    uint64_t bytesAfterFirstFrame = 0;
};

void CountFrame(DeliveryTally& tally, const ReceivedFrame& frame,
                const std::vector<uint8_t>& image) {
    const double cpu = ThreadCpuSeconds();
    if (tally.delivered.load(std::memory_order_relaxed) == 0) {
        tally.cpuAtFirstFrame = cpu;
        tally.firstFrameExact = frame.bytesFilled == image.size() &&
                                std::memcmp(frame.buffer.data, image.data(), image.size()) == 0;
    } else {
        tally.bytesAfterFirstFrame += frame.bytesFilled;
    }
    tally.cpuAtLastFrame = cpu;
    (frame.status == FrameStatus::Complete ? tally.complete : tally.incomplete)
        .fetch_add(1, std::memory_order_relaxed);
    tally.delivered.fetch_add(1, std::memory_order_release);
    tally.delivered.notify_one();
}

void BM_LoopbackStream(benchmark::State& state) {
    const double pacedGBps = static_cast<double>(state.range(0)) / 1000.0;  // 0: window
    CameraShape shape;
    shape.packetSize = static_cast<uint32_t>(state.range(1));
    BufferPool pool(size_t{shape.width} * shape.height);
    DeliveryTally tally;
    std::vector<uint8_t> image;

    ReceiverEndpoint endpoint;
    endpoint.deviceIp = 0x7F000001;
    endpoint.localIp = 0x7F000001;
    endpoint.socketBufferBytes = 256u << 20;
    endpoint.receivePath = static_cast<ReceivePath>(state.range(2));
    ReceiverSettings settings;
    settings.resendEnabled = false;  // nobody would answer; close holes at once
    settings.packetSize = shape.packetSize;
    ReceiverCallbacks callbacks;
    callbacks.takeBuffer = [&](LentBuffer& buffer) { return pool.Take(buffer); };
    callbacks.deliver = [&](const ReceivedFrame& frame) {
        CountFrame(tally, frame, image);
        pool.Give(frame.buffer);
    };
    std::string error;
    auto receiver = FrameReceiver::Create(endpoint, settings, callbacks, &error);
    if (!receiver || !receiver->Start()) {
        state.SkipWithError(("receiver: " + error).c_str());
        return;
    }
    LoopbackCamera camera(shape, receiver->LocalPort());
    image = camera.Image();

    uint64_t sent = 0;
    uint16_t blockId = 0;
    const double txCpuStart = ThreadCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        if (pacedGBps == 0) {
            for (uint64_t seen = tally.delivered.load(std::memory_order_acquire);
                 sent >= seen + kFramesAhead; seen = tally.delivered.load()) {
                tally.delivered.wait(seen);
            }
        } else {
            const auto due =
                start + std::chrono::duration<double>(
                            static_cast<double>(sent * camera.PayloadBytes()) / (pacedGBps * 1e9));
            std::this_thread::sleep_until(
                std::chrono::time_point_cast<std::chrono::steady_clock::duration>(due));
        }
        blockId = static_cast<uint16_t>(blockId == 65535 ? 1 : blockId + 1);
        camera.SendFrame(blockId);
        ++sent;
    }
    const double txCpu = ThreadCpuSeconds() - txCpuStart;
    // Let the last frames arrive, then close whatever is still open.
    for (int i = 0; i < 200 && tally.delivered.load() < sent; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    receiver->Stop(true, [&](const LentBuffer& buffer) { pool.Give(buffer); });

    const double gigabytes = static_cast<double>(tally.complete * camera.PayloadBytes()) / 1e9;
    const double rxGigabytes = static_cast<double>(tally.bytesAfterFirstFrame) / 1e9;
    state.counters["GBps"] = gigabytes / seconds;
    state.counters["frames_sent"] = static_cast<double>(sent);
    state.counters["frames_complete"] = static_cast<double>(tally.complete.load());
    state.counters["frames_incomplete"] = static_cast<double>(tally.incomplete.load());
    state.counters["frames_dropped"] = static_cast<double>(sent - tally.delivered.load());
    state.counters["rx_cpu_s_per_GB"] =
        rxGigabytes > 0 ? (tally.cpuAtLastFrame - tally.cpuAtFirstFrame) / rxGigabytes : 0;
    state.counters["tx_cpu_s_per_GB"] =
        sent > 0 ? txCpu / (static_cast<double>(sent * camera.PayloadBytes()) / 1e9) : 0;
    state.counters["first_frame_exact"] = tally.firstFrameExact ? 1 : 0;
    state.SetBytesProcessed(static_cast<int64_t>(sent * camera.PayloadBytes()));
}

// Arguments: paced rate in MB/s (0 for the window mode), the SCPS packet size and the receive
// path (1 socket, 2 packet ring).
BENCHMARK(BM_LoopbackStream)
    ->ArgNames({"paced_MBps", "packet", "path"})
    ->ArgsProduct({{0, 1000, 2000, 3000}, {9000}, {1, 2}})
    ->Args({0, 1500, 1})
    ->Args({0, 1500, 2})
    ->MinTime(3.0)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();

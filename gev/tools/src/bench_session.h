// One run of ry-stream-bench: finds and opens the camera through the producer's C
// interface, then measures register round trips or streaming.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "RyGenTL.h"
#include "bench_options.h"
#include "frame_tally.h"

namespace ry::gev::tools {

class BenchSession {
  public:
    BenchSession() = default;
    ~BenchSession();
    BenchSession(const BenchSession&) = delete;
    BenchSession& operator=(const BenchSession&) = delete;

    bool Open(const BenchOptions& options, std::string& error);
    // Both print their result as the last line and return the process exit code.
    int MeasureLatency(uint32_t reads);
    int MeasureStream(const BenchOptions& options);
    // Streams for `options.seconds`; nullopt when the stream cannot be set up.
    std::optional<StreamFigures> Stream(const BenchOptions& options);

    // The steps of Stream for callers that count frames their own way. StartStreaming sets
    // up the stream and starts the camera (false when the stream cannot be set up);
    // NextFrame waits up to 100 ms for a filled buffer, hands its block id, completeness
    // and filled size to `onFrame`, queues it again and says whether one came.
    bool StartStreaming(const BenchOptions& options);
    bool NextFrame(const std::function<void(uint64_t, bool, uint64_t)>& onFrame);
    void StopStreaming();

  private:
    bool FindAndOpenDevice(const BenchOptions& options, std::string& error);
    bool ReadDescription(std::string& error);
    bool ExecuteCommand(const char* feature);
    uint64_t ReadFeature(const char* feature);
    uint64_t PayloadSize();
    bool SetUpStream(const BenchOptions& options);
    void PrintProducerCounters();

    bool initialized_ = false;
    TL_HANDLE system_ = nullptr;
    IF_HANDLE iface_ = nullptr;
    DEV_HANDLE device_ = nullptr;
    DS_HANDLE stream_ = nullptr;
    EVENT_HANDLE event_ = nullptr;
    std::string xml_;
    std::vector<std::vector<uint8_t>> buffers_;
};

}  // namespace ry::gev::tools

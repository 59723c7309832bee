// What ry-stream-compare measures beside throughput: when each frame reached the application
// (against the kernel's arrival time of the block's trailer), and the CPU the whole machine
// spent on the stream (receiver, emulator and the kernel's soft interrupts).
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "child_measurement.h"
#include "frame_tally.h"
#include "proc_readings.h"
#include "shared_mapping.h"

namespace ry::bench {

// CLOCK_REALTIME in nanoseconds: the clock of the kernel's packet timestamps.
int64_t RealtimeNs();

// Delivery times written by the receiver's child process into memory shared with the parent
// (mapped before the fork), one entry per frame handed to the application.
class DeliveryLog {
  public:
    static constexpr size_t kMaxFrames = 1 << 17;
    struct Entry {
        uint64_t blockId;
        int64_t deliveredNs;
    };

    void Clear();
    void Add(uint64_t blockId);  // now
    size_t Count() const;
    const Entry& At(size_t i) const;

  private:
    struct Shared {
        std::atomic<uint64_t> count{0};
        Entry entries[kMaxFrames];
    };
    SharedMapping<Shared> shared_;
};

// Arrival times of trailers from `cameraIp` (host byte order), taken from the kernel's receive
// timestamp of a packet socket on lo of its own (filtered to trailers, incoming copies only).
class TrailerClock {
  public:
    explicit TrailerClock(uint32_t cameraIp);
    ~TrailerClock();
    TrailerClock(const TrailerClock&) = delete;
    TrailerClock& operator=(const TrailerClock&) = delete;

    bool Valid() const { return fd_ >= 0; }
    void Clear();
    // Kernel arrival of block `blockId`'s latest trailer (16-bit ids), 0 when none was seen.
    int64_t ArrivalNs(uint64_t blockId) const;

  private:
    void Run();

    int fd_ = -1;
    int stopFd_ = -1;
    std::unique_ptr<std::atomic<int64_t>[]> arrivals_;
    std::thread thread_;
};

struct Latency {
    double medianUs = 0;
    double p99Us = 0;
    uint64_t frames = 0;  // deliveries matched with a trailer
};
Latency MatchLatency(const DeliveryLog& log, const TrailerClock& clock);

// CPU seconds so far of the receiver (this process), the emulator and the soft interrupts of
// every CPU; the differences over a run are what the run cost.
struct CpuSample {
    double process = 0;
    double emulator = 0;
    double softirq = 0;
};
CpuSample SampleCpu(pid_t emulator);
double MachineSeconds(const CpuSample& start, const CpuSample& end);

// The child of this process running `program` (by /proc), or -1.
pid_t FindChild(const char* program);

// One receiver's measured run, from the moment its stream is up: the clock, the CPU samples,
// the frames' tally and their delivery times.
class MeasuredRun {
  public:
    // `packetSocketsBefore`: OwnedPacketSockets() before the receiver was set up.
    MeasuredRun(double seconds, pid_t emulator, int packetSocketsBefore, DeliveryLog& log);
    bool Going() const { return std::chrono::steady_clock::now() < end_; }
    void Delivered(uint64_t blockId, bool complete, uint64_t bytes);
    ReceiverReport Finish() const;

  private:
    pid_t emulator_;
    DeliveryLog& log_;
    ReceiverReport report_;
    ry::gev::tools::FrameTally tally_;
    CpuSample cpuStart_;
    std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point end_;
};

}  // namespace ry::bench

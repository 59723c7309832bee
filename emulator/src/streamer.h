// The stream channel: sends image blocks as GVSP leader, payload and trailer packets to
// SCDA:SCP, paced by the frame rate or triggers, and serves packet resend requests from a
// window of recent blocks.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <random>
#include <thread>

#include "frame_packets.h"
#include "ry/emulator/camera.h"
#include "ry/emulator/camera_config.h"
#include "ry/gev/protocol/gvcp_payloads.h"
#include "udp_socket.h"

namespace ry::emulator {

enum class AcquisitionMode : std::uint32_t { Continuous = 0, SingleFrame = 1, MultiFrame = 2 };

struct StreamChannel {
    Endpoint destination;  // port 0: channel closed
    std::size_t packet_size = 1500;
    bool do_not_fragment = false;
    bool extended_ids = false;
    bool extended_status = false;  // GEV 1.1 resend statuses enabled
    std::uint32_t packet_delay_ns = 0;
};

struct AcquisitionPlan {
    AcquisitionMode mode = AcquisitionMode::Continuous;
    std::uint32_t frame_count = 1;
    double fps = 30.0;  // 0: as fast as possible
    bool triggered = false;
    ImageSettings image;
};

struct StreamCounters {
    std::atomic<std::uint64_t> frames{0};
    std::atomic<std::uint64_t> packets{0};
    std::atomic<std::uint64_t> bytes{0};
    std::atomic<std::uint64_t> resent{0};
};

// Event ids the streamer reports (the description's EventSelector values).
inline constexpr std::uint16_t kEventAcquisitionStart = 0x9000;
inline constexpr std::uint16_t kEventAcquisitionEnd = 0x9001;
inline constexpr std::uint16_t kEventFrameTrigger = 0x9002;
inline constexpr std::uint16_t kEventExposureEnd = 0x9003;
using EventHook =
    std::function<void(std::uint16_t event_id, std::uint64_t block_id, std::uint64_t timestamp)>;

class Streamer {
  public:
    Streamer(std::uint32_t bind_ip, std::uint32_t window_blocks, StreamCounters& counters,
             EventHook events);
    ~Streamer();
    Streamer(const Streamer&) = delete;
    // Off (the default): every payload packet is a datagram of its own, as on a camera's wire.
    void use_segmentation_trains(bool on) { gso_ok_ = on; }
    Streamer& operator=(const Streamer&) = delete;

    std::uint16_t source_port() const { return source_port_; }
    void set_channel(const StreamChannel& channel);
    void set_faults(const FaultConfig& faults);
    void set_trailer_observer(TrailerObserver observer);

    void start(const AcquisitionPlan& plan);
    void stop();
    bool acquiring() const { return acquiring_; }
    void trigger();
    void set_hold(bool hold);

    void resend(const gev::PacketResendRequest& request);
    void send_test_packet();

    // The camera's timestamp: nanoseconds (1 GHz ticks) since start or the last reset.
    std::uint64_t now_ticks() const;
    void reset_clock();

  private:
    struct SentBlock {
        std::uint64_t block_id;
        std::uint64_t timestamp;
    };
    void run();
    bool wait_for_frame(std::unique_lock<std::mutex>& lock,
                        std::chrono::steady_clock::time_point due);
    void send_block(std::unique_lock<std::mutex>& lock);
    void send_payload_fast();
    void send_payload_per_packet(const FaultConfig& faults);
    bool should_drop(const FaultConfig& faults, std::uint32_t packet_id);
    void send_single(std::uint64_t block_id, std::uint32_t packet_id, std::uint16_t status,
                     std::uint16_t flags);
    std::uint64_t next_block_id();
    void finish_acquisition();
    bool refresh_packets(std::unique_lock<std::mutex>& lock);
    bool send_datagram(const std::uint8_t* data, std::size_t size);

    UdpSocket socket_;
    std::uint16_t source_port_ = 0;
    std::uint32_t window_blocks_;
    StreamCounters& counters_;
    EventHook events_;

    mutable std::mutex mutex_;  // everything below
    std::condition_variable wake_;
    StreamChannel channel_;
    FaultConfig faults_;
    TrailerObserver trailer_observer_;
    AcquisitionPlan plan_;
    FramePackets packets_;
    std::deque<SentBlock> window_;
    std::uint64_t last_block_id_ = 0;
    std::uint32_t frames_left_ = 0;
    std::uint32_t pending_triggers_ = 0;
    bool hold_ = false;
    bool quit_ = false;
    std::atomic<bool> acquiring_{false};
    bool gso_ok_ = false;
    std::mt19937 random_{12345};
    std::vector<std::uint8_t> scratch_;
    std::atomic<std::int64_t> epoch_ns_{0};  // steady_clock time of tick 0
    std::thread thread_;
};

}  // namespace ry::emulator

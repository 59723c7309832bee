// The inside of one emulated camera. The class is split by topic over several files:
//   camera_device.cpp     construction, public controls, privilege and heartbeat
//   gvcp_server.cpp       the control socket loop and the GVCP commands
//   bootstrap_space.cpp   bootstrap registers and memory regions
//   feature_space.cpp     the camera-specific registers behind the GenICam features
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "file_store.h"
#include "message_channel.h"
#include "ry/emulator/camera_config.h"
#include "ry/gev/protocol/gvcp_payloads.h"
#include "serial_port.h"
#include "streamer.h"
#include "udp_socket.h"

namespace ry::emulator {

struct FeatureValues {
    std::uint32_t width = 640, height = 480, offset_x = 0, offset_y = 0;
    std::uint32_t pixel_format = 0x01080001;
    std::uint32_t pixel_size = 8;
    std::uint32_t acquisition_mode = 0, frame_count = 1;
    std::uint64_t frame_rate_bits = 0;
    std::uint32_t trigger_mode = 0, trigger_source = 0, trigger_activation = 0;
    std::uint32_t exposure_mode = 0, exposure_time = 10000;
    std::uint32_t gain_selector = 0;
    std::array<std::uint64_t, 4> gain_bits{};
    std::uint32_t black_level_selector = 0;
    std::array<std::uint32_t, 4> black_level{};
    std::uint32_t test_image = 0;
    std::uint32_t binning_horizontal = 1, binning_vertical = 1, binning_factor = 1;
    std::uint32_t reverse_x = 0, stream_hold = 0, readout_mode = 0;
    std::uint32_t horizontal_start = 0, horizontal_end = 639, vertical_start = 0,
                  vertical_end = 479;
    std::uint32_t strobe_offset = 0, strobe_polarity = 1;
    std::uint32_t event_selector = 0x9000, source_selector = 0, tl_params_locked = 0;
    std::uint32_t legacy_mode = 1, legacy_frame_count = 1;
};

// The last write command and its answer: a retry of it (same source, same bytes, the same
// req_id) gets the same answer again instead of a second execution.
struct AnsweredWrite {
    Endpoint from;
    std::vector<std::uint8_t> command;
    std::vector<std::uint8_t> ack;
    std::chrono::steady_clock::time_point at;
};

struct CommandOutcome {
    gev::GevStatus status = gev::GevStatus::Success;
    std::uint32_t slow_ms = 0;  // time the operation takes before it can be acknowledged
};

class CameraDevice {
  public:
    explicit CameraDevice(CameraConfig config);
    ~CameraDevice();
    CameraDevice(const CameraDevice&) = delete;
    CameraDevice& operator=(const CameraDevice&) = delete;

    const CameraConfig& config() const { return config_; }
    std::uint32_t current_ip() const;
    std::uint16_t stream_source_port() const { return streamer_->source_port(); }
    std::uint16_t control_port() const { return control_port_; }
    void set_faults(const FaultConfig& faults);
    FaultConfig faults() const;
    void fire_external_trigger();
    void set_trailer_observer(TrailerObserver observer) {
        streamer_->set_trailer_observer(std::move(observer));
    }
    const StreamCounters& counters() const { return counters_; }
    std::uint64_t legacy_stop_writes() const { return legacy_stop_writes_.load(); }

  private:
    // camera_device.cpp
    bool may_write(Endpoint from) const;
    bool may_read(Endpoint from) const;
    CommandOutcome write_ccp(Endpoint from, std::uint32_t value);
    void note_command_from(Endpoint from);
    void check_heartbeat();
    void drop_control();
    void post_event(std::uint16_t event_id, std::uint64_t block_id, std::uint64_t timestamp);
    std::uint32_t current_gvcp_config() const;

    // gvcp_server.cpp
    void serve();
    void handle_datagram(const UdpSocket& socket, Endpoint from, gev::ConstBytes datagram,
                         bool via_broadcast);
    std::vector<std::uint8_t> execute(const gev::GvcpCommandHeader& header, gev::ConstBytes payload,
                                      Endpoint from, CommandOutcome& outcome);
    std::vector<std::uint8_t> on_readreg(const gev::GvcpCommandHeader& h, gev::ConstBytes payload,
                                         Endpoint from);
    std::vector<std::uint8_t> on_writereg(const gev::GvcpCommandHeader& h, gev::ConstBytes payload,
                                          Endpoint from, CommandOutcome& outcome);
    std::vector<std::uint8_t> on_readmem(const gev::GvcpCommandHeader& h, gev::ConstBytes payload,
                                         Endpoint from);
    std::vector<std::uint8_t> on_writemem(const gev::GvcpCommandHeader& h, gev::ConstBytes payload,
                                          Endpoint from, CommandOutcome& outcome);
    void on_forceip(const gev::GvcpCommandHeader& h, gev::ConstBytes payload, Endpoint from);
    void send_ack(const UdpSocket& socket, Endpoint to, std::vector<std::uint8_t> ack,
                  const gev::GvcpCommandHeader& header, std::uint32_t slow_ms);

    // bootstrap_space.cpp
    void init_bootstrap();
    std::uint32_t boot(std::uint32_t address) const;
    void set_boot(std::uint32_t address, std::uint32_t value);
    void set_boot_text(std::uint32_t address, std::size_t width, const std::string& text);
    gev::DeviceInfo device_info() const;
    gev::GevStatus read_memory(std::uint32_t address, std::span<std::uint8_t> out);
    CommandOutcome write_memory(std::uint32_t address, gev::ConstBytes data, Endpoint from);
    std::optional<std::uint32_t> read_word(std::uint32_t address) const;
    CommandOutcome write_word(std::uint32_t address, std::uint32_t value, Endpoint from);
    CommandOutcome write_bootstrap(std::uint32_t address, std::uint32_t value, Endpoint from);
    void apply_stream_channel();
    void apply_message_channel();

    // feature_space.cpp
    std::optional<std::uint32_t> read_feature(std::uint32_t address) const;
    CommandOutcome write_feature(std::uint32_t address, std::uint32_t value);
    CommandOutcome write_image_feature(std::uint32_t address, std::uint32_t value);
    CommandOutcome write_acquisition_feature(std::uint32_t address, std::uint32_t value);
    CommandOutcome write_file_feature(std::uint32_t address, std::uint32_t value);
    CommandOutcome write_legacy(std::uint32_t address, std::uint32_t value);
    CommandOutcome start_acquisition(AcquisitionMode mode, std::uint32_t frames);
    std::uint32_t payload_size() const;

    CameraConfig config_;
    mutable std::mutex mutex_;  // registers, privilege and faults
    std::vector<std::uint8_t> bootstrap_;
    std::vector<std::uint8_t> xml_;
    FeatureValues features_;
    SerialPort serial_;
    FileStore files_;
    AnsweredWrite last_write_;
    Endpoint primary_;  // port 0: no primary application
    std::chrono::steady_clock::time_point last_primary_command_;
    std::uint32_t switchover_key_ = 0;

    StreamCounters counters_;
    std::unique_ptr<MessageChannel> messages_;
    std::unique_ptr<Streamer> streamer_;
    UdpSocket control_;
    std::uint16_t control_port_ = 0;
    UdpSocket broadcast_;
    std::atomic<bool> quit_{false};
    std::atomic<std::uint64_t> legacy_stop_writes_{0};
    std::thread server_;
};

}  // namespace ry::emulator

#include "camera_device.h"

#include <cstring>
#include <stdexcept>

#include "description.h"
#include "feature_registers.h"
#include "ry/gev/protocol/bootstrap.h"
#include "ry/gev/protocol/pixel_formats.h"

namespace ry::emulator {

namespace bs = gev::bootstrap;

namespace {

std::uint32_t require_ip(const std::string& text) {
    const auto ip = parse_ipv4(text);
    if (!ip) {
        throw std::runtime_error("not an IPv4 address: \"" + text + "\"");
    }
    return *ip;
}

std::uint32_t require_pixel_format(const std::string& name) {
    const auto code = gev::pixel_format_from_name(name);
    if (!code) {
        throw std::runtime_error("unknown pixel format: \"" + name + "\"");
    }
    return *code;
}

}  // namespace

CameraDevice::CameraDevice(CameraConfig config)
    : config_(std::move(config)), serial_(SerialIdentity{config_.model, config_.serial}) {
    const std::uint32_t ip = require_ip(config_.address);
    features_.pixel_format = require_pixel_format(config_.pixel_format);
    features_.pixel_size = gev::pixel_format_bits(features_.pixel_format);
    if (config_.width < 16 || config_.width > reg::kSensorMaxWidth || config_.width % 4 != 0 ||
        config_.height < 2 || config_.height > reg::kSensorMaxHeight || config_.height % 2 != 0) {
        throw std::runtime_error("image size must be 16..8192 (multiple of 4) x 2..8192 (even)");
    }
    if (config_.fps < 0) {
        throw std::runtime_error("the frame rate cannot be negative");
    }
    features_.width = config_.width;
    features_.height = config_.height;
    features_.horizontal_end = config_.width - 1;
    features_.vertical_end = config_.height - 1;
    double fps = config_.fps;
    std::memcpy(&features_.frame_rate_bits, &fps, sizeof fps);
    for (auto& gain : features_.gain_bits) {
        const double zero = 0.0;
        std::memcpy(&gain, &zero, sizeof zero);
    }
    xml_ = store_description(camera_xml_text(config_.trigger_entry_ext, config_.feature_variants), config_.xml_form).bytes;
    if (xml_.size() > reg::kXmlRegionSize) {
        throw std::runtime_error("the GenICam description does not fit its memory region");
    }

    const std::uint32_t bind_ip = config_.bind_any ? 0 : ip;
    control_ = UdpSocket(Endpoint{bind_ip, config_.gvcp_port}, config_.bind_any);
    if (config_.answer_broadcasts && !config_.bind_any) {
        broadcast_ = UdpSocket(Endpoint{0xFFFFFFFF, config_.gvcp_port}, true);
    }
    control_port_ = control_.local_port();
    messages_ = std::make_unique<MessageChannel>(ip);
    streamer_ = std::make_unique<Streamer>(
        ip, config_.resend_window_blocks, counters_,
        [this](std::uint16_t id, std::uint64_t block, std::uint64_t timestamp) {
            post_event(id, block, timestamp);
        });
    streamer_->use_segmentation_trains(config_.segmentation_trains);
    init_bootstrap();
    set_faults(config_.faults);
    server_ = std::thread([this] { serve(); });
}

CameraDevice::~CameraDevice() {
    quit_ = true;
    server_.join();
    streamer_.reset();  // stops the stream thread before the message channel goes
    messages_.reset();
}

std::uint32_t CameraDevice::current_ip() const {
    std::lock_guard lock(mutex_);
    return boot(bs::kCurrentIp);
}

void CameraDevice::set_faults(const FaultConfig& faults) {
    std::lock_guard lock(mutex_);
    config_.faults = faults;
    streamer_->set_faults(faults);
    messages_->set_silent(faults.unplugged);
}

std::uint32_t CameraDevice::current_gvcp_config() const {
    std::lock_guard lock(mutex_);
    return boot(bs::kGvcpConfiguration);
}

FaultConfig CameraDevice::faults() const {
    std::lock_guard lock(mutex_);
    return config_.faults;
}

void CameraDevice::fire_external_trigger() {
    std::lock_guard lock(mutex_);
    if (features_.trigger_mode == 1 && features_.trigger_source == 1) {
        streamer_->trigger();
    }
}

// Runs on the stream thread: it touches only the message channel, never the registers.
void CameraDevice::post_event(std::uint16_t event_id, std::uint64_t block_id,
                              std::uint64_t timestamp) {
    std::vector<std::uint8_t> data;
    if (event_id == kEventExposureEnd) {
        // The end of exposure carries the camera's frame count as event data.
        data.resize(4);
        gev::store_be32(data.data(), static_cast<std::uint32_t>(counters_.frames.load()));
    }
    messages_->post(event_id, block_id, timestamp, std::move(data));
}

// ---- control privilege ---------------------------------------------------------------------

bool CameraDevice::may_write(Endpoint from) const {
    return primary_.port != 0 && primary_ == from;
}

bool CameraDevice::may_read(Endpoint from) const {
    const bool exclusive = (boot(bs::kControlChannelPrivilege) & bs::kCcpExclusive) != 0;
    return !exclusive || primary_ == from;
}

CommandOutcome CameraDevice::write_ccp(Endpoint from, std::uint32_t value) {
    const std::uint32_t wanted = value & (bs::kCcpExclusive | bs::kCcpControl);
    const bool is_primary = primary_.port != 0 && primary_ == from;
    if (primary_.port != 0 && !is_primary) {
        // Another application may take over only with the key the primary allowed.
        const std::uint32_t ccp = boot(bs::kControlChannelPrivilege);
        const bool switchover = (ccp & bs::kCcpSwitchoverEnable) != 0 &&
                                (value >> 16) == (switchover_key_ & 0xFFFF) && wanted != 0;
        if (!switchover) {
            return {gev::GevStatus::AccessDenied, 0};
        }
    }
    if (wanted == 0) {
        if (is_primary) {
            drop_control();
        }
        return {};
    }
    primary_ = from;
    last_primary_command_ = std::chrono::steady_clock::now();
    set_boot(bs::kControlChannelPrivilege,
             value & (bs::kCcpExclusive | bs::kCcpControl | bs::kCcpSwitchoverEnable));
    set_boot(bs::kPrimaryApplicationPort, from.port);
    set_boot(bs::kPrimaryApplicationIp, from.ip);
    return {};
}

void CameraDevice::note_command_from(Endpoint from) {
    if (primary_.port != 0 && primary_ == from) {
        last_primary_command_ = std::chrono::steady_clock::now();
    }
}

void CameraDevice::check_heartbeat() {
    if (primary_.port == 0 || (boot(bs::kGvcpConfiguration) & bs::kConfigHeartbeatDisable) != 0) {
        return;
    }
    const auto timeout = std::chrono::milliseconds(boot(bs::kHeartbeatTimeout));
    if (std::chrono::steady_clock::now() - last_primary_command_ > timeout) {
        drop_control();
    }
}

// The primary application is gone: the camera is open again, streams stop and the
// channels it configured close.
void CameraDevice::drop_control() {
    primary_ = {};
    set_boot(bs::kControlChannelPrivilege, 0);
    set_boot(bs::kPrimaryApplicationPort, 0);
    set_boot(bs::kPrimaryApplicationIp, 0);
    streamer_->stop();
    set_boot(bs::kStreamChannelPort, 0);
    set_boot(bs::kMessageChannelPort, 0);
    apply_stream_channel();
    apply_message_channel();
}

}  // namespace ry::emulator

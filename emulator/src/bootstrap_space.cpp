#include <algorithm>
#include <cstring>

#include "camera_device.h"
#include "description.h"
#include "feature_registers.h"
#include "ry/gev/protocol/bootstrap.h"

namespace ry::emulator {

namespace bs = gev::bootstrap;
using gev::GevStatus;

namespace {

constexpr std::uint32_t kBootstrapSize = 0x1000;
constexpr std::uint32_t kMinPacketSize = 576;
constexpr std::uint32_t kMaxPacketSize = 16380;
constexpr std::uint32_t kPendingTimeoutMs = 500;

bool within(std::uint32_t address, std::size_t size, std::uint32_t start, std::size_t length) {
    return address >= start && std::uint64_t{address} + size <= std::uint64_t{start} + length;
}

// A stable locally administered MAC derived from the serial number.
std::array<std::uint8_t, 6> mac_for(const std::string& serial, std::uint32_t ip) {
    std::uint32_t hash = 2166136261u;
    for (char c : serial) {
        hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619u;
    }
    hash ^= ip;
    return {0x02,
            0x52,
            static_cast<std::uint8_t>(hash >> 24),
            static_cast<std::uint8_t>(hash >> 16),
            static_cast<std::uint8_t>(hash >> 8),
            static_cast<std::uint8_t>(hash)};
}

}  // namespace

std::uint32_t CameraDevice::boot(std::uint32_t address) const {
    return gev::load_be32(bootstrap_.data() + address);
}

void CameraDevice::set_boot(std::uint32_t address, std::uint32_t value) {
    gev::store_be32(bootstrap_.data() + address, value);
}

void CameraDevice::set_boot_text(std::uint32_t address, std::size_t width,
                                 const std::string& text) {
    std::fill_n(bootstrap_.begin() + address, width, 0);
    std::memcpy(bootstrap_.data() + address, text.data(), std::min(width, text.size()));
}

void CameraDevice::init_bootstrap() {
    bootstrap_.assign(kBootstrapSize, 0);
    const std::uint32_t ip = *parse_ipv4(config_.address);
    const auto mac = mac_for(config_.serial, ip);
    set_boot(bs::kVersion, 0x00020000);
    set_boot(bs::kDeviceMode, bs::kDeviceModeBigEndian | bs::kCharacterSetUtf8);
    set_boot(bs::kMacHigh, (mac[0] << 8) | mac[1]);
    set_boot(bs::kMacLow, gev::load_be32(mac.data() + 2));
    set_boot(bs::kIpConfigCapability,
             bs::kIpConfigLla | bs::kIpConfigDhcp | bs::kIpConfigPersistent);
    set_boot(bs::kIpConfigCurrent, bs::kIpConfigLla | bs::kIpConfigDhcp);
    set_boot(bs::kCurrentIp, ip);
    set_boot(bs::kCurrentSubnetMask, 0xFF000000);
    set_boot_text(bs::kManufacturerName, bs::kNameFieldSize, config_.vendor);
    set_boot_text(bs::kModelName, bs::kNameFieldSize, config_.model);
    set_boot_text(bs::kDeviceVersion, bs::kNameFieldSize, config_.device_version);
    set_boot_text(bs::kManufacturerInfo, bs::kManufacturerInfoSize, "Virtual GigE Vision camera");
    set_boot_text(bs::kSerialNumber, bs::kSerialNumberSize, config_.serial);
    const StoredDescription stored =
        store_description(camera_xml_text(config_.trigger_entry_ext, config_.feature_variants), config_.xml_form);
    set_boot_text(bs::kFirstUrl, bs::kUrlSize,
                  local_url(stored.file_name, reg::kXmlAddress, xml_.size()));
    set_boot(bs::kNetworkInterfaceCount, 1);
    set_boot(bs::kLinkSpeed, 10000);
    set_boot(bs::kMessageChannelCount, 1);
    set_boot(bs::kStreamChannelCount, 1);
    set_boot(bs::kActiveLinkCount, 1);
    set_boot(bs::kGvspCapability, bs::kGvspCapSourcePort | bs::kGvspCapLegacyBlockId);
    set_boot(bs::kMessageChannelCapability, bs::kMessageCapSourcePort);
    set_boot(bs::kGvcpCapability,
             bs::kCapUserDefinedName | bs::kCapSerialNumber | bs::kCapHeartbeatDisable |
                 bs::kCapLinkSpeed | bs::kCapPrimaryApplicationRegisters |
                 bs::kCapExtendedStatus11 | bs::kCapPrimarySwitchover | bs::kCapPendingAck |
                 bs::kCapEventData | bs::kCapEvent | bs::kCapPacketResend | bs::kCapWriteMem |
                 bs::kCapConcatenation);
    set_boot(bs::kHeartbeatTimeout, bs::kHeartbeatDefaultMs);
    set_boot(bs::kTimestampFrequencyHigh, 0);
    set_boot(bs::kTimestampFrequencyLow, 1000000000);
    set_boot(bs::kPendingTimeout, kPendingTimeoutMs);
    set_boot(bs::kPhysicalLinkCapability, 1);
    set_boot(bs::kMessageChannelTransmissionTimeout, 300);
    set_boot(bs::kMessageChannelRetryCount, 2);
    set_boot(bs::kMessageChannelSourcePort, messages_->source_port());
    set_boot(bs::kStreamChannelPacketSize, 1500);
    set_boot(bs::kStreamChannelSourcePort, streamer_->source_port());
    apply_stream_channel();
}

gev::DeviceInfo CameraDevice::device_info() const {
    std::array<std::uint8_t, gev::kDiscoveryAckPayloadSize> image{};
    std::copy_n(bootstrap_.begin(), image.size(), image.begin());
    return *gev::decode_device_info(image);
}

// ---- memory regions ------------------------------------------------------------------------

GevStatus CameraDevice::read_memory(std::uint32_t address, std::span<std::uint8_t> out) {
    if (address % 4 != 0 || out.size() % 4 != 0) {
        return GevStatus::BadAlignment;
    }
    // Reads past the end of the description see zeros, so a host may round its last
    // chunk up as it likes.
    if (within(address, out.size(), reg::kXmlAddress, reg::kXmlRegionSize)) {
        std::fill(out.begin(), out.end(), 0);
        const std::size_t from = address - reg::kXmlAddress;
        const std::size_t n = std::min(out.size(), xml_.size() - std::min(from, xml_.size()));
        std::copy_n(xml_.begin() + static_cast<std::ptrdiff_t>(from), n, out.begin());
        return GevStatus::Success;
    }
    if (within(address, out.size(), reg::kFileAccessBuffer, kFileBufferSize)) {
        std::copy_n(files_.buffer().begin() + (address - reg::kFileAccessBuffer), out.size(),
                    out.begin());
        return GevStatus::Success;
    }
    if (within(address, out.size(), kSerialReceiveData, kSerialReceiveWindow)) {
        serial_.read_received(out);
        return GevStatus::Success;
    }
    if (within(address, out.size(), 0, kBootstrapSize)) {
        std::copy_n(bootstrap_.begin() + address, out.size(), out.begin());
        if (within(bs::kControlSwitchoverKey, 4, address, out.size())) {
            std::fill_n(out.begin() + (bs::kControlSwitchoverKey - address), 4, 0);  // write-only
        }
        return GevStatus::Success;
    }
    for (std::size_t i = 0; i < out.size(); i += 4) {
        const auto word = read_word(address + static_cast<std::uint32_t>(i));
        if (!word) {
            return GevStatus::InvalidAddress;
        }
        gev::store_be32(out.data() + i, *word);
    }
    return GevStatus::Success;
}

std::optional<std::uint32_t> CameraDevice::read_word(std::uint32_t address) const {
    if (address < kBootstrapSize) {
        return address == bs::kControlSwitchoverKey ? 0 : boot(address);
    }
    if (address == kSerialReceiveCount) {
        // Never more than one read of the receive window can fetch; the rest waits.
        return std::min(serial_.waiting_bytes(), kSerialReceiveWindow);
    }
    if (address == kSerialTriggerWord) {
        return serial_.trigger_word();
    }
    if (within(address, 4, kSerialTransmitBlock, kSerialTransmitWindow)) {
        return 0;  // the transmit block is write-only; reads see nothing
    }
    return read_feature(address);
}

CommandOutcome CameraDevice::write_memory(std::uint32_t address, gev::ConstBytes data,
                                          Endpoint from) {
    if (address % 4 != 0 || data.size() % 4 != 0 || data.empty()) {
        return {GevStatus::BadAlignment, 0};
    }
    if (address == bs::kControlChannelPrivilege && data.size() == 4) {
        return write_ccp(from, gev::load_be32(data.data()));  // the one write open to all
    }
    if (!may_write(from)) {
        return {GevStatus::AccessDenied, 0};
    }
    if (within(address, data.size(), reg::kFileAccessBuffer, kFileBufferSize)) {
        std::copy(data.begin(), data.end(),
                  files_.buffer().begin() + (address - reg::kFileAccessBuffer));
        return {};
    }
    if (address == kSerialTransmitBlock && data.size() <= kSerialTransmitWindow) {
        return {serial_.write_transmit_block(data), 0};
    }
    if (within(address, data.size(), reg::kXmlAddress, reg::kXmlRegionSize)) {
        return {GevStatus::WriteProtect, 0};
    }
    CommandOutcome total;
    for (std::size_t i = 0; i < data.size(); i += 4) {
        const CommandOutcome one = write_word(address + static_cast<std::uint32_t>(i),
                                              gev::load_be32(data.data() + i), from);
        if (one.status != GevStatus::Success) {
            return one;
        }
        total.slow_ms += one.slow_ms;
    }
    return total;
}

CommandOutcome CameraDevice::write_word(std::uint32_t address, std::uint32_t value, Endpoint from) {
    if (address < kBootstrapSize) {
        return write_bootstrap(address, value, from);
    }
    if (address == kSerialTriggerWord) {
        serial_.set_trigger_word(value);
        if (features_.trigger_mode == 1 && features_.trigger_source == 1) {
            streamer_->trigger();  // the trigger word drives the external trigger line
        }
        return {};
    }
    if (address == kSerialReceiveCount ||
        within(address, 4, kSerialReceiveData, kSerialReceiveWindow)) {
        return {GevStatus::WriteProtect, 0};
    }
    return write_feature(address, value);
}

CommandOutcome CameraDevice::write_bootstrap(std::uint32_t address, std::uint32_t value, Endpoint) {
    const std::uint32_t scp = bs::kStreamChannelPort;
    switch (address) {
        case bs::kIpConfigCurrent:
            set_boot(address,
                     bs::kIpConfigLla | (value & (bs::kIpConfigDhcp | bs::kIpConfigPersistent)));
            return {};
        case bs::kPersistentIp:
        case bs::kPersistentSubnetMask:
        case bs::kPersistentGateway:
            set_boot(address, value);
            return {};
        case bs::kHeartbeatTimeout:
            set_boot(address, std::max(value, bs::kHeartbeatMinimumMs));
            return {};
        case bs::kTimestampControl: {
            if (value & 0x1) {
                streamer_->reset_clock();
            }
            if (value & 0x2) {
                const std::uint64_t ticks = streamer_->now_ticks();
                set_boot(bs::kTimestampValueHigh, static_cast<std::uint32_t>(ticks >> 32));
                set_boot(bs::kTimestampValueLow, static_cast<std::uint32_t>(ticks));
            }
            return {};
        }
        case bs::kGvcpConfiguration:
            set_boot(address, value & (bs::kConfigHeartbeatDisable | bs::kConfigPendingAck |
                                       bs::kConfigExtendedStatus11));
            apply_stream_channel();
            return {};
        case bs::kControlSwitchoverKey:
            switchover_key_ = value & 0xFFFF;
            return {};
        case bs::kGvspConfiguration:
            if (streamer_->acquiring()) {
                return {GevStatus::AccessDenied, 0};
            }
            set_boot(address, value & bs::kGvspConfigExtendedIds);
            apply_stream_channel();
            return {};
        case bs::kMessageChannelPort:
        case bs::kMessageChannelDestination:
        case bs::kMessageChannelTransmissionTimeout:
        case bs::kMessageChannelRetryCount:
            set_boot(address,
                     address == bs::kMessageChannelPort ? value & bs::kPortHostPortMask : value);
            apply_message_channel();
            return {};
        default:
            break;
    }
    if (address == scp || address == bs::kStreamChannelDestination ||
        address == bs::kStreamChannelPacketDelay) {
        set_boot(address, address == scp ? value & bs::kPortHostPortMask : value);
        if (address == scp && (value & bs::kPortHostPortMask) == 0) {
            streamer_->stop();  // host port 0 closes the channel
        }
        apply_stream_channel();
        return {};
    }
    if (address == bs::kStreamChannelPacketSize) {
        const std::uint32_t size = value & bs::kScpsPacketSizeMask;
        if (size < kMinPacketSize || size > kMaxPacketSize) {
            return {GevStatus::InvalidParameter, 0};
        }
        set_boot(address, (value & bs::kScpsDoNotFragment) | (size & ~3u));
        apply_stream_channel();
        if (value & bs::kScpsFireTestPacket) {
            streamer_->send_test_packet();
        }
        return {};
    }
    if (within(address, 4, bs::kUserDefinedName, bs::kUserDefinedNameSize)) {
        set_boot(address, value);
        return {};
    }
    return {GevStatus::WriteProtect, 0};
}

void CameraDevice::apply_stream_channel() {
    StreamChannel channel;
    channel.destination = {boot(bs::kStreamChannelDestination),
                           static_cast<std::uint16_t>(boot(bs::kStreamChannelPort))};
    const std::uint32_t scps = boot(bs::kStreamChannelPacketSize);
    channel.packet_size = scps & bs::kScpsPacketSizeMask;
    channel.do_not_fragment = (scps & bs::kScpsDoNotFragment) != 0;
    channel.extended_ids = (boot(bs::kGvspConfiguration) & bs::kGvspConfigExtendedIds) != 0;
    channel.extended_status = (boot(bs::kGvcpConfiguration) & bs::kConfigExtendedStatus11) != 0;
    channel.packet_delay_ns = boot(bs::kStreamChannelPacketDelay);  // 1 GHz ticks
    streamer_->set_channel(channel);
}

void CameraDevice::apply_message_channel() {
    MessageSettings settings;
    settings.destination = {boot(bs::kMessageChannelDestination),
                            static_cast<std::uint16_t>(boot(bs::kMessageChannelPort))};
    // Bounded so that a careless host cannot stall the channel for minutes.
    settings.timeout_ms =
        std::clamp<std::uint32_t>(boot(bs::kMessageChannelTransmissionTimeout), 10, 2000);
    settings.retries = std::min<std::uint32_t>(boot(bs::kMessageChannelRetryCount), 10);
    settings.extended_ids = (boot(bs::kGvspConfiguration) & bs::kGvspConfigExtendedIds) != 0;
    messages_->configure(settings);
}

}  // namespace ry::emulator

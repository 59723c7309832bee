// Payload layouts of the GVCP commands and acknowledges. Each command has an encoder
// building the whole datagram and a decoder reading its payload (as returned by
// command_payload / ack_payload). Decoders return std::nullopt for payloads whose size
// does not fit the layout; they never read past the span.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ry/gev/protocol/gvcp.h"

namespace ry::gev {

// ---- DISCOVERY ---------------------------------------------------------------------------

// The 248-byte DISCOVERY_ACK payload: an image of bootstrap registers 0x0000..0x00F7.
struct DeviceInfo {
    std::uint16_t version_major = 0;
    std::uint16_t version_minor = 0;
    std::uint32_t device_mode = 0;
    std::array<std::uint8_t, 6> mac{};
    std::uint32_t ip_config_supported = 0;
    std::uint32_t ip_config_current = 0;
    std::uint32_t ip = 0;  // first octet in the most significant byte
    std::uint32_t subnet_mask = 0;
    std::uint32_t gateway = 0;
    std::string manufacturer;       // at most 32 bytes on the wire
    std::string model;              // 32
    std::string device_version;     // 32
    std::string manufacturer_info;  // 48
    std::string serial_number;      // 16
    std::string user_defined_name;  // 16
};

std::array<std::uint8_t, kDiscoveryAckPayloadSize> encode_device_info(const DeviceInfo& info);
// Text fields stop at the first NUL or at the field width, whichever comes first.
std::optional<DeviceInfo> decode_device_info(ConstBytes payload);

std::vector<std::uint8_t> make_discovery_command(std::uint16_t req_id, bool allow_broadcast_ack);
std::vector<std::uint8_t> make_discovery_ack(std::uint16_t ack_id, const DeviceInfo& info);

// ---- READREG / WRITEREG ------------------------------------------------------------------

struct RegisterWrite {
    std::uint32_t address = 0;
    std::uint32_t value = 0;
};

// Fails (nullopt) for 0 or more than kMaxReadRegCount addresses.
std::optional<std::vector<std::uint8_t>> make_readreg_command(
    std::uint16_t req_id, const std::vector<std::uint32_t>& addresses);
std::optional<std::vector<std::uint32_t>> decode_readreg_command(ConstBytes payload);
std::vector<std::uint8_t> make_readreg_ack(std::uint16_t status, std::uint16_t ack_id,
                                           const std::vector<std::uint32_t>& values);
std::optional<std::vector<std::uint32_t>> decode_readreg_ack(ConstBytes payload);

// Fails (nullopt) for 0 or more than kMaxWriteRegCount pairs.
std::optional<std::vector<std::uint8_t>> make_writereg_command(
    std::uint16_t req_id, const std::vector<RegisterWrite>& writes);
std::optional<std::vector<RegisterWrite>> decode_writereg_command(ConstBytes payload);
// `index` is the number of registers written (n on success, the failing index on error).
std::vector<std::uint8_t> make_writereg_ack(std::uint16_t status, std::uint16_t ack_id,
                                            std::uint16_t index);
std::optional<std::uint16_t> decode_writereg_ack(ConstBytes payload);

// ---- READMEM / WRITEMEM ------------------------------------------------------------------

struct ReadMemRequest {
    std::uint32_t address = 0;
    std::uint16_t count = 0;
};

struct MemoryBlock {
    std::uint32_t address = 0;
    std::vector<std::uint8_t> data;
};

// Alignment and the 536-byte limit are the device's to judge (it answers BAD_ALIGNMENT or
// INVALID_PARAMETER); these encoders only refuse what cannot be framed.
std::vector<std::uint8_t> make_readmem_command(std::uint16_t req_id, ReadMemRequest request);
std::optional<ReadMemRequest> decode_readmem_command(ConstBytes payload);
std::optional<std::vector<std::uint8_t>> make_readmem_ack(std::uint16_t ack_id,
                                                          std::uint32_t address, ConstBytes data);
std::optional<MemoryBlock> decode_readmem_ack(ConstBytes payload);

std::optional<std::vector<std::uint8_t>> make_writemem_command(std::uint16_t req_id,
                                                               std::uint32_t address,
                                                               ConstBytes data);
std::optional<MemoryBlock> decode_writemem_command(ConstBytes payload);
// `index` is the number of bytes written.
std::vector<std::uint8_t> make_writemem_ack(std::uint16_t status, std::uint16_t ack_id,
                                            std::uint16_t index);
std::optional<std::uint16_t> decode_writemem_ack(ConstBytes payload);

// ---- PACKETRESEND ------------------------------------------------------------------------

struct PacketResendRequest {
    std::uint16_t stream_channel = 0;
    std::uint64_t block_id = 0;         // 16 bits unless extended_ids
    std::uint32_t first_packet_id = 0;  // 24 bits unless extended_ids
    std::uint32_t last_packet_id = 0;
    bool extended_ids = false;
};

std::vector<std::uint8_t> make_packetresend_command(std::uint16_t req_id,
                                                    const PacketResendRequest& request);
// `flags` is the command's flag byte (kFlagExtendedIds selects the 20-byte layout).
std::optional<PacketResendRequest> decode_packetresend_command(std::uint8_t flags,
                                                               ConstBytes payload);

// ---- FORCEIP -----------------------------------------------------------------------------

struct ForceIpRequest {
    std::array<std::uint8_t, 6> mac{};
    std::uint32_t ip = 0;
    std::uint32_t subnet_mask = 0;
    std::uint32_t gateway = 0;
};

inline constexpr std::size_t kForceIpPayloadSize = 56;
std::vector<std::uint8_t> make_forceip_command(std::uint16_t req_id, std::uint8_t flags,
                                               const ForceIpRequest& request);
std::optional<ForceIpRequest> decode_forceip_command(ConstBytes payload);

// ---- PENDING_ACK -------------------------------------------------------------------------

std::vector<std::uint8_t> make_pending_ack(std::uint16_t ack_id,
                                           std::uint16_t time_to_completion_ms);
// Returns the time to completion in milliseconds.
std::optional<std::uint16_t> decode_pending_ack(ConstBytes payload);

// ---- EVENT / EVENTDATA -------------------------------------------------------------------

struct EventItem {
    std::uint16_t event_id = 0;
    std::uint16_t stream_channel = 0xFFFF;  // 0xFFFF: not tied to a stream channel
    std::uint64_t block_id = 0;             // 16 bits unless extended ids
    std::uint64_t timestamp = 0;
    std::vector<std::uint8_t> data;  // EVENTDATA only
};

inline constexpr std::size_t kEventItemSize = 16;
inline constexpr std::size_t kExtendedEventItemSize = 24;

// EVENT_CMD carrying one or more items (no data). Fails when they do not fit 540 bytes.
std::optional<std::vector<std::uint8_t>> make_event_command(std::uint16_t req_id, bool extended_ids,
                                                            const std::vector<EventItem>& items);
std::optional<std::vector<EventItem>> decode_event_command(std::uint8_t flags, ConstBytes payload);

// EVENTDATA_CMD with one item and its data. Fails when the data do not fit.
std::optional<std::vector<std::uint8_t>> make_eventdata_command(std::uint16_t req_id,
                                                                bool extended_ids,
                                                                const EventItem& item);
std::optional<std::vector<EventItem>> decode_eventdata_command(std::uint8_t flags,
                                                               ConstBytes payload);

}  // namespace ry::gev

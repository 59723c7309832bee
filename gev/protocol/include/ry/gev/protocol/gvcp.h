// GVCP (control protocol) message headers, codes and limits.
//
// Decoders take a byte span and return std::nullopt when the buffer is shorter than the
// message it claims to be or a fixed field is wrong; they never read past the span.
// Encoders return the complete datagram.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "ry/gev/protocol/byte_order.h"

namespace ry::gev {

inline constexpr std::uint16_t kGvcpPort = 3956;
inline constexpr std::uint8_t kGvcpKey = 0x42;
inline constexpr std::size_t kGvcpHeaderSize = 8;
inline constexpr std::size_t kGvcpMaxPayload = 540;
inline constexpr std::size_t kGvcpMaxDatagram = kGvcpHeaderSize + kGvcpMaxPayload;
inline constexpr std::size_t kMaxMemoryAccess = 536;  // READMEM/WRITEMEM data bytes
inline constexpr std::size_t kMaxReadRegCount = kGvcpMaxPayload / 4;
inline constexpr std::size_t kMaxWriteRegCount = kGvcpMaxPayload / 8;
inline constexpr std::size_t kDiscoveryAckPayloadSize = 248;

// Command flag byte.
inline constexpr std::uint8_t kFlagAckRequired = 0x01;
inline constexpr std::uint8_t kFlagBroadcastAck = 0x10;  // DISCOVERY, FORCEIP
inline constexpr std::uint8_t kFlagExtendedIds = 0x10;   // PACKETRESEND, EVENT, EVENTDATA
inline constexpr std::uint8_t kFlagScheduledAction = 0x80;

enum class GvcpCommand : std::uint16_t {
    Discovery = 0x0002,
    ForceIp = 0x0004,
    PacketResend = 0x0040,
    ReadReg = 0x0080,
    WriteReg = 0x0082,
    ReadMem = 0x0084,
    WriteMem = 0x0086,
    Event = 0x00C0,
    EventData = 0x00C2,
    Action = 0x0100,
};

enum class GvcpAck : std::uint16_t {
    Discovery = 0x0003,
    ForceIp = 0x0005,
    PacketResend = 0x0041,
    ReadReg = 0x0081,
    WriteReg = 0x0083,
    ReadMem = 0x0085,
    WriteMem = 0x0087,
    Pending = 0x0089,
    Event = 0x00C1,
    EventData = 0x00C3,
    Action = 0x0101,
};

// The acknowledge code answering a command code (command + 1).
inline constexpr std::uint16_t ack_code_for(std::uint16_t command) {
    return static_cast<std::uint16_t>(command + 1);
}

// Status codes of GVCP acknowledges and GVSP packets.
enum class GevStatus : std::uint16_t {
    Success = 0x0000,
    PacketResend = 0x0100,
    NotImplemented = 0x8001,
    InvalidParameter = 0x8002,
    InvalidAddress = 0x8003,
    WriteProtect = 0x8004,
    BadAlignment = 0x8005,
    AccessDenied = 0x8006,
    Busy = 0x8007,
    LocalProblem = 0x8008,
    MsgMismatch = 0x8009,
    InvalidProtocol = 0x800A,
    NoMsg = 0x800B,
    PacketUnavailable = 0x800C,
    DataOverrun = 0x800D,
    InvalidHeader = 0x800E,
    WrongConfig = 0x800F,
    PacketNotYetAvailable = 0x8010,
    PacketAndPreviousRemoved = 0x8011,
    PacketRemoved = 0x8012,
    NoRefTime = 0x8013,
    PacketTemporarilyUnavailable = 0x8014,
    Overflow = 0x8015,
    ActionLate = 0x8016,
    LeaderTrailerOverflow = 0x8017,
    Error = 0x8FFF,
};

inline constexpr bool is_error(std::uint16_t status) {
    return (status & 0x8000) != 0;
}

// Short upper-case name of a status ("ACCESS_DENIED"); "UNKNOWN" for unlisted codes.
const char* status_name(std::uint16_t status);

struct GvcpCommandHeader {
    std::uint8_t flags = 0;
    std::uint16_t command = 0;
    std::uint16_t length = 0;  // payload bytes after the header
    std::uint16_t req_id = 0;
};

struct GvcpAckHeader {
    std::uint16_t status = 0;
    std::uint16_t acknowledge = 0;
    std::uint16_t length = 0;
    std::uint16_t ack_id = 0;
};

// True when the datagram starts like a command (key byte 0x42).
inline bool looks_like_command(ConstBytes datagram) {
    return !datagram.empty() && datagram[0] == kGvcpKey;
}

// Reads the command header. Fails when fewer than 8 bytes are given or the key is wrong;
// does not check the length field against the datagram (see command_payload).
std::optional<GvcpCommandHeader> decode_command_header(ConstBytes datagram);
std::optional<GvcpAckHeader> decode_ack_header(ConstBytes datagram);

// The payload that the header's length announces; nullopt when the datagram is shorter
// than header + length. Trailing bytes beyond the announced length are ignored.
std::optional<ConstBytes> command_payload(ConstBytes datagram, const GvcpCommandHeader& header);
std::optional<ConstBytes> ack_payload(ConstBytes datagram, const GvcpAckHeader& header);

void encode_command_header(const GvcpCommandHeader& header, std::uint8_t* out);
void encode_ack_header(const GvcpAckHeader& header, std::uint8_t* out);

// Complete datagrams: header with the length of the payload, followed by the payload.
std::vector<std::uint8_t> make_command(std::uint16_t command, std::uint8_t flags,
                                       std::uint16_t req_id, ConstBytes payload = {});
std::vector<std::uint8_t> make_ack(std::uint16_t status, std::uint16_t acknowledge,
                                   std::uint16_t ack_id, ConstBytes payload = {});

// Next request id after `id`, skipping 0 on wrap.
inline constexpr std::uint16_t next_req_id(std::uint16_t id) {
    return id == 0xFFFF ? std::uint16_t{1} : static_cast<std::uint16_t>(id + 1);
}

}  // namespace ry::gev

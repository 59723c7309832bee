#include "ry/gev/protocol/gvcp.h"

namespace ry::gev {

const char* status_name(std::uint16_t status) {
    switch (static_cast<GevStatus>(status)) {
        case GevStatus::Success:
            return "SUCCESS";
        case GevStatus::PacketResend:
            return "PACKET_RESEND";
        case GevStatus::NotImplemented:
            return "NOT_IMPLEMENTED";
        case GevStatus::InvalidParameter:
            return "INVALID_PARAMETER";
        case GevStatus::InvalidAddress:
            return "INVALID_ADDRESS";
        case GevStatus::WriteProtect:
            return "WRITE_PROTECT";
        case GevStatus::BadAlignment:
            return "BAD_ALIGNMENT";
        case GevStatus::AccessDenied:
            return "ACCESS_DENIED";
        case GevStatus::Busy:
            return "BUSY";
        case GevStatus::LocalProblem:
            return "LOCAL_PROBLEM";
        case GevStatus::MsgMismatch:
            return "MSG_MISMATCH";
        case GevStatus::InvalidProtocol:
            return "INVALID_PROTOCOL";
        case GevStatus::NoMsg:
            return "NO_MSG";
        case GevStatus::PacketUnavailable:
            return "PACKET_UNAVAILABLE";
        case GevStatus::DataOverrun:
            return "DATA_OVERRUN";
        case GevStatus::InvalidHeader:
            return "INVALID_HEADER";
        case GevStatus::WrongConfig:
            return "WRONG_CONFIG";
        case GevStatus::PacketNotYetAvailable:
            return "PACKET_NOT_YET_AVAILABLE";
        case GevStatus::PacketAndPreviousRemoved:
            return "PACKET_AND_PREV_REMOVED_FROM_MEMORY";
        case GevStatus::PacketRemoved:
            return "PACKET_REMOVED_FROM_MEMORY";
        case GevStatus::NoRefTime:
            return "NO_REF_TIME";
        case GevStatus::PacketTemporarilyUnavailable:
            return "PACKET_TEMPORARILY_UNAVAILABLE";
        case GevStatus::Overflow:
            return "OVERFLOW";
        case GevStatus::ActionLate:
            return "ACTION_LATE";
        case GevStatus::LeaderTrailerOverflow:
            return "LEADER_TRAILER_OVERFLOW";
        case GevStatus::Error:
            return "ERROR";
    }
    return "UNKNOWN";
}

std::optional<GvcpCommandHeader> decode_command_header(ConstBytes datagram) {
    if (datagram.size() < kGvcpHeaderSize || datagram[0] != kGvcpKey) {
        return std::nullopt;
    }
    const std::uint8_t* p = datagram.data();
    return GvcpCommandHeader{p[1], load_be16(p + 2), load_be16(p + 4), load_be16(p + 6)};
}

std::optional<GvcpAckHeader> decode_ack_header(ConstBytes datagram) {
    if (datagram.size() < kGvcpHeaderSize) {
        return std::nullopt;
    }
    const std::uint8_t* p = datagram.data();
    return GvcpAckHeader{load_be16(p), load_be16(p + 2), load_be16(p + 4), load_be16(p + 6)};
}

static std::optional<ConstBytes> announced_payload(ConstBytes datagram, std::uint16_t length) {
    if (datagram.size() < kGvcpHeaderSize + length) {
        return std::nullopt;
    }
    return datagram.subspan(kGvcpHeaderSize, length);
}

std::optional<ConstBytes> command_payload(ConstBytes datagram, const GvcpCommandHeader& header) {
    return announced_payload(datagram, header.length);
}

std::optional<ConstBytes> ack_payload(ConstBytes datagram, const GvcpAckHeader& header) {
    return announced_payload(datagram, header.length);
}

void encode_command_header(const GvcpCommandHeader& header, std::uint8_t* out) {
    out[0] = kGvcpKey;
    out[1] = header.flags;
    store_be16(out + 2, header.command);
    store_be16(out + 4, header.length);
    store_be16(out + 6, header.req_id);
}

void encode_ack_header(const GvcpAckHeader& header, std::uint8_t* out) {
    store_be16(out, header.status);
    store_be16(out + 2, header.acknowledge);
    store_be16(out + 4, header.length);
    store_be16(out + 6, header.ack_id);
}

std::vector<std::uint8_t> make_command(std::uint16_t command, std::uint8_t flags,
                                       std::uint16_t req_id, ConstBytes payload) {
    std::vector<std::uint8_t> out(kGvcpHeaderSize + payload.size());
    encode_command_header({flags, command, static_cast<std::uint16_t>(payload.size()), req_id},
                          out.data());
    std::copy(payload.begin(), payload.end(), out.begin() + kGvcpHeaderSize);
    return out;
}

std::vector<std::uint8_t> make_ack(std::uint16_t status, std::uint16_t acknowledge,
                                   std::uint16_t ack_id, ConstBytes payload) {
    std::vector<std::uint8_t> out(kGvcpHeaderSize + payload.size());
    encode_ack_header({status, acknowledge, static_cast<std::uint16_t>(payload.size()), ack_id},
                      out.data());
    std::copy(payload.begin(), payload.end(), out.begin() + kGvcpHeaderSize);
    return out;
}

}  // namespace ry::gev

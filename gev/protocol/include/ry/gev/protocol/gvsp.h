// GVSP (stream protocol) packet headers, leaders and trailers.
//
// A packet is a header (8 bytes with 16-bit block and 24-bit packet ids, 20 bytes with
// extended ids) followed by the data of its format. Encoders write into a caller buffer and
// return the bytes written, or 0 when the buffer is too small. Decoders return std::nullopt
// for short or inconsistent packets and never read past the span.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "ry/gev/protocol/byte_order.h"

namespace ry::gev {

inline constexpr std::size_t kGvspHeaderSize = 8;
inline constexpr std::size_t kGvspExtendedHeaderSize = 20;
// IPv4 (20) + UDP (8) header bytes counted by the SCPS packet size.
inline constexpr std::size_t kIpUdpOverhead = 28;
inline constexpr std::size_t kImageLeaderSize = 36;
inline constexpr std::size_t kImageTrailerSize = 8;
inline constexpr std::size_t kGenericTrailerSize = 4;

enum class GvspFormat : std::uint8_t {
    Leader = 1,
    Trailer = 2,
    Payload = 3,
    AllIn = 4,
    H264 = 5,
    MultiZone = 6,
    MultiPart = 7,
    GenDC = 8,
};

enum class GvspPayloadType : std::uint16_t {
    Image = 0x0001,
    RawData = 0x0002,
    File = 0x0003,
    ChunkData = 0x0004,
    ExtendedChunk = 0x0005,
    Jpeg = 0x0006,
    Jpeg2000 = 0x0007,
    H264 = 0x0008,
    MultiZone = 0x0009,
    MultiPart = 0x000A,
    GenDC = 0x000B,
};
inline constexpr std::uint16_t kPayloadTypeChunkFlag = 0x4000;
inline constexpr std::uint16_t kPayloadTypeBaseMask = 0x3FFF;

// Flags of the extended header.
inline constexpr std::uint16_t kGvspFlagResent = 0x0001;
inline constexpr std::uint16_t kGvspFlagPreviousBlockDropped = 0x0002;
inline constexpr std::uint16_t kGvspFlagResendRangeError = 0x0004;

struct GvspHeader {
    std::uint16_t status = 0;
    std::uint64_t block_id = 0;   // 16 bits unless extended_ids
    std::uint32_t packet_id = 0;  // 24 bits unless extended_ids
    GvspFormat format = GvspFormat::Payload;
    bool extended_ids = false;
    std::uint16_t flags = 0;         // extended header only
    std::uint8_t part_or_zones = 0;  // extended header byte 7 only
};

inline constexpr std::size_t gvsp_header_size(bool extended_ids) {
    return extended_ids ? kGvspExtendedHeaderSize : kGvspHeaderSize;
}
// Data bytes carried by a full payload packet of the given SCPS packet size (0 if too small).
inline constexpr std::size_t gvsp_payload_per_packet(std::size_t packet_size, bool extended_ids) {
    const std::size_t overhead = kIpUdpOverhead + gvsp_header_size(extended_ids);
    return packet_size > overhead ? packet_size - overhead : 0;
}

// Writes the header; block and packet ids are truncated to 16/24 bits without extended ids.
std::size_t encode_gvsp_header(const GvspHeader& header, MutableBytes out);
std::optional<GvspHeader> decode_gvsp_header(ConstBytes packet);

struct ImageLeader {
    std::uint8_t field_info = 0;
    std::uint16_t payload_type = static_cast<std::uint16_t>(GvspPayloadType::Image);
    std::uint64_t timestamp = 0;
    std::uint32_t pixel_format = 0;
    std::uint32_t size_x = 0;
    std::uint32_t size_y = 0;
    std::uint32_t offset_x = 0;
    std::uint32_t offset_y = 0;
    std::uint16_t padding_x = 0;
    std::uint16_t padding_y = 0;
};

// Any leader starts with 2 reserved bytes and the payload type; nullopt if shorter than 4.
std::optional<std::uint16_t> decode_leader_payload_type(ConstBytes leader_data);
std::size_t encode_image_leader(const ImageLeader& leader, MutableBytes out);
// `leader_data` is the data after the GVSP header. Accepts image and extended-chunk types.
std::optional<ImageLeader> decode_image_leader(ConstBytes leader_data);

struct ImageTrailer {
    std::uint16_t payload_type = static_cast<std::uint16_t>(GvspPayloadType::Image);
    std::uint32_t size_y = 0;
};

std::size_t encode_image_trailer(const ImageTrailer& trailer, MutableBytes out);
std::optional<ImageTrailer> decode_image_trailer(ConstBytes trailer_data);

// Number of payload packets needed for `block_size` bytes at `per_packet` bytes each.
inline constexpr std::uint32_t gvsp_payload_packet_count(std::size_t block_size,
                                                         std::size_t per_packet) {
    return per_packet == 0 ? 0
                           : static_cast<std::uint32_t>((block_size + per_packet - 1) / per_packet);
}

// 16-bit block ids run 1..65535 and skip 0 on wrap.
inline constexpr std::uint16_t next_block_id16(std::uint16_t id) {
    return id == 0xFFFF ? std::uint16_t{1} : static_cast<std::uint16_t>(id + 1);
}

}  // namespace ry::gev

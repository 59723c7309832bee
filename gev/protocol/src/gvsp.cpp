#include "ry/gev/protocol/gvsp.h"

namespace ry::gev {

std::size_t encode_gvsp_header(const GvspHeader& header, MutableBytes out) {
    const std::size_t size = gvsp_header_size(header.extended_ids);
    if (out.size() < size) {
        return 0;
    }
    std::uint8_t* p = out.data();
    store_be16(p, header.status);
    const auto format = static_cast<std::uint8_t>(static_cast<std::uint8_t>(header.format) & 0x0F);
    if (header.extended_ids) {
        store_be16(p + 2, header.flags);
        p[4] = static_cast<std::uint8_t>(0x80 | format);
        p[5] = 0;
        p[6] = 0;
        p[7] = header.part_or_zones;
        store_be64(p + 8, header.block_id);
        store_be32(p + 16, header.packet_id);
    } else {
        store_be16(p + 2, static_cast<std::uint16_t>(header.block_id));
        store_be32(p + 4, header.packet_id & 0x00FFFFFF);
        p[4] = format;
    }
    return size;
}

std::optional<GvspHeader> decode_gvsp_header(ConstBytes packet) {
    if (packet.size() < kGvspHeaderSize) {
        return std::nullopt;
    }
    const std::uint8_t* p = packet.data();
    GvspHeader header;
    header.status = load_be16(p);
    header.extended_ids = (p[4] & 0x80) != 0;
    header.format = static_cast<GvspFormat>(p[4] & 0x0F);
    if (header.extended_ids) {
        if (packet.size() < kGvspExtendedHeaderSize) {
            return std::nullopt;
        }
        header.flags = load_be16(p + 2);
        header.part_or_zones = p[7];
        header.block_id = load_be64(p + 8);
        header.packet_id = load_be32(p + 16);
    } else {
        header.block_id = load_be16(p + 2);
        header.packet_id = load_be32(p + 4) & 0x00FFFFFF;
    }
    return header;
}

std::optional<std::uint16_t> decode_leader_payload_type(ConstBytes leader_data) {
    if (leader_data.size() < 4) {
        return std::nullopt;
    }
    return load_be16(leader_data.data() + 2);
}

std::size_t encode_image_leader(const ImageLeader& leader, MutableBytes out) {
    if (out.size() < kImageLeaderSize) {
        return 0;
    }
    std::uint8_t* p = out.data();
    p[0] = leader.field_info;
    p[1] = 0;
    store_be16(p + 2, leader.payload_type);
    store_be64(p + 4, leader.timestamp);
    store_be32(p + 12, leader.pixel_format);
    store_be32(p + 16, leader.size_x);
    store_be32(p + 20, leader.size_y);
    store_be32(p + 24, leader.offset_x);
    store_be32(p + 28, leader.offset_y);
    store_be16(p + 32, leader.padding_x);
    store_be16(p + 34, leader.padding_y);
    return kImageLeaderSize;
}

std::optional<ImageLeader> decode_image_leader(ConstBytes leader_data) {
    if (leader_data.size() < kImageLeaderSize) {
        return std::nullopt;
    }
    const std::uint8_t* p = leader_data.data();
    ImageLeader leader;
    leader.field_info = p[0];
    leader.payload_type = load_be16(p + 2);
    const auto base = leader.payload_type & kPayloadTypeBaseMask;
    if (base != static_cast<std::uint16_t>(GvspPayloadType::Image) &&
        base != static_cast<std::uint16_t>(GvspPayloadType::ExtendedChunk)) {
        return std::nullopt;
    }
    leader.timestamp = load_be64(p + 4);
    leader.pixel_format = load_be32(p + 12);
    leader.size_x = load_be32(p + 16);
    leader.size_y = load_be32(p + 20);
    leader.offset_x = load_be32(p + 24);
    leader.offset_y = load_be32(p + 28);
    leader.padding_x = load_be16(p + 32);
    leader.padding_y = load_be16(p + 34);
    return leader;
}

std::size_t encode_image_trailer(const ImageTrailer& trailer, MutableBytes out) {
    if (out.size() < kImageTrailerSize) {
        return 0;
    }
    store_be16(out.data(), 0);
    store_be16(out.data() + 2, trailer.payload_type);
    store_be32(out.data() + 4, trailer.size_y);
    return kImageTrailerSize;
}

std::optional<ImageTrailer> decode_image_trailer(ConstBytes trailer_data) {
    if (trailer_data.size() < kImageTrailerSize) {
        return std::nullopt;
    }
    return ImageTrailer{load_be16(trailer_data.data() + 2), load_be32(trailer_data.data() + 4)};
}

}  // namespace ry::gev

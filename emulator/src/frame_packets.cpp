#include "frame_packets.h"

#include <algorithm>
#include <cstring>

namespace ry::emulator {

using gev::GvspFormat;

FramePackets::FramePackets(const ImageSettings& image, PacketLayout layout)
    : image_settings_(image), layout_(layout), image_(make_test_image(image)) {
    data_per_packet_ = gev::gvsp_payload_per_packet(layout.packet_size, layout.extended_ids);
    packet_count_ = gev::gvsp_payload_packet_count(image_.size(), data_per_packet_);
    if (packet_count_ == 0) {
        return;
    }
    const std::size_t header = header_size();
    train_.resize(image_.size() + header * packet_count_);
    for (std::uint32_t id = 1; id <= packet_count_; ++id) {
        std::uint8_t* at = train_.data() + packet_offset(id);
        write_header(at, 0, id, GvspFormat::Payload, 0, 0);
        const std::size_t from = (id - 1) * data_per_packet_;
        std::memcpy(at + header, image_.data() + from, packet_length(id) - header);
    }
}

std::size_t FramePackets::packet_offset(std::uint32_t packet_id) const {
    return (packet_id - 1) * segment_size();
}

std::size_t FramePackets::packet_length(std::uint32_t packet_id) const {
    const std::size_t from = (packet_id - 1) * data_per_packet_;
    return header_size() + std::min(data_per_packet_, image_.size() - from);
}

void FramePackets::write_header(std::uint8_t* at, std::uint64_t block_id, std::uint32_t packet_id,
                                GvspFormat format, std::uint16_t status,
                                std::uint16_t flags) const {
    gev::GvspHeader header;
    header.status = status;
    header.block_id = block_id;
    header.packet_id = packet_id;
    header.format = format;
    header.extended_ids = layout_.extended_ids;
    header.flags = flags;
    gev::encode_gvsp_header(header, {at, header_size()});
}

void FramePackets::prepare_block(std::uint64_t block_id) {
    for (std::uint32_t id = 1; id <= packet_count_; ++id) {
        std::uint8_t* at = train_.data() + packet_offset(id);
        if (layout_.extended_ids) {
            gev::store_be64(at + 8, block_id);
        } else {
            gev::store_be16(at + 2, static_cast<std::uint16_t>(block_id));
        }
    }
    if (packet_count_ > 0) {
        stamp_block_id(train_.data() + header_size(), packet_length(1) - header_size(), block_id);
    }
}

std::size_t FramePackets::build_packet(std::uint64_t block_id, std::uint32_t packet_id,
                                       std::uint64_t timestamp, std::uint16_t status,
                                       std::uint16_t flags, std::vector<std::uint8_t>& out) const {
    const std::size_t header = header_size();
    out.assign(std::max(segment_size(), header + gev::kImageLeaderSize), 0);
    if (packet_id == 0) {
        write_header(out.data(), block_id, 0, GvspFormat::Leader, status, flags);
        gev::ImageLeader leader;
        leader.timestamp = timestamp;
        leader.pixel_format = image_settings_.pixel_format;
        leader.size_x = image_settings_.width;
        leader.size_y = image_settings_.height;
        leader.offset_x = image_settings_.offset_x;
        leader.offset_y = image_settings_.offset_y;
        return header +
               gev::encode_image_leader(leader, {out.data() + header, out.size() - header});
    }
    if (packet_id == packet_count_ + 1) {
        write_header(out.data(), block_id, packet_id, GvspFormat::Trailer, status, flags);
        gev::ImageTrailer trailer{static_cast<std::uint16_t>(gev::GvspPayloadType::Image),
                                  image_settings_.height};
        return header +
               gev::encode_image_trailer(trailer, {out.data() + header, out.size() - header});
    }
    if (packet_id == 0 || packet_id > packet_count_) {
        return 0;
    }
    const std::size_t length = packet_length(packet_id);
    std::memcpy(out.data(), train_.data() + packet_offset(packet_id), length);
    write_header(out.data(), block_id, packet_id, GvspFormat::Payload, status, flags);
    if (packet_id == 1) {
        stamp_block_id(out.data() + header, length - header, block_id);
    }
    return length;
}

std::size_t FramePackets::build_error_packet(std::uint64_t block_id, std::uint32_t packet_id,
                                             std::uint16_t status,
                                             std::vector<std::uint8_t>& out) const {
    out.assign(header_size(), 0);
    write_header(out.data(), block_id, packet_id, GvspFormat::Payload, status, 0);
    return header_size();
}

}  // namespace ry::emulator

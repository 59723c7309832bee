// The GVSP packets of one image block, precomputed once per image layout so that sending a
// frame only patches block ids and the block stamp into a ready packet train.
#pragma once

#include <cstdint>
#include <vector>

#include "ry/gev/protocol/gvsp.h"
#include "test_image.h"

namespace ry::emulator {

struct PacketLayout {
    std::size_t packet_size = 1500;  // SCPS: IP datagram bytes
    bool extended_ids = false;
    bool operator==(const PacketLayout&) const = default;
};

class FramePackets {
  public:
    FramePackets() = default;
    FramePackets(const ImageSettings& image, PacketLayout layout);

    bool empty() const { return packet_count_ == 0; }
    std::size_t image_size() const { return image_.size(); }
    std::uint32_t payload_packet_count() const { return packet_count_; }
    std::size_t header_size() const { return gev::gvsp_header_size(layout_.extended_ids); }
    std::size_t data_per_packet() const { return data_per_packet_; }
    // Bytes of one full payload packet (header + data): the GSO segment size.
    std::size_t segment_size() const { return header_size() + data_per_packet_; }
    const ImageSettings& image() const { return image_settings_; }
    const PacketLayout& layout() const { return layout_; }

    // Writes `block_id` into every payload header and the stamp into the image bytes.
    void prepare_block(std::uint64_t block_id);
    // The prepared payload packets, back to back; the last one may be shorter.
    const std::vector<std::uint8_t>& train() const { return train_; }
    std::size_t packet_offset(std::uint32_t packet_id) const;  // packet_id in 1..N
    std::size_t packet_length(std::uint32_t packet_id) const;

    // Builds leader (id 0), payload (1..N) or trailer (N+1) of any block into `out`;
    // returns the packet bytes, 0 when the id is outside the block.
    std::size_t build_packet(std::uint64_t block_id, std::uint32_t packet_id,
                             std::uint64_t timestamp, std::uint16_t status, std::uint16_t flags,
                             std::vector<std::uint8_t>& out) const;
    // Header-only packet answering a resend that cannot be served.
    std::size_t build_error_packet(std::uint64_t block_id, std::uint32_t packet_id,
                                   std::uint16_t status, std::vector<std::uint8_t>& out) const;

  private:
    void write_header(std::uint8_t* at, std::uint64_t block_id, std::uint32_t packet_id,
                      gev::GvspFormat format, std::uint16_t status, std::uint16_t flags) const;

    ImageSettings image_settings_;
    PacketLayout layout_;
    std::vector<std::uint8_t> image_;
    std::vector<std::uint8_t> train_;
    std::size_t data_per_packet_ = 0;
    std::uint32_t packet_count_ = 0;
};

}  // namespace ry::emulator

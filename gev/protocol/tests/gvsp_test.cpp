#include "ry/gev/protocol/gvsp.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "ry/gev/protocol/pixel_formats.h"

namespace ry::gev {
namespace {

TEST(GvspHeader, StandardIdsTruncateAndRoundTrip) {
    std::array<std::uint8_t, 8> buf{};
    GvspHeader header{0x0100, 0x12345, 0x01ABCDEF, GvspFormat::Payload, false, 0, 0};
    ASSERT_EQ(encode_gvsp_header(header, buf), 8u);
    EXPECT_EQ(buf, (std::array<std::uint8_t, 8>{0x01, 0x00, 0x23, 0x45, 0x03, 0xAB, 0xCD, 0xEF}));
    auto decoded = decode_gvsp_header(buf);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->block_id, 0x2345u);
    EXPECT_EQ(decoded->packet_id, 0xABCDEFu);
    EXPECT_EQ(decoded->format, GvspFormat::Payload);
    EXPECT_FALSE(decoded->extended_ids);
    EXPECT_EQ(encode_gvsp_header(header, std::span<std::uint8_t>(buf.data(), 7)), 0u);
}

TEST(GvspHeader, ExtendedIdsAndReservedBitsIgnored) {
    std::array<std::uint8_t, 20> buf{};
    GvspHeader header{0,    0x0102030405060708ULL, 0x11223344, GvspFormat::Trailer,
                      true, kGvspFlagResent,       0};
    ASSERT_EQ(encode_gvsp_header(header, buf), 20u);
    EXPECT_EQ(buf[4], 0x82);
    buf[4] |= 0x30;  // reserved bits must not change the format
    auto decoded = decode_gvsp_header(buf);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->format, GvspFormat::Trailer);
    EXPECT_EQ(decoded->block_id, header.block_id);
    EXPECT_EQ(decoded->packet_id, header.packet_id);
    EXPECT_EQ(decoded->flags, kGvspFlagResent);
    // Extended flag set but only a standard header's worth of bytes.
    EXPECT_FALSE(decode_gvsp_header(std::span<const std::uint8_t>(buf.data(), 19)));
    EXPECT_FALSE(decode_gvsp_header(std::span<const std::uint8_t>(buf.data(), 7)));
}

TEST(GvspLeaderTrailer, ImageLeaderFieldsAndRejects) {
    ImageLeader leader;
    leader.timestamp = 0x0000000100000002ULL;
    leader.pixel_format = pixel_format::kMono12Packed;
    leader.size_x = 640;
    leader.size_y = 480;
    leader.padding_x = 3;
    std::array<std::uint8_t, kImageLeaderSize> buf{};
    ASSERT_EQ(encode_image_leader(leader, buf), kImageLeaderSize);
    EXPECT_EQ(load_be32(buf.data() + 12), 0x010C0006u);
    auto decoded = decode_image_leader(buf);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->size_x, 640u);
    EXPECT_EQ(decoded->timestamp, leader.timestamp);
    EXPECT_EQ(decoded->padding_x, 3);
    EXPECT_FALSE(decode_image_leader(std::span<const std::uint8_t>(buf.data(), 35)));
    store_be16(buf.data() + 2, 0x0002);  // raw data is not an image leader
    EXPECT_FALSE(decode_image_leader(buf));
    EXPECT_EQ(decode_leader_payload_type(buf), 0x0002);
    store_be16(buf.data() + 2, 0x4001);  // image with chunks is
    EXPECT_TRUE(decode_image_leader(buf));

    std::array<std::uint8_t, 8> trailer{};
    ASSERT_EQ(encode_image_trailer({1, 479}, trailer), 8u);
    auto t = decode_image_trailer(trailer);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->size_y, 479u);
    EXPECT_FALSE(decode_image_trailer(std::span<const std::uint8_t>(trailer.data(), 7)));
}

TEST(GvspArithmetic, PacketSizesCountsAndBlockIds) {
    EXPECT_EQ(gvsp_payload_per_packet(1500, false), 1464u);
    EXPECT_EQ(gvsp_payload_per_packet(9000, true), 8952u);
    EXPECT_EQ(gvsp_payload_per_packet(30, false), 0u);
    EXPECT_EQ(gvsp_payload_packet_count(1464 * 2 + 1, 1464), 3u);
    EXPECT_EQ(gvsp_payload_packet_count(100, 0), 0u);
    EXPECT_EQ(next_block_id16(0xFFFF), 1);
}

TEST(PixelFormats, NamesCodesAndSizes) {
    EXPECT_EQ(known_pixel_formats().size(), 23u);
    EXPECT_EQ(pixel_format_from_name("BayerGB12"), 0x01100012u);
    EXPECT_EQ(pixel_format_name(0x020C001E), "YUV411Packed");
    EXPECT_FALSE(pixel_format_from_name("Mono9"));
    EXPECT_EQ(image_size(pixel_format::kMono12Packed, 3, 2), 10u);  // 4.5 bytes -> 5 per line
    EXPECT_EQ(image_size(pixel_format::kYUV411Packed, 4, 1), 6u);
    EXPECT_EQ(image_size(pixel_format::kRGB8Packed, 10, 10), 300u);
}

}  // namespace
}  // namespace ry::gev

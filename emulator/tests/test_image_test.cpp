// Test images checked against the unpacking rules of each pixel format, not against the
// generator itself.
#include "test_image.h"

#include <gtest/gtest.h>

#include "ry/gev/protocol/pixel_formats.h"

namespace ry::emulator {
namespace {

namespace pf = gev::pixel_format;

ImageSettings ramp(std::uint32_t format, std::uint32_t width, std::uint32_t height = 2) {
    ImageSettings s;
    s.pixel_format = format;
    s.width = width;
    s.height = height;
    s.pattern = TestPattern::HorizontalRamp;  // value = x + 64 * channel
    return s;
}

std::uint32_t le16(const std::vector<std::uint8_t>& b, std::size_t at) {
    return b[at] | (b[at + 1] << 8);
}

TEST(TestImage, UnpackedFormatsCarryTheRamp) {
    const auto mono8 = make_test_image(ramp(pf::kMono8, 8));
    ASSERT_EQ(mono8.size(), 16u);
    EXPECT_EQ(mono8[5], 5);
    EXPECT_EQ(mono8[8 + 5], 5);  // second line, same column
    const auto mono12 = make_test_image(ramp(pf::kBayerRG12, 8));
    ASSERT_EQ(mono12.size(), 32u);
    EXPECT_EQ(le16(mono12, 2 * 7), 7u);
    ImageSettings wide = ramp(pf::kMono10, 4);
    wide.offset_x = 1020;  // 1023 is the largest 10-bit value
    const auto mono10 = make_test_image(wide);
    EXPECT_EQ(le16(mono10, 2 * 3), 1023u);
    EXPECT_EQ(le16(mono10, 0) & ~0x3FFu, 0u);
}

TEST(TestImage, PackedFormatsFollowTheirBitLayouts) {
    const auto p12 = make_test_image(ramp(pf::kMono12Packed, 3, 1));
    ASSERT_EQ(p12.size(), 5u);  // 4.5 bytes rounded up
    EXPECT_EQ(p12[0] * 16 + (p12[1] & 0x0F), 0);
    EXPECT_EQ(p12[2] * 16 + (p12[1] >> 4), 1);
    EXPECT_EQ(p12[3] * 16 + (p12[4] & 0x0F), 2);
    ImageSettings s = ramp(pf::kMono10Packed, 2, 1);
    s.offset_x = 1000;
    const auto p10 = make_test_image(s);
    ASSERT_EQ(p10.size(), 3u);
    EXPECT_EQ(p10[0] * 4 + (p10[1] & 0x03), 1000);
    EXPECT_EQ(p10[2] * 4 + ((p10[1] >> 4) & 0x03), 1001);
}

TEST(TestImage, ColourComponentOrders) {
    const auto rgb = make_test_image(ramp(pf::kRGB8Packed, 4, 1));
    EXPECT_EQ(std::vector<std::uint8_t>(rgb.begin() + 3, rgb.begin() + 6),
              (std::vector<std::uint8_t>{1, 65, 129}));
    const auto bgr = make_test_image(ramp(pf::kBGR8Packed, 4, 1));
    EXPECT_EQ(std::vector<std::uint8_t>(bgr.begin() + 3, bgr.begin() + 6),
              (std::vector<std::uint8_t>{129, 65, 1}));
    const auto uyvy = make_test_image(ramp(pf::kYUV422Packed, 4, 1));  // U Y0 V Y1
    EXPECT_EQ(uyvy, (std::vector<std::uint8_t>{64, 0, 128, 1, 66, 2, 130, 3}));
    const auto yuv411 = make_test_image(ramp(pf::kYUV411Packed, 4, 1));  // U Y0 Y1 V Y2 Y3
    EXPECT_EQ(yuv411, (std::vector<std::uint8_t>{64, 0, 1, 128, 2, 3}));
    const auto uyv = make_test_image(ramp(pf::kYUV444Packed, 2, 1));  // U Y V
    EXPECT_EQ(uyv, (std::vector<std::uint8_t>{64, 0, 128, 65, 1, 129}));
}

TEST(TestImage, PatternsMirrorAndStamp) {
    ImageSettings s = ramp(pf::kMono8, 4, 3);
    s.reverse_x = true;
    EXPECT_EQ(make_test_image(s)[0], 3);
    s.reverse_x = false;
    s.pattern = TestPattern::VerticalRamp;
    EXPECT_EQ(make_test_image(s)[2 * 4 + 1], 2);
    s.pattern = TestPattern::DiagonalRamp;
    EXPECT_EQ(make_test_image(s)[2 * 4 + 1], 3);
    s.pixel_format = 0x12345678;
    EXPECT_TRUE(make_test_image(s).empty());

    std::vector<std::uint8_t> image(12, 0xAA);
    stamp_block_id(image.data(), image.size(), 0x0102030405060708ULL);
    EXPECT_EQ(image, (std::vector<std::uint8_t>{8, 7, 6, 5, 4, 3, 2, 1, 0xAA, 0xAA, 0xAA, 0xAA}));
    std::vector<std::uint8_t> tiny(3, 0);
    stamp_block_id(tiny.data(), tiny.size(), 0x010203);
    EXPECT_EQ(tiny, (std::vector<std::uint8_t>{3, 2, 1}));
}

}  // namespace
}  // namespace ry::emulator

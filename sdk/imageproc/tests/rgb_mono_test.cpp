// RGB and mono conversions against the reference: worked values, every source length
// (including odd trailing bytes and partial groups), both vector levels, stray bits above
// the nominal width, and the public and flat entry points.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "imageproc/rgb_mono_convert.h"
#include "oracle.h"
#include "rysdk/RyConvert.h"
#include "rysdk/RyImageProcess.h"
#include "test_images.h"

namespace RYSDK::imageproc {
namespace {

using testing::GuardedBuffer;
using testing::RandomSamples;

constexpr SimdLevel kLevels[] = {SimdLevel::Scalar, SimdLevel::Avx2};

template <class Convert>
std::vector<uint8_t> Converted(const std::vector<uint8_t>& src, size_t outBytes, Convert convert) {
    GuardedBuffer<uint8_t> dst(outBytes);
    convert(src.data(), uint32_t(src.size()), dst.data());
    EXPECT_TRUE(dst.GuardIntact()) << src.size();
    return dst.Written();
}

// ---- Worked values ----------------------------------------------------------------------

TEST(MonoExamples, TenBitSampleAndStrayBit) {
    const std::vector<uint8_t> src = {0xFF, 0x03, 0x00, 0x04};  // 0x03FF, 0x0400
    for (SimdLevel level : kLevels) {
        const auto out = Converted(src, 6, [level](const uint8_t* s, uint32_t n, uint8_t* d) {
            Mono16ToBgr8(s, n, d, 2, level);
        });
        EXPECT_EQ(out, (std::vector<uint8_t>{255, 255, 255, 0, 0, 0}));
    }
}

TEST(MonoExamples, TwelveBitPackedWidening) {
    const std::vector<uint8_t> src = {0xAB, 0xCD, 0xEF};
    std::vector<uint16_t> out(2);
    RyImageProcess::ConvertMono12PackedToMono16bit(src.data(), 2, 1, out.data());
    EXPECT_EQ(out, (std::vector<uint16_t>{0x0ABD, 0x0EFC}));
}

TEST(MonoExamples, TenBitPackedRoundTrip) {
    // Pack 10-bit pixels in the camera layout by hand and widen them back.
    const auto pixels = RandomSamples<uint16_t>(9, 12, 0x3FF);
    std::vector<uint8_t> packed((pixels.size() + 1) / 2 * 3);
    for (size_t i = 0; i < pixels.size(); i += 2) {
        const uint16_t a = pixels[i];
        const uint16_t b = i + 1 < pixels.size() ? pixels[i + 1] : 0;
        uint8_t* group = &packed[i / 2 * 3];
        group[0] = uint8_t(a >> 2);
        group[1] = uint8_t((a & 3) | ((b & 3) << 4));
        group[2] = uint8_t(b >> 2);
    }
    GuardedBuffer<uint16_t> out(pixels.size());
    RyImageProcess::ConvertMono10PackedToMono16bit(packed.data(), 9, 1, out.data());
    EXPECT_TRUE(out.GuardIntact());
    EXPECT_EQ(out.Written(), pixels);
}

TEST(MonoExamples, PackedPairsWideningCountsGroups) {
    const std::vector<uint8_t> src = {0xAB, 0xCD, 0xEF, 0x12, 0x34, 0x56};
    GuardedBuffer<uint16_t> out(4);
    ::Convert8a_4b_4a_8bTo16_16_MMX_I(src.data(), out.data(), 2);
    EXPECT_TRUE(out.GuardIntact());
    EXPECT_EQ(out.Written(), (std::vector<uint16_t>{0x0ABD, 0x0EFC, 0x0124, 0x0563}));
}

// ---- Against the reference over every length ---------------------------------------------

TEST(RgbAgainstOracle, SwapEveryLengthBothLevels) {
    for (uint32_t bytes = 0; bytes < 400; ++bytes) {
        const auto src = RandomSamples<uint8_t>(bytes, bytes, 0xFF);
        for (SimdLevel level : kLevels) {
            ASSERT_EQ(Converted(src, bytes / 3 * 3,
                                [level](const uint8_t* s, uint32_t n, uint8_t* d) {
                                    SwapRedBlue(s, n, d, level);
                                }),
                      oracle::SwapRgb(src))
                << bytes;
        }
    }
}

TEST(RgbAgainstOracle, PackedTwelveAndTenBitWholePixelsOnly) {
    for (uint32_t bytes = 0; bytes < 60; ++bytes) {
        const auto src = RandomSamples<uint8_t>(bytes, 500 + bytes, 0xFF);
        EXPECT_EQ(Converted(src, bytes / 6 * 3, Rgb12PackedToBgr8), oracle::Rgb12Packed(src))
            << bytes;
        EXPECT_EQ(Converted(src, bytes / 4 * 3, Bgr10V2PackedToBgr8), oracle::Bgr10V2Packed(src))
            << bytes;
    }
}

TEST(RgbAgainstOracle, Bgr10V2FieldsGoToTheirBytes) {
    // Fields 0x3FF at bits 0-9 only: red 255, green and blue 0.
    const std::vector<uint8_t> src = {0xFF, 0x03, 0x00, 0xC0};  // plus the two unused top bits
    std::vector<uint8_t> out(3);
    RyImageProcess::ConvertBGR10V2PackedtoBGR8(src.data(), 4, out.data());
    EXPECT_EQ(out, (std::vector<uint8_t>{0, 0, 255}));
}

TEST(MonoAgainstOracle, WideSamplesEveryLengthBothLevels) {
    for (uint32_t bytes = 0; bytes < 200; ++bytes) {
        // Full random bytes: the samples carry stray bits above 10, 12 and 14.
        const auto src = RandomSamples<uint8_t>(bytes, 900 + bytes, 0xFF);
        const size_t outBytes = (bytes + 1) / 2 * 3;
        for (int shift : {2, 4, 6}) {
            for (SimdLevel level : kLevels) {
                ASSERT_EQ(Converted(src, outBytes,
                                    [shift, level](const uint8_t* s, uint32_t n, uint8_t* d) {
                                        Mono16ToBgr8(s, n, d, shift, level);
                                    }),
                          oracle::Mono16(src, shift))
                    << bytes << " shift " << shift;
            }
        }
    }
}

TEST(MonoAgainstOracle, EightBitAndPackedEveryLength) {
    for (uint32_t bytes = 0; bytes < 200; ++bytes) {
        const auto src = RandomSamples<uint8_t>(bytes, 1300 + bytes, 0xFF);
        for (SimdLevel level : kLevels) {
            ASSERT_EQ(Converted(src, size_t(bytes) * 3,
                                [level](const uint8_t* s, uint32_t n, uint8_t* d) {
                                    Mono8ToBgr8(s, n, d, level);
                                }),
                      oracle::Mono8(src));
        }
        const size_t groups = (bytes + 2) / 3;
        ASSERT_EQ(Converted(src, groups * 6, ::ConvertMonoPackedToBGR8),
                  oracle::MonoPackedHighBytes(src, 3));
        ASSERT_EQ(Converted(src, groups * 2, RyImageProcess::ConvertMono10PackedToMono8),
                  oracle::MonoPackedHighBytes(src, 1));
    }
}

TEST(MonoAgainstOracle, PackedWideningEveryPixelCount) {
    for (uint32_t pixels = 0; pixels < 64; ++pixels) {
        const auto src = RandomSamples<uint8_t>((size_t(pixels) * 3 + 1) / 2, pixels, 0xFF);
        for (int lowBits : {4, 2}) {
            GuardedBuffer<uint16_t> out(pixels);
            if (lowBits == 4) {
                RyImageProcess::ConvertMono12PackedToMono16bit(src.data(), pixels, 1, out.data());
            } else {
                ::ConvertMono10PackedToMono16bit(src.data(), 1, pixels, out.data());
            }
            EXPECT_TRUE(out.GuardIntact());
            ASSERT_EQ(out.Written(), oracle::UnpackMono(src, pixels, lowBits)) << pixels;
        }
    }
}

// Full frames of the largest sensor size, written both to an aligned destination and to
// one that starts at an odd address.
TEST(MonoAgainstOracle, LargeFramesAtUnalignedDestinations) {
    const uint32_t pixels = 4096 * 3000;
    using Fn = void (*)(const uint8_t*, uint32_t, uint8_t*);
    const auto mono = RandomSamples<uint8_t>(pixels, 3, 0xFF);
    const auto wide = RandomSamples<uint8_t>(size_t(pixels) * 2 + 1, 4, 0xFF);
    const auto rgb = RandomSamples<uint8_t>(size_t(pixels) * 3 + 2, 5, 0xFF);
    const std::tuple<Fn, const std::vector<uint8_t>*, std::vector<uint8_t>> cases[] = {
        {RyImageProcess::ConvertMono8ToBGR8, &mono, oracle::Mono8(mono)},
        {RyImageProcess::ConvertMono12ToBGR8, &wide, oracle::Mono16(wide, 4)},
        {RyImageProcess::ConvertRGB8toBGR8, &rgb, oracle::SwapRgb(rgb)}};
    for (const auto& [convert, src, expected] : cases) {
        for (size_t offset : {0, 5}) {
            GuardedBuffer<uint8_t> dst(expected.size() + offset);
            convert(src->data(), uint32_t(src->size()), dst.data() + offset);
            EXPECT_TRUE(dst.GuardIntact());
            const auto written = dst.Written();
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), written.begin() + offset))
                << "offset " << offset;
        }
    }
}

// ---- Entry points ------------------------------------------------------------------------

TEST(RgbMonoEntryPoints, MembersAndFlatFunctionsAgree) {
    const auto src = RandomSamples<uint8_t>(301, 8, 0xFF);
    using Fn = void (*)(const uint8_t*, uint32_t, uint8_t*);
    const std::tuple<Fn, Fn, std::vector<uint8_t>> cases[] = {
        {RyImageProcess::ConvertRGB8toBGR8, ::ConvertRGB8toBGR8, oracle::SwapRgb(src)},
        {RyImageProcess::ConvertRGB12PackedtoBGR8, ::ConvertRGB12PackedtoBGR8,
         oracle::Rgb12Packed(src)},
        {RyImageProcess::ConvertBGR10V2PackedtoBGR8, ::ConvertBGR10V2PackedtoBGR8,
         oracle::Bgr10V2Packed(src)},
        {RyImageProcess::ConvertMono8ToBGR8, ::ConvertMono8ToBGR8, oracle::Mono8(src)},
        {RyImageProcess::ConvertMono10ToBGR8, ::ConvertMono10ToBGR8, oracle::Mono16(src, 2)},
        {RyImageProcess::ConvertMono12ToBGR8, ::ConvertMono12ToBGR8, oracle::Mono16(src, 4)},
        {RyImageProcess::ConvertMono14ToBGR8, ::ConvertMono14ToBGR8, oracle::Mono16(src, 6)},
        {RyImageProcess::ConvertMono10PackedToMono8, ::ConvertMono10PackedToMono8,
         oracle::MonoPackedHighBytes(src, 1)}};
    for (const auto& [member, flat, expected] : cases) {
        for (Fn fn : {member, flat}) {
            EXPECT_EQ(Converted(src, expected.size(), fn), expected);
        }
    }
}

TEST(RgbMonoEntryPoints, NullPointersWriteNothing) {
    GuardedBuffer<uint8_t> dst(0);
    GuardedBuffer<uint16_t> wide(0);
    RyImageProcess::ConvertRGB8toBGR8(nullptr, 30, dst.data());
    RyImageProcess::ConvertMono12ToBGR8(nullptr, 30, dst.data());
    ::ConvertMonoPackedToBGR8(nullptr, 30, dst.data());
    RyImageProcess::ConvertMono12PackedToMono16bit(nullptr, 4, 4, wide.data());
    RyImageProcess::Convert8a_4b_4a_8bTo16_16_MMX_I(nullptr, wide.data(), 3);
    EXPECT_TRUE(dst.Untouched());
    EXPECT_TRUE(wide.Untouched());
    const uint8_t byte = 1;
    RyImageProcess::ConvertMono8ToBGR8(&byte, 1, nullptr);
}

}  // namespace
}  // namespace RYSDK::imageproc

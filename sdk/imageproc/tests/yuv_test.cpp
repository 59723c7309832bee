// YUV conversions against the reference: the worked values, random sources of every length
// (whole and partial trailing groups), both vector levels, the interlaced weave, and the
// public and flat entry points.
#include <gtest/gtest.h>

#include "imageproc/yuv_convert.h"
#include "oracle.h"
#include "rysdk/RyConvert.h"
#include "rysdk/RyImageProcess.h"
#include "test_images.h"

namespace RYSDK::imageproc {
namespace {

using testing::GuardedBuffer;
using testing::RandomSamples;

constexpr SimdLevel kLevels[] = {SimdLevel::Scalar, SimdLevel::Avx2};

size_t GroupsIn(size_t bytes, size_t groupBytes) {
    return (bytes + groupBytes - 1) / groupBytes;
}

std::vector<uint32_t> LumaOffsets(const YuvGroupLayout& layout) {
    return std::vector<uint32_t>(layout.luma, layout.luma + layout.lumaCount);
}

std::vector<uint8_t> RunInteger422(const std::vector<uint8_t>& src, SimdLevel level) {
    GuardedBuffer<uint8_t> dst(GroupsIn(src.size(), 4) * 6);
    Yuv422Integer(src.data(), uint32_t(src.size()), dst.data(), level);
    EXPECT_TRUE(dst.GuardIntact()) << src.size();
    return dst.Written();
}

std::vector<uint8_t> RunFloating(const std::vector<uint8_t>& src, uint32_t pixels, bool uyvy,
                                 SimdLevel level) {
    GuardedBuffer<uint8_t> dst(pixels == 0 ? 0 : ((size_t(pixels) - 1) / 2 + 1) * 6);
    Yuv422Floating(src.data(), pixels, dst.data(), uyvy, level);
    EXPECT_TRUE(dst.GuardIntact()) << pixels;
    return dst.Written();
}

// ---- Worked values ----------------------------------------------------------------------

TEST(YuvExamples, IntegerBlackAndWhite) {
    const std::vector<uint8_t> src = {128, 16, 128, 235};
    for (SimdLevel level : kLevels) {
        EXPECT_EQ(RunInteger422(src, level), (std::vector<uint8_t>{0, 0, 0, 255, 255, 255}));
    }
}

TEST(YuvExamples, FloatingGreyAndRed) {
    const std::vector<uint8_t> grey = {128, 128, 128, 128};
    const std::vector<uint8_t> red = {128, 0, 255, 0};  // U Y V Y
    for (SimdLevel level : kLevels) {
        EXPECT_EQ(RunFloating(grey, 2, true, level), std::vector<uint8_t>(6, 128));
        EXPECT_EQ(RunFloating(red, 2, true, level)[2], 178);
    }
}

TEST(YuvExamples, ClipBounds) {
    EXPECT_EQ(RyImageProcess::Clip(-5), 0);
    EXPECT_EQ(RyImageProcess::Clip(300), 255);
    EXPECT_EQ(RyImageProcess::Clip(77), 77);
    EXPECT_EQ(RyImageProcess::Clip(255), 255);
    EXPECT_EQ(RyImageProcess::Clip(0), 0);
}

// ---- Integer members ---------------------------------------------------------------------

TEST(YuvInteger, Yuv422EveryLengthAndBothLevels) {
    // Lengths cover whole runs of the vector path, leftovers and partial trailing groups.
    for (uint32_t bytes = 0; bytes < 300; ++bytes) {
        const auto src = RandomSamples<uint8_t>(bytes, bytes + 1, 0xFF);
        const auto expected = oracle::YuvGroupsInteger(src, 4, 0, 2, {1, 3});
        for (SimdLevel level : kLevels) {
            ASSERT_EQ(RunInteger422(src, level), expected) << bytes;
        }
    }
}

TEST(YuvInteger, Yuv422AllChromaPairsSaturateLikeTheReference) {
    std::vector<uint8_t> src;
    for (int u = 0; u < 256; ++u) {
        for (int v = 0; v < 256; ++v) {
            src.insert(src.end(), {uint8_t(u), uint8_t((u * 7 + v) & 0xFF), uint8_t(v),
                                   uint8_t((v * 13 + u) & 0xFF)});
        }
    }
    EXPECT_EQ(RunInteger422(src, SimdLevel::Avx2), oracle::YuvGroupsInteger(src, 4, 0, 2, {1, 3}));
}

TEST(YuvInteger, OtherGroupLayoutsWithPartialTrailingGroups) {
    for (const YuvGroupLayout* layout : {&kYuv422PackedLayout, &kYuv411Layout, &kYuv444Layout}) {
        for (uint32_t bytes = 0; bytes < 40; ++bytes) {
            const auto src = RandomSamples<uint8_t>(bytes, 1000 + bytes, 0xFF);
            GuardedBuffer<uint8_t> dst(GroupsIn(bytes, layout->groupBytes) * layout->lumaCount * 3);
            YuvIntegerGroups(src.data(), bytes, dst.data(), *layout);
            EXPECT_TRUE(dst.GuardIntact());
            EXPECT_EQ(dst.Written(), oracle::YuvGroupsInteger(src, layout->groupBytes, layout->u,
                                                              layout->v, LumaOffsets(*layout)))
                << bytes;
        }
    }
}

TEST(YuvInteger, PackedLayoutsSkipTheUnreadBytes) {
    // 4:2:2 packed reads bytes 0, 2, 3 and 5 only; bytes 1 and 4 change nothing.
    std::vector<uint8_t> a = {100, 1, 90, 140, 2, 200};
    std::vector<uint8_t> b = {100, 77, 90, 140, 99, 200};
    std::vector<uint8_t> outA(6), outB(6);
    RyImageProcess::ConvertYUV422PackedtoBGR8(a.data(), 6, outA.data());
    RyImageProcess::ConvertYUV422PackedtoBGR8(b.data(), 6, outB.data());
    EXPECT_EQ(outA, outB);
}

// ---- Floating members --------------------------------------------------------------------

TEST(YuvFloating, BothOrdersEveryPixelCountAndBothLevels) {
    for (uint32_t pixels = 0; pixels < 200; ++pixels) {
        const auto src = RandomSamples<uint8_t>((pixels + 1) / 2 * 4, pixels + 7, 0xFF);
        for (bool uyvy : {true, false}) {
            const auto expected = oracle::Yuv422Floating(src, pixels, uyvy);
            for (SimdLevel level : kLevels) {
                ASSERT_EQ(RunFloating(src, pixels, uyvy, level), expected)
                    << pixels << (uyvy ? " UYVY" : " YUYV");
            }
        }
    }
}

TEST(YuvFloating, LargeFrameAllChromaPairs) {
    std::vector<uint8_t> src;
    for (int u = 0; u < 256; ++u) {
        for (int v = 0; v < 256; ++v) {
            src.insert(src.end(), {uint8_t(u), uint8_t(v ^ u), uint8_t(v), uint8_t(255 - u)});
        }
    }
    const uint32_t pixels = uint32_t(src.size() / 2);
    for (bool uyvy : {true, false}) {
        EXPECT_EQ(RunFloating(src, pixels, uyvy, SimdLevel::Avx2),
                  oracle::Yuv422Floating(src, pixels, uyvy));
    }
}

// ---- Interlaced --------------------------------------------------------------------------

// A frame whose lines are each one flat grey (Y = 16 + line * 20, U = V = 128), so every
// output line tells which source line it came from.
std::vector<uint8_t> FlatLines(uint32_t lines, uint32_t pitch) {
    std::vector<uint8_t> src(size_t(lines) * pitch, 128);
    for (uint32_t line = 0; line < lines; ++line) {
        for (uint32_t i = 1; i < pitch; i += 2) {
            src[size_t(line) * pitch + i] = uint8_t(16 + line * 20);
        }
    }
    return src;
}

uint8_t GreyOfLine(uint32_t line) {
    return oracle::YuvInteger(16 + int(line) * 20, 128, 128).g;
}

TEST(YuvInterlaced, WeavesFieldsInEitherOrder) {
    const uint32_t width = 5, height = 5, pitch = 12;  // odd width and height, padded lines
    const auto src = FlatLines(height, pitch);
    for (int topFirst : {1, 0}) {
        GuardedBuffer<uint8_t> dst(size_t(width) * height * 3);
        RyImageProcess::ConvertYUV422toBGR8Interlaced(src.data(), uint32_t(src.size()), dst.data(),
                                                      topFirst, width, height, pitch);
        EXPECT_TRUE(dst.GuardIntact());
        const auto out = dst.Written();
        // Top first: source lines 0 1 2 | 3 4 go to 0 2 4 | 1 3. Bottom first: 0 1 | 2 3 4
        // go to 1 3 | 0 2 4.
        const uint32_t topOrder[] = {0, 3, 1, 4, 2};
        const uint32_t bottomOrder[] = {2, 0, 3, 1, 4};
        for (uint32_t y = 0; y < height; ++y) {
            const uint32_t line = topFirst ? topOrder[y] : bottomOrder[y];
            for (uint32_t i = 0; i < width * 3; ++i) {
                ASSERT_EQ(out[y * width * 3 + i], GreyOfLine(line)) << y << " " << i;
            }
        }
    }
}

TEST(YuvInterlaced, ShortSourceAndShortPitchLeaveLinesAlone) {
    const uint32_t width = 8, height = 4, pitch = 16;
    const auto src = FlatLines(height, pitch);
    GuardedBuffer<uint8_t> dst(size_t(width) * height * 3);
    // Three source lines present: the last line of the second field is missing.
    RyImageProcess::ConvertYUV422toBGR8Interlaced(src.data(), 3 * pitch, dst.data(), 1, width,
                                                  height, pitch);
    const auto out = dst.Written();
    EXPECT_EQ(out[2 * width * 3], GreyOfLine(1));
    EXPECT_EQ(out[3 * width * 3], GuardedBuffer<uint8_t>::kSentinel);
    GuardedBuffer<uint8_t> untouched(size_t(width) * height * 3);
    RyImageProcess::ConvertYUV422toBGR8Interlaced(src.data(), uint32_t(src.size()),
                                                  untouched.data(), 1, width, height, 15);
    EXPECT_TRUE(untouched.Untouched());
}

// ---- Entry points ------------------------------------------------------------------------

TEST(YuvEntryPoints, MembersAndFlatFunctionsAgree) {
    const auto src = RandomSamples<uint8_t>(606, 3, 0xFF);
    const auto bytes = uint32_t(src.size());
    using Fn = void (*)(const uint8_t*, uint32_t, uint8_t*);
    const std::tuple<Fn, Fn, std::vector<uint8_t>> cases[] = {
        {RyImageProcess::ConvertYUV422toBGR8, ::ConvertYUV422toBGR8,
         oracle::YuvGroupsInteger(src, 4, 0, 2, {1, 3})},
        {RyImageProcess::ConvertYUV422PackedtoBGR8, ::ConvertYUV422PackedtoBGR8,
         oracle::YuvGroupsInteger(src, 6, 0, 3, {2, 5})},
        {RyImageProcess::ConvertYUV411toBGR8, ::ConvertYUV411toBGR8,
         oracle::YuvGroupsInteger(src, 6, 0, 3, {1, 2, 4, 5})},
        {RyImageProcess::ConvertYUV444toBGR8, ::ConvertYUV444toBGR8,
         oracle::YuvGroupsInteger(src, 3, 0, 2, {1})}};
    for (const auto& [member, flat, expected] : cases) {
        for (Fn fn : {member, flat}) {
            std::vector<uint8_t> out(expected.size());
            fn(src.data(), bytes, out.data());
            EXPECT_EQ(out, expected);
        }
    }
    using Sized = void (*)(const uint8_t*, uint32_t, uint32_t, uint8_t*);
    for (bool uyvy : {true, false}) {
        const auto expected = oracle::Yuv422Floating(src, 10 * 30, uyvy);
        const Sized member = uyvy ? RyImageProcess::ConvertYUV422_UYVYtoBGR8
                                  : RyImageProcess::ConvertYUV422_YUYVtoBGR8;
        const Sized flat = uyvy ? ::ConvertYUV422_UYVYtoBGR8 : ::ConvertYUV422_YUYVtoBGR8;
        for (Sized fn : {member, flat}) {
            std::vector<uint8_t> out(expected.size());
            fn(src.data(), 10, 30, out.data());
            EXPECT_EQ(out, expected);
        }
    }
}

TEST(YuvEntryPoints, NullPointersAndEmptySourcesWriteNothing) {
    GuardedBuffer<uint8_t> dst(0);
    const uint8_t one = 7;
    RyImageProcess::ConvertYUV422toBGR8(nullptr, 4, dst.data());
    RyImageProcess::ConvertYUV411toBGR8(&one, 0, dst.data());
    RyImageProcess::ConvertYUV422_UYVYtoBGR8(&one, 0, 100, dst.data());
    RyImageProcess::ConvertYUV422_YUYVtoBGR8(nullptr, 2, 2, dst.data());
    RyImageProcess::ConvertYUV422toBGR8Interlaced(nullptr, 16, dst.data(), 1, 2, 2, 4);
    EXPECT_TRUE(dst.Untouched());
    RyImageProcess::ConvertYUV444toBGR8(&one, 1, nullptr);
}

}  // namespace
}  // namespace RYSDK::imageproc

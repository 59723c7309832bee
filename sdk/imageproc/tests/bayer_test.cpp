// Demosaicing against the reference: worked examples, many sizes around the vector widths,
// extreme and stray-bit samples, both vector levels, the public members and the flat
// functions, and sizes outside the contract.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "imageproc/bayer_demosaic.h"
#include "oracle.h"
#include "rysdk/RyConvert.h"
#include "rysdk/RyImageProcess.h"
#include "test_images.h"

namespace RYSDK::imageproc {
namespace {

using testing::GuardedBuffer;
using testing::RandomSamples;

template <class In>
std::vector<uint32_t> Reduced(const std::vector<In>& src, int shift) {
    std::vector<uint32_t> out(src.size());
    for (size_t i = 0; i < src.size(); ++i) {
        out[i] = shift < 0 ? src[i] : (uint32_t{src[i]} >> shift) & 0xFFu;
    }
    return out;
}

template <class T>
std::vector<uint32_t> Widened(const std::vector<T>& v) {
    return std::vector<uint32_t>(v.begin(), v.end());
}

std::vector<uint32_t> RunBytes(const std::vector<uint8_t>& src, uint32_t w, uint32_t h,
                               BayerPhase phase, SimdLevel level) {
    GuardedBuffer<uint8_t> dst(size_t{w} * h * 3);
    DemosaicBytes(src.data(), dst.data(), w, h, phase, level);
    EXPECT_TRUE(dst.GuardIntact()) << w << "x" << h;
    return Widened(dst.Written());
}

std::vector<uint32_t> RunReduced(const std::vector<uint16_t>& src, uint32_t w, uint32_t h,
                                 int shift, BayerPhase phase, SimdLevel level) {
    GuardedBuffer<uint8_t> dst(size_t{w} * h * 3);
    DemosaicReduced(src.data(), dst.data(), w, h, shift, phase, level);
    EXPECT_TRUE(dst.GuardIntact()) << w << "x" << h;
    return Widened(dst.Written());
}

std::vector<uint32_t> RunWords(const std::vector<uint16_t>& src, uint32_t w, uint32_t h,
                               BayerPhase phase, SimdLevel level) {
    GuardedBuffer<uint16_t> dst(size_t{w} * h * 3);
    DemosaicWords(src.data(), dst.data(), w, h, phase, level);
    EXPECT_TRUE(dst.GuardIntact()) << w << "x" << h;
    return Widened(dst.Written());
}

// ---- Worked examples -------------------------------------------------------------------

TEST(BayerExamples, TwoByTwoGbCell) {
    const std::vector<uint8_t> src = {10, 200, 50, 31};  // G0 B / R G1
    for (SimdLevel level : {SimdLevel::Scalar, SimdLevel::Avx2}) {
        const std::vector<uint32_t> expected = {200, 10, 50, 200, 20, 50, 200, 20, 50, 200, 31, 50};
        EXPECT_EQ(RunBytes(src, 2, 2, BayerPhase::GB, level), expected);
    }
}

TEST(BayerExamples, TopRowBlueGreenIsTruncatedThird) {
    // 4 x 2 GB: the top-row blue at x = 1 has left 10, right 11 and below 12 (33 / 3), then
    // the same with right 10 (32 / 3 truncated).
    for (uint8_t right : {uint8_t{11}, uint8_t{10}}) {
        const std::vector<uint8_t> src = {10, 99, right, 99, 7, 12, 7, 12};
        const auto out = RunBytes(src, 4, 2, BayerPhase::GB, SimdLevel::Scalar);
        EXPECT_EQ(out[3 * 1 + 1], right == 11 ? 11u : 10u);
    }
}

TEST(BayerExamples, TenBitMaximumAndStrayBit) {
    const uint32_t w = 40, h = 4;
    const std::vector<uint16_t> max(size_t{w} * h, 1023);
    const std::vector<uint16_t> stray(size_t{w} * h, 0x0400);
    for (SimdLevel level : {SimdLevel::Scalar, SimdLevel::Avx2}) {
        for (uint32_t v : RunReduced(max, w, h, 2, BayerPhase::RG, level)) {
            ASSERT_EQ(v, 255u);
        }
        for (uint32_t v : RunWords(max, w, h, BayerPhase::RG, level)) {
            ASSERT_EQ(v, 1023u);
        }
        for (uint32_t v : RunReduced(stray, w, h, 2, BayerPhase::GR, level)) {
            ASSERT_EQ(v, 0u);
        }
    }
}

TEST(BayerExamples, BorderCountsOfGbMosaic) {
    // 4 x 4 GB with distinct samples; check the border cases one by one.
    std::vector<uint8_t> s(16);
    for (size_t i = 0; i < s.size(); ++i) {
        s[i] = static_cast<uint8_t>(10 + 7 * i);
    }
    const auto out = RunBytes(s, 4, 4, BayerPhase::GB, SimdLevel::Avx2);
    auto px = [&](uint32_t x, uint32_t y, int c) { return out[(y * 4 + x) * 3 + c]; };
    auto at = [&](uint32_t x, uint32_t y) { return uint32_t{s[y * 4 + x]}; };
    // Top-right blue: green from left and below, red from the lower-left diagonal alone.
    EXPECT_EQ(px(3, 0, 1), (at(2, 0) + at(3, 1)) >> 1);
    EXPECT_EQ(px(3, 0, 2), at(2, 1));
    // First pixel of a red row: blue from the right diagonals, green from up, down, right.
    EXPECT_EQ(px(0, 1, 0), (at(1, 0) + at(1, 2)) >> 1);
    EXPECT_EQ(px(0, 1, 1), (at(0, 0) + at(0, 2) + at(1, 1)) / 3);
    // Last-row red: blue from the two upper diagonals, green from left, up, right.
    EXPECT_EQ(px(2, 3, 0), (at(1, 2) + at(3, 2)) >> 1);
    EXPECT_EQ(px(2, 3, 1), (at(1, 3) + at(2, 2) + at(3, 3)) / 3);
}

// ---- Against the reference, per phase and vector level ---------------------------------

class BayerAgainstOracle : public ::testing::TestWithParam<std::tuple<BayerPhase, SimdLevel>> {
  protected:
    BayerPhase phase() const { return std::get<0>(GetParam()); }
    SimdLevel level() const { return std::get<1>(GetParam()); }
};

// Widths straddle the 16- and 32-pixel vectors (inner width N, N + 2, odd numbers of
// 2-pixel cells) so the overlapping last chunk and the scalar fallback are both covered.
const uint32_t kWidths[] = {2, 4, 6, 10, 16, 18, 20, 30, 32, 34, 36, 50, 66, 98, 130, 262};
const uint32_t kHeights[] = {2, 4, 6, 10};

TEST_P(BayerAgainstOracle, EightBitRandomImages) {
    uint32_t seed = 1;
    for (uint32_t w : kWidths) {
        for (uint32_t h : kHeights) {
            const auto src = RandomSamples<uint8_t>(size_t{w} * h, ++seed, 0xFF);
            ASSERT_EQ(RunBytes(src, w, h, phase(), level()),
                      oracle::Demosaic(Widened(src), w, h, phase()))
                << w << "x" << h;
        }
    }
}

TEST_P(BayerAgainstOracle, ReducedSamplesWithStrayBits) {
    uint32_t seed = 100;
    for (int shift : {2, 4}) {
        for (uint32_t w : kWidths) {
            for (uint32_t h : {2u, 6u}) {
                const auto src = RandomSamples<uint16_t>(size_t{w} * h, ++seed, 0xFFFF);
                ASSERT_EQ(RunReduced(src, w, h, shift, phase(), level()),
                          oracle::Demosaic(Reduced(src, shift), w, h, phase()))
                    << w << "x" << h << " shift " << shift;
            }
        }
    }
}

TEST_P(BayerAgainstOracle, WordsKeepFullSixteenBitMeans) {
    uint32_t seed = 200;
    for (uint32_t w : kWidths) {
        for (uint32_t h : {2u, 4u, 8u}) {
            // Full 16-bit samples make the four-sample sums exceed 16 bits.
            const auto src = RandomSamples<uint16_t>(size_t{w} * h, ++seed, 0xFFFF);
            ASSERT_EQ(RunWords(src, w, h, phase(), level()),
                      oracle::Demosaic(Reduced(src, -1), w, h, phase()))
                << w << "x" << h;
        }
    }
}

TEST_P(BayerAgainstOracle, ExtremeSamples) {
    const uint32_t w = 70, h = 6;
    for (uint16_t value : {uint16_t{0}, uint16_t{0xFFFF}, uint16_t{0x0FFF}}) {
        const std::vector<uint16_t> words(size_t{w} * h, value);
        const std::vector<uint8_t> bytes(size_t{w} * h, static_cast<uint8_t>(value));
        EXPECT_EQ(RunBytes(bytes, w, h, phase(), level()),
                  oracle::Demosaic(Widened(bytes), w, h, phase()));
        EXPECT_EQ(RunReduced(words, w, h, 4, phase(), level()),
                  oracle::Demosaic(Reduced(words, 4), w, h, phase()));
        EXPECT_EQ(RunWords(words, w, h, phase(), level()),
                  oracle::Demosaic(Reduced(words, -1), w, h, phase()));
    }
}

std::string PhaseAndLevelName(
    const ::testing::TestParamInfo<std::tuple<BayerPhase, SimdLevel>>& info) {
    static const char* const kPhases[] = {"GB", "RG", "GR"};
    const bool avx2 = std::get<1>(info.param) == SimdLevel::Avx2;
    return std::string(kPhases[int(std::get<0>(info.param))]) + (avx2 ? "_Avx2" : "_Scalar");
}

INSTANTIATE_TEST_SUITE_P(PhasesAndLevels, BayerAgainstOracle,
                         ::testing::Combine(::testing::Values(BayerPhase::GB, BayerPhase::RG,
                                                              BayerPhase::GR),
                                            ::testing::Values(SimdLevel::Scalar, SimdLevel::Avx2)),
                         PhaseAndLevelName);

TEST(BayerLargeImages, FullSensorSizeMatchesOracle) {
    const uint32_t w = 2448, h = 2048;
    const auto src = RandomSamples<uint8_t>(size_t{w} * h, 77, 0xFF);
    EXPECT_EQ(RunBytes(src, w, h, BayerPhase::GR, SimdLevel::Avx2),
              oracle::Demosaic(Widened(src), w, h, BayerPhase::GR));
    const uint32_t tw = 4096, th = 2;
    const auto wide = RandomSamples<uint16_t>(size_t{tw} * th, 78, 0xFFFF);
    EXPECT_EQ(RunWords(wide, tw, th, BayerPhase::RG, SimdLevel::Avx2),
              oracle::Demosaic(Reduced(wide, -1), tw, th, BayerPhase::RG));
}

// ---- Public members and flat functions -------------------------------------------------

TEST(BayerEntryPoints, MembersAndFlatFunctionsPickTheirPhaseAndDepth) {
    const uint32_t w = 38, h = 6;
    const size_t n = size_t{w} * h;
    const auto bytes = RandomSamples<uint8_t>(n, 5, 0xFF);
    const auto words = RandomSamples<uint16_t>(n, 6, 0xFFFF);
    using Byte8 = void (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t);
    using Word8 = void (*)(const uint16_t*, uint8_t*, uint32_t, uint32_t);
    using Word16 = void (*)(const uint16_t*, uint16_t*, uint32_t, uint32_t);
    const std::tuple<Byte8, Byte8, BayerPhase> byteCases[] = {
        {RyImageProcess::ConvertBAYGB8ToBGR8, ::ConvertBAYGB8ToBGR8, BayerPhase::GB},
        {RyImageProcess::ConvertBAYRG8ToBGR8, ::ConvertBAYRG8ToBGR8, BayerPhase::RG},
        {RyImageProcess::ConvertBAYGR8ToBGR8, ::ConvertBAYGR8ToBGR8, BayerPhase::GR}};
    for (const auto& [member, flat, phase] : byteCases) {
        const auto expected = oracle::Demosaic(Widened(bytes), w, h, phase);
        for (Byte8 fn : {member, flat}) {
            std::vector<uint8_t> out(n * 3);
            fn(bytes.data(), out.data(), w, h);
            EXPECT_EQ(Widened(out), expected);
        }
    }
    const std::tuple<Word8, Word8, BayerPhase, int> reducedCases[] = {
        {RyImageProcess::ConvertBAYGB10ToBGR8, ::ConvertBAYGB10ToBGR8, BayerPhase::GB, 2},
        {RyImageProcess::ConvertBAYRG10ToBGR8, ::ConvertBAYRG10ToBGR8, BayerPhase::RG, 2},
        {RyImageProcess::ConvertBAYGR10ToBGR8, ::ConvertBAYGR10ToBGR8, BayerPhase::GR, 2},
        {RyImageProcess::ConvertBAYGB12ToBGR8, ::ConvertBAYGB12ToBGR8, BayerPhase::GB, 4},
        {RyImageProcess::ConvertBAYRG12ToBGR8, ::ConvertBAYRG12ToBGR8, BayerPhase::RG, 4},
        {RyImageProcess::ConvertBAYGR12ToBGR8, ::ConvertBAYGR12ToBGR8, BayerPhase::GR, 4}};
    for (const auto& [member, flat, phase, shift] : reducedCases) {
        const auto expected = oracle::Demosaic(Reduced(words, shift), w, h, phase);
        for (Word8 fn : {member, flat}) {
            std::vector<uint8_t> out(n * 3);
            fn(words.data(), out.data(), w, h);
            EXPECT_EQ(Widened(out), expected);
        }
    }
    const std::tuple<Word16, Word16, BayerPhase> wordCases[] = {
        {RyImageProcess::ConvertBAYGB10ToBGR10, ::ConvertBAYGB10ToBGR10, BayerPhase::GB},
        {RyImageProcess::ConvertBAYRG10ToBGR10, ::ConvertBAYRG10ToBGR10, BayerPhase::RG},
        {RyImageProcess::ConvertBAYGR10ToBGR10, ::ConvertBAYGR10ToBGR10, BayerPhase::GR}};
    for (const auto& [member, flat, phase] : wordCases) {
        const auto expected = oracle::Demosaic(Reduced(words, -1), w, h, phase);
        for (Word16 fn : {member, flat}) {
            std::vector<uint16_t> out(n * 3);
            fn(words.data(), out.data(), w, h);
            EXPECT_EQ(Widened(out), expected);
        }
    }
}

// ---- Outside the contract ---------------------------------------------------------------

TEST(BayerContract, NullPointersWriteNothing) {
    GuardedBuffer<uint8_t> dst(4 * 3);
    RyImageProcess::ConvertBAYGB8ToBGR8(nullptr, dst.data(), 2, 2);
    EXPECT_TRUE(dst.Untouched());
    const std::vector<uint8_t> src(4, 1);
    RyImageProcess::ConvertBAYGB8ToBGR8(src.data(), nullptr, 2, 2);
}

TEST(BayerContract, OddOrTooSmallSizes) {
    EXPECT_TRUE(IsDemosaicSize(2, 2));
    EXPECT_FALSE(IsDemosaicSize(0, 2));
    EXPECT_FALSE(IsDemosaicSize(3, 2));
    EXPECT_FALSE(IsDemosaicSize(4, 5));
    const std::vector<uint8_t> src(64, 9);
    GuardedBuffer<uint8_t> dst(64 * 3);
#ifdef NDEBUG
    // Release builds leave the destination alone rather than pairing past the image.
    RyImageProcess::ConvertBAYGB8ToBGR8(src.data(), dst.data(), 3, 4);
    RyImageProcess::ConvertBAYGB8ToBGR8(src.data(), dst.data(), 0, 0);
    EXPECT_TRUE(dst.Untouched());
#else
    EXPECT_DEATH(RyImageProcess::ConvertBAYGB8ToBGR8(src.data(), dst.data(), 3, 4), "even");
#endif
}

}  // namespace
}  // namespace RYSDK::imageproc

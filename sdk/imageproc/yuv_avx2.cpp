// 4:2:2 kernels working in one 32-bit lane per group: the chroma terms are formed once per
// group and combined with the even and the odd luma sample, and two runs of eight groups
// are narrowed together into 32 pixels. The integer form uses pairwise 16-bit multiply-adds
// into 32-bit sums, which reproduces the scalar formula exactly; the floating form uses
// separate multiplies and adds (no fused multiply-add) in the scalar order, so each pixel
// rounds as the scalar code does.
#include "imageproc/yuv_avx2.h"

#include "imageproc/avx2_common.h"

namespace RYSDK::imageproc::avx2 {

namespace {

constexpr uint8_t kZero = 0x80;

// Clamping to 0..255 and then truncating gives the same byte as truncating toward zero and
// then saturating, which the narrowing packs do: every result lies well inside the 32-bit
// range (about -227 to 480), and a negative value truncates to at most 0.
RY_AVX2 inline __m256i Truncate(__m256 x) {
    return _mm256_cvttps_epi32(x);
}

// Control that puts byte `inGroup` of each of the four groups of a lane into that group's
// 32-bit lane.
constexpr Mask32 GroupLaneMask(int inGroup) {
    Mask32 mask{};
    for (int k = 0; k < 32; ++k) {
        const int group = (k % 16) / 4;
        mask[k] = k % 4 == 0 ? static_cast<uint8_t>(group * 4 + inGroup) : kZero;
    }
    return mask;
}

RY_AVX2 inline __m256 GroupSamples(__m256i groups, const Mask32& mask) {
    return _mm256_cvtepi32_ps(_mm256_shuffle_epi8(groups, LoadMask(mask)));
}

// Colours of the even pixels ([0]) and odd pixels ([1]) of eight groups, groups 0-3 in the
// low lanes and 4-7 in the high lanes. The chroma terms are formed once per group and
// added to both luma samples, which is what the per-pixel formula computes for each.
struct GroupsBgr {
    __m256i b[2], g[2], r[2];
};

template <Yuv422Order Order>
RY_AVX2 inline GroupsBgr FloatingGroups(const uint8_t* src) {
    static constexpr Mask32 kY0 = GroupLaneMask(Order.y0), kY1 = GroupLaneMask(Order.y1);
    static constexpr Mask32 kU = GroupLaneMask(Order.u), kV = GroupLaneMask(Order.v);
    const __m256i groups = Load(src);
    const __m256 half = _mm256_set1_ps(128.0f);
    const __m256 u = _mm256_sub_ps(GroupSamples(groups, kU), half);
    const __m256 v = _mm256_sub_ps(GroupSamples(groups, kV), half);
    const __m256 red = _mm256_mul_ps(_mm256_set1_ps(1.402f), v);
    const __m256 green = _mm256_add_ps(_mm256_mul_ps(_mm256_set1_ps(0.714f), v),
                                       _mm256_mul_ps(_mm256_set1_ps(0.344f), u));
    const __m256 blue = _mm256_mul_ps(_mm256_set1_ps(1.772f), u);
    GroupsBgr out;
    const __m256 luma[2] = {GroupSamples(groups, kY0), GroupSamples(groups, kY1)};
    for (int i = 0; i < 2; ++i) {
        out.b[i] = Truncate(_mm256_add_ps(luma[i], blue));
        out.g[i] = Truncate(_mm256_sub_ps(luma[i], green));
        out.r[i] = Truncate(_mm256_add_ps(luma[i], red));
    }
    return out;
}

// Even and odd pixels of two runs of eight groups narrowed (with saturation) to 32 bytes in
// pixel order: the packs leave each lane as four even then four odd pixels per half, which
// one in-lane shuffle and one quadword permutation put in order.
RY_AVX2 inline __m256i NarrowEvenOdd(const __m256i first[2], const __m256i second[2]) {
    static constexpr Mask32 kPairUp = [] {
        Mask32 mask{};
        for (int k = 0; k < 32; ++k) {
            const int half = (k % 16) / 8, i = k % 8;
            mask[k] = static_cast<uint8_t>(half * 8 + (i % 2) * 4 + i / 2);
        }
        return mask;
    }();
    const __m256i bytes = _mm256_packus_epi16(_mm256_packs_epi32(first[0], first[1]),
                                              _mm256_packs_epi32(second[0], second[1]));
    return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(bytes, LoadMask(kPairUp)), 0xD8);
}

// Two 16-bit values as one 32-bit lane, the first in the low half.
constexpr int32_t PairOf(int16_t low, int16_t high) {
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(low)) |
                                (static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16));
}

// Control that puts bytes `low` and `high` of each group into the two 16-bit halves of that
// group's 32-bit lane.
constexpr Mask32 GroupPairMask(int low, int high) {
    Mask32 mask = GroupLaneMask(low);
    for (int k = 0; k < 32; k += 4) {
        mask[k + 2] = static_cast<uint8_t>((k % 16) + high);
    }
    return mask;
}

// Studio-range colours of eight U Y0 V Y1 groups. 298 (Y - 16) + 128 is one multiply-add of
// (Y, 1) with (298, 128 - 298 x 16); the chroma terms are multiply-adds of (U - 128, V - 128)
// formed once per group. All sums are exact in 32 bits, as in the scalar formula.
RY_AVX2 inline GroupsBgr IntegerGroups(const uint8_t* src) {
    static constexpr Mask32 kY0 = GroupLaneMask(kUyvy.y0), kY1 = GroupLaneMask(kUyvy.y1);
    static constexpr Mask32 kUv = GroupPairMask(kUyvy.u, kUyvy.v);
    const __m256i groups = Load(src);
    const __m256i uv = _mm256_sub_epi16(_mm256_shuffle_epi8(groups, LoadMask(kUv)),
                                        _mm256_set1_epi32(PairOf(128, 128)));
    const __m256i blue = _mm256_madd_epi16(uv, _mm256_set1_epi32(PairOf(516, 0)));
    const __m256i green = _mm256_madd_epi16(uv, _mm256_set1_epi32(PairOf(-100, -208)));
    const __m256i red = _mm256_madd_epi16(uv, _mm256_set1_epi32(PairOf(0, 409)));
    const __m256i one = _mm256_set1_epi32(PairOf(0, 1));
    const __m256i lumaWeights = _mm256_set1_epi32(PairOf(298, 128 - 298 * 16));
    const __m256i luma[2] = {
        _mm256_madd_epi16(_mm256_or_si256(_mm256_shuffle_epi8(groups, LoadMask(kY0)), one),
                          lumaWeights),
        _mm256_madd_epi16(_mm256_or_si256(_mm256_shuffle_epi8(groups, LoadMask(kY1)), one),
                          lumaWeights)};
    GroupsBgr out;
    for (int i = 0; i < 2; ++i) {
        out.b[i] = _mm256_srai_epi32(_mm256_add_epi32(luma[i], blue), 8);
        out.g[i] = _mm256_srai_epi32(_mm256_add_epi32(luma[i], green), 8);
        out.r[i] = _mm256_srai_epi32(_mm256_add_epi32(luma[i], red), 8);
    }
    return out;
}

// Runs of 16 groups (64 source bytes, 32 pixels).
template <GroupsBgr (*convert)(const uint8_t*)>
RY_AVX2 inline size_t GroupRuns(const uint8_t* src, size_t groups, uint8_t* dst) {
    const size_t runs = groups / 16;
    for (size_t i = 0; i < runs; ++i) {
        const GroupsBgr a = convert(src + i * 64);
        const GroupsBgr b = convert(src + i * 64 + 32);
        StoreInterleaved3<1>(dst + i * 96, NarrowEvenOdd(a.b, b.b), NarrowEvenOdd(a.g, b.g),
                             NarrowEvenOdd(a.r, b.r));
    }
    return runs * 16;
}

}  // namespace

size_t Yuv422IntegerUyvy(const uint8_t* src, size_t groups, uint8_t* dst) {
    return GroupRuns<IntegerGroups>(src, groups, dst);
}

size_t Yuv422FloatingUyvy(const uint8_t* src, size_t groups, uint8_t* dst) {
    return GroupRuns<FloatingGroups<kUyvy>>(src, groups, dst);
}

size_t Yuv422FloatingYuyv(const uint8_t* src, size_t groups, uint8_t* dst) {
    return GroupRuns<FloatingGroups<kYuyv>>(src, groups, dst);
}

}  // namespace RYSDK::imageproc::avx2

// 4:2:2 kernels working in 32-bit lanes. The integer form spreads each 16-byte block
// (4 groups, 8 pixels) into one lane per pixel and uses pairwise 16-bit multiply-adds into
// 32-bit sums, which reproduces the scalar formula exactly. The floating form keeps one lane
// per group and uses separate multiplies and adds (no fused multiply-add) in the scalar
// order, so each pixel rounds as the scalar code does.
#include "imageproc/yuv_avx2.h"

#include "imageproc/avx2_common.h"

namespace RYSDK::imageproc::avx2 {

namespace {

constexpr uint8_t kZero = 0x80;

// Control that puts, for pixel p of a block, the bytes picked by `pick(p)` (four offsets,
// kZero for a zero byte) into the 32-bit lane of that pixel.
template <class Pick>
constexpr Mask32 PixelLaneMask(Pick pick) {
    Mask32 mask{};
    for (int p = 0; p < 8; ++p) {
        const auto bytes = pick(p);
        for (int k = 0; k < 4; ++k) {
            mask[(p / 4) * 16 + (p % 4) * 4 + k] = bytes[k];
        }
    }
    return mask;
}

constexpr uint8_t Offset(int p, int inGroup) {
    return static_cast<uint8_t>((p / 2) * 4 + inGroup);
}

constexpr int LumaOf(Yuv422Order o, int p) {
    return p % 2 == 0 ? o.y0 : o.y1;
}

// (Y, U) as two 16-bit values, for the multiply-add with (298, coefficient of U).
constexpr Mask32 LumaChromaUMask(Yuv422Order o) {
    return PixelLaneMask([o](int p) {
        return std::array<uint8_t, 4>{Offset(p, LumaOf(o, p)), kZero, Offset(p, o.u), kZero};
    });
}

// (V, 0) as two 16-bit values; the second becomes the rounding term's multiplier.
constexpr Mask32 ChromaVMask(Yuv422Order o) {
    return PixelLaneMask([o](int p) {
        return std::array<uint8_t, 4>{Offset(p, o.v), kZero, kZero, kZero};
    });
}

RY_AVX2 inline __m256i LoadBlock(const uint8_t* src) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)));
}

struct BlockBgr {
    __m256i b, g, r;
};

// Two 16-bit values as one 32-bit lane, the first in the low half.
constexpr int32_t PairOf(int16_t low, int16_t high) {
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint16_t>(low)) |
                                (static_cast<uint32_t>(static_cast<uint16_t>(high)) << 16));
}

// (ky (Y - 16) + ku (U - 128) + kv (V - 128) + 128) >> 8 in 32-bit lanes.
RY_AVX2 inline __m256i Weigh(__m256i yu, __m256i v1, int16_t ky, int16_t ku, int16_t kv) {
    const __m256i a = _mm256_madd_epi16(yu, _mm256_set1_epi32(PairOf(ky, ku)));
    const __m256i c = _mm256_madd_epi16(v1, _mm256_set1_epi32(PairOf(kv, 1)));
    return _mm256_srai_epi32(_mm256_add_epi32(a, c), 8);
}

RY_AVX2 inline BlockBgr IntegerBlock(const uint8_t* src) {
    static constexpr Mask32 kYu = LumaChromaUMask(kUyvy);
    static constexpr Mask32 kV = ChromaVMask(kUyvy);
    const __m256i block = LoadBlock(src);
    // (Y - 16, U - 128) and (V - 128, 128): the 128 times 1 is the rounding term.
    const __m256i yu = _mm256_sub_epi16(_mm256_shuffle_epi8(block, LoadMask(kYu)),
                                        _mm256_set1_epi32(PairOf(16, 128)));
    const __m256i v1 = _mm256_sub_epi16(_mm256_shuffle_epi8(block, LoadMask(kV)),
                                        _mm256_set1_epi32(PairOf(128, -128)));
    return {Weigh(yu, v1, 298, 516, 0), Weigh(yu, v1, 298, -100, -208), Weigh(yu, v1, 298, 0, 409)};
}

// Clamping to 0..255 and then truncating gives the same byte as truncating toward zero and
// then saturating, which the narrowing packs do: every result lies well inside the 32-bit
// range (-180 to 434), and a negative value truncates to at most 0.
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

// Runs of 16 groups (64 source bytes, 32 pixels).
template <Yuv422Order Order>
RY_AVX2 inline size_t FloatingRuns(const uint8_t* src, size_t groups, uint8_t* dst) {
    const size_t runs = groups / 16;
    for (size_t i = 0; i < runs; ++i) {
        const GroupsBgr a = FloatingGroups<Order>(src + i * 64);
        const GroupsBgr b = FloatingGroups<Order>(src + i * 64 + 32);
        StoreInterleaved3<1>(dst + i * 96, NarrowEvenOdd(a.b, b.b), NarrowEvenOdd(a.g, b.g),
                             NarrowEvenOdd(a.r, b.r));
    }
    return runs * 16;
}

// Runs of 16 groups: four blocks, narrowed per colour and interleaved into 96 bytes.
template <BlockBgr (*block)(const uint8_t*)>
RY_AVX2 inline size_t IntegerRuns(const uint8_t* src, size_t groups, uint8_t* dst) {
    const size_t runs = groups / 16;
    for (size_t i = 0; i < runs; ++i) {
        const uint8_t* in = src + size_t{i} * 64;
        const BlockBgr q0 = block(in), q1 = block(in + 16), q2 = block(in + 32),
                       q3 = block(in + 48);
        StoreInterleaved3<1>(dst + size_t{i} * 96, NarrowBlocksToBytes(q0.b, q1.b, q2.b, q3.b),
                             NarrowBlocksToBytes(q0.g, q1.g, q2.g, q3.g),
                             NarrowBlocksToBytes(q0.r, q1.r, q2.r, q3.r));
    }
    return runs * 16;
}

}  // namespace

size_t Yuv422IntegerUyvy(const uint8_t* src, size_t groups, uint8_t* dst) {
    return IntegerRuns<IntegerBlock>(src, groups, dst);
}

size_t Yuv422FloatingUyvy(const uint8_t* src, size_t groups, uint8_t* dst) {
    return FloatingRuns<kUyvy>(src, groups, dst);
}

size_t Yuv422FloatingYuyv(const uint8_t* src, size_t groups, uint8_t* dst) {
    return FloatingRuns<kYuyv>(src, groups, dst);
}

}  // namespace RYSDK::imageproc::avx2

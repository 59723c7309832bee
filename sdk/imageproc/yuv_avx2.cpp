// 4:2:2 kernels: each 16-byte block (4 groups, 8 pixels) is spread by byte shuffles into
// 32-bit lanes, pixels 0-3 in the low lane and 4-7 in the high one, computed there, and
// four blocks are narrowed together into 32 pixels. The integer form uses pairwise 16-bit
// multiply-adds into 32-bit sums, which reproduces the scalar formula exactly; the floating
// form uses separate multiplies and adds (no fused multiply-add) in the scalar order.
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

constexpr Mask32 SingleByteMask(Yuv422Order o, int which) {
    return PixelLaneMask([o, which](int p) {
        const int inGroup = which == 0 ? LumaOf(o, p) : which == 1 ? o.u : o.v;
        return std::array<uint8_t, 4>{Offset(p, inGroup), kZero, kZero, kZero};
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

template <Yuv422Order Order>
RY_AVX2 inline BlockBgr FloatingBlock(const uint8_t* src) {
    static constexpr Mask32 kY = SingleByteMask(Order, 0);
    static constexpr Mask32 kU = SingleByteMask(Order, 1);
    static constexpr Mask32 kV = SingleByteMask(Order, 2);
    const __m256i block = LoadBlock(src);
    const __m256 half = _mm256_set1_ps(128.0f);
    const __m256 y = _mm256_cvtepi32_ps(_mm256_shuffle_epi8(block, LoadMask(kY)));
    const __m256 u =
        _mm256_sub_ps(_mm256_cvtepi32_ps(_mm256_shuffle_epi8(block, LoadMask(kU))), half);
    const __m256 v =
        _mm256_sub_ps(_mm256_cvtepi32_ps(_mm256_shuffle_epi8(block, LoadMask(kV))), half);
    const __m256 r = _mm256_add_ps(y, _mm256_mul_ps(_mm256_set1_ps(1.402f), v));
    const __m256 g = _mm256_sub_ps(y, _mm256_add_ps(_mm256_mul_ps(_mm256_set1_ps(0.714f), v),
                                                    _mm256_mul_ps(_mm256_set1_ps(0.344f), u)));
    const __m256 b = _mm256_add_ps(y, _mm256_mul_ps(_mm256_set1_ps(1.772f), u));
    return {Truncate(b), Truncate(g), Truncate(r)};
}

// Runs of 16 groups: four blocks, narrowed per colour and interleaved into 96 bytes.
template <BlockBgr (*block)(const uint8_t*)>
RY_AVX2 inline size_t ConvertRuns(const uint8_t* src, size_t groups, uint8_t* dst) {
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
    return ConvertRuns<IntegerBlock>(src, groups, dst);
}

size_t Yuv422FloatingUyvy(const uint8_t* src, size_t groups, uint8_t* dst) {
    return ConvertRuns<FloatingBlock<kUyvy>>(src, groups, dst);
}

size_t Yuv422FloatingYuyv(const uint8_t* src, size_t groups, uint8_t* dst) {
    return ConvertRuns<FloatingBlock<kYuyv>>(src, groups, dst);
}

}  // namespace RYSDK::imageproc::avx2

#include "imageproc/rgb_mono_avx2.h"

#include "imageproc/avx2_common.h"

namespace RYSDK::imageproc::avx2 {

namespace {

// Control for output part `part` (16 bytes) of a 48-byte run of RGB pixels, taking the
// bytes that come from input part `from`: output byte k of pixel p, channel c, comes from
// input byte 3p + 2 - c.
constexpr Mask32 SwapMask(int part, int from) {
    Mask32 mask{};
    for (int k = 0; k < 16; ++k) {
        const int pos = part * 16 + k;
        const int source = pos - pos % 3 + 2 - pos % 3;
        mask[k] = source / 16 == from ? static_cast<uint8_t>(source % 16) : uint8_t{0x80};
        mask[k + 16] = mask[k];
    }
    return mask;
}

RY_AVX2 inline __m256i Pick(__m256i v, const Mask32& mask) {
    return _mm256_shuffle_epi8(v, LoadMask(mask));
}

// 32 pixels (96 bytes) of RGB: the low lanes carry the first 48 bytes, the high lanes the
// next 48.
struct SwapRedBlueRun {
    const uint8_t* src;
    RY_AVX2 void Vector(size_t first, uint8_t* dst) const {
        static constexpr Mask32 k00 = SwapMask(0, 0), k01 = SwapMask(0, 1);
        static constexpr Mask32 k10 = SwapMask(1, 0), k11 = SwapMask(1, 1), k12 = SwapMask(1, 2);
        static constexpr Mask32 k21 = SwapMask(2, 1), k22 = SwapMask(2, 2);
        const uint8_t* in = src + first * 3;
        const __m256i a = Load(in), b = Load(in + 32), c = Load(in + 64);
        const __m256i in0 = _mm256_permute2x128_si256(a, b, 0x30);
        const __m256i in1 = _mm256_permute2x128_si256(a, c, 0x21);
        const __m256i in2 = _mm256_permute2x128_si256(b, c, 0x30);
        const __m256i o0 = _mm256_or_si256(Pick(in0, k00), Pick(in1, k01));
        const __m256i o1 =
            _mm256_or_si256(_mm256_or_si256(Pick(in0, k10), Pick(in1, k11)), Pick(in2, k12));
        const __m256i o2 = _mm256_or_si256(Pick(in1, k21), Pick(in2, k22));
        StoreLaneTriples(dst + first * 3, o0, o1, o2);
    }
};

// Control for output bytes 32 x part to 32 x part + 31 of 32 tripled pixels, picking from
// a vector whose lanes hold pixels 0-15 or 16-31 as each output byte needs.
constexpr Mask32 TripledPartMask(int part) {
    Mask32 mask{};
    for (int k = 0; k < 32; ++k) {
        mask[k] = static_cast<uint8_t>(((part * 32 + k) / 3) % 16);
    }
    return mask;
}

// Each output vector draws on one lane's worth of pixels per lane: the first on pixels 0-15
// in both lanes, the second on 0-15 and 16-31, the third on 16-31 in both. Loading the
// sources that way leaves one in-lane shuffle per output vector and no lane crossing.
struct TripleBytesRun {
    const uint8_t* src;
    RY_AVX2 void Vector(size_t first, uint8_t* dst) const {
        static constexpr Mask32 k0 = TripledPartMask(0), k1 = TripledPartMask(1),
                                k2 = TripledPartMask(2);
        const uint8_t* in = src + first;
        uint8_t* out = dst + first * 3;
        const __m256i low =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in)));
        const __m256i high =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 16)));
        Store(out, Pick(low, k0));
        Store(out + 32, Pick(Load(in), k1));
        Store(out + 64, Pick(high, k2));
    }
};

template <int Shift>
struct TripleReducedRun {
    const uint8_t* src;
    RY_AVX2 void Vector(size_t first, uint8_t* dst) const {
        StoreTripled(dst + first * 3, LoadReducedBytes<Shift>(src + first * 2));
    }
};

// Pixels done in runs of 32 from the start.
template <class Run>
RY_AVX2 size_t ConvertRuns(const Run& run, size_t pixels, uint8_t* dst) {
    const size_t runs = pixels / 32;
    for (size_t r = 0; r < runs; ++r) {
        run.Vector(r * 32, dst);
    }
    return runs * 32;
}

}  // namespace

size_t SwapRedBlue(const uint8_t* src, size_t pixels, uint8_t* dst) {
    return ConvertRuns(SwapRedBlueRun{src}, pixels, dst);
}

size_t TripleBytes(const uint8_t* src, size_t samples, uint8_t* dst) {
    return ConvertRuns(TripleBytesRun{src}, samples, dst);
}

template <int Shift>
size_t TripleReduced(const uint8_t* src, size_t samples, uint8_t* dst) {
    return ConvertRuns(TripleReducedRun<Shift>{src}, samples, dst);
}

template size_t TripleReduced<2>(const uint8_t*, size_t, uint8_t*);
template size_t TripleReduced<4>(const uint8_t*, size_t, uint8_t*);
template size_t TripleReduced<6>(const uint8_t*, size_t, uint8_t*);

}  // namespace RYSDK::imageproc::avx2

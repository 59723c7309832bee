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

// 96 bytes: the low lanes carry the first 48, the high lanes the next 48.
RY_AVX2 inline void SwapRun(const uint8_t* src, uint8_t* dst) {
    static constexpr Mask32 k00 = SwapMask(0, 0), k01 = SwapMask(0, 1);
    static constexpr Mask32 k10 = SwapMask(1, 0), k11 = SwapMask(1, 1), k12 = SwapMask(1, 2);
    static constexpr Mask32 k21 = SwapMask(2, 1), k22 = SwapMask(2, 2);
    const __m256i a = Load(src), b = Load(src + 32), c = Load(src + 64);
    const __m256i in0 = _mm256_permute2x128_si256(a, b, 0x30);
    const __m256i in1 = _mm256_permute2x128_si256(a, c, 0x21);
    const __m256i in2 = _mm256_permute2x128_si256(b, c, 0x30);
    const __m256i o0 = _mm256_or_si256(Pick(in0, k00), Pick(in1, k01));
    const __m256i o1 =
        _mm256_or_si256(_mm256_or_si256(Pick(in0, k10), Pick(in1, k11)), Pick(in2, k12));
    const __m256i o2 = _mm256_or_si256(Pick(in1, k21), Pick(in2, k22));
    StoreLaneTriples(dst, o0, o1, o2);
}

RY_AVX2 size_t SwapRuns(const uint8_t* src, size_t pixels, uint8_t* dst) {
    const size_t runs = pixels / 32;
    for (size_t i = 0; i < runs; ++i) {
        SwapRun(src + i * 96, dst + i * 96);
    }
    return runs * 32;
}

RY_AVX2 size_t TripleRuns(const uint8_t* src, size_t samples, uint8_t* dst) {
    const size_t runs = samples / 32;
    for (size_t i = 0; i < runs; ++i) {
        StoreTripled(dst + i * 96, Load(src + i * 32));
    }
    return runs * 32;
}

template <int Shift>
RY_AVX2 size_t TripleReducedRuns(const uint8_t* src, size_t samples, uint8_t* dst) {
    const size_t runs = samples / 32;
    for (size_t i = 0; i < runs; ++i) {
        StoreTripled(dst + i * 96, LoadReducedBytes<Shift>(src + i * 64));
    }
    return runs * 32;
}

}  // namespace

size_t SwapRedBlue(const uint8_t* src, size_t pixels, uint8_t* dst) {
    return SwapRuns(src, pixels, dst);
}

size_t TripleBytes(const uint8_t* src, size_t samples, uint8_t* dst) {
    return TripleRuns(src, samples, dst);
}

template <int Shift>
size_t TripleReduced(const uint8_t* src, size_t samples, uint8_t* dst) {
    return TripleReducedRuns<Shift>(src, samples, dst);
}

template size_t TripleReduced<2>(const uint8_t*, size_t, uint8_t*);
template size_t TripleReduced<4>(const uint8_t*, size_t, uint8_t*);
template size_t TripleReduced<6>(const uint8_t*, size_t, uint8_t*);

}  // namespace RYSDK::imageproc::avx2

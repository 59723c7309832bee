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
    template <StoreKind Kind>
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
        StoreLaneTriples<Kind>(dst + first * 3, o0, o1, o2);
    }
    void Scalar(size_t i, uint8_t* dst) const {
        dst[i * 3] = src[i * 3 + 2];
        dst[i * 3 + 1] = src[i * 3 + 1];
        dst[i * 3 + 2] = src[i * 3];
    }
};

inline void StoreGrey(uint8_t value, uint8_t* out) {
    out[0] = value;
    out[1] = value;
    out[2] = value;
}

struct TripleBytesRun {
    const uint8_t* src;
    template <StoreKind Kind>
    RY_AVX2 void Vector(size_t first, uint8_t* dst) const {
        StoreTripled<Kind>(dst + first * 3, Load(src + first));
    }
    void Scalar(size_t i, uint8_t* dst) const { StoreGrey(src[i], dst + i * 3); }
};

template <int Shift>
struct TripleReducedRun {
    const uint8_t* src;
    template <StoreKind Kind>
    RY_AVX2 void Vector(size_t first, uint8_t* dst) const {
        StoreTripled<Kind>(dst + first * 3, LoadReducedBytes<Shift>(src + first * 2));
    }
    void Scalar(size_t i, uint8_t* dst) const {
        const uint32_t sample = uint32_t{src[i * 2]} | (uint32_t{src[i * 2 + 1]} << 8);
        StoreGrey(static_cast<uint8_t>(sample >> Shift), dst + i * 3);
    }
};

// Outputs at least this large are written around the caches: they would not stay in a
// last-level cache slice anyway, and streaming saves reading every destination line in
// before it is overwritten. Smaller outputs stay cached for whoever reads them next.
constexpr size_t kStreamingOutputBytes = size_t{32} << 20;

// Pixels done in runs of 32 from the start, three output bytes each. A large output first
// takes single pixels up to a 32-byte aligned destination: 3 x 11 = 33, so 11 times the
// missing bytes (mod 32) is the number of pixels that gets there.
template <class Run>
RY_AVX2 size_t ConvertRuns(const Run& run, size_t pixels, uint8_t* dst) {
    if (pixels * 3 < kStreamingOutputBytes) {
        const size_t runs = pixels / 32;
        for (size_t r = 0; r < runs; ++r) {
            run.template Vector<StoreKind::Cached>(r * 32, dst);
        }
        return runs * 32;
    }
    const size_t head = (0 - reinterpret_cast<uintptr_t>(dst)) * 11 % 32;
    for (size_t i = 0; i < head; ++i) {
        run.Scalar(i, dst);
    }
    const size_t runs = (pixels - head) / 32;
    for (size_t r = 0; r < runs; ++r) {
        run.template Vector<StoreKind::Streaming>(head + r * 32, dst);
    }
    _mm_sfence();
    return head + runs * 32;
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

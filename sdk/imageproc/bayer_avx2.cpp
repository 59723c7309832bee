// The inner loop computes every candidate mean for a whole vector of pixels and blends by
// column parity, so both colour phases of a row go through without a test per pixel. The
// means stay in the sample width: a truncated mean of two is the rounding-up average minus
// the dropped low bit, and a mean of four combines two such halves with the carry of their
// dropped bits, which gives exactly the truncated quotient of the full sum.
#include "imageproc/bayer_avx2.h"

#include "imageproc/avx2_common.h"

namespace RYSDK::imageproc::avx2 {

namespace {

struct ByteLanes {
    static constexpr uint32_t kPixels = 32;
    static constexpr int kSampleBytes = 1;
    RY_AVX2 static __m256i Avg(__m256i a, __m256i b) { return _mm256_avg_epu8(a, b); }
    RY_AVX2 static __m256i Sub(__m256i a, __m256i b) { return _mm256_sub_epi8(a, b); }
    RY_AVX2 static __m256i One() { return _mm256_set1_epi8(1); }
    // Lanes 0, 2, 4 ... selected.
    RY_AVX2 static __m256i EvenLanes() { return _mm256_set1_epi16(0x00FF); }
};

struct WordLanes {
    static constexpr uint32_t kPixels = 16;
    static constexpr int kSampleBytes = 2;
    RY_AVX2 static __m256i Avg(__m256i a, __m256i b) { return _mm256_avg_epu16(a, b); }
    RY_AVX2 static __m256i Sub(__m256i a, __m256i b) { return _mm256_sub_epi16(a, b); }
    RY_AVX2 static __m256i One() { return _mm256_set1_epi16(1); }
    RY_AVX2 static __m256i EvenLanes() { return _mm256_set1_epi32(0x0000FFFF); }
};

struct LoadByteSamples {
    using In = uint8_t;
    RY_AVX2 static __m256i At(const uint8_t* p) { return Load(p); }
};

template <int Shift>
struct LoadReducedSamples {
    using In = uint16_t;
    RY_AVX2 static __m256i At(const uint16_t* p) { return LoadReducedBytes<Shift>(p); }
};

struct LoadWordSamples {
    using In = uint16_t;
    RY_AVX2 static __m256i At(const uint16_t* p) { return Load(p); }
};

// Truncated mean of two; `diff` receives a ^ b, whose low bit is the dropped bit.
template <class Lanes>
RY_AVX2 inline __m256i MeanOfTwo(__m256i a, __m256i b, __m256i& diff) {
    diff = _mm256_xor_si256(a, b);
    return Lanes::Sub(Lanes::Avg(a, b), _mm256_and_si256(diff, Lanes::One()));
}

// Truncated mean of four from the truncated means of its two pairs and their dropped bits:
// the sum is 2(p + q) + dp + dq, so the result rounds up only when both pairs dropped a bit.
template <class Lanes>
RY_AVX2 inline __m256i MeanOfFour(__m256i p, __m256i pDiff, __m256i q, __m256i qDiff) {
    const __m256i bothDropped = _mm256_and_si256(pDiff, qDiff);
    const __m256i roundDown =
        _mm256_and_si256(_mm256_andnot_si256(bothDropped, _mm256_xor_si256(p, q)), Lanes::One());
    return Lanes::Sub(Lanes::Avg(p, q), roundDown);
}

template <class Lanes, class Loader>
RY_AVX2 inline void DemosaicChunk(const typename Loader::In* up, const typename Loader::In* row,
                                  const typename Loader::In* down, uint8_t* out, uint32_t x,
                                  __m256i nonGreen, bool rowColourIsBlue) {
    const __m256i own = Loader::At(row + x);
    __m256i hDiff, vDiff, aDiff, bDiff;
    const __m256i h = MeanOfTwo<Lanes>(Loader::At(row + x - 1), Loader::At(row + x + 1), hDiff);
    const __m256i v = MeanOfTwo<Lanes>(Loader::At(up + x), Loader::At(down + x), vDiff);
    const __m256i cross = MeanOfFour<Lanes>(h, hDiff, v, vDiff);
    const __m256i upper = MeanOfTwo<Lanes>(Loader::At(up + x - 1), Loader::At(up + x + 1), aDiff);
    const __m256i lower =
        MeanOfTwo<Lanes>(Loader::At(down + x - 1), Loader::At(down + x + 1), bDiff);
    const __m256i diagonal = MeanOfFour<Lanes>(upper, aDiff, lower, bDiff);

    const __m256i rowColour = _mm256_blendv_epi8(h, own, nonGreen);
    const __m256i otherColour = _mm256_blendv_epi8(v, diagonal, nonGreen);
    const __m256i green = _mm256_blendv_epi8(own, cross, nonGreen);
    if (rowColourIsBlue) {
        StoreInterleaved3<Lanes::kSampleBytes>(out, rowColour, green, otherColour);
    } else {
        StoreInterleaved3<Lanes::kSampleBytes>(out, otherColour, green, rowColour);
    }
}

// Chunks start at odd columns (1, 1 + N, ...); the last chunk is moved back to end at
// column width - 2, which keeps it odd for even widths, and overlaps the one before.
template <class Lanes, class Loader, class Out>
RY_AVX2 uint32_t DemosaicInner(const typename Loader::In* up, const typename Loader::In* row,
                               const typename Loader::In* down, Out* out, uint32_t width,
                               BayerRowLayout layout) {
    constexpr uint32_t n = Lanes::kPixels;
    if (width < n + 2) {
        return 0;
    }
    // Lane i holds column x + i with x odd: even lanes are odd columns, which are the
    // non-green ones when green sits on even columns.
    const __m256i evenLanes = Lanes::EvenLanes();
    const __m256i nonGreen =
        layout.greenAtEvenColumns ? evenLanes : _mm256_xor_si256(evenLanes, _mm256_set1_epi8(-1));
    const uint32_t last = width - 1 - n;
    for (uint32_t x = 1;; x += n) {
        if (x > last) {
            x = last;
        }
        DemosaicChunk<Lanes, Loader>(up, row, down, reinterpret_cast<uint8_t*>(out + 3 * x), x,
                                     nonGreen, layout.rowColourIsBlue);
        if (x == last) {
            break;
        }
    }
    return width - 2;
}

}  // namespace

uint32_t DemosaicInnerBytes(const uint8_t* up, const uint8_t* row, const uint8_t* down,
                            uint8_t* out, uint32_t width, BayerRowLayout layout) {
    return DemosaicInner<ByteLanes, LoadByteSamples>(up, row, down, out, width, layout);
}

template <int Shift>
uint32_t DemosaicInnerReduced(const uint16_t* up, const uint16_t* row, const uint16_t* down,
                              uint8_t* out, uint32_t width, BayerRowLayout layout) {
    return DemosaicInner<ByteLanes, LoadReducedSamples<Shift>>(up, row, down, out, width, layout);
}

template uint32_t DemosaicInnerReduced<2>(const uint16_t*, const uint16_t*, const uint16_t*,
                                          uint8_t*, uint32_t, BayerRowLayout);
template uint32_t DemosaicInnerReduced<4>(const uint16_t*, const uint16_t*, const uint16_t*,
                                          uint8_t*, uint32_t, BayerRowLayout);

uint32_t DemosaicInnerWords(const uint16_t* up, const uint16_t* row, const uint16_t* down,
                            uint16_t* out, uint32_t width, BayerRowLayout layout) {
    return DemosaicInner<WordLanes, LoadWordSamples>(up, row, down, out, width, layout);
}

}  // namespace RYSDK::imageproc::avx2

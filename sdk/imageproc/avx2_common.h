// Helpers shared by the AVX2 kernels. Everything here carries the avx2 target attribute, so
// it may only be called from functions that carry it too.
#pragma once

#include <immintrin.h>

#include <array>
#include <cstdint>

#define RY_AVX2 __attribute__((target("avx2")))

namespace RYSDK::imageproc::avx2 {

using Mask32 = std::array<uint8_t, 32>;

// Shuffle control that picks, for byte `part * 16 + k` of the 48 bytes that the three colour
// planes of one 128-bit lane expand to, the byte of plane `channel` that belongs there (0x80,
// meaning zero, where another plane's byte goes). Both lanes get the same control.
constexpr Mask32 InterleaveMask(int part, int channel, int sampleBytes) {
    Mask32 mask{};
    for (int k = 0; k < 16; ++k) {
        const int pos = part * 16 + k;
        const int unit = pos / sampleBytes;
        const bool mine = unit % 3 == channel;
        const int source = (unit / 3) * sampleBytes + pos % sampleBytes;
        mask[k] = mine ? static_cast<uint8_t>(source) : uint8_t{0x80};
        mask[k + 16] = mask[k];
    }
    return mask;
}

// Shuffle control that repeats each byte of a lane three times; `part` selects which 16 of
// the 48 resulting bytes.
constexpr Mask32 TripleMask(int part) {
    Mask32 mask{};
    for (int k = 0; k < 16; ++k) {
        mask[k] = static_cast<uint8_t>((part * 16 + k) / 3);
        mask[k + 16] = mask[k];
    }
    return mask;
}

RY_AVX2 inline __m256i LoadMask(const Mask32& mask) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(mask.data()));
}

RY_AVX2 inline __m256i Load(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}

RY_AVX2 inline void Store(void* p, __m256i v) {
    _mm256_storeu_si256(static_cast<__m256i*>(p), v);
}

// Writes 96 bytes held as 48 in the low lanes and 48 in the high lanes of three vectors:
// the low lanes come first in memory.
RY_AVX2 inline void StoreLaneTriples(uint8_t* dst, __m256i o0, __m256i o1, __m256i o2) {
    Store(dst, _mm256_permute2x128_si256(o0, o1, 0x20));
    Store(dst + 32, _mm256_permute2x128_si256(o2, o0, 0x30));
    Store(dst + 64, _mm256_permute2x128_si256(o1, o2, 0x31));
}

// Interleaves three planes into 96 bytes of blue, green, red triples. SampleBytes is 1 (32
// pixels of bytes) or 2 (16 pixels of 16-bit samples); the planes are in memory order.
template <int SampleBytes>
RY_AVX2 inline void StoreInterleaved3(uint8_t* dst, __m256i b, __m256i g, __m256i r) {
    static constexpr Mask32 kB0 = InterleaveMask(0, 0, SampleBytes);
    static constexpr Mask32 kG0 = InterleaveMask(0, 1, SampleBytes);
    static constexpr Mask32 kR0 = InterleaveMask(0, 2, SampleBytes);
    static constexpr Mask32 kB1 = InterleaveMask(1, 0, SampleBytes);
    static constexpr Mask32 kG1 = InterleaveMask(1, 1, SampleBytes);
    static constexpr Mask32 kR1 = InterleaveMask(1, 2, SampleBytes);
    static constexpr Mask32 kB2 = InterleaveMask(2, 0, SampleBytes);
    static constexpr Mask32 kG2 = InterleaveMask(2, 1, SampleBytes);
    static constexpr Mask32 kR2 = InterleaveMask(2, 2, SampleBytes);
    const __m256i o0 = _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(b, LoadMask(kB0)),
                                                       _mm256_shuffle_epi8(g, LoadMask(kG0))),
                                       _mm256_shuffle_epi8(r, LoadMask(kR0)));
    const __m256i o1 = _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(b, LoadMask(kB1)),
                                                       _mm256_shuffle_epi8(g, LoadMask(kG1))),
                                       _mm256_shuffle_epi8(r, LoadMask(kR1)));
    const __m256i o2 = _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(b, LoadMask(kB2)),
                                                       _mm256_shuffle_epi8(g, LoadMask(kG2))),
                                       _mm256_shuffle_epi8(r, LoadMask(kR2)));
    StoreLaneTriples(dst, o0, o1, o2);
}

// Writes each of 32 bytes three times (96 bytes): grey to blue, green, red.
RY_AVX2 inline void StoreTripled(uint8_t* dst, __m256i grey) {
    static constexpr Mask32 kT0 = TripleMask(0);
    static constexpr Mask32 kT1 = TripleMask(1);
    static constexpr Mask32 kT2 = TripleMask(2);
    StoreLaneTriples(dst, _mm256_shuffle_epi8(grey, LoadMask(kT0)),
                     _mm256_shuffle_epi8(grey, LoadMask(kT1)),
                     _mm256_shuffle_epi8(grey, LoadMask(kT2)));
}

// 32 16-bit samples reduced to bytes ((sample >> Shift) & 0xFF), in memory order.
// `p` need not be 2-byte aligned.
template <int Shift>
RY_AVX2 inline __m256i LoadReducedBytes(const void* p) {
    const uint8_t* bytes = static_cast<const uint8_t*>(p);
    const __m256i low = _mm256_set1_epi16(0xFF);
    const __m256i a = _mm256_and_si256(_mm256_srli_epi16(Load(bytes), Shift), low);
    const __m256i b = _mm256_and_si256(_mm256_srli_epi16(Load(bytes + 32), Shift), low);
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
}

}  // namespace RYSDK::imageproc::avx2

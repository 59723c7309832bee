#include "imageproc/rgb_mono_convert.h"

#include "imageproc/rgb_mono_avx2.h"

namespace RYSDK::imageproc {

namespace {

inline uint32_t ReadLe16(const uint8_t* p) {
    return uint32_t{p[0]} | (uint32_t{p[1]} << 8);
}

inline uint32_t ReadLe32(const uint8_t* p) {
    return ReadLe16(p) | (ReadLe16(p + 2) << 16);
}

inline void StoreGrey(uint8_t value, uint8_t* out) {
    out[0] = value;
    out[1] = value;
    out[2] = value;
}

inline bool Usable(const void* src, const void* dst) {
    return src != nullptr && dst != nullptr;
}

inline bool UseAvx2(SimdLevel level) {
    return UsableSimdLevel(level) == SimdLevel::Avx2;
}

size_t TripleReducedVector(const uint8_t* src, size_t samples, uint8_t* dst, int shift) {
    switch (shift) {
        case 2:
            return avx2::TripleReduced<2>(src, samples, dst);
        case 4:
            return avx2::TripleReduced<4>(src, samples, dst);
        case 6:
            return avx2::TripleReduced<6>(src, samples, dst);
        default:
            return 0;
    }
}

// Groups of three bytes run while their start lies inside the source; the third byte of a
// trailing partial group counts as zero.
template <class PerGroup>
void ForEachPackedGroup(const uint8_t* src, uint32_t bytes, PerGroup perGroup) {
    for (size_t start = 0, group = 0; start < bytes; start += 3, ++group) {
        const uint8_t third = start + 2 < bytes ? src[start + 2] : 0;
        perGroup(group, src[start], third);
    }
}

}  // namespace

void SwapRedBlue(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level) {
    if (!Usable(src, dst)) {
        return;
    }
    const size_t pixels = bytes / 3;
    const size_t done = UseAvx2(level) ? avx2::SwapRedBlue(src, pixels, dst) : 0;
    for (size_t i = done * 3; i < pixels * 3; i += 3) {
        dst[i] = src[i + 2];
        dst[i + 1] = src[i + 1];
        dst[i + 2] = src[i];
    }
}

void Rgb12PackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    if (!Usable(src, dst)) {
        return;
    }
    const size_t pixels = bytes / 6;
    for (size_t i = 0; i < pixels; ++i) {
        const uint8_t* in = src + i * 6;
        uint8_t* out = dst + i * 3;
        out[0] = static_cast<uint8_t>(ReadLe16(in + 4) >> 4);
        out[1] = static_cast<uint8_t>(ReadLe16(in + 2) >> 4);
        out[2] = static_cast<uint8_t>(ReadLe16(in) >> 4);
    }
}

void Bgr10V2PackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    if (!Usable(src, dst)) {
        return;
    }
    const size_t pixels = bytes / 4;
    for (size_t i = 0; i < pixels; ++i) {
        const uint32_t word = ReadLe32(src + i * 4);
        uint8_t* out = dst + i * 3;
        out[0] = static_cast<uint8_t>(word >> 22);
        out[1] = static_cast<uint8_t>(word >> 12);
        out[2] = static_cast<uint8_t>(word >> 2);
    }
}

void Mono8ToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level) {
    if (!Usable(src, dst)) {
        return;
    }
    const size_t done = UseAvx2(level) ? avx2::TripleBytes(src, bytes, dst) : 0;
    for (size_t i = done; i < bytes; ++i) {
        StoreGrey(src[i], dst + i * 3);
    }
}

void Mono16ToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst, int shift, SimdLevel level) {
    if (!Usable(src, dst) || bytes == 0 || (shift != 2 && shift != 4 && shift != 6)) {
        return;
    }
    const size_t whole = bytes / 2;
    const size_t done = UseAvx2(level) ? TripleReducedVector(src, whole, dst, shift) : 0;
    for (size_t i = done; i < whole; ++i) {
        StoreGrey(static_cast<uint8_t>(ReadLe16(src + i * 2) >> shift), dst + i * 3);
    }
    if (bytes % 2 != 0) {
        // The odd trailing byte is the low byte of one more sample; its high byte lies
        // past the source and counts as zero.
        StoreGrey(static_cast<uint8_t>(src[bytes - 1] >> shift), dst + whole * 3);
    }
}

void MonoPackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    if (!Usable(src, dst)) {
        return;
    }
    ForEachPackedGroup(src, bytes, [dst](size_t group, uint8_t first, uint8_t third) {
        StoreGrey(first, dst + group * 6);
        StoreGrey(third, dst + group * 6 + 3);
    });
}

void Mono10PackedToMono8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    if (!Usable(src, dst)) {
        return;
    }
    ForEachPackedGroup(src, bytes, [dst](size_t group, uint8_t first, uint8_t third) {
        dst[group * 2] = first;
        dst[group * 2 + 1] = third;
    });
}

namespace {

// Two pixels in three bytes: the high bits of each in bytes 0 and 2, the low bits of the
// first in the low nibble of byte 1 and of the second in its high nibble.
template <int LowBits>
void UnpackPairs(const uint8_t* src, uint64_t pixels, uint16_t* dst) {
    if (!Usable(src, dst)) {
        return;
    }
    constexpr uint32_t lowMask = (1u << LowBits) - 1;
    const uint64_t pairs = pixels / 2;
    for (uint64_t i = 0; i < pairs; ++i) {
        const uint8_t* in = src + i * 3;
        dst[i * 2] = static_cast<uint16_t>((uint32_t{in[0]} << LowBits) | (in[1] & lowMask));
        dst[i * 2 + 1] =
            static_cast<uint16_t>((uint32_t{in[2]} << LowBits) | ((in[1] >> 4) & lowMask));
    }
    if (pixels % 2 != 0) {
        const uint8_t* in = src + pairs * 3;
        dst[pairs * 2] = static_cast<uint16_t>((uint32_t{in[0]} << LowBits) | (in[1] & lowMask));
    }
}

}  // namespace

void Mono12PackedToMono16(const uint8_t* src, uint64_t pixels, uint16_t* dst) {
    UnpackPairs<4>(src, pixels, dst);
}

void Mono10PackedToMono16(const uint8_t* src, uint64_t pixels, uint16_t* dst) {
    UnpackPairs<2>(src, pixels, dst);
}

}  // namespace RYSDK::imageproc

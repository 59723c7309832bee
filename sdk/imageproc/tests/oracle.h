// Reference conversions written plainly from the conversion rules, one pixel at a time and
// with no shortcuts, against which the library's kernels are compared bit for bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imageproc/bayer_layout.h"

namespace RYSDK::imageproc::oracle {

// Bilinear demosaicing of already reduced samples: own colour copied, each missing colour
// the truncated mean of the same-colour samples among the in-image eight neighbours.
// Returns blue, green, red per pixel.
std::vector<uint32_t> Demosaic(const std::vector<uint32_t>& samples, uint32_t width,
                               uint32_t height, BayerPhase phase);

struct Bgr {
    uint32_t b, g, r;
};

Bgr YuvInteger(int y, int u, int v);
Bgr YuvFloating(int y, int u, int v);

// Byte `i` of a source of `bytes` bytes, zero past its end.
inline uint32_t ByteOrZero(const std::vector<uint8_t>& src, size_t i) {
    return i < src.size() ? src[i] : 0u;
}

// Integer YUV of groups of `groupBytes` bytes: chroma at uOffset and vOffset, luma at the
// listed offsets; groups run while their start lies inside the source.
std::vector<uint8_t> YuvGroupsInteger(const std::vector<uint8_t>& src, uint32_t groupBytes,
                                      uint32_t uOffset, uint32_t vOffset,
                                      const std::vector<uint32_t>& lumaOffsets);

// Floating YUV 4:2:2 of ((pixels - 1) >> 1) + 1 groups; `uyvy` false reads Y0 U Y1 V.
std::vector<uint8_t> Yuv422Floating(const std::vector<uint8_t>& src, uint32_t pixels, bool uyvy);

// RGB8 to BGR8 over whole 3-byte pixels.
std::vector<uint8_t> SwapRgb(const std::vector<uint8_t>& src);

// Whole 6-byte pixels of little-endian R, G, B samples, (sample >> 4) & 0xFF written B, G, R.
std::vector<uint8_t> Rgb12Packed(const std::vector<uint8_t>& src);

// Whole 32-bit pixels: bits 9-2 to red, 19-12 to green, 29-22 to blue.
std::vector<uint8_t> Bgr10V2Packed(const std::vector<uint8_t>& src);

// Mono8: each byte three times.
std::vector<uint8_t> Mono8(const std::vector<uint8_t>& src);

// ((bytes - 1) >> 1) + 1 little-endian samples, (sample >> shift) & 0xFF three times.
std::vector<uint8_t> Mono16(const std::vector<uint8_t>& src, int shift);

// (bytes - 1) / 3 + 1 groups, bytes 0 and 2 of each, `repeat` times each.
std::vector<uint8_t> MonoPackedHighBytes(const std::vector<uint8_t>& src, int repeat);

// Two pixels per 3 bytes, `pixels` values: high bits in bytes 0 and 2, low bits of the
// first pixel from bit 0 and of the second from bit 4 of byte 1.
std::vector<uint16_t> UnpackMono(const std::vector<uint8_t>& src, uint64_t pixels, int lowBits);

}  // namespace RYSDK::imageproc::oracle

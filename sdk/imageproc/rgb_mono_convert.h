// RGB and mono entry points below RyImageProcess, with the vector level explicit for tests.
// Every function returns without writing when a pointer is null.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imageproc/simd_level.h"

namespace RYSDK::imageproc {

// bytes / 3 whole pixels, first and third byte exchanged.
void SwapRedBlue(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level);
// bytes / 6 whole pixels of three 16-bit samples R, G, B.
void Rgb12PackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
// bytes / 4 whole 32-bit pixels.
void Bgr10V2PackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst);

void Mono8ToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level);
// ((bytes - 1) >> 1) + 1 samples reduced by `shift` (2, 4 or 6).
void Mono16ToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst, int shift, SimdLevel level);
// (bytes - 1) / 3 + 1 groups: bytes 0 and 2, each three times.
void MonoPackedToBgr8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
// (bytes - 1) / 3 + 1 groups: bytes 0 and 2.
void Mono10PackedToMono8(const uint8_t* src, uint32_t bytes, uint8_t* dst);

// Two pixels in 3 bytes, `pixels` values written.
void Mono12PackedToMono16(const uint8_t* src, uint64_t pixels, uint16_t* dst);
void Mono10PackedToMono16(const uint8_t* src, uint64_t pixels, uint16_t* dst);

}  // namespace RYSDK::imageproc

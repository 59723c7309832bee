// Bayer demosaicing entry points below RyImageProcess, with the vector level made explicit
// so the tests can run the scalar and the vector paths against the same reference.
#pragma once

#include <cstdint>

#include "imageproc/bayer_layout.h"
#include "imageproc/simd_level.h"

namespace RYSDK::imageproc {

// True when the size is inside the demosaicing contract: both even and at least 2.
bool IsDemosaicSize(uint32_t width, uint32_t height);

// Each converts the whole image, or writes nothing when a pointer is null or the size is
// outside the contract (a debug build asserts on the size).
void DemosaicBytes(const uint8_t* src, uint8_t* dst, uint32_t width, uint32_t height,
                   BayerPhase phase, SimdLevel level);
// `shift` is 2 for 10-bit and 4 for 12-bit samples.
void DemosaicReduced(const uint16_t* src, uint8_t* dst, uint32_t width, uint32_t height, int shift,
                     BayerPhase phase, SimdLevel level);
void DemosaicWords(const uint16_t* src, uint16_t* dst, uint32_t width, uint32_t height,
                   BayerPhase phase, SimdLevel level);

}  // namespace RYSDK::imageproc

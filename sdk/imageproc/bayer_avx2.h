// AVX2 kernels for the inner pixels (columns 1 to width - 2) of a mosaic row that has rows
// above and below. Each returns the number of pixels it wrote: width - 2, or 0 when the
// row is too narrow for a whole vector and the caller must do the inner pixels itself.
// Callable only when the processor supports AVX2.
#pragma once

#include <cstdint>

#include "imageproc/bayer_layout.h"

namespace RYSDK::imageproc::avx2 {

uint32_t DemosaicInnerBytes(const uint8_t* up, const uint8_t* row, const uint8_t* down,
                            uint8_t* out, uint32_t width, BayerRowLayout layout);

// 16-bit samples reduced by Shift (2 for 10-bit, 4 for 12-bit input) to 8-bit output.
template <int Shift>
uint32_t DemosaicInnerReduced(const uint16_t* up, const uint16_t* row, const uint16_t* down,
                              uint8_t* out, uint32_t width, BayerRowLayout layout);

uint32_t DemosaicInnerWords(const uint16_t* up, const uint16_t* row, const uint16_t* down,
                            uint16_t* out, uint32_t width, BayerRowLayout layout);

}  // namespace RYSDK::imageproc::avx2

// AVX2 kernels for the RGB and mono members. Each converts whole runs of 32 pixels (or
// samples) from the start and returns how many it did; the caller finishes the rest.
// Callable only when the processor supports AVX2.
#pragma once

#include <cstddef>
#include <cstdint>

namespace RYSDK::imageproc::avx2 {

// Exchanges the first and third byte of each 3-byte pixel.
size_t SwapRedBlue(const uint8_t* src, size_t pixels, uint8_t* dst);

// Writes each byte three times.
size_t TripleBytes(const uint8_t* src, size_t samples, uint8_t* dst);

// Reduces little-endian 16-bit samples by Shift (keeping the low 8 bits), three times each.
template <int Shift>
size_t TripleReduced(const uint8_t* src, size_t samples, uint8_t* dst);

}  // namespace RYSDK::imageproc::avx2

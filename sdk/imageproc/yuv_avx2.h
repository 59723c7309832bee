// AVX2 kernels for 4:2:2 YUV to BGR8. Each converts whole groups of 4 bytes in runs of 16
// groups (32 pixels) and returns how many groups it did; the caller finishes the rest.
// Callable only when the processor supports AVX2.
#pragma once

#include <cstddef>
#include <cstdint>

namespace RYSDK::imageproc::avx2 {

// Positions of the four samples inside a 4-byte group.
struct Yuv422Order {
    int u, y0, v, y1;
};

inline constexpr Yuv422Order kUyvy{0, 1, 2, 3};
inline constexpr Yuv422Order kYuyv{1, 0, 3, 2};

// Studio-range integer arithmetic, U Y0 V Y1 groups.
size_t Yuv422IntegerUyvy(const uint8_t* src, size_t groups, uint8_t* dst);

// Full-range single-precision arithmetic.
size_t Yuv422FloatingUyvy(const uint8_t* src, size_t groups, uint8_t* dst);
size_t Yuv422FloatingYuyv(const uint8_t* src, size_t groups, uint8_t* dst);

}  // namespace RYSDK::imageproc::avx2

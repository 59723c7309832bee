// YUV to BGR8 entry points below RyImageProcess, with the vector level explicit for tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "imageproc/simd_level.h"

namespace RYSDK::imageproc {

// Where the samples of one group sit: chroma U and V, then the luma samples in pixel order.
struct YuvGroupLayout {
    uint32_t groupBytes;
    uint32_t u;
    uint32_t v;
    uint32_t lumaCount;
    uint32_t luma[4];
};

inline constexpr YuvGroupLayout kYuv422Layout{4, 0, 2, 2, {1, 3, 0, 0}};
inline constexpr YuvGroupLayout kYuv422PackedLayout{6, 0, 3, 2, {2, 5, 0, 0}};
inline constexpr YuvGroupLayout kYuv411Layout{6, 0, 3, 4, {1, 2, 4, 5}};
inline constexpr YuvGroupLayout kYuv444Layout{3, 0, 2, 1, {1, 0, 0, 0}};

// 0 below 0, 255 above 255, else the value.
constexpr int ClampToByte(int value) {
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

// Integer arithmetic over every group whose first byte lies inside `bytes`; bytes of a
// trailing partial group past the source read as zero.
void YuvIntegerGroups(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                      const YuvGroupLayout& layout);

// The same for U Y0 V Y1 groups, with whole groups on the vector path when `level` allows.
void Yuv422Integer(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level);

// Floating arithmetic over ((pixels - 1) >> 1) + 1 groups; `uyvy` false reads Y0 U Y1 V.
void Yuv422Floating(const uint8_t* src, uint64_t pixels, uint8_t* dst, bool uyvy, SimdLevel level);

struct InterlacedFrame {
    uint32_t width;
    uint32_t height;
    uint32_t linePitch;
    bool topFieldFirst;
};

// Two fields one after the other woven into a full frame (see RyImageProcess.h).
void Yuv422InterlacedInteger(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                             const InterlacedFrame& frame, SimdLevel level);

}  // namespace RYSDK::imageproc

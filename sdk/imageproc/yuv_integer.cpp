#include <cstring>

#include "imageproc/yuv_avx2.h"
#include "imageproc/yuv_convert.h"

namespace RYSDK::imageproc {

namespace {

// Studio-range conversion of one luma sample with its group's centred chroma.
inline void StoreIntegerPixel(int y, int us, int vs, uint8_t* out) {
    const int luma = 298 * (y - 16) + 128;
    out[0] = static_cast<uint8_t>(ClampToByte((luma + 516 * us) >> 8));
    out[1] = static_cast<uint8_t>(ClampToByte((luma - 100 * us - 208 * vs) >> 8));
    out[2] = static_cast<uint8_t>(ClampToByte((luma + 409 * vs) >> 8));
}

inline void ConvertGroup(const uint8_t* group, const YuvGroupLayout& layout, uint8_t* out) {
    const int us = int{group[layout.u]} - 128;
    const int vs = int{group[layout.v]} - 128;
    for (uint32_t i = 0; i < layout.lumaCount; ++i) {
        StoreIntegerPixel(group[layout.luma[i]], us, vs, out + 3 * i);
    }
}

// Groups from byte `start` on; the last one may run past the source and is then read from
// a zero-filled copy of the bytes that exist.
void ConvertGroupsFrom(const uint8_t* src, size_t start, size_t bytes, uint8_t* dst,
                       const YuvGroupLayout& layout) {
    const size_t pixelBytes = size_t{layout.lumaCount} * 3;
    for (; start < bytes; start += layout.groupBytes) {
        uint8_t* out = dst + start / layout.groupBytes * pixelBytes;
        if (start + layout.groupBytes <= bytes) {
            ConvertGroup(src + start, layout, out);
        } else {
            uint8_t partial[8] = {};
            std::memcpy(partial, src + start, bytes - start);
            ConvertGroup(partial, layout, out);
        }
    }
}

}  // namespace

void YuvIntegerGroups(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                      const YuvGroupLayout& layout) {
    if (src == nullptr || dst == nullptr) {
        return;
    }
    ConvertGroupsFrom(src, 0, bytes, dst, layout);
}

void Yuv422Integer(const uint8_t* src, uint32_t bytes, uint8_t* dst, SimdLevel level) {
    if (src == nullptr || dst == nullptr) {
        return;
    }
    size_t done = 0;
    if (UsableSimdLevel(level) == SimdLevel::Avx2) {
        done = avx2::Yuv422IntegerUyvy(src, bytes / 4, dst);
    }
    ConvertGroupsFrom(src, done * 4, bytes, dst, kYuv422Layout);
}

void Yuv422InterlacedInteger(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                             const InterlacedFrame& frame, SimdLevel level) {
    const uint64_t lineBytes = (uint64_t{frame.width} + 1) / 2 * 4;
    if (src == nullptr || dst == nullptr || lineBytes > frame.linePitch) {
        return;
    }
    // The field on the even output lines has the odd line of an odd height.
    const uint32_t evenLines = (frame.height + 1) / 2;
    const uint32_t oddLines = frame.height / 2;
    const uint32_t firstFieldLines = frame.topFieldFirst ? evenLines : oddLines;
    const uint32_t wholeGroupBytes = frame.width / 2 * 4;
    for (uint32_t y = 0; y < frame.height; ++y) {
        const bool inFirstField = (y % 2 == 0) == frame.topFieldFirst;
        const uint64_t sourceLine = (inFirstField ? 0 : firstFieldLines) + y / 2;
        const uint64_t offset = sourceLine * frame.linePitch;
        if (offset + lineBytes > bytes) {
            continue;
        }
        const uint8_t* line = src + offset;
        uint8_t* out = dst + uint64_t{y} * frame.width * 3;
        Yuv422Integer(line, wholeGroupBytes, out, level);
        if (frame.width % 2 != 0) {
            const uint8_t* group = line + wholeGroupBytes;
            StoreIntegerPixel(group[1], int{group[0]} - 128, int{group[2]} - 128,
                              out + (uint64_t{frame.width} - 1) * 3);
        }
    }
}

}  // namespace RYSDK::imageproc

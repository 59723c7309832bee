// Flat C functions for the YUV, RGB and mono members; each forwards its arguments
// unchanged, except ConvertMonoPackedToBGR8, which has no member of its own.
#include "imageproc/rgb_mono_convert.h"
#include "rysdk/RyConvert.h"
#include "rysdk/RyImageProcess.h"

using RYSDK::RyImageProcess;

#define RY_FORWARD_BYTES(name)                                                         \
    extern "C" RYSDK_API void name(const uint8_t* src, uint32_t bytes, uint8_t* dst) { \
        RyImageProcess::name(src, bytes, dst);                                         \
    }

#define RY_FORWARD_SIZED(name, Out)                                                     \
    extern "C" RYSDK_API void name(const uint8_t* src, uint32_t width, uint32_t height, \
                                   Out* dst) {                                          \
        RyImageProcess::name(src, width, height, dst);                                  \
    }

RY_FORWARD_BYTES(ConvertYUV422toBGR8)
RY_FORWARD_BYTES(ConvertYUV422PackedtoBGR8)
RY_FORWARD_BYTES(ConvertYUV411toBGR8)
RY_FORWARD_BYTES(ConvertYUV444toBGR8)
RY_FORWARD_BYTES(ConvertRGB8toBGR8)
RY_FORWARD_BYTES(ConvertRGB12PackedtoBGR8)
RY_FORWARD_BYTES(ConvertBGR10V2PackedtoBGR8)
RY_FORWARD_BYTES(ConvertMono8ToBGR8)
RY_FORWARD_BYTES(ConvertMono10ToBGR8)
RY_FORWARD_BYTES(ConvertMono12ToBGR8)
RY_FORWARD_BYTES(ConvertMono14ToBGR8)
RY_FORWARD_BYTES(ConvertMono10PackedToMono8)
RY_FORWARD_SIZED(ConvertYUV422_UYVYtoBGR8, uint8_t)
RY_FORWARD_SIZED(ConvertYUV422_YUYVtoBGR8, uint8_t)
RY_FORWARD_SIZED(ConvertMono12PackedToMono16bit, uint16_t)
RY_FORWARD_SIZED(ConvertMono10PackedToMono16bit, uint16_t)

extern "C" RYSDK_API void ConvertYUV422toBGR8Interlaced(const uint8_t* src, uint32_t bytes,
                                                        uint8_t* dst, int topFieldFirst,
                                                        uint32_t width, uint32_t height,
                                                        uint32_t linePitch) {
    RyImageProcess::ConvertYUV422toBGR8Interlaced(src, bytes, dst, topFieldFirst, width, height,
                                                  linePitch);
}

extern "C" RYSDK_API void ConvertMonoPackedToBGR8(const uint8_t* src, uint32_t bytes,
                                                  uint8_t* dst) {
    RYSDK::imageproc::MonoPackedToBgr8(src, bytes, dst);
}

extern "C" RYSDK_API void Convert8a_4b_4a_8bTo16_16_MMX_I(const uint8_t* src, uint16_t* dst,
                                                          uint32_t count) {
    RyImageProcess::Convert8a_4b_4a_8bTo16_16_MMX_I(src, dst, count);
}

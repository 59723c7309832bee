// RyImageProcess YUV, RGB and mono members, run with the best vector level of this
// processor.
#include "imageproc/rgb_mono_convert.h"
#include "imageproc/yuv_convert.h"
#include "rysdk/RyImageProcess.h"

namespace RYSDK {

using imageproc::BestSimdLevel;

void RyImageProcess::ConvertYUV422toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Yuv422Integer(src, bytes, dst, BestSimdLevel());
}

void RyImageProcess::ConvertYUV422PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::YuvIntegerGroups(src, bytes, dst, imageproc::kYuv422PackedLayout);
}

void RyImageProcess::ConvertYUV411toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::YuvIntegerGroups(src, bytes, dst, imageproc::kYuv411Layout);
}

void RyImageProcess::ConvertYUV444toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::YuvIntegerGroups(src, bytes, dst, imageproc::kYuv444Layout);
}

void RyImageProcess::ConvertYUV422toBGR8Interlaced(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                                                   int topFieldFirst, uint32_t width,
                                                   uint32_t height, uint32_t linePitch) {
    const imageproc::InterlacedFrame frame{width, height, linePitch, topFieldFirst != 0};
    imageproc::Yuv422InterlacedInteger(src, bytes, dst, frame, BestSimdLevel());
}

void RyImageProcess::ConvertYUV422_UYVYtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                              uint8_t* dst) {
    imageproc::Yuv422Floating(src, uint64_t{width} * height, dst, true, BestSimdLevel());
}

void RyImageProcess::ConvertYUV422_YUYVtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                              uint8_t* dst) {
    imageproc::Yuv422Floating(src, uint64_t{width} * height, dst, false, BestSimdLevel());
}

void RyImageProcess::ConvertRGB8toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::SwapRedBlue(src, bytes, dst, BestSimdLevel());
}

void RyImageProcess::ConvertRGB12PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Rgb12PackedToBgr8(src, bytes, dst);
}

void RyImageProcess::ConvertBGR10V2PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Bgr10V2PackedToBgr8(src, bytes, dst);
}

void RyImageProcess::ConvertMono8ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Mono8ToBgr8(src, bytes, dst, BestSimdLevel());
}

void RyImageProcess::ConvertMono10ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Mono16ToBgr8(src, bytes, dst, 2, BestSimdLevel());
}

void RyImageProcess::ConvertMono12ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Mono16ToBgr8(src, bytes, dst, 4, BestSimdLevel());
}

void RyImageProcess::ConvertMono14ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Mono16ToBgr8(src, bytes, dst, 6, BestSimdLevel());
}

void RyImageProcess::ConvertMono10PackedToMono8(const uint8_t* src, uint32_t bytes, uint8_t* dst) {
    imageproc::Mono10PackedToMono8(src, bytes, dst);
}

void RyImageProcess::ConvertMono12PackedToMono16bit(const uint8_t* src, uint32_t width,
                                                    uint32_t height, uint16_t* dst) {
    imageproc::Mono12PackedToMono16(src, uint64_t{width} * height, dst);
}

void RyImageProcess::ConvertMono10PackedToMono16bit(const uint8_t* src, uint32_t width,
                                                    uint32_t height, uint16_t* dst) {
    imageproc::Mono10PackedToMono16(src, uint64_t{width} * height, dst);
}

void RyImageProcess::Convert8a_4b_4a_8bTo16_16_MMX_I(const uint8_t* src, uint16_t* dst,
                                                     uint32_t count) {
    imageproc::Mono12PackedToMono16(src, uint64_t{count} * 2, dst);
}

int RyImageProcess::Clip(int value) {
    return imageproc::ClampToByte(value);
}

}  // namespace RYSDK

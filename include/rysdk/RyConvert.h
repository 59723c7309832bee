/// \file
/// Flat pixel conversion functions with C linkage, for callers that cannot use classes. Each
/// forwards to the RYSDK::RyImageProcess member of the same name (see RyImageProcess.h for
/// layouts, sizes and preconditions); ConvertMonoPackedToBGR8 exists only here.
#pragma once

#include <stdint.h>

#include "RyExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Bayer demosaicing to BGR8 or BGR10: see RYSDK::RyImageProcess::ConvertBAYGB8ToBGR8.
///@{
RYSDK_API void ConvertBAYGB8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                   uint32_t height);
RYSDK_API void ConvertBAYRG8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                   uint32_t height);
RYSDK_API void ConvertBAYGR8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                   uint32_t height);
RYSDK_API void ConvertBAYGB10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
RYSDK_API void ConvertBAYRG10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
RYSDK_API void ConvertBAYGR10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
RYSDK_API void ConvertBAYGB10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                     uint32_t height);
RYSDK_API void ConvertBAYRG10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                     uint32_t height);
RYSDK_API void ConvertBAYGR10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                     uint32_t height);
RYSDK_API void ConvertBAYGB12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
RYSDK_API void ConvertBAYRG12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
RYSDK_API void ConvertBAYGR12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
///@}

/// YUV to BGR8 with integer (studio range) arithmetic: see
/// RYSDK::RyImageProcess::ConvertYUV422toBGR8.
///@{
RYSDK_API void ConvertYUV422toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertYUV422PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertYUV411toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertYUV444toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
///@}
/// Two interlaced 4:2:2 fields woven into one BGR8 frame: see
/// RYSDK::RyImageProcess::ConvertYUV422toBGR8Interlaced.
RYSDK_API void ConvertYUV422toBGR8Interlaced(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                                             int topFieldFirst, uint32_t width, uint32_t height,
                                             uint32_t linePitch);
/// 4:2:2 UYVY or YUYV to BGR8 in floating point (full range): see
/// RYSDK::RyImageProcess::ConvertYUV422_UYVYtoBGR8.
///@{
RYSDK_API void ConvertYUV422_UYVYtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                        uint8_t* dst);
RYSDK_API void ConvertYUV422_YUYVtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                        uint8_t* dst);
///@}

/// RGB8 to BGR8: see RYSDK::RyImageProcess::ConvertRGB8toBGR8.
RYSDK_API void ConvertRGB8toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
/// RGB12 packed to BGR8: see RYSDK::RyImageProcess::ConvertRGB12PackedtoBGR8.
RYSDK_API void ConvertRGB12PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
/// BGR10 V2 packed to BGR8: see RYSDK::RyImageProcess::ConvertBGR10V2PackedtoBGR8.
RYSDK_API void ConvertBGR10V2PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);

/// Mono to grey BGR8: see RYSDK::RyImageProcess::ConvertMono8ToBGR8.
///@{
RYSDK_API void ConvertMono8ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertMono10ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertMono12ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
RYSDK_API void ConvertMono14ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
///@}
/// (bytes - 1) / 3 + 1 groups of 3 bytes holding two packed 12-bit pixels: byte 0 written
/// three times, then byte 2 written three times (6 destination bytes a group). A byte of the
/// trailing group past the source counts as zero; bytes == 0 converts nothing.
RYSDK_API void ConvertMonoPackedToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
/// Mono10 packed to its high 8 bits: see RYSDK::RyImageProcess::ConvertMono10PackedToMono8.
RYSDK_API void ConvertMono10PackedToMono8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
/// Mono12 or Mono10 packed widened to 16-bit samples: see
/// RYSDK::RyImageProcess::ConvertMono12PackedToMono16bit.
///@{
RYSDK_API void ConvertMono12PackedToMono16bit(const uint8_t* src, uint32_t width, uint32_t height,
                                              uint16_t* dst);
RYSDK_API void ConvertMono10PackedToMono16bit(const uint8_t* src, uint32_t width, uint32_t height,
                                              uint16_t* dst);
///@}
/// Pairs of 12-bit values packed in 3 bytes widened to 16 bits: see
/// RYSDK::RyImageProcess::Convert8a_4b_4a_8bTo16_16_MMX_I.
RYSDK_API void Convert8a_4b_4a_8bTo16_16_MMX_I(const uint8_t* src, uint16_t* dst, uint32_t count);

#ifdef __cplusplus
}
#endif

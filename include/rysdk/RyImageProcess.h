/// \file
/// Pixel conversions of the SDK: stateless, allocation-free functions that turn camera pixel
/// formats into packed blue-green-red images or widen packed mono samples. Every member writes
/// only the caller's destination buffer and returns nothing; the caller owns both buffers and
/// they must not overlap.
#pragma once

#include <cstdint>

#include "RyExport.h"

namespace RYSDK {

/// The SDK's pixel conversions, as static members (the class is never instantiated).
/// Thread: any; the members keep no state.
class RYSDK_API RyImageProcess {
  public:
    RyImageProcess() = delete;  ///< Not instantiable: every member is static.

    // ---- Bayer demosaicing -------------------------------------------------------------
    /// Bilinear interpolation on the 3 x 3 neighbourhood: a pixel keeps its own sample and
    /// takes each missing colour as the truncated mean of the same-colour samples among its
    /// eight neighbours that lie inside the image. The pattern name gives the colours of the
    /// top-left 2 x 2 cell row by row (GB: green blue / red green).
    ///
    /// Source: width x height samples, rows packed. 8-bit members read bytes; 10- and 12-bit
    /// members read one 16-bit host-order sample a pixel. Destination: 3 x width x height
    /// samples (blue, green, red), bytes for BGR8 and 16-bit samples for BGR10.
    ///
    /// The 10/12 to BGR8 members reduce each sample as it is read (shift right 2 or 4, keep
    /// the low 8 bits), so bits above the nominal width are discarded, not saturated.
    ///
    /// Precondition: width and height are even and at least 2. A debug build asserts it; a
    /// release build leaves the destination untouched when it does not hold, as it does for
    /// null pointers.
    ///@{
    static void ConvertBAYGB8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
    static void ConvertBAYRG8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
    static void ConvertBAYGR8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                    uint32_t height);
    static void ConvertBAYGB10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    static void ConvertBAYRG10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    static void ConvertBAYGR10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    static void ConvertBAYGB10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                      uint32_t height);
    static void ConvertBAYRG10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                      uint32_t height);
    static void ConvertBAYGR10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                      uint32_t height);
    static void ConvertBAYGB12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    static void ConvertBAYRG12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    static void ConvertBAYGR12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                     uint32_t height);
    ///@}

    // ---- YUV to BGR8 -------------------------------------------------------------------
    /// Integer (studio range) members: B = (298(Y-16) + 516(U-128) + 128) >> 8,
    /// G = (298(Y-16) - 100(U-128) - 208(V-128) + 128) >> 8, R = (298(Y-16) + 409(V-128) + 128)
    /// >> 8, each clamped to 0..255. `bytes` is the source length; every group whose first byte
    /// lies inside it is converted, so the destination must hold the pixels of
    /// ceil(bytes / group size) groups. Bytes of a trailing partial group that lie past the
    /// source are read as zero (they are never touched).
    /// Groups: 4:2:2 U Y0 V Y1 (2 pixels); 4:2:2 packed 6 bytes with U = 0, Y0 = 2, V = 3,
    /// Y1 = 5 (2 pixels); 4:1:1 U Y0 Y1 V Y2 Y3 (4 pixels); 4:4:4 U Y V (1 pixel).
    ///@{
    static void ConvertYUV422toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertYUV422PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertYUV411toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertYUV444toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    ///@}

    /// Interlaced 4:2:2 (U Y0 V Y1) frame delivered as two fields one after the other, each
    /// line `linePitch` bytes long (at least 2 x width rounded up to whole groups). The top
    /// field holds the even output lines (0, 2, ...: ceil(height / 2) lines), the bottom field
    /// the odd ones; `topFieldFirst` non-zero means the top field comes first in the source,
    /// zero that the bottom field does. The fields are woven into `height` lines of `width`
    /// BGR8 pixels with the integer arithmetic above (an odd width takes its last pixel from
    /// Y0 of a final group). Output lines whose source line is not wholly inside `bytes` are
    /// left untouched; a pitch too short for the width converts nothing.
    static void ConvertYUV422toBGR8Interlaced(const uint8_t* src, uint32_t bytes, uint8_t* dst,
                                              int topFieldFirst, uint32_t width, uint32_t height,
                                              uint32_t linePitch);

    /// Floating (full range, single precision) members: R = Y + 1.402(V-128),
    /// G = Y - (0.714(V-128) + 0.344(U-128)), B = Y + 1.772(U-128), clamped to 0..255 and
    /// truncated. ((width x height - 1) >> 1) + 1 groups of 4 bytes are read and two pixels
    /// written for each (so an odd pixel count writes one pixel more); 0 pixels convert
    /// nothing.
    ///@{
    static void ConvertYUV422_UYVYtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                         uint8_t* dst);
    static void ConvertYUV422_YUYVtoBGR8(const uint8_t* src, uint32_t width, uint32_t height,
                                         uint8_t* dst);
    ///@}

    // ---- RGB to BGR8 -------------------------------------------------------------------
    /// Three bytes R, G, B a pixel; whole pixels only (bytes / 3).
    static void ConvertRGB8toBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    /// Three little-endian 16-bit samples R, G, B holding 12 bits; (sample >> 4) & 0xFF each.
    /// Whole pixels only (bytes / 6).
    static void ConvertRGB12PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    /// One little-endian 32-bit word a pixel: bits 9-2 to red, 19-12 to green, 29-22 to blue.
    /// Whole pixels only (bytes / 4).
    static void ConvertBGR10V2PackedtoBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);

    // ---- Mono ----------------------------------------------------------------------------
    /// Each sample written three times. The 16-bit forms read ((bytes - 1) >> 1) + 1
    /// little-endian samples; an odd trailing byte is the low byte of one more sample whose
    /// high byte counts as zero. bytes == 0 converts nothing.
    ///@{
    static void ConvertMono8ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertMono10ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertMono12ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    static void ConvertMono14ToBGR8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    ///@}
    /// (bytes - 1) / 3 + 1 groups of 3 bytes (two packed pixels): bytes 0 and 2 of each, the
    /// high 8 bits of the two pixels. A byte of the trailing group past the source counts as
    /// zero; the destination holds 2 bytes a group. bytes == 0 converts nothing.
    static void ConvertMono10PackedToMono8(const uint8_t* src, uint32_t bytes, uint8_t* dst);
    /// width x height pixels packed two in 3 bytes b0 b1 b2, widened to 16-bit values:
    /// 12-bit: (b0 << 4) | (b1 & 0x0F), then (b2 << 4) | (b1 >> 4);
    /// 10-bit: (b0 << 2) | (b1 & 0x03), then (b2 << 2) | ((b1 >> 4) & 0x03).
    /// The source holds ceil(pixels x 1.5) bytes; an odd pixel count writes only the first
    /// pixel of the last group.
    ///@{
    static void ConvertMono12PackedToMono16bit(const uint8_t* src, uint32_t width, uint32_t height,
                                               uint16_t* dst);
    static void ConvertMono10PackedToMono16bit(const uint8_t* src, uint32_t width, uint32_t height,
                                               uint16_t* dst);
    ///@}
    /// `count` groups of 3 bytes, each bits 8a 4b|4a 8b (a = byte 0 then the low nibble of
    /// byte 1, b = byte 2 then the high nibble of byte 1), widened to two 16-bit values
    /// a = (b0 << 4) | (b1 & 0x0F) and b = (b2 << 4) | (b1 >> 4): 2 x count values written.
    static void Convert8a_4b_4a_8bTo16_16_MMX_I(const uint8_t* src, uint16_t* dst, uint32_t count);

    /// 0 for negative values, 255 above 255, else the value.
    static int Clip(int value);
};

}  // namespace RYSDK

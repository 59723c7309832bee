/// \file
/// Pixel layouts the SDK knows. A value is the GigE Vision pixel format code a camera reports
/// as the integer value of its "PixelFormat" feature: bit 31 marks a maker-specific code, bits
/// 24 to 27 the colour class, bits 16 to 23 the bits per pixel every buffer size is computed
/// from, bits 0 to 15 the format's identifier.
#pragma once

#include <cstdint>

#include "rysdk/RyPixelFormatCodes.h"

namespace RYSDK {

/// The codes are listed in RyPixelFormatCodes.h.
enum PIXEL_FORMAT : uint32_t {
/// Turns one entry of the code lists into an enumerator; undefined again right after.
#define RY_PIXEL_FORMAT_ENUMERATOR(name, value) name = value,
    RY_PIXEL_FORMAT_CODES(RY_PIXEL_FORMAT_ENUMERATOR)
        RY_PIXEL_FORMAT_MAKER_CODES(RY_PIXEL_FORMAT_ENUMERATOR)
#undef RY_PIXEL_FORMAT_ENUMERATOR
};

/// Bits per pixel as buffer sizes use them.
constexpr uint32_t PixelFormatBits(uint32_t format) noexcept {
    return (format >> 16) & 0xFF;
}

}  // namespace RYSDK

// Flat C functions for the demosaicing members: each forwards its arguments unchanged.
#include "rysdk/RyConvert.h"
#include "rysdk/RyImageProcess.h"

using RYSDK::RyImageProcess;

#define RY_FORWARD_BAYER(name, In, Out)                                                        \
    extern "C" RYSDK_API void name(const In* src, Out* dst, uint32_t width, uint32_t height) { \
        RyImageProcess::name(src, dst, width, height);                                         \
    }

RY_FORWARD_BAYER(ConvertBAYGB8ToBGR8, uint8_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYRG8ToBGR8, uint8_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYGR8ToBGR8, uint8_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYGB10ToBGR8, uint16_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYRG10ToBGR8, uint16_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYGR10ToBGR8, uint16_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYGB10ToBGR10, uint16_t, uint16_t)
RY_FORWARD_BAYER(ConvertBAYRG10ToBGR10, uint16_t, uint16_t)
RY_FORWARD_BAYER(ConvertBAYGR10ToBGR10, uint16_t, uint16_t)
RY_FORWARD_BAYER(ConvertBAYGB12ToBGR8, uint16_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYRG12ToBGR8, uint16_t, uint8_t)
RY_FORWARD_BAYER(ConvertBAYGR12ToBGR8, uint16_t, uint8_t)

#include "frame_convert.h"

#include <cstring>

#include "rysdk/RyImageProcess.h"
#include "rysdk/RyPixelFormat.h"

namespace rycam {
namespace {

using RYSDK::RyImageProcess;

using Bayer8 = void (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t);
using Bayer16 = void (*)(const uint16_t*, uint8_t*, uint32_t, uint32_t);
using Bytes = void (*)(const uint8_t*, uint32_t, uint8_t*);
using Geometry = void (*)(const uint8_t*, uint32_t, uint32_t, uint8_t*);

// One conversion to blue-green-red per format; exactly one of the function pointers is set.
struct ColourConversion {
    uint32_t format;
    Bayer8 bayer8;
    Bayer16 bayer16;
    Bytes bytes;
    Geometry geometry;
};

constexpr ColourConversion kColour[] = {
    {RYSDK::PIXEL_FORMAT_BAYERGB8, RyImageProcess::ConvertBAYGB8ToBGR8, nullptr, nullptr, nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERRG8, RyImageProcess::ConvertBAYRG8ToBGR8, nullptr, nullptr, nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERGR8, RyImageProcess::ConvertBAYGR8ToBGR8, nullptr, nullptr, nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERGB10, nullptr, RyImageProcess::ConvertBAYGB10ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERRG10, nullptr, RyImageProcess::ConvertBAYRG10ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERGR10, nullptr, RyImageProcess::ConvertBAYGR10ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERGB12, nullptr, RyImageProcess::ConvertBAYGB12ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERRG12, nullptr, RyImageProcess::ConvertBAYRG12ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_BAYERGR12, nullptr, RyImageProcess::ConvertBAYGR12ToBGR8, nullptr,
     nullptr},
    {RYSDK::PIXEL_FORMAT_RGB8, nullptr, nullptr, RyImageProcess::ConvertRGB8toBGR8, nullptr},
    {RYSDK::PIXEL_FORMAT_YUV411PACKED, nullptr, nullptr, RyImageProcess::ConvertYUV411toBGR8,
     nullptr},
    {RYSDK::PIXEL_FORMAT_YUV444PACKED, nullptr, nullptr, RyImageProcess::ConvertYUV444toBGR8,
     nullptr},
    {RYSDK::PIXEL_FORMAT_MONO10, nullptr, nullptr, RyImageProcess::ConvertMono10ToBGR8, nullptr},
    {RYSDK::PIXEL_FORMAT_MONO12, nullptr, nullptr, RyImageProcess::ConvertMono12ToBGR8, nullptr},
    {RYSDK::PIXEL_FORMAT_MONO14, nullptr, nullptr, RyImageProcess::ConvertMono14ToBGR8, nullptr},
    {RYSDK::PIXEL_FORMAT_YUV422PACKED, nullptr, nullptr, nullptr,
     RyImageProcess::ConvertYUV422_UYVYtoBGR8},
    {RYSDK::PIXEL_FORMAT_YUV422YUYVPACKED, nullptr, nullptr, nullptr,
     RyImageProcess::ConvertYUV422_YUYVtoBGR8},
};

bool ToColour(const ColourConversion& c, uint32_t width, uint32_t height, const uint8_t* data,
              size_t size, Picture& picture) {
    picture.channels = 3;
    picture.pixels.assign(size_t{width} * height * 3, 0);
    uint8_t* out = picture.pixels.data();
    const auto bytes = static_cast<uint32_t>(size);
    if (c.bayer8 != nullptr) {
        c.bayer8(data, out, width, height);
    } else if (c.bayer16 != nullptr) {
        std::vector<uint16_t> samples(size_t{width} * height);
        std::memcpy(samples.data(), data, samples.size() * sizeof(uint16_t));
        c.bayer16(samples.data(), out, width, height);
    } else if (c.bytes != nullptr) {
        c.bytes(data, bytes, out);
    } else {
        c.geometry(data, width, height, out);
    }
    return true;
}

bool ToGrey(uint32_t format, const uint8_t* data, Picture& picture) {
    const size_t pixels = size_t{picture.width} * picture.height;
    picture.channels = 1;
    if (format == RYSDK::PIXEL_FORMAT_MONO8) {
        picture.pixels.assign(data, data + pixels);
        return true;
    }
    if (format == RYSDK::PIXEL_FORMAT_MONO16) {
        picture.bitDepth = 16;
        picture.pixels.assign(data, data + pixels * 2);
        return true;
    }
    if (format == RYSDK::PIXEL_FORMAT_MONO10PACKED || format == RYSDK::PIXEL_FORMAT_MONO12PACKED) {
        picture.bitDepth = 16;
        picture.pixels.assign(pixels * 2, 0);
        auto* out = reinterpret_cast<uint16_t*>(picture.pixels.data());
        const bool ten = format == RYSDK::PIXEL_FORMAT_MONO10PACKED;
        if (ten)
            RyImageProcess::ConvertMono10PackedToMono16bit(data, picture.width, picture.height,
                                                           out);
        else
            RyImageProcess::ConvertMono12PackedToMono16bit(data, picture.width, picture.height,
                                                           out);
        // Spread the samples over the 16-bit range, so the picture is not nearly black.
        for (size_t i = 0; i < pixels; ++i)
            out[i] = static_cast<uint16_t>(out[i] << (ten ? 6 : 4));
        return true;
    }
    return false;
}

}  // namespace

size_t FrameBytes(uint32_t format, uint32_t width, uint32_t height) {
    return size_t{width} * height * RYSDK::PixelFormatBits(format) / 8;
}

bool ConvertFrame(uint32_t format, uint32_t width, uint32_t height, const uint8_t* data,
                  size_t size, Picture& picture) {
    // The demosaicing needs an even geometry; every conversion needs the whole frame.
    if (data == nullptr || width < 2 || height < 2 || size < FrameBytes(format, width, height))
        return false;
    picture = Picture{};
    picture.width = width;
    picture.height = height;
    if (ToGrey(format, data, picture))
        return true;
    for (const ColourConversion& c : kColour) {
        if (c.format != format)
            continue;
        const bool bayer = c.bayer8 != nullptr || c.bayer16 != nullptr;
        if (bayer && (width % 2 != 0 || height % 2 != 0))
            return false;
        return ToColour(c, width, height, data, FrameBytes(format, width, height), picture);
    }
    if (format == RYSDK::PIXEL_FORMAT_BGR8) {
        picture.channels = 3;
        picture.pixels.assign(data, data + size_t{width} * height * 3);
        return true;
    }
    return false;
}

}  // namespace rycam

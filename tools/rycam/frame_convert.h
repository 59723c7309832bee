// A camera frame turned into an image a PNG file can hold, with the SDK's own conversions:
// Bayer mosaics demosaiced, YUV and packed formats to blue-green-red, mono kept grey.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rycam {

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    int channels = 0;  // 1 grey, 3 blue-green-red
    int bitDepth = 8;  // 8, or 16 for host-order grey samples
    std::vector<uint8_t> pixels;
};

// Fills `picture` from a frame of `format` (a GigE Vision pixel format code). False for a
// format without a conversion, or a frame shorter than its geometry needs.
bool ConvertFrame(uint32_t format, uint32_t width, uint32_t height, const uint8_t* data,
                  size_t size, Picture& picture);

// Bytes a frame of this format and geometry holds (bits per pixel from the code).
size_t FrameBytes(uint32_t format, uint32_t width, uint32_t height);

}  // namespace rycam

#include "test_image.h"

#include <algorithm>

#include "ry/gev/protocol/pixel_formats.h"

namespace ry::emulator {
namespace {

namespace pf = ry::gev::pixel_format;

// Value of channel c at sensor position (x, y), before it is cut to the format's depth.
std::uint32_t pattern_value(const ImageSettings& s, std::uint32_t x, std::uint32_t y,
                            std::uint32_t c) {
    const std::uint32_t sx = s.offset_x + (s.reverse_x ? s.width - 1 - x : x);
    const std::uint32_t sy = s.offset_y + y;
    switch (s.pattern) {
        case TestPattern::HorizontalRamp:
            return sx + 64 * c;
        case TestPattern::VerticalRamp:
            return sy + 64 * c;
        case TestPattern::DiagonalRamp:
            return sx + sy + 64 * c;
        case TestPattern::Moving:
            break;
    }
    return sx + 2 * sy + 85 * c;
}

enum class Layout { Bytes8, Words16, Packed10, Packed12, Rgb, Bgr, Yuv411, Yuv422, Yuv444 };

struct FormatShape {
    Layout layout;
    std::uint32_t depth_mask;
};

std::optional<FormatShape> shape_of(std::uint32_t code) {
    switch (code) {
        case pf::kMono8:
        case pf::kBayerGR8:
        case pf::kBayerRG8:
        case pf::kBayerGB8:
        case pf::kBayerBG8:
            return FormatShape{Layout::Bytes8, 0xFF};
        case pf::kMono10:
        case pf::kBayerGR10:
        case pf::kBayerRG10:
        case pf::kBayerGB10:
        case pf::kBayerBG10:
            return FormatShape{Layout::Words16, 0x3FF};
        case pf::kMono12:
        case pf::kBayerGR12:
        case pf::kBayerRG12:
        case pf::kBayerGB12:
        case pf::kBayerBG12:
            return FormatShape{Layout::Words16, 0xFFF};
        case pf::kMono16:
            return FormatShape{Layout::Words16, 0xFFFF};
        case pf::kMono10Packed:
            return FormatShape{Layout::Packed10, 0x3FF};
        case pf::kMono12Packed:
            return FormatShape{Layout::Packed12, 0xFFF};
        case pf::kRGB8Packed:
            return FormatShape{Layout::Rgb, 0xFF};
        case pf::kBGR8Packed:
            return FormatShape{Layout::Bgr, 0xFF};
        case pf::kYUV411Packed:
            return FormatShape{Layout::Yuv411, 0xFF};
        case pf::kYUV422Packed:
            return FormatShape{Layout::Yuv422, 0xFF};
        case pf::kYUV444Packed:
            return FormatShape{Layout::Yuv444, 0xFF};
        default:
            return std::nullopt;
    }
}

// Appends the bytes of one group of pixels starting at x; the caller cuts the line to size.
void append_group(std::vector<std::uint8_t>& line, const ImageSettings& s, FormatShape shape,
                  std::uint32_t x, std::uint32_t y) {
    auto v = [&](std::uint32_t px, std::uint32_t c) {
        return pattern_value(s, std::min(px, s.width - 1), y, c) & shape.depth_mask;
    };
    auto push = [&](std::uint32_t b) { line.push_back(static_cast<std::uint8_t>(b)); };
    switch (shape.layout) {
        case Layout::Bytes8:
            push(v(x, 0));
            break;
        case Layout::Words16:
            push(v(x, 0));
            push(v(x, 0) >> 8);
            break;
        case Layout::Packed10: {  // p0 = b0*4 + (b1 & 3); p1 = b2*4 + ((b1 >> 4) & 3)
            const std::uint32_t p0 = v(x, 0), p1 = v(x + 1, 0);
            push(p0 >> 2);
            push((p0 & 3) | ((p1 & 3) << 4));
            push(p1 >> 2);
            break;
        }
        case Layout::Packed12: {  // p0 = b0*16 + (b1 & 15); p1 = b2*16 + (b1 >> 4)
            const std::uint32_t p0 = v(x, 0), p1 = v(x + 1, 0);
            push(p0 >> 4);
            push((p0 & 0xF) | ((p1 & 0xF) << 4));
            push(p1 >> 4);
            break;
        }
        case Layout::Rgb:
            push(v(x, 0)), push(v(x, 1)), push(v(x, 2));
            break;
        case Layout::Bgr:
            push(v(x, 2)), push(v(x, 1)), push(v(x, 0));
            break;
        case Layout::Yuv411:  // U Y0 Y1 V Y2 Y3
            push(v(x, 1)), push(v(x, 0)), push(v(x + 1, 0));
            push(v(x, 2)), push(v(x + 2, 0)), push(v(x + 3, 0));
            break;
        case Layout::Yuv422:  // U Y0 V Y1
            push(v(x, 1)), push(v(x, 0)), push(v(x, 2)), push(v(x + 1, 0));
            break;
        case Layout::Yuv444:  // U Y V
            push(v(x, 1)), push(v(x, 0)), push(v(x, 2));
            break;
    }
}

std::uint32_t pixels_per_group(Layout layout) {
    switch (layout) {
        case Layout::Packed10:
        case Layout::Packed12:
        case Layout::Yuv422:
            return 2;
        case Layout::Yuv411:
            return 4;
        default:
            return 1;
    }
}

}  // namespace

std::vector<std::uint8_t> make_test_image(const ImageSettings& s) {
    const auto shape = shape_of(s.pixel_format);
    if (!shape || s.width == 0 || s.height == 0) {
        return {};
    }
    const std::size_t line_size = gev::image_size(s.pixel_format, s.width, 1);
    const std::uint32_t step = pixels_per_group(shape->layout);
    std::vector<std::uint8_t> image;
    image.reserve(line_size * s.height);
    std::vector<std::uint8_t> line;
    for (std::uint32_t y = 0; y < s.height; ++y) {
        line.clear();
        for (std::uint32_t x = 0; x < s.width; x += step) {
            append_group(line, s, *shape, x, y);
        }
        line.resize(line_size);
        image.insert(image.end(), line.begin(), line.end());
    }
    return image;
}

void stamp_block_id(std::uint8_t* image, std::size_t size, std::uint64_t block_id) {
    const std::size_t n = std::min(size, kBlockStampSize);
    for (std::size_t i = 0; i < n; ++i) {
        image[i] = static_cast<std::uint8_t>(block_id >> (8 * i));
    }
}

}  // namespace ry::emulator

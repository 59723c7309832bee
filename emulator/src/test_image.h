// Deterministic test images. A receiver that knows the settings and the block id can
// recompute every byte of a frame: the image is a pattern of the pixel format, and its
// first 8 bytes are replaced by the block id (64-bit, little-endian).
#pragma once

#include <cstdint>
#include <vector>

namespace ry::emulator {

enum class TestPattern : std::uint32_t {
    Moving = 0,          // "Off": the sensor view, a diagonal gradient with colour offsets
    HorizontalRamp = 1,  // value grows with x
    VerticalRamp = 2,    // value grows with y
    DiagonalRamp = 3,    // value grows with x + y
};

struct ImageSettings {
    std::uint32_t pixel_format = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t offset_x = 0;
    std::uint32_t offset_y = 0;
    TestPattern pattern = TestPattern::Moving;
    bool reverse_x = false;
    bool operator==(const ImageSettings&) const = default;
};

inline constexpr std::size_t kBlockStampSize = 8;

// The pattern without the block stamp. Empty for an unknown pixel format.
std::vector<std::uint8_t> make_test_image(const ImageSettings& settings);
// Writes the stamp of `block_id` into the first bytes of `image` (as many as fit).
void stamp_block_id(std::uint8_t* image, std::size_t size, std::uint64_t block_id);

}  // namespace ry::emulator

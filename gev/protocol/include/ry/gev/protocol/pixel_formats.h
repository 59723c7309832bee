// GigE Vision pixel format codes (PFNC values) with their names and memory sizes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace ry::gev {

namespace pixel_format {
inline constexpr std::uint32_t kMono8 = 0x01080001;
inline constexpr std::uint32_t kMono10 = 0x01100003;
inline constexpr std::uint32_t kMono10Packed = 0x010C0004;
inline constexpr std::uint32_t kMono12 = 0x01100005;
inline constexpr std::uint32_t kMono12Packed = 0x010C0006;
inline constexpr std::uint32_t kMono16 = 0x01100007;
inline constexpr std::uint32_t kBayerGR8 = 0x01080008;
inline constexpr std::uint32_t kBayerRG8 = 0x01080009;
inline constexpr std::uint32_t kBayerGB8 = 0x0108000A;
inline constexpr std::uint32_t kBayerBG8 = 0x0108000B;
inline constexpr std::uint32_t kBayerGR10 = 0x0110000C;
inline constexpr std::uint32_t kBayerRG10 = 0x0110000D;
inline constexpr std::uint32_t kBayerGB10 = 0x0110000E;
inline constexpr std::uint32_t kBayerBG10 = 0x0110000F;
inline constexpr std::uint32_t kBayerGR12 = 0x01100010;
inline constexpr std::uint32_t kBayerRG12 = 0x01100011;
inline constexpr std::uint32_t kBayerGB12 = 0x01100012;
inline constexpr std::uint32_t kBayerBG12 = 0x01100013;
inline constexpr std::uint32_t kRGB8Packed = 0x02180014;
inline constexpr std::uint32_t kBGR8Packed = 0x02180015;
inline constexpr std::uint32_t kYUV411Packed = 0x020C001E;
inline constexpr std::uint32_t kYUV422Packed = 0x0210001F;
inline constexpr std::uint32_t kYUV444Packed = 0x02180020;
}  // namespace pixel_format

struct PixelFormatInfo {
    std::string_view name;  // GigE Vision 1.x name, e.g. "Mono10Packed"
    std::uint32_t code;
};

// Bits of memory per pixel, taken from the code itself (bits 23..16).
inline constexpr std::uint32_t pixel_format_bits(std::uint32_t code) {
    return (code >> 16) & 0xFF;
}

// Bytes of a width x height image; packed formats round each line up to whole bytes.
inline constexpr std::size_t image_size(std::uint32_t code, std::uint32_t width,
                                        std::uint32_t height) {
    return (static_cast<std::size_t>(width) * pixel_format_bits(code) + 7) / 8 * height;
}

// The formats this code base knows by name.
std::span<const PixelFormatInfo> known_pixel_formats();
std::optional<std::uint32_t> pixel_format_from_name(std::string_view name);
std::optional<std::string_view> pixel_format_name(std::uint32_t code);

}  // namespace ry::gev

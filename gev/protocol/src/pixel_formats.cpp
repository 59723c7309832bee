#include "ry/gev/protocol/pixel_formats.h"

#include <array>

namespace ry::gev {
namespace {

namespace pf = pixel_format;
constexpr std::array<PixelFormatInfo, 23> kFormats{{
    {"Mono8", pf::kMono8},
    {"Mono10", pf::kMono10},
    {"Mono12", pf::kMono12},
    {"Mono16", pf::kMono16},
    {"Mono10Packed", pf::kMono10Packed},
    {"Mono12Packed", pf::kMono12Packed},
    {"BayerGR8", pf::kBayerGR8},
    {"BayerRG8", pf::kBayerRG8},
    {"BayerGB8", pf::kBayerGB8},
    {"BayerBG8", pf::kBayerBG8},
    {"BayerGR10", pf::kBayerGR10},
    {"BayerRG10", pf::kBayerRG10},
    {"BayerGB10", pf::kBayerGB10},
    {"BayerBG10", pf::kBayerBG10},
    {"BayerGR12", pf::kBayerGR12},
    {"BayerRG12", pf::kBayerRG12},
    {"BayerGB12", pf::kBayerGB12},
    {"BayerBG12", pf::kBayerBG12},
    {"RGB8Packed", pf::kRGB8Packed},
    {"BGR8Packed", pf::kBGR8Packed},
    {"YUV411Packed", pf::kYUV411Packed},
    {"YUV422Packed", pf::kYUV422Packed},
    {"YUV444Packed", pf::kYUV444Packed},
}};

}  // namespace

std::span<const PixelFormatInfo> known_pixel_formats() {
    return kFormats;
}

std::optional<std::uint32_t> pixel_format_from_name(std::string_view name) {
    for (const auto& format : kFormats) {
        if (format.name == name) {
            return format.code;
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> pixel_format_name(std::uint32_t code) {
    for (const auto& format : kFormats) {
        if (format.code == code) {
            return format.name;
        }
    }
    return std::nullopt;
}

}  // namespace ry::gev

// The catalogue of pixel formats, in its binding order: searches stop at the first match, so
// the second "Mono14" row and the second row of a shared code are never found by a search.
#include "acquisition/pixel_format_catalogue.h"

namespace RYSDK::acquisition {

const std::array<PixelFormatRow, kPixelFormatRows>& PixelFormatCatalogue() noexcept {
    static constexpr std::array<PixelFormatRow, kPixelFormatRows> kRows{{
        {"Mono8", 0x01080001, 8},
        {"Mono8signed", 0x01080002, 8},
        {"Mono10", 0x01100003, 16},
        {"Mono10Packed", 0x010C0004, 12},
        {"Mono12", 0x01100005, 16},
        {"Mono14", 0x01100025, 16},
        {"Mono12Packed", 0x010C0006, 12},
        {"Mono14", 0x01100025, 16},
        {"Mono16", 0x01100007, 16},
        {"BayerGR8", 0x01080008, 8},
        {"BayerRG8", 0x01080009, 8},
        {"BayerGB8", 0x0108000A, 8},
        {"BayerBG8", 0x0108000B, 8},
        {"BayerGR10", 0x0110000C, 16},
        {"BayerRG10", 0x0110000D, 16},
        {"BayerGB10", 0x0110000E, 16},
        {"BayerBG10", 0x0110000F, 16},
        {"BayerGR10Packed", 0x010C0026, 12},
        {"BayerGR12Packed", 0x010C002A, 12},
        {"BayerGR12", 0x01100010, 16},
        {"BayerRG12", 0x01100011, 16},
        {"BayerGB12", 0x01100012, 16},
        {"BayerBG12", 0x01100013, 16},
        {"BayerRG10Packed", 0x010C0027, 12},
        {"BayerRG12Packed", 0x010C002B, 12},
        {"RGB8Packed", 0x02180014, 24},
        {"BGR8Packed", 0x02180015, 24},
        {"YUV422Packed", 0x0210001F, 16},
        {"YUV422YUYVPacked", 0x02100032, 16},
        {"YUV42210Packed", 0x80180001, 12},
        {"YUV42212Packed", 0x80180002, 12},
        {"YUV411Packed", 0x020C001E, 12},
        {"YUV41110Packed", 0x80120004, 12},
        {"YUV41112Packed", 0x80120005, 12},
        {"RGB8", 0x02180014, 8},
        {"BGR8", 0x02180015, 8},
        {"RGB10", 0x02300018, 10},
        {"BGR10", 0x02300019, 10},
        {"RGB12", 0x0230001A, 12},
        {"BGR12", 0x0230001B, 12},
        {"BGR10V1Packed", 0x0220001C, 32},
        {"BGR10V2Packed", 0x0220001D, 32},
        {"RGB12Packed", 0x0230001A, 48},
        {"BGR12Packed", 0x0230001B, 48},
        {"YUV444Packed", 0x02180020, 24},
        {"PALInterlaced", 0x02100001, 8},
        {"NTSCInterlaced", 0x02100002, 8},
    }};
    return kRows;
}

}  // namespace RYSDK::acquisition
namespace RYSDK::acquisition {

std::optional<uint32_t> PixelFormatCodeOf(std::string_view name) noexcept {
    for (const PixelFormatRow& row : PixelFormatCatalogue()) {
        if (name == row.name)
            return row.code;
    }
    return std::nullopt;
}

const char* PixelFormatNameOf(uint32_t code) noexcept {
    for (const PixelFormatRow& row : PixelFormatCatalogue()) {
        if (row.code == code)
            return row.name;
    }
    return nullptr;
}

}  // namespace RYSDK::acquisition

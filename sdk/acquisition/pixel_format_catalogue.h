// Translation between pixel format codes and the names cameras give them as entries of
// their "PixelFormat" feature.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace RYSDK::acquisition {

struct PixelFormatRow {
    const char* name;
    uint32_t code;
    uint32_t bitCount;  // kept with the data; sizes come from the code's bits 16 to 23
};

inline constexpr size_t kPixelFormatRows = 47;

const std::array<PixelFormatRow, kPixelFormatRows>& PixelFormatCatalogue() noexcept;

// The code of the first row named exactly `name` (case matters).
std::optional<uint32_t> PixelFormatCodeOf(std::string_view name) noexcept;

// The name of the first row with this code.
const char* PixelFormatNameOf(uint32_t code) noexcept;

}  // namespace RYSDK::acquisition

// Colour roles of one mosaic row, and the sample readers the demosaicing members differ by.
#pragma once

#include <cstdint>

namespace RYSDK::imageproc {

enum class BayerPhase { GB, RG, GR };

// A mosaic row alternates green with one other colour (the row colour); the third colour
// comes from the rows above and below.
struct BayerRowLayout {
    bool greenAtEvenColumns;
    bool rowColourIsBlue;
};

constexpr BayerRowLayout LayoutOfRow(BayerPhase phase, uint32_t y) {
    const bool evenRow = (y & 1u) == 0;
    switch (phase) {
        case BayerPhase::GB:
            return {evenRow, evenRow};
        case BayerPhase::RG:
            return {!evenRow, !evenRow};
        case BayerPhase::GR:
            return {evenRow, !evenRow};
    }
    return {evenRow, evenRow};
}

// Bytes used as they are.
struct ReadBytes {
    using In = uint8_t;
    static uint32_t Read(const uint8_t* p, uint32_t i) { return p[i]; }
};

// 16-bit samples reduced to 8 bits as they are read: shift, then keep the low 8 bits, so
// stray bits above the nominal width drop out instead of saturating.
template <int Shift>
struct ReadReduced {
    using In = uint16_t;
    static uint32_t Read(const uint16_t* p, uint32_t i) { return (p[i] >> Shift) & 0xFFu; }
};

// 16-bit samples used whole.
struct ReadWords {
    using In = uint16_t;
    static uint32_t Read(const uint16_t* p, uint32_t i) { return p[i]; }
};

}  // namespace RYSDK::imageproc

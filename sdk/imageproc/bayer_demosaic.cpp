#include "imageproc/bayer_demosaic.h"

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <type_traits>

#include "imageproc/bayer_avx2.h"

namespace RYSDK::imageproc {

namespace {

// Truncated quotient for the neighbour counts that occur (1 to 4); the division by three
// is a multiply by the reciprocal, exact for every 32-bit sum.
inline uint32_t TruncatedMean(uint32_t sum, uint32_t count) {
    switch (count) {
        case 1:
            return sum;
        case 2:
            return sum >> 1;
        case 3:
            return static_cast<uint32_t>((uint64_t{sum} * 0xAAAAAAABull) >> 33);
        case 4:
            return sum >> 2;
        default:
            return 0;
    }
}

// Sum and count of the samples of one row at x - 1 and x + 1 that lie inside the row.
template <class Reader>
struct PairSum {
    uint32_t sum = 0;
    uint32_t count = 0;
    void Add(const typename Reader::In* row, uint32_t x, uint32_t width) {
        if (x > 0) {
            sum += Reader::Read(row, x - 1);
            ++count;
        }
        if (x + 1 < width) {
            sum += Reader::Read(row, x + 1);
            ++count;
        }
    }
    void AddOne(const typename Reader::In* row, uint32_t x) {
        sum += Reader::Read(row, x);
        ++count;
    }
};

// One pixel from whichever neighbours exist; `up` and `down` are null at the top and
// bottom rows. Used for the border pixels and wherever no vector kernel applies.
template <class Reader, class Out>
void DemosaicPixel(const typename Reader::In* up, const typename Reader::In* row,
                   const typename Reader::In* down, Out* out, uint32_t x, uint32_t width,
                   BayerRowLayout layout) {
    PairSum<Reader> across, vertical, diagonal;
    across.Add(row, x, width);
    for (const typename Reader::In* other : {up, down}) {
        if (other != nullptr) {
            vertical.AddOne(other, x);
            diagonal.Add(other, x, width);
        }
    }
    const uint32_t own = Reader::Read(row, x);
    const bool green = ((x & 1u) == 0) == layout.greenAtEvenColumns;
    uint32_t rowColour = own;
    uint32_t otherColour = 0;
    uint32_t greenValue = own;
    if (green) {
        rowColour = TruncatedMean(across.sum, across.count);
        otherColour = TruncatedMean(vertical.sum, vertical.count);
    } else {
        greenValue = TruncatedMean(across.sum + vertical.sum, across.count + vertical.count);
        otherColour = TruncatedMean(diagonal.sum, diagonal.count);
    }
    Out* pixel = out + 3 * size_t{x};
    pixel[0] = static_cast<Out>(layout.rowColourIsBlue ? rowColour : otherColour);
    pixel[1] = static_cast<Out>(greenValue);
    pixel[2] = static_cast<Out>(layout.rowColourIsBlue ? otherColour : rowColour);
}

template <class Reader, class Out>
void DemosaicSpan(const typename Reader::In* up, const typename Reader::In* row,
                  const typename Reader::In* down, Out* out, uint32_t begin, uint32_t end,
                  uint32_t width, BayerRowLayout layout) {
    for (uint32_t x = begin; x < end; ++x) {
        DemosaicPixel<Reader, Out>(up, row, down, out, x, width, layout);
    }
}

// Inner columns of a row with rows above and below: every neighbour exists, so the counts
// are fixed (two across, two vertical, four diagonal) and no neighbour needs a test.
template <class Reader, class Out>
uint32_t DemosaicInnerScalar(const typename Reader::In* up, const typename Reader::In* row,
                             const typename Reader::In* down, Out* out, uint32_t width,
                             BayerRowLayout layout) {
    for (uint32_t x = 1; x + 1 < width; ++x) {
        const uint32_t own = Reader::Read(row, x);
        const uint32_t across = Reader::Read(row, x - 1) + Reader::Read(row, x + 1);
        const uint32_t vertical = Reader::Read(up, x) + Reader::Read(down, x);
        const bool green = ((x & 1u) == 0) == layout.greenAtEvenColumns;
        uint32_t rowColour = own, otherColour = vertical >> 1, greenValue = own;
        if (green) {
            rowColour = across >> 1;
        } else {
            greenValue = (across + vertical) >> 2;
            otherColour = (Reader::Read(up, x - 1) + Reader::Read(up, x + 1) +
                           Reader::Read(down, x - 1) + Reader::Read(down, x + 1)) >>
                          2;
        }
        Out* pixel = out + 3 * size_t{x};
        pixel[0] = static_cast<Out>(layout.rowColourIsBlue ? rowColour : otherColour);
        pixel[1] = static_cast<Out>(greenValue);
        pixel[2] = static_cast<Out>(layout.rowColourIsBlue ? otherColour : rowColour);
    }
    return width > 2 ? width - 2 : 0;
}

template <class In, class Out>
using VectorInner = uint32_t (*)(const In*, const In*, const In*, Out*, uint32_t, BayerRowLayout);

// Runs the rows in output order. Rows with both neighbours take their inner columns from
// the vector kernel when there is one and the row is wide enough for it, else from the
// scalar inner loop; the border pixels go through the per-neighbour path.
template <class Reader, class Out>
void DemosaicImage(const typename Reader::In* src, Out* dst, uint32_t width, uint32_t height,
                   BayerPhase phase,
                   std::type_identity_t<VectorInner<typename Reader::In, Out>> vector) {
    for (uint32_t y = 0; y < height; ++y) {
        const typename Reader::In* row = src + size_t{y} * width;
        const typename Reader::In* up = y > 0 ? row - width : nullptr;
        const typename Reader::In* down = y + 1 < height ? row + width : nullptr;
        Out* out = dst + size_t{y} * width * 3;
        const BayerRowLayout layout = LayoutOfRow(phase, y);
        uint32_t done = 0;
        if (up != nullptr && down != nullptr) {
            done = vector != nullptr ? vector(up, row, down, out, width, layout) : 0;
            if (done == 0) {
                done = DemosaicInnerScalar<Reader, Out>(up, row, down, out, width, layout);
            }
        }
        if (done == 0) {
            DemosaicSpan<Reader, Out>(up, row, down, out, 0, width, width, layout);
        } else {
            DemosaicSpan<Reader, Out>(up, row, down, out, 0, 1, width, layout);
            DemosaicSpan<Reader, Out>(up, row, down, out, width - 1, width, width, layout);
        }
    }
}

bool ShouldConvert(const void* src, const void* dst, uint32_t width, uint32_t height) {
    assert(IsDemosaicSize(width, height) && "Bayer width and height must be even and >= 2");
    return src != nullptr && dst != nullptr && IsDemosaicSize(width, height);
}

template <int Shift>
void DemosaicReducedBy(const uint16_t* src, uint8_t* dst, uint32_t width, uint32_t height,
                       BayerPhase phase, SimdLevel level) {
    if (UsableSimdLevel(level) == SimdLevel::Avx2) {
        DemosaicImage<ReadReduced<Shift>>(src, dst, width, height, phase,
                                          avx2::DemosaicInnerReduced<Shift>);
    } else {
        DemosaicImage<ReadReduced<Shift>>(src, dst, width, height, phase, nullptr);
    }
}

}  // namespace

bool IsDemosaicSize(uint32_t width, uint32_t height) {
    return width >= 2 && height >= 2 && width % 2 == 0 && height % 2 == 0;
}

void DemosaicBytes(const uint8_t* src, uint8_t* dst, uint32_t width, uint32_t height,
                   BayerPhase phase, SimdLevel level) {
    if (!ShouldConvert(src, dst, width, height)) {
        return;
    }
    if (UsableSimdLevel(level) == SimdLevel::Avx2) {
        DemosaicImage<ReadBytes>(src, dst, width, height, phase, avx2::DemosaicInnerBytes);
    } else {
        DemosaicImage<ReadBytes>(src, dst, width, height, phase, nullptr);
    }
}

void DemosaicReduced(const uint16_t* src, uint8_t* dst, uint32_t width, uint32_t height, int shift,
                     BayerPhase phase, SimdLevel level) {
    if (!ShouldConvert(src, dst, width, height)) {
        return;
    }
    if (shift == 2) {
        DemosaicReducedBy<2>(src, dst, width, height, phase, level);
    } else if (shift == 4) {
        DemosaicReducedBy<4>(src, dst, width, height, phase, level);
    }
}

void DemosaicWords(const uint16_t* src, uint16_t* dst, uint32_t width, uint32_t height,
                   BayerPhase phase, SimdLevel level) {
    if (!ShouldConvert(src, dst, width, height)) {
        return;
    }
    if (UsableSimdLevel(level) == SimdLevel::Avx2) {
        DemosaicImage<ReadWords>(src, dst, width, height, phase, avx2::DemosaicInnerWords);
    } else {
        DemosaicImage<ReadWords>(src, dst, width, height, phase, nullptr);
    }
}

}  // namespace RYSDK::imageproc

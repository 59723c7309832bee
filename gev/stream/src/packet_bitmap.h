// One bit per packet id of a block. The storage is kept between frames and only grows, so the
// receiving loop allocates nothing once it has seen the largest frame of a stream.
#pragma once

#include <cstdint>
#include <vector>

namespace ry::gev::stream::detail {

class PacketBitmap {
  public:
    // Clears every bit and makes ids [0, bitCount) addressable.
    void Reset(uint32_t bitCount);
    // Makes ids [0, bitCount) addressable, keeping the bits already set.
    void Grow(uint32_t bitCount);

    uint32_t Size() const { return bitCount_; }
    bool Test(uint32_t id) const {
        return id < bitCount_ && (words_[id >> 6] >> (id & 63) & 1u) != 0;
    }
    // True when the bit was clear before; ids past Size() are refused.
    bool Set(uint32_t id) {
        if (id >= bitCount_) {
            return false;
        }
        uint64_t& word = words_[id >> 6];
        const uint64_t mask = uint64_t{1} << (id & 63);
        const bool wasClear = (word & mask) == 0;
        word |= mask;
        return wasClear;
    }
    void Clear(uint32_t id);
    // Sets [first, last] clipped to Size(); returns how many bits changed from clear to set.
    uint32_t SetRange(uint32_t first, uint32_t last);
    // Number of clear bits in [first, last], clipped to Size(); ids past Size() count as clear.
    uint32_t CountClear(uint32_t first, uint32_t last) const;

    // Calls visit(first, last) for every run of clear bits inside [first, last]; ids past
    // Size() are treated as clear.
    template <typename Visit>
    void ForEachClearRun(uint32_t first, uint32_t last, Visit&& visit) const {
        last = last == UINT32_MAX ? last - 1 : last;  // keeps last + 1 from wrapping
        uint32_t id = first;
        while (id <= last) {
            id = NextClear(id, last);
            if (id > last) {
                return;
            }
            const uint32_t runEnd = NextSet(id, last);
            visit(id, runEnd - 1);
            if (runEnd > last) {
                return;
            }
            id = runEnd;
        }
    }

  private:
    // First clear id in [from, limit], or limit + 1 when there is none.
    uint32_t NextClear(uint32_t from, uint32_t limit) const;
    // First set id in [from, limit], or limit + 1 when there is none.
    uint32_t NextSet(uint32_t from, uint32_t limit) const;

    std::vector<uint64_t> words_;
    uint32_t bitCount_ = 0;
};

}  // namespace ry::gev::stream::detail

#include "packet_bitmap.h"

#include <algorithm>
#include <bit>

namespace ry::gev::stream::detail {

namespace {

uint32_t WordsFor(uint32_t bitCount) {
    return static_cast<uint32_t>((uint64_t{bitCount} + 63) / 64);
}

}  // namespace

void PacketBitmap::Reset(uint32_t bitCount) {
    const uint32_t words = WordsFor(bitCount);
    if (words_.size() < words) {
        words_.resize(words);
    }
    std::fill(words_.begin(), words_.begin() + words, uint64_t{0});
    bitCount_ = bitCount;
}

void PacketBitmap::Grow(uint32_t bitCount) {
    if (bitCount <= bitCount_) {
        return;
    }
    const uint32_t oldWords = WordsFor(bitCount_);
    const uint32_t newWords = WordsFor(bitCount);
    if (words_.size() < newWords) {
        words_.resize(newWords);
    }
    // Bits beyond the old size in the old last word may hold stale values from a bigger frame.
    if (bitCount_ % 64 != 0) {
        words_[oldWords - 1] &= (uint64_t{1} << (bitCount_ % 64)) - 1;
    }
    std::fill(words_.begin() + oldWords, words_.begin() + newWords, uint64_t{0});
    bitCount_ = bitCount;
}

void PacketBitmap::Clear(uint32_t id) {
    if (id < bitCount_) {
        words_[id >> 6] &= ~(uint64_t{1} << (id & 63));
    }
}

uint32_t PacketBitmap::SetRange(uint32_t first, uint32_t last) {
    if (bitCount_ == 0) {
        return 0;
    }
    uint32_t changed = 0;
    const uint32_t end = std::min(last, bitCount_ - 1);
    for (uint32_t id = first; id <= end; ++id) {
        changed += Set(id) ? 1 : 0;
    }
    return changed;
}

uint32_t PacketBitmap::CountClear(uint32_t first, uint32_t last) const {
    if (first > last) {
        return 0;
    }
    uint32_t clear = 0;
    ForEachClearRun(first, last, [&](uint32_t a, uint32_t b) { clear += b - a + 1; });
    return clear;
}

uint32_t PacketBitmap::NextClear(uint32_t from, uint32_t limit) const {
    uint32_t id = from;
    while (id <= limit && id < bitCount_) {
        const uint64_t word = ~words_[id >> 6] >> (id & 63);
        if (word != 0) {
            const uint32_t found = id + static_cast<uint32_t>(std::countr_zero(word));
            return std::min(found, limit + 1);
        }
        id = (id | 63) + 1;
    }
    return std::min(id, limit + 1);
}

uint32_t PacketBitmap::NextSet(uint32_t from, uint32_t limit) const {
    uint32_t id = from;
    while (id <= limit && id < bitCount_) {
        const uint64_t word = words_[id >> 6] >> (id & 63);
        if (word != 0) {
            const uint32_t found = id + static_cast<uint32_t>(std::countr_zero(word));
            return std::min(std::min(found, bitCount_), limit + 1);
        }
        id = (id | 63) + 1;
    }
    return limit + 1;
}

}  // namespace ry::gev::stream::detail

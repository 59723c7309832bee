// Cuts a fuzz input into what a socket would hand over: a few fixed bytes the harness
// reads first, then datagrams, each a 16-bit big-endian length followed by its bytes. A
// length past the end of the input takes what is left. Datagrams longer than the client's
// receive buffer arrive cut to it, as recv would cut them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "ry/gev/protocol/gvcp.h"

namespace ry::gev::fuzz {

inline constexpr size_t kReceiveBuffer = kGvcpMaxDatagram + 64;

class DatagramFeed {
  public:
    DatagramFeed(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    // The next byte of the fixed part; 0 once the input is used up.
    uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
    uint16_t Word() { return static_cast<uint16_t>(Byte() << 8 | Byte()); }
    uint32_t Long() { return uint32_t{Word()} << 16 | Word(); }

    std::optional<ConstBytes> Next() {
        if (size_ - at_ < 2)
            return std::nullopt;
        const size_t announced = Word();
        const size_t length = std::min(announced, size_ - at_);
        const ConstBytes datagram(data_ + at_, std::min(length, kReceiveBuffer));
        at_ += length;
        return datagram;
    }

  private:
    const uint8_t* data_;
    size_t size_;
    size_t at_ = 0;
};

}  // namespace ry::gev::fuzz

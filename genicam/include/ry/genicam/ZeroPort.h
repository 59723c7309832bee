// A port over a register space that reads as zeros and forgets writes. Lets a description
// file be checked (every node evaluated) without a device.
#pragma once

#include <cstring>

#include "ry/genicam/Interfaces.h"

namespace RyGenApi {

class ZeroPort : public IPort {
  public:
    EAccessMode GetAccessMode() const override { return RW; }
    void Read(void* buffer, int64_t, int64_t length) override {
        if (buffer != nullptr && length > 0) {
            std::memset(buffer, 0, static_cast<size_t>(length));
        }
    }
    void Write(const void*, int64_t, int64_t) override {}
};

}  // namespace RyGenApi

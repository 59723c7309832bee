// Shared pieces of the conversion benchmark: frame sizes, reusable random frames and the
// registration of one timed row.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace rybench {

struct FrameSize {
    uint32_t width;
    uint32_t height;
    std::string Name() const { return std::to_string(width) + "x" + std::to_string(height); }
    size_t Pixels() const { return size_t{width} * height; }
};

inline const std::vector<FrameSize>& FrameSizes() {
    static const std::vector<FrameSize> sizes = {{2448, 2048}, {4096, 3000}};
    return sizes;
}

// Bytes with a fixed pseudo-random pattern, so every run converts the same data.
std::vector<uint8_t> PatternBytes(size_t count);

// Registers "<who>/<row>/<size>" timing `body` in milliseconds of wall time.
void AddRow(const std::string& who, const std::string& row, const FrameSize& size,
            std::function<void(benchmark::State&)> body);

void RegisterOpenCvRows();

}  // namespace rybench

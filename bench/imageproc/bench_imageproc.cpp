// Times each conversion of the SDK on full frames, single-threaded, and prints a comparison
// table at the end. The destination buffers are written once before timing so page faults
// stay out of the figures.
#include <cstring>
#include <random>

#include "bench_rows.h"
#include "comparison_table.h"
#include "rysdk/RyConvert.h"

namespace rybench {

std::vector<uint8_t> PatternBytes(size_t count) {
    std::vector<uint8_t> bytes(count);
    std::mt19937 gen(12345);
    for (size_t i = 0; i < count; i += 4) {
        const uint32_t word = gen();
        std::memcpy(&bytes[i], &word, std::min<size_t>(4, count - i));
    }
    return bytes;
}

void AddRow(const std::string& who, const std::string& row, const FrameSize& size,
            std::function<void(benchmark::State&)> body) {
    benchmark::RegisterBenchmark((who + "/" + row + "/" + size.Name()).c_str(), body)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MinTime(0.5);
}

namespace {

using Bayer8 = void (*)(const uint8_t*, uint8_t*, uint32_t, uint32_t);
using Bayer16 = void (*)(const uint16_t*, uint8_t*, uint32_t, uint32_t);
using Bytes = void (*)(const uint8_t*, uint32_t, uint8_t*);
using Sized = void (*)(const uint8_t*, uint32_t, uint32_t, uint8_t*);

std::vector<uint16_t> PatternWords(size_t count, uint16_t mask) {
    const std::vector<uint8_t> bytes = PatternBytes(count * 2);
    std::vector<uint16_t> words(count);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    for (uint16_t& w : words) {
        w &= mask;
    }
    return words;
}

void AddBayer8(const std::string& row, Bayer8 convert) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", row, size, [size, convert](benchmark::State& state) {
            const auto src = PatternBytes(size.Pixels());
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                convert(src.data(), dst.data(), size.width, size.height);
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

void AddBayer16(const std::string& row, Bayer16 convert, uint16_t mask) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", row, size, [size, convert, mask](benchmark::State& state) {
            const auto src = PatternWords(size.Pixels(), mask);
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                convert(src.data(), dst.data(), size.width, size.height);
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

void AddBayer10To10(const std::string& row) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", row, size, [size](benchmark::State& state) {
            const auto src = PatternWords(size.Pixels(), 0x3FF);
            std::vector<uint16_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                ConvertBAYGB10ToBGR10(src.data(), dst.data(), size.width, size.height);
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

// `bytesPerPixel` of source a pixel; the flat function gets the source length.
void AddBytes(const std::string& row, Bytes convert, size_t bytesPerPixel) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", row, size, [size, convert, bytesPerPixel](benchmark::State& state) {
            const auto src = PatternBytes(size.Pixels() * bytesPerPixel);
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                convert(src.data(), static_cast<uint32_t>(src.size()), dst.data());
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

void AddSized(const std::string& row, Sized convert) {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", row, size, [size, convert](benchmark::State& state) {
            const auto src = PatternBytes(size.Pixels() * 2);
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                convert(src.data(), size.width, size.height, dst.data());
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

void AddMemoryLimits() {
    for (const FrameSize& size : FrameSizes()) {
        AddRow("ours", "memcpy of output", size, [size](benchmark::State& state) {
            const auto src = PatternBytes(size.Pixels() * 3);
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            for (auto _ : state) {
                std::memcpy(dst.data(), src.data(), dst.size());
                benchmark::DoNotOptimize(dst.data());
            }
        });
        AddRow("ours", "memset of output", size, [size](benchmark::State& state) {
            std::vector<uint8_t> dst(size.Pixels() * 3, 1);
            int value = 0;
            for (auto _ : state) {
                std::memset(dst.data(), ++value & 0xFF, dst.size());
                benchmark::DoNotOptimize(dst.data());
            }
        });
    }
}

void RegisterOurRows() {
    AddBayer8("Bayer8 GB to BGR8", ConvertBAYGB8ToBGR8);
    AddBayer8("Bayer8 RG to BGR8", ConvertBAYRG8ToBGR8);
    AddBayer8("Bayer8 GR to BGR8", ConvertBAYGR8ToBGR8);
    AddBayer16("Bayer12 GB to BGR8", ConvertBAYGB12ToBGR8, 0x0FFF);
    AddBayer16("Bayer10 GB to BGR8", ConvertBAYGB10ToBGR8, 0x03FF);
    AddBayer10To10("Bayer10 GB to BGR10");
    AddBytes("YUV422 UYVY integer to BGR8", ConvertYUV422toBGR8, 2);
    AddSized("YUV422 UYVY floating to BGR8", ConvertYUV422_UYVYtoBGR8);
    AddSized("YUV422 YUYV floating to BGR8", ConvertYUV422_YUYVtoBGR8);
    AddBytes("RGB8 to BGR8", ConvertRGB8toBGR8, 3);
    AddBytes("Mono8 to BGR8", ConvertMono8ToBGR8, 1);
    AddBytes("Mono12 to BGR8", ConvertMono12ToBGR8, 2);
    AddMemoryLimits();
}

}  // namespace

}  // namespace rybench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    rybench::RegisterOurRows();
#ifdef RY_BENCH_WITH_OPENCV
    rybench::RegisterOpenCvRows();
#endif
    rybench::ComparisonReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintTable();
    benchmark::Shutdown();
    return 0;
}

#include "oracle.h"

#include <algorithm>

namespace RYSDK::imageproc::oracle {

namespace {

enum Colour { kBlue = 0, kGreen = 1, kRed = 2 };

Colour ColourAt(BayerPhase phase, uint32_t x, uint32_t y) {
    static constexpr Colour kGB[2][2] = {{kGreen, kBlue}, {kRed, kGreen}};
    static constexpr Colour kRG[2][2] = {{kRed, kGreen}, {kGreen, kBlue}};
    static constexpr Colour kGR[2][2] = {{kGreen, kRed}, {kBlue, kGreen}};
    const auto& table = phase == BayerPhase::GB ? kGB : phase == BayerPhase::RG ? kRG : kGR;
    return table[y % 2][x % 2];
}

uint32_t ClampByte(int value) {
    return static_cast<uint32_t>(std::clamp(value, 0, 255));
}

uint32_t FloatToByte(float value) {
    return static_cast<uint32_t>(std::clamp(value, 0.0f, 255.0f));
}

}  // namespace

std::vector<uint32_t> Demosaic(const std::vector<uint32_t>& samples, uint32_t width,
                               uint32_t height, BayerPhase phase) {
    std::vector<uint32_t> out(size_t{width} * height * 3);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            uint32_t sum[3] = {0, 0, 0};
            uint32_t count[3] = {0, 0, 0};
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const int64_t nx = int64_t{x} + dx;
                    const int64_t ny = int64_t{y} + dy;
                    if ((dx == 0 && dy == 0) || nx < 0 || ny < 0 || nx >= width || ny >= height) {
                        continue;
                    }
                    const Colour c = ColourAt(phase, uint32_t(nx), uint32_t(ny));
                    sum[c] += samples[size_t(ny) * width + size_t(nx)];
                    ++count[c];
                }
            }
            const Colour own = ColourAt(phase, x, y);
            for (int c = 0; c < 3; ++c) {
                const uint32_t value =
                    c == own ? samples[size_t{y} * width + x] : sum[c] / count[c];
                out[(size_t{y} * width + x) * 3 + c] = value;
            }
        }
    }
    return out;
}

Bgr YuvInteger(int y, int u, int v) {
    const int ys = y - 16;
    const int us = u - 128;
    const int vs = v - 128;
    return {ClampByte((298 * ys + 516 * us + 128) >> 8),
            ClampByte((298 * ys - 100 * us - 208 * vs + 128) >> 8),
            ClampByte((298 * ys + 409 * vs + 128) >> 8)};
}

Bgr YuvFloating(int y, int u, int v) {
    const float fy = static_cast<float>(y);
    const float fu = static_cast<float>(u) - 128.0f;
    const float fv = static_cast<float>(v) - 128.0f;
    const float r = fy + 1.402f * fv;
    const float g = fy - (0.714f * fv + 0.344f * fu);
    const float b = fy + 1.772f * fu;
    return {FloatToByte(b), FloatToByte(g), FloatToByte(r)};
}

std::vector<uint8_t> YuvGroupsInteger(const std::vector<uint8_t>& src, uint32_t groupBytes,
                                      uint32_t uOffset, uint32_t vOffset,
                                      const std::vector<uint32_t>& lumaOffsets) {
    std::vector<uint8_t> out;
    for (size_t start = 0; start < src.size(); start += groupBytes) {
        const int u = int(ByteOrZero(src, start + uOffset));
        const int v = int(ByteOrZero(src, start + vOffset));
        for (uint32_t offset : lumaOffsets) {
            const Bgr px = YuvInteger(int(ByteOrZero(src, start + offset)), u, v);
            out.insert(out.end(), {uint8_t(px.b), uint8_t(px.g), uint8_t(px.r)});
        }
    }
    return out;
}

std::vector<uint8_t> Yuv422Floating(const std::vector<uint8_t>& src, uint32_t pixels, bool uyvy) {
    std::vector<uint8_t> out;
    if (pixels == 0) {
        return out;
    }
    const uint32_t groups = ((pixels - 1) >> 1) + 1;
    for (uint32_t g = 0; g < groups; ++g) {
        const uint8_t* p = &src[size_t{g} * 4];
        const int u = uyvy ? p[0] : p[1];
        const int v = uyvy ? p[2] : p[3];
        for (int y : {uyvy ? p[1] : p[0], uyvy ? p[3] : p[2]}) {
            const Bgr px = YuvFloating(y, u, v);
            out.insert(out.end(), {uint8_t(px.b), uint8_t(px.g), uint8_t(px.r)});
        }
    }
    return out;
}

std::vector<uint8_t> SwapRgb(const std::vector<uint8_t>& src) {
    std::vector<uint8_t> out;
    out.reserve(src.size());
    for (size_t i = 0; i + 2 < src.size(); i += 3) {
        out.insert(out.end(), {src[i + 2], src[i + 1], src[i]});
    }
    return out;
}

std::vector<uint8_t> Rgb12Packed(const std::vector<uint8_t>& src) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 5 < src.size(); i += 6) {
        auto sample = [&](size_t k) {
            return uint32_t(src[i + 2 * k] | (src[i + 2 * k + 1] << 8));
        };
        for (size_t k : {2, 1, 0}) {
            out.push_back(uint8_t((sample(k) >> 4) & 0xFF));
        }
    }
    return out;
}

std::vector<uint8_t> Bgr10V2Packed(const std::vector<uint8_t>& src) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i + 3 < src.size(); i += 4) {
        const uint32_t word = uint32_t(src[i]) | uint32_t(src[i + 1]) << 8 |
                              uint32_t(src[i + 2]) << 16 | uint32_t(src[i + 3]) << 24;
        const uint32_t field0 = word & 0x3FF, field1 = (word >> 10) & 0x3FF,
                       field2 = (word >> 20) & 0x3FF;
        out.insert(out.end(), {uint8_t(field2 >> 2), uint8_t(field1 >> 2), uint8_t(field0 >> 2)});
    }
    return out;
}

std::vector<uint8_t> Mono8(const std::vector<uint8_t>& src) {
    std::vector<uint8_t> out;
    out.reserve(src.size() * 3);
    for (uint8_t v : src) {
        out.insert(out.end(), {v, v, v});
    }
    return out;
}

std::vector<uint8_t> Mono16(const std::vector<uint8_t>& src, int shift) {
    std::vector<uint8_t> out;
    if (src.empty()) {
        return out;
    }
    const size_t samples = ((src.size() - 1) >> 1) + 1;
    out.reserve(samples * 3);
    for (size_t i = 0; i < samples; ++i) {
        const uint32_t sample = ByteOrZero(src, 2 * i) | (ByteOrZero(src, 2 * i + 1) << 8);
        const uint8_t v = uint8_t((sample >> shift) & 0xFF);
        out.insert(out.end(), {v, v, v});
    }
    return out;
}

std::vector<uint8_t> MonoPackedHighBytes(const std::vector<uint8_t>& src, int repeat) {
    std::vector<uint8_t> out;
    if (src.empty()) {
        return out;
    }
    const size_t groups = (src.size() - 1) / 3 + 1;
    for (size_t g = 0; g < groups; ++g) {
        out.insert(out.end(), size_t(repeat), uint8_t(ByteOrZero(src, 3 * g)));
        out.insert(out.end(), size_t(repeat), uint8_t(ByteOrZero(src, 3 * g + 2)));
    }
    return out;
}

std::vector<uint16_t> UnpackMono(const std::vector<uint8_t>& src, uint64_t pixels, int lowBits) {
    std::vector<uint16_t> out;
    const uint32_t lowMask = (1u << lowBits) - 1;
    for (uint64_t p = 0; p < pixels; ++p) {
        const size_t g = size_t(p / 2) * 3;
        const bool second = p % 2 == 1;
        const uint32_t high = second ? src[g + 2] : src[g];
        const uint32_t low = second ? (src[g + 1] >> 4) & lowMask : src[g + 1] & lowMask;
        out.push_back(uint16_t((high << lowBits) | low));
    }
    return out;
}

}  // namespace RYSDK::imageproc::oracle

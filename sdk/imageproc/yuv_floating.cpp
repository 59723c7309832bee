// Full-range conversion in single precision. The file is built without floating
// contraction so that the scalar and vector paths round every product and sum alike.
#include "imageproc/yuv_avx2.h"
#include "imageproc/yuv_convert.h"

namespace RYSDK::imageproc {

namespace {

inline uint8_t ClampTruncate(float value) {
    const float low = value < 0.0f ? 0.0f : value;
    const float clamped = low > 255.0f ? 255.0f : low;
    return static_cast<uint8_t>(static_cast<int>(clamped));
}

inline void StoreFloatingPixel(int y, int u, int v, uint8_t* out) {
    const float fy = static_cast<float>(y);
    const float fu = static_cast<float>(u) - 128.0f;
    const float fv = static_cast<float>(v) - 128.0f;
    const float r = fy + 1.402f * fv;
    const float g = fy - (0.714f * fv + 0.344f * fu);
    const float b = fy + 1.772f * fu;
    out[0] = ClampTruncate(b);
    out[1] = ClampTruncate(g);
    out[2] = ClampTruncate(r);
}

}  // namespace

void Yuv422Floating(const uint8_t* src, uint64_t pixels, uint8_t* dst, bool uyvy, SimdLevel level) {
    if (src == nullptr || dst == nullptr || pixels == 0) {
        return;
    }
    const size_t groups = ((pixels - 1) >> 1) + 1;
    size_t done = 0;
    if (UsableSimdLevel(level) == SimdLevel::Avx2) {
        done = uyvy ? avx2::Yuv422FloatingUyvy(src, groups, dst)
                    : avx2::Yuv422FloatingYuyv(src, groups, dst);
    }
    const int u = uyvy ? 0 : 1, y0 = uyvy ? 1 : 0, v = uyvy ? 2 : 3, y1 = uyvy ? 3 : 2;
    for (size_t i = done; i < groups; ++i) {
        const uint8_t* group = src + i * 4;
        uint8_t* out = dst + i * 6;
        StoreFloatingPixel(group[y0], group[u], group[v], out);
        StoreFloatingPixel(group[y1], group[u], group[v], out + 3);
    }
}

}  // namespace RYSDK::imageproc

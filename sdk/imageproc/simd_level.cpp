#include "imageproc/simd_level.h"

namespace RYSDK::imageproc {

namespace {

SimdLevel DetectSimdLevel() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2")) {
        return SimdLevel::Avx2;
    }
#endif
    return SimdLevel::Scalar;
}

}  // namespace

SimdLevel BestSimdLevel() {
    // Asked once; the answer cannot change while the process runs.
    static const SimdLevel detected = DetectSimdLevel();
    return detected;
}

SimdLevel UsableSimdLevel(SimdLevel wanted) {
    return wanted == SimdLevel::Avx2 ? BestSimdLevel() : SimdLevel::Scalar;
}

}  // namespace RYSDK::imageproc

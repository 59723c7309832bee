// Which vector instruction set the conversion kernels may use. The library is built for the
// baseline x86-64; the AVX2 kernels carry their own target attribute and are only reached
// after the processor has been asked at run time.
#pragma once

namespace RYSDK::imageproc {

enum class SimdLevel { Scalar, Avx2 };

// The best level this processor supports.
SimdLevel BestSimdLevel();

// `wanted`, lowered to what the processor supports, so tests can force the scalar path.
SimdLevel UsableSimdLevel(SimdLevel wanted);

}  // namespace RYSDK::imageproc

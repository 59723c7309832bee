// RyImageProcess Bayer members: each picks the phase and sample handling of its name and
// runs with the best vector level of this processor.
#include "imageproc/bayer_demosaic.h"
#include "rysdk/RyImageProcess.h"

namespace RYSDK {

using imageproc::BayerPhase;
using imageproc::BestSimdLevel;

#define RY_BAYER_BYTES(name, phase)                                                                \
    void RyImageProcess::name(const uint8_t* src, uint8_t* dst, uint32_t width, uint32_t height) { \
        imageproc::DemosaicBytes(src, dst, width, height, BayerPhase::phase, BestSimdLevel());     \
    }

#define RY_BAYER_REDUCED(name, shift, phase)                                          \
    void RyImageProcess::name(const uint16_t* src, uint8_t* dst, uint32_t width,      \
                              uint32_t height) {                                      \
        imageproc::DemosaicReduced(src, dst, width, height, shift, BayerPhase::phase, \
                                   BestSimdLevel());                                  \
    }

#define RY_BAYER_WORDS(name, phase)                                                            \
    void RyImageProcess::name(const uint16_t* src, uint16_t* dst, uint32_t width,              \
                              uint32_t height) {                                               \
        imageproc::DemosaicWords(src, dst, width, height, BayerPhase::phase, BestSimdLevel()); \
    }

RY_BAYER_BYTES(ConvertBAYGB8ToBGR8, GB)
RY_BAYER_BYTES(ConvertBAYRG8ToBGR8, RG)
RY_BAYER_BYTES(ConvertBAYGR8ToBGR8, GR)
RY_BAYER_REDUCED(ConvertBAYGB10ToBGR8, 2, GB)
RY_BAYER_REDUCED(ConvertBAYRG10ToBGR8, 2, RG)
RY_BAYER_REDUCED(ConvertBAYGR10ToBGR8, 2, GR)
RY_BAYER_WORDS(ConvertBAYGB10ToBGR10, GB)
RY_BAYER_WORDS(ConvertBAYRG10ToBGR10, RG)
RY_BAYER_WORDS(ConvertBAYGR10ToBGR10, GR)
RY_BAYER_REDUCED(ConvertBAYGB12ToBGR8, 4, GB)
RY_BAYER_REDUCED(ConvertBAYRG12ToBGR8, 4, RG)
RY_BAYER_REDUCED(ConvertBAYGR12ToBGR8, 4, GR)

}  // namespace RYSDK

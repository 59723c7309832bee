// RyImageProcess Bayer members: each picks the phase and sample handling of its name and
// runs with the best vector level of this processor.
#include "imageproc/bayer_demosaic.h"
#include "rysdk/RyImageProcess.h"

namespace RYSDK {

using imageproc::BayerPhase;
using imageproc::BestSimdLevel;

void RyImageProcess::ConvertBAYGB8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                         uint32_t height) {
    imageproc::DemosaicBytes(src, dst, width, height, BayerPhase::GB, BestSimdLevel());
}

void RyImageProcess::ConvertBAYRG8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                         uint32_t height) {
    imageproc::DemosaicBytes(src, dst, width, height, BayerPhase::RG, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGR8ToBGR8(const uint8_t* src, uint8_t* dst, uint32_t width,
                                         uint32_t height) {
    imageproc::DemosaicBytes(src, dst, width, height, BayerPhase::GR, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGB10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 2, BayerPhase::GB, BestSimdLevel());
}

void RyImageProcess::ConvertBAYRG10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 2, BayerPhase::RG, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGR10ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 2, BayerPhase::GR, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGB10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                           uint32_t height) {
    imageproc::DemosaicWords(src, dst, width, height, BayerPhase::GB, BestSimdLevel());
}

void RyImageProcess::ConvertBAYRG10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                           uint32_t height) {
    imageproc::DemosaicWords(src, dst, width, height, BayerPhase::RG, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGR10ToBGR10(const uint16_t* src, uint16_t* dst, uint32_t width,
                                           uint32_t height) {
    imageproc::DemosaicWords(src, dst, width, height, BayerPhase::GR, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGB12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 4, BayerPhase::GB, BestSimdLevel());
}

void RyImageProcess::ConvertBAYRG12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 4, BayerPhase::RG, BestSimdLevel());
}

void RyImageProcess::ConvertBAYGR12ToBGR8(const uint16_t* src, uint8_t* dst, uint32_t width,
                                          uint32_t height) {
    imageproc::DemosaicReduced(src, dst, width, height, 4, BayerPhase::GR, BestSimdLevel());
}

}  // namespace RYSDK

// Flat functions of acquisition: the buffer pool, starting and stopping, frame delivery and
// the stream's counters.
#include "system/flat_forward.h"

using RYSDK::RyCamera;
using RYSDK::flat::As;
using RYSDK::flat::Enum;
using RYSDK::flat::OnCamera;

RY_FLAT_FORWARD(Camera, CameraChangeBufferFormat,
                (RYCAMERA_HANDLE handle, uint32_t count, uint32_t width, uint32_t height,
                 PIXEL_FORMAT format),
                ChangeBufferFormat(count, width, height, Enum<RYSDK::PIXEL_FORMAT>(format)))

extern "C" RYSDK_API ::RESULT CameraGetBufferInfo(RYCAMERA_HANDLE handle, uint32_t* count,
                                                  uint32_t* width, uint32_t* height,
                                                  PIXEL_FORMAT* format) {
    RY_FLAT_SITE(CameraGetBufferInfo);
    return OnCamera(handle, kSite, [&](RyCamera& camera) {
        if (count == nullptr || width == nullptr || height == nullptr || format == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        return camera.GetBufferInfo(*count, *width, *height, *As<RYSDK::PIXEL_FORMAT>(format));
    });
}

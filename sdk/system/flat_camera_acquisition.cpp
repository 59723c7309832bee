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

RY_FLAT_FORWARD(Camera, CameraGrab, (RYCAMERA_HANDLE handle), Grab())
RY_FLAT_FORWARD(Camera, CameraSnap, (RYCAMERA_HANDLE handle, uint32_t frames), Snap(frames))
RY_FLAT_FORWARD(Camera, CameraAbort, (RYCAMERA_HANDLE handle), Abort())
RY_FLAT_FORWARD_OUT(Camera, CameraGetGrabData, (RYCAMERA_HANDLE handle, IMAGE_INFO* image), image,
                    GetGrabData(As<RYSDK::IMAGE_INFO>(image)))
RY_FLAT_FORWARD_OUT(Camera, CameraGetGrabCondition, (RYCAMERA_HANDLE handle, int32_t* grabbing),
                    grabbing, GetGrabCondition(*grabbing))
RY_FLAT_FORWARD(Camera, CameraSetAcquisitionTimeOut, (RYCAMERA_HANDLE handle, uint32_t timeoutMs),
                SetAcquisitionTimeOut(timeoutMs))
RY_FLAT_FORWARD(Camera, CameraGetAcquisitionTimeOut, (RYCAMERA_HANDLE handle, uint32_t* timeoutMs),
                GetAcquisitionTimeOut(timeoutMs))
RY_FLAT_FORWARD_OUT(Camera, CameraGetStreamInfo,
                    (RYCAMERA_HANDLE handle, STREAM_INFO item, uint32_t* value), value,
                    GetStreamInfo(Enum<RYSDK::STREAM_INFO>(item), *value))
RY_FLAT_FORWARD(Camera, CameraUseIndependentCallback, (RYCAMERA_HANDLE handle, int32_t on),
                UseIndependentCallback(on))
RY_FLAT_FORWARD(Camera, CameraSetImageCallback, (RYCAMERA_HANDLE handle, pImageCallbackFn callback),
                SetImageCallback(RYSDK::flat::Callback(callback)))
RY_FLAT_FORWARD(Camera, CameraGetFrameCapacity, (RYCAMERA_HANDLE handle, uint32_t* frames),
                GetFrameCapacity(frames))

/** \file
 * The camera functions of the flat C interface; include rysdk_c.h rather than this file.
 * Each takes the camera handle first and gives RESULT_ERROR_INVALID_PARAMETER for a handle
 * that is null or no longer open. */
#ifndef RYSDK_C_CAMERA_H
#define RYSDK_C_CAMERA_H

#include <stddef.h>
#include <stdint.h>

#include "RyExport.h"
#include "rysdk_c_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Closes the camera and frees it: the handle is invalid afterwards, whatever the result. */
RYSDK_API RESULT CameraClose(RYCAMERA_HANDLE camera);
/** *adapter is owned by the SDK, valid until CloseRyGigE. */
RYSDK_API RESULT CameraGetInterfaceHandle(RYCAMERA_HANDLE camera, RYINTERFACE_HANDLE* adapter);

/* ---- Acquisition -------------------------------------------------------------------- */

/** Starts a continuous acquisition, one of `frames` frames, or stops it: see
 * RYSDK::RyCamera::Grab. */
/** @{ */
RYSDK_API RESULT CameraGrab(RYCAMERA_HANDLE camera);
RYSDK_API RESULT CameraSnap(RYCAMERA_HANDLE camera, uint32_t frames);
RYSDK_API RESULT CameraAbort(RYCAMERA_HANDLE camera);
/** @} */
/** The next frame when no image callback is set; image->pImage points into the camera's
 * buffer pool and stays valid until the grab thread queues the buffer again. */
RYSDK_API RESULT CameraGetGrabData(RYCAMERA_HANDLE camera, IMAGE_INFO* image);
/** 1 while an acquisition runs. Thread: any, an image callback included. */
RYSDK_API RESULT CameraGetGrabCondition(RYCAMERA_HANDLE camera, int32_t* grabbing);
/** Milliseconds the grab thread and CameraGetGrabData wait for a frame: see
 * RYSDK::RyCamera::SetAcquisitionTimeOut. */
/** @{ */
RYSDK_API RESULT CameraSetAcquisitionTimeOut(RYCAMERA_HANDLE camera, uint32_t timeoutMs);
RYSDK_API RESULT CameraGetAcquisitionTimeOut(RYCAMERA_HANDLE camera, uint32_t* timeoutMs);
/** @} */
/** Rebuilds the buffer pool for a new geometry: see RYSDK::RyCamera::ChangeBufferFormat. */
RYSDK_API RESULT CameraChangeBufferFormat(RYCAMERA_HANDLE camera, uint32_t count, uint32_t width,
                                          uint32_t height, PIXEL_FORMAT format);
/** The pool's buffer count, then the camera's live width, height and pixel format. */
RYSDK_API RESULT CameraGetBufferInfo(RYCAMERA_HANDLE camera, uint32_t* count, uint32_t* width,
                                     uint32_t* height, PIXEL_FORMAT* format);
/** One stream counter (see STREAM_INFO), counted since the camera was opened. */
RYSDK_API RESULT CameraGetStreamInfo(RYCAMERA_HANDLE camera, STREAM_INFO item, uint32_t* value);
/** On: frames reach the image callback on a callback thread of their own; see
 * RYSDK::RyCamera::UseIndependentCallback. */
RYSDK_API RESULT CameraUseIndependentCallback(RYCAMERA_HANDLE camera, int32_t on);
/** Set before CameraGrab or CameraSnap; null hands frames to CameraGetGrabData instead. */
RYSDK_API RESULT CameraSetImageCallback(RYCAMERA_HANDLE camera, pImageCallbackFn callback);

/* ---- Standard features -------------------------------------------------------------- */

/** Standard features: each function calls the RYSDK::RyCamera member of the same name
 * (without "Camera"; CameraGetPixelSizeLineup and its count call GetPixelSizeType and
 * GetPixelSizeTypeNum), with its rules and results. */
/** @{ */
RYSDK_API RESULT CameraGetWidth(RYCAMERA_HANDLE camera, uint32_t* width);
RYSDK_API RESULT CameraGetHeight(RYCAMERA_HANDLE camera, uint32_t* height);
RYSDK_API RESULT CameraSetWidth(RYCAMERA_HANDLE camera, uint32_t width);
RYSDK_API RESULT CameraSetHeight(RYCAMERA_HANDLE camera, uint32_t height);
RYSDK_API RESULT CameraSetPixelFormat(RYCAMERA_HANDLE camera, PIXEL_FORMAT format);
RYSDK_API RESULT CameraGetPixelFormat(RYCAMERA_HANDLE camera, PIXEL_FORMAT* format);
RYSDK_API RESULT CameraGetPixelFormatLineup(RYCAMERA_HANDLE camera, uint32_t index,
                                            PIXEL_FORMAT* format);
RYSDK_API RESULT CameraGetPixelFormatLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraSetTriggerMode(RYCAMERA_HANDLE camera, int32_t mode);
RYSDK_API RESULT CameraGetTriggerMode(RYCAMERA_HANDLE camera, int32_t* mode);
RYSDK_API RESULT CameraGetTriggerModeLineup(RYCAMERA_HANDLE camera, uint32_t index, uint32_t* mode);
RYSDK_API RESULT CameraGetTriggerModeLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraSetTriggerSource(RYCAMERA_HANDLE camera, TRIGGER_SOURCE source);
RYSDK_API RESULT CameraGetTriggerSource(RYCAMERA_HANDLE camera, TRIGGER_SOURCE* source);
RYSDK_API RESULT CameraGetTriggerSourceLineup(RYCAMERA_HANDLE camera, uint32_t index,
                                              TRIGGER_SOURCE* source);
RYSDK_API RESULT CameraGetTriggerSourceLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraSetTriggerSoftware(RYCAMERA_HANDLE camera);
RYSDK_API RESULT CameraSetTriggerActivation(RYCAMERA_HANDLE camera, TRIGGER_ACTIVATION activation);
RYSDK_API RESULT CameraSetBinningHorizontal(RYCAMERA_HANDLE camera, uint32_t binning);
RYSDK_API RESULT CameraGetBinningHorizontal(RYCAMERA_HANDLE camera, uint32_t* binning);
RYSDK_API RESULT CameraGetBinningHorizontalLineup(RYCAMERA_HANDLE camera, uint32_t index,
                                                  uint32_t* binning);
RYSDK_API RESULT CameraGetBinningHorizontalLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraSetBinningVertical(RYCAMERA_HANDLE camera, uint32_t binning);
RYSDK_API RESULT CameraGetBinningVertical(RYCAMERA_HANDLE camera, uint32_t* binning);
RYSDK_API RESULT CameraGetBinningVerticalLineup(RYCAMERA_HANDLE camera, uint32_t index,
                                                uint32_t* binning);
RYSDK_API RESULT CameraGetBinningVerticalLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraGetBinningFactor(RYCAMERA_HANDLE camera, uint32_t* factor);
RYSDK_API RESULT CameraSetBinningFactor(RYCAMERA_HANDLE camera, uint32_t factor);
RYSDK_API RESULT CameraGetFrameCapacity(RYCAMERA_HANDLE camera, uint32_t* frames);
RYSDK_API RESULT CameraSetStreamHold(RYCAMERA_HANDLE camera, uint32_t hold);
RYSDK_API RESULT CameraGetStreamHold(RYCAMERA_HANDLE camera, uint32_t* hold);
RYSDK_API RESULT CameraSetSCPSPacketSize(RYCAMERA_HANDLE camera, uint32_t size);
RYSDK_API RESULT CameraGetSCPSPacketSize(RYCAMERA_HANDLE camera, uint32_t* size);
RYSDK_API RESULT CameraSetTestImage(RYCAMERA_HANDLE camera, TESTIMAGE image);
RYSDK_API RESULT CameraGetTestImage(RYCAMERA_HANDLE camera, TESTIMAGE* image);
RYSDK_API RESULT CameraGetTestImageLineup(RYCAMERA_HANDLE camera, uint32_t index, TESTIMAGE* image);
RYSDK_API RESULT CameraGetTestImageLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraSetPixelSize(RYCAMERA_HANDLE camera, uint32_t bits);
RYSDK_API RESULT CameraGetPixelSize(RYCAMERA_HANDLE camera, uint32_t* bits);
RYSDK_API RESULT CameraGetPixelSizeLineupNum(RYCAMERA_HANDLE camera, uint32_t* count);
RYSDK_API RESULT CameraGetPixelSizeLineup(RYCAMERA_HANDLE camera, uint32_t index, uint32_t* bits);
RYSDK_API RESULT CameraSetReadoutMode(RYCAMERA_HANDLE camera, READOUT mode);
RYSDK_API RESULT CameraGetExposureMode(RYCAMERA_HANDLE camera, EXPOSURE_MODE* mode);
RYSDK_API RESULT CameraSetExposureMode(RYCAMERA_HANDLE camera, EXPOSURE_MODE mode);
RYSDK_API RESULT CameraGetExposureTime(RYCAMERA_HANDLE camera, uint32_t* time);
RYSDK_API RESULT CameraSetExposureTime(RYCAMERA_HANDLE camera, uint32_t time);
RYSDK_API RESULT CameraGetGain(RYCAMERA_HANDLE camera, GAIN_SEL* selector, float* gain);
RYSDK_API RESULT CameraSetGain(RYCAMERA_HANDLE camera, GAIN_SEL selector, float gain);
RYSDK_API RESULT CameraSetHorizontalStart(RYCAMERA_HANDLE camera, uint32_t value);
RYSDK_API RESULT CameraGetHorizontalStart(RYCAMERA_HANDLE camera, uint32_t* value);
RYSDK_API RESULT CameraSetHorizontalEnd(RYCAMERA_HANDLE camera, uint32_t value);
RYSDK_API RESULT CameraGetHorizontalEnd(RYCAMERA_HANDLE camera, uint32_t* value);
RYSDK_API RESULT CameraSetVerticalStart(RYCAMERA_HANDLE camera, uint32_t value);
RYSDK_API RESULT CameraGetVerticalStart(RYCAMERA_HANDLE camera, uint32_t* value);
RYSDK_API RESULT CameraSetVerticalEnd(RYCAMERA_HANDLE camera, uint32_t value);
RYSDK_API RESULT CameraGetVerticalEnd(RYCAMERA_HANDLE camera, uint32_t* value);
RYSDK_API RESULT CameraSetBlackLevel(RYCAMERA_HANDLE camera, BLACKLEVEL_SEL selector,
                                     uint32_t level);
RYSDK_API RESULT CameraSetReverseX(RYCAMERA_HANDLE camera, int32_t reverse);
RYSDK_API RESULT CameraSetStrobeOffset(RYCAMERA_HANDLE camera, uint32_t offset);
RYSDK_API RESULT CameraSetStrobePolarity(RYCAMERA_HANDLE camera, STROBE_POLARITY polarity);
/** @} */
/** Texts of the camera at `index` on this camera's interface, as discovery found them;
 * *size: in, the buffer's capacity; out, the text's length with its terminating zero. */
/** @{ */
RYSDK_API RESULT CameraGetDeviceModelName(RYCAMERA_HANDLE camera, uint32_t index, char* name,
                                          size_t* size);
RYSDK_API RESULT CameraGetDeviceVersion(RYCAMERA_HANDLE camera, uint32_t index, char* version,
                                        size_t* size);
RYSDK_API RESULT CameraGetDeviceVendorName(RYCAMERA_HANDLE camera, uint32_t index, char* vendor,
                                           size_t* size);
RYSDK_API RESULT CameraGetDeviceID(RYCAMERA_HANDLE camera, uint32_t index, char* id, size_t* size);
/** @} */

/* ---- Network settings and identity -------------------------------------------------- */

/** The camera's network configuration and identity: each function calls the RYSDK::RyCamera
 * member of the same name (without "Camera"). */
/** @{ */
RYSDK_API RESULT CameraGigESetCurrentIpConfigurationDHCP(RYCAMERA_HANDLE camera, int32_t enabled);
RYSDK_API RESULT CameraGigESetCurrentIpConfigurationPersistentIP(RYCAMERA_HANDLE camera,
                                                                 int32_t enabled);
RYSDK_API RESULT CameraGigEGetCurrentIpConfigurationDHCP(RYCAMERA_HANDLE camera, int32_t* enabled);
RYSDK_API RESULT CameraGigEGetCurrentIpConfigurationPersistentIP(RYCAMERA_HANDLE camera,
                                                                 int32_t* enabled);
RYSDK_API RESULT CameraGigEGetPersistentSubnetMask(RYCAMERA_HANDLE camera, uint32_t* mask);
RYSDK_API RESULT CameraGigEGetCurrentMACAddress(RYCAMERA_HANDLE camera, char* mac, size_t* size);
RYSDK_API RESULT CameraGigEGetColorRGBGain(RYCAMERA_HANDLE camera, int32_t channel, double* gain);
RYSDK_API RESULT CameraGigESetColorRGBGain(RYCAMERA_HANDLE camera, int32_t channel, double gain);
RYSDK_API RESULT CameraGigEGetTemperature(RYCAMERA_HANDLE camera, double* temperature);
RYSDK_API RESULT CameraGigEGetSerialNumber(RYCAMERA_HANDLE camera, char* serial, size_t* size);
/** @} */

/* ---- Generic access, registers, files, events --------------------------------------- */

/** Any feature by its GenICam name, the value as text; clamp (non-zero) clamps an integer
 * into the feature's range. */
RYSDK_API RESULT CameraSetCustomCommand(RYCAMERA_HANDLE camera, const char* feature,
                                        const char* value, uint64_t size, int32_t flag,
                                        int32_t clamp);
/** *size: in, the capacity of value; out, the answer's length plus one. With a null value
 * (or too small a buffer) only the size is given, with RESULT_ERROR_INVALID_PARAMETER. */
RYSDK_API RESULT CameraGetCustomCommand(RYCAMERA_HANDLE camera, const char* feature, char* value,
                                        uint64_t* size, GET_CUSTOM_COMMAND what);
/** The property list: its length, then one record by feature name or by position; see
 * RYSDK::RyCamera::GetPropertyCount. */
/** @{ */
RYSDK_API RESULT CameraGetPropertyCount(RYCAMERA_HANDLE camera, int32_t* count);
RYSDK_API RESULT CameraGetPropertyInfo(RYCAMERA_HANDLE camera, const char* name,
                                       PROPERTY_INFO* property);
RYSDK_API RESULT CameraGetPropertyInfoUsingIndex(RYCAMERA_HANDLE camera, int32_t index,
                                                 PROPERTY_INFO* property);
/** @} */
/** Raw register access; *size: in, the bytes asked; out, the bytes done. */
/** @{ */
RYSDK_API RESULT CameraReadData(RYCAMERA_HANDLE camera, void* buffer, int64_t address,
                                int64_t* size);
RYSDK_API RESULT CameraWriteData(RYCAMERA_HANDLE camera, void* buffer, int64_t address,
                                 uint64_t* size);
/** @} */
/** Files stored on the camera, read and written whole; *size: in, the bytes to read. */
/** @{ */
RYSDK_API RESULT CameraReadFileStream(RYCAMERA_HANDLE camera, const char* fileName, uint8_t* buffer,
                                      uint64_t* size);
RYSDK_API RESULT CameraWriteFileStream(RYCAMERA_HANDLE camera, const char* fileName,
                                       const uint8_t* data, uint64_t size);
/** @} */
/** Routes the camera event `eventId` to the callback; context comes back in EVENT_DATA. */
RYSDK_API RESULT CameraSetEventControl(RYCAMERA_HANDLE camera, uint32_t eventId,
                                       const char* eventName, uint64_t eventNameLength,
                                       pEventCallbackFn callback, void* context);
/** Heartbeats that must fail in a row before the camera is reported lost. */
/** @{ */
RYSDK_API RESULT CameraSetHeartBeatTimeoutTryCount(RYCAMERA_HANDLE camera, int32_t count);
RYSDK_API RESULT CameraGetHeartBeatTimeoutTryCount(RYCAMERA_HANDLE camera, int32_t* count);
/** @} */

/* ---- Serial command channel --------------------------------------------------------- */

/** The answer line goes to answer, its length to *size. */
RYSDK_API RESULT CameraGetUARTCustomCommand(RYCAMERA_HANDLE camera, const char* command,
                                            char* answer, size_t* size);
/** Any command line through the serial channel, its answer discarded. */
RYSDK_API RESULT CameraSetUARTCustomCommand(RYCAMERA_HANDLE camera, const char* command);

#ifdef __cplusplus
}
#endif

#endif /* RYSDK_C_CAMERA_H */

// Flat functions of the camera's standard features: each checks its handle and calls the
// RyCamera accessor of the same name (the pixel size lineup is the method's PixelSizeType).
#include "system/flat_forward.h"

using RYSDK::flat::As;
using RYSDK::flat::Enum;

RY_FLAT_FORWARD(Camera, CameraGetWidth, (RYCAMERA_HANDLE handle, uint32_t* width), GetWidth(width))
RY_FLAT_FORWARD(Camera, CameraGetHeight, (RYCAMERA_HANDLE handle, uint32_t* height),
                GetHeight(height))
RY_FLAT_FORWARD(Camera, CameraSetWidth, (RYCAMERA_HANDLE handle, uint32_t width), SetWidth(width))
RY_FLAT_FORWARD(Camera, CameraSetHeight, (RYCAMERA_HANDLE handle, uint32_t height),
                SetHeight(height))
RY_FLAT_FORWARD(Camera, CameraSetPixelFormat, (RYCAMERA_HANDLE handle, PIXEL_FORMAT format),
                SetPixelFormat(Enum<RYSDK::PIXEL_FORMAT>(format)))
RY_FLAT_FORWARD(Camera, CameraGetPixelFormat, (RYCAMERA_HANDLE handle, PIXEL_FORMAT* format),
                GetPixelFormat(As<RYSDK::PIXEL_FORMAT>(format)))
RY_FLAT_FORWARD(Camera, CameraGetPixelFormatLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, PIXEL_FORMAT* format),
                GetPixelFormatLineup(index, As<RYSDK::PIXEL_FORMAT>(format)))
RY_FLAT_FORWARD(Camera, CameraGetPixelFormatLineupNum, (RYCAMERA_HANDLE handle, uint32_t* count),
                GetPixelFormatLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraSetTriggerMode, (RYCAMERA_HANDLE handle, int32_t mode),
                SetTriggerMode(mode))
RY_FLAT_FORWARD(Camera, CameraGetTriggerMode, (RYCAMERA_HANDLE handle, int32_t* mode),
                GetTriggerMode(mode))
RY_FLAT_FORWARD(Camera, CameraGetTriggerModeLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, uint32_t* mode),
                GetTriggerModeLineup(index, mode))
RY_FLAT_FORWARD(Camera, CameraGetTriggerModeLineupNum, (RYCAMERA_HANDLE handle, uint32_t* count),
                GetTriggerModeLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraSetTriggerSource, (RYCAMERA_HANDLE handle, TRIGGER_SOURCE source),
                SetTriggerSource(Enum<RYSDK::TRIGGER_SOURCE>(source)))
RY_FLAT_FORWARD(Camera, CameraGetTriggerSource, (RYCAMERA_HANDLE handle, TRIGGER_SOURCE* source),
                GetTriggerSource(As<RYSDK::TRIGGER_SOURCE>(source)))
RY_FLAT_FORWARD(Camera, CameraGetTriggerSourceLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, TRIGGER_SOURCE* source),
                GetTriggerSourceLineup(index, As<RYSDK::TRIGGER_SOURCE>(source)))
RY_FLAT_FORWARD(Camera, CameraGetTriggerSourceLineupNum, (RYCAMERA_HANDLE handle, uint32_t* count),
                GetTriggerSourceLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraSetTriggerSoftware, (RYCAMERA_HANDLE handle), SetTriggerSoftware())
RY_FLAT_FORWARD(Camera, CameraSetTriggerActivation,
                (RYCAMERA_HANDLE handle, TRIGGER_ACTIVATION activation),
                SetTriggerActivation(Enum<RYSDK::TRIGGER_ACTIVATION>(activation)))
RY_FLAT_FORWARD(Camera, CameraSetBinningHorizontal, (RYCAMERA_HANDLE handle, uint32_t binning),
                SetBinningHorizontal(binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningHorizontal, (RYCAMERA_HANDLE handle, uint32_t* binning),
                GetBinningHorizontal(binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningHorizontalLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, uint32_t* binning),
                GetBinningHorizontalLineup(index, binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningHorizontalLineupNum,
                (RYCAMERA_HANDLE handle, uint32_t* count), GetBinningHorizontalLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraSetBinningVertical, (RYCAMERA_HANDLE handle, uint32_t binning),
                SetBinningVertical(binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningVertical, (RYCAMERA_HANDLE handle, uint32_t* binning),
                GetBinningVertical(binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningVerticalLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, uint32_t* binning),
                GetBinningVerticalLineup(index, binning))
RY_FLAT_FORWARD(Camera, CameraGetBinningVerticalLineupNum,
                (RYCAMERA_HANDLE handle, uint32_t* count), GetBinningVerticalLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraGetBinningFactor, (RYCAMERA_HANDLE handle, uint32_t* factor),
                GetBinningFactor(factor))
RY_FLAT_FORWARD(Camera, CameraSetBinningFactor, (RYCAMERA_HANDLE handle, uint32_t factor),
                SetBinningFactor(factor))
RY_FLAT_FORWARD(Camera, CameraSetStreamHold, (RYCAMERA_HANDLE handle, uint32_t hold),
                SetStreamHold(hold))
RY_FLAT_FORWARD(Camera, CameraGetStreamHold, (RYCAMERA_HANDLE handle, uint32_t* hold),
                GetStreamHold(hold))
RY_FLAT_FORWARD(Camera, CameraSetSCPSPacketSize, (RYCAMERA_HANDLE handle, uint32_t size),
                SetSCPSPacketSize(size))
RY_FLAT_FORWARD(Camera, CameraGetSCPSPacketSize, (RYCAMERA_HANDLE handle, uint32_t* size),
                GetSCPSPacketSize(size))
RY_FLAT_FORWARD(Camera, CameraSetTestImage, (RYCAMERA_HANDLE handle, TESTIMAGE image),
                SetTestImage(Enum<RYSDK::TESTIMAGE>(image)))
RY_FLAT_FORWARD(Camera, CameraGetTestImage, (RYCAMERA_HANDLE handle, TESTIMAGE* image),
                GetTestImage(As<RYSDK::TESTIMAGE>(image)))
RY_FLAT_FORWARD(Camera, CameraGetTestImageLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, TESTIMAGE* image),
                GetTestImageLineup(index, As<RYSDK::TESTIMAGE>(image)))
RY_FLAT_FORWARD(Camera, CameraGetTestImageLineupNum, (RYCAMERA_HANDLE handle, uint32_t* count),
                GetTestImageLineupNum(count))
RY_FLAT_FORWARD(Camera, CameraSetPixelSize, (RYCAMERA_HANDLE handle, uint32_t bits),
                SetPixelSize(bits))
RY_FLAT_FORWARD(Camera, CameraGetPixelSize, (RYCAMERA_HANDLE handle, uint32_t* bits),
                GetPixelSize(bits))
RY_FLAT_FORWARD(Camera, CameraGetPixelSizeLineupNum, (RYCAMERA_HANDLE handle, uint32_t* count),
                GetPixelSizeTypeNum(count))
RY_FLAT_FORWARD(Camera, CameraGetPixelSizeLineup,
                (RYCAMERA_HANDLE handle, uint32_t index, uint32_t* bits),
                GetPixelSizeType(index, bits))
RY_FLAT_FORWARD(Camera, CameraSetReadoutMode, (RYCAMERA_HANDLE handle, READOUT mode),
                SetReadoutMode(Enum<RYSDK::READOUT>(mode)))
RY_FLAT_FORWARD(Camera, CameraGetExposureMode, (RYCAMERA_HANDLE handle, EXPOSURE_MODE* mode),
                GetExposureMode(As<RYSDK::EXPOSURE_MODE>(mode)))
RY_FLAT_FORWARD(Camera, CameraSetExposureMode, (RYCAMERA_HANDLE handle, EXPOSURE_MODE mode),
                SetExposureMode(Enum<RYSDK::EXPOSURE_MODE>(mode)))
RY_FLAT_FORWARD(Camera, CameraGetExposureTime, (RYCAMERA_HANDLE handle, uint32_t* time),
                GetExposureTime(time))
RY_FLAT_FORWARD(Camera, CameraSetExposureTime, (RYCAMERA_HANDLE handle, uint32_t time),
                SetExposureTime(time))
RY_FLAT_FORWARD(Camera, CameraGetGain, (RYCAMERA_HANDLE handle, GAIN_SEL* selector, float* gain),
                GetGain(As<RYSDK::GAIN_SEL>(selector), gain))
RY_FLAT_FORWARD(Camera, CameraSetGain, (RYCAMERA_HANDLE handle, GAIN_SEL selector, float gain),
                SetGain(Enum<RYSDK::GAIN_SEL>(selector), gain))
RY_FLAT_FORWARD(Camera, CameraSetHorizontalStart, (RYCAMERA_HANDLE handle, uint32_t value),
                SetHorizontalStart(value))
RY_FLAT_FORWARD(Camera, CameraGetHorizontalStart, (RYCAMERA_HANDLE handle, uint32_t* value),
                GetHorizontalStart(value))
RY_FLAT_FORWARD(Camera, CameraSetHorizontalEnd, (RYCAMERA_HANDLE handle, uint32_t value),
                SetHorizontalEnd(value))
RY_FLAT_FORWARD(Camera, CameraGetHorizontalEnd, (RYCAMERA_HANDLE handle, uint32_t* value),
                GetHorizontalEnd(value))
RY_FLAT_FORWARD(Camera, CameraSetVerticalStart, (RYCAMERA_HANDLE handle, uint32_t value),
                SetVerticalStart(value))
RY_FLAT_FORWARD(Camera, CameraGetVerticalStart, (RYCAMERA_HANDLE handle, uint32_t* value),
                GetVerticalStart(value))
RY_FLAT_FORWARD(Camera, CameraSetVerticalEnd, (RYCAMERA_HANDLE handle, uint32_t value),
                SetVerticalEnd(value))
RY_FLAT_FORWARD(Camera, CameraGetVerticalEnd, (RYCAMERA_HANDLE handle, uint32_t* value),
                GetVerticalEnd(value))
RY_FLAT_FORWARD(Camera, CameraSetBlackLevel,
                (RYCAMERA_HANDLE handle, BLACKLEVEL_SEL selector, uint32_t level),
                SetBlackLevel(Enum<RYSDK::BLACKLEVEL_SEL>(selector), level))
RY_FLAT_FORWARD(Camera, CameraSetReverseX, (RYCAMERA_HANDLE handle, int32_t reverse),
                SetReverseX(reverse))
RY_FLAT_FORWARD(Camera, CameraSetStrobeOffset, (RYCAMERA_HANDLE handle, uint32_t offset),
                SetStrobeOffset(offset))
RY_FLAT_FORWARD(Camera, CameraSetStrobePolarity, (RYCAMERA_HANDLE handle, STROBE_POLARITY polarity),
                SetStrobePolarity(Enum<RYSDK::STROBE_POLARITY>(polarity)))
RY_FLAT_FORWARD(Camera, CameraGetDeviceModelName,
                (RYCAMERA_HANDLE handle, uint32_t index, char* name, size_t* size),
                GetDeviceModelName(index, name, size))
RY_FLAT_FORWARD(Camera, CameraGetDeviceVersion,
                (RYCAMERA_HANDLE handle, uint32_t index, char* version, size_t* size),
                GetDeviceVersion(index, version, size))
RY_FLAT_FORWARD(Camera, CameraGetDeviceVendorName,
                (RYCAMERA_HANDLE handle, uint32_t index, char* vendor, size_t* size),
                GetDeviceVendorName(index, vendor, size))
RY_FLAT_FORWARD(Camera, CameraGetDeviceID,
                (RYCAMERA_HANDLE handle, uint32_t index, char* id, size_t* size),
                GetDeviceID(index, id, size))

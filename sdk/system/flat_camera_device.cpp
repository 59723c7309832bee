// Flat functions of the camera as a device: closing it, its interface, network settings and
// identity, generic feature access, registers, files, events and the serial channel.
#include "system/flat_forward.h"

using RYSDK::RyCamera;
using RYSDK::flat::As;
using RYSDK::flat::OnCamera;
using RYSDK::flat::ReadSwitch;

// Goes through the process-wide system object, which finds the camera among its interfaces.
// The camera is freed whatever the result, so its handle is forgotten first.
extern "C" RYSDK_API ::RESULT CameraClose(RYCAMERA_HANDLE handle) {
    RY_FLAT_SITE(CameraClose);
    return RY_GUARDED(kSite, [&] {
        RYSDK::RyGigE* system = RYSDK::flat::ProcessSystem();
        if (system == nullptr)
            return RYSDK::RESULT_ERROR_RYGIGE_INITIALIZATION;
        RyCamera* camera = RYSDK::flat::FindCamera(handle);
        if (camera == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        RYSDK::flat::ForgetCamera(camera);
        return system->CloseCamera(camera);
    });
}

extern "C" RYSDK_API ::RESULT CameraGetInterfaceHandle(RYCAMERA_HANDLE handle,
                                                       RYINTERFACE_HANDLE* adapter) {
    RY_FLAT_SITE(CameraGetInterfaceHandle);
    return OnCamera(handle, kSite, [&](RyCamera& camera) {
        if (adapter == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        RYSDK::RyInterface* owner = nullptr;
        const RYSDK::RESULT result = camera.GetRyInterface(&owner);
        if (result == RYSDK::RESULT_SUCCESS)
            *adapter = RYSDK::flat::ToHandle(owner);
        return result;
    });
}

extern "C" RYSDK_API ::RESULT CameraGigEGetCurrentIpConfigurationDHCP(RYCAMERA_HANDLE handle,
                                                                      int32_t* enabled) {
    RY_FLAT_SITE(CameraGigEGetCurrentIpConfigurationDHCP);
    return OnCamera(handle, kSite, [&](RyCamera& camera) {
        return ReadSwitch(
            enabled, [&](bool* value) { return camera.GigEGetCurrentIpConfigurationDHCP(value); });
    });
}

extern "C" RYSDK_API ::RESULT CameraGigEGetCurrentIpConfigurationPersistentIP(
    RYCAMERA_HANDLE handle, int32_t* enabled) {
    RY_FLAT_SITE(CameraGigEGetCurrentIpConfigurationPersistentIP);
    return OnCamera(handle, kSite, [&](RyCamera& camera) {
        return ReadSwitch(enabled, [&](bool* value) {
            return camera.GigEGetCurrentIpConfigurationPersistentIP(value);
        });
    });
}

RY_FLAT_FORWARD(Camera, CameraGigESetCurrentIpConfigurationDHCP,
                (RYCAMERA_HANDLE handle, int32_t enabled),
                GigESetCurrentIpConfigurationDHCP(enabled != 0))
RY_FLAT_FORWARD(Camera, CameraGigESetCurrentIpConfigurationPersistentIP,
                (RYCAMERA_HANDLE handle, int32_t enabled),
                GigESetCurrentIpConfigurationPersistentIP(enabled != 0))
RY_FLAT_FORWARD(Camera, CameraGigEGetPersistentSubnetMask, (RYCAMERA_HANDLE handle, uint32_t* mask),
                GigEGetPersistentSubnetMask(mask))
RY_FLAT_FORWARD(Camera, CameraGigEGetCurrentMACAddress,
                (RYCAMERA_HANDLE handle, char* mac, size_t* size),
                GigEGetCurrentMACAddress(mac, size))
RY_FLAT_FORWARD(Camera, CameraGigEGetColorRGBGain,
                (RYCAMERA_HANDLE handle, int32_t channel, double* gain),
                GigEGetColorRGBGain(channel, gain))
RY_FLAT_FORWARD(Camera, CameraGigESetColorRGBGain,
                (RYCAMERA_HANDLE handle, int32_t channel, double gain),
                GigESetColorRGBGain(channel, gain))
RY_FLAT_FORWARD(Camera, CameraGigEGetTemperature, (RYCAMERA_HANDLE handle, double* temperature),
                GigEGetTemperature(temperature))
RY_FLAT_FORWARD(Camera, CameraGigEGetSerialNumber,
                (RYCAMERA_HANDLE handle, char* serial, size_t* size),
                GigEGetSerialNumber(serial, size))

RY_FLAT_FORWARD(Camera, CameraSetCustomCommand,
                (RYCAMERA_HANDLE handle, const char* feature, const char* value, uint64_t size,
                 int32_t flag, int32_t clamp),
                SetCustomCommand(feature, value, size, flag, clamp))
RY_FLAT_FORWARD(Camera, CameraGetCustomCommand,
                (RYCAMERA_HANDLE handle, const char* feature, char* value, uint64_t* size,
                 GET_CUSTOM_COMMAND what),
                GetCustomCommand(feature, value, size, what))
RY_FLAT_FORWARD(Camera, CameraGetPropertyCount, (RYCAMERA_HANDLE handle, int32_t* count),
                GetPropertyCount(count))
RY_FLAT_FORWARD(Camera, CameraGetPropertyInfo,
                (RYCAMERA_HANDLE handle, const char* name, PROPERTY_INFO* property),
                GetPropertyInfo(name, As<RYSDK::_PROPERTY>(property)))
RY_FLAT_FORWARD(Camera, CameraGetPropertyInfoUsingIndex,
                (RYCAMERA_HANDLE handle, int32_t index, PROPERTY_INFO* property),
                GetPropertyInfo(index, As<RYSDK::_PROPERTY>(property)))
RY_FLAT_FORWARD(Camera, CameraReadData,
                (RYCAMERA_HANDLE handle, void* buffer, int64_t address, int64_t* size),
                ReadData(buffer, address, size))
RY_FLAT_FORWARD(Camera, CameraWriteData,
                (RYCAMERA_HANDLE handle, void* buffer, int64_t address, uint64_t* size),
                WriteData(buffer, address, size))
RY_FLAT_FORWARD_OUT(Camera, CameraReadFileStream,
                    (RYCAMERA_HANDLE handle, const char* fileName, uint8_t* buffer, uint64_t* size),
                    size, ReadFileStream(fileName, buffer, *size))
RY_FLAT_FORWARD(Camera, CameraWriteFileStream,
                (RYCAMERA_HANDLE handle, const char* fileName, const uint8_t* data, uint64_t size),
                WriteFileStream(fileName, data, size))
RY_FLAT_FORWARD(Camera, CameraSetEventControl,
                (RYCAMERA_HANDLE handle, uint32_t eventId, const char* eventName,
                 uint64_t eventNameLength, pEventCallbackFn callback, void* context),
                SetEventControlCallback(eventId, eventName, eventNameLength,
                                        RYSDK::flat::Callback(callback), context))
RY_FLAT_FORWARD(Camera, CameraSetHeartBeatTimeoutTryCount, (RYCAMERA_HANDLE handle, int32_t count),
                SetHeartBeatTimeoutTryCount(count))
RY_FLAT_FORWARD_OUT(Camera, CameraGetHeartBeatTimeoutTryCount,
                    (RYCAMERA_HANDLE handle, int32_t* count), count,
                    GetHeartBeatTimeoutTryCount(*count))

RY_FLAT_FORWARD(Camera, CameraGetUARTCustomCommand,
                (RYCAMERA_HANDLE handle, const char* command, char* answer, size_t* size),
                GetUARTCustomCommand(command, answer, size))
RY_FLAT_FORWARD(Camera, CameraSetUARTCustomCommand, (RYCAMERA_HANDLE handle, const char* command),
                SetUARTCustomCommand(command))

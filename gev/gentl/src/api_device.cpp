// The device module: information, heartbeat settings, events, multicast and its stream.
#include <cstdio>
#include <cstring>

#include "device_module.h"
#include "info_output.h"
#include "library.h"
#include "stream_module.h"

using namespace ry::gentl;

namespace {

GC_ERROR DeviceInfo(DeviceModule& device, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    switch (cmd) {
        case DEVICE_INFO_ACCESS_STATUS: {
            const DEVICE_ACCESS_STATUS status = device.Privileged()
                                                    ? DEVICE_ACCESS_STATUS_OPEN_READWRITE
                                                    : DEVICE_ACCESS_STATUS_OPEN_READONLY;
            return WriteInfoValue(status, INFO_DATATYPE_INT32, type, buffer, size);
        }
        case DEVICE_INFO_TIMESTAMP_FREQUENCY:
            return WriteInfoValue<uint64_t>(device.TimestampFrequency(), INFO_DATATYPE_UINT64, type,
                                            buffer, size);
        default:
            return QueryDeviceInfo(device.Info(), cmd, type, buffer, size);
    }
}

// Stream identifiers are "Stream<n>" for the device's channels.
bool ParseStreamId(const char* id, uint32_t channels, uint32_t& channel) {
    unsigned value = 0;
    char tail = 0;
    if (std::sscanf(id, "Stream%u%c", &value, &tail) != 1)
        return false;
    if (value >= channels)
        return false;
    channel = value;
    return true;
}

}  // namespace

extern "C" {

RYGENTL_API GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* port) {
    return Guarded([&]() -> GC_ERROR {
        if (!Find<DeviceModule>(device))
            return GC_ERR_INVALID_HANDLE;
        if (!port)
            return GC_ERR_INVALID_PARAMETER;
        *port = device;
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type,
                                void* buffer, size_t* size) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        return DeviceInfo(*module, cmd, type, buffer, size);
                                    });
}

RYGENTL_API GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        if (!count)
                                            return GC_ERR_INVALID_PARAMETER;
                                        *count = module->StreamChannelCount();
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* id, size_t* size) {
    return WithModule<DeviceModule>(
        device, [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
            if (!size)
                return GC_ERR_INVALID_PARAMETER;
            if (index >= module->StreamChannelCount())
                return GC_ERR_INVALID_PARAMETER;
            return WriteText("Stream" + std::to_string(index), id, size);
        });
}

RYGENTL_API GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream) {
    return WithModule<DeviceModule>(
        device, [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
            if (!id || !stream)
                return GC_ERR_INVALID_PARAMETER;
            uint32_t channel = 0;
            if (!ParseStreamId(id, module->StreamChannelCount(), channel))
                return GC_ERR_INVALID_ID;
            auto opened = std::make_shared<StreamModule>(module, channel);
            if (!module->ClaimStream(opened))
                return GC_ERR_RESOURCE_IN_USE;
            if (const GC_ERROR rc = opened->Open(); rc != GC_ERR_SUCCESS)
                return rc;
            module->Interface()->AddStream(opened);
            *stream = TheLibrary().handles.Add(std::move(opened));
            return GC_ERR_SUCCESS;
        });
}

RYGENTL_API GC_ERROR DevClose(DEV_HANDLE device) {
    return Guarded([&]() -> GC_ERROR {
        const auto module = TheLibrary().handles.Remove<DeviceModule>(device);
        if (!module)
            return GC_ERR_INVALID_HANDLE;
        if (const auto stream = module->Stream())
            TheLibrary().handles.Remove<StreamModule>(stream.get());
        module->Close();
        return GC_ERR_SUCCESS;
    });
}

RYGENTL_API GC_ERROR CloseCCP(DEV_HANDLE device) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        return module->ReleasePrivilege();
                                    });
}

RYGENTL_API GC_ERROR DevSetMultiCastMode(DEV_HANDLE device, uint32_t enable, uint32_t multicastIp) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        if (enable && (multicastIp >> 28) != 0xE)
                                            return GC_ERR_INVALID_PARAMETER;
                                        module->SetMulticast(enable != 0, multicastIp);
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR DevSetHeartBeatTimeout(DEV_HANDLE device, uint32_t timeoutMs) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        return module->SetHeartbeatTimeout(timeoutMs);
                                    });
}

RYGENTL_API GC_ERROR DevGetHeartBeatTimeout(DEV_HANDLE device, uint32_t* timeoutMs) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        if (!timeoutMs)
                                            return GC_ERR_INVALID_PARAMETER;
                                        *timeoutMs = module->HeartbeatTimeout();
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR DevSetHeartBeatTimeoutCheckCount(DEV_HANDLE device, int32_t count) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        return module->SetHeartbeatCheckCount(count);
                                    });
}

RYGENTL_API GC_ERROR DevGetHeartBeatTimeoutCheckCount(DEV_HANDLE device, int32_t* count) {
    return WithModule<DeviceModule>(device,
                                    [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
                                        if (!count)
                                            return GC_ERR_INVALID_PARAMETER;
                                        *count = module->HeartbeatCheckCount();
                                        return GC_ERR_SUCCESS;
                                    });
}

RYGENTL_API GC_ERROR DevSetEventControl(DEV_HANDLE device, uint32_t eventId, const char* eventName,
                                        uint64_t eventNameLength, RY_EVENT_CALLBACK callback,
                                        void* context) {
    return WithModule<DeviceModule>(
        device, [&](const std::shared_ptr<DeviceModule>& module) -> GC_ERROR {
            if (eventId > 0xFFFF)
                return GC_ERR_INVALID_PARAMETER;
            std::string name;
            if (eventName)
                name.assign(eventName, strnlen(eventName, eventNameLength));
            return module->SetEventRoute(static_cast<uint16_t>(eventId), name, callback, context);
        });
}

}  // extern "C"

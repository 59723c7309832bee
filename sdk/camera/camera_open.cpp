// RyCamera::OpenCamera: device, description, stream destination, stream, buffers, events,
// monitor threads and the property list, in that order. A failing step returns at once and
// leaves what the earlier steps reached, except where a step says it unwinds.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "acquisition/connection_monitor.h"
#include "camera/camera_log.h"
#include "camera/camera_shared.h"
#include "camera/device_description.h"
#include "camera/general_events.h"
#include "camera/ip_address.h"
#include "camera/open_request.h"
#include "core/platform/text.h"
#include "ry/genicam/Exceptions.h"
#include "rysdk/RyCamera.h"
#include "rysdk/RyInterface.h"

namespace RYSDK::camera {

using core::kLogDebug;
using core::kLogErr;
using core::kLogEtc;
using RyGenApi::IEnumeration;
using RyGenApi::IInteger;

namespace {

constexpr INTERFACE_INFO_CMD kInterfaceIpAddress = 1003;
constexpr size_t kStreamIdCapacity = 260;
constexpr uint32_t kMono8 = 0x01080001;

unsigned int AddressForLog(const void* pointer) {
    return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(pointer));
}

DEVICE_ACCESS_FLAGS AccessFlagOf(CCP_PRIVILEGE privilege) {
    switch (privilege) {
        case CCP_PRIVILEGE_NONE:
            return DEVICE_ACCESS_NONE;
        case CCP_PRIVILEGE_EXCLUSIVE:
            return DEVICE_ACCESS_EXCLUSIVE;
        case CCP_PRIVILEGE_CONTROL:
            return DEVICE_ACCESS_CONTROL;
        case CCP_PRIVILEGE_MONITOR:
            return DEVICE_ACCESS_READONLY;
    }
    return DEVICE_ACCESS_NONE;
}

RESULT ResultOfDeviceOpen(GC_ERROR rc) {
    switch (rc) {
        case GC_ERR_MEMORY_ALLOCATION:
            return RESULT_ERROR_MEMORY_ALLOCATION;
        case GC_ERR_INVALID_PARAMETER:
            return RESULT_ERROR_INVALID_PARAMETER;
        case GC_ERR_ACCESS_DENIED:
            return RESULT_ERROR_ACCESS_DENIED;
        case GC_ERR_RESOURCE_IN_USE:
            return RESULT_ERROR_RESOURCE_IN_USE;
        default:
            return RESULT_ERROR;
    }
}

template <typename Interface>
Interface* NodeAs(RyGenApi::CNodeMapRef& map, const char* name) {
    return dynamic_cast<Interface*>(map._GetNode(name));
}

}  // namespace

// Dotted IPv4 text to the number GigE Vision registers hold: the first part in the most
// significant byte. Parts that do not scan count as 0.
uint32_t StrIP2dwIP(const char* text) {
    uint32_t address = 0;
    const char* part = text;
    for (int i = 0; i < 4; ++i) {
        unsigned int value = 0;
        if (part != nullptr && std::sscanf(part, "%u", &value) != 1)
            value = 0;
        address = (address << 8) | (value & 0xFF);
        part = part != nullptr ? std::strchr(part, '.') : nullptr;
        if (part != nullptr)
            ++part;
    }
    return address;
}

struct OpenSteps {
    RyCamera& camera;
    CameraShared& shared;
    const char* name;
    const OpenRequest& args;
    const core::LogSite& site;

    RESULT Run() {
        LogArguments();
        if (args.userPointer == nullptr || name == nullptr || args.numBuffer == 0)
            return RESULT_ERROR_INVALID_PARAMETER;
        if (args.width % 4 != 0)
            return RESULT_ERROR_INVALID_WIDTH;
        PrepareSignals();
        RESULT result = OpenDevice();
        if (result != RESULT_SUCCESS)
            return result;
        result = LoadDescription();
        if (result != RESULT_SUCCESS)
            return result;
        if (camera.m_MonitorMode == 0)
            SetStreamDestination();
        RY_LOG_EVENT(site, kLogDebug, L"_bMonitorMode is %ls",
                     camera.m_MonitorMode != 0 ? L"TRUE" : L"FALSE");
        result = OpenStream();
        if (result != RESULT_SUCCESS)
            return result;
        result = StartStreaming();
        if (result != RESULT_SUCCESS)
            return result;
        result = StartMonitors();
        if (result != RESULT_SUCCESS)
            return result;
        ReadModelName();
        camera.LoadPropertyList();
        camera.m_Opened = 1;
        return RESULT_SUCCESS;
    }

    void LogArguments() {
        const std::wstring wideName = core::Widen(name != nullptr ? name : "");
        RY_LOG_EVENT(site, kLogDebug,
                     L"RyCamera::OpenCamera - name(%ls), nNumBuffer(%d), nWidth(%d), nHeight(%d), "
                     L"nPacketSize(%d), pUserPointer(0x%X), pImageCallbackFn(0x%X), "
                     L"pDisconnectCallbackFn(0x%X) ",
                     wideName.c_str(), args.numBuffer, args.width, args.height, args.packetSize,
                     AddressForLog(args.userPointer),
                     AddressForLog(reinterpret_cast<const void*>(args.imageCallback)),
                     AddressForLog(reinterpret_cast<const void*>(args.disconnectCallback)));
        RY_LOG_EVENT(site, kLogEtc, L"Open device \"%ls\" :", wideName.c_str());
    }

    // Every open starts with fresh signals: a stop set by an earlier close must not end the
    // threads this open starts.
    void PrepareSignals() {
        auto signals = std::make_shared<ThreadSignals>();
        signals->generalEventCallback.store(shared.signals->generalEventCallback.load());
        shared.signals = std::move(signals);
        shared.disconnectCallback = args.disconnectCallback;
        shared.imageCallback = args.imageCallback;
        shared.userPointer = args.userPointer;
        camera.m_NumBuffer = args.numBuffer;
    }

    RESULT OpenDevice() {
        RyInterface* adapter = camera.m_pRyInterface;
        if (adapter == nullptr || adapter->GetInterfaceHandle() == nullptr)
            return RESULT_ERROR_RYCAMERA_INTERFACE_HANDLE;
        shared.privilege = camera.m_Privilege;
        const GC_ERROR rc = TL().IFOpenDevice(adapter->GetInterfaceHandle(), name,
                                              AccessFlagOf(camera.m_Privilege), &shared.device);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(site, kLogDebug, L"IFOpenDevice returned not success. Ret[%ls]",
                         core::TransportCodeText(rc));
            shared.device = nullptr;
            return ResultOfDeviceOpen(rc);
        }
        if (camera.m_Privilege == CCP_PRIVILEGE_MONITOR)
            camera.m_MonitorMode = 1;
        if (shared.device == nullptr) {
            RY_LOG_EVENT(site, kLogErr,
                         L"RESULT_ERROR_TLOPENDEVICE : hCamera is invalid pointer. (%X)", 0u);
            return RESULT_ERROR_TLOPENDEVICE;
        }
        return RESULT_SUCCESS;
    }

    RESULT LoadDescription() {
        RawDescription description;
        if (!ReadRawDescription(shared.device, site, description))
            return RESULT_ERROR_RYCAMERA_GETXML;
        if (description.length < 1) {
            RY_LOG_EVENT(site, kLogErr, L"GetXML : cbData(%d) < 1", description.length);
            return RESULT_ERROR_RYCAMERA_GETXML;
        }
        auto nodeMap = std::make_shared<DeviceNodeMap>(shared.port);
        if (description.zipped)
            nodeMap->map._LoadXMLFromZIPData(description.data.get(), description.length);
        else
            nodeMap->map._LoadXMLFromString(PlainDescriptionText(description));
        shared.port->SetPortHandle(shared.device);
        shared.serial.SetCamHandle(shared.device);
        nodeMap->map._Connect(shared.port.get());
        shared.nodeMap = std::move(nodeMap);
        return RESULT_SUCCESS;
    }

    void SetStreamDestination() {
        RyGenApi::CNodeMapRef& map = shared.nodeMap->map;
        IInteger* destination = NodeAs<IInteger>(map, "GevSCDA");
        if (destination == nullptr)
            return;
        uint32_t address = camera.m_pRyInterface->GetMultiCastAddress();
        if (address != 0) {
            TL().DevSetMultiCastMode(shared.device, 1, address);
        } else {
            char text[512] = {};
            size_t size = sizeof(text) - 1;
            INFO_DATATYPE type = 0;
            TL().IFGetInfo(camera.m_pRyInterface->GetInterfaceHandle(), kInterfaceIpAddress, &type,
                           text, &size);
            address = StrIP2dwIP(text);
        }
        if (RyGenApi::IsWritable(destination->GetAccessMode()))
            destination->SetValue(address, true);
    }

    RESULT OpenStream() {
        char streamId[kStreamIdCapacity] = {};
        size_t size = sizeof(streamId);
        GC_ERROR rc = TL().DevGetDataStreamID(shared.device, 0, streamId, &size);
        if (rc != GC_ERR_SUCCESS) {
            RY_LOG_EVENT(site, kLogErr, L"DevGetDataStreamID returned not success. Ret[%ls]",
                         core::TransportCodeText(rc));
            return core::ResultFromTransportCode(rc);
        }
        streamId[sizeof(streamId) - 1] = '\0';
        const GC_ERROR opened = TL().DevOpenDataStream(shared.device, streamId, &shared.stream);
        // The line reports the status of the identifier query, as it always has.
        RY_LOG_EVENT(site, kLogDebug, L"DevOpenDataStream( ID(%ls) ) returned Ret[%ls]",
                     core::Widen(streamId).c_str(), core::TransportCodeText(rc));
        if (opened != GC_ERR_SUCCESS) {
            shared.stream = nullptr;
            return opened == GC_ERR_INVALID_PARAMETER ? RESULT_ERROR_STREAM_MTU
                                                      : RESULT_ERROR_DEVCREATESTREAM;
        }
        return RESULT_SUCCESS;
    }

    struct Geometry {
        uint32_t width;
        uint32_t height;
        uint32_t bitsPerPixel;
    };

    // A missing Width or Height node, when the caller left the size to the camera, throws
    // from the node map and ends the open with RESULT_ERROR_EXCEPTION.
    Geometry ReadGeometry() {
        RyGenApi::CNodeMapRef& map = shared.nodeMap->map;
        auto integerValue = [&](const char* name) -> uint32_t {
            IInteger* node = NodeAs<IInteger>(map, name);
            if (node == nullptr)
                throw RyGenApi::RuntimeException(name,
                                                 "the device has no integer node of this name");
            return static_cast<uint32_t>(node->GetValue());
        };
        uint32_t format = kMono8;
        IEnumeration* pixelFormat = NodeAs<IEnumeration>(map, "PixelFormat");
        if (pixelFormat != nullptr && RyGenApi::IsReadable(pixelFormat->GetAccessMode()))
            format = static_cast<uint32_t>(pixelFormat->GetIntValue());
        return Geometry{args.width != 0 ? args.width : integerValue("Width"),
                        args.height != 0 ? args.height : integerValue("Height"),
                        PixelFormatBits(format)};
    }

    RESULT ApplyPacketSize() {
        IInteger* packetSize = NodeAs<IInteger>(shared.nodeMap->map, "GevSCPSPacketSize");
        if (packetSize == nullptr) {
            RY_LOG_EVENT(site, kLogErr, L"_GetNode(\"GevSCPSPacketSize\") not exist.");
            return RESULT_SUCCESS;
        }
        if (!RyGenApi::IsReadable(packetSize->GetAccessMode()) || args.packetSize == 0)
            return RESULT_SUCCESS;
        const int64_t requested = args.packetSize;
        if (requested < packetSize->GetMin() || requested > packetSize->GetMax()) {
            shared.nodeMap.reset();
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        packetSize->SetValue(requested, true);
        return RESULT_SUCCESS;
    }

    // The interface handle is closed with the stream and the device here: a pool that
    // cannot be built leaves the whole adapter to be opened again.
    RESULT UnwindStream(RESULT result) {
        TL().IFClose(camera.m_pRyInterface->GetInterfaceHandle());
        TL().DSClose(shared.stream);
        shared.stream = nullptr;
        TL().DevClose(shared.device);
        shared.device = nullptr;
        return result;
    }

    RESULT StartStreaming() {
        const Geometry geometry = ReadGeometry();
        RESULT result = ApplyPacketSize();
        if (result != RESULT_SUCCESS || camera.m_StreamMode != 1)
            return result;
        void** bufferArray = nullptr;
        result = camera.CreateBuffer(geometry.width, geometry.height, geometry.bitsPerPixel,
                                     args.numBuffer, camera.m_BufferHandleList, shared.stream,
                                     &bufferArray);
        RY_LOG_EVENT(site, kLogDebug, L"CreateBuffer returned Ret[%ls]", core::ResultText(result));
        if (result != RESULT_SUCCESS)
            return UnwindStream(result);
        result = RyCamera::RearrangeQueue(camera.m_BufferHandleList, shared.stream);
        RY_LOG_EVENT(site, kLogDebug, L"RearrangeQueue returned Ret[%ls]",
                     core::ResultText(result));
        if (result != RESULT_SUCCESS)
            return UnwindStream(result);
        const GC_ERROR rc =
            TL().GCRegisterEvent(shared.stream, EVENT_NEW_BUFFER, &shared.newBufferEvent);
        RY_LOG_EVENT(site, kLogDebug, L"GCRegisterEvent returned Ret[%ls]",
                     core::ResultText(result));
        if (rc != GC_ERR_SUCCESS) {
            shared.newBufferEvent = nullptr;
            return UnwindStream(core::ResultFromTransportCode(rc));
        }
        shared.newBufferEventRegistered = true;
        result = RyCamera::StartAcquisition(shared.stream);
        RY_LOG_EVENT(site, kLogDebug, L"StartAcquisition returned Ret[%ls]",
                     core::ResultText(result));
        startResult = result;
        return result;
    }

    RESULT StartMonitors() {
        if (args.disconnectCallback != nullptr) {
            const GC_ERROR rc =
                TL().GCRegisterEvent(shared.device, EVENT_ERROR, &shared.deviceErrorEvent);
            // The line names the stream start's result, as it always has.
            RY_LOG_EVENT(site, kLogDebug, L"GCRegisterEvent returned Ret[%ls], handle(%x)",
                         core::ResultText(startResult), AddressForLog(shared.deviceErrorEvent));
            if (rc != GC_ERR_SUCCESS) {
                shared.deviceErrorEvent = nullptr;
                if (rc == GC_ERR_INVALID_PARAMETER)
                    return RESULT_ERROR_INVALID_PARAMETER;
                if (rc == GC_ERR_NOT_IMPLEMENTED)
                    return RESULT_ERROR;
                return core::ResultFromTransportCode(rc);
            }
            acquisition::StartConnectionMonitor(shared);
        }
        if (shared.nodeMap &&
            NodeAs<IEnumeration>(shared.nodeMap->map, "SourceSelector") != nullptr)
            StartGeneralEventThread(shared);
        return RESULT_SUCCESS;
    }

    // The model name decides whether this is the older register-driven generation.
    void ReadModelName() {
        uint32_t devices = 0;
        TL().IFGetNumDevices(camera.m_pRyInterface->GetInterfaceHandle(), &devices);
        uint32_t index = 0;
        for (; index < devices; ++index) {
            char id[kStreamIdCapacity] = {};
            size_t size = sizeof(id);
            if (camera.GetDeviceID(index, id, &size) == RESULT_SUCCESS &&
                std::strcmp(id, name) == 0) {
                break;
            }
        }
        char model[512] = {};
        size_t size = sizeof(model);
        camera.GetDeviceModelName(index, model, &size);
    }

    RESULT startResult = RESULT_ERROR;
};

}  // namespace RYSDK::camera

namespace RYSDK {

RESULT RyCamera::OpenCamera(const char* name, uint32_t nNumBuffer, uint32_t nWidth,
                            uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                            pImageCallbackFn pImageCallbackFn,
                            pDisconnectCallbackFn pDisconnectCallbackFn) {
    RY_CAMERA_SITE(OpenCamera);
    const camera::OpenRequest args{nNumBuffer,           nWidth,       nHeight,
                                   nPacketSize,          pUserPointer, pImageCallbackFn,
                                   pDisconnectCallbackFn};
    camera::OpenSteps steps{*this, *m_Shared, name, args, kSite};
    return RY_GUARDED(kSite, [&] { return steps.Run(); });
}

}  // namespace RYSDK

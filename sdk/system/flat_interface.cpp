// Flat functions of the interface object.
#include "system/flat_forward.h"
#include "system/system_log.h"

using RYSDK::RyInterface;
using RYSDK::flat::OnInterface;
using RYSDK::flat::OpenCameraOf;

// The user record comes second here, whereas the method takes it after the packet size.
extern "C" RYSDK_API ::RESULT InterfaceOpenCameraByIndex(RYINTERFACE_HANDLE handle, void* object,
                                                         uint32_t index, RYCAMERA_HANDLE* camera,
                                                         uint32_t nNumBuffer, uint32_t nWidth,
                                                         uint32_t nHeight, uint32_t nPacketSize,
                                                         pImageCallbackFn imageCallback,
                                                         pDisconnectCallbackFn disconnectCallback) {
    RY_FLAT_SITE(InterfaceOpenCameraByIndex);
    return OnInterface(handle, kSite, [&](RyInterface& adapter) {
        return OpenCameraOf(adapter, index, camera, nNumBuffer, nWidth, nHeight, nPacketSize,
                            object, imageCallback, disconnectCallback);
    });
}

extern "C" RYSDK_API ::RESULT InterfaceOpenCameraByName(RYINTERFACE_HANDLE handle, void* object,
                                                        const char* name, RYCAMERA_HANDLE* camera,
                                                        uint32_t nNumBuffer, uint32_t nWidth,
                                                        uint32_t nHeight, uint32_t nPacketSize,
                                                        pImageCallbackFn imageCallback,
                                                        pDisconnectCallbackFn disconnectCallback) {
    RY_FLAT_SITE(InterfaceOpenCameraByName);
    return OnInterface(handle, kSite, [&](RyInterface& adapter) {
        return OpenCameraOf(adapter, name, camera, nNumBuffer, nWidth, nHeight, nPacketSize, object,
                            imageCallback, disconnectCallback);
    });
}

// Asks the transport layer itself rather than RyInterface::GetNumCameras, with the same
// checks.
extern "C" RYSDK_API ::RESULT InterfaceGetNumCameras(RYINTERFACE_HANDLE handle, uint32_t* count) {
    RY_FLAT_SITE(InterfaceGetNumCameras);
    return OnInterface(handle, kSite, [&](RyInterface& adapter) {
        if (count == nullptr)
            return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
        if (adapter.GetSystemHandle() == nullptr)
            return RYSDK::RESULT_ERROR_TL_HANDLE;
        if (adapter.GetInterfaceHandle() == nullptr)
            return RYSDK::RESULT_ERROR_IF_HANDLE;
        uint32_t devices = 0;
        if (RYSDK::system::TL().IFGetNumDevices(adapter.GetInterfaceHandle(), &devices) !=
            GC_ERR_SUCCESS)
            return RYSDK::RESULT_ERROR_TLGETNUMDEVICES;
        *count = devices;
        return RYSDK::RESULT_SUCCESS;
    });
}

// Closing the adapter closes and frees its cameras, so their handles go with them.
extern "C" RYSDK_API ::RESULT InterfaceCloseInterface(RYINTERFACE_HANDLE handle) {
    RY_FLAT_SITE(InterfaceCloseInterface);
    return OnInterface(handle, kSite, [&](RyInterface& adapter) {
        RYSDK::flat::ForgetCamerasOf(&adapter);
        return adapter.CloseInterface();
    });
}

// The owner is passed by value and never written: success only says the interface has one.
extern "C" RYSDK_API ::RESULT InterfaceGetRyGigEHandle(RYINTERFACE_HANDLE handle,
                                                       RYGIGE_HANDLE owner) {
    RY_FLAT_SITE(InterfaceGetRyGigEHandle);
    return OnInterface(handle, kSite, [&](RyInterface& adapter) {
        return adapter.GetRyGigE(reinterpret_cast<RYSDK::RyGigE*>(owner));
    });
}

RY_FLAT_FORWARD(Interface, InterfaceGetCameraName,
                (RYINTERFACE_HANDLE handle, uint32_t index, char* name, size_t* size),
                GetCameraName(index, name, size))
RY_FLAT_FORWARD(Interface, InterfaceGetCameraID,
                (RYINTERFACE_HANDLE handle, uint32_t index, char* id, size_t* size),
                GetCameraID(index, id, size))
RY_FLAT_FORWARD(Interface, InterfaceGetSubnet,
                (RYINTERFACE_HANDLE handle, char* subnet, size_t* size), GetSubnet(subnet, size))
RY_FLAT_FORWARD(Interface, InterfaceGetIPAddress,
                (RYINTERFACE_HANDLE handle, char* address, size_t* size),
                GetIPAddress(address, size))
RY_FLAT_FORWARD(Interface, InterfaceUsePacketResend, (RYINTERFACE_HANDLE handle, int32_t use),
                UsePacketResend(use))
RY_FLAT_FORWARD(Interface, InterfaceUsePacketResendFrequently,
                (RYINTERFACE_HANDLE handle, int32_t use), UsePacketResendFrequently(use))
RY_FLAT_FORWARD(Interface, InterfaceUseLAGMode, (RYINTERFACE_HANDLE handle, int32_t use),
                UseLAGMode(use))
RY_FLAT_FORWARD_OUT(Interface, InterfaceGetImageReceivingTimeout,
                    (RYINTERFACE_HANDLE handle, uint32_t* timeoutMs), timeoutMs,
                    GetImageReceivingTimeout(*timeoutMs))
RY_FLAT_FORWARD(Interface, InterfaceSetImageReceivingTimeout,
                (RYINTERFACE_HANDLE handle, uint32_t timeoutMs),
                SetImageReceivingTimeout(timeoutMs))
RY_FLAT_FORWARD_OUT(Interface, InterfaceGetImageRetransTimeout,
                    (RYINTERFACE_HANDLE handle, uint32_t* timeoutMs), timeoutMs,
                    GetImageRetransTimeout(*timeoutMs))
RY_FLAT_FORWARD(Interface, InterfaceSetImageRetransTimeout,
                (RYINTERFACE_HANDLE handle, uint32_t timeoutMs), SetImageRetransTimeout(timeoutMs))

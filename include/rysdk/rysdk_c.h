/** \file
 * The flat C interface of libRyGigE, for applications written in C and for bindings from
 * other languages. Every function but the pixel conversions returns a RESULT.
 *
 * Handles. OpenRyGigE gives the system handle; interfaces and cameras are opened through
 * it. The SDK owns every object behind a handle: a camera handle is valid until CameraClose,
 * InterfaceCloseInterface of its interface or CloseRyGigE; an interface handle until
 * CloseRyGigE. A null handle, or one the flat interface did not hand out (or has closed
 * since), gives RESULT_ERROR_INVALID_PARAMETER and is never dereferenced.
 *
 * Buffers. Every pointer an application passes in stays the application's; the SDK writes
 * at most the size it is given and keeps no pointer after the call returns, except the user
 * pointer and callbacks given at open, which must stay valid until the camera is closed.
 *
 * Threads. One application thread drives a camera at a time. Image callbacks run on the
 * camera's grab thread (or its callback thread): there a callback may call the Get
 * functions of its camera, never CameraGrab, CameraSnap, CameraAbort or CameraClose. */
#ifndef RYSDK_C_H
#define RYSDK_C_H

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "RyConvert.h"
#include "RyExport.h"
#include "rysdk_c_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- System ------------------------------------------------------------------------- */

/** Creates the process-wide system object and discovers the network. A second call before
 * CloseRyGigE gives RESULT_ERROR_OPENED_ALREADY, and so does every call after a failed
 * first one: the object stays until CloseRyGigE. *handle is owned by the SDK. */
RYSDK_API RESULT OpenRyGigE(RYGIGE_HANDLE* handle);
/** Closes every interface and camera, destroys the system object and sets *handle to null. */
RYSDK_API RESULT CloseRyGigE(RYGIGE_HANDLE* handle);
/** Discovers again: see RYSDK::RyGigE::Discovery. */
RYSDK_API RESULT RyDiscovery(RYGIGE_HANDLE handle);
/** The number of interface records the last discovery made. */
RYSDK_API RESULT RyGetNumInterfaces(RYGIGE_HANDLE handle, uint32_t* count);
/** Cameras over all interfaces, on the interface with that index, or with that name. */
/** @{ */
RYSDK_API RESULT RyGetNumCameras(RYGIGE_HANDLE handle, uint32_t* count);
RYSDK_API RESULT RyGetNumCamerasByIndex(RYGIGE_HANDLE handle, uint32_t interfaceIndex,
                                        uint32_t* count);
RYSDK_API RESULT RyGetNumCamerasByName(RYGIGE_HANDLE handle, const char* interfaceName,
                                       uint32_t* count);
/** @} */
/** The discovery record of an interface (without its cameras), or of a camera by its global
 * index (cameras are numbered interface after interface). */
/** @{ */
RYSDK_API RESULT RyDiscoveryInterfaceInfo(RYGIGE_HANDLE handle, uint32_t index,
                                          RYINTERFACE_INFO* info);
RYSDK_API RESULT RyDiscoveryCameraInfo(RYGIGE_HANDLE handle, uint32_t index, RYCAMERA_INFO* info);
/** @} */
/** Opens a camera by its global index or its name. *camera is owned by the SDK and valid until
 * CameraClose. object is handed back to every callback and must stay valid as long. */
/** @{ */
RYSDK_API RESULT RyOpenCameraByIndex(RYGIGE_HANDLE handle, uint32_t index, RYCAMERA_HANDLE* camera,
                                     uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                                     uint32_t nPacketSize, void* object,
                                     pImageCallbackFn imageCallback,
                                     pDisconnectCallbackFn disconnectCallback);
RYSDK_API RESULT RyOpenCameraByName(RYGIGE_HANDLE handle, const char* name, RYCAMERA_HANDLE* camera,
                                    uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                                    uint32_t nPacketSize, void* object,
                                    pImageCallbackFn imageCallback,
                                    pDisconnectCallbackFn disconnectCallback);
/** @} */
/** Opens an interface by its position among the discovery records or by its name. *adapter is
 * owned by the SDK and valid until CloseRyGigE. */
/** @{ */
RYSDK_API RESULT RyOpenInterfaceByIndex(RYGIGE_HANDLE handle, uint32_t index,
                                        RYINTERFACE_HANDLE* adapter);
RYSDK_API RESULT RyOpenInterfaceByName(RYGIGE_HANDLE handle, const char* name,
                                       RYINTERFACE_HANDLE* adapter);
/** @} */
/** Gives a camera a temporary IP configuration by its MAC address (6 bytes), on every
 * adapter: see RYSDK::RyGigE::SetForceIP. */
RYSDK_API RESULT RyForceIP(RYGIGE_HANDLE handle, const uint8_t* mac, uint32_t ip, uint32_t subnet,
                           uint32_t gateway);
/** Settings of the system object; see the RYSDK::RyGigE members of the same names. */
/** @{ */
RYSDK_API RESULT RyUseMTUOptimize(RYGIGE_HANDLE handle, int32_t use);
RYSDK_API RESULT RySetMTUTimeout(RYGIGE_HANDLE handle, uint32_t timeoutMs);
RYSDK_API RESULT RyGetMTUTimeout(RYGIGE_HANDLE handle, uint32_t* timeoutMs);
RYSDK_API RESULT RySetGVCPTimeout(RYGIGE_HANDLE handle, uint32_t timeoutMs);
RYSDK_API RESULT RyGetGVCPTimeout(RYGIGE_HANDLE handle, uint32_t* timeoutMs);
RYSDK_API RESULT RySetMultiCastAddress(RYGIGE_HANDLE handle, uint32_t address);
RYSDK_API RESULT RyGetMultiCastAddress(RYGIGE_HANDLE handle, uint32_t* address);
RYSDK_API RESULT RySetIgnoreSubnet(RYGIGE_HANDLE handle, int32_t ignore);
RYSDK_API RESULT RyGetIgnoreSubnet(RYGIGE_HANDLE handle, int32_t* ignore);
RYSDK_API RESULT RySetDiscoveryTimeout(RYGIGE_HANDLE handle, uint32_t timeoutMs);
RYSDK_API RESULT RyGetDiscoveryTimeout(RYGIGE_HANDLE handle, uint32_t* timeoutMs);
RYSDK_API RESULT RySetCCPPrivilege(RYGIGE_HANDLE handle, CCP_PRIVILEGE privilege);
/** @} */
/** Writes an application record into the SDK's event log; message is a format without
 * arguments ("%%" gives a percent sign). */
RYSDK_API RESULT RyUserLogging(RYGIGE_HANDLE handle, const wchar_t* label, const wchar_t* file,
                               const wchar_t* function, uint32_t line, const wchar_t* message);

/* ---- Interface ---------------------------------------------------------------------- */

/** Note the order: the user record comes second here, unlike in RyOpenCameraBy...
 * *camera is owned by the SDK and valid until CameraClose. */
/** @{ */
RYSDK_API RESULT InterfaceOpenCameraByIndex(RYINTERFACE_HANDLE adapter, void* object,
                                            uint32_t index, RYCAMERA_HANDLE* camera,
                                            uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                                            uint32_t nPacketSize, pImageCallbackFn imageCallback,
                                            pDisconnectCallbackFn disconnectCallback);
RYSDK_API RESULT InterfaceOpenCameraByName(RYINTERFACE_HANDLE adapter, void* object,
                                           const char* name, RYCAMERA_HANDLE* camera,
                                           uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight,
                                           uint32_t nPacketSize, pImageCallbackFn imageCallback,
                                           pDisconnectCallbackFn disconnectCallback);
/** @} */
/** The number of cameras the transport layer lists on this adapter. */
RYSDK_API RESULT InterfaceGetNumCameras(RYINTERFACE_HANDLE adapter, uint32_t* count);
/** Name and identifier are copied without a terminating zero: pass a zeroed buffer. */
/** @{ */
RYSDK_API RESULT InterfaceGetCameraName(RYINTERFACE_HANDLE adapter, uint32_t index, char* name,
                                        size_t* size);
RYSDK_API RESULT InterfaceGetCameraID(RYINTERFACE_HANDLE adapter, uint32_t index, char* id,
                                      size_t* size);
/** @} */
/** Succeeds when the interface has an owner; owner is not written. */
RYSDK_API RESULT InterfaceGetRyGigEHandle(RYINTERFACE_HANDLE adapter, RYGIGE_HANDLE owner);
/** The adapter's subnet mask and IPv4 address as dotted text. */
/** @{ */
RYSDK_API RESULT InterfaceGetSubnet(RYINTERFACE_HANDLE adapter, char* subnet, size_t* size);
RYSDK_API RESULT InterfaceGetIPAddress(RYINTERFACE_HANDLE adapter, char* address, size_t* size);
/** @} */
/** Stream settings of the adapter; see the RYSDK::RyInterface members of the same names. */
/** @{ */
RYSDK_API RESULT InterfaceUsePacketResend(RYINTERFACE_HANDLE adapter, int32_t use);
RYSDK_API RESULT InterfaceUsePacketResendFrequently(RYINTERFACE_HANDLE adapter, int32_t use);
RYSDK_API RESULT InterfaceUseLAGMode(RYINTERFACE_HANDLE adapter, int32_t use);
RYSDK_API RESULT InterfaceGetImageReceivingTimeout(RYINTERFACE_HANDLE adapter, uint32_t* timeoutMs);
RYSDK_API RESULT InterfaceSetImageReceivingTimeout(RYINTERFACE_HANDLE adapter, uint32_t timeoutMs);
RYSDK_API RESULT InterfaceGetImageRetransTimeout(RYINTERFACE_HANDLE adapter, uint32_t* timeoutMs);
RYSDK_API RESULT InterfaceSetImageRetransTimeout(RYINTERFACE_HANDLE adapter, uint32_t timeoutMs);
/** @} */
/** Closes the interface's cameras (their handles become invalid) and the adapter; the
 * interface handle stays valid until CloseRyGigE. */
RYSDK_API RESULT InterfaceCloseInterface(RYINTERFACE_HANDLE adapter);

#ifdef __cplusplus
}
#endif

#include "rysdk_c_camera.h"

#endif /* RYSDK_C_H */

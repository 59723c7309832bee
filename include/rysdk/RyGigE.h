/// \file
/// RyGigE: the root object an application creates first. It opens the transport layer,
/// discovers the interfaces and the cameras on each, keeps their information records,
/// holds the settings handed on to interfaces and cameras, and opens interfaces.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>

#include "rysdk/RyCameraTypes.h"
#include "rysdk/RyExport.h"
#include "rysdk/RyInfo.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"

namespace RYSDK {

class RyCamera;
class RyInterface;
namespace system {
struct CameraSelectionAccess;
struct CameraTarget;
}  // namespace system
namespace camera {
struct OpenRequest;
}  // namespace camera

/// The system object: the first object an application creates and the last it destroys.
/// Thread: application.
class RYSDK_API RyGigE {
  public:
    /// An object that has not opened the transport layer yet (see Open).
    RyGigE();
    /// Closes the interfaces and, with the last copy, the transport layer.
    ~RyGigE();
    /// A copy shares the original's information records, interfaces and transport
    /// handle: the two objects then see the same discovery and the same open interfaces.
    ///@{
    RyGigE(const RyGigE& other);
    RyGigE& operator=(const RyGigE& other);
    ///@}

    /// Opens the transport layer and, the first time, runs Discovery.
    RESULT Open();
    /// Closes every interface opened through this object and drops the information
    /// records. The transport layer stays open; Discovery is not run again implicitly.
    RESULT Close();

    /// Asks every interface for the cameras that answer and rebuilds the records.
    RESULT Discovery();
    /// A summary of the last discovery and of the discovery settings.
    RESULT GetDiscoveryInfo(DISCOVERY_INFO& info);

    /// The number of interface records the last discovery made.
    RESULT GetNumInterfaces(unsigned int* count);
    /// Cameras over all interfaces, on the interface with that index, or with that name.
    ///@{
    RESULT GetNumCameras(unsigned int* count);
    RESULT GetNumCameras(unsigned int interfaceIndex, unsigned int* count);
    RESULT GetNumCameras(const char* interfaceName, unsigned int* count);
    ///@}

    /// Copies the record of the camera at a global index (cameras are numbered interface
    /// after interface) or with a name.
    ///@{
    RESULT GetCameraInfo(unsigned int index, RYCAMERA_INFO* info);
    RESULT GetCameraInfo(const char* name, RYCAMERA_INFO* info);
    ///@}
    /// Copies an interface record with copies of its camera records.
    ///@{
    RESULT GetInterfaceInfo(unsigned int index, RYINTERFACE_INFO* info);
    RESULT GetInterfaceInfo(const char* name, RYINTERFACE_INFO* info);
    ///@}

    /// Opens the interface of a discovery record (by position or by name); the object
    /// stays owned by this RyGigE.
    ///@{
    RESULT OpenInterface(unsigned int index, RyInterface** out);
    RESULT OpenInterface(const char* name, RyInterface** out);
    ///@}

    /// Opens a camera chosen by its global index (cameras are numbered interface after
    /// interface), by its name, or by an interface name and an index, opening its interface
    /// first when needed; see RyInterface::OpenCamera and RyCamera::OpenCamera for the
    /// further arguments. The camera belongs to its interface; close it with CloseCamera.
    /// Thread: application; not from a camera callback.
    ///@{
    RESULT OpenCamera(unsigned int index, RyCamera** camera, uint32_t nNumBuffer, uint32_t nWidth,
                      uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                      pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);
    RESULT OpenCamera(const char* name, RyCamera** camera, uint32_t nNumBuffer, uint32_t nWidth,
                      uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                      pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);
    RESULT OpenCamera(const char* interfaceName, unsigned int index, RyCamera** camera,
                      uint32_t nNumBuffer, uint32_t nWidth, uint32_t nHeight, uint32_t nPacketSize,
                      void* pUserPointer, pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);
    ///@}
    /// Closes a camera opened through one of this object's interfaces; the camera is
    /// destroyed. RESULT_ERROR_INVALID_PARAMETER for a camera no interface holds.
    RESULT CloseCamera(RyCamera* camera);

    /// Gives a camera a temporary IP configuration by its MAC address, on every adapter.
    RESULT SetForceIP(const unsigned char* mac, uint32_t ip, uint32_t subnet, uint32_t gateway);

    /// Settings the transport layer keeps. The GVCP time-out is how long a control command
    /// waits for its acknowledgement.
    ///@{
    RESULT SetGVCPTimeout(unsigned int timeoutMs);
    RESULT GetGVCPTimeout(unsigned int& timeoutMs);
    ///@}
    /// On: a stream opened by a camera with control privilege first finds the largest
    /// packet that reaches the host (test packets), instead of keeping the camera's packet
    /// size. The time-out is how long each test packet is waited for.
    ///@{
    RESULT UseMTUOptimize(int use);
    RESULT SetMTUTimeout(unsigned int timeoutMs);
    RESULT GetMTUTimeout(unsigned int& timeoutMs);
    ///@}

    /// Settings kept here and handed on to interfaces and cameras.
    /// The multicast group (0: none, the camera streams to the host) cameras are asked to stream
    /// to when they open.
    ///@{
    RESULT SetMultiCastAddress(uint32_t address);
    RESULT GetMultiCastAddress(uint32_t& address);
    ///@}
    /// True: discovery also lists cameras outside the subnet of the interface that found
    /// them.
    ///@{
    RESULT SetIgnoreSubnet(bool ignore);
    RESULT GetIgnoreSubnet(bool& ignore);
    ///@}
    /// Milliseconds each interface waits for discovery answers (100 by default).
    ///@{
    RESULT SetDiscoveryTimeout(unsigned int timeoutMs);
    RESULT GetDiscoveryTimeout(unsigned int& timeoutMs);
    ///@}
    /// The queue-manager flag cameras opened afterwards start with (see
    /// RyCamera::UseQueueManager).
    RESULT UseQueueManager(int use);
    /// The control-channel privilege cameras opened afterwards ask for.
    RESULT SetCCPPrivilege(CCP_PRIVILEGE privilege);
    /// The filter type handed to each interface (1 by default). It is kept and reported
    /// only: the receive path is chosen by the transport layer.
    ///@{
    RESULT GetFilterType(unsigned int* filterType);
    RESULT SetFilterType(unsigned int filterType);
    ///@}

    /// Writes an application record into the SDK's event log (level Info). The message
    /// is used as a format without arguments: "%%" gives a percent sign.
    RESULT UserLogging(const wchar_t* label, const wchar_t* file, const wchar_t* function,
                       uint32_t line, const wchar_t* message);

    /// The transport-layer system handle (null before Open).
    TransportHandle GetSystemHandle() const noexcept { return m_hTL; }
    /// The privilege set with SetCCPPrivilege.
    CCP_PRIVILEGE GetCCPPrivilege() const noexcept { return m_Privilege; }
    /// The flag set with UseQueueManager.
    int GetQueueManager() const noexcept { return m_UseQueueManager; }

  private:
    friend struct system::CameraSelectionAccess;
    using InterfaceInfoList = std::list<std::shared_ptr<RYINTERFACE_INFO>>;

    RESULT OpenSelectedCamera(RESULT selected, const system::CameraTarget& target,
                              RyCamera** camera, const camera::OpenRequest& request);
    RESULT DiscoverInterface(uint32_t index, RYINTERFACE_INFO& record);
    RESULT DiscoverCameras(TransportHandle interfaceHandle, RYINTERFACE_INFO& record);
    RESULT PrepareInterfaceOpen();
    RESULT OpenInterfaceOfRecord(RYINTERFACE_INFO& record, RyInterface** out);
    RYINTERFACE_INFO* FindInterfaceRecord(const char* name) noexcept;
    const RYCAMERA_INFO* FindCameraRecord(unsigned int globalIndex) const noexcept;

    /// Closes the transport layer when the last copy of this object goes.
    struct SystemSession;

    TransportHandle m_hTL = nullptr;
    std::shared_ptr<SystemSession> m_Session;
    InterfaceInfoList m_InterfaceInfoList;
    int32_t m_Discovered = 0;
    std::map<std::string, std::shared_ptr<RyInterface>> m_Interfaces;
    unsigned int m_FilterType = 1;
    uint32_t m_MultiCastAddress = 0;
    bool m_IgnoreSubnet = false;
    unsigned int m_DiscoveryTimeout = 100;
    int m_UseQueueManager = 0;
    CCP_PRIVILEGE m_Privilege = CCP_PRIVILEGE_CONTROL;
};

}  // namespace RYSDK

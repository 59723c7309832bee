/// \file
/// RyInterface: one network adapter opened in the transport layer. It lists the cameras
/// reachable through it and carries the adapter's stream settings (receive and resend
/// time-outs, packet resend, link aggregation).
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "rysdk/RyCameraTypes.h"
#include "rysdk/RyExport.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"

namespace RYSDK {

class RyCamera;
class RyGigE;
namespace camera {
struct OpenRequest;
}

/// One network adapter: opened by RyGigE::OpenInterface (or when a camera on it is opened)
/// and owned by the RyGigE that opened it. Thread: application.
class RYSDK_API RyInterface {
  public:
    /// An interface of the transport layer `systemHandle`, not open yet (see OpenInterface).
    RyInterface(TransportHandle systemHandle, unsigned int filterType);
    /// Closes and destroys every camera still open through this interface.
    ~RyInterface();
    RyInterface(const RyInterface&) = delete;
    RyInterface& operator=(const RyInterface&) = delete;

    /// Opens the adapter with this identifier. An identifier that contains "ID:" is read
    /// as a label followed by the identifier proper ("ID: eth0" opens "eth0").
    RESULT OpenInterface(const char* interfaceId, RyGigE* owner);
    /// Closes every camera opened through this interface, then the adapter.
    RESULT CloseInterface();

    /// Opens the camera at a position of this interface's device list, or with this device
    /// identifier, with the owner's control-channel privilege (see RyCamera::OpenCamera for
    /// the further arguments). The camera stays owned by this interface: CloseCamera
    /// destroys it. A camera whose description could not be loaded
    /// (RESULT_ERROR_RYCAMERA_GETXML) is handed out all the same, open for raw register
    /// access; any other failure closes and destroys it.
    /// Thread: application; not from a callback of a camera of this interface.
    ///@{
    RESULT OpenCamera(unsigned int index, RyCamera** camera, uint32_t nNumBuffer, uint32_t nWidth,
                      uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                      pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);
    RESULT OpenCamera(const char* name, RyCamera** camera, uint32_t nNumBuffer, uint32_t nWidth,
                      uint32_t nHeight, uint32_t nPacketSize, void* pUserPointer,
                      pImageCallbackFn pImageCallbackFn,
                      pDisconnectCallbackFn pDisconnectCallbackFn);
    ///@}
    /// Closes and destroys every camera of this interface.
    RESULT RemoveCameraList();
    /// The camera opened through this interface with this device identifier, or null.
    RyCamera* FindCamera(const char* name) const noexcept;
    /// True when `camera` was opened through this interface and is still open.
    bool HoldsCamera(const RyCamera* camera) const noexcept;

    /// The number of cameras the transport layer lists on this adapter.
    RESULT GetNumCameras(unsigned int* count);
    /// The display name of the camera at an index; copied without a terminating zero
    /// (pass a zeroed buffer). A null buffer only reports the size.
    RESULT GetCameraName(unsigned int index, char* name, size_t* size);
    /// The device identifier of the camera at an index, copied without a terminating zero;
    /// a buffer too small receives nothing.
    RESULT GetCameraID(unsigned int index, char* id, size_t* size);

    /// The adapter's IPv4 address and subnet mask as dotted text.
    ///@{
    RESULT GetIPAddress(char* address, size_t* size);
    RESULT GetSubnet(char* subnet, size_t* size);
    ///@}
    /// Any information the transport layer has on an interface (GenTL info commands), by
    /// its identifier or on this adapter.
    ///@{
    RESULT GetInterfaceInfo(const char* interfaceId, int32_t command, int32_t* dataType,
                            void* buffer, size_t* size);
    RESULT GetInterfaceInfo(int32_t command, int32_t* dataType, void* buffer, size_t* size);
    ///@}

    /// RESULT_SUCCESS once an owner is set; the argument is not written.
    RESULT GetRyGigE(RyGigE* owner);

    /// The filter type given at construction; kept and reported only.
    ///@{
    RESULT GetFilterType(unsigned int* filterType);
    RESULT SetFilterType(unsigned int filterType);
    ///@}
    /// The multicast group cameras opened through this interface stream to (0: none, they
    /// stream to the adapter's address).
    ///@{
    RESULT SetMultiCastAddress(uint32_t address);
    uint32_t GetMultiCastAddress() const noexcept { return m_MultiCastAddress; }
    ///@}

    /// Stream settings the transport layer keeps for this adapter. The receiving time-out
    /// is how long a frame may take to complete; the retransmission time-out how long a
    /// resend request is waited for.
    ///@{
    RESULT SetImageReceivingTimeout(unsigned int timeoutMs);
    RESULT GetImageReceivingTimeout(unsigned int& timeoutMs);
    RESULT SetImageRetransTimeout(unsigned int timeoutMs);
    RESULT GetImageRetransTimeout(unsigned int& timeoutMs);
    ///@}
    /// On: missing packets are asked for again.
    RESULT UsePacketResend(int use);
    /// On (link aggregation): the stream is accepted on every host address, not only the
    /// adapter's.
    RESULT UseLAGMode(int use);
    /// On: a resend is asked for as soon as a gap is seen, not at the frame's trailer or
    /// time-out.
    RESULT UsePacketResendFrequently(int use);

    /// The transport layer's handles of this adapter and of its system (valid while open).
    ///@{
    TransportHandle GetInterfaceHandle() const noexcept { return m_hIF; }
    TransportHandle GetSystemHandle() const noexcept { return m_hTL; }
    ///@}
    /// The identifier the adapter was opened with.
    const char* GetInterfaceID() const noexcept { return m_InterfaceID; }

  private:
    friend class RyCamera;
    friend class RyGigE;
    using CameraMap = std::multimap<std::string, std::unique_ptr<RyCamera>>;

    RESULT OpenCameraNamed(const std::string& name, RyCamera** camera,
                           const camera::OpenRequest& request);
    /// Takes a camera out of the map and destroys it (its own CloseCamera calls this).
    void DestroyCamera(RyCamera* camera) noexcept;
    void CloseAllCameras() noexcept;
    RESULT WriteSetting(uint64_t pseudoAddress, uint32_t value, const wchar_t* function,
                        uint32_t line);

    TransportHandle m_hTL = nullptr;
    TransportHandle m_hIF = nullptr;
    char m_InterfaceID[128] = {};
    RyGigE* m_pRyGigE = nullptr;
    unsigned int m_FilterType = 1;
    uint32_t m_MultiCastAddress = 0;
    CameraMap m_Cameras;
};

}  // namespace RYSDK

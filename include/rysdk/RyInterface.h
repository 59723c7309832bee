// RyInterface: one network adapter opened in the transport layer. It lists the cameras
// reachable through it and carries the adapter's stream settings (receive and resend
// time-outs, packet resend, link aggregation).
#pragma once

#include <cstddef>
#include <cstdint>

#include "rysdk/RyExport.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"

namespace RYSDK {

class RyGigE;

class RYSDK_API RyInterface {
  public:
    RyInterface(TransportHandle systemHandle, unsigned int filterType);
    ~RyInterface();
    RyInterface(const RyInterface&) = delete;
    RyInterface& operator=(const RyInterface&) = delete;

    // Opens the adapter with this identifier. An identifier that contains "ID:" is read
    // as a label followed by the identifier proper ("ID: eth0" opens "eth0").
    RESULT OpenInterface(const char* interfaceId, RyGigE* owner);
    RESULT CloseInterface();

    RESULT GetNumCameras(unsigned int* count);
    // The display name of the camera at an index; copied without a terminating zero
    // (pass a zeroed buffer). A null buffer only reports the size.
    RESULT GetCameraName(unsigned int index, char* name, size_t* size);
    // The device identifier of the camera at an index, copied without a terminating zero;
    // a buffer too small receives nothing.
    RESULT GetCameraID(unsigned int index, char* id, size_t* size);

    // The adapter's IPv4 address and subnet mask as dotted text.
    RESULT GetIPAddress(char* address, size_t* size);
    RESULT GetSubnet(char* subnet, size_t* size);
    // Any information the transport layer has on an interface (GenTL info commands).
    RESULT GetInterfaceInfo(const char* interfaceId, int32_t command, int32_t* dataType,
                            void* buffer, size_t* size);
    RESULT GetInterfaceInfo(int32_t command, int32_t* dataType, void* buffer, size_t* size);

    // RESULT_SUCCESS once an owner is set; the argument is not written.
    RESULT GetRyGigE(RyGigE* owner);

    RESULT GetFilterType(unsigned int* filterType);
    RESULT SetFilterType(unsigned int filterType);
    RESULT SetMultiCastAddress(uint32_t address);
    uint32_t GetMultiCastAddress() const noexcept { return m_MultiCastAddress; }

    // Stream settings the transport layer keeps for this adapter.
    RESULT SetImageReceivingTimeout(unsigned int timeoutMs);
    RESULT GetImageReceivingTimeout(unsigned int& timeoutMs);
    RESULT SetImageRetransTimeout(unsigned int timeoutMs);
    RESULT GetImageRetransTimeout(unsigned int& timeoutMs);
    RESULT UsePacketResend(int use);
    RESULT UseLAGMode(int use);
    RESULT UsePacketResendFrequently(int use);

    TransportHandle GetInterfaceHandle() const noexcept { return m_hIF; }
    TransportHandle GetSystemHandle() const noexcept { return m_hTL; }
    const char* GetInterfaceID() const noexcept { return m_InterfaceID; }

  private:
    RESULT WriteSetting(uint64_t pseudoAddress, uint32_t value, const wchar_t* function,
                        uint32_t line);

    TransportHandle m_hTL = nullptr;
    TransportHandle m_hIF = nullptr;
    char m_InterfaceID[128] = {};
    RyGigE* m_pRyGigE = nullptr;
    unsigned int m_FilterType = 1;
    uint32_t m_MultiCastAddress = 0;
};

}  // namespace RYSDK

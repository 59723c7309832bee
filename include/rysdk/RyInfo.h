/// \file
/// The information records discovery fills: one RYINTERFACE_INFO per network interface,
/// each holding one RYCAMERA_INFO per camera found on it, and a DISCOVERY_INFO summary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

#include "rysdk/RyExport.h"
#include "rysdk/RyResult.h"

namespace RYSDK {

/// One camera as discovery saw it. A flat record of 588 bytes that is copied whole.
struct RYSDK_API RYCAMERA_INFO {
    RYCAMERA_INFO() noexcept;  ///< A zeroed record with m_Result 55 (not set).

    uint32_t m_ErrorFlag;          ///< 1 once opening the camera's interface failed
    uint32_t m_Result;             ///< RESULT of the failing step; 55 while not set
    uint32_t m_DeviceIndex;        ///< the camera's index on its interface
    char m_Name[256];              ///< device identifier: the key to open and find it by
    char m_ModelName[128];         ///< from the camera's discovery answer
    char m_ManufacturerName[128];  ///< from the camera's discovery answer
    char m_IPAddress[32];          ///< dotted IPv4 address
    char m_MACAddress[32];         ///< "00:11:22:33:44:55"
};

/// One network interface and the cameras found on it, in device index order.
class RYSDK_API RYINTERFACE_INFO {
  public:
    RYINTERFACE_INFO() noexcept;  ///< An empty record without cameras.
    /// Copies the fields and makes copies of the camera records.
    ///@{
    RYINTERFACE_INFO(const RYINTERFACE_INFO& other);
    RYINTERFACE_INFO& operator=(const RYINTERFACE_INFO& other);
    ///@}
    ~RYINTERFACE_INFO();  ///< Frees the camera records.

    /// Appends a camera record and takes ownership of it (it must come from new).
    void AddCameraInfo(RYCAMERA_INFO* camera);

    /// Drops every camera record.
    void ClearCameraInfo() noexcept;

    /// The camera record at `position` in the list, or null past its end.
    const RYCAMERA_INFO* GetCameraInfo(size_t position) const noexcept;

    uint32_t m_ErrorFlag;  ///< 1 once opening the interface for a camera failed
    RESULT m_Result;       ///< the failing step's result during discovery or open, else 0
    uint32_t m_Index;      ///< index in the transport layer's interface list
    char m_Name[256];      ///< display name
    std::list<std::unique_ptr<RYCAMERA_INFO>> m_CameraList;  ///< the camera records, owned
    uint64_t m_CameraCount;                                  ///< length of m_CameraList
};

/// A summary of the last discovery.
struct DISCOVERY_INFO {
    int32_t m_Discovered;         ///< 1 once a discovery succeeded
    uint32_t m_NumInterfaces;     ///< interface records held
    uint32_t m_NumCameras;        ///< cameras over all interfaces
    uint32_t m_DiscoveryTimeout;  ///< milliseconds each interface waits for answers
    uint32_t m_IgnoreSubnet;      ///< 1 when cameras outside an interface's subnet are listed
};

static_assert(sizeof(RYCAMERA_INFO) == 588, "RYCAMERA_INFO is 588 bytes");
static_assert(offsetof(RYCAMERA_INFO, m_Name) == 12);
static_assert(offsetof(RYCAMERA_INFO, m_ModelName) == 268);
static_assert(offsetof(RYCAMERA_INFO, m_ManufacturerName) == 396);
static_assert(offsetof(RYCAMERA_INFO, m_IPAddress) == 524);
static_assert(offsetof(RYCAMERA_INFO, m_MACAddress) == 556);

}  // namespace RYSDK

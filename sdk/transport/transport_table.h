// The SDK reaches the transport layer only through this table of its C functions. The
// default table points at libRyGenTL; a test installs a table of its own to produce the
// failures a real network cannot (an interface ID that cannot be read, a device ID that
// fails in the middle of discovery). The entries take the exported functions' own types,
// so the table cannot drift from the library's header.
#pragma once

#include "RyGenTL.h"

namespace RYSDK::transport {

// Every exported call of the transport layer, in the header's order.
#define RY_TRANSPORT_FUNCTIONS(X)       \
    X(GCInitLib)                        \
    X(GCCloseLib)                       \
    X(GCReadPort)                       \
    X(GCWritePort)                      \
    X(GCGetPortURL)                     \
    X(GCRegisterEvent)                  \
    X(GCUnregisterEvent)                \
    X(TLOpen)                           \
    X(TLClose)                          \
    X(TLUpdateInterfaceList)            \
    X(TLGetNumInterfaces)               \
    X(TLGetInterfaceID)                 \
    X(TLGetInterfaceInfo)               \
    X(TLOpenInterface)                  \
    X(TLGetDiscoveryInfo)               \
    X(IFSetIgnoreSubnetDiscover)        \
    X(IFUpdateDeviceList)               \
    X(IFGetNumDevices)                  \
    X(IFGetDeviceID)                    \
    X(IFGetDeviceInfo)                  \
    X(IFGetInfo)                        \
    X(IFOpenDevice)                     \
    X(IFClose)                          \
    X(IFSetForceIP)                     \
    X(DevGetPort)                       \
    X(DevGetInfo)                       \
    X(DevGetNumDataStreams)             \
    X(DevGetDataStreamID)               \
    X(DevOpenDataStream)                \
    X(DevClose)                         \
    X(DevSetMultiCastMode)              \
    X(DevSetHeartBeatTimeout)           \
    X(DevGetHeartBeatTimeout)           \
    X(DevSetHeartBeatTimeoutCheckCount) \
    X(DevGetHeartBeatTimeoutCheckCount) \
    X(DevSetEventControl)               \
    X(CloseCCP)                         \
    X(DSAnnounceBuffer)                 \
    X(DSRevokeBuffer)                   \
    X(DSQueueBuffer)                    \
    X(DSFlushQueue)                     \
    X(DSStartAcquisition)               \
    X(DSStopAcquisition)                \
    X(DSStartBufferGrabbing)            \
    X(DSStopBufferGrabbing)             \
    X(DSSetForceQueueBuffer)            \
    X(DSSetClearBuffer)                 \
    X(DSRecoverQueuedBuffer)            \
    X(DSGetInfo)                        \
    X(DSGetBufferInfo)                  \
    X(DSClose)                          \
    X(InitEvent)                        \
    X(EventGetData)                     \
    X(EventFlush)                       \
    X(EventKill)

struct TransportTable {
#define RY_TRANSPORT_ENTRY(name) decltype(&::name) name;
    RY_TRANSPORT_FUNCTIONS(RY_TRANSPORT_ENTRY)
#undef RY_TRANSPORT_ENTRY
};

// The table in use.
const TransportTable& Transport() noexcept;

// The table that points at libRyGenTL.
const TransportTable& DefaultTransport() noexcept;

// Installs another table (it must outlive its use); null restores the default. Meant for
// tests and for loading another producer; not to be called while SDK objects are in use.
void InstallTransport(const TransportTable* table) noexcept;

}  // namespace RYSDK::transport

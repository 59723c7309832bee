// The SDK reaches the transport layer only through this table of its C functions. The
// default table points at libRyGenTL; a test installs a table of its own to produce the
// failures a real network cannot (an interface ID that cannot be read, a device ID that
// fails in the middle of discovery). The entries take the exported functions' own types,
// so the table cannot drift from the library's header.
#pragma once

#include "RyGenTL.h"

namespace RYSDK::transport {

#define RY_TRANSPORT_FUNCTIONS(X)                                                            \
    X(GCInitLib)                                                                             \
    X(GCCloseLib) X(GCReadPort) X(GCWritePort) X(TLOpen) X(TLClose) X(TLUpdateInterfaceList) \
        X(TLGetNumInterfaces) X(TLGetInterfaceID) X(TLGetInterfaceInfo) X(TLOpenInterface)   \
            X(TLGetDiscoveryInfo) X(IFSetIgnoreSubnetDiscover) X(IFUpdateDeviceList)         \
                X(IFGetNumDevices) X(IFGetDeviceID) X(IFGetDeviceInfo) X(IFClose) X(IFSetForceIP)

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

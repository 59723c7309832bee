// The device a fuzz target of the SDK talks to: the transport layer's table with the
// harness's own port functions in place of the network, and the SDK's log silenced (every
// refused input would otherwise go to the system log).
#pragma once

#include "rysdk/RyEventLog.h"
#include "transport/transport_table.h"

namespace RYSDK::fuzz {

template <typename Adjust>
void InstallFuzzDevice(Adjust adjust) {
    static transport::TransportTable table;
    table = transport::DefaultTransport();
    adjust(table);
    SetEventLogCallback(nullptr, nullptr);
    transport::InstallTransport(&table);
}

}  // namespace RYSDK::fuzz

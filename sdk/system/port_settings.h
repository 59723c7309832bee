// Settings the transport layer keeps behind pseudo-addresses of a system or interface
// port: 4-byte values read and written with GCReadPort/GCWritePort.
#pragma once

#include <cstdint>

#include "core/log/log.h"
#include "rysdk/RyResult.h"
#include "rysdk/RyTypes.h"

namespace RYSDK::system {

// Writes one value; a failure is logged with `failureFormat` (one %ls: the status text)
// and mapped to a result.
RESULT WritePortValue(TransportHandle port, uint64_t pseudoAddress, uint32_t value,
                      const core::LogSite& site, uint32_t line, const wchar_t* failureFormat);

// Reads one value; `value` changes only on success.
RESULT ReadPortValue(TransportHandle port, uint64_t pseudoAddress, uint32_t& value,
                     const core::LogSite& site, uint32_t line);

}  // namespace RYSDK::system

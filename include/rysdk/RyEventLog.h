/// \file
/// Where the SDK's diagnostic records go.
///
/// The SDK writes an event-log record for every failure and for a few lifecycle events
/// while a RyGigE object exists. By default the records go to syslog (the journal) under
/// the source name "RyGigE". An application can route them to a callback of its own or
/// silence them, and can receive the human-readable trace lines as well.
#pragma once

#include <cstdint>

#include "rysdk/RyExport.h"

namespace RYSDK {

/// Event types of a record, by severity.
enum EVENT_LOG_TYPE : uint16_t {
    EVENT_LOG_SUCCESS = 0,
    EVENT_LOG_ERROR = 1,
    EVENT_LOG_WARNING = 2,
    EVENT_LOG_INFORMATION = 4,
};

/// Receives one record: its type, its event identifier (severity in the top two bits,
/// facility 2, code equal to the level) and its text. Called on the thread that logged.
typedef void (*EventLogCallback)(void* context, uint16_t eventType, uint32_t eventId,
                                 const wchar_t* record);

/// Receives one trace line, on the thread that logged.
typedef void (*TraceCallback)(void* context, const wchar_t* line);

/// Sends records to the callback instead of syslog. A null callback silences the log.
RYSDK_API void SetEventLogCallback(EventLogCallback callback, void* context) noexcept;

/// Sends records to syslog again (the default).
RYSDK_API void UseSyslogEventLog() noexcept;

/// Installs (or, with null, removes) the receiver of trace lines. None by default.
RYSDK_API void SetTraceCallback(TraceCallback callback, void* context) noexcept;

}  // namespace RYSDK

// Where finished log output goes: the event-log sink (syslog, an application callback, or
// nowhere) and the optional trace callback. Process-wide, because the event source the
// records belong to is process-wide; safe to change while other threads log.
#pragma once

#include <cstdint>

namespace RYSDK::core {

// Hands one finished event-log record to the current sink.
void DeliverEventRecord(uint16_t eventType, uint32_t eventId, const wchar_t* record) noexcept;

// Hands one finished trace line to the trace callback, if any.
void DeliverTraceLine(const wchar_t* line) noexcept;

}  // namespace RYSDK::core

// The event-log writer. Records exist only while an event source is registered (between
// the construction and the destruction of a RyGigE); otherwise writes are dropped.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace RYSDK::core {

// The process-wide event source. Registering again keeps one source; deregistering ends
// event logging for every RyGigE in the process, as applications have always seen.
using EventSourceHandle = const void*;
EventSourceHandle RegisterEventSource() noexcept;
void DeregisterEventSource() noexcept;
EventSourceHandle CurrentEventSource() noexcept;

inline constexpr size_t kEventMessageCapacity = 4096;
// A record is cut at this many characters.
inline constexpr size_t kEventRecordLength = 1024;

struct EventKind {
    uint16_t type;
    uint32_t identifier;
};

// The event type and identifier of a level; false for levels that write nothing (3 and
// anything unknown).
bool EventKindForLevel(uint32_t level, EventKind& kind) noexcept;

// Builds the record of an already formatted message into record[kEventRecordLength + 1].
void BuildEventRecord(wchar_t* record, const wchar_t* message, const wchar_t* label,
                      const wchar_t* file, const wchar_t* function, uint32_t line,
                      int64_t counter) noexcept;

void WriteEventLog(EventSourceHandle source, const wchar_t* label, uint32_t level,
                   const wchar_t* file, const wchar_t* function, uint32_t line,
                   const wchar_t* format, ...) noexcept;
void WriteEventLogV(EventSourceHandle source, const wchar_t* label, uint32_t level,
                    const wchar_t* file, const wchar_t* function, uint32_t line,
                    const wchar_t* format, va_list args) noexcept;

// Writes a message that is already formatted.
void WriteEventLogMessage(EventSourceHandle source, const wchar_t* label, uint32_t level,
                          const wchar_t* file, const wchar_t* function, uint32_t line,
                          const wchar_t* message) noexcept;

}  // namespace RYSDK::core

#include "core/log/event_log.h"

#include <atomic>

#include "core/log/bounded_format.h"
#include "core/log/log_levels.h"
#include "core/log/log_routing.h"
#include "core/platform/clock.h"
#include "rysdk/RyEventLog.h"

namespace RYSDK::core {
namespace {

// The source is only a token: what a record does is decided by the log routing.
const char kEventSourceToken = 0;
std::atomic<EventSourceHandle> currentSource{nullptr};

const wchar_t* OrNullText(const wchar_t* text) noexcept {
    return text != nullptr ? text : L"(null)";
}

}  // namespace

EventSourceHandle RegisterEventSource() noexcept {
    currentSource.store(&kEventSourceToken);
    return &kEventSourceToken;
}

void DeregisterEventSource() noexcept {
    currentSource.store(nullptr);
}

EventSourceHandle CurrentEventSource() noexcept {
    return currentSource.load();
}

bool EventKindForLevel(uint32_t level, EventKind& kind) noexcept {
    switch (level) {
        case kLogInfo:
            kind = {EVENT_LOG_SUCCESS, 0x00020000u};
            return true;
        case kLogErr:
            kind = {EVENT_LOG_ERROR, 0xC0020001u};
            return true;
        case kLogDebug:
            kind = {EVENT_LOG_WARNING, 0x80020002u};
            return true;
        case kLogEtc:
            kind = {EVENT_LOG_INFORMATION, 0x40020004u};
            return true;
        default:
            return false;
    }
}

void BuildEventRecord(wchar_t* record, const wchar_t* message, const wchar_t* label,
                      const wchar_t* file, const wchar_t* function, uint32_t line,
                      int64_t counter) noexcept {
    // The line number is printed signed, as it always was.
    FormatBounded(record, kEventRecordLength + 1, L"\n\r%ls\n\r%ls\n\r%ls\n\r%ls\n\r%d\n\r%lld \n",
                  OrNullText(message), OrNullText(label), OrNullText(file), OrNullText(function),
                  static_cast<int32_t>(line), static_cast<long long>(counter));
}

void WriteEventLogMessage(EventSourceHandle source, const wchar_t* label, uint32_t level,
                          const wchar_t* file, const wchar_t* function, uint32_t line,
                          const wchar_t* message) noexcept {
    if (source == nullptr)
        return;
    EventKind kind{};
    if (!EventKindForLevel(level, kind))
        return;
    thread_local wchar_t record[kEventRecordLength + 1];
    BuildEventRecord(record, message, label, file, function, line, PerformanceCounter());
    DeliverEventRecord(kind.type, kind.identifier, record);
}

void WriteEventLogV(EventSourceHandle source, const wchar_t* label, uint32_t level,
                    const wchar_t* file, const wchar_t* function, uint32_t line,
                    const wchar_t* format, va_list args) noexcept {
    if (source == nullptr)
        return;
    thread_local wchar_t message[kEventMessageCapacity];
    FormatBoundedV(message, kEventMessageCapacity, format, args);
    WriteEventLogMessage(source, label, level, file, function, line, message);
}

void WriteEventLog(EventSourceHandle source, const wchar_t* label, uint32_t level,
                   const wchar_t* file, const wchar_t* function, uint32_t line,
                   const wchar_t* format, ...) noexcept {
    va_list args;
    va_start(args, format);
    WriteEventLogV(source, label, level, file, function, line, format, args);
    va_end(args);
}

}  // namespace RYSDK::core

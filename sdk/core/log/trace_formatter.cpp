#include "core/log/trace_formatter.h"

#include "core/log/bounded_format.h"
#include "core/log/log_levels.h"
#include "core/log/log_routing.h"

namespace RYSDK::core {
namespace {

// The templates are written with %ls where the classic wide printf had %s; the lines
// they produce are the same.
const wchar_t* TraceTemplate(uint32_t level) noexcept {
    switch (level) {
        case kLogInfo:
            return L"[ORN-Info] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
        case kLogErr:
            return L"[ORN-Err] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
        case kLogDebug:
            // Kept for completeness: debug lines are never formatted.
            return L"[ORN-Debug] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
        case kLogException:
            return L"[ORN-Exception] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
        case kTraceEtc:
            return L"[ORN-Etc] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
        default:
            return L"[ORN] %ls \t[ %ls\t(Line:%d) ] \t%ls \n";
    }
}

const wchar_t* OrNullText(const wchar_t* text) noexcept {
    return text != nullptr ? text : L"(null)";
}

}  // namespace

const wchar_t* FormatTraceV(const wchar_t* file, const wchar_t* function, int32_t line,
                            uint32_t level, const wchar_t* format, va_list args) noexcept {
    if (level == kLogDebug || level == kLogEtc)
        return nullptr;

    thread_local wchar_t message[kTraceMessageCapacity];
    thread_local wchar_t traceLine[kTraceLineCapacity];
    FormatBoundedV(message, kTraceMessageCapacity, format, args);
    FormatBounded(traceLine, kTraceLineCapacity, TraceTemplate(level), message,
                  OrNullText(function), line, OrNullText(file));
    DeliverTraceLine(traceLine);
    return traceLine;
}

const wchar_t* FormatTrace(const wchar_t* file, const wchar_t* function, int32_t line,
                           uint32_t level, const wchar_t* format, ...) noexcept {
    va_list args;
    va_start(args, format);
    const wchar_t* result = FormatTraceV(file, function, line, level, format, args);
    va_end(args);
    return result;
}

}  // namespace RYSDK::core

#include "core/log/log.h"

namespace RYSDK::core {

void LogEvent(const LogSite& site, uint32_t line, uint32_t level, const wchar_t* format,
              ...) noexcept {
    va_list args;
    va_start(args, format);
    WriteEventLogV(CurrentEventSource(), kSdkSourceLabel, level, site.file, site.function, line,
                   format, args);
    va_end(args);
}

void LogTrace(const LogSite& site, uint32_t line, uint32_t level, const wchar_t* format,
              ...) noexcept {
    va_list args;
    va_start(args, format);
    FormatTraceV(site.file, site.function, static_cast<int32_t>(line), level, format, args);
    va_end(args);
}

}  // namespace RYSDK::core

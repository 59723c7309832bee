#include "core/log/exception_guard.h"

#include "core/platform/text.h"

namespace RYSDK::core {

namespace {
constexpr size_t kExceptionTextCapacity = 4096;
}

void ReportException(const LogSite& site, uint32_t line, const char* what) noexcept {
    thread_local wchar_t text[kExceptionTextCapacity];
    WidenInto(what, text, kExceptionTextCapacity);
    LogEvent(site, line, kLogErr, L"%ls", text);
    LogTrace(site, line, kLogException, L"%ls", text);
}

void ReportUnknownException(const LogSite& site, uint32_t line) noexcept {
    LogEvent(site, line, kLogErr, L"[Lumacor SDK Exception] : Unknown Exception.\n");
    LogTrace(site, line, kLogException, L"Unknown Exception");
}

}  // namespace RYSDK::core

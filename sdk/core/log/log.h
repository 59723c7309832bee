// What SDK code includes to log. Each logging function names its site once:
//
//     static constexpr core::LogSite kSite{L"RyGigE", L"RYSDK::RyGigE::Open"};
//     RY_LOG_EVENT(kSite, core::kLogErr, L"TLOpen is failed Ret[%ls]", TransportCodeText(rc));
//
// Narrow names are widened with core::Widen before they are logged; wide texts use %ls.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "core/log/event_log.h"
#include "core/log/log_levels.h"
#include "core/log/trace_formatter.h"

namespace RYSDK::core {

struct LogSite {
    const wchar_t* file;      // source file name without extension
    const wchar_t* function;  // fully qualified function name
};

// An event-log record from the SDK itself (source label "RyGigE.V7.DLL").
void LogEvent(const LogSite& site, uint32_t line, uint32_t level, const wchar_t* format,
              ...) noexcept;

// A trace line; levels 2 and 4 produce none.
void LogTrace(const LogSite& site, uint32_t line, uint32_t level, const wchar_t* format,
              ...) noexcept;

}  // namespace RYSDK::core

#define RY_LOG_EVENT(site, level, ...) \
    ::RYSDK::core::LogEvent((site), __LINE__, (level), __VA_ARGS__)
#define RY_LOG_TRACE(site, level, ...) \
    ::RYSDK::core::LogTrace((site), __LINE__, (level), __VA_ARGS__)

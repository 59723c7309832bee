// Builds the human-readable trace line of a log call. The line goes to the application's
// trace callback when one is installed; the SDK itself discards it.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace RYSDK::core {

inline constexpr size_t kTraceMessageCapacity = 4096;
inline constexpr size_t kTraceLineCapacity = 8192;

// Formats `format` (wide printf conventions: %ls for wide texts) and wraps it in the
// template of `level`. Levels 2 and 4 format nothing and give null. The line lives in a
// buffer of the calling thread that its next trace call overwrites.
const wchar_t* FormatTrace(const wchar_t* file, const wchar_t* function, int32_t line,
                           uint32_t level, const wchar_t* format, ...) noexcept;
const wchar_t* FormatTraceV(const wchar_t* file, const wchar_t* function, int32_t line,
                            uint32_t level, const wchar_t* format, va_list args) noexcept;

}  // namespace RYSDK::core

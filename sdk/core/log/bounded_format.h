// printf-style formatting into fixed wide buffers, cut rather than overflowing.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace RYSDK::core {

// Formats into out[capacity]; a result that does not fit is cut at capacity - 1
// characters. Always terminates when capacity > 0.
void FormatBoundedV(wchar_t* out, size_t capacity, const wchar_t* format, va_list args) noexcept;
void FormatBounded(wchar_t* out, size_t capacity, const wchar_t* format, ...) noexcept;

// Treats an application's text as a format that has no arguments: "%%" gives "%", and
// every other conversion is consumed and rendered as if its argument were zero or an
// empty text, so a stray "%s" can never read memory that is not there.
void FormatWithoutArguments(wchar_t* out, size_t capacity, const wchar_t* format) noexcept;

}  // namespace RYSDK::core

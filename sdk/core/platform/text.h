// Conversions between the SDK's narrow texts (UTF-8) and the wide texts of its log.
// No locale is consulted, so an application's locale settings never change what we log.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace RYSDK::core {

// Decodes UTF-8; each malformed sequence becomes U+FFFD.
std::wstring Widen(std::string_view utf8);

// Decodes into a caller's buffer of `capacity` characters, always terminated (when
// capacity > 0) and cut at a character boundary. A null text gives an empty one.
void WidenInto(const char* utf8, wchar_t* out, size_t capacity) noexcept;

// Encodes as UTF-8; characters outside Unicode become U+FFFD.
std::string Narrow(std::wstring_view wide);

}  // namespace RYSDK::core

#include "core/platform/text.h"

#include <cstdint>

namespace RYSDK::core {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

int SequenceLength(unsigned char lead) noexcept {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// Decodes one character at text[pos], advancing pos past what it consumed.
char32_t DecodeOne(std::string_view text, size_t& pos) noexcept {
    const auto lead = static_cast<unsigned char>(text[pos]);
    const int length = SequenceLength(lead);
    if (length == 0) {
        ++pos;
        return kReplacement;
    }
    if (length == 1) {
        ++pos;
        return lead;
    }
    char32_t value = lead & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        if (pos + i >= text.size() || (static_cast<unsigned char>(text[pos + i]) & 0xC0) != 0x80) {
            pos += i;
            return kReplacement;
        }
        value = (value << 6) | (static_cast<unsigned char>(text[pos + i]) & 0x3F);
    }
    pos += length;
    const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    return (overlong || surrogate || value > 0x10FFFF) ? kReplacement : value;
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

}  // namespace

std::wstring Widen(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    for (size_t pos = 0; pos < utf8.size();) {
        wide += static_cast<wchar_t>(DecodeOne(utf8, pos));
    }
    return wide;
}

void WidenInto(const char* utf8, wchar_t* out, size_t capacity) noexcept {
    if (capacity == 0)
        return;
    size_t written = 0;
    if (utf8 != nullptr) {
        const std::string_view text(utf8);
        for (size_t pos = 0; pos < text.size() && written + 1 < capacity;) {
            out[written++] = static_cast<wchar_t>(DecodeOne(text, pos));
        }
    }
    out[written] = L'\0';
}

std::string Narrow(std::wstring_view wide) {
    std::string narrow;
    narrow.reserve(wide.size());
    for (wchar_t c : wide) {
        AppendUtf8(narrow, static_cast<char32_t>(c));
    }
    return narrow;
}

}  // namespace RYSDK::core

#include "core/log/bounded_format.h"

#include <cwchar>
#include <cwctype>
#include <iterator>
#include <string>
#include <string_view>

namespace RYSDK::core {
namespace {

constexpr std::wstring_view kFlags = L"-+ #0'";
constexpr std::wstring_view kLengthModifiers = L"hlLqjztI0123456789";
constexpr std::wstring_view kIntegerConversions = L"diouxXc";
constexpr std::wstring_view kFloatConversions = L"eEfFgGaA";
constexpr std::wstring_view kTextConversions = L"sS";

bool In(std::wstring_view set, wchar_t c) {
    return c != L'\0' && set.find(c) != std::wstring_view::npos;
}

// Appends `text` to out at `written`, cutting at the capacity.
void Append(wchar_t* out, size_t capacity, size_t& written, std::wstring_view text) {
    for (wchar_t c : text) {
        if (written + 1 >= capacity)
            return;
        out[written++] = c;
    }
}

// Renders one conversion as if its argument were zero; `spec` holds flags, width and
// precision without any '*' or length modifier.
std::wstring_view RenderZero(std::wstring_view spec, wchar_t conversion, wchar_t (&scratch)[128]) {
    std::wstring format(L"%");
    format += spec;
    if (In(kIntegerConversions, conversion)) {
        format += conversion == L'c' ? L'd' : conversion;
        if (conversion == L'c')
            return {};
        std::swprintf(scratch, std::size(scratch), format.c_str(), 0);
    } else if (In(kFloatConversions, conversion)) {
        format += conversion;
        std::swprintf(scratch, std::size(scratch), format.c_str(), 0.0);
    } else if (In(kTextConversions, conversion)) {
        format += L"ls";
        std::swprintf(scratch, std::size(scratch), format.c_str(), L"");
    } else {
        return {};
    }
    scratch[std::size(scratch) - 1] = L'\0';
    return scratch;
}

}  // namespace

void FormatBoundedV(wchar_t* out, size_t capacity, const wchar_t* format, va_list args) noexcept {
    if (capacity == 0)
        return;
    if (format == nullptr) {
        out[0] = L'\0';
        return;
    }
    // glibc leaves the buffer unterminated when the text does not fit.
    if (std::vswprintf(out, capacity, format, args) < 0)
        out[capacity - 1] = L'\0';
}

void FormatBounded(wchar_t* out, size_t capacity, const wchar_t* format, ...) noexcept {
    va_list args;
    va_start(args, format);
    FormatBoundedV(out, capacity, format, args);
    va_end(args);
}

void FormatWithoutArguments(wchar_t* out, size_t capacity, const wchar_t* format) noexcept {
    if (capacity == 0)
        return;
    size_t written = 0;
    const std::wstring_view text = format != nullptr ? format : L"";
    wchar_t scratch[128];
    for (size_t pos = 0; pos < text.size(); ++pos) {
        if (text[pos] != L'%') {
            Append(out, capacity, written, text.substr(pos, 1));
            continue;
        }
        const size_t start = pos++;
        std::wstring spec;
        while (pos < text.size() && In(kFlags, text[pos]))
            spec += text[pos++];
        while (pos < text.size() && (std::iswdigit(text[pos]) || text[pos] == L'*')) {
            if (text[pos] != L'*')
                spec += text[pos];
            ++pos;
        }
        if (pos < text.size() && text[pos] == L'.') {
            spec += text[pos++];
            while (pos < text.size() && (std::iswdigit(text[pos]) || text[pos] == L'*')) {
                if (text[pos] != L'*')
                    spec += text[pos];
                ++pos;
            }
        }
        while (pos < text.size() && In(kLengthModifiers, text[pos]))
            ++pos;
        if (pos >= text.size()) {
            Append(out, capacity, written, text.substr(start));
            break;
        }
        if (text[pos] == L'%') {
            Append(out, capacity, written, L"%");
        } else {
            Append(out, capacity, written, RenderZero(spec, text[pos], scratch));
        }
    }
    out[written] = L'\0';
}

}  // namespace RYSDK::core

#include "safe_text.h"

#include <cstdint>
#include <cstdio>

namespace rycam {
namespace {

void AppendHex(std::string& out, const char* format, unsigned value) {
    char escape[16];
    std::snprintf(escape, sizeof(escape), format, value);
    out += escape;
}

// The length of the well-formed UTF-8 sequence at `at` (overlong forms, surrogates and code
// points past U+10FFFF are not well formed), or 0; `codePoint` receives its value.
size_t SequenceLength(std::string_view text, size_t at, uint32_t& codePoint) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[at + i]); };
    const uint8_t lead = byte(0);
    size_t length = 0;
    uint32_t minimum = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, minimum = 0x80, codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, minimum = 0x800, codePoint = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, minimum = 0x10000, codePoint = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (byte(i) & 0x3F);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < minimum || codePoint > 0x10FFFF || surrogate)
        return 0;
    return length;
}

void AppendAscii(std::string& out, uint8_t byte) {
    switch (byte) {
        case '\n':
            out += "\\n";
            return;
        case '\t':
            out += "\\t";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\\':
            out += "\\\\";
            return;
        default:
            break;
    }
    if (byte < 0x20 || byte == 0x7F)
        AppendHex(out, "\\x%02X", byte);
    else
        out += static_cast<char>(byte);
}

}  // namespace

std::string SafeText(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto byte = static_cast<uint8_t>(text[at]);
        if (byte < 0x80) {
            AppendAscii(out, byte);
            ++at;
            continue;
        }
        uint32_t codePoint = 0;
        const size_t length = SequenceLength(text, at, codePoint);
        if (length == 0) {
            AppendHex(out, "\\x%02X", byte);
            ++at;
        } else if (codePoint < 0xA0) {
            AppendHex(out, "\\u{%04X}", codePoint);  // C1 controls, CSI among them
            at += length;
        } else {
            out.append(text.substr(at, length));
            at += length;
        }
    }
    return out;
}

}  // namespace rycam

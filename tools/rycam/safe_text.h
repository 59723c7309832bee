// Texts that come from a device (names, serial numbers, feature values, serial answers) are
// printed through SafeText: a camera must not be able to send escape sequences or other
// control codes to the user's terminal.
#pragma once

#include <string>
#include <string_view>

namespace rycam {

// The text with every control character (C0, DEL and the C1 range), and every byte that is
// not part of well-formed UTF-8, written as a visible escape: \n, \t, \\, \xHH for a
// byte, \u{HHHH} for a C1 code point. Printable UTF-8 passes unchanged.
std::string SafeText(std::string_view text);

// The same for a fixed-size field that may lack its terminating zero.
template <size_t N>
std::string SafeField(const char (&field)[N]) {
    size_t length = 0;
    while (length < N && field[length] != '\0')
        ++length;
    return SafeText(std::string_view(field, length));
}

}  // namespace rycam

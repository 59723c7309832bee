// Device texts reach the terminal only through SafeText.
#include "safe_text.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    const char* name;
    std::string input;
    std::string printed;
};

TEST(SafeText, ControlsAndBrokenUtf8AreEscapedPrintableTextPasses) {
    const Case cases[] = {
        {"plain", "RY-EMU 1.0", "RY-EMU 1.0"},
        {"escape sequence", "EVIL\x1b[31mred", "EVIL\\x1B[31mred"},
        {"newline, tab, return", "a\nb\tc\rd", "a\\nb\\tc\\rd"},
        {"backslash is doubled", "C:\\x", "C:\\\\x"},
        {"bell and delete", std::string("\x07\x7f"), "\\x07\\x7F"},
        {"NUL inside", std::string("a\0b", 3), "a\\x00b"},
        {"UTF-8 passes", "Kamera \xc3\xa4 \xe2\x82\xac \xf0\x9f\x93\xb7", "Kamera ä € 📷"},
        {"C1 control (CSI) as code point",
         "\xc2\x9b"
         "31m",
         "\\u{009B}31m"},
        {"no-break space is printable", "\xc2\xa0", "\xc2\xa0"},
        {"lone continuation byte", "\x80", "\\x80"},
        {"truncated sequence at the end", "ok\xe2\x82", "ok\\xE2\\x82"},
        {"overlong slash", "\xc0\xaf", "\\xC0\\xAF"},
        {"surrogate", "\xed\xa0\x80", "\\xED\\xA0\\x80"},
        {"beyond U+10FFFF", "\xf4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(rycam::SafeText(c.input), c.printed) << c.name;
}

TEST(SafeText, AFieldWithoutTerminatorStopsAtItsEnd) {
    const char full[4] = {'a', 'b', 'c', 'd'};
    EXPECT_EQ(rycam::SafeField(full), "abcd");
    const char shorter[8] = "ab\x1b";
    EXPECT_EQ(rycam::SafeField(shorter), "ab\\x1B");
}

}  // namespace

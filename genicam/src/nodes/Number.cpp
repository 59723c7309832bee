#include "nodes/Number.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include "ry/genicam/Exceptions.h"

namespace RyGenApi::detail {

int64_t Number::AsInteger(std::string_view node) const {
    if (!isReal) {
        return integer;
    }
    const double rounded = std::round(real);
    if (!(rounded >= -9223372036854775808.0 && rounded < 9223372036854775807.0)) {
        throw OutOfRangeException(std::string(node),
                                  "value " + std::to_string(real) + " does not fit an integer");
    }
    return static_cast<int64_t>(rounded);
}

bool ParseInteger(std::string_view text, int64_t& value) {
    bool negative = false;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        negative = text[0] == '-';
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty()) {
        return false;
    }
    uint64_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return false;
    }
    value = static_cast<int64_t>(negative ? (0 - magnitude) : magnitude);
    return true;
}

bool ParseReal(std::string_view text, double& value) {
    if (text.empty() || text.size() > 64) {
        return false;
    }
    const std::string copy(text);
    if (copy == "INF" || copy == "+INF") {
        value = HUGE_VAL;
        return true;
    }
    if (copy == "-INF") {
        value = -HUGE_VAL;
        return true;
    }
    char* end = nullptr;
    value = std::strtod(copy.c_str(), &end);
    if (end != copy.c_str() + copy.size()) {
        int64_t integer = 0;
        if (!ParseInteger(text, integer)) {
            return false;
        }
        value = static_cast<double>(integer);
    }
    return true;
}

}  // namespace RyGenApi::detail

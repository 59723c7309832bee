// The value that travels between nodes: an integer or a double, whichever the source node
// naturally holds, converted only where a node of the other kind consumes it.
#pragma once

#include <cstdint>
#include <string_view>

namespace RyGenApi::detail {

struct Number {
    bool isReal = false;
    int64_t integer = 0;
    double real = 0.0;

    static Number Integer(int64_t value) { return {false, value, static_cast<double>(value)}; }
    static Number Real(double value) { return {true, 0, value}; }
    double AsReal() const { return isReal ? real : static_cast<double>(integer); }
    // Rounds halves away from zero; throws OutOfRangeException naming `node` outside int64.
    int64_t AsInteger(std::string_view node) const;
};

// Parses decimal or 0x-prefixed hexadecimal text as written in description files.
bool ParseInteger(std::string_view text, int64_t& value);
bool ParseReal(std::string_view text, double& value);

}  // namespace RyGenApi::detail

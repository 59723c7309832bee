#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "nodes/Facades.h"
#include "ry/genicam/Exceptions.h"
#include "ry/genicam/Types.h"

namespace RyGenApi {

EAccessMode Combine(EAccessMode first, EAccessMode second) {
    if (first == NI || second == NI) {
        return NI;
    }
    if (first == NA || second == NA) {
        return NA;
    }
    if ((first == WO && second == RO) || (first == RO && second == WO)) {
        return NA;
    }
    if (first == WO || second == WO) {
        return WO;
    }
    if (first == RO || second == RO) {
        return RO;
    }
    return (first == RW && second == RW) ? RW : _UndefinedAccesMode;
}

EVisibility Combine(EVisibility first, EVisibility second) {
    return first > second ? first : second;
}

const char* AccessModeName(EAccessMode mode) {
    static const char* const kNames[] = {"NI", "NA", "WO", "RO", "RW", "Undefined", "Cycle"};
    const auto index = static_cast<int>(mode);
    return index >= 0 && index <= 6 ? kNames[index] : "Undefined";
}

const char* InterfaceTypeName(EInterfaceType type) {
    static const char* const kNames[] = {"IValue",    "IBase",        "IInteger",   "IBoolean",
                                         "ICommand",  "IFloat",       "IString",    "IRegister",
                                         "ICategory", "IEnumeration", "IEnumEntry", "IPort"};
    const auto index = static_cast<int>(type);
    return index >= 0 && index <= 11 ? kNames[index] : "Unknown";
}

GenericException::GenericException(const char* kind, std::string nodeName, std::string message)
    : nodeName_(std::move(nodeName)), message_(std::move(message)) {
    text_ = kind;
    if (!nodeName_.empty()) {
        text_ += ": node '" + nodeName_ + "'";
    }
    text_ += ": " + message_;
}

namespace detail {

std::string FormatReal(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

std::string FormatInteger(int64_t value, ERepresentation representation) {
    char text[64];
    if (representation == HexNumber) {
        std::snprintf(text, sizeof text, "0x%" PRIx64, static_cast<uint64_t>(value));
    } else {
        std::snprintf(text, sizeof text, "%" PRId64, value);
    }
    return text;
}

}  // namespace detail
}  // namespace RyGenApi

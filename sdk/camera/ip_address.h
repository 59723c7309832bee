// Dotted IPv4 text as the number GigE Vision registers hold.
#pragma once

#include <cstdint>

namespace RYSDK::camera {

// The first part lands in the most significant byte; parts that do not scan count as 0.
uint32_t StrIP2dwIP(const char* text);

}  // namespace RYSDK::camera

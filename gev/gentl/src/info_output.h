// Writes one value of an information query into the caller's (type, buffer, size) triple,
// the way every *GetInfo call answers: a null buffer asks for the size, a short buffer is
// refused with GC_ERR_BUFFER_TOO_SMALL's equivalent and nothing is written past `*size`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "RyGenTL.h"

namespace ry::gentl {

GC_ERROR WriteInfoText(const std::string& text, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR WriteInfoBytes(const void* value, size_t valueSize, INFO_DATATYPE valueType,
                        INFO_DATATYPE* type, void* buffer, size_t* size);

template <typename T>
GC_ERROR WriteInfoValue(T value, INFO_DATATYPE valueType, INFO_DATATYPE* type, void* buffer,
                        size_t* size) {
    return WriteInfoBytes(&value, sizeof value, valueType, type, buffer, size);
}

// The 64-bit counters are also accepted into 4-byte buffers (truncated), because callers
// that keep 32-bit statistics ask with size 4.
GC_ERROR WriteInfoCounter(uint64_t value, INFO_DATATYPE* type, void* buffer, size_t* size);

// Copies a text into an identifier buffer: size in = capacity, out = bytes with the zero.
GC_ERROR WriteText(const std::string& text, char* buffer, size_t* size);

}  // namespace ry::gentl

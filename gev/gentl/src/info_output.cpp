#include "info_output.h"

#include <cstring>

namespace ry::gentl {

GC_ERROR WriteInfoBytes(const void* value, size_t valueSize, INFO_DATATYPE valueType,
                        INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (!size)
        return GC_ERR_INVALID_PARAMETER;
    if (type)
        *type = valueType;
    if (!buffer) {
        *size = valueSize;
        return GC_ERR_SUCCESS;
    }
    if (*size < valueSize) {
        *size = valueSize;
        return GC_ERR_INSUFFICIENT_SIZE;
    }
    std::memcpy(buffer, value, valueSize);
    *size = valueSize;
    return GC_ERR_SUCCESS;
}

GC_ERROR WriteInfoText(const std::string& text, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return WriteInfoBytes(text.c_str(), text.size() + 1, INFO_DATATYPE_STRING, type, buffer, size);
}

GC_ERROR WriteInfoCounter(uint64_t value, INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (size && buffer && *size >= sizeof(uint32_t) && *size < sizeof(uint64_t))
        return WriteInfoValue(static_cast<uint32_t>(value), INFO_DATATYPE_UINT32, type, buffer,
                              size);
    return WriteInfoValue(value, INFO_DATATYPE_UINT64, type, buffer, size);
}

GC_ERROR WriteText(const std::string& text, char* buffer, size_t* size) {
    return WriteInfoBytes(text.c_str(), text.size() + 1, INFO_DATATYPE_STRING, nullptr, buffer,
                          size);
}

}  // namespace ry::gentl

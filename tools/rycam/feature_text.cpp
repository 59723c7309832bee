#include "feature_text.h"

#include <vector>

namespace rycam {

RYSDK::RESULT ReadFeature(RYSDK::RyCamera& camera, const std::string& name, std::string& value) {
    // Most values fit the first buffer; a longer one says its size and is read again.
    std::vector<char> buffer(256);
    for (int attempt = 0; attempt < 2; ++attempt) {
        uint64_t size = buffer.size();
        const RYSDK::RESULT result = camera.GetCustomCommand(name.c_str(), buffer.data(), &size);
        if (result == RYSDK::RESULT_SUCCESS) {
            value.assign(buffer.data(), size > 0 && size <= buffer.size() ? size - 1 : 0);
            return result;
        }
        if (result != RYSDK::RESULT_ERROR_INVALID_PARAMETER || size <= buffer.size())
            return result;
        buffer.resize(size);
    }
    return RYSDK::RESULT_ERROR_INVALID_PARAMETER;
}

}  // namespace rycam

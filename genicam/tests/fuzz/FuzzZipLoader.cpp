// libFuzzer target: arbitrary bytes as zipped description data.
#include "ry/genicam/Exceptions.h"
#include "ry/genicam/NodeMapRef.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RyGenApi::CNodeMapRef map;
    try {
        map._LoadXMLFromZIPData(data, size);
    } catch (const RyGenApi::GenericException&) {
    }
    return 0;
}

// libFuzzer target: arbitrary bytes as a description file, then every node evaluated
// against a register space of zeros. Only GenericException may escape the node map.
#include <cstring>
#include <string>

#include "ry/genicam/Exceptions.h"
#include "ry/genicam/NodeMapRef.h"
#include "ry/genicam/ZeroPort.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RyGenApi::CNodeMapRef map;
    try {
        map._LoadXMLFromString(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const RyGenApi::GenericException&) {
        return 0;
    }
    RyGenApi::ZeroPort port;
    map._Connect(&port);
    RyGenApi::NodeList_t nodes;
    map._GetNodeMap()->GetNodes(nodes);
    for (RyGenApi::INode* node : nodes) {
        try {
            if (auto* value = dynamic_cast<RyGenApi::IValue*>(node);
                value && RyGenApi::IsReadable(node->GetAccessMode())) {
                value->ToString();
            }
            if (auto* integer = dynamic_cast<RyGenApi::IInteger*>(node)) {
                integer->SetValue(integer->GetMin());
            }
        } catch (const RyGenApi::GenericException&) {
        }
    }
    return 0;
}

// libFuzzer target: arbitrary bytes as a description file, then every node evaluated
// against a register space of zeros. Only GenericException may escape the node map.
#include <cstring>
#include <string>

#include "ry/genicam/Exceptions.h"
#include "ry/genicam/NodeMapRef.h"

namespace {

class ZeroPort : public RyGenApi::IPort {
  public:
    RyGenApi::EAccessMode GetAccessMode() const override { return RyGenApi::RW; }
    void Read(void* buffer, int64_t, int64_t length) override {
        std::memset(buffer, 0, static_cast<size_t>(length));
    }
    void Write(const void*, int64_t, int64_t) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RyGenApi::CNodeMapRef map;
    try {
        map._LoadXMLFromString(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const RyGenApi::GenericException&) {
        return 0;
    }
    ZeroPort port;
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

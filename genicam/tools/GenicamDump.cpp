// ry-genicam-dump FILE: loads a camera description (.xml or .zip) against a register space
// of zeros and prints every node in file order as
//   name <TAB> interface <TAB> access mode <TAB> value
// The value is "-" when the node cannot be read; an evaluation error prints "!" and the reason.
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "ry/genicam/Exceptions.h"
#include "ry/genicam/NodeMapRef.h"
#include "ry/genicam/ZeroPort.h"

namespace {

bool EndsWith(const std::string& text, const char* suffix) {
    const size_t length = std::strlen(suffix);
    if (text.size() < length) {
        return false;
    }
    for (size_t i = 0; i < length; ++i) {
        if (std::tolower(static_cast<unsigned char>(text[text.size() - length + i])) != suffix[i]) {
            return false;
        }
    }
    return true;
}

std::string ValueText(RyGenApi::INode* node, RyGenApi::EAccessMode mode) {
    auto* value = dynamic_cast<RyGenApi::IValue*>(node);
    if (value == nullptr || !RyGenApi::IsReadable(mode) ||
        node->GetPrincipalInterfaceType() == RyGenApi::intfICategory) {
        return "-";
    }
    try {
        std::string text = value->ToString(false, false);
        for (char& c : text) {
            if (c == '\t' || c == '\n' || c == '\r') {
                c = ' ';
            }
        }
        return text;
    } catch (const std::exception& error) {
        return std::string("! ") + error.what();
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: ry-genicam-dump FILE(.xml|.zip)\n");
        return 2;
    }
    const std::string path = argv[1];
    RyGenApi::CNodeMapRef map("Device");
    RyGenApi::ZeroPort port;
    try {
        if (EndsWith(path, ".zip")) {
            map._LoadXMLFromZIPFile(path);
        } else {
            map._LoadXMLFromFile(path);
        }
        map._Connect(&port);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ry-genicam-dump: %s: %s\n", path.c_str(), error.what());
        return 1;
    }
    RyGenApi::NodeList_t nodes;
    map._GetNodeMap()->GetNodes(nodes);
    for (RyGenApi::INode* node : nodes) {
        std::string mode = "?";
        std::string value = "-";
        try {
            const RyGenApi::EAccessMode access = node->GetAccessMode();
            mode = RyGenApi::AccessModeName(access);
            value = ValueText(node, access);
        } catch (const std::exception& error) {
            value = std::string("! ") + error.what();
        }
        std::printf("%s\t%s\t%s\t%s\n", node->GetName().c_str(),
                    RyGenApi::InterfaceTypeName(node->GetPrincipalInterfaceType()), mode.c_str(),
                    value.c_str());
    }
    return 0;
}

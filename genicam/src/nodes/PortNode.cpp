#include "nodes/PortNode.h"

#include <algorithm>

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

bool PortNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag == "SwapEndianess") {
        swapEndianess_ = ParseYesNo(child.text);
        return true;
    }
    return tag == "ChunkID" || tag == "pChunkID" || tag == "CacheChunkData";
}

void PortNode::Read(void* buffer, int64_t address, int64_t length) {
    const auto lock = this->Lock();
    if (connected_ == nullptr) {
        throw AccessException(std::string(name_), "port is not connected");
    }
    if (buffer == nullptr || length < 0) {
        throw InvalidArgumentException(std::string(name_), "bad buffer for a port read");
    }
    connected_->Read(buffer, address, length);
    if (swapEndianess_) {
        auto* bytes = static_cast<uint8_t*>(buffer);
        std::reverse(bytes, bytes + length);
    }
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length) {
    const auto lock = this->Lock();
    if (connected_ == nullptr) {
        throw AccessException(std::string(name_), "port is not connected");
    }
    if (buffer == nullptr || length < 0) {
        throw InvalidArgumentException(std::string(name_), "bad buffer for a port write");
    }
    if (!swapEndianess_) {
        connected_->Write(buffer, address, length);
        return;
    }
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    std::vector<uint8_t> swapped(bytes, bytes + length);
    std::reverse(swapped.begin(), swapped.end());
    connected_->Write(swapped.data(), address, length);
}

}  // namespace RyGenApi::detail

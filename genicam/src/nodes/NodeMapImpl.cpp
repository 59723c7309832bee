#include "nodes/NodeMapImpl.h"

#include "loader/Loader.h"
#include "nodes/NodeKinds.h"

namespace RyGenApi::detail {

NodeMapImpl::NodeMapImpl(std::string deviceName) : deviceName_(std::move(deviceName)) {}

NodeMapImpl::~NodeMapImpl() = default;

void NodeMapImpl::Load(std::string xmlText) {
    document_ = xml::Document::Parse(std::move(xmlText));
    nodes_.reserve(document_->ElementCount() / 6);
    byName_.reserve(document_->ElementCount() / 6);
    Loader(*this, *document_).Run();
}

void NodeMapImpl::GetNodes(NodeList_t& nodes) const {
    nodes.clear();
    nodes.reserve(nodes_.size());
    for (const auto& node : nodes_) {
        nodes.push_back(node.get());
    }
}

INode* NodeMapImpl::GetNode(const std::string& name) const {
    return Find(name);
}

Node* NodeMapImpl::Find(std::string_view name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

Node* NodeMapImpl::Add(std::unique_ptr<Node> node, bool indexed) {
    Node* added = node.get();
    nodes_.push_back(std::move(node));
    if (indexed) {
        byName_.emplace(added->NameView(), added);
    }
    return added;
}

std::string_view NodeMapImpl::Intern(std::string text) {
    return internedNames_.emplace_back(std::move(text));
}

void NodeMapImpl::InvalidateNodes() const {
    const std::lock_guard<std::recursive_mutex> lock(mutex_);
    ++cacheEpoch_;
}

bool NodeMapImpl::Connect(IPort* port, const std::string& portName) const {
    const std::lock_guard<std::recursive_mutex> lock(mutex_);
    auto* portNode = dynamic_cast<PortNode*>(Find(portName));
    if (portNode == nullptr) {
        return false;
    }
    portNode->Connect(port);
    InvalidateNodes();
    return true;
}

bool NodeMapImpl::Connect(IPort* port) const {
    return Connect(port, Find("Device") != nullptr ? "Device" : "CameraPort");
}

void NodeMapImpl::Poll(int64_t elapsedMilliseconds) {
    const std::lock_guard<std::recursive_mutex> lock(mutex_);
    std::vector<Node*> expired;
    for (const auto& node : nodes_) {
        node->AdvancePolling(elapsedMilliseconds, expired);
    }
    for (Node* node : expired) {
        node->InvalidateWithDependents();
    }
}

}  // namespace RyGenApi::detail

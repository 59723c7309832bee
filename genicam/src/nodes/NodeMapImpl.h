// The node map proper: owns the parsed document (node texts are views into it), every
// node in file order and the name index.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nodes/Node.h"
#include "ry/genicam/Interfaces.h"
#include "xml/XmlDocument.h"

namespace RyGenApi::detail {

class NodeMapImpl : public INodeMap {
  public:
    explicit NodeMapImpl(std::string deviceName);
    ~NodeMapImpl() override;

    // Parses and links a description; throws RuntimeException on any fatal fault.
    void Load(std::string xmlText);

    void GetNodes(NodeList_t& nodes) const override;
    INode* GetNode(const std::string& name) const override;
    void InvalidateNodes() const override;
    bool Connect(IPort* port, const std::string& portName) const override;
    bool Connect(IPort* port) const override;
    std::string GetDeviceName() override { return deviceName_; }
    void Poll(int64_t elapsedMilliseconds) override;
    int64_t GetNumNodes() const override { return static_cast<int64_t>(nodes_.size()); }

    Node* Find(std::string_view name) const;
    // Takes ownership; `indexed` nodes can be found by name.
    Node* Add(std::unique_ptr<Node> node, bool indexed);
    bool IsNameTaken(std::string_view name) const { return byName_.count(name) != 0; }
    std::string_view Intern(std::string text);
    uint64_t NextVisitMark() { return ++visitMark_; }
    // Caches filled before the last InvalidateNodes carry an older epoch and count as empty,
    // so dropping them all is one increment instead of a walk over every node.
    uint64_t CacheEpoch() const { return cacheEpoch_; }
    std::recursive_mutex& Mutex() const { return mutex_; }
    // Nesting level of access-mode evaluations in progress.
    int& AccessDepth() { return accessDepth_; }
    void Warn(std::string message) { warnings_.push_back(std::move(message)); }
    const std::vector<std::string>& Warnings() const { return warnings_; }
    const std::vector<std::unique_ptr<Node>>& Nodes() const { return nodes_; }

  private:
    std::string deviceName_;
    std::unique_ptr<xml::Document> document_;
    std::vector<std::unique_ptr<Node>> nodes_;
    std::unordered_map<std::string_view, Node*> byName_;
    std::deque<std::string> internedNames_;
    std::vector<std::string> warnings_;
    uint64_t visitMark_ = 0;
    mutable uint64_t cacheEpoch_ = 1;
    mutable std::recursive_mutex mutex_;
    int accessDepth_ = 0;
};

}  // namespace RyGenApi::detail

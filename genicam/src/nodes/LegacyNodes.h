// Node kinds of IEEE 1394 configuration ROM data, which load and report "not implemented".
#pragma once

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

class LegacyNode : public Node {
  public:
    using Node::Node;

  protected:
    EAccessMode NaturalAccessMode() const override { return NI; }
};

class LegacyTextNode : public TextValueNode, public virtual IString {
  public:
    LegacyTextNode(NodeMapImpl& map, std::string_view name)
        : TextValueNode(map, name, intfIString) {}
    std::string ToString(bool verify, bool ignoreCache) override {
        return GetValue(verify, ignoreCache);
    }
    void FromString(const std::string& text, bool verify) override { SetValue(text, verify); }
    void SetValue(const std::string&, bool) override {
        const auto lock = this->Lock();
        RequireWritable();
    }
    std::string GetValue(bool, bool) override {
        const auto lock = this->Lock();
        RequireReadable();
        return {};
    }
    int64_t GetMaxLength() override {
        const auto lock = this->Lock();
        return 0;
    }

  protected:
    EAccessMode NaturalAccessMode() const override { return NI; }
};

using LegacyIntegerNode = IntegerFacade<LegacyNode>;

}  // namespace RyGenApi::detail

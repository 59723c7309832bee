// Strings: text kept in the node or in a string register.
#pragma once

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

class StringNode : public TextValueNode, public virtual IString {
  public:
    StringNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfIString) {}
    std::string ToString(bool verify, bool ignoreCache) override {
        return GetValue(verify, ignoreCache);
    }
    void FromString(const std::string& text, bool verify) override { SetValue(text, verify); }
    void SetValue(const std::string& value, bool verify) override;
    std::string GetValue(bool verify, bool ignoreCache) override;
    int64_t GetMaxLength() override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    void Finish(Loader& loader) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    std::string value_;
    bool hasConstant_ = false;
    Ref target_;
    IString* targetString_ = nullptr;
};

}  // namespace RyGenApi::detail

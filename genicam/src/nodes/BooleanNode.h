// Booleans: a value node read and written as its on and off values.
#pragma once

#include <optional>

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

class BooleanNode : public TextValueNode, public virtual IBoolean {
  public:
    BooleanNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfIBoolean) {}
    std::string ToString(bool verify, bool ignoreCache) override;
    void FromString(const std::string& text, bool verify) override;
    void SetValue(bool value, bool verify) override;
    bool GetValue(bool verify, bool ignoreCache) override;
    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override { return Number::Integer(INT64_MIN); }
    Number MaxNumber() override { return Number::Integer(INT64_MAX); }
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    std::optional<int64_t> constant_;
    Ref value_;
    int64_t onValue_ = 1;
    int64_t offValue_ = 0;
    std::vector<Ref> selected_;
};

}  // namespace RyGenApi::detail

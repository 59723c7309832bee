// Commands: a value written to start something and read back to see it done.
#pragma once

#include <optional>

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

class CommandNode : public TextValueNode, public virtual ICommand {
  public:
    CommandNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfICommand) {}
    std::string ToString(bool, bool) override;
    void FromString(const std::string& text, bool verify) override;
    void Execute(bool verify) override;
    bool IsDone(bool verify) override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    int64_t CommandValue() const;

    std::optional<int64_t> constant_;
    Ref value_;
    int64_t commandValue_ = 1;
    Ref commandValueRef_;
};

}  // namespace RyGenApi::detail

// The IValue behaviour shared by nodes whose value is not a number.
#pragma once

#include "nodes/Facades.h"

namespace RyGenApi::detail {

class TextValueNode : public Node, public virtual IValue {
  public:
    using Node::Node;
    INode* GetNode() override { return this; }
    bool IsValueCacheValid() const override { return !IsVolatile(); }
};

}  // namespace RyGenApi::detail

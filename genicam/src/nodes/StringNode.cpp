#include "nodes/StringNode.h"

#include <limits>

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

bool StringNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag == "Value") {
        value_ = std::string(child.text);
        hasConstant_ = true;
    } else if (tag == "pValue") {
        target_.name = child.text;
    } else {
        return false;
    }
    return true;
}

void StringNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!target_.name.empty()) {
        visit(target_, RefKind::Value);
    }
}

void StringNode::Finish(Loader&) {
    if (target_) {
        targetString_ = dynamic_cast<IString*>(target_.node);
        if (targetString_ == nullptr) {
            throw RuntimeException(std::string(name_), "pValue '" + std::string(target_.name) +
                                                           "' is not a string node");
        }
    }
}

EAccessMode StringNode::NaturalAccessMode() const {
    if (target_) {
        return target_.node->EffectiveAccessMode();
    }
    return hasConstant_ ? RW : NI;
}

std::string StringNode::GetValue(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    RequireReadable();
    return targetString_ ? targetString_->GetValue(verify, ignoreCache) : value_;
}

void StringNode::SetValue(const std::string& value, bool verify) {
    const auto lock = this->Lock();
    RequireWritable();
    if (targetString_) {
        targetString_->SetValue(value, verify);
    } else {
        value_ = value;
        InvalidateWithDependents();
    }
    ReportDeviceError();
}

int64_t StringNode::GetMaxLength() {
    const auto lock = this->Lock();
    return targetString_ ? targetString_->GetMaxLength() : std::numeric_limits<int64_t>::max();
}

}  // namespace RyGenApi::detail

#include "nodes/CategoryNode.h"

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

bool CategoryNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag != "pFeature") {
        return false;
    }
    features_.push_back(Ref{child.text});
    return true;
}

void CategoryNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    for (Ref& ref : features_) {
        visit(ref, RefKind::Feature);
    }
}

void CategoryNode::FromString(const std::string&, bool) {
    const auto lock = this->Lock();
    throw AccessException(std::string(name_), "a category has no value to set");
}

void CategoryNode::GetFeatures(FeatureList_t& features) {
    const auto lock = this->Lock();
    features.clear();
    for (const Ref& ref : features_) {
        if (auto* value = dynamic_cast<IValue*>(ref.node)) {
            features.push_back(value);
        }
    }
}

}  // namespace RyGenApi::detail

// Categories: the feature tree's folders.
#pragma once

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

class CategoryNode : public TextValueNode, public virtual ICategory {
  public:
    CategoryNode(NodeMapImpl& map, std::string_view name)
        : TextValueNode(map, name, intfICategory) {}
    std::string ToString(bool, bool) override { return {}; }
    void FromString(const std::string&, bool) override;
    void GetFeatures(FeatureList_t& features) override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    const std::vector<Ref>& Features() const { return features_; }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override { return RO; }

  private:
    std::vector<Ref> features_;
};

}  // namespace RyGenApi::detail

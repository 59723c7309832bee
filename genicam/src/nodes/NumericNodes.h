// Integer and Float nodes: a value held in the node, forwarded to another node through
// pValue, or picked from a table indexed by a selector; bounds from the node or its target.
#pragma once

#include <optional>

#include "nodes/Facades.h"

namespace RyGenApi::detail {

// A Min/Max/Inc item: a constant, a reference, or absent.
struct Bound {
    bool present = false;
    Number constant;
    Ref ref;
    Number Get() const;
};

class NumericNode : public Node {
  public:
    NumericNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal, bool isReal);

    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    Number IncNumber() override;
    bool HasIncrement() override;
    ERepresentation RepresentationValue() override;
    std::string UnitValue() override;
    EDisplayNotation NotationValue() override { return presentation_.notation; }
    int64_t PrecisionValue() override { return presentation_.precision; }
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    struct Row {
        int64_t index = 0;
        std::optional<Number> constant;
        Ref ref;
    };
    // The value source in effect now: the row chosen by the index, or the plain source.
    Row& CurrentSource() const;
    // The node whose range, increment, representation and unit this one reports when it
    // declares none of its own: its pValue, or the node its index selects now.
    Node* BoundSource() const;
    Number Convert(Number value) const;
    Number ParseNumberText(const xml::Element& child, Loader& loader) const;

    bool isReal_;
    mutable Row plain_;
    Ref index_;
    mutable std::vector<Row> rows_;
    mutable Row default_;
    bool indexed_ = false;
    std::vector<Ref> copies_;
    std::vector<Ref> selected_;
    Bound min_;
    Bound max_;
    Bound inc_;
    Presentation presentation_;
};

using IntegerNode = IntegerFacade<NumericNode>;
using FloatNode = FloatFacade<NumericNode>;

}  // namespace RyGenApi::detail

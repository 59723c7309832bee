// SwissKnife, IntSwissKnife, Converter and IntConverter: nodes whose value is computed by
// formulas over other nodes. The formulas compile on first use, so a faulty formula only
// affects its own node.
#pragma once

#include <memory>
#include <optional>

#include "formula/Formula.h"
#include "nodes/Facades.h"

namespace RyGenApi::detail {

class FormulaNode : public Node, public FormulaBindings {
  public:
    FormulaNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal, bool isInteger,
                bool isConverter);

    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    Number IncNumber() override;
    bool HasIncrement() override { return isInteger_; }
    ERepresentation RepresentationValue() override;
    std::string UnitValue() override;
    EDisplayNotation NotationValue() override { return presentation_.notation; }
    int64_t PrecisionValue() override { return presentation_.precision; }
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

    // FormulaBindings
    int Resolve(std::string_view name) override;
    std::optional<std::string_view> ExpressionText(std::string_view name) override;
    FormulaValue Read(int slot) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    enum class Aspect { Value, Min, Max, Inc, Entry, AccessMode, Visibility, CachingMode };
    struct Variable {
        std::string_view name;
        Ref ref;
    };
    struct Binding {
        enum Kind { NodeAspect, Constant, To, From } kind = NodeAspect;
        Node* node = nullptr;
        Aspect aspect = Aspect::Value;
        std::string_view entry;
        FormulaValue constant;
    };
    struct CompiledFormula {
        std::string_view text;
        std::optional<Formula> formula;
        std::string error;
    };

    int AddBinding(Binding binding);
    bool BindVariable(const Variable& variable, std::string_view suffix, Binding& binding);
    const Formula& Compiled(CompiledFormula& compiled);
    Number Evaluate(CompiledFormula& compiled);
    Number Convert(Number value) const;
    Number FromTarget(Number targetValue);
    // Converter range: the target's bounds mapped through FormulaFrom, ordered by Slope.
    bool ConvertedBounds(Number& low, Number& high);

    bool isInteger_;
    bool isConverter_;
    std::vector<Variable> variables_;
    std::vector<std::pair<std::string_view, FormulaValue>> constants_;
    std::vector<std::pair<std::string_view, std::string_view>> expressions_;
    CompiledFormula formula_;  // Formula or FormulaFrom
    CompiledFormula formulaTo_;
    Ref target_;
    std::vector<Binding> bindings_;
    FormulaValue to_;
    FormulaValue from_;
    Presentation presentation_;
    std::string_view slope_;
    bool evaluating_ = false;
};

class IntFormulaNode : public FormulaNode {
  public:
    IntFormulaNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal,
                   bool isConverter)
        : FormulaNode(map, name, principal, true, isConverter) {}
};

class FloatFormulaNode : public FormulaNode {
  public:
    FloatFormulaNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal,
                     bool isConverter)
        : FormulaNode(map, name, principal, false, isConverter) {}
};

using IntFormulaFacade = IntegerFacade<IntFormulaNode>;
using FloatFormulaFacade = FloatFacade<FloatFormulaNode>;

}  // namespace RyGenApi::detail

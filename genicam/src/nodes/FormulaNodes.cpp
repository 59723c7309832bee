#include "nodes/FormulaNodes.h"

#include <limits>

#include "loader/Loader.h"

namespace RyGenApi::detail {

namespace {

FormulaValue ToFormulaValue(Number value) {
    return value.isReal ? FormulaValue::Real(value.real) : FormulaValue::Integer(value.integer);
}

// Marks a formula node as being evaluated so a formula that reaches itself through its
// inputs fails instead of recursing without end.
class ReentryGuard {
  public:
    ReentryGuard(bool& flag, std::string_view node) : flag_(flag) {
        if (flag_) {
            throw RuntimeException(std::string(node), "formula depends on its own value");
        }
        flag_ = true;
    }
    ~ReentryGuard() { flag_ = false; }
    ReentryGuard(const ReentryGuard&) = delete;
    ReentryGuard& operator=(const ReentryGuard&) = delete;

  private:
    bool& flag_;
};

}  // namespace

FormulaNode::FormulaNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal,
                         bool isInteger, bool isConverter)
    : Node(map, name, principal), isInteger_(isInteger), isConverter_(isConverter) {}

bool FormulaNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    const std::string_view text = child.text;
    if (tag == "pVariable") {
        variables_.push_back(Variable{loader.Doc().AttributeValue(child, "Name"), Ref{text}});
    } else if (tag == "Constant") {
        const std::string_view constantName = loader.Doc().AttributeValue(child, "Name");
        const double real = loader.Real(child, name_);
        int64_t integer = 0;
        const FormulaValue value =
            ParseInteger(text, integer)
                ? FormulaValue::Integer(integer)
                : (isInteger_ ? FormulaValue::Integer(static_cast<int64_t>(real))
                              : FormulaValue::Real(real));
        constants_.emplace_back(constantName, value);
    } else if (tag == "Expression") {
        expressions_.emplace_back(loader.Doc().AttributeValue(child, "Name"), text);
    } else if (tag == "Formula" || tag == "FormulaFrom") {
        formula_.text = text;
    } else if (tag == "FormulaTo") {
        formulaTo_.text = text;
    } else if (tag == "pValue") {
        target_.name = text;
    } else if (tag == "Slope") {
        slope_ = text;
    } else {
        return tag == "IsLinear" || presentation_.Parse(tag, child, loader, name_);
    }
    return true;
}

void FormulaNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    for (Variable& variable : variables_) {
        visit(variable.ref, isConverter_ ? RefKind::Value : RefKind::Reading);
    }
    if (!target_.name.empty()) {
        visit(target_, RefKind::Value);
    }
}

// ---- name binding ----------------------------------------------------------------------

int FormulaNode::AddBinding(Binding binding) {
    bindings_.push_back(binding);
    return static_cast<int>(bindings_.size() - 1);
}

bool FormulaNode::BindVariable(const Variable& variable, std::string_view suffix,
                               Binding& binding) {
    binding.kind = Binding::NodeAspect;
    binding.node = variable.ref.node;
    static constexpr std::pair<std::string_view, Aspect> kAspects[] = {
        {"", Aspect::Value},
        {"Value", Aspect::Value},
        {"Min", Aspect::Min},
        {"Max", Aspect::Max},
        {"Inc", Aspect::Inc},
        {"AccessMode", Aspect::AccessMode},
        {"Visibility", Aspect::Visibility},
        {"CachingMode", Aspect::CachingMode}};
    for (const auto& [text, aspect] : kAspects) {
        if (suffix == text) {
            binding.aspect = aspect;
            return true;
        }
    }
    if (suffix.starts_with("Entry.") && suffix.size() > 6) {
        binding.aspect = Aspect::Entry;
        binding.entry = suffix.substr(6);
        return true;
    }
    return false;
}

int FormulaNode::Resolve(std::string_view name) {
    Binding binding;
    for (const Variable& variable : variables_) {
        if (variable.name == name) {
            const size_t dot = name.find('.');
            const std::string_view suffix =
                dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
            if (!BindVariable(variable, suffix, binding)) {
                BindVariable(variable, {}, binding);  // a dot with no special meaning
            }
            return AddBinding(binding);
        }
    }
    for (const Variable& variable : variables_) {
        if (name.size() > variable.name.size() + 1 && name.starts_with(variable.name) &&
            name[variable.name.size()] == '.' &&
            BindVariable(variable, name.substr(variable.name.size() + 1), binding)) {
            return AddBinding(binding);
        }
    }
    for (const auto& [constantName, value] : constants_) {
        if (constantName == name) {
            binding.kind = Binding::Constant;
            binding.constant = value;
            return AddBinding(binding);
        }
    }
    if (isConverter_ && (name == "TO" || name == "FROM")) {
        binding.kind = name == "TO" ? Binding::To : Binding::From;
        return AddBinding(binding);
    }
    return -1;
}

std::optional<std::string_view> FormulaNode::ExpressionText(std::string_view name) {
    for (const auto& [expressionName, text] : expressions_) {
        if (expressionName == name) {
            return text;
        }
    }
    return std::nullopt;
}

FormulaValue FormulaNode::Read(int slot) {
    const Binding& binding = bindings_[static_cast<size_t>(slot)];
    switch (binding.kind) {
        case Binding::Constant:
            return binding.constant;
        case Binding::To:
            return to_;
        case Binding::From:
            return from_;
        case Binding::NodeAspect:
            break;
    }
    Node& node = *binding.node;
    switch (binding.aspect) {
        case Aspect::Value:
            return ToFormulaValue(node.ReadNumber(false));
        case Aspect::Min:
            return ToFormulaValue(node.MinNumber());
        case Aspect::Max:
            return ToFormulaValue(node.MaxNumber());
        case Aspect::Inc:
            return ToFormulaValue(node.IncNumber());
        case Aspect::AccessMode:
            return FormulaValue::Integer(node.EffectiveAccessMode());
        case Aspect::Visibility:
            return FormulaValue::Integer(node.GetVisibility());
        case Aspect::CachingMode:
            return FormulaValue::Integer(node.GetCachingMode());
        case Aspect::Entry:
            break;
    }
    int64_t value = 0;
    if (!node.EntryValue(binding.entry, value)) {
        throw FormulaError("node " + node.GetName() + " has no entry " +
                           std::string(binding.entry));
    }
    return FormulaValue::Integer(value);
}

// ---- evaluation ------------------------------------------------------------------------

const Formula& FormulaNode::Compiled(CompiledFormula& compiled) {
    if (compiled.formula) {
        return *compiled.formula;
    }
    if (compiled.error.empty()) {
        try {
            compiled.formula = Formula::Compile(compiled.text, *this);
            return *compiled.formula;
        } catch (const FormulaError& error) {
            compiled.error = error.what();
        }
    }
    throw RuntimeException(std::string(name_), "formula '" + std::string(compiled.text) +
                                                   "' cannot be used: " + compiled.error);
}

Number FormulaNode::Evaluate(CompiledFormula& compiled) {
    const Formula& formula = Compiled(compiled);
    try {
        return isInteger_ ? Number::Integer(formula.EvaluateInteger(*this))
                          : Number::Real(formula.EvaluateReal(*this));
    } catch (const FormulaError& error) {
        throw RuntimeException(std::string(name_),
                               std::string("formula evaluation failed: ") + error.what());
    }
}

Number FormulaNode::Convert(Number value) const {
    return isInteger_ ? Number::Integer(value.AsInteger(name_)) : Number::Real(value.AsReal());
}

Number FormulaNode::FromTarget(Number targetValue) {
    to_ = ToFormulaValue(targetValue);
    return Evaluate(formula_);
}

EAccessMode FormulaNode::NaturalAccessMode() const {
    for (const Variable& variable : variables_) {
        if (variable.name.ends_with(".AccessMode") || variable.name.ends_with(".Visibility") ||
            variable.name.ends_with(".CachingMode")) {
            continue;
        }
        if (!IsReadable(variable.ref.node->EffectiveAccessMode())) {
            return NA;
        }
    }
    if (isConverter_) {
        return target_ ? target_.node->EffectiveAccessMode() : NI;
    }
    return RO;
}

Number FormulaNode::ReadNumber(bool ignoreCache) {
    RequireReadable();
    ReentryGuard guard(evaluating_, name_);
    if (isConverter_) {
        return Convert(FromTarget(target_.node->ReadNumber(ignoreCache)));
    }
    return Convert(Evaluate(formula_));
}

void FormulaNode::WriteNumber(Number value, bool verify) {
    if (!isConverter_) {
        throw AccessException(std::string(name_), "a formula result cannot be written");
    }
    value = isInteger_ ? Number::Integer(IntegerForWrite(value)) : Number::Real(value.AsReal());
    PrepareWrite(value, verify);
    Number registerValue;
    {
        ReentryGuard guard(evaluating_, name_);
        from_ = ToFormulaValue(value);
        registerValue = Evaluate(formulaTo_);
    }
    target_.node->WriteNumber(registerValue, verify);
}

bool FormulaNode::ConvertedBounds(Number& low, Number& high) {
    if (!isConverter_) {
        return false;
    }
    try {
        ReentryGuard guard(evaluating_, name_);
        low = Convert(FromTarget(target_.node->MinNumber()));
        high = Convert(FromTarget(target_.node->MaxNumber()));
    } catch (const GenericException&) {
        return false;  // the formula cannot map the target's range: report the full range
    }
    const bool swap =
        slope_ == "Decreasing" || (slope_ != "Increasing" && low.AsReal() > high.AsReal());
    if (swap) {
        std::swap(low, high);
    }
    return true;
}

Number FormulaNode::MinNumber() {
    Number low, high;
    if (ConvertedBounds(low, high)) {
        return low;
    }
    return isInteger_ ? Number::Integer(std::numeric_limits<int64_t>::min())
                      : Number::Real(std::numeric_limits<double>::lowest());
}

Number FormulaNode::MaxNumber() {
    Number low, high;
    if (ConvertedBounds(low, high)) {
        return high;
    }
    return isInteger_ ? Number::Integer(std::numeric_limits<int64_t>::max())
                      : Number::Real(std::numeric_limits<double>::max());
}

Number FormulaNode::IncNumber() {
    return Number::Integer(1);
}

ERepresentation FormulaNode::RepresentationValue() {
    return presentation_.representation.value_or(PureNumber);
}

std::string FormulaNode::UnitValue() {
    return std::string(presentation_.unit);
}

}  // namespace RyGenApi::detail

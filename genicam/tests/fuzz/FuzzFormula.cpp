// libFuzzer target: arbitrary text as a formula, compiled and evaluated in both modes with a
// few variables and one expression bound.
#include <string>

#include "formula/Formula.h"

namespace {

class FixedBindings : public RyGenApi::detail::FormulaBindings {
  public:
    int Resolve(std::string_view name) override {
        if (name == "A" || name == "A.Max") {
            return 0;
        }
        if (name == "B") {
            return 1;
        }
        return name == "TO" ? 2 : -1;
    }
    std::optional<std::string_view> ExpressionText(std::string_view name) override {
        if (name == "EXPR") {
            return std::string_view("A * 2 + B");
        }
        if (name == "SELF") {
            return std::string_view("SELF + 1");
        }
        return std::nullopt;
    }
    RyGenApi::detail::FormulaValue Read(int slot) override {
        using RyGenApi::detail::FormulaValue;
        return slot == 0 ? FormulaValue::Integer(-7)
                         : (slot == 1 ? FormulaValue::Real(2.5) : FormulaValue::Integer(0));
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    FixedBindings bindings;
    try {
        const auto formula = RyGenApi::detail::Formula::Compile(text, bindings);
        try {
            formula.EvaluateInteger(bindings);
        } catch (const RyGenApi::detail::FormulaError&) {
        }
        try {
            formula.EvaluateReal(bindings);
        } catch (const RyGenApi::detail::FormulaError&) {
        }
    } catch (const RyGenApi::detail::FormulaError&) {
    }
    return 0;
}

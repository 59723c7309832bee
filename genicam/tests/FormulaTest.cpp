#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "formula/Formula.h"

namespace RyGenApi::detail {
namespace {

// Variables by name; expressions by name. Unknown names fail at compile time.
class MapBindings : public FormulaBindings {
  public:
    std::map<std::string, FormulaValue, std::less<>> variables;
    std::map<std::string, std::string, std::less<>> expressions;
    std::vector<std::string> slots;
    int reads = 0;

    int Resolve(std::string_view name) override {
        if (variables.find(name) == variables.end()) {
            return -1;
        }
        slots.emplace_back(name);
        return static_cast<int>(slots.size() - 1);
    }
    std::optional<std::string_view> ExpressionText(std::string_view name) override {
        const auto found = expressions.find(name);
        if (found == expressions.end()) {
            return std::nullopt;
        }
        return std::string_view(found->second);
    }
    FormulaValue Read(int slot) override {
        ++reads;
        return variables.find(slots[static_cast<size_t>(slot)])->second;
    }
};

int64_t Int(const std::string& text, MapBindings bindings = {}) {
    return Formula::Compile(text, bindings).EvaluateInteger(bindings);
}

double Real(const std::string& text, MapBindings bindings = {}) {
    return Formula::Compile(text, bindings).EvaluateReal(bindings);
}

MapBindings With(std::initializer_list<std::pair<const std::string, FormulaValue>> values) {
    MapBindings bindings;
    for (const auto& [name, value] : values) {
        bindings.variables.emplace(name, value);
    }
    return bindings;
}

TEST(Formula, PrecedenceAndAssociativity) {
    EXPECT_EQ(Int("2 + 3 * 4 ** 2"), 50);
    EXPECT_EQ(Int("~0xFF & 0xF0F"), 0xF00);
    EXPECT_EQ(Int("R >> 16 & 0xFFFF", With({{"R", FormulaValue::Integer(0x12345678)}})), 0x1234);
    EXPECT_EQ(Int("1 << 4 = 16"), 1);
    EXPECT_EQ(
        Int("V = 0x1080001 || V = 0x1080008", With({{"V", FormulaValue::Integer(0x1080008)}})), 1);
    EXPECT_EQ(Int("10 - 4 - 3"), 3);         // left associative
    EXPECT_EQ(Int("2 ** 3 ** 2"), 512);      // right associative
    EXPECT_EQ(Int("-2 ** 2"), -4);           // power binds tighter than unary minus
    EXPECT_EQ(Int("2 ** -1"), 0);            // negative exponent allowed
    EXPECT_EQ(Int("1 ? 2 : 0 ? 3 : 4"), 2);  // right associative ternary
    EXPECT_EQ(Int("0 ? 2 : 0 ? 3 : 4"), 4);
    EXPECT_EQ(Int("1 | 2 ^ 3 & 6"), 1 | (2 ^ (3 & 6)));
    EXPECT_EQ(Int("3 < 4 = 1"), 1);    // relational binds tighter than equality
    EXPECT_EQ(Int("1 + 2 << 1"), 6);   // additive binds tighter than shift
    EXPECT_EQ(Int("1 || 0 && 0"), 1);  // && binds tighter than ||
    EXPECT_EQ(Int("5 <> 5"), 0);
    EXPECT_EQ(Int("5 >= 5 && 4 <= 3"), 0);
}

TEST(Formula, IntegerAndRealArithmeticDiffer) {
    const auto vars = With({{"W", FormulaValue::Integer(100)}, {"X", FormulaValue::Integer(3)}});
    EXPECT_EQ(Int("(W - X) / 8 * 8", vars), 96);
    EXPECT_DOUBLE_EQ(Real("(W - X) / 8 * 8", vars), 97.0);
    EXPECT_EQ(Int("10 % 3"), 1);
    EXPECT_EQ(Int("-7 % 3"), -1);
    EXPECT_EQ(Int("-7 / 2"), -3);
    EXPECT_EQ(Int("2.9 + 0.9"), 2);          // literals with a fraction truncate in integer mode
    EXPECT_DOUBLE_EQ(Real("7 & 3.9"), 3.0);  // bit operators truncate in real mode
    EXPECT_EQ(Int("0x7FFFFFFFFFFFFFFF + 1"), INT64_MIN);  // wraps instead of trapping
    EXPECT_EQ(Int("0xFFFFFFFFFFFFFFFF"), -1);
    EXPECT_EQ(Int("1 << 64"), 0);
    EXPECT_EQ(Int("-8 >> 70"), -1);
}

TEST(Formula, GuardedBranchesAreNotEvaluated) {
    auto vars = With({{"A", FormulaValue::Integer(5)}, {"P", FormulaValue::Integer(0)}});
    EXPECT_EQ(Int("(A > 10) ? A / 0 : 7", vars), 7);
    EXPECT_DOUBLE_EQ(Real("(P <> 0) ? (1e6 / P) : 0", vars), 0.0);
    EXPECT_EQ(Int("0 && (1 / 0)"), 0);
    EXPECT_EQ(Int("1 || (1 / 0)"), 1);
    EXPECT_THROW(Int("1 / 0"), FormulaError);
    EXPECT_THROW(Real("1 / 0"), FormulaError);
    EXPECT_THROW(Int("5 % 0"), FormulaError);
    EXPECT_THROW(Int("1 << -1"), FormulaError);
}

TEST(Formula, FunctionsAndConstants) {
    EXPECT_DOUBLE_EQ(Real("ROUND(-2.5)"), -3.0);
    EXPECT_DOUBLE_EQ(Real("ROUND(10.5)"), 11.0);
    EXPECT_DOUBLE_EQ(Real("ROUND(-20.9)"), -21.0);
    EXPECT_NEAR(Real("ROUND(10.11, 1)"), 10.1, 1e-12);
    EXPECT_DOUBLE_EQ(Real("ROUND(10.6, 0)"), 11.0);
    EXPECT_DOUBLE_EQ(Real("TRUNC(-11.9)"), -11.0);
    EXPECT_DOUBLE_EQ(Real("FLOOR(-11.9)"), -12.0);
    EXPECT_DOUBLE_EQ(Real("CEIL(-11.9)"), -11.0);
    EXPECT_DOUBLE_EQ(Real("SGN(-0.5)"), -1.0);
    EXPECT_NEAR(Real("LN(E)"), 1.0, 1e-12);
    EXPECT_NEAR(Real("LG(1000)"), 3.0, 1e-12);
    EXPECT_NEAR(Real("COS(PI)"), -1.0, 1e-12);
    EXPECT_NEAR(Real("sqrt(16) + exp(0) + atan(0) + asin(0) + acos(1) + sin(0) + tan(0)"), 5.0,
                1e-12);
    EXPECT_DOUBLE_EQ(Real("NEG(3)"), -3.0);
    EXPECT_EQ(Int("ABS(-12)"), 12);  // allowed in integer formulas
    EXPECT_EQ(Int("SQRT(17)"), 4);   // float functions truncate in integer mode
    EXPECT_EQ(Int("NEG(1) && 1"), 1);
    EXPECT_DOUBLE_EQ(Real("1e3 + 0.5 + .5 + 1E-1"), 1001.1);
    EXPECT_EQ(Int("0X1f + 0xA"), 41);
}

TEST(Formula, NamesExpressionsAndErrors) {
    auto vars = With({{"SEL.Entry.Off", FormulaValue::Integer(3)},
                      {"X.Max", FormulaValue::Integer(10)},
                      {"PI", FormulaValue::Integer(7)}});
    vars.expressions.emplace("TWICE", "X.Max * 2");
    vars.expressions.emplace("LOOP", "LOOP + 1");
    EXPECT_EQ(Int("SEL.Entry.Off + TWICE", vars), 23);
    EXPECT_EQ(Int("PI", vars), 7);  // a variable shadows the built-in constant
    EXPECT_THROW(Int("LOOP", vars), FormulaError);
    EXPECT_THROW(Int("UNKNOWN + 1"), FormulaError);
    EXPECT_THROW(Int("FOO(1)"), FormulaError);
    EXPECT_THROW(Int("ROUND(1, 2, 3)"), FormulaError);
    EXPECT_THROW(Int("(1 + 2"), FormulaError);
    EXPECT_THROW(Int("1 +"), FormulaError);
    EXPECT_THROW(Int("!1"), FormulaError);
    EXPECT_THROW(Int("1 ? 2"), FormulaError);
    EXPECT_THROW(Int("0x"), FormulaError);
    EXPECT_THROW(Int("0x11112222333344445"), FormulaError);
    EXPECT_THROW(Int(std::string(5000, '(') + "1" + std::string(5000, ')')), FormulaError);
}

TEST(Formula, LongTernaryChainsAndMultilineText) {
    std::string chain;
    for (int i = 0; i < 60; ++i) {
        chain += "(S = " + std::to_string(i) + ") ? " + std::to_string(i * 4) + " :\n\t";
    }
    chain += "0xFFFF";
    auto vars = With({{"S", FormulaValue::Integer(42)}});
    EXPECT_EQ(Int(chain, vars), 168);
    EXPECT_LE(vars.reads, 43);  // only the conditions up to the match are evaluated
}

TEST(Formula, CompiledFormulaReadsVariablesAtEachEvaluation) {
    MapBindings vars = With({{"A", FormulaValue::Integer(1)}});
    const Formula formula = Formula::Compile("A * 10", vars);
    EXPECT_EQ(formula.EvaluateInteger(vars), 10);
    vars.variables["A"] = FormulaValue::Real(2.5);
    EXPECT_DOUBLE_EQ(formula.EvaluateReal(vars), 25.0);
}

}  // namespace
}  // namespace RyGenApi::detail

// Formula language of the SwissKnife and converter nodes: compiled once into a flat
// expression tree, then evaluated either in 64-bit integer or in double arithmetic.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace RyGenApi::detail {

class FormulaError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct FormulaValue {
    bool isInteger = true;
    int64_t integer = 0;
    double real = 0.0;
    static FormulaValue Integer(int64_t value) { return {true, value, static_cast<double>(value)}; }
    static FormulaValue Real(double value) { return {false, 0, value}; }
};

// Supplies the names a formula may use. Resolve() runs at compile time and hands out a slot
// number; Read() runs at every evaluation so variables always reflect the current state.
class FormulaBindings {
  public:
    virtual ~FormulaBindings() = default;
    virtual int Resolve(std::string_view name) = 0;  // -1 when unknown
    virtual std::optional<std::string_view> ExpressionText(std::string_view name) = 0;
    virtual FormulaValue Read(int slot) = 0;
};

class Formula {
  public:
    // Throws FormulaError on a syntax error or an unknown name.
    static Formula Compile(std::string_view text, FormulaBindings& bindings);

    // Throws FormulaError on division by zero, a negative shift count and similar faults;
    // errors raised by the bindings pass through unchanged.
    int64_t EvaluateInteger(FormulaBindings& bindings) const;
    double EvaluateReal(FormulaBindings& bindings) const;

    enum class Op : uint8_t {
        Integer,
        Real,
        Variable,
        Negate,
        Plus,
        BitNot,
        Ternary,
        LogicalOr,
        LogicalAnd,
        BitOr,
        BitXor,
        BitAnd,
        Equal,
        NotEqual,
        Less,
        Greater,
        LessEqual,
        GreaterEqual,
        ShiftLeft,
        ShiftRight,
        Add,
        Subtract,
        Multiply,
        Divide,
        Modulo,
        Power,
        Call
    };
    enum class Function : uint8_t {
        Neg,
        Sgn,
        Abs,
        Sqrt,
        Ln,
        Lg,
        Exp,
        Sin,
        Cos,
        Tan,
        Asin,
        Acos,
        Atan,
        Trunc,
        Floor,
        Ceil,
        Round
    };
    struct Expr {
        Op op = Op::Integer;
        Function function = Function::Neg;
        uint8_t argumentCount = 0;
        int32_t a = -1;
        int32_t b = -1;
        int32_t c = -1;
        int64_t integer = 0;
        double real = 0.0;
    };

  private:
    friend class FormulaParser;
    template <typename T>
    friend class FormulaEvaluator;
    std::vector<Expr> nodes_;
    int32_t root_ = -1;
};

}  // namespace RyGenApi::detail

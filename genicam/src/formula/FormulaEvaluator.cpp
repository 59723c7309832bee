// Evaluation walks the tree depth first. The ternary and the logical operators evaluate
// only the operands they need, so guarded divisions such as (P <> 0) ? (1e6 / P) : 0 work.
#include <cmath>
#include <limits>

#include "formula/Formula.h"

namespace RyGenApi::detail {

namespace {

int64_t Truncate(double value) {
    if (std::isnan(value)) {
        throw FormulaError("result is not a number");
    }
    if (value >= 9223372036854775807.0 || value < -9223372036854775808.0) {
        throw FormulaError("result does not fit a 64-bit integer");
    }
    return static_cast<int64_t>(value);
}

int64_t ToInteger(const FormulaValue& value) {
    return value.isInteger ? value.integer : Truncate(value.real);
}

double ToReal(const FormulaValue& value) {
    return value.isInteger ? static_cast<double>(value.integer) : value.real;
}

// Wrapping arithmetic: overflow behaves like two's complement instead of being undefined.
int64_t WrapAdd(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}
int64_t WrapSub(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}
int64_t WrapMul(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

int64_t ShiftLeft(int64_t value, int64_t count) {
    if (count < 0) {
        throw FormulaError("negative shift count");
    }
    return count >= 64 ? 0 : static_cast<int64_t>(static_cast<uint64_t>(value) << count);
}

int64_t ShiftRight(int64_t value, int64_t count) {
    if (count < 0) {
        throw FormulaError("negative shift count");
    }
    if (count >= 64) {
        return value < 0 ? -1 : 0;
    }
    return value >> count;
}

int64_t IntegerPower(int64_t base, int64_t exponent) {
    if (exponent < 0) {
        if (base == 1) {
            return 1;
        }
        if (base == -1) {
            return (exponent % 2 == 0) ? 1 : -1;
        }
        if (base == 0) {
            throw FormulaError("division by zero");
        }
        return 0;
    }
    int64_t result = 1;
    while (exponent > 0) {
        if (exponent & 1) {
            result = WrapMul(result, base);
        }
        base = WrapMul(base, base);
        exponent >>= 1;
    }
    return result;
}

double RoundHalfAway(double value) {
    return std::round(value);
}

double ApplyFunction(Formula::Function function, double x, double digits, int argumentCount) {
    using F = Formula::Function;
    switch (function) {
        case F::Neg:
            return -x;
        case F::Sgn:
            return x > 0 ? 1.0 : (x < 0 ? -1.0 : 0.0);
        case F::Abs:
            return std::fabs(x);
        case F::Sqrt:
            return std::sqrt(x);
        case F::Ln:
            return std::log(x);
        case F::Lg:
            return std::log10(x);
        case F::Exp:
            return std::exp(x);
        case F::Sin:
            return std::sin(x);
        case F::Cos:
            return std::cos(x);
        case F::Tan:
            return std::tan(x);
        case F::Asin:
            return std::asin(x);
        case F::Acos:
            return std::acos(x);
        case F::Atan:
            return std::atan(x);
        case F::Trunc:
            return std::trunc(x);
        case F::Floor:
            return std::floor(x);
        case F::Ceil:
            return std::ceil(x);
        case F::Round: {
            if (argumentCount == 1 || digits == 0) {
                return RoundHalfAway(x);
            }
            const double scale = std::pow(10.0, std::trunc(digits));
            return RoundHalfAway(x * scale) / scale;
        }
    }
    return x;
}

}  // namespace

template <typename T>
class FormulaEvaluator {
  public:
    FormulaEvaluator(const std::vector<Formula::Expr>& nodes, FormulaBindings& bindings)
        : nodes_(nodes), bindings_(bindings) {}

    T Eval(int32_t index) {
        const Formula::Expr& e = nodes_[static_cast<size_t>(index)];
        using Op = Formula::Op;
        switch (e.op) {
            case Op::Integer:
                return FromLiteral(e);
            case Op::Real:
                return FromLiteral(e);
            case Op::Variable:
                return FromValue(bindings_.Read(static_cast<int>(e.integer)));
            case Op::Negate:
                return Negate(Eval(e.a));
            case Op::Plus:
                return Eval(e.a);
            case Op::BitNot:
                return FromBits(~ToBits(Eval(e.a)));
            case Op::Ternary:
                return IsTrue(Eval(e.a)) ? Eval(e.b) : Eval(e.c);
            case Op::LogicalOr:
                return Bool(IsTrue(Eval(e.a)) || IsTrue(Eval(e.b)));
            case Op::LogicalAnd:
                return Bool(IsTrue(Eval(e.a)) && IsTrue(Eval(e.b)));
            case Op::Call:
                return Call(e);
            default:
                return Binary(e.op, Eval(e.a), Eval(e.b));
        }
    }

  private:
    static constexpr bool kInteger = std::is_same_v<T, int64_t>;

    static bool IsTrue(T value) { return value != 0; }
    static T Bool(bool value) { return value ? T(1) : T(0); }
    static int64_t ToBits(T value) {
        if constexpr (kInteger) {
            return value;
        } else {
            return Truncate(value);
        }
    }
    static T FromBits(int64_t bits) { return static_cast<T>(bits); }
    static T FromLiteral(const Formula::Expr& e) {
        if constexpr (kInteger) {
            return e.integer;
        } else {
            return e.op == Formula::Op::Integer ? static_cast<double>(e.integer) : e.real;
        }
    }
    static T FromValue(const FormulaValue& value) {
        if constexpr (kInteger) {
            return ToInteger(value);
        } else {
            return ToReal(value);
        }
    }
    static T Negate(T value) {
        if constexpr (kInteger) {
            return WrapSub(0, value);
        } else {
            return -value;
        }
    }

    T Call(const Formula::Expr& e) {
        using F = Formula::Function;
        const T x = Eval(e.a);
        const T digits = e.argumentCount == 2 ? Eval(e.b) : T(0);
        if constexpr (kInteger) {
            switch (e.function) {
                case F::Neg:
                    return WrapSub(0, x);
                case F::Abs:
                    return x < 0 ? WrapSub(0, x) : x;
                case F::Sgn:
                    return x > 0 ? 1 : (x < 0 ? -1 : 0);
                case F::Trunc:
                case F::Floor:
                case F::Ceil:
                    return x;
                case F::Round:
                    if (e.argumentCount == 1 || digits >= 0) {
                        return x;
                    }
                    break;
                default:
                    break;
            }
            return Truncate(ApplyFunction(e.function, static_cast<double>(x),
                                          static_cast<double>(digits), e.argumentCount));
        } else {
            return ApplyFunction(e.function, x, digits, e.argumentCount);
        }
    }

    static T Binary(Formula::Op op, T a, T b) {
        using Op = Formula::Op;
        switch (op) {
            case Op::BitOr:
                return FromBits(ToBits(a) | ToBits(b));
            case Op::BitXor:
                return FromBits(ToBits(a) ^ ToBits(b));
            case Op::BitAnd:
                return FromBits(ToBits(a) & ToBits(b));
            case Op::Equal:
                return Bool(a == b);
            case Op::NotEqual:
                return Bool(a != b);
            case Op::Less:
                return Bool(a < b);
            case Op::Greater:
                return Bool(a > b);
            case Op::LessEqual:
                return Bool(a <= b);
            case Op::GreaterEqual:
                return Bool(a >= b);
            case Op::ShiftLeft:
                return FromBits(ShiftLeft(ToBits(a), ToBits(b)));
            case Op::ShiftRight:
                return FromBits(ShiftRight(ToBits(a), ToBits(b)));
            case Op::Modulo:
                return Modulo(a, b);
            case Op::Divide:
                return Divide(a, b);
            default:
                return Arithmetic(op, a, b);
        }
    }

    static T Arithmetic(Formula::Op op, T a, T b) {
        using Op = Formula::Op;
        if constexpr (kInteger) {
            switch (op) {
                case Op::Add:
                    return WrapAdd(a, b);
                case Op::Subtract:
                    return WrapSub(a, b);
                case Op::Multiply:
                    return WrapMul(a, b);
                default:
                    return IntegerPower(a, b);
            }
        } else {
            switch (op) {
                case Op::Add:
                    return a + b;
                case Op::Subtract:
                    return a - b;
                case Op::Multiply:
                    return a * b;
                default:
                    return std::pow(a, b);
            }
        }
    }

    static T Divide(T a, T b) {
        if (b == 0) {
            throw FormulaError("division by zero");
        }
        if constexpr (kInteger) {
            if (a == std::numeric_limits<int64_t>::min() && b == -1) {
                return a;
            }
        }
        return a / b;
    }

    static T Modulo(T a, T b) {
        const int64_t dividend = ToBits(a);
        const int64_t divisor = ToBits(b);
        if (divisor == 0) {
            throw FormulaError("division by zero");
        }
        if (divisor == -1) {
            return 0;
        }
        return FromBits(dividend % divisor);
    }

    const std::vector<Formula::Expr>& nodes_;
    FormulaBindings& bindings_;
};

int64_t Formula::EvaluateInteger(FormulaBindings& bindings) const {
    if (root_ < 0) {
        throw FormulaError("empty formula");
    }
    return FormulaEvaluator<int64_t>(nodes_, bindings).Eval(root_);
}

double Formula::EvaluateReal(FormulaBindings& bindings) const {
    if (root_ < 0) {
        throw FormulaError("empty formula");
    }
    return FormulaEvaluator<double>(nodes_, bindings).Eval(root_);
}

}  // namespace RyGenApi::detail

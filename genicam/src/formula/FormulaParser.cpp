// Recursive-descent parser; one function per precedence level, lowest first.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <string>
#include <unordered_set>

#include "formula/Formula.h"

namespace RyGenApi::detail {

namespace {

constexpr int kMaxNesting = 400;

struct Token {
    enum Kind { End, Number, Name, Operator } kind = End;
    std::string_view text;
    bool isInteger = true;
    int64_t integer = 0;
    double real = 0.0;
};

bool IsNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}
bool IsNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.';
}

std::string Upper(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return out;
}

struct FunctionInfo {
    const char* name;
    Formula::Function function;
    int minArgs;
    int maxArgs;
};

constexpr FunctionInfo kFunctions[] = {
    {"NEG", Formula::Function::Neg, 1, 1},     {"SGN", Formula::Function::Sgn, 1, 1},
    {"ABS", Formula::Function::Abs, 1, 1},     {"SQRT", Formula::Function::Sqrt, 1, 1},
    {"LN", Formula::Function::Ln, 1, 1},       {"LG", Formula::Function::Lg, 1, 1},
    {"EXP", Formula::Function::Exp, 1, 1},     {"SIN", Formula::Function::Sin, 1, 1},
    {"COS", Formula::Function::Cos, 1, 1},     {"TAN", Formula::Function::Tan, 1, 1},
    {"ASIN", Formula::Function::Asin, 1, 1},   {"ACOS", Formula::Function::Acos, 1, 1},
    {"ATAN", Formula::Function::Atan, 1, 1},   {"TRUNC", Formula::Function::Trunc, 1, 1},
    {"FLOOR", Formula::Function::Floor, 1, 1}, {"CEIL", Formula::Function::Ceil, 1, 1},
    {"ROUND", Formula::Function::Round, 1, 2},
};

const FunctionInfo* FindFunction(std::string_view name) {
    const std::string upper = Upper(name);
    for (const FunctionInfo& info : kFunctions) {
        if (upper == info.name) {
            return &info;
        }
    }
    return nullptr;
}

class Lexer {
  public:
    explicit Lexer(std::string_view text) : text_(text) {}

    Token Next() {
        while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_]))) {
            ++pos_;
        }
        Token token;
        if (pos_ >= text_.size()) {
            return token;
        }
        const char c = text_[pos_];
        if (std::isdigit(static_cast<unsigned char>(c)) ||
            (c == '.' && pos_ + 1 < text_.size() &&
             std::isdigit(static_cast<unsigned char>(text_[pos_ + 1])))) {
            return Number();
        }
        if (IsNameStart(c)) {
            const size_t begin = pos_;
            while (pos_ < text_.size() && IsNameChar(text_[pos_])) {
                ++pos_;
            }
            token.kind = Token::Name;
            token.text = text_.substr(begin, pos_ - begin);
            return token;
        }
        static constexpr std::string_view kTwoChar[] = {
            "||", "&&", "<>", "<=", ">=", "<<", ">>", "**"};
        for (std::string_view op : kTwoChar) {
            if (text_.substr(pos_, 2) == op) {
                pos_ += 2;
                return Token{Token::Operator, op};
            }
        }
        if (std::string_view("(),?:|^&=<>+-*/%~").find(c) == std::string_view::npos) {
            throw FormulaError("unexpected character '" + std::string(1, c) + "' at offset " +
                               std::to_string(pos_));
        }
        token.kind = Token::Operator;
        token.text = text_.substr(pos_++, 1);
        return token;
    }

  private:
    Token Number() {
        Token token;
        token.kind = Token::Number;
        const size_t begin = pos_;
        if (text_[pos_] == '0' && pos_ + 1 < text_.size() &&
            (text_[pos_ + 1] == 'x' || text_[pos_ + 1] == 'X')) {
            return HexNumber();
        }
        while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
            ++pos_;
        }
        bool isReal = false;
        if (pos_ < text_.size() && text_[pos_] == '.') {
            isReal = true;
            ++pos_;
            while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
                ++pos_;
            }
        }
        if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
            size_t exponent = pos_ + 1;
            if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) {
                ++exponent;
            }
            if (exponent < text_.size() &&
                std::isdigit(static_cast<unsigned char>(text_[exponent]))) {
                isReal = true;
                pos_ = exponent;
                while (pos_ < text_.size() &&
                       std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
                    ++pos_;
                }
            }
        }
        token.text = text_.substr(begin, pos_ - begin);
        const std::string literal(token.text);
        token.real = std::strtod(literal.c_str(), nullptr);
        if (isReal) {
            token.isInteger = false;
            token.integer = std::isfinite(token.real) && std::fabs(token.real) < 9.2e18
                                ? static_cast<int64_t>(token.real)
                                : 0;
        } else {
            token.integer = static_cast<int64_t>(std::strtoull(literal.c_str(), nullptr, 10));
        }
        return token;
    }

    Token HexNumber() {
        Token token;
        token.kind = Token::Number;
        const size_t begin = pos_;
        pos_ += 2;
        uint64_t value = 0;
        int digits = 0;
        while (pos_ < text_.size() && std::isxdigit(static_cast<unsigned char>(text_[pos_]))) {
            const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(text_[pos_])));
            value = value * 16 + static_cast<uint64_t>(c <= '9' ? c - '0' : c - 'a' + 10);
            ++digits;
            ++pos_;
        }
        if (digits == 0 || digits > 16) {
            throw FormulaError("bad hexadecimal literal at offset " + std::to_string(begin));
        }
        token.text = text_.substr(begin, pos_ - begin);
        token.integer = static_cast<int64_t>(value);
        token.real = static_cast<double>(token.integer);
        return token;
    }

    std::string_view text_;
    size_t pos_ = 0;
};

}  // namespace

class FormulaParser {
  public:
    FormulaParser(Formula& formula, FormulaBindings& bindings)
        : formula_(formula), bindings_(bindings) {}

    int32_t ParseText(std::string_view text) {
        Lexer saved = lexer_;
        Token savedToken = current_;
        lexer_ = Lexer(text);
        Advance();
        const int32_t root = Ternary();
        if (current_.kind != Token::End) {
            throw FormulaError("unexpected '" + std::string(current_.text) + "'");
        }
        lexer_ = saved;
        current_ = savedToken;
        return root;
    }

  private:
    using Op = Formula::Op;

    struct DepthGuard {
        explicit DepthGuard(int& depth) : depth_(depth) {
            if (++depth_ > kMaxNesting) {
                throw FormulaError("formula nested too deeply");
            }
        }
        ~DepthGuard() { --depth_; }
        int& depth_;
    };

    void Advance() { current_ = lexer_.Next(); }
    bool IsOperator(std::string_view op) const {
        return current_.kind == Token::Operator && current_.text == op;
    }
    void Expect(std::string_view op) {
        if (!IsOperator(op)) {
            throw FormulaError(
                "expected '" + std::string(op) + "' but found '" +
                std::string(current_.kind == Token::End ? "end of formula" : current_.text) + "'");
        }
        Advance();
    }

    int32_t Add(Formula::Expr expr) {
        formula_.nodes_.push_back(expr);
        return static_cast<int32_t>(formula_.nodes_.size() - 1);
    }
    int32_t AddBinary(Op op, int32_t left, int32_t right) {
        Formula::Expr expr;
        expr.op = op;
        expr.a = left;
        expr.b = right;
        return Add(expr);
    }

    int32_t Ternary() {
        DepthGuard guard(depth_);
        const int32_t condition = Binary(0);
        if (!IsOperator("?")) {
            return condition;
        }
        Advance();
        Formula::Expr expr;
        expr.op = Op::Ternary;
        expr.a = condition;
        expr.b = Ternary();
        Expect(":");
        expr.c = Ternary();
        return Add(expr);
    }

    struct Level {
        std::string_view ops[4];
        Op codes[4];
    };
    static constexpr int kBinaryLevels = 10;
    static const Level& LevelAt(int level) {
        static const Level kLevels[kBinaryLevels] = {
            {{"||"}, {Op::LogicalOr}},
            {{"&&"}, {Op::LogicalAnd}},
            {{"|"}, {Op::BitOr}},
            {{"^"}, {Op::BitXor}},
            {{"&"}, {Op::BitAnd}},
            {{"=", "<>"}, {Op::Equal, Op::NotEqual}},
            {{"<", ">", "<=", ">="}, {Op::Less, Op::Greater, Op::LessEqual, Op::GreaterEqual}},
            {{"<<", ">>"}, {Op::ShiftLeft, Op::ShiftRight}},
            {{"+", "-"}, {Op::Add, Op::Subtract}},
            {{"*", "/", "%"}, {Op::Multiply, Op::Divide, Op::Modulo}},
        };
        return kLevels[level];
    }

    int32_t Binary(int level) {
        if (level == kBinaryLevels) {
            return Unary();
        }
        int32_t left = Binary(level + 1);
        for (;;) {
            const Level& info = LevelAt(level);
            int match = -1;
            for (int i = 0; i < 4 && !info.ops[i].empty(); ++i) {
                if (IsOperator(info.ops[i])) {
                    match = i;
                }
            }
            if (match < 0) {
                return left;
            }
            Advance();
            left = AddBinary(info.codes[match], left, Binary(level + 1));
        }
    }

    // Unary operators bind looser than "**", so "-2 ** 2" is -(2 ** 2).
    int32_t Unary() {
        DepthGuard guard(depth_);
        Op op;
        if (IsOperator("-")) {
            op = Op::Negate;
        } else if (IsOperator("+")) {
            op = Op::Plus;
        } else if (IsOperator("~")) {
            op = Op::BitNot;
        } else {
            return Power();
        }
        Advance();
        return AddBinary(op, Unary(), -1);
    }

    int32_t Power() {
        const int32_t base = Primary();
        if (!IsOperator("**")) {
            return base;
        }
        Advance();
        return AddBinary(Op::Power, base, Unary());
    }

    int32_t Primary() {
        DepthGuard guard(depth_);
        if (current_.kind == Token::Number) {
            Formula::Expr expr;
            expr.op = current_.isInteger ? Op::Integer : Op::Real;
            expr.integer = current_.integer;
            expr.real = current_.real;
            Advance();
            return Add(expr);
        }
        if (IsOperator("(")) {
            Advance();
            const int32_t inner = Ternary();
            Expect(")");
            return inner;
        }
        if (current_.kind == Token::Name) {
            const std::string_view name = current_.text;
            Advance();
            return IsOperator("(") ? Call(name) : Name(name);
        }
        if (current_.kind == Token::End) {
            throw FormulaError("formula ends unexpectedly");
        }
        throw FormulaError("unexpected '" + std::string(current_.text) + "'");
    }

    int32_t Call(std::string_view name) {
        const FunctionInfo* info = FindFunction(name);
        if (info == nullptr) {
            throw FormulaError("unknown function '" + std::string(name) + "'");
        }
        Advance();
        Formula::Expr expr;
        expr.op = Op::Call;
        expr.function = info->function;
        expr.a = Ternary();
        expr.argumentCount = 1;
        if (IsOperator(",")) {
            Advance();
            expr.b = Ternary();
            expr.argumentCount = 2;
        }
        Expect(")");
        if (expr.argumentCount < info->minArgs || expr.argumentCount > info->maxArgs) {
            throw FormulaError("wrong number of arguments for " + std::string(info->name));
        }
        return Add(expr);
    }

    int32_t Name(std::string_view name) {
        Formula::Expr expr;
        const int slot = bindings_.Resolve(name);
        if (slot >= 0) {
            expr.op = Op::Variable;
            expr.integer = slot;
            return Add(expr);
        }
        if (const auto text = bindings_.ExpressionText(name)) {
            return Expression(name, *text);
        }
        if (name == "PI" || name == "E") {
            expr.op = Op::Real;
            expr.real = name == "PI" ? 3.141592653589793 : 2.718281828459045;
            expr.integer = name == "PI" ? 3 : 2;
            return Add(expr);
        }
        throw FormulaError("unknown variable '" + std::string(name) + "'");
    }

    int32_t Expression(std::string_view name, std::string_view text) {
        const std::string key(name);
        if (!expanding_.insert(key).second) {
            throw FormulaError("expression '" + key + "' refers to itself");
        }
        DepthGuard guard(depth_);
        const int32_t root = ParseText(text);
        expanding_.erase(key);
        return root;
    }

    Formula& formula_;
    FormulaBindings& bindings_;
    Lexer lexer_{""};
    Token current_;
    int depth_ = 0;
    std::unordered_set<std::string> expanding_;
};

Formula Formula::Compile(std::string_view text, FormulaBindings& bindings) {
    Formula formula;
    FormulaParser parser(formula, bindings);
    formula.root_ = parser.ParseText(text);
    return formula;
}

}  // namespace RyGenApi::detail

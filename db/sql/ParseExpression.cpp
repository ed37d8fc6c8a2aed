// Operator precedence, weakest first: OR, AND, NOT, comparisons, &, + -, MOD, integer division,
// * /, unary minus, ^.
#include <algorithm>
#include <array>

#include "TokenStream.h"

namespace vl::sql {

namespace {

constexpr int kOr = 1;
constexpr int kAnd = 2;
constexpr int kNot = 3;
constexpr int kComparison = 4;
constexpr int kConcatenate = 5;
constexpr int kAdditive = 6;
constexpr int kModulo = 7;
constexpr int kIntegerDivision = 8;
constexpr int kMultiplicative = 9;
constexpr int kSign = 10;
constexpr int kPower = 11;

struct Operator {
    std::string_view text;
    Op op;
    int level;
};

constexpr std::array<Operator, 16> kOperators = {{
    {"OR", Op::Or, kOr},
    {"AND", Op::And, kAnd},
    {"=", Op::Equal, kComparison},
    {"<>", Op::NotEqual, kComparison},
    {"<", Op::Less, kComparison},
    {"<=", Op::LessEqual, kComparison},
    {">", Op::Greater, kComparison},
    {">=", Op::GreaterEqual, kComparison},
    {"&", Op::Concatenate, kConcatenate},
    {"+", Op::Add, kAdditive},
    {"-", Op::Subtract, kAdditive},
    {"*", Op::Multiply, kMultiplicative},
    {"/", Op::Divide, kMultiplicative},
    {"\\", Op::IntegerDivide, kIntegerDivision},
    {"MOD", Op::Modulo, kModulo},
    {"^", Op::Power, kPower},
}};

const Operator* operatorAt(const Token& token) noexcept {
    const auto* hit = std::find_if(kOperators.begin(), kOperators.end(), [&](const Operator& o) {
        return token.isSymbol(o.text) || token.isWord(o.text);
    });
    return hit == kOperators.end() ? nullptr : hit;
}

[[noreturn]] void failTooDeep(Position at) {
    fail(ErrNo::Syntax, at,
         "expected an expression of at most " + std::to_string(kMaxDepth) + " levels");
}

class ExpressionParser {
public:
    explicit ExpressionParser(TokenStream& tokens) : tokens_(tokens) {}

    // An expression whose operators bind at least as tightly as `level`.
    ExprPtr expression(int level) {
        if (++nesting_ > kMaxDepth) {
            failTooDeep(tokens_.current().at);
        }
        ExprPtr left = operand();
        while (ExprPtr longer = continued(left, level)) {
            left = std::move(longer);
        }
        --nesting_;
        return left;
    }

private:
    // `left` with the operator that follows it, or null when none of `level` follows; then `left`
    // is untouched.
    ExprPtr continued(ExprPtr& left, int level) {
        const Token& token = tokens_.current();
        if (const Operator* op = operatorAt(token)) {
            return op->level < level ? nullptr : binary(std::move(left), *op);
        }
        const bool test = token.isWord("IS") || token.isWord("LIKE") || token.isWord("IN") ||
                          token.isWord("BETWEEN") ||
                          (token.isWord("NOT") && (tokens_.following().isWord("LIKE") ||
                                                   tokens_.following().isWord("IN") ||
                                                   tokens_.following().isWord("BETWEEN")));
        return test && level <= kComparison ? comparison(std::move(left)) : nullptr;
    }

    ExprPtr binary(ExprPtr left, const Operator& op) {
        const Position at = tokens_.take().at;
        ExprPtr right = expression(op.level + 1);
        const bool chain = op.op == Op::And || op.op == Op::Or;
        if (chain && left->op == op.op) {
            append(*left, std::move(right));
            return left;
        }
        return node(op.op, at, std::move(left), std::move(right));
    }

    // IS [NOT] NULL, [NOT] LIKE, [NOT] IN, [NOT] BETWEEN
    ExprPtr comparison(ExprPtr left) {
        bool negated = tokens_.takeWord("NOT");
        const Token word = tokens_.take();
        ExprPtr test;
        if (word.isWord("IS")) {
            negated = tokens_.takeWord("NOT");
            tokens_.expectWord("NULL");
            test = node(Op::IsNull, word.at, std::move(left));
        } else if (word.isWord("LIKE")) {
            test = node(Op::Like, word.at, std::move(left), expression(kConcatenate));
        } else if (word.isWord("BETWEEN")) {
            ExprPtr low = expression(kConcatenate);
            tokens_.expectWord("AND");
            test = node(Op::Between, word.at, std::move(left), std::move(low),
                        expression(kConcatenate));
        } else {
            test = list(std::move(left), word.at);
        }
        return negated ? node(Op::Not, word.at, std::move(test)) : std::move(test);
    }

    ExprPtr list(ExprPtr left, Position at) {
        tokens_.expectSymbol("(");
        ExprPtr in = node(Op::In, at, std::move(left));
        do {
            append(*in, expression(kOr));
        } while (tokens_.takeSymbol(","));
        if (!tokens_.takeSymbol(")")) {
            tokens_.failExpected("\",\" or \")\"");
        }
        return in;
    }

    ExprPtr operand() {
        const Token& token = tokens_.current();
        const Position at = token.at;
        if (tokens_.takeWord("NOT")) {
            return node(Op::Not, at, expression(kNot));
        }
        if (tokens_.takeSymbol("-")) {
            return node(Op::Negate, at, expression(kSign));
        }
        if (tokens_.takeSymbol("+")) {
            return expression(kSign);
        }
        if (tokens_.takeSymbol("(")) {
            ExprPtr inner = expression(kOr);
            if (!tokens_.takeSymbol(")")) {
                tokens_.failExpected("an operator or \")\"");
            }
            return inner;
        }
        if (token.kind == TokenKind::Text || token.kind == TokenKind::Number ||
            token.kind == TokenKind::Date || token.kind == TokenKind::Bytes) {
            return literal(tokens_.take().literal, at);
        }
        if (tokens_.takeSymbol("?")) {
            ExprPtr parameter = node(Op::Parameter, at);
            parameter->ordinal = tokens_.countParameter();
            return parameter;
        }
        return named(at);
    }

    ExprPtr named(Position at) {
        if (tokens_.takeWord("NULL")) {
            return literal(Null{}, at);
        }
        if (tokens_.takeWord("TRUE")) {
            return literal(true, at);
        }
        if (tokens_.takeWord("FALSE")) {
            return literal(false, at);
        }
        if (!tokens_.atName()) {
            tokens_.failExpected("a column, a literal or \"(\"");
        }
        if (tokens_.following().isSymbol("(")) {
            fail(ErrNo::Unsupported, at, "no function " + tokens_.current().text + " exists here");
        }
        ExprPtr column = node(Op::Column, at);
        column->column = tokens_.expectColumn();
        return column;
    }

    static ExprPtr literal(Variant value, Position at) {
        ExprPtr expr = node(Op::Literal, at);
        expr->literal = std::move(value);
        return expr;
    }

    template <class... Operands>
    static ExprPtr node(Op op, Position at, Operands&&... operands) {
        auto expr = std::make_unique<Expr>();
        expr->op = op;
        expr->at = at;
        (append(*expr, std::forward<Operands>(operands)), ...);
        return expr;
    }

    static void append(Expr& parent, ExprPtr child) {
        parent.depth = std::max(parent.depth, child->depth + 1);
        if (parent.depth > kMaxDepth) {  // a + b + c ... leans to the left, one level each
            failTooDeep(parent.at);
        }
        parent.operands.push_back(std::move(child));
    }

    TokenStream& tokens_;
    int nesting_ = 0;
};

}  // namespace

ExprPtr parseExpression(TokenStream& tokens) { return ExpressionParser(tokens).expression(kOr); }

}  // namespace vl::sql

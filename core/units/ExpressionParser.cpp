// Recursive-descent parser and evaluator of the expression language. Operators are
// left-associative; * and / bind tighter than + and -; signs may repeat.
#include "core/units/ExpressionParser.h"

#include "core/units/ExpressionNames.h"
#include "core/units/ExpressionTokenizer.h"
#include "core/units/NameLookup.h"

#include <string>
#include <utility>
#include <vector>

namespace cad::units {

namespace {

using Kind = Token::Kind;

// Parentheses nested deeper than this are refused rather than risking the stack.
constexpr int maxNesting = 200;

// The dimension rules of + - * / on two quantities; u is the default unit that a
// bare number meeting a length is read in.
cad::Result<Quantity> applyOperator(char op, Quantity a, Quantity b, Length u) {
    switch (op) {
    case '+':
    case '-': {
        const double sign = op == '+' ? 1.0 : -1.0;
        if (!a.isLength && !b.isLength) return Quantity{a.value + sign * b.value, false};
        const double left = a.isLength ? a.value : a.value * unitScale(u);
        const double right = b.isLength ? b.value : b.value * unitScale(u);
        return Quantity{left + sign * right, true};
    }
    case '*':
        if (a.isLength && b.isLength)
            return cad::fail("Multiplying two lengths gives an area, not a length.");
        return Quantity{a.value * b.value, a.isLength || b.isLength};
    case '/':
        if (b.value == 0.0) return cad::fail("Division by zero.");
        if (!a.isLength && b.isLength)
            return cad::fail("Dividing a number by a length doesn't give a length.");
        // A length over a length is a plain ratio.
        return Quantity{a.value / b.value, a.isLength && !b.isLength};
    default:
        return cad::fail("Unknown operator.");
    }
}

class Parser {
public:
    Parser(std::vector<Token> tokens, Length defaultUnit, bool unitsAllowed)
        : tokens_(std::move(tokens)), defaultUnit_(defaultUnit), unitsAllowed_(unitsAllowed) {}

    cad::Result<Quantity> parse() {
        if (peek().kind == Kind::End) return cad::fail("Enter a value.");
        auto value = parseSum();
        if (!value) return value;
        if (peek().kind != Kind::End) return cad::fail("Unexpected text after the value.");
        return value;
    }

private:
    const Token& peek() const { return tokens_[index_]; }
    // The End token is never consumed, so peek() always has a token to show.
    void advance() {
        if (index_ + 1 < tokens_.size()) ++index_;
    }
    bool atSymbol(char symbol) const {
        return peek().kind == Kind::Symbol && peek().symbol == symbol;
    }

    cad::Result<Quantity> parseSum() {
        auto left = parseProduct();
        if (!left) return left;
        while (atSymbol('+') || atSymbol('-')) {
            const char op = peek().symbol;
            advance();
            auto right = parseProduct();
            if (!right) return right;
            left = applyOperator(op, *left, *right, defaultUnit_);
            if (!left) return left;
        }
        return left;
    }

    cad::Result<Quantity> parseProduct() {
        auto left = parseSigned();
        if (!left) return left;
        while (atSymbol('*') || atSymbol('/')) {
            const char op = peek().symbol;
            advance();
            // A sign may follow the operator directly: 2*-3.
            auto right = atSymbol('+') || atSymbol('-') ? parseSigned() : parsePrimary();
            if (!right) return right;
            left = applyOperator(op, *left, *right, defaultUnit_);
            if (!left) return left;
        }
        return left;
    }

    cad::Result<Quantity> parseSigned() {
        bool negate = false;
        while (atSymbol('+') || atSymbol('-')) {
            if (peek().symbol == '-') negate = !negate;
            advance();
        }
        auto value = parsePrimary();
        if (value && negate) value->value = -value->value;
        return value;
    }

    cad::Result<Quantity> parsePrimary() {
        const Token& token = peek();
        switch (token.kind) {
        case Kind::Symbol:
            if (token.symbol == '(') return parseParenthesised();
            return cad::fail("Expected a number.");
        case Kind::Name:
            return parseName();
        case Kind::Number:
            return parseNumber();
        case Kind::End:
            return cad::fail("The value is incomplete.");
        case Kind::Unit:
            break;
        }
        return cad::fail("Expected a number.");
    }

    cad::Result<Quantity> parseParenthesised() {
        if (depth_ >= maxNesting) return cad::fail("The value has too many parentheses.");
        advance();
        ++depth_;
        auto value = parseSum();
        --depth_;
        if (!value) return value;
        if (!atSymbol(')')) return cad::fail("Missing ')'.");
        advance();
        return applyUnit(*value);
    }

    cad::Result<Quantity> parseName() {
        const std::string name = peek().text;
        advance();
        auto value = resolveName(name);
        if (!value) return value;
        if (!unitsAllowed_ && value->isLength)
            return cad::fail("'" + name + "' is a length; a plain number is needed here.");
        return applyUnit(*value);
    }

    // A number, an optional fraction after it (1 1/2), an optional unit, and for
    // feet an optional inches part: 2'6", 2' 6, 2ft 6in, 1' 3 1/2".
    cad::Result<Quantity> parseNumber() {
        const double number = numberWithFraction();
        const bool feet = peek().kind == Kind::Unit && peek().unit == Length::Feet;
        auto value = applyUnit(Quantity{number, false});
        if (!value || !feet || peek().kind != Kind::Number) return value;
        const double inches = numberWithFraction();
        if (peek().kind == Kind::Unit) {
            if (peek().unit != Length::Inches)
                return cad::fail("After feet, give inches (e.g. 2'6\").");
            advance();
        }
        return Quantity{number * unitScale(Length::Feet) + inches * unitScale(Length::Inches),
                        true};
    }

    // The current Number token plus a following fraction token, if any.
    double numberWithFraction() {
        double number = peek().number;
        advance();
        if (peek().kind == Kind::Number && peek().fraction) {
            number += peek().number;
            advance();
        }
        return number;
    }

    // An optional unit after a value turns a plain number into a length; a unit on
    // a value that is already a length (1in mm, (2in) mm, a length parameter) fails.
    cad::Result<Quantity> applyUnit(Quantity value) {
        while (peek().kind == Kind::Unit) {
            const Length unit = peek().unit;
            advance();
            if (value.isLength) return cad::fail("A value has two units.");
            value = Quantity{value.value * unitScale(unit), true};
        }
        return value;
    }

    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    Length defaultUnit_;
    bool unitsAllowed_;
    int depth_ = 0;
};

} // namespace

cad::Result<Quantity> parseQuantity(std::string_view text, Length defaultUnit, bool unitsAllowed) {
    auto tokens = tokenize(text, unitsAllowed);
    if (!tokens) return Error(tokens);
    return Parser(std::move(tokens).value(), defaultUnit, unitsAllowed).parse();
}

cad::Result<double> evaluateLength(std::string_view text, Length defaultUnit) {
    auto quantity = parseQuantity(text, defaultUnit, true);
    if (!quantity) return Error(quantity);
    return quantity->isLength ? quantity->value : quantity->value * unitScale(defaultUnit);
}

cad::Result<double> evaluateNumber(std::string_view text) {
    auto quantity = parseQuantity(text, Length::Millimeters, false);
    if (!quantity) return Error(quantity);
    return quantity->value;
}

cad::Result<double> readLengthText(std::string_view text) {
    return evaluateLength(text, usesNames(text) ? currentLengthUnit() : Length::Millimeters);
}

cad::Result<double> readNumberText(std::string_view text) { return evaluateNumber(text); }

} // namespace cad::units

// Splits a typed value into numbers (with fractions such as 1/4), unit words and
// marks, names and the symbols ( ) * + - /.
#include "core/units/ExpressionTokenizer.h"

#include <charconv>

namespace cad::units {

namespace {

void skipSpace(std::string_view text, std::size_t& p) {
    while (p < text.size() && isSpace(text[p])) ++p;
}

// Reads the run of digits and dots at p as a decimal number (no sign, no exponent).
cad::Result<double> readNumber(std::string_view text, std::size_t& p) {
    const std::size_t start = p;
    int dots = 0;
    while (p < text.size() && isNumberChar(text[p])) {
        if (text[p] == '.') ++dots;
        ++p;
    }
    const std::string_view run = text.substr(start, p - start);
    if (dots > 1) return cad::fail("That number isn't valid.");
    if (run == ".") return 0.0;
    double value = 0.0;
    const auto [end, error] =
        std::from_chars(run.data(), run.data() + run.size(), value, std::chars_format::fixed);
    // Out of range means hundreds of digits: not a number anyone means to type.
    if (error != std::errc() || end != run.data() + run.size())
        return cad::fail("That number isn't valid.");
    return value;
}

// One whole UTF-8 character starting at p, so that the message can show it.
std::string characterAt(std::string_view text, std::size_t p) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    std::size_t n = 1;
    if ((byte(p) & 0xC0) == 0xC0) {
        while (n < 4 && p + n < text.size() && (byte(p + n) & 0xC0) == 0x80) ++n;
    }
    return std::string(text.substr(p, n));
}

} // namespace

cad::Result<std::vector<Token>> tokenize(std::string_view text, bool unitsAllowed) {
    std::vector<Token> tokens;
    std::size_t p = 0;
    for (;;) {
        skipSpace(text, p);
        if (p >= text.size()) break;
        const char c = text[p];
        Token token;
        if (isNumberChar(c)) {
            auto first = readNumber(text, p);
            if (!first) return Error(first);
            token.kind = Token::Kind::Number;
            token.number = *first;
            // "a/b", with or without spaces around the slash, is one fraction token;
            // without a number after the slash, the slash is left to be a symbol.
            std::size_t q = p;
            skipSpace(text, q);
            if (q < text.size() && text[q] == '/') {
                ++q;
                skipSpace(text, q);
                if (q < text.size() && isNumberChar(text[q])) {
                    p = q;
                    auto denominator = readNumber(text, p);
                    if (!denominator) return Error(denominator);
                    if (*denominator == 0.0) return cad::fail("Division by zero.");
                    token.number = *first / *denominator;
                    token.fraction = true;
                }
            }
        } else if (isIdentifierStart(c) || c == '"' || c == '\'') {
            std::size_t end = p + 1;
            if (c != '"' && c != '\'') {
                while (end < text.size() && isIdentifierChar(text[end])) ++end;
            }
            const std::string_view word = text.substr(p, end - p);
            p = end;
            if (const auto unit = parseUnitName(word)) {
                if (!unitsAllowed) return cad::fail("Enter a plain number here (no units).");
                token.kind = Token::Kind::Unit;
                token.unit = *unit;
            } else {
                token.kind = Token::Kind::Name;
                token.text = std::string(word);
            }
        } else if (c == '(' || c == ')' || c == '*' || c == '+' || c == '-' || c == '/') {
            token.kind = Token::Kind::Symbol;
            token.symbol = c;
            ++p;
        } else {
            return cad::fail("Unexpected character '" + characterAt(text, p) + "'.");
        }
        tokens.push_back(std::move(token));
    }
    tokens.push_back(Token{});
    return tokens;
}

} // namespace cad::units

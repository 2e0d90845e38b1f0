// The tokenizer of the expression language, and the character classes that the
// name scanner shares with it. Internal to core/units.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"

#include <string>
#include <string_view>
#include <vector>

namespace cad::units {

// One lexical item of an expression.
struct Token {
    enum class Kind { Number, Unit, Name, Symbol, End };
    Kind kind = Kind::End;
    std::string text;                  // Name: the identifier
    double number = 0.0;               // Number: its value
    bool fraction = false;             // Number: written as a fraction a/b
    Length unit = Length::Millimeters; // Unit: the unit it spells
    char symbol = 0;                   // Symbol: one of ( ) * + - /
};

// Character classes, fixed whatever the process locale.
constexpr bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isNumberChar(char c) { return isDigit(c) || c == '.'; }
constexpr bool isIdentifierStart(char c) { return isLetter(c) || c == '_'; }
constexpr bool isIdentifierChar(char c) { return isIdentifierStart(c) || isDigit(c); }

// The tokens of the text, always ending with an End token. Unit words fail when
// units are not allowed.
cad::Result<std::vector<Token>> tokenize(std::string_view text, bool unitsAllowed);

} // namespace cad::units

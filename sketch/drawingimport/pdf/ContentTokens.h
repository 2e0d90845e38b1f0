// Tokens of a PDF content stream or of PostScript: numbers, names and operators;
// strings, arrays, dictionaries and comments are stepped over.
#pragma once

#include <string_view>

namespace cad::drawingimport::pdf {

enum class TokenKind { Number, Name, Operator, End };

struct Token {
    TokenKind kind = TokenKind::End;
    double number = 0;     // Number: NaN when it is written wrongly ("1.2.3", "--4")
    std::string_view text; // Name (without "/") or Operator
};

class ContentTokens {
public:
    explicit ContentTokens(std::string_view bytes) : bytes_(bytes) {}

    Token next();
    // After an inline image's "ID": steps over its data and the "EI" that ends it.
    void skipInlineImage();

private:
    void skipString();

    std::string_view bytes_;
    std::size_t at_ = 0;
};

} // namespace cad::drawingimport::pdf

// Splits content at white space and at the delimiters "/[]<>(){}%", reading runs of
// digits, signs and dots as numbers.
#include "sketch/drawingimport/pdf/ContentTokens.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace cad::drawingimport::pdf {

namespace {

bool isWhite(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0';
}

bool isDelimiter(char c) {
    return c == '/' || c == '[' || c == ']' || c == '<' || c == '>' || c == '(' || c == ')' ||
           c == '{' || c == '}' || c == '%';
}

bool isRegular(char c) { return !isWhite(c) && !isDelimiter(c); }

double numberOf(std::string_view text) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (ec != std::errc() || ptr != end || !std::isfinite(value))
        return std::numeric_limits<double>::quiet_NaN();
    return value;
}

} // namespace

void ContentTokens::skipString() {
    // At "(": strings nest by balanced parentheses; a backslash escapes one character.
    int depth = 0;
    while (at_ < bytes_.size()) {
        const char c = bytes_[at_++];
        if (c == '\\')
            ++at_;
        else if (c == '(')
            ++depth;
        else if (c == ')' && --depth == 0)
            return;
    }
}

Token ContentTokens::next() {
    while (at_ < bytes_.size()) {
        const char c = bytes_[at_];
        if (isWhite(c)) {
            ++at_;
        } else if (c == '%') {
            while (at_ < bytes_.size() && bytes_[at_] != '\n' && bytes_[at_] != '\r') ++at_;
        } else if (c == '(') {
            skipString();
        } else if (c == '<' && at_ + 1 < bytes_.size() && bytes_[at_ + 1] != '<') {
            while (at_ < bytes_.size() && bytes_[at_] != '>') ++at_; // a hex string
            ++at_;
        } else if (c == '/') {
            const std::size_t start = ++at_;
            while (at_ < bytes_.size() && isRegular(bytes_[at_])) ++at_;
            return {TokenKind::Name, 0, bytes_.substr(start, at_ - start)};
        } else if (isDelimiter(c)) {
            ++at_; // brackets, braces and dictionary marks carry no meaning here
        } else {
            const std::size_t start = at_;
            bool numeric = true;
            bool digit = false;
            while (at_ < bytes_.size() && isRegular(bytes_[at_])) {
                const char r = bytes_[at_++];
                digit = digit || (r >= '0' && r <= '9');
                numeric = numeric && ((r >= '0' && r <= '9') || r == '-' || r == '+' || r == '.');
            }
            const std::string_view text = bytes_.substr(start, at_ - start);
            if (numeric && (digit || text.find('.') != std::string_view::npos))
                return {TokenKind::Number, numberOf(text), text};
            return {TokenKind::Operator, 0, text};
        }
    }
    return {};
}

void ContentTokens::skipInlineImage() {
    if (at_ < bytes_.size() && isWhite(bytes_[at_])) ++at_;
    while (at_ + 1 < bytes_.size()) {
        if (bytes_[at_] == 'E' && bytes_[at_ + 1] == 'I' && at_ > 0 && isWhite(bytes_[at_ - 1]) &&
            (at_ + 2 == bytes_.size() || isWhite(bytes_[at_ + 2]))) {
            at_ += 2;
            return;
        }
        ++at_;
    }
    at_ = bytes_.size();
}

} // namespace cad::drawingimport::pdf

// Scans expression text with the tokenizer's character classes to find and rename
// names without evaluating anything, so it works on text that does not parse.
#include "core/units/ExpressionNames.h"

#include "core/units/ExpressionTokenizer.h"
#include "core/units/Length.h"

#include <algorithm>

namespace cad::units {

namespace {

// Calls onText for each stretch of text that is not a name and onName for each name.
template <typename OnText, typename OnName>
void scanNames(std::string_view text, OnText onText, OnName onName) {
    std::size_t p = 0;
    while (p < text.size()) {
        const std::size_t start = p;
        if (isNumberChar(text[p])) {
            while (p < text.size() && isNumberChar(text[p])) ++p;
            onText(text.substr(start, p - start));
        } else if (isIdentifierStart(text[p])) {
            while (p < text.size() && isIdentifierChar(text[p])) ++p;
            const std::string_view word = text.substr(start, p - start);
            if (parseUnitName(word))
                onText(word);
            else
                onName(word);
        } else {
            ++p;
            onText(text.substr(start, 1));
        }
    }
}

} // namespace

std::vector<std::string> referencedNames(std::string_view text) {
    std::vector<std::string> names;
    scanNames(
        text, [](std::string_view) {},
        [&](std::string_view name) {
            if (std::find(names.begin(), names.end(), name) == names.end())
                names.emplace_back(name);
        });
    return names;
}

bool usesNames(std::string_view text) { return !referencedNames(text).empty(); }

std::string renameInExpression(std::string_view text, std::string_view oldName,
                               std::string_view newName) {
    std::string result;
    result.reserve(text.size());
    scanNames(
        text, [&](std::string_view part) { result += part; },
        [&](std::string_view name) { result += name == oldName ? newName : name; });
    return result;
}

} // namespace cad::units

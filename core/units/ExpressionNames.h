// The parameter names an expression uses, and renaming one of them in the text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cad::units {

// The identifiers in the text that are not unit spellings, each once, in order of
// first appearance: "a + b*a + 2mm" gives a, b.
std::vector<std::string> referencedNames(std::string_view text);

// Whether the text uses any name.
bool usesNames(std::string_view text);

// The text with every whole identifier equal to oldName (letter case matters)
// replaced by newName; everything else is copied unchanged.
std::string renameInExpression(std::string_view text, std::string_view oldName,
                               std::string_view newName);

} // namespace cad::units

// The text entity's options as commands take them: the words of each choice, sizes
// in points, and reading add_text's and edit_sketch_entity's text arguments.
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "sketch/SketchEntity.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad::text {

// "left", "center", "right", "justify"; "baseline", "bottom", "middle", "top";
// "cap_height", "font_size". Parsing takes exactly these words.
std::string_view alignWord(TextAlign align);
std::string_view valignWord(TextVAlign valign);
std::string_view sizeIsWord(TextSizeIs sizeIs);
std::optional<TextAlign> parseAlign(std::string_view word);
std::optional<TextVAlign> parseValign(std::string_view word);
std::optional<TextSizeIs> parseSizeIs(std::string_view word);
// pt, mm, cm, m, in, ft.
bool isSizeUnit(std::string_view word);

// Points to millimetres: 72 points make an inch.
inline double pointsToMillimetres(double points) { return points * 25.4 / 72.0; }

// The text options given to a command; what is absent stays as it was.
struct TextChanges {
    std::optional<std::string> text, font, path, sizeUnit;
    std::optional<double> height, x, y, angle, lineSpacing, tracking, widthScale, heightScale,
        baselineShift, charRotation, pathOffset;
    std::optional<TextAlign> align;
    std::optional<TextVAlign> valign;
    std::optional<TextSizeIs> sizeIs;
    std::optional<bool> bold, italic, kerning, vertical, allCaps, pathFlip;

    bool any() const;
    void applyTo(SketchText& text) const;
};

// add_text's own arguments after "sketch" (edit_sketch_entity shares them).
std::vector<ArgSpec> textArguments();
// The text keys that only text takes (not x, y, height and angle, which other kinds
// share in edit_sketch_entity).
const std::vector<std::string>& textOnlyKeys();

// Reads every text option present in the record. Messages begin with the command's
// name ("add_text: 'height' must be a size like 12pt or 5mm.").
Result<TextChanges> readTextChanges(const CommandRecord& record);
// A size in millimetres: a length, or a number followed by "pt".
Result<double> readTextHeight(const CommandRecord& record);

} // namespace cad::text

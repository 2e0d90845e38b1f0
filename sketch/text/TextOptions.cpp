// Text options as commands read them: every option checked with its own sentence,
// choices by their words, and heights in points turned into millimetres.
#include "sketch/text/TextOptions.h"

#include "core/ArgReader.h"
#include "core/units/ExpressionParser.h"

#include <array>
#include <utility>

namespace cad::text {

namespace {

using T = ArgType;

constexpr std::array<std::pair<TextAlign, std::string_view>, 4> kAligns{
    {{TextAlign::Left, "left"},
     {TextAlign::Center, "center"},
     {TextAlign::Right, "right"},
     {TextAlign::Justify, "justify"}}};
constexpr std::array<std::pair<TextVAlign, std::string_view>, 4> kValigns{
    {{TextVAlign::Baseline, "baseline"},
     {TextVAlign::Bottom, "bottom"},
     {TextVAlign::Middle, "middle"},
     {TextVAlign::Top, "top"}}};
constexpr std::array<std::pair<TextSizeIs, std::string_view>, 2> kSizeIs{
    {{TextSizeIs::CapHeight, "cap_height"}, {TextSizeIs::FontSize, "font_size"}}};
constexpr std::array<std::string_view, 6> kSizeUnits{"pt", "mm", "cm", "m", "in", "ft"};

template <typename E, std::size_t N>
std::string_view wordOf(const std::array<std::pair<E, std::string_view>, N>& table, E value) {
    for (const auto& [v, word] : table)
        if (v == value) return word;
    return table.front().second;
}

template <typename E, std::size_t N>
std::optional<E> parseWord(const std::array<std::pair<E, std::string_view>, N>& table,
                           std::string_view word) {
    for (const auto& [v, w] : table)
        if (w == word) return v;
    return std::nullopt;
}

template <typename E, std::size_t N>
std::vector<std::string> wordsOf(const std::array<std::pair<E, std::string_view>, N>& table) {
    std::vector<std::string> words;
    for (const auto& entry : table) words.emplace_back(entry.second);
    return words;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Reads an optional value into `target` with the reader's method for its kind.
template <typename V, typename Read>
Result<void> optional(const ArgReader& reader, std::string_view key, std::optional<V>& target,
                      Read read) {
    if (!reader.has(key)) return {};
    Result<V> value = read(key);
    if (!value) return Error(value);
    target = *value;
    return {};
}

template <typename E, std::size_t N>
Result<void> optionalChoice(const ArgReader& reader, std::string_view key,
                            const std::array<std::pair<E, std::string_view>, N>& table,
                            std::optional<E>& target) {
    if (!reader.has(key)) return {};
    Result<std::string> word = reader.choice(key, wordsOf(table));
    if (!word) return Error(word);
    target = parseWord(table, *word);
    return {};
}

} // namespace

std::string_view alignWord(TextAlign align) { return wordOf(kAligns, align); }
std::string_view valignWord(TextVAlign valign) { return wordOf(kValigns, valign); }
std::string_view sizeIsWord(TextSizeIs sizeIs) { return wordOf(kSizeIs, sizeIs); }
std::optional<TextAlign> parseAlign(std::string_view word) { return parseWord(kAligns, word); }
std::optional<TextVAlign> parseValign(std::string_view word) { return parseWord(kValigns, word); }
std::optional<TextSizeIs> parseSizeIs(std::string_view word) { return parseWord(kSizeIs, word); }

bool isSizeUnit(std::string_view word) {
    for (std::string_view unit : kSizeUnits)
        if (unit == word) return true;
    return false;
}

bool TextChanges::any() const {
    return text || font || path || sizeUnit || height || x || y || angle || lineSpacing ||
           tracking || widthScale || heightScale || baselineShift || charRotation || pathOffset ||
           align || valign || sizeIs || bold || italic || kerning || vertical || allCaps ||
           pathFlip;
}

void TextChanges::applyTo(SketchText& t) const {
    auto take = [](auto& target, const auto& value) {
        if (value) target = *value;
    };
    take(t.text, text);
    take(t.font, font);
    take(t.path, path);
    take(t.sizeUnit, sizeUnit);
    take(t.height, height);
    take(t.position.x, x);
    take(t.position.y, y);
    take(t.angle, angle);
    take(t.lineSpacing, lineSpacing);
    take(t.tracking, tracking);
    take(t.widthScale, widthScale);
    take(t.heightScale, heightScale);
    take(t.baselineShift, baselineShift);
    take(t.charRotation, charRotation);
    take(t.pathOffset, pathOffset);
    take(t.align, align);
    take(t.valign, valign);
    take(t.sizeIs, sizeIs);
    take(t.bold, bold);
    take(t.italic, italic);
    take(t.kerning, kerning);
    take(t.vertical, vertical);
    take(t.allCaps, allCaps);
    take(t.pathFlip, pathFlip);
}

std::vector<ArgSpec> textArguments() {
    auto length = [](const char* name, const char* description) {
        return ArgSpec{name, T::Length, false, description, {}, ""};
    };
    auto number = [](const char* name, const char* description) {
        return ArgSpec{name, T::Number, false, description, {}, ""};
    };
    auto angle = [](const char* name, const char* description) {
        return ArgSpec{name, T::Angle, false, description, {}, ""};
    };
    auto flag = [](const char* name, const char* description) {
        return ArgSpec{name, T::Boolean, false, description, {}, ""};
    };
    auto choice = [](const char* name, const char* description, std::vector<std::string> words) {
        return ArgSpec{name, T::String, false, description, std::move(words), ""};
    };
    return {
        {"text", T::Text, true, "The words; \"\\n\" starts a new line.", {}, ""},
        {"font",
         T::String,
         false,
         "An installed font family, e.g. \"Arial\" (default Arial).",
         {},
         ""},
        length("height", "Cap height (default 5 mm), or \"12pt\"."),
        length("x", "Where the text sits (x)."),
        length("y", "Where the text sits (y)."),
        angle("angle", "Turn of the whole text, degrees."),
        choice("align", "Baseline start (left aligned), middle (centered) or end (right aligned).",
               wordsOf(kAligns)),
        choice("valign",
               "Which part of the text sits at y: baseline (default), bottom (descenders), "
               "middle, top (capitals).",
               wordsOf(kValigns)),
        flag("bold", "Bold letters."),
        flag("italic", "Italic letters."),
        choice("size_is",
               "height is the cap_height (default) or the font_size (the em, as in a word "
               "processor).",
               wordsOf(kSizeIs)),
        number("line_spacing", "Baseline to baseline, percent of the font size (default 120)."),
        number("tracking", "Extra space between letters, thousandths of an em (default 0)."),
        flag("kerning", "The font's pair spacing (default true)."),
        number("width_scale", "Letter width, percent (default 100)."),
        number("height_scale", "Letter height, percent (default 100)."),
        length("baseline_shift", "Raise the letters (negative: lower)."),
        angle("char_rotation", "Turn each letter, degrees."),
        flag("vertical", "Letters stacked top to bottom (columns left to right)."),
        flag("all_caps", "Capitals throughout."),
        {"path",
         T::String,
         false,
         "Text on a path: a curve of the same sketch, e.g. \"Arc1\" (empty: off). align places "
         "it along the path.",
         {},
         ""},
        length("path_offset", "Where along the path the text starts."),
        flag("path_flip", "Run the other way along the path."),
        choice("size_unit",
               "The unit the app shows the size in: pt, mm, cm, m, in, ft (height also accepts "
               "\"12pt\").",
               {kSizeUnits.begin(), kSizeUnits.end()}),
    };
}

const std::vector<std::string>& textOnlyKeys() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> out;
        for (const ArgSpec& argument : textArguments())
            if (argument.name != "x" && argument.name != "y" && argument.name != "height" &&
                argument.name != "angle")
                out.push_back(argument.name);
        return out;
    }();
    return keys;
}

Result<double> readTextHeight(const CommandRecord& record) {
    const Error wrong{record.name + ": 'height' must be a size like 12pt or 5mm."};
    const Value* value = record.find("height");
    if (!value) return wrong;
    if (const auto* text = std::get_if<std::string>(value)) {
        std::string_view size = trimmed(*text);
        if (size.size() > 2) {
            const std::string_view unit = size.substr(size.size() - 2);
            if ((unit[0] == 'p' || unit[0] == 'P') && (unit[1] == 't' || unit[1] == 'T')) {
                Result<double> points = units::evaluateNumber(size.substr(0, size.size() - 2));
                if (!points) return wrong;
                return pointsToMillimetres(*points);
            }
        }
    }
    Result<double> millimetres = ArgReader(record).length("height");
    if (!millimetres) return wrong;
    return millimetres;
}

Result<TextChanges> readTextChanges(const CommandRecord& record) {
    const ArgReader reader(record);
    const std::string& command = record.name;
    TextChanges c;
    auto string = [&](std::string_view key) { return reader.string(key); };
    auto length = [&](std::string_view key) { return reader.length(key); };
    auto number = [&](std::string_view key) { return reader.number(key); };
    auto angle = [&](std::string_view key) { return reader.angle(key); };
    auto flag = [&](std::string_view key) { return reader.boolean(key); };

    for (Result<void> ok : {optional(reader, "text", c.text, string),
                            optional(reader, "font", c.font, string),
                            optional(reader, "x", c.x, length),
                            optional(reader, "y", c.y, length),
                            optional(reader, "angle", c.angle, angle),
                            optionalChoice(reader, "align", kAligns, c.align),
                            optionalChoice(reader, "valign", kValigns, c.valign),
                            optional(reader, "bold", c.bold, flag),
                            optional(reader, "italic", c.italic, flag),
                            optionalChoice(reader, "size_is", kSizeIs, c.sizeIs),
                            optional(reader, "line_spacing", c.lineSpacing, number),
                            optional(reader, "tracking", c.tracking, number),
                            optional(reader, "kerning", c.kerning, flag),
                            optional(reader, "width_scale", c.widthScale, number),
                            optional(reader, "height_scale", c.heightScale, number),
                            optional(reader, "baseline_shift", c.baselineShift, length),
                            optional(reader, "char_rotation", c.charRotation, angle),
                            optional(reader, "vertical", c.vertical, flag),
                            optional(reader, "all_caps", c.allCaps, flag),
                            optional(reader, "path", c.path, string),
                            optional(reader, "path_offset", c.pathOffset, length),
                            optional(reader, "path_flip", c.pathFlip, flag)})
        if (!ok) return Error(ok);

    if (reader.has("height")) {
        Result<double> height = readTextHeight(record);
        if (!height) return Error(height);
        c.height = *height;
    }
    if (c.font && trimmed(*c.font).empty()) c.font = "Arial";
    if (c.lineSpacing && !(*c.lineSpacing > 0))
        return fail(command + ": 'line_spacing' must be greater than zero (120 is normal).");
    if ((c.widthScale && !(*c.widthScale > 0)) || (c.heightScale && !(*c.heightScale > 0)))
        return fail(command + ": scales must be greater than zero (100 is normal).");
    if (reader.has("size_unit")) {
        const auto* unit = std::get_if<std::string>(record.find("size_unit"));
        if (!unit || !isSizeUnit(*unit))
            return fail(command + ": 'size_unit' must be pt, mm, cm, m, in or ft.");
        c.sizeUnit = *unit;
    }
    return c;
}

} // namespace cad::text

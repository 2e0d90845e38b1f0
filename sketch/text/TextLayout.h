// Text layout: a text entity's letters placed by its options (size, spacing, lines,
// alignment, turns, a path to follow) as closed glyph contours in sketch coordinates.
#pragma once

#include "core/Result.h"
#include "sketch/SketchEntity.h"
#include "sketch/text/GlyphOutline.h"

#include <Geom2d_Curve.hxx>

#include <memory>
#include <string>
#include <vector>

namespace cad::text {

// Strict: the family must be installed (or its metric-compatible stand-in), as a
// command checks a text. Display: otherwise the first installed fallback, so a
// project opened where its font is missing still shows and extrudes its text.
enum class FontChoice { Strict, Display };

// The curve a text follows, and what it is (its kind and values), which keys the cache.
struct TextPathCurve {
    Handle(Geom2d_Curve) curve;
    std::string key;
};

struct TextLayout {
    std::vector<Contour> contours; // closed; `letter` counts characters as written
    std::string font;              // the family the letters came from
    double fontSize = 0;           // the em in millimetres
};

// Lays the text out, on `path` when one is given. Results are cached per text
// content, options and path, and shared: never change one.
Result<std::shared_ptr<const TextLayout>> layoutText(const SketchText& text,
                                                     const TextPathCurve* path, FontChoice choice);

// The curve the text's `path` names among the sketch's entities (a line, circle, arc
// or spline), or "'Arc9' isn't a curve of this sketch to put text on.".
Result<TextPathCurve> findTextPath(const SketchText& text, const std::vector<SketchEntity>& sketch);

// The text as a command checks it: the font strictly, and a path that must name a
// curve of the sketch.
Result<std::shared_ptr<const TextLayout>>
layoutTextStrictly(const SketchText& text, const std::vector<SketchEntity>& sketch);
// The text as it is shown and turned into profiles: on its path while that names a
// curve (straight otherwise), in its font or a fallback.
Result<std::shared_ptr<const TextLayout>>
layoutTextForSketch(const SketchText& text, const std::vector<SketchEntity>* sketch);

// UTF-8 as characters; a malformed byte becomes U+FFFD.
std::u32string decodeUtf8(std::string_view text);

} // namespace cad::text

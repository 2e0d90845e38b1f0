// The flat pattern of a body, as laser and punch software and nesting need it: the
// blank's size, thickness and K-factor, its openings and bends, and its drawing seen
// square to the fixed face, lower left corner at the origin, in millimetres.
#pragma once

#include "core/Result.h"
#include "sketch/drawing/Drawing.h"

#include <optional>
#include <string>
#include <vector>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::flat {

struct FlatOptions {
    // The fixed face's name ("Flange1.start" or "Body1/Flange1.start"); empty: the
    // largest flat face.
    std::string face;
    std::optional<double> kFactor;   // instead of the body's
    std::optional<double> thickness; // instead of the body's (0: measured)
};

struct FlatPatternBend {
    bool up = true;         // toward the side the drawing is seen from
    double angle = 0;       // degrees
    double innerRadius = 0; // mm
    // The middle of the bend's strip on the drawing, from end to end.
    drawing::DrawingPoint from, to;
};

struct FlatPattern {
    double width = 0, height = 0; // the outline's box
    double thickness = 0;
    double kFactor = 0.44;
    int holes = 0; // openings right through
    std::vector<FlatPatternBend> bends;
    // The outline on CUT_OUTSIDE, openings on CUT_INSIDE, each bend strip's two
    // edges on BEND, pockets and engraving on ENGRAVE.
    drawing::Drawing drawing;
};

// The body laid flat: its bends unfolded (by its rules, else K 0.44 or its
// material's and the measured thickness, or the options'), or as it is when it has
// none or an Unfold leaves it flat. "Nothing to lay flat." for a body without a
// shape; the unfolding's and the drawing's sentences otherwise.
Result<FlatPattern> flatPattern(const Document& document, const GeometryObject& body,
                                const FlatOptions& options);

} // namespace cad::flat

// The corner tools' view of a sketch: whether a clicked point is a corner where
// exactly two lines meet, whether a fillet radius or chamfer distance fits it, and
// the value a click uses when the last one does not.
#pragma once

#include "sketch/SketchEntity.h"

#include <optional>
#include <string>
#include <vector>

namespace cad::ui {

struct LineCorner {
    std::string end; // the first line's end at the corner ("Line1.end"), as commands name it
    Point2 vertex;
    double first = 0, second = 0; // the lengths of the two lines
    double angle = 0;             // between them, radians (0 or pi: no corner)
};

// The corner at `at`: exactly two line or arc ends within 1e-7 mm of it, both of
// lines; none otherwise.
std::optional<LineCorner> lineCornerAt(const std::vector<SketchEntity>& entities, Point2 at);

// Whether the radius (fillet) or distance (chamfer) can be made on this corner:
// greater than zero and its setback short of both lines' far ends.
bool cornerFits(const LineCorner& corner, bool fillet, double value);

// The value a click makes: the last one when it fits, else a fifth of the shorter
// line in whole grid steps (at least one), else a fifth of the shorter line as is.
double cornerValue(const LineCorner& corner, bool fillet, double last, double gridStep);

} // namespace cad::ui

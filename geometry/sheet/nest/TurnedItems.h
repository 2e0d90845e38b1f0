// Drawing items turned about the origin and then moved, each keeping its kind: the
// way a nested copy lands on its sheet.
#pragma once

#include "sketch/drawing/Drawing.h"

namespace cad::nest {

// A point turned counter-clockwise by `degrees` about the origin; quarter turns are
// exact, so a part turned by 90 degrees keeps its round coordinates.
drawing::DrawingPoint turnedPoint(drawing::DrawingPoint point, double degrees);

// The item turned by `degrees` about the origin, then moved by `shift`: lines and
// polylines move their points, circles their centre, arcs their centre and their
// angles turn with them.
drawing::DrawingItem turnedItem(const drawing::DrawingItem& item, double degrees,
                                drawing::DrawingPoint shift);

// Every item of the drawing turned and moved, in place.
void turnDrawing(drawing::Drawing& drawing, double degrees, drawing::DrawingPoint shift);

} // namespace cad::nest

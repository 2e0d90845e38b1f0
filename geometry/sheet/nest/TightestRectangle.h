// The turn that sets a flat part square to its tightest bounding rectangle, found on
// the convex hull of points taken along the part's items.
#pragma once

#include "sketch/drawing/Drawing.h"

#include <vector>

namespace cad::nest {

// Points along the drawing: every point of a line or polyline; a circle at every 5
// degrees (the first point again at the end); an arc in max(trunc(sweep / 5), 4)
// equal steps, both ends included (a sweep under 1e-9 counts as a full circle).
// Other items and points that aren't finite are left out.
std::vector<drawing::DrawingPoint> sampledPoints(const drawing::Drawing& drawing);

// The convex hull by the monotone chain: the lower chain from the leftmost point,
// then the upper one back, counter-clockwise, without points on straight runs.
std::vector<drawing::DrawingPoint> convexHull(std::vector<drawing::DrawingPoint> points);

// Degrees to turn the drawing by (counter-clockwise, about the origin) so that one
// hull edge lies horizontal and the bounding box is smallest; 0 unless that box is
// smaller than the unturned one by more than a millionth, so a part already square
// to its rectangle stays as drawn.
double tightestAngle(const drawing::Drawing& drawing);

} // namespace cad::nest

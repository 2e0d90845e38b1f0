// The neutral flat drawing that sketches, flat patterns and nested sheets become
// before a writer turns it into DXF or SVG text: items on named layers, in one
// length unit.
#pragma once

#include "core/units/Length.h"

#include <string>
#include <string_view>
#include <vector>

namespace cad::drawing {

struct DrawingPoint {
    double x = 0;
    double y = 0;
};

enum class ItemKind { Line = 0, Circle = 1, Arc = 2, Polyline = 3, Point = 4 };

struct DrawingItem {
    ItemKind kind = ItemKind::Line;
    std::string layer;
    // A line's two ends, a circle's or arc's centre, a polyline's vertices, a point.
    std::vector<DrawingPoint> points;
    double radius = 0;     // circle, arc
    double startAngle = 0; // arc, degrees counter-clockwise
    double endAngle = 0;   // arc, degrees counter-clockwise
    bool closed = false;   // polyline
};

struct Drawing {
    std::vector<DrawingItem> items;
    units::Length unit = units::Length::Millimeters; // what the items' numbers are in
};

// How a layer is drawn: its DXF colour number and SVG stroke. Layers outside the
// known set draw in colour 7 and black.
struct LayerStyle {
    int dxfColour;
    std::string_view svgStroke;
};
LayerStyle layerStyle(std::string_view layer);

// The layers the items use, in order of first use.
std::vector<std::string> layersInUse(const Drawing& drawing);

struct DrawingBounds {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
};
// The box around every item (arcs by the part of their circle they cover); all
// zero for an empty drawing.
DrawingBounds drawingBounds(const Drawing& drawing);

// The same drawing with its numbers in another unit.
Drawing inUnit(const Drawing& drawing, units::Length unit);

// A number as both writers print it, whatever the user's locale: six decimals with
// trailing zeros (and a trailing point) removed; anything under 5e-10 across is 0.
std::string drawingNumber(double value);

} // namespace cad::drawing

// A line, arc or circle with a parameter along it, for cutting and lengthening: a
// line runs from 0 at its start to 1 at its end, an arc or circle by the angle
// counter-clockwise from its lower end (a circle from the sketch x axis).
#pragma once

#include "sketch/ops/OpsGeometry.h"

#include <optional>

namespace cad::ops {

struct CurveTrack {
    bool circular = false;
    bool closed = false;      // a circle
    Point2 a, b;              // a line
    Bounded arc;              // an arc or circle: from, span (2pi for a circle)
    bool forward = true;      // the parameter runs from the entity's start to its end
    double originalStart = 0; // an arc's start angle in degrees, kept where its start stays

    double length() const { return circular ? arc.span : 1.0; }
    Carrier carrier() const;
    // Where p lies along the curve; for an arc a point beyond it counts as its nearer end.
    double parameter(Point2 p) const;
    Point2 at(double u) const;
    // The piece between two parameters, as an entity of the curve's kind.
    SketchGeometry piece(double u0, double u1) const;
    // The end at parameter 0 (`low`) or at the far end, by its reference part.
    const char* endName(bool low) const { return low == forward ? "start" : "end"; }
};

// The track of a line, arc or circle; nothing for other kinds.
std::optional<CurveTrack> trackOf(const SketchEntity& entity);

// How far p is from the entity's curve (lines and arcs; others are infinitely far).
double distanceTo(const SketchEntity& entity, Point2 p);

} // namespace cad::ops

// Plane geometry for the DXF reader: the affine placement of blocks and units, arcs
// from polyline bulges, and the sampling of ellipses and B-splines into polylines.
#pragma once

#include "sketch/drawingimport/ImportedDrawing.h"

#include <vector>

namespace cad::drawingimport::dxf {

// x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Vec2 apply(Vec2 p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    Vec2 applyLinear(Vec2 v) const { return {a * v.x + c * v.y, b * v.x + d * v.y}; }
    double determinant() const { return a * d - b * c; }
    // Keeps angles (a rotation, a uniform scale, perhaps a mirror): arcs stay arcs.
    bool isSimilarity() const;
    // The largest stretch of a length, for sampling finely enough after placement.
    double largestScale() const;

    static Affine translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static Affine scaling(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    static Affine rotation(double degrees);
};

// `outer` after `inner`.
Affine operator*(const Affine& outer, const Affine& inner);

double degrees(double radians);
double radians(double degrees);

// A circular arc (centre, radius, start and signed sweep in degrees) placed by `t`:
// an Arc piece when `t` keeps angles, else the sampled curve as a Polyline.
Piece placedArc(Vec2 center, double radius, double startDeg, double sweepDeg, const Affine& t);

// The arc of a polyline segment with a bulge (tan of a quarter of its signed sweep),
// before placement. False when the segment has no length.
bool bulgeArc(Vec2 from, Vec2 to, double bulge, Vec2& center, double& radius, double& startDeg,
              double& sweepDeg);

// Points of an ellipse (centre, major axis end relative to the centre, minor/major
// ratio, parameters in radians), placed by `t`. A negative ratio runs it clockwise.
std::vector<Vec2> sampledEllipse(Vec2 center, Vec2 major, double ratio, double startParam,
                                 double endParam, const Affine& t);

struct BSpline {
    int degree = 3;
    std::vector<Vec2> controls;
    std::vector<double> knots;   // may be empty or wrong: a clamped uniform vector replaces it
    std::vector<double> weights; // empty, or one per control point
};

// Points along the B-spline (a fixed number per knot span), placed by `t`; empty
// when it has fewer than two control points.
std::vector<Vec2> sampledBSpline(const BSpline& spline, const Affine& t);

} // namespace cad::drawingimport::dxf

// Plane geometry for the DXF reader: the affine placement of blocks and units, arcs
// from polyline bulges, and the sampling of ellipses and B-splines into polylines.
#pragma once

#include "sketch/drawingimport/Affine.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <vector>

namespace cad::drawingimport::dxf {

// `outer` after `inner`.

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

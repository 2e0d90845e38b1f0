// The geometry half of the SVG reader: affine matrices and a builder that turns one
// shape's path commands (in the shape's own user units) into drawing paths in
// millimetres with y up, keeping circular arcs and circles exact where the
// transform lets them stay circular.
#pragma once

#include "sketch/drawingimport/Affine.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <vector>

namespace cad::drawingimport::svg {

// Millimetres per CSS pixel (96 to the inch).
constexpr double kMillimetresPerPixel = 25.4 / 96.0;

// Builds the paths of one shape. Every point goes through `toDrawing`, which takes
// user units to millimetres with y up.
class PathBuilder {
public:
    explicit PathBuilder(const Affine& toDrawing) : m_(toDrawing) {}

    void moveTo(Vec2 p);
    void lineTo(Vec2 p);
    void cubicTo(Vec2 c1, Vec2 c2, Vec2 p);
    void quadraticTo(Vec2 c, Vec2 p);
    // The SVG endpoint form: radii, the x axis' rotation in degrees, the flags and the end.
    void arcTo(double rx, double ry, double rotation, bool largeArc, bool sweep, Vec2 p);
    void close();

    // Whole closed shapes, each its own path.
    void circle(Vec2 center, double r);
    void ellipse(Vec2 center, double rx, double ry);

    // The finished paths (an open subpath ends here); the builder is empty after.
    std::vector<DrawingPath> take();

private:
    void finishSubpath(bool closed);
    void addPiece(Piece piece);
    // Part of the ellipse c + R(rotation)·diag(rx, ry)·(cos t, sin t), from t0 over dt
    // (radians, user units): one arc when it maps to a circle, else cubics.
    void ellipticalSweep(Vec2 center, double rx, double ry, double rotation, double t0, double dt);

    Affine m_;
    std::vector<DrawingPath> done_;
    DrawingPath current_;
    Vec2 start_; // the subpath's start, user units
    Vec2 at_;    // the current point, user units
    bool open_ = false;
};

} // namespace cad::drawingimport::svg

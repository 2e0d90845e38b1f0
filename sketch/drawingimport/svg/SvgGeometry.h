// The geometry half of the SVG reader: affine matrices and a builder that turns one
// shape's path commands (in the shape's own user units) into drawing paths in
// millimetres with y up, keeping circular arcs and circles exact where the
// transform lets them stay circular.
#pragma once

#include "sketch/drawingimport/ImportedDrawing.h"

#include <vector>

namespace cad::drawingimport::svg {

// x' = a x + c y + e, y' = b x + d y + f (SVG's matrix(a b c d e f)).
struct Affine {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Vec2 map(Vec2 p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    Vec2 mapVector(Vec2 v) const { return {a * v.x + c * v.y, b * v.x + d * v.y}; }
    double determinant() const { return a * d - b * c; }
    bool finite() const;
    static Affine translate(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static Affine scale(double x, double y) { return {x, 0, 0, y, 0, 0}; }
};

// This then other: other is applied to points first (the SVG order of a transform list).
Affine operator*(const Affine& self, const Affine& other);

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

// Glyph outlines as plain data: closed contours of straight pieces and Bézier pieces,
// moved exactly by affine maps (through their control points) and turned into curves.
#pragma once

#include "sketch/SketchEntity.h"

#include <Geom2d_Curve.hxx>
#include <TopoDS_Shape.hxx>

#include <vector>

namespace cad::text {

// Two poles: a straight piece; three or four: a quadratic or cubic Bézier piece.
struct OutlinePiece {
    std::vector<Point2> poles;

    bool straight() const { return poles.size() == 2; }
    Point2 start() const { return poles.front(); }
    Point2 end() const { return poles.back(); }
};

// One closed outline; each piece starts where the one before it ends, and the last
// ends where the first starts. `letter` is the character it belongs to, counted in
// the text as written (line breaks included).
struct Contour {
    std::vector<OutlinePiece> pieces;
    int letter = -1;
};

// p -> (a x + b y + e, c x + d y + f).
struct Affine {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Point2 apply(Point2 p) const { return {a * p.x + b * p.y + e, c * p.x + d * p.y + f}; }
    // This map followed by `next`.
    Affine then(const Affine& next) const;

    static Affine scale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    static Affine translation(double dx, double dy) { return {1, 0, 0, 1, dx, dy}; }
    static Affine rotation(double degrees);
};

Contour transformed(const Contour& contour, const Affine& map);

struct Bounds {
    double xmin = 1e300, ymin = 1e300, xmax = -1e300, ymax = -1e300;

    bool empty() const { return xmin > xmax; }
    void add(Point2 p);
};
// The tight box of the pieces (Bézier extremes, not their control points).
void addToBounds(Bounds& box, const OutlinePiece& piece);
Bounds contoursBounds(const std::vector<Contour>& contours);

// The point at parameter t in [0, 1] and the length of a piece.
Point2 pieceValue(const OutlinePiece& piece, double t);
double pieceLength(const OutlinePiece& piece);

// The piece as an OpenCASCADE curve running from its start to its end: a segment or
// a Bézier curve. Null for a piece too short to be a curve.
Handle(Geom2d_Curve) pieceCurve(const OutlinePiece& piece);

// The closed wires of a glyph shape made by OpenCASCADE's font builder (faces on the
// XY plane whose edges carry 2D curves), one contour each, in the shape's units.
std::vector<Contour> glyphContours(const TopoDS_Shape& glyph);

} // namespace cad::text

// What lies under the cursor in a sketch: every named point and every curve piece of
// the entities, kept in sketch coordinates with their references, answering picks and
// snaps by analytic distances measured in pixels at the cursor.
#pragma once

#include "core/units/Length.h"
#include "sketch/SketchReference.h"

#include <string>
#include <vector>

namespace cad::ui {

// Pixel tolerances of picking and snapping.
constexpr double kPointPickPixels = 10;
constexpr double kCurvePickPixels = 8;
constexpr double kSnapPixels = 10;

struct Hit {
    enum Kind { None, Point, Curve, Axis };
    Kind kind = None;
    std::string reference; // "Line1.end", "Origin", "Rectangle1.top", "Circle1", "XAxis"
    ResolvedRef::Kind refKind = ResolvedRef::Point; // what the reference stands for
    int entity = -1;                                // index in the sketch's list; -1 for none
    Point2 position; // the point, or the nearest point of the curve to the cursor
    double pixels = 0;

    explicit operator bool() const { return kind != None; }
};

// What a pick may return, by what the reference stands for. Lines include the axes,
// points the origin.
enum PickKinds : unsigned {
    PickPoints = 1,
    PickLines = 2,
    PickCircles = 4,
    PickShapes = 8, // whole slots and splines
    PickAll = 15,
};

// One curve of an entity: a segment, a circular arc (a circle is a full turn) or a
// sampled polyline (splines).
struct CurvePiece {
    enum Shape { Segment, Arc, Polyline };
    Shape shape = Segment;
    Point2 a, b;                // segment ends
    Point2 center;              // arc
    double radius = 0;          // arc
    double start = 0;           // arc, radians
    double sweep = 0;           // arc, radians, counter-clockwise positive
    std::vector<Point2> points; // polyline
    std::string reference;
    ResolvedRef::Kind refKind = ResolvedRef::Line;
    int entity = -1;
    Point2 low, high; // bounding box
};

class SketchScene {
public:
    // Takes a copy of the entities; spline curves are sampled finely enough for
    // `pixel` (the model length of a pixel) and again when the view zooms far in.
    void rebuild(const std::vector<SketchEntity>& entities, double pixel = 0.1);
    const std::vector<SketchEntity>& entities() const { return entities_; }
    const std::vector<NamedPoint>& points() const { return points_; }
    const std::vector<CurvePiece>& pieces() const { return pieces_; }
    int entityIndex(const std::string& id) const;

    // Points first (10 px), then curves (8 px), then the axes (8 px), as `kinds` allows.
    Hit pick(Point2 cursor, double pixel, unsigned kinds = PickAll) const;
    // A named point or the origin within 10 px, else the foot on the nearest curve
    // within 10 px (on an arc only inside its sweep); none otherwise.
    Hit snap(Point2 cursor, double pixel) const;

    // Keeps sampled splines within half a pixel of their curves.
    void resample(double pixel);

private:
    Hit nearestPoint(Point2 cursor, double pixel, double tolerance) const;
    Hit nearestCurve(Point2 cursor, double pixel, double tolerance, unsigned kinds,
                     bool insideArcsOnly) const;

    std::vector<SketchEntity> entities_;
    std::vector<NamedPoint> points_;
    std::vector<int> pointEntity_; // entity index of each named point; -1 for the origin
    std::vector<CurvePiece> pieces_;
    double sampledPixel_ = 0;
};

// The nearest point of a piece to p; `inside` reports whether it is the foot of the
// perpendicular (false when an arc's nearest point is one of its ends).
Point2 nearestOnPiece(const CurvePiece& piece, Point2 p, bool* inside = nullptr);

// The curve pieces of one entity (points make none); splines and the glyph outlines
// of text sampled with `deflection`. Text on a path needs the sketch it belongs to
// (without it, it is laid out straight).
std::vector<CurvePiece> entityPieces(const SketchEntity& entity, int index, double deflection,
                                     const std::vector<SketchEntity>* sketch = nullptr);

// Polylines drawing one piece within `deflection` of it.
std::vector<Point2> pieceOutline(const CurvePiece& piece, double deflection);

// The grid the cursor rounds to when nothing snaps: 1 mm for metric documents,
// 1.27 mm (0.05 in) for inch and foot documents.
double gridStep(units::Length unit);
Point2 roundToGrid(Point2 p, double step);

} // namespace cad::ui

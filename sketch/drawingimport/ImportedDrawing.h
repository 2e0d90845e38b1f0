// What every drawing reader (SVG, DXF, PDF, Illustrator) produces: paths of
// connected pieces and DXF texts, in millimetres with y up, before they are scaled,
// placed and turned into sketch entities.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cad::drawingimport {

struct Vec2 {
    double x = 0;
    double y = 0;
};

enum class PieceKind {
    Segment,   // points: start, end
    Arc,       // center, radius, startAngle, sweepAngle (degrees, counter-clockwise positive)
    Circle,    // center, radius
    Cubic,     // points: start, control 1, control 2, end
    Quadratic, // points: start, control, end
    Polyline,  // points: the vertices in order (sampled ellipses, fitted splines)
    Spline,    // points: fit points the curve passes through (DXF fit-point splines)
    Point      // points: the point
};

struct Piece {
    PieceKind kind = PieceKind::Segment;
    std::vector<Vec2> points;
    Vec2 center;
    double radius = 0;
    double startAngle = 0; // degrees
    double sweepAngle = 0; // degrees, counter-clockwise positive
};

// Pieces follow one another: each starts where the one before ends (within the
// reader's rounding). Closed: the last ends where the first starts.
struct DrawingPath {
    std::vector<Piece> pieces;
    bool closed = false;
};

struct DrawingText {
    Vec2 position; // the first line's baseline start
    double height = 0;
    double rotation = 0; // degrees counter-clockwise
    std::string text;    // UTF-8; '\n' between lines
};

// How much of each reader's work limits (points kept, groups or content tokens read)
// one read may use before it answers that the file is too large. Real drawings stay
// far below them; the fuzzing harnesses read with a small share so that inputs built
// to reach the limits (forms or blocks that draw themselves) end quickly.
struct ReadLimits {
    double share = 1;

    std::size_t of(std::size_t limit) const {
        return static_cast<std::size_t>(static_cast<double>(limit) * share);
    }
};

struct ImportedDrawing {
    std::vector<DrawingPath> paths;
    std::vector<DrawingText> texts;
};

} // namespace cad::drawingimport

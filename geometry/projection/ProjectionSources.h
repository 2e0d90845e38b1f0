// What a projection reference stands for: the edges and vertices it brings onto a
// sketch, each with the source the projected entity will follow. A face gives its
// edges, each following its own edge name; a sketch curve of several pieces gives
// them all, following the curve.
#pragma once

#include "core/Result.h"

#include <TopoDS_Shape.hxx>

#include <string>
#include <string_view>
#include <vector>

namespace cad {
class Document;
class SketchObject;
} // namespace cad

namespace cad::geometry {

struct SourcePiece {
    std::string source; // "Body1/Edge(Extrude1.end, Extrude1.side.Line1)", "Sketch2/Circle1"
    TopoDS_Shape shape; // an edge or a vertex, in model space
};

struct SourcePieces {
    // False when the reference names nothing that exists now (the object, element
    // or entity is gone); the pieces are then empty.
    bool found = true;
    // True when the reference named a single edge or vertex itself.
    bool single = false;
    std::vector<SourcePiece> pieces;
};

// Fails with a sentence for what can't be projected at all: anything but edges,
// faces, vertices and sketch geometry, this sketch's own geometry, and geometry
// built from this sketch.
Result<SourcePieces> sourcePieces(const Document& document, const SketchObject& sketch,
                                  std::string_view reference);

} // namespace cad::geometry

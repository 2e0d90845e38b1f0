// The sketch operations, each on the working copies of one sketch: the success
// sentence, or why it can't be done (the copies are then thrown away).
#pragma once

#include "core/Result.h"
#include "sketch/ops/SketchWork.h"

#include <optional>
#include <string>
#include <vector>

namespace cad::ops {

// Breaks a rectangle, polygon or slot into lines and arcs, joined and constrained
// to keep its form; references to its parts move to the matching pieces.
struct Exploded {
    std::vector<std::string> pieces; // the new entities, around the shape
};
Result<Exploded> explodeShape(SketchWork& sketch, const std::string& id);
Result<std::string> explodeEntity(SketchWork& sketch, const std::string& id);

// Removes the piece of a curve around `click` between its nearest crossings.
Result<std::string> trimCurve(SketchWork& sketch, const std::string& id, Point2 click);
// Extends the end of a line or arc nearest `near` to the next curve in its way.
Result<std::string> extendCurve(SketchWork& sketch, const std::string& id, Point2 near);

// Copies at a distance, toward `side` when given.
Result<std::string> offsetEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                   double distance, std::optional<Point2> side);

// Mirrored copies across a line reference, held symmetric.
Result<std::string> mirrorEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                   const std::string& line);

// Replaces a text by its glyph outlines: lines and splines joined by coincidences.
Result<std::string> textToOutlines(SketchWork& sketch, const std::string& id);

// Slides entities (and their group's other members) by `by`.
Result<std::string> moveEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                 Point2 by);

Result<std::string> groupEntities(SketchWork& sketch, const std::vector<std::string>& ids);
Result<std::string> ungroupEntities(SketchWork& sketch, const std::vector<std::string>& ids);

} // namespace cad::ops

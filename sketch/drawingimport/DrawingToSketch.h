// Turning an imported drawing into sketch geometry: scaled, placed, one entity per
// piece, consecutive pieces joined by coincidences, all in one new group.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace cad::drawingimport {

enum class DrawingPlace {
    Corner, // the lower-left of the drawing's bounds at (x, y)
    Center, // the centre of the bounds at (x, y)
    File    // the file's own coordinates, moved by (x, y)
};

struct DrawingToSketchOptions {
    double scale = 1;
    std::optional<double> width; // scale so the drawing is this wide instead
    DrawingPlace place = DrawingPlace::Corner;
    double x = 0;
    double y = 0;
    bool construction = false;
};

struct DrawingToSketchResult {
    std::size_t curves = 0; // entities made
    double width = 0;       // the placed drawing's size, mm
    double height = 0;
    std::string group; // "Group3"
};

// The drawing's size as drawn, in millimetres; none when it holds nothing to place.
struct DrawingExtent {
    double width = 0;
    double height = 0;
};
std::optional<DrawingExtent> drawingExtent(const ImportedDrawing& drawing);

// Bézier pieces become splines through points at every eighth of their parameter.
constexpr int kBezierIntervals = 8;

// Appends the drawing's entities and joining coincidences to the lists; on failure
// the lists are as they were.
Result<DrawingToSketchResult> drawingToSketch(const ImportedDrawing& drawing,
                                              std::vector<SketchEntity>& entities,
                                              std::vector<SketchConstraint>& constraints,
                                              const DrawingToSketchOptions& options);

} // namespace cad::drawingimport

// The path under construction in a PDF page or an Illustrator file: subpaths of
// lines and cubics, closed or painted, kept as DrawingPaths in millimetres.
#pragma once

#include "sketch/drawingimport/Affine.h"
#include "sketch/drawingimport/ImportedDrawing.h"

#include <optional>
#include <vector>

namespace cad::drawingimport::pdf {

// Points are 1/72 inch.
inline constexpr double kMillimetresPerPoint = 25.4 / 72.0;

class PathRecorder {
public:
    explicit PathRecorder(const ReadLimits& limits = {});

    // Points given to the path go through `transform`, then become millimetres.
    void setTransform(const Affine& transform) { transform_ = transform; }

    void moveTo(Vec2 p);
    void lineTo(Vec2 p);
    void curveTo(Vec2 c1, Vec2 c2, Vec2 p);
    // A cubic whose first control point is the current point ("v").
    void curveFromCurrent(Vec2 c2, Vec2 p);
    void rectangle(double x, double y, double w, double h);
    void closeSubpath();

    // The path is painted: kept, its open subpaths closed first when asked.
    void paint(bool closeFirst);
    // The path ends unpainted ("n"): dropped.
    void discard();

    // More pieces than a drawing can hold were kept; the rest were dropped.
    bool tooLarge() const { return tooLarge_; }
    std::vector<DrawingPath> takePaths() { return std::move(paths_); }
    std::size_t pathCount() const { return paths_.size(); }

private:
    std::optional<Vec2> place(Vec2 p) const;
    void endSubpath();

    Affine transform_;
    std::vector<DrawingPath> pending_; // finished subpaths of the path not yet painted
    DrawingPath subpath_;
    std::optional<Vec2> start_;   // millimetres
    std::optional<Vec2> current_; // millimetres
    std::vector<DrawingPath> paths_;
    std::size_t mostPieces_;
    std::size_t pieces_ = 0;
    bool tooLarge_ = false;
};

} // namespace cad::drawingimport::pdf

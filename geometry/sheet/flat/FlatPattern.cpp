// The flat pattern: lay the body flat (or take it as an Unfold left it), draw it
// seen square to the fixed face, add the bend lines, and move it all so the
// outline's lower left corner is at the origin.
#include "geometry/sheet/flat/FlatPattern.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/flat/FlatDrawing.h"
#include "geometry/sheet/flat/UnfoldFeature.h"

#include <BRepBuilderAPI_MakeEdge.hxx>

#include <cmath>

namespace cad::flat {

using drawing::DrawingItem;
using drawing::DrawingPoint;
using drawing::ItemKind;

namespace {

void shift(drawing::Drawing& d, double dx, double dy) {
    for (DrawingItem& item : d.items)
        for (DrawingPoint& p : item.points) p = {p.x + dx, p.y + dy};
}

} // namespace

Result<FlatPattern> flatPattern(const Document& document, const GeometryObject& body,
                                const FlatOptions& options) {
    if (body.shape.isNull()) return fail("Nothing to lay flat.");
    if (options.kFactor && !(*options.kFactor > 0 && *options.kFactor < 1))
        return fail("The K-factor is between 0 and 1.");
    if (options.thickness && !(*options.thickness >= 0 && std::isfinite(*options.thickness)))
        return fail("The thickness must be greater than zero.");

    // Flat already: the Unfold that left it so knows where its bends were.
    Result<Unfolding> unfolding = fail("");
    TopoDS_Shape flatShape;
    if (const ParamFeature* unfold = openUnfold(document, body)) {
        unfolding = unfoldingOf(document, *unfold);
        if (!unfolding) return Error(unfolding);
        flatShape = body.shape.shape();
    } else {
        UnfoldOptions unfoldOptions = unfoldOptionsFor(document, &body, options.face);
        if (options.kFactor) unfoldOptions.rules.kFactor = *options.kFactor;
        if (options.thickness && *options.thickness > 0) {
            unfoldOptions.rules.thickness = *options.thickness;
            unfoldOptions.measureThickness = false;
        } else if (options.thickness) {
            unfoldOptions.measureThickness = true;
        }
        unfolding = unfoldSheet(body.shape, unfoldOptions);
        if (!unfolding) return Error(unfolding);
        flatShape = unfolding->blank;
    }

    Result<FlatOutline> outline = drawFlat(flatShape, unfolding->plane, unfolding->thickness);
    if (!outline) return Error(outline);
    FlatPattern pattern;
    pattern.thickness = unfolding->thickness;
    pattern.kFactor = unfolding->rules.kFactor;
    pattern.holes = outline->holes;
    pattern.drawing = std::move(outline->drawing);

    drawing::Drawing cut;
    for (const DrawingItem& item : pattern.drawing.items)
        if (item.layer == "CUT_OUTSIDE") cut.items.push_back(item);
    const drawing::DrawingBounds box = drawing::drawingBounds(cut);
    pattern.width = box.maxX - box.minX;
    pattern.height = box.maxY - box.minY;

    const gp_Ax3& plane = unfolding->plane;
    for (const LaidBend& bend : unfolding->bends) {
        for (const auto* line : {&bend.nearLine, &bend.farLine})
            if ((*line)[0].Distance((*line)[1]) > 1e-9)
                drawEdge(BRepBuilderAPI_MakeEdge((*line)[0], (*line)[1]).Edge(), plane, "BEND",
                         pattern.drawing);
        FlatPatternBend out;
        out.up = bend.up;
        out.angle = bend.angle;
        out.innerRadius = bend.innerRadius;
        out.from = onPlane(plane, bend.centreLine[0]);
        out.to = onPlane(plane, bend.centreLine[1]);
        out.from = {out.from.x - box.minX, out.from.y - box.minY};
        out.to = {out.to.x - box.minX, out.to.y - box.minY};
        pattern.bends.push_back(out);
    }
    shift(pattern.drawing, -box.minX, -box.minY);
    return pattern;
}

} // namespace cad::flat

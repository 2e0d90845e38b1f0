// mirror: reflected copies across a line reference, each tied to its original by
// symmetric constraints on corresponding points, so the copies stay mirror images.
#include "sketch/ops/SketchOperations.h"

#include "sketch/SketchReference.h"
#include "sketch/ops/OpsGeometry.h"

#include <algorithm>

namespace cad::ops {

namespace {

struct Mirror {
    Point2 a, b; // the mirror line

    Point2 operator()(Point2 p) const { return reflect(p, a, b); }
    bool axisParallel() const {
        const Point2 d = unit(b - a);
        return std::fabs(d.x) <= 1e-12 || std::fabs(d.y) <= 1e-12;
    }
};

// A point of the original and the part of the copy it maps to.
using Pair = std::pair<std::string, std::string>;

struct Reflection {
    SketchGeometry geometry;
    std::vector<Pair> symmetric; // the points held symmetric, as original and copy parts
    bool equalSize = false;      // circles and arcs keep their radius equal to the original's
};

std::string rectangleCornerAt(const SketchRectangle& r, Point2 p) {
    const bool right = p.x > r.corner.x + r.width / 2, top = p.y > r.corner.y + r.height / 2;
    return top ? (right ? "top_right" : "top_left") : (right ? "bottom_right" : "bottom_left");
}

Result<Reflection> reflectGeometry(const SketchEntity& e, const Mirror& m) {
    if (e.kind() == EntityKind::Text)
        return fail("Text can't be mirrored (its letters would read backwards): convert it to "
                    "outlines first.");
    Reflection out;
    if (auto* l = std::get_if<SketchLine>(&e.geometry)) {
        out.geometry = SketchLine{m(l->start), m(l->end)};
        out.symmetric = {{"start", "start"}, {"end", "end"}};
    } else if (auto* p = std::get_if<SketchPoint>(&e.geometry)) {
        out.geometry = SketchPoint{m(p->position)};
        out.symmetric = {{"", ""}};
    } else if (auto* c = std::get_if<SketchCircle>(&e.geometry)) {
        out.geometry = SketchCircle{m(c->center), c->radius};
        out.symmetric = {{"center", "center"}};
        out.equalSize = true;
    } else if (auto* a = std::get_if<SketchArc>(&e.geometry)) {
        // The reflected start stays the start; the sweep turns the other way. Its two
        // ends held symmetric and its radius equal fix it (the centre follows).
        const Point2 centre = m(a->center);
        const Point2 start = m(polar(a->center, a->radius, radians(a->startAngle)));
        out.geometry =
            SketchArc{centre, a->radius, degrees(direction(centre, start)), -a->sweepAngle};
        out.symmetric = {{"start", "start"}, {"end", "end"}};
        out.equalSize = true;
    } else if (auto* g = std::get_if<SketchPolygon>(&e.geometry)) {
        const Point2 centre = m(g->center);
        const Point2 corner0 = m(polar(g->center, g->radius, radians(g->rotation)));
        out.geometry =
            SketchPolygon{centre, g->radius, g->sides, degrees(direction(centre, corner0))};
        out.symmetric = {{"center", "center"}, {"corner0", "corner0"}};
    } else if (auto* s = std::get_if<SketchSlot>(&e.geometry)) {
        out.geometry = SketchSlot{m(s->start), m(s->end), s->width};
        out.symmetric = {{"start", "start"}, {"end", "end"}};
    } else if (auto* sp = std::get_if<SketchSpline>(&e.geometry)) {
        SketchSpline copy = *sp;
        for (std::size_t k = 0; k < copy.points.size(); ++k) {
            copy.points[k] = m(copy.points[k]);
            const std::string part = "point" + std::to_string(k);
            out.symmetric.push_back({part, part});
        }
        out.geometry = std::move(copy);
    } else if (auto* r = std::get_if<SketchRectangle>(&e.geometry)) {
        // A rectangle stays axis-aligned, so only a horizontal or vertical line keeps
        // its mirror image a rectangle.
        if (!m.axisParallel())
            return fail(e.id + " can only be mirrored across a horizontal or vertical line.");
        const Point2 low = m(r->corner),
                     high = m(Point2{r->corner.x + r->width, r->corner.y + r->height});
        SketchRectangle copy{
            {std::min(low.x, high.x), std::min(low.y, high.y)}, r->width, r->height};
        out.symmetric = {{"bottom_left", rectangleCornerAt(copy, low)},
                         {"top_right", rectangleCornerAt(copy, high)}};
        out.geometry = copy;
    }
    return out;
}

} // namespace

Result<std::string> mirrorEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                   const std::string& lineText) {
    std::optional<SketchRef> line = parseReference(lineText);
    if (!line) return fail("'" + lineText + "' isn't a line reference.");
    std::vector<std::string> originals;
    for (const std::string& id : ids)
        if (!(line->part.empty() && id == line->entity))
            originals.push_back(id); // not the mirror itself
    if (originals.empty()) return fail("Choose what to mirror.");

    Result<ResolvedRef> resolved = resolveReference(*line, sketch.entities);
    if (!resolved && !sketch.find(line->entity))
        return fail("No entity named '" + line->entity + "'.");
    if (!resolved || resolved->kind != ResolvedRef::Line)
        return fail("'" + lineText + "' isn't a line reference.");
    const auto [a, b] = lineAt(*resolved, sketch.entities);
    const Mirror mirror{a, b};

    std::vector<std::pair<std::string, Reflection>> made;
    for (const std::string& id : originals) {
        Result<SketchEntity*> found = sketch.require(id);
        if (!found) return Error(found);
        Result<Reflection> reflection = reflectGeometry(**found, mirror);
        if (!reflection) return Error(reflection);
        made.push_back({id, std::move(reflection).value()});
    }
    for (auto& [id, reflection] : made) {
        const SketchEntity e = *sketch.find(id);
        SketchEntity copy;
        copy.geometry = reflection.geometry;
        copy.construction = e.construction;
        const std::string copyId = sketch.add(std::move(copy));
        for (const auto& [original, mapped] : reflection.symmetric)
            if (auto c = sketch.constrain(ConstraintType::Symmetric,
                                          {{id, original}, {copyId, mapped}, *line});
                !c)
                return Error(c);
        // An arc's ends held symmetric leave its bulge free, which the equal radius
        // takes up; but a half circle's radius doesn't change at first order as it
        // bulges, so there the equal counts as redundant and is left out.
        if (reflection.equalSize)
            if (auto c = sketch.constrain(ConstraintType::Equal, {{copyId, ""}, {id, ""}});
                !c && e.kind() != EntityKind::Arc)
                return Error(c);
    }
    return "Mirrored " + countOf(originals.size(), "entity", "entities") + " across " +
           line->text() + ".";
}

} // namespace cad::ops

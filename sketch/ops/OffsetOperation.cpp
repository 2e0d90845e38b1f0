// offset: copies at a distance. Lines stay parallel at a dimensioned distance;
// circles, arcs, polygons and slots stay centred on their sources; a rectangle's
// copy is free. Lines and arcs that join end to end go as one chain.
#include "sketch/ops/SketchOperations.h"

#include "sketch/ops/OffsetChain.h"
#include "sketch/ops/OpsGeometry.h"

#include <algorithm>

namespace cad::ops {

namespace {

// Whether p lies inside the closed shape (for an arc: inside its circle).
bool inside(const SketchEntity& e, Point2 p) {
    if (auto* c = std::get_if<SketchCircle>(&e.geometry)) return distance(p, c->center) < c->radius;
    if (auto* a = std::get_if<SketchArc>(&e.geometry)) return distance(p, a->center) < a->radius;
    if (auto* r = std::get_if<SketchRectangle>(&e.geometry))
        return p.x > r->corner.x && p.x < r->corner.x + r->width && p.y > r->corner.y &&
               p.y < r->corner.y + r->height;
    if (auto* s = std::get_if<SketchSlot>(&e.geometry)) {
        const double t = std::clamp(lineParameter(p, s->start, s->end), 0.0, 1.0);
        return distance(p, s->start + t * (s->end - s->start)) < s->width / 2;
    }
    if (auto* g = std::get_if<SketchPolygon>(&e.geometry)) {
        // A regular polygon is convex: inside is to the same side of every edge.
        auto corner = [&](int k) {
            return polar(g->center, g->radius,
                         radians(g->rotation) + 2 * std::numbers::pi * k / g->sides);
        };
        for (int k = 0; k < g->sides; ++k)
            if (cross(corner(k + 1) - corner(k), p - corner(k)) < 0) return false;
        return true;
    }
    return false;
}

Error leavesNothing(const std::string& id) {
    return fail("Offsetting " + id + " inward by that much leaves nothing.");
}

// A lone line: a parallel copy, held at the distance by a dimension.
Result<void> offsetLine(SketchWork& sketch, const SketchEntity& source, double d,
                        std::optional<Point2> side) {
    const auto& line = std::get<SketchLine>(source.geometry);
    const Point2 along = unit(line.end - line.start);
    const double e = side && cross(along, *side - line.start) < 0 ? -1 : 1;
    const Point2 shift = e * d * leftOf(along);
    SketchEntity copy;
    copy.construction = source.construction;
    copy.geometry = SketchLine{line.start + shift, line.end + shift};
    const SketchRef copyRef{sketch.add(std::move(copy)), {}}, sourceRef{source.id, {}};
    if (auto c = sketch.constrain(ConstraintType::Parallel, {copyRef, sourceRef}); !c)
        return Error(c);
    if (auto c = sketch.constrain(ConstraintType::Distance, {sourceRef, copyRef}, std::fabs(d)); !c)
        return Error(c);
    return {};
}

// A closed shape or an arc: the same centre, grown (e = +1) or shrunk by the distance.
Result<void> offsetShape(SketchWork& sketch, const SketchEntity& source, double d,
                         std::optional<Point2> side) {
    const double e = side && inside(source, *side) ? -1 : 1;
    const double grow = e * d;
    SketchEntity copy;
    copy.construction = source.construction;
    copy.geometry = source.geometry;
    const SketchRef sourceRef{source.id, {}};
    std::vector<std::pair<ConstraintType, std::vector<std::string>>> ties; // copy part, source part

    if (auto* c = std::get_if<SketchCircle>(&copy.geometry)) {
        c->radius += grow;
        if (c->radius <= 1e-7) return leavesNothing(source.id);
        ties.push_back({ConstraintType::Concentric, {"", ""}});
    } else if (auto* a = std::get_if<SketchArc>(&copy.geometry)) {
        a->radius += grow;
        if (a->radius <= 1e-7) return leavesNothing(source.id);
        ties.push_back({ConstraintType::Concentric, {"", ""}});
    } else if (auto* p = std::get_if<SketchPolygon>(&copy.geometry)) {
        // Every side moves by the distance: the corners by more.
        p->radius += grow / std::cos(std::numbers::pi / p->sides);
        if (p->radius <= 1e-7) return leavesNothing(source.id);
        ties.push_back({ConstraintType::Coincident, {"center", "center"}});
    } else if (auto* s = std::get_if<SketchSlot>(&copy.geometry)) {
        s->width += 2 * grow;
        if (s->width <= 1e-7) return leavesNothing(source.id);
        ties.push_back({ConstraintType::Coincident, {"start", "start"}});
        ties.push_back({ConstraintType::Coincident, {"end", "end"}});
    } else if (auto* r = std::get_if<SketchRectangle>(&copy.geometry)) {
        // Deliberately left free of its source.
        r->corner = r->corner - Point2{grow, grow};
        r->width += 2 * grow;
        r->height += 2 * grow;
        if (r->width <= 1e-7 || r->height <= 1e-7) return leavesNothing(source.id);
    }
    const std::string copyId = sketch.add(std::move(copy));
    for (const auto& [type, parts] : ties)
        if (auto c = sketch.constrain(type, {{copyId, parts[0]}, {source.id, parts[1]}}); !c)
            return Error(c);
    return {};
}

} // namespace

Result<std::string> offsetEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                   double d, std::optional<Point2> side) {
    if (ids.empty()) return fail("Choose what to offset.");
    if (std::fabs(d) <= 1e-7) return fail("The offset distance must not be zero.");
    for (const std::string& id : ids) {
        Result<SketchEntity*> found = sketch.require(id);
        if (!found) return Error(found);
        const SketchEntity& e = **found;
        if (e.kind() == EntityKind::Spline || e.kind() == EntityKind::Point ||
            e.kind() == EntityKind::Text)
            return fail(
                "Offset works on lines, circles, arcs, rectangles, polygons and slots (not " +
                std::string(entityKindName(e)) + "s yet).");
        if (auto* l = std::get_if<SketchLine>(&e.geometry); l && distance(l->start, l->end) <= 1e-7)
            return fail(id + " has no length.");
    }

    const std::vector<Chain> chains = findChains(sketch.entities, ids);
    bool oneChain = chains.size() == 1 && chains.front().pieces.size() > 1 &&
                    chains.front().pieces.size() == ids.size();
    std::vector<std::string> done;
    for (const std::string& id : ids) {
        if (std::find(done.begin(), done.end(), id) != done.end()) continue;
        auto chain = std::find_if(chains.begin(), chains.end(), [&](const Chain& c) {
            return std::any_of(c.pieces.begin(), c.pieces.end(),
                               [&](const ChainPiece& p) { return p.id == id; });
        });
        // Copies are taken of the entity as it was, before any copy was added.
        const SketchEntity source = *sketch.find(id);
        Result<void> made;
        if (chain != chains.end() && chain->pieces.size() > 1) {
            made = offsetChain(sketch, *chain, d, side);
            for (const ChainPiece& p : chain->pieces) done.push_back(p.id);
        } else {
            made = source.kind() == EntityKind::Line ? offsetLine(sketch, source, d, side)
                                                     : offsetShape(sketch, source, d, side);
            done.push_back(id);
        }
        if (!made) return Error(made);
    }
    if (oneChain) return "Offset a chain of " + std::to_string(ids.size()) + " curves.";
    return "Offset " + countOf(ids.size(), "entity", "entities") + ".";
}

} // namespace cad::ops

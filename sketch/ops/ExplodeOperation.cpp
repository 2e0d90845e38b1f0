// explode: a rectangle, polygon or slot becomes lines and arcs in its place, joined
// end to end and constrained to keep the shape's form; constraints on its corners
// and sides move to the matching pieces, those on the shape as a whole go.
#include "sketch/ops/SketchOperations.h"

#include "sketch/ops/OpsGeometry.h"

#include <map>

namespace cad::ops {

namespace {

struct PieceEnd {
    int piece = 0;
    std::string part; // empty: the piece as a whole
};

struct FormConstraint {
    ConstraintType type;
    int first, second; // second < 0: a constraint on one piece
};

// How a shape breaks up: the pieces in order around it, the ends that meet, the
// constraints that keep its form, and where each named part of it went.
struct Plan {
    std::vector<SketchGeometry> pieces;
    std::vector<std::pair<PieceEnd, PieceEnd>> joins;
    std::vector<FormConstraint> form;
    std::map<std::string, PieceEnd, std::less<>> parts;
};

SketchLine lineFrom(Point2 a, Point2 b) { return {a, b}; }

// The sides keep the directions of the rectangle's own side references (the top
// runs left to right, the left bottom to top), so every constraint carried over to
// them means what it meant on the rectangle.
Plan rectanglePlan(const SketchRectangle& r) {
    const Point2 bl = r.corner, br{bl.x + r.width, bl.y}, tr{br.x, bl.y + r.height}, tl{bl.x, tr.y};
    Plan plan;
    plan.pieces = {lineFrom(bl, br), lineFrom(br, tr), lineFrom(tl, tr), lineFrom(bl, tl)};
    plan.joins = {{{0, "end"}, {1, "start"}},
                  {{1, "end"}, {2, "end"}},
                  {{2, "start"}, {3, "end"}},
                  {{3, "start"}, {0, "start"}}};
    plan.form = {{ConstraintType::Horizontal, 0, -1},
                 {ConstraintType::Horizontal, 2, -1},
                 {ConstraintType::Vertical, 1, -1},
                 {ConstraintType::Vertical, 3, -1}};
    plan.parts = {{"bottom", {0, ""}},
                  {"right", {1, ""}},
                  {"top", {2, ""}},
                  {"left", {3, ""}},
                  {"bottom_left", {0, "start"}},
                  {"bottom_right", {0, "end"}},
                  {"top_right", {1, "end"}},
                  {"top_left", {2, "start"}}};
    return plan;
}

// Equal sides and nothing on the angles between them.
Plan polygonPlan(const SketchPolygon& p) {
    auto corner = [&](int k) {
        return polar(p.center, p.radius, radians(p.rotation) + 2 * std::numbers::pi * k / p.sides);
    };
    Plan plan;
    for (int k = 0; k < p.sides; ++k) {
        plan.pieces.push_back(lineFrom(corner(k), corner((k + 1) % p.sides)));
        plan.joins.push_back({{k, "end"}, {(k + 1) % p.sides, "start"}});
        if (k > 0) plan.form.push_back({ConstraintType::Equal, 0, k});
        plan.parts["edge" + std::to_string(k)] = {k, ""};
        plan.parts["corner" + std::to_string(k)] = {k, "start"};
    }
    return plan;
}

// Around the outline counter-clockwise: one side, the end cap, the other side, the
// start cap; each side tangent to both caps, the caps equal.
Plan slotPlan(const SketchSlot& s) {
    const Point2 along = unit(s.end - s.start);
    const double h = s.width / 2;
    const Point2 n = h * leftOf(along);
    const double angle = degrees(std::atan2(along.y, along.x));
    Plan plan;
    plan.pieces = {lineFrom(s.start - n, s.end - n), SketchArc{s.end, h, angle - 90, 180},
                   lineFrom(s.end + n, s.start + n), SketchArc{s.start, h, angle + 90, 180}};
    for (int k = 0; k < 4; ++k) plan.joins.push_back({{k, "end"}, {(k + 1) % 4, "start"}});
    plan.form = {{ConstraintType::Tangent, 0, 1},
                 {ConstraintType::Tangent, 0, 3},
                 {ConstraintType::Tangent, 2, 1},
                 {ConstraintType::Tangent, 2, 3},
                 {ConstraintType::Equal, 1, 3}};
    plan.parts = {{"start", {3, "center"}}, {"end", {1, "center"}}};
    return plan;
}

} // namespace

Result<Exploded> explodeShape(SketchWork& sketch, const std::string& id) {
    Result<SketchEntity*> found = sketch.requireEditable(id);
    if (!found) return Error(found);
    const SketchEntity shape = **found;

    Plan plan;
    if (auto* r = std::get_if<SketchRectangle>(&shape.geometry)) {
        plan = rectanglePlan(*r);
    } else if (auto* p = std::get_if<SketchPolygon>(&shape.geometry)) {
        plan = polygonPlan(*p);
    } else if (auto* s = std::get_if<SketchSlot>(&shape.geometry)) {
        if (distance(s->start, s->end) <= 1e-7) return fail("The slot has no length.");
        plan = slotPlan(*s);
    } else {
        return fail(id + " is already a simple curve.");
    }

    // The pieces take the shape's place in the list.
    std::size_t at = sketch.indexOf(id);
    sketch.entities.erase(sketch.entities.begin() + static_cast<std::ptrdiff_t>(at));
    Exploded out;
    for (SketchGeometry& geometry : plan.pieces) {
        SketchEntity piece;
        piece.geometry = std::move(geometry);
        piece.construction = shape.construction;
        piece.group = shape.group;
        out.pieces.push_back(sketch.add(std::move(piece), at++));
    }

    auto mapped = [&](const SketchRef& ref) -> const PieceEnd* {
        auto it = plan.parts.find(ref.part);
        return it == plan.parts.end() ? nullptr : &it->second;
    };
    // Constraints on the shape as a whole, or on a part no piece has (its centre), go.
    sketch.drop([&](const SketchConstraint& c) {
        for (const SketchRef& ref : c.refs)
            if (ref.entity == id && !mapped(ref)) return true;
        return false;
    });
    sketch.redirect([&](const SketchRef& ref) -> std::optional<SketchRef> {
        if (ref.entity != id) return std::nullopt;
        const PieceEnd* to = mapped(ref);
        if (!to) return std::nullopt;
        return SketchRef{out.pieces[static_cast<std::size_t>(to->piece)], to->part};
    });

    auto refOf = [&](const PieceEnd& end) {
        return SketchRef{out.pieces[static_cast<std::size_t>(end.piece)], end.part};
    };
    for (const auto& [a, b] : plan.joins)
        if (Result<std::string> c =
                sketch.constrain(ConstraintType::Coincident, {refOf(a), refOf(b)});
            !c)
            return Error(c);
    for (const FormConstraint& f : plan.form) {
        std::vector<SketchRef> refs{refOf({f.first, ""})};
        if (f.second >= 0) refs.push_back(refOf({f.second, ""}));
        if (Result<std::string> c = sketch.constrain(f.type, std::move(refs)); !c) return Error(c);
    }
    return out;
}

Result<std::string> explodeEntity(SketchWork& sketch, const std::string& id) {
    Result<Exploded> exploded = explodeShape(sketch, id);
    if (!exploded) return Error(exploded);
    return "Broke " + id + " into " + std::to_string(exploded->pieces.size()) + " pieces.";
}

} // namespace cad::ops

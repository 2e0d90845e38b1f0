// Compiling constraints: reference kinds checked against the type, references put
// in the order of the residual formulas, and each turned into an expression over
// the parameters it depends on.
#include "sketch/solver/CompiledConstraint.h"

#include <algorithm>
#include <numbers>

namespace cad::solver {

namespace {

using Kind = ResolvedRef::Kind;
using Shape = CompiledConstraint::Shape;

// The sentence each type gives when its references don't fit, after its keyword.
std::string_view mismatchSentence(ConstraintType type) {
    switch (type) {
    case ConstraintType::Fix:
        return "fix takes one reference (a point or an entity).";
    case ConstraintType::Coincident:
        return "coincident takes two points, or a point and a line, circle or arc.";
    case ConstraintType::Horizontal:
    case ConstraintType::Vertical:
        return "takes a line, or two points.";
    case ConstraintType::Parallel:
    case ConstraintType::Perpendicular:
    case ConstraintType::Collinear:
    case ConstraintType::Angle:
        return "takes two lines.";
    case ConstraintType::Equal:
        return "equal takes two lines or two circles/arcs.";
    case ConstraintType::Concentric:
        return "concentric takes two circles/arcs.";
    case ConstraintType::Midpoint:
        return "midpoint takes a point and a line.";
    case ConstraintType::Tangent:
        return "tangent takes a line and a circle/arc, or two circles/arcs.";
    case ConstraintType::Symmetric:
        return "symmetric takes two points and a line.";
    case ConstraintType::EqualDistance:
        return "equal_distance takes three points.";
    case ConstraintType::EqualOffset:
        return "equal_offset takes two pairs: two lines, or two circles/arcs, each.";
    case ConstraintType::Inline:
        return "inline takes three points.";
    case ConstraintType::Distance:
        return "distance takes two points, a point and a line, or two lines.";
    case ConstraintType::HorizontalDistance:
    case ConstraintType::VerticalDistance:
        return "takes two points.";
    case ConstraintType::Length:
        return "length takes a line.";
    case ConstraintType::Radius:
    case ConstraintType::Diameter:
        return "takes a circle or an arc.";
    }
    return "takes other references.";
}

bool kinds(const std::vector<ResolvedRef>& refs, std::initializer_list<Kind> want) {
    if (refs.size() != want.size()) return false;
    std::size_t i = 0;
    for (Kind k : want)
        if (refs[i++].kind != k) return false;
    return true;
}

const SketchEntity* entityAt(const std::vector<SketchEntity>& entities, int index) {
    if (index < 0 || index >= static_cast<int>(entities.size())) return nullptr;
    return &entities[static_cast<std::size_t>(index)];
}

PointExpr constantPoint(double x, double y) {
    PointExpr p;
    p.form = PointExpr::Form::Constant;
    p.a = x;
    p.b = y;
    return p;
}

} // namespace

std::int8_t SlotTable::slot(int global) {
    for (int i = 0; i < count; ++i)
        if (params[static_cast<std::size_t>(i)] == global) return static_cast<std::int8_t>(i);
    // No reference combination needs more (four rectangle edges take sixteen); the
    // guard keeps a future kind from writing past the table.
    if (count == kMaxSlots) return static_cast<std::int8_t>(count - 1);
    params[static_cast<std::size_t>(count)] = global;
    return static_cast<std::int8_t>(count++);
}

ReferenceResolver::ReferenceResolver(const std::vector<SketchEntity>& entities)
    : entities_(entities), one_(1) {
    byId_.reserve(entities.size());
    for (std::size_t i = 0; i < entities.size(); ++i)
        byId_.emplace(entities[i].id, static_cast<int>(i));
}

Result<ResolvedRef> ReferenceResolver::resolve(const SketchRef& ref) const {
    auto found = byId_.find(ref.entity);
    // Names the sketch doesn't have (and the sketch-wide names) resolve as always.
    if (found == byId_.end()) return resolveReference(ref, entities_);
    one_[0] = entities_[static_cast<std::size_t>(found->second)];
    Result<ResolvedRef> r = resolveReference(ref, one_);
    if (r.ok() && r->entity == 0) r->entity = found->second;
    return r;
}

Operand operandFor(const ResolvedRef& ref, const std::vector<SketchEntity>& entities,
                   const ParameterLayout& layout, SlotTable& slots) {
    Operand op;
    const SketchEntity* entity = entityAt(entities, ref.entity);
    const int base = entity ? layout.offset[static_cast<std::size_t>(ref.entity)] : 0;
    auto direct = [&](int first) {
        PointExpr p;
        p.form = PointExpr::Form::Direct;
        p.slot[0] = slots.slot(base + first);
        p.slot[1] = slots.slot(base + first + 1);
        return p;
    };
    auto withSlots = [&](PointExpr::Form form, int count, int which) {
        PointExpr p;
        p.form = form;
        p.which = static_cast<std::uint8_t>(which);
        for (int i = 0; i < count; ++i) p.slot[static_cast<std::size_t>(i)] = slots.slot(base + i);
        return p;
    };
    auto polygonCorner = [&](const SketchPolygon& polygon, int k) {
        PointExpr p = withSlots(PointExpr::Form::PolygonCorner, 4, 0);
        p.a = 2.0 * std::numbers::pi * k / std::max(polygon.sides, 1);
        return p;
    };
    auto point = [&](int sub) -> PointExpr {
        if (!entity) return constantPoint(0, 0);
        switch (entity->kind()) {
        case EntityKind::Arc:
            return sub == 0 ? direct(0) : withSlots(PointExpr::Form::ArcPoint, 5, sub);
        case EntityKind::Rectangle:
            return withSlots(PointExpr::Form::RectangleCorner, 4, sub);
        case EntityKind::Polygon:
            if (sub == kPolygonCenter) return direct(0);
            return polygonCorner(std::get<SketchPolygon>(entity->geometry), sub);
        case EntityKind::Circle:
            return direct(0);
        default: // lines, points, slots, splines, text: x and y of the sub-th point
            return direct(2 * sub);
        }
    };

    switch (ref.kind) {
    case Kind::Point:
        op.kind = Operand::Kind::Point;
        op.a = point(ref.sub);
        break;
    case Kind::Line:
        op.kind = Operand::Kind::Line;
        if (ref.entity == kXAxisIndex) {
            op.a = constantPoint(0, 0);
            op.b = constantPoint(1, 0);
        } else if (ref.entity == kYAxisIndex) {
            op.a = constantPoint(0, 0);
            op.b = constantPoint(0, 1);
        } else if (entity && entity->kind() == EntityKind::Rectangle) {
            // The top and left edges run left to right and bottom to top.
            static constexpr std::array<std::pair<int, int>, 4> edges{
                {{0, 1}, {1, 2}, {3, 2}, {0, 3}}};
            auto [a, b] = edges[static_cast<std::size_t>(std::clamp(ref.sub, 0, 3))];
            op.a = point(a);
            op.b = point(b);
        } else if (entity && entity->kind() == EntityKind::Polygon) {
            const auto& polygon = std::get<SketchPolygon>(entity->geometry);
            op.a = polygonCorner(polygon, ref.sub);
            op.b = polygonCorner(polygon, (ref.sub + 1) % std::max(polygon.sides, 1));
        } else {
            op.a = direct(0);
            op.b = direct(2);
        }
        break;
    case Kind::Circle:
        op.kind = Operand::Kind::Circle;
        op.a = direct(0);
        op.radius = slots.slot(base + 2);
        break;
    case Kind::Entity:
        break;
    }
    return op;
}

std::string referenceMismatch(ConstraintType type) {
    return std::string(constraintKeyword(type)) + ": " + std::string(mismatchSentence(type));
}

Result<std::vector<ResolvedRef>> orderReferences(ConstraintType type, std::vector<ResolvedRef> r,
                                                 const std::vector<SketchRef>& texts) {
    auto swapped = [&](std::size_t i, std::size_t j) {
        std::swap(r[i], r[j]);
        return r;
    };
    switch (type) {
    case ConstraintType::Fix:
        if (r.size() == 1 && r[0].kind == Kind::Point) return r;
        if (r.size() == 1 && texts.size() == 1 && texts[0].part.empty()) return r;
        break;
    case ConstraintType::Coincident:
        if (kinds(r, {Kind::Point, Kind::Point})) return r;
        for (Kind curve : {Kind::Line, Kind::Circle}) {
            if (kinds(r, {Kind::Point, curve})) return r;
            if (kinds(r, {curve, Kind::Point})) return swapped(0, 1);
        }
        break;
    case ConstraintType::Horizontal:
    case ConstraintType::Vertical:
        if (kinds(r, {Kind::Line}) || kinds(r, {Kind::Point, Kind::Point})) return r;
        break;
    case ConstraintType::Parallel:
    case ConstraintType::Perpendicular:
    case ConstraintType::Collinear:
    case ConstraintType::Angle:
        if (kinds(r, {Kind::Line, Kind::Line})) return r;
        break;
    case ConstraintType::Equal:
        if (kinds(r, {Kind::Line, Kind::Line}) || kinds(r, {Kind::Circle, Kind::Circle})) return r;
        break;
    case ConstraintType::Concentric:
        if (kinds(r, {Kind::Circle, Kind::Circle})) return r;
        break;
    case ConstraintType::Midpoint:
        if (kinds(r, {Kind::Point, Kind::Line})) return r;
        if (kinds(r, {Kind::Line, Kind::Point})) return swapped(0, 1);
        break;
    case ConstraintType::Tangent:
        if (kinds(r, {Kind::Line, Kind::Circle}) || kinds(r, {Kind::Circle, Kind::Circle}))
            return r;
        if (kinds(r, {Kind::Circle, Kind::Line})) return swapped(0, 1);
        break;
    case ConstraintType::Symmetric:
        if (kinds(r, {Kind::Point, Kind::Point, Kind::Line})) return r;
        break;
    case ConstraintType::EqualDistance:
    case ConstraintType::Inline:
        if (kinds(r, {Kind::Point, Kind::Point, Kind::Point})) return r;
        break;
    case ConstraintType::EqualOffset:
        if (r.size() == 4 && r[0].kind == r[1].kind && r[2].kind == r[3].kind &&
            (r[0].kind == Kind::Line || r[0].kind == Kind::Circle) &&
            (r[2].kind == Kind::Line || r[2].kind == Kind::Circle))
            return r;
        break;
    case ConstraintType::Distance:
        if (kinds(r, {Kind::Point, Kind::Point}) || kinds(r, {Kind::Line, Kind::Line})) return r;
        if (kinds(r, {Kind::Point, Kind::Line})) return r;
        if (kinds(r, {Kind::Line, Kind::Point})) return swapped(0, 1);
        break;
    case ConstraintType::HorizontalDistance:
    case ConstraintType::VerticalDistance:
        if (kinds(r, {Kind::Point, Kind::Point})) return r;
        break;
    case ConstraintType::Length:
        if (kinds(r, {Kind::Line})) return r;
        break;
    case ConstraintType::Radius:
    case ConstraintType::Diameter:
        if (kinds(r, {Kind::Circle})) return r;
        break;
    }
    return fail(referenceMismatch(type));
}

CompiledConstraint compile(const SketchConstraint& constraint, const std::vector<ResolvedRef>& refs,
                           const std::vector<SketchEntity>& entities, const ParameterLayout& layout,
                           double scale, std::vector<double>& fixPool) {
    CompiledConstraint c;
    c.type = constraint.type;
    c.value = constraint.value;
    c.data0 = constraint.data.size() > 0 && constraint.data[0] < 0 ? -1.0 : 1.0;
    // Tangent keeps which arc end in data₁; equal_offset the second pair's side.
    if (c.type == ConstraintType::Tangent)
        c.data1 = constraint.data.size() > 1 ? constraint.data[1] : 0.0;
    else
        c.data1 = constraint.data.size() > 1 && constraint.data[1] < 0 ? -1.0 : 1.0;
    SlotTable slots;
    for (std::size_t i = 0; i < refs.size() && i < c.ops.size(); ++i)
        if (refs[i].kind != Kind::Entity || c.type != ConstraintType::Fix)
            c.ops[i] = operandFor(refs[i], entities, layout, slots);

    auto is = [&](std::size_t i, Kind k) { return i < refs.size() && refs[i].kind == k; };
    switch (c.type) {
    case ConstraintType::Fix:
        if (is(0, Kind::Point)) {
            c.shape = Shape::FixPoint;
            c.rows = 2;
            if (constraint.data.size() >= 2) {
                c.data0 = constraint.data[0];
                c.data1 = constraint.data[1];
            } else { // no stored target: hold the point where it is
                Point2 p = pointAt(refs[0], entities);
                c.data0 = p.x;
                c.data1 = p.y;
            }
        } else {
            c.shape = Shape::FixEntity;
            const int e = refs[0].entity;
            if (e < 0) break; // the axes are fixed already: nothing to hold
            const SketchEntity& entity = entities[static_cast<std::size_t>(e)];
            c.fixOffset = layout.offset[static_cast<std::size_t>(e)];
            c.fixCount = layout.offset[static_cast<std::size_t>(e) + 1] - c.fixOffset;
            c.rows = c.fixCount;
            c.poolOffset = static_cast<int>(fixPool.size());
            const std::vector<double> now = entityParameters(entity);
            const bool stored = constraint.data.size() == now.size();
            for (int i = 0; i < c.fixCount; ++i) {
                const bool angle = (entity.kind() == EntityKind::Arc && i >= 3) ||
                                   (entity.kind() == EntityKind::Polygon && i == 3);
                fixPool.push_back(stored ? constraint.data[static_cast<std::size_t>(i)]
                                         : now[static_cast<std::size_t>(i)]);
                fixPool.push_back(angle ? scale : 1.0);
            }
        }
        break;
    case ConstraintType::Coincident:
        c.shape = is(1, Kind::Point)  ? Shape::PointPoint
                  : is(1, Kind::Line) ? Shape::PointLine
                                      : Shape::PointCircle;
        c.rows = c.shape == Shape::PointPoint ? 2 : 1;
        break;
    case ConstraintType::Horizontal:
    case ConstraintType::Vertical:
        c.shape = is(0, Kind::Line) ? Shape::Line : Shape::PointPoint;
        c.rows = 1;
        break;
    case ConstraintType::Parallel:
    case ConstraintType::Perpendicular:
    case ConstraintType::Angle:
        c.shape = Shape::LineLine;
        c.rows = 1;
        break;
    case ConstraintType::Collinear:
        c.shape = Shape::LineLine;
        c.rows = 2;
        break;
    case ConstraintType::Equal:
        c.shape = is(0, Kind::Line) ? Shape::LineLine : Shape::CircleCircle;
        c.rows = 1;
        break;
    case ConstraintType::Concentric:
        c.shape = Shape::CircleCircle;
        c.rows = 2;
        break;
    case ConstraintType::Midpoint:
        c.shape = Shape::PointLine;
        c.rows = 2;
        break;
    case ConstraintType::Tangent:
        c.rows = 1;
        if (is(0, Kind::Line)) {
            c.shape = Shape::LineCircle;
            const SketchEntity* circle = entityAt(entities, refs[1].entity);
            const int k = static_cast<int>(c.data1);
            if (circle && circle->kind() == EntityKind::Arc && (k == 1 || k == 2)) {
                c.arcEnd = true;
                ResolvedRef end{Kind::Point, refs[1].entity, k};
                c.ops[2] = operandFor(end, entities, layout, slots);
            }
        } else {
            c.shape = Shape::CircleCircle;
        }
        break;
    case ConstraintType::Symmetric:
        c.shape = Shape::PointPointLine;
        c.rows = 2;
        break;
    case ConstraintType::EqualDistance:
    case ConstraintType::Inline:
        c.shape = Shape::PointPointPoint;
        c.rows = 1;
        break;
    case ConstraintType::EqualOffset:
        c.shape = Shape::TwoPairs;
        c.rows = 1;
        break;
    case ConstraintType::Distance:
        c.shape = is(1, Kind::Point)   ? Shape::PointPoint
                  : is(0, Kind::Point) ? Shape::PointLine
                                       : Shape::LineLine;
        c.rows = 1;
        break;
    case ConstraintType::HorizontalDistance:
    case ConstraintType::VerticalDistance:
        c.shape = Shape::PointPoint;
        c.rows = 1;
        break;
    case ConstraintType::Length:
        c.shape = Shape::Line;
        c.rows = 1;
        break;
    case ConstraintType::Radius:
    case ConstraintType::Diameter:
        c.shape = Shape::Circle;
        c.rows = 1;
        break;
    }
    c.slots = slots.count;
    c.params = slots.params;
    return c;
}

CompiledConstraint compileDrag(const ResolvedRef& point, Point2 target,
                               const std::vector<SketchEntity>& entities,
                               const ParameterLayout& layout) {
    CompiledConstraint c;
    c.type = ConstraintType::Fix;
    c.shape = Shape::FixPoint;
    c.rows = 2;
    c.data0 = target.x;
    c.data1 = target.y;
    SlotTable slots;
    c.ops[0] = operandFor(point, entities, layout, slots);
    c.slots = slots.count;
    c.params = slots.params;
    return c;
}

} // namespace cad::solver

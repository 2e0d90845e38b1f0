// Where a dimension is drawn and how: linear dimensions get extension lines to a
// dimension line through the label, sizes a leader through the centre, angles an arc
// about the lines' crossing.
#include "ui/sketch/SketchDimensions.h"
#include "ui/sketch/Planar.h"

#include "core/units/Format.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ui {

namespace {

using namespace planar;

constexpr double kLabelPixels = 18;

Point2 foot(Point2 p, const RefShape& line) {
    const Point2 d = line.b - line.a;
    const double dd = dot(d, d);
    return dd > 0 ? line.a + d * (dot(p - line.a, d) / dd) : line.a;
}

// The two points a linear dimension spans: two points, a point and its foot on a
// line, a line's second start and its foot on the first, or a line's ends.
std::optional<std::pair<Point2, Point2>> span(ConstraintType type,
                                              const std::vector<RefShape>& shapes) {
    using K = ResolvedRef::Kind;
    if (type == ConstraintType::Length && shapes.size() == 1 && shapes[0].kind == K::Line)
        return std::pair{shapes[0].a, shapes[0].b};
    if (shapes.size() != 2) return std::nullopt;
    const RefShape &s0 = shapes[0], &s1 = shapes[1];
    if (s0.kind == K::Point && s1.kind == K::Point) return std::pair{s0.a, s1.a};
    if (s0.kind == K::Point && s1.kind == K::Line) return std::pair{s0.a, foot(s0.a, s1)};
    if (s0.kind == K::Line && s1.kind == K::Point) return std::pair{foot(s1.a, s0), s1.a};
    if (s0.kind == K::Line && s1.kind == K::Line) return std::pair{foot(s1.a, s0), s1.a};
    return std::nullopt;
}

std::optional<std::vector<RefShape>> shapesOf(const std::vector<SketchRef>& refs,
                                              const std::vector<SketchEntity>& entities) {
    std::vector<RefShape> shapes;
    for (const SketchRef& ref : refs) {
        std::optional<RefShape> s = refShape(ref, entities);
        if (!s) return std::nullopt;
        shapes.push_back(*s);
    }
    return shapes;
}

bool isSize(ConstraintType type) {
    return type == ConstraintType::Radius || type == ConstraintType::Diameter;
}

} // namespace

std::optional<RefShape> refShape(const SketchRef& ref, const std::vector<SketchEntity>& entities) {
    Result<ResolvedRef> resolved = resolveReference(ref, entities);
    if (!resolved) return std::nullopt;
    RefShape shape;
    shape.kind = resolved->kind;
    switch (resolved->kind) {
    case ResolvedRef::Point:
        shape.a = pointAt(*resolved, entities);
        break;
    case ResolvedRef::Line:
        std::tie(shape.a, shape.b) = lineAt(*resolved, entities);
        break;
    case ResolvedRef::Circle:
        std::tie(shape.a, shape.r) = circleAt(*resolved, entities);
        break;
    case ResolvedRef::Entity:
        return std::nullopt;
    }
    return shape;
}

std::optional<Point2> dimensionAnchor(ConstraintType type, const std::vector<SketchRef>& refs,
                                      const std::vector<SketchEntity>& entities) {
    const std::optional<std::vector<RefShape>> shapes = shapesOf(refs, entities);
    if (!shapes || shapes->empty()) return std::nullopt;
    if (isSize(type)) {
        if ((*shapes)[0].kind != ResolvedRef::Circle) return std::nullopt;
        return (*shapes)[0].a;
    }
    if (type == ConstraintType::Angle) {
        if (shapes->size() != 2) return std::nullopt;
        const RefShape &l1 = (*shapes)[0], &l2 = (*shapes)[1];
        const Point2 d1 = l1.b - l1.a, d2 = l2.b - l2.a;
        const double den = cross(d1, d2);
        if (std::abs(den) <= 1e-12 * length(d1) * length(d2))
            return middle(middle(l1.a, l1.b), middle(l2.a, l2.b));
        return l1.a + d1 * (cross(l2.a - l1.a, d2) / den);
    }
    const auto ends = span(type, *shapes);
    if (!ends) return std::nullopt;
    return middle(ends->first, ends->second);
}

std::optional<DimensionShape> dimensionShape(ConstraintType type,
                                             const std::vector<SketchRef>& refs,
                                             const std::vector<SketchEntity>& entities,
                                             std::optional<Point2> label, double pixel) {
    const std::optional<std::vector<RefShape>> shapes = shapesOf(refs, entities);
    const std::optional<Point2> anchor = dimensionAnchor(type, refs, entities);
    if (!shapes || !anchor) return std::nullopt;
    DimensionShape out;
    out.anchor = *anchor;
    const double away = kLabelPixels * pixel;

    if (isSize(type)) {
        const Point2 c = (*shapes)[0].a;
        const double r = (*shapes)[0].r;
        out.label = label ? *anchor + *label : c + Point2{1, 1} * ((r + away) / std::sqrt(2.0));
        const Point2 d = direction(out.label - c, {1, 0});
        const Point2 rim = c + d * r;
        out.lines.push_back({type == ConstraintType::Diameter ? c - d * r : c, rim});
        out.lines.push_back({rim, out.label});
        return out;
    }
    if (type == ConstraintType::Angle) {
        const RefShape &l1 = (*shapes)[0], &l2 = (*shapes)[1];
        const Point2 d1 = l1.b - l1.a, d2 = l2.b - l2.a;
        const double turn = std::atan2(cross(d1, d2), dot(d1, d2));
        const double first = std::atan2(d1.y, d1.x);
        const double bisector = first + turn / 2;
        out.label = label ? *anchor + *label
                          : *anchor + Point2{std::cos(bisector), std::sin(bisector)} * (2 * away);
        const double radius = std::max(length(out.label - *anchor), pixel);
        const int n = 32;
        for (int i = 0; i <= n; ++i) {
            const double a = first + turn * i / n;
            out.arc.push_back(*anchor + Point2{std::cos(a), std::sin(a)} * radius);
        }
        return out;
    }

    const auto ends = span(type, *shapes);
    if (!ends) return std::nullopt;
    const Point2 p = ends->first, q = ends->second;
    if (type == ConstraintType::HorizontalDistance) {
        out.label = label ? *anchor + *label : Point2{anchor->x, std::max(p.y, q.y) + away};
        const Point2 p2{p.x, out.label.y}, q2{q.x, out.label.y};
        out.lines = {{p, p2}, {q, q2}, {p2, q2}};
    } else if (type == ConstraintType::VerticalDistance) {
        out.label = label ? *anchor + *label : Point2{std::max(p.x, q.x) + away, anchor->y};
        const Point2 p2{out.label.x, p.y}, q2{out.label.x, q.y};
        out.lines = {{p, p2}, {q, q2}, {p2, q2}};
    } else {
        const Point2 u = direction(q - p);
        const Point2 n{-u.y, u.x};
        out.label = label ? *anchor + *label : *anchor + n * away;
        const double h = dot(out.label - p, n);
        const Point2 p2 = p + n * h, q2 = q + n * h;
        out.lines = {{p, p2}, {q, q2}, {p2, q2}};
        // A label pulled past either end gets the dimension line carried out to it.
        const double along = dot(out.label - p, u), full = dot(q - p, u);
        if (along < std::min(0.0, full) || along > std::max(0.0, full))
            out.lines.push_back({along < 0 ? p2 : q2, p + u * along + n * h});
    }
    return out;
}

ConstraintType pointPairType(Point2 p, Point2 q, Point2 label) {
    const double lowX = std::min(p.x, q.x), highX = std::max(p.x, q.x);
    const double lowY = std::min(p.y, q.y), highY = std::max(p.y, q.y);
    const double thin = 1e-6 * std::max(1.0, length(q - p));
    const bool xWithin = label.x >= lowX && label.x <= highX;
    const bool yWithin = label.y >= lowY && label.y <= highY;
    if (xWithin && !yWithin && highX - lowX > thin) return ConstraintType::HorizontalDistance;
    if (yWithin && !xWithin && highY - lowY > thin) return ConstraintType::VerticalDistance;
    return ConstraintType::Distance;
}

std::string dimensionValueText(ConstraintType type, double value, units::Length unit) {
    switch (type) {
    case ConstraintType::Angle:
        return units::formatNumber(value, units::Length::Millimeters) + "°";
    case ConstraintType::Diameter:
        return "Ø " + units::formatLength(value, unit);
    case ConstraintType::Radius:
        return "R " + units::formatLength(value, unit);
    default:
        return units::formatLength(value, unit);
    }
}

std::string measuredText(const std::vector<SketchRef>& refs) {
    std::string out;
    for (const SketchRef& ref : refs) out += (out.empty() ? "" : ", ") + ref.text();
    return out;
}

} // namespace cad::ui

// Each drawing tool's shape from its clicks: typed sizes fix what they name and the
// cursor gives only the freedom that is left.
#include "ui/sketch/DrawingTools.h"
#include "ui/sketch/Planar.h"

#include "core/units/Format.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace cad::ui {

namespace {

using namespace planar;

constexpr double kPi = std::numbers::pi;
constexpr double kDegrees = 180 / kPi;

double angleOf(Point2 d) { return std::atan2(d.y, d.x); }

const TypedValue* find(const TypedValues& typed, const char* key) {
    const auto it = typed.find(key);
    return it == typed.end() ? nullptr : &it->second;
}

SketchEntity entity(SketchGeometry geometry, bool construction) {
    SketchEntity e;
    e.geometry = std::move(geometry);
    e.construction = construction;
    return e;
}

std::string len(double mm, units::Length unit) { return units::formatLength(mm, unit); }

// Plans are built member by member: GCC 12 at -O3 takes braced temporaries holding
// strings for uninitialised.
NewRef newRef(int entity, const char* part = "") {
    NewRef r;
    r.entity = entity;
    r.part = part;
    return r;
}
void plan(DrawStep& out, ConstraintType type, NewRef a, std::optional<NewRef> b = std::nullopt) {
    PlannedConstraint c;
    c.type = type;
    c.refs.push_back(std::move(a));
    if (b) c.refs.push_back(std::move(*b));
    out.constraints.push_back(std::move(c));
}
void keep(DrawStep& out, ConstraintType type, int entity, const TypedValue& value) {
    PlannedDimension d;
    d.type = type;
    d.ref = newRef(entity);
    d.value = value;
    out.dimensions.push_back(std::move(d));
}

// The four lines of a rectangle (bottom, right, top, left, each from its corner to the
// next) with the constraints that keep them one: ends joined, sides level and upright.
void rectangle(DrawStep& out, Point2 a, Point2 b, bool construction) {
    const Point2 bl{std::min(a.x, b.x), std::min(a.y, b.y)};
    const Point2 tr{std::max(a.x, b.x), std::max(a.y, b.y)};
    const Point2 corners[4] = {bl, {tr.x, bl.y}, tr, {bl.x, tr.y}};
    for (int k = 0; k < 4; ++k)
        out.entities.push_back(entity(SketchLine{corners[k], corners[(k + 1) % 4]}, construction));
    for (int k = 0; k < 4; ++k)
        plan(out, ConstraintType::Coincident, newRef(k, "end"), newRef((k + 1) % 4, "start"));
    plan(out, ConstraintType::Horizontal, newRef(0));
    plan(out, ConstraintType::Vertical, newRef(1));
    plan(out, ConstraintType::Horizontal, newRef(2));
    plan(out, ConstraintType::Vertical, newRef(3));
}

void rectangleSizes(DrawStep& out, const TypedValues& typed, double width, double height,
                    units::Length unit) {
    if (const TypedValue* w = find(typed, "width")) keep(out, ConstraintType::Length, 0, *w);
    if (const TypedValue* h = find(typed, "height")) keep(out, ConstraintType::Length, 1, *h);
    out.live = {{"width", width}, {"height", height}};
    out.caption = "Rectangle   " + len(width, unit) + " × " + len(height, unit);
}

// The arc from p0 to p1 that turns by `sweep` radians (counter-clockwise positive).
SketchArc arcWithSweep(Point2 p0, Point2 p1, double sweep) {
    const Point2 chord = p1 - p0;
    const double l = length(chord);
    const Point2 n{-chord.y / l, chord.x / l};
    const Point2 center = (p0 + p1) * 0.5 + n * (l / 2 / std::tan(sweep / 2));
    return {center, length(p0 - center), angleOf(p0 - center) * kDegrees, sweep * kDegrees};
}

Point2 arcMiddle(const SketchArc& a) {
    const double mid = (a.startAngle + a.sweepAngle / 2) / kDegrees;
    return a.center + Point2{std::cos(mid), std::sin(mid)} * a.radius;
}

void arcTool(DrawStep& out, const std::vector<Point2>& picks, Point2 c, const TypedValues& typed,
             const DrawOptions& o) {
    if (picks.size() == 1) {
        out.entities.push_back(entity(SketchLine{picks[0], c}, true));
        return;
    }
    const Point2 p0 = picks[0], p1 = picks[1];
    const Point2 chord = p1 - p0;
    const double l = length(chord);
    std::optional<SketchArc> arc;
    if (l <= 1e-9) {
        arc = std::nullopt;
    } else if (const TypedValue* s = find(typed, "sweep")) {
        const double sweep = std::abs(s->value) / kDegrees;
        if (sweep > 1e-9 && sweep < 2 * kPi) {
            // Of the two arcs turning by that much, the one bulging toward the cursor.
            const SketchArc left = arcWithSweep(p0, p1, sweep),
                            right = arcWithSweep(p0, p1, -sweep);
            const double side = cross(chord, c - p0);
            arc = (cross(chord, arcMiddle(left) - p0) >= 0) == (side >= 0) ? left : right;
        }
    } else if (const TypedValue* r = find(typed, "radius")) {
        const double radius = r->value;
        if (radius >= l / 2 - 1e-9 && radius > 0) {
            const Point2 n{-chord.y / l, chord.x / l};
            const double h = std::sqrt(std::max(radius * radius - l * l / 4, 0.0));
            std::optional<SketchArc> best;
            double bestDistance = 0;
            for (double sign : {1.0, -1.0}) {
                const Point2 center = (p0 + p1) * 0.5 + n * (sign * h);
                const Point2 through = center + direction(c - center) * radius;
                std::optional<SketchArc> candidate = arcThrough(p0, through, p1);
                const double d = length(through - c);
                if (candidate && (!best || d < bestDistance)) {
                    best = candidate;
                    bestDistance = d;
                }
            }
            arc = best;
        }
    } else {
        arc = arcThrough(p0, c, p1);
    }
    if (!arc) {
        out.valid = false;
        out.entities.push_back(entity(SketchLine{p0, p1}, true));
        return;
    }
    out.point = arcMiddle(*arc);
    out.entities.push_back(entity(*arc, o.construction));
    out.live = {{"radius", arc->radius}, {"sweep", arc->sweepAngle}};
    out.caption =
        "Arc   R " + len(arc->radius, o.unit) + "  ·  " + angleText(arc->sweepAngle) + "°";
}

void centerArcTool(DrawStep& out, const std::vector<Point2>& picks, Point2 c,
                   const TypedValues& typed, const DrawOptions& o) {
    const Point2 center = picks[0];
    if (picks.size() == 1) {
        const TypedValue* r = find(typed, "radius");
        const double radius = r ? r->value : length(c - center);
        out.point = r ? center + direction(c - center) * radius : c;
        out.entities.push_back(entity(SketchLine{center, out.point}, true));
        if (radius > 1e-9) out.entities.push_back(entity(SketchCircle{center, radius}, true));
        out.live = {{"radius", radius}};
        out.caption = "Center arc   R " + len(radius, o.unit);
        return;
    }
    const double radius = length(picks[1] - center);
    const double start = angleOf(picks[1] - center);
    double sweep = o.arcSweep;
    if (const TypedValue* s = find(typed, "sweep"))
        sweep = (o.arcSweep < 0 ? -1 : 1) * std::abs(s->value);
    const double end = start + sweep / kDegrees;
    out.point = center + Point2{std::cos(end), std::sin(end)} * radius;
    out.entities.push_back(
        entity(SketchArc{center, radius, start * kDegrees, sweep}, o.construction));
    out.live = {{"radius", radius}, {"sweep", sweep}};
    out.caption = "Center arc   R " + len(radius, o.unit);
}

} // namespace

std::vector<InlineField> inlineFields(DrawKind kind, int step) {
    switch (kind) {
    case DrawKind::Line:
        if (step == 1) return {{"length", "Length", true}, {"angle", "Angle", false}};
        break;
    case DrawKind::Rectangle:
    case DrawKind::CenterRectangle:
        if (step == 1) return {{"width", "Width", true}, {"height", "Height", true}};
        break;
    case DrawKind::Circle:
        if (step == 1) return {{"diameter", "Diameter", true}};
        break;
    case DrawKind::Arc:
        if (step == 2) return {{"radius", "Radius", true}, {"sweep", "Sweep", false}};
        break;
    case DrawKind::CenterArc:
        if (step == 1) return {{"radius", "Radius", true}};
        if (step == 2) return {{"sweep", "Sweep", false}};
        break;
    case DrawKind::Polygon:
        if (step == 1) return {{"sides", "Sides", false}, {"across_flats", "Across flats", true}};
        break;
    case DrawKind::Slot:
        if (step == 1) return {{"length", "Length", true}};
        if (step == 2) return {{"width", "Width", true}};
        break;
    case DrawKind::Point:
    case DrawKind::Spline:
        break;
    }
    return {};
}

int clicksNeeded(DrawKind kind) {
    switch (kind) {
    case DrawKind::Point:
        return 1;
    case DrawKind::Arc:
    case DrawKind::CenterArc:
    case DrawKind::Slot:
        return 3;
    case DrawKind::Spline:
        return 0;
    default:
        return 2;
    }
}

std::string drawKindName(DrawKind kind) {
    switch (kind) {
    case DrawKind::Line:
        return "Line";
    case DrawKind::Rectangle:
        return "Rectangle";
    case DrawKind::CenterRectangle:
        return "Center rectangle";
    case DrawKind::Circle:
        return "Circle";
    case DrawKind::Point:
        return "Point";
    case DrawKind::Arc:
        return "Arc";
    case DrawKind::CenterArc:
        return "Center arc";
    case DrawKind::Polygon:
        return "Polygon";
    case DrawKind::Spline:
        return "Spline";
    case DrawKind::Slot:
        return "Slot";
    }
    return {};
}

std::string angleText(double degrees) {
    return units::formatNumber(std::round(degrees * 10) / 10, units::Length::Millimeters);
}

std::optional<SketchArc> arcThrough(Point2 p1, Point2 p2, Point2 p3) {
    const Point2 a = p2 - p1, b = p3 - p1;
    const double d = 2 * cross(a, b);
    if (std::abs(d) <= 1e-12 * length(a) * length(b) || std::abs(d) < 1e-300) return std::nullopt;
    const double aa = dot(a, a), bb = dot(b, b);
    const Point2 center = p1 + Point2{(b.y * aa - a.y * bb) / d, (a.x * bb - b.x * aa) / d};
    const double a1 = angleOf(p1 - center);
    const double to2 = positiveAngle(angleOf(p2 - center) - a1);
    const double to3 = positiveAngle(angleOf(p3 - center) - a1);
    const double sweep = to2 < to3 ? to3 : to3 - 2 * kPi;
    return SketchArc{center, length(p1 - center), a1 * kDegrees, sweep * kDegrees};
}

DrawStep drawStep(DrawKind kind, const std::vector<Point2>& picks, Point2 c,
                  const TypedValues& typed, const DrawOptions& o) {
    DrawStep out;
    out.point = c;
    const std::size_t k = picks.size();
    const bool drawn = o.construction;
    switch (kind) {
    case DrawKind::Point:
        out.entities.push_back(entity(SketchPoint{c}, drawn));
        break;
    case DrawKind::Line: {
        if (k == 0) break;
        const Point2 d = c - picks[0];
        const TypedValue* typedAngle = find(typed, "angle");
        const TypedValue* typedLength = find(typed, "length");
        const Point2 dir = typedAngle ? Point2{std::cos(typedAngle->value / kDegrees),
                                               std::sin(typedAngle->value / kDegrees)}
                                      : direction(d);
        const double l = typedLength ? typedLength->value : typedAngle ? dot(d, dir) : length(d);
        out.point = picks[0] + dir * l;
        out.entities.push_back(entity(SketchLine{picks[0], out.point}, drawn));
        if (typedLength) keep(out, ConstraintType::Length, 0, *typedLength);
        const double shown = length(out.point - picks[0]);
        const double degrees = angleOf(out.point - picks[0]) * kDegrees;
        out.live = {{"length", shown}, {"angle", degrees}};
        out.caption = "Line   " + len(shown, o.unit) + "  ·  " + angleText(degrees) + "°";
        break;
    }
    case DrawKind::Rectangle: {
        if (k == 0) break;
        const Point2 a = picks[0];
        Point2 b = c;
        if (const TypedValue* w = find(typed, "width")) b.x = a.x + (c.x < a.x ? -1 : 1) * w->value;
        if (const TypedValue* h = find(typed, "height"))
            b.y = a.y + (c.y < a.y ? -1 : 1) * h->value;
        out.point = b;
        rectangle(out, a, b, drawn);
        rectangleSizes(out, typed, std::abs(b.x - a.x), std::abs(b.y - a.y), o.unit);
        break;
    }
    case DrawKind::CenterRectangle: {
        if (k == 0) break;
        const Point2 m = picks[0];
        Point2 half{std::abs(c.x - m.x), std::abs(c.y - m.y)};
        if (const TypedValue* w = find(typed, "width")) half.x = w->value / 2;
        if (const TypedValue* h = find(typed, "height")) half.y = h->value / 2;
        out.point = m + half;
        rectangle(out, m - half, m + half, drawn);
        // Construction diagonals from corner 0 to 2 and 1 to 3, and the centre point
        // halving both. The first diagonal's end is not tied: the midpoints imply it.
        const Point2 corners[4] = {
            m - half, {m.x + half.x, m.y - half.y}, m + half, {m.x - half.x, m.y + half.y}};
        out.entities.push_back(entity(SketchLine{corners[0], corners[2]}, true));
        out.entities.push_back(entity(SketchLine{corners[1], corners[3]}, true));
        out.entities.push_back(entity(SketchPoint{m}, drawn));
        plan(out, ConstraintType::Coincident, newRef(4, "start"), newRef(0, "start"));
        plan(out, ConstraintType::Coincident, newRef(5, "start"), newRef(1, "start"));
        plan(out, ConstraintType::Coincident, newRef(5, "end"), newRef(3, "start"));
        plan(out, ConstraintType::Midpoint, newRef(6), newRef(4));
        plan(out, ConstraintType::Midpoint, newRef(6), newRef(5));
        rectangleSizes(out, typed, 2 * half.x, 2 * half.y, o.unit);
        break;
    }
    case DrawKind::Circle: {
        if (k == 0) break;
        const TypedValue* d = find(typed, "diameter");
        const double radius = d ? d->value / 2 : length(c - picks[0]);
        out.point = picks[0] + direction(c - picks[0]) * radius;
        out.entities.push_back(entity(SketchCircle{picks[0], radius}, drawn));
        if (d) keep(out, ConstraintType::Diameter, 0, *d);
        out.live = {{"diameter", 2 * radius}};
        out.caption = "Circle   Ø " + len(2 * radius, o.unit);
        break;
    }
    case DrawKind::Arc:
        if (k >= 1) arcTool(out, picks, c, typed, o);
        break;
    case DrawKind::CenterArc:
        if (k >= 1) centerArcTool(out, picks, c, typed, o);
        break;
    case DrawKind::Polygon: {
        if (k == 0) break;
        int sides = o.polygonSides;
        if (const TypedValue* s = find(typed, "sides"))
            sides = static_cast<int>(std::lround(s->value));
        const Point2 d = c - picks[0];
        const double rotation = length(d) > 1e-12 ? angleOf(d) * kDegrees : 90;
        double radius = length(d);
        const double flats = sides >= 3 ? std::cos(kPi / sides) : 1;
        if (const TypedValue* af = find(typed, "across_flats")) radius = af->value / (2 * flats);
        out.point = picks[0] + direction(d) * radius;
        out.entities.push_back(entity(SketchPolygon{picks[0], radius, sides, rotation}, drawn));
        out.live = {{"sides", sides}, {"across_flats", 2 * radius * flats}};
        out.caption = "Polygon   " + std::to_string(sides) + " sides  ·  " +
                      len(2 * radius * flats, o.unit) + " across flats";
        break;
    }
    case DrawKind::Spline: {
        std::vector<Point2> points = picks;
        points.push_back(c);
        if (points.size() >= 2) out.entities.push_back(entity(SketchSpline{points, false}, drawn));
        out.caption = "Spline   " + std::to_string(points.size()) + " points";
        break;
    }
    case DrawKind::Slot: {
        if (k == 0) break;
        if (k == 1) {
            const TypedValue* l = find(typed, "length");
            out.point = l ? picks[0] + direction(c - picks[0]) * l->value : c;
            out.entities.push_back(entity(SketchLine{picks[0], out.point}, true));
            const double shown = length(out.point - picks[0]);
            out.live = {{"length", shown}};
            out.caption = "Slot   " + len(shown, o.unit) + " long";
            break;
        }
        const Point2 axis = picks[1] - picks[0];
        const double l = length(axis);
        const double offset = l > 1e-12 ? std::abs(cross(axis, c - picks[0])) / l : 0;
        const TypedValue* w = find(typed, "width");
        const double width = w ? w->value : 2 * offset;
        out.entities.push_back(entity(SketchSlot{picks[0], picks[1], width}, drawn));
        out.live = {{"length", l}, {"width", width}};
        out.caption = "Slot   " + len(l, o.unit) + " long  ·  " + len(width, o.unit) + " wide";
        break;
    }
    }
    return out;
}

} // namespace cad::ui

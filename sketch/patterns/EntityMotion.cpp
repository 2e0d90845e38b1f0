// Moving each kind of sketch geometry rigidly: points turn about the pivot and
// shift; circles, arcs and polygons carry their angles round with them.
#include "sketch/patterns/EntityMotion.h"

#include "core/CommandRecord.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad {

namespace {

struct Mover {
    const RigidMotion& motion;

    SketchGeometry operator()(SketchLine l) const {
        l.start = motion.apply(l.start);
        l.end = motion.apply(l.end);
        return l;
    }
    SketchGeometry operator()(SketchCircle c) const {
        c.center = motion.apply(c.center);
        return c;
    }
    SketchGeometry operator()(SketchRectangle r) const {
        // Only quarter turns reach here: the moved corners span the new rectangle.
        const Point2 corners[] = {r.corner,
                                  {r.corner.x + r.width, r.corner.y},
                                  {r.corner.x + r.width, r.corner.y + r.height},
                                  {r.corner.x, r.corner.y + r.height}};
        double minX = HUGE_VAL, minY = HUGE_VAL;
        for (Point2 p : corners) {
            const Point2 q = motion.apply(p);
            minX = std::min(minX, q.x);
            minY = std::min(minY, q.y);
        }
        const long quarters = std::lround(motion.turnDegrees / 90.0);
        if (quarters % 2 != 0) std::swap(r.width, r.height);
        r.corner = {minX, minY};
        return r;
    }
    SketchGeometry operator()(SketchPoint p) const {
        p.position = motion.apply(p.position);
        return p;
    }
    SketchGeometry operator()(SketchArc a) const {
        a.center = motion.apply(a.center);
        a.startAngle = normalizedDegrees(a.startAngle + motion.turnDegrees);
        return a;
    }
    SketchGeometry operator()(SketchPolygon p) const {
        p.center = motion.apply(p.center);
        p.rotation = normalizedDegrees(p.rotation + motion.turnDegrees);
        return p;
    }
    SketchGeometry operator()(SketchSpline s) const {
        for (Point2& p : s.points) p = motion.apply(p);
        return s;
    }
    SketchGeometry operator()(SketchSlot s) const {
        s.start = motion.apply(s.start);
        s.end = motion.apply(s.end);
        return s;
    }
    // Text turns with its position; text on a path stays on its path.
    SketchGeometry operator()(SketchText t) const {
        t.position = motion.apply(t.position);
        t.angle = normalizedDegrees(t.angle + motion.turnDegrees);
        return t;
    }
};

} // namespace

Point2 RigidMotion::apply(Point2 p) const {
    double c = 1, s = 0;
    const double quarters = turnDegrees / 90.0;
    if (std::fabs(quarters - std::round(quarters)) <= 1e-12) {
        // Whole quarter turns exactly, so a grid turned square stays on its numbers.
        static constexpr double cosines[] = {1, 0, -1, 0}, sines[] = {0, 1, 0, -1};
        const long q = ((std::lround(quarters) % 4) + 4) % 4;
        c = cosines[q];
        s = sines[q];
    } else {
        const double t = turnDegrees * std::numbers::pi / 180.0;
        c = std::cos(t);
        s = std::sin(t);
    }
    const double dx = p.x - pivot.x, dy = p.y - pivot.y;
    return {pivot.x + c * dx - s * dy + shift.x, pivot.y + s * dx + c * dy + shift.y};
}

double normalizedDegrees(double degrees) {
    double d = std::fmod(degrees, 360.0);
    if (d < 0) d += 360.0;
    return d >= 360.0 ? 0.0 : d;
}

Result<SketchGeometry> moveGeometry(const SketchGeometry& geometry, const RigidMotion& motion) {
    if (std::holds_alternative<SketchRectangle>(geometry)) {
        const double quarters = motion.turnDegrees / 90.0;
        if (std::fabs(quarters - std::round(quarters)) > 1e-9)
            return fail("A rectangle stays square to the sketch axes, so it only turns by whole "
                        "quarter turns, not " +
                        formatShortest(motion.turnDegrees) +
                        " degrees; explode it into lines "
                        "first.");
    }
    return std::visit(Mover{motion}, geometry);
}

} // namespace cad

// extend: the end of a line or arc nearest the click grows to the next curve in
// its way, a line straight on, an arc around its circle. The new end is put on the
// curve it reached; constraints that held the old end, or the line's extent, go.
#include "sketch/ops/SketchOperations.h"

#include "sketch/ops/CurveTrack.h"
#include "sketch/ops/SketchCutters.h"

#include <limits>

namespace cad::ops {

namespace {

struct Reach {
    double along = std::numeric_limits<double>::infinity(); // mm for a line, radians for an arc
    Point2 point;
    std::optional<SketchRef> on;
};

// The nearest crossing straight on from a line's end, farther than 1e-7.
Reach reachOfLine(const SketchLine& line, bool atEnd, const std::vector<Cutter>& cutters) {
    const Point2 from = atEnd ? line.end : line.start;
    const Point2 way = unit(atEnd ? line.end - line.start : line.start - line.end);
    Carrier ray;
    ray.origin = from;
    ray.along = way;
    Reach best;
    for (const Cutter& cutter : cutters)
        for (Point2 p : crossings(ray, cutter)) {
            const double s = dot(p - from, way);
            if (s > 1e-7 && s < best.along) best = {s, p, cutter.on};
        }
    return best;
}

// The first crossing around the circle beyond the arc's end, short of a full turn.
Reach reachOfArc(const SketchArc& arc, bool atEnd, const std::vector<Cutter>& cutters) {
    const double sweep = radians(arc.sweepAngle);
    const double sign = sweep >= 0 ? 1.0 : -1.0;
    const double endAngle = radians(arc.startAngle) + (atEnd ? sweep : 0);
    // Growing the end goes on in the sweep's sense, growing the start against it.
    const double sense = atEnd ? sign : -sign;
    const double room = radians(359.999999) - std::fabs(sweep);
    Carrier circle;
    circle.circular = true;
    circle.centre = arc.center;
    circle.radius = arc.radius;
    Reach best;
    for (const Cutter& cutter : cutters)
        for (Point2 p : crossings(circle, cutter)) {
            const double turn = wrapTurn(sense * (direction(arc.center, p) - endAngle));
            if (turn * arc.radius > 1e-7 && turn < room && turn < best.along)
                best = {turn, p, cutter.on};
        }
    return best;
}

} // namespace

Result<std::string> extendCurve(SketchWork& sketch, const std::string& id, Point2 near) {
    Result<SketchEntity*> found = sketch.requireEditable(id);
    if (!found) return Error(found);
    SketchEntity& entity = **found;
    auto* line = std::get_if<SketchLine>(&entity.geometry);
    auto* arc = std::get_if<SketchArc>(&entity.geometry);
    if (!line && !arc) return fail("Extend works on lines and arcs.");

    const std::optional<CurveTrack> track = trackOf(entity);
    const double extent =
        line ? distance(line->start, line->end) : arc->radius * std::fabs(radians(arc->sweepAngle));
    if (!(extent > 1e-7)) return fail(id + " has no length.");
    const Point2 start = track->at(track->forward ? 0 : track->length());
    const Point2 end = track->at(track->forward ? track->length() : 0);
    const bool atEnd = distance(near, end) < distance(near, start);
    const std::string part = atEnd ? "end" : "start";

    const std::vector<Cutter> cutters = sketchCutters(sketch.entities, id);
    const Reach reach =
        line ? reachOfLine(*line, atEnd, cutters) : reachOfArc(*arc, atEnd, cutters);
    if (!std::isfinite(reach.along))
        return fail("There's nothing in the way of " + id + "'s " + part + " to extend it to.");

    if (line) {
        (atEnd ? line->end : line->start) = reach.point;
    } else {
        const double grow = degrees(reach.along) * (arc->sweepAngle >= 0 ? 1 : -1);
        if (!atEnd) arc->startAngle -= grow;
        arc->sweepAngle += grow;
    }
    // An arc's radius and centre stay, so what holds them stays too.
    const bool isLine = line != nullptr;
    sketch.drop([&](const SketchConstraint& c) {
        return refersTo(c, id, part) || tangentAtEnd(c, id, part) ||
               (isLine ? holdsExtent(c, id) : c.type == ConstraintType::Fix && refersTo(c, id, ""));
    });
    // The new end lies on the curve it reached; a refusal can only mean other
    // constraints hold it there already.
    if (reach.on)
        static_cast<void>(sketch.constrain(ConstraintType::Coincident, {{id, part}, *reach.on}));
    if (Result<void> solved = sketch.solve(); !solved)
        return solved.withPrefix("That would leave the sketch's constraints unsatisfiable: ");
    return "Extended " + id + ".";
}

} // namespace cad::ops

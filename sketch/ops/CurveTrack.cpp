// Parameters along lines, arcs and circles, and the pieces between two of them.
#include "sketch/ops/CurveTrack.h"

#include "sketch/ops/SketchCutters.h"

#include <algorithm>
#include <limits>

namespace cad::ops {

Carrier CurveTrack::carrier() const {
    Carrier c;
    c.circular = circular;
    c.origin = a;
    c.along = b - a;
    c.centre = arc.centre;
    c.radius = arc.radius;
    return c;
}

double CurveTrack::parameter(Point2 p) const {
    if (!circular) return lineParameter(p, a, b);
    const double u = wrapTurn(direction(arc.centre, p) - arc.from);
    if (closed || u <= arc.span) return u;
    const double pastEnd = u - arc.span, beforeStart = 2 * std::numbers::pi - u;
    return pastEnd < beforeStart ? arc.span : 0.0;
}

Point2 CurveTrack::at(double u) const {
    if (circular) return polar(arc.centre, arc.radius, arc.from + u);
    if (u == 0) return a;
    if (u == 1) return b;
    return a + u * (b - a);
}

SketchGeometry CurveTrack::piece(double u0, double u1) const {
    if (!circular) return SketchLine{at(u0), at(u1)};
    const double sweep = degrees(u1 - u0);
    if (forward) {
        const double start = u0 == 0 ? originalStart : degrees(arc.from + u0);
        return SketchArc{arc.centre, arc.radius, start, sweep};
    }
    const double start = u1 == arc.span ? originalStart : degrees(arc.from + u1);
    return SketchArc{arc.centre, arc.radius, start, -sweep};
}

std::optional<CurveTrack> trackOf(const SketchEntity& entity) {
    CurveTrack track;
    if (auto* l = std::get_if<SketchLine>(&entity.geometry)) {
        track.a = l->start;
        track.b = l->end;
        return track;
    }
    track.circular = true;
    if (auto* c = std::get_if<SketchCircle>(&entity.geometry)) {
        track.closed = true;
        track.arc.circular = true;
        track.arc.centre = c->center;
        track.arc.radius = c->radius;
        track.arc.span = 2 * std::numbers::pi;
        return track;
    }
    if (auto* arc = std::get_if<SketchArc>(&entity.geometry)) {
        track.arc = arcSpan(*arc);
        track.forward = arc->sweepAngle >= 0;
        track.originalStart = arc->startAngle;
        return track;
    }
    return std::nullopt;
}

double distanceTo(const SketchEntity& entity, Point2 p) {
    std::optional<CurveTrack> track = trackOf(entity);
    if (!track) return std::numeric_limits<double>::infinity();
    if (!track->circular) return distance(p, track->at(std::clamp(track->parameter(p), 0.0, 1.0)));
    const double u = track->parameter(p);
    const double along = distance(p, track->at(u));
    // On the arc's own angles the nearest point is straight out from the centre.
    const double off = wrapTurn(direction(track->arc.centre, p) - track->arc.from);
    if (track->closed || off <= track->arc.span)
        return std::fabs(distance(p, track->arc.centre) - track->arc.radius);
    return along;
}

} // namespace cad::ops

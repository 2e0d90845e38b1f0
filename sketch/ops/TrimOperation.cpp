// trim: the piece of a line, arc or circle around the clicked spot, between its
// nearest crossings with other curves, goes. The ends it leaves at crossings are
// put on the curves that cut them; constraints on the ends that moved, and those on
// the curve's extent, go with the piece.
#include "sketch/ops/SketchOperations.h"

#include "sketch/ops/CurveTrack.h"
#include "sketch/ops/SketchCutters.h"

#include <algorithm>
#include <limits>

namespace cad::ops {

namespace {

struct Crossing {
    double u = 0; // along the trimmed curve
    std::optional<SketchRef> on;
};

// The crossings strictly inside the curve (its own ends don't count), in order;
// crossings at one spot count once, by a cutter a new end can be put on if any.
std::vector<Crossing> crossingsAlong(const CurveTrack& track,
                                     const std::vector<SketchEntity>& entities,
                                     const std::string& id) {
    const double margin = track.circular ? radians(1e-6) : 1e-7;
    std::vector<Crossing> found;
    for (const Cutter& cutter : sketchCutters(entities, id))
        for (Point2 p : crossings(track.carrier(), cutter)) {
            const double u = track.parameter(p);
            if (track.closed || (u > margin && u < track.length() - margin))
                found.push_back({u, cutter.on});
        }
    std::stable_sort(found.begin(), found.end(),
                     [](const Crossing& a, const Crossing& b) { return a.u < b.u; });
    std::vector<Crossing> distinct;
    for (Crossing& c : found) {
        if (!distinct.empty() && c.u - distinct.back().u <= 1e-9) {
            if (!distinct.back().on) distinct.back().on = c.on;
            continue;
        }
        distinct.push_back(std::move(c));
    }
    // Around a circle the last crossing may be the first one again.
    if (track.closed && distinct.size() > 1 &&
        distinct.front().u + 2 * std::numbers::pi - distinct.back().u <= 1e-9)
        distinct.pop_back();
    return distinct;
}

// Puts a new end on the curve that cut it. The end lies there already, so the only
// refusal the checks can give is that other constraints hold it there already (a
// cutter touching the curve where something else is tied to it): then nothing
// more is needed.
void putOn(SketchWork& sketch, SketchRef end, const std::optional<SketchRef>& cutter) {
    if (cutter) static_cast<void>(sketch.constrain(ConstraintType::Coincident, {end, *cutter}));
}

// A circle keeps the rest of the turn as an arc from the crossing after the spot to
// the one before it; the arc takes the circle's place and every reference to it.
void trimCircle(SketchWork& sketch, const std::string& id, const CurveTrack& track,
                const std::vector<Crossing>& found, double spot) {
    auto after =
        std::find_if(found.begin(), found.end(), [&](const Crossing& c) { return c.u > spot; });
    const Crossing& next = after == found.end() ? found.front() : *after;
    const Crossing& previous = after == found.begin() ? found.back() : *std::prev(after);

    SketchEntity* circle = sketch.find(id);
    SketchEntity arc;
    arc.geometry = SketchArc{track.arc.centre, track.arc.radius, degrees(next.u),
                             degrees(wrapTurn(previous.u - next.u))};
    arc.construction = circle->construction;
    arc.group = circle->group;
    const std::size_t at = sketch.indexOf(id);
    const std::string arcId = sketch.add(std::move(arc), at);
    sketch.entities.erase(sketch.entities.begin() + static_cast<std::ptrdiff_t>(at) + 1);
    sketch.redirect([&](const SketchRef& ref) -> std::optional<SketchRef> {
        if (ref.entity != id) return std::nullopt;
        return SketchRef{arcId, ref.part};
    });
    sketch.drop([&](const SketchConstraint& c) { return holdsExtent(c, arcId); });
    putOn(sketch, {arcId, "start"}, next.on);
    putOn(sketch, {arcId, "end"}, previous.on);
}

// A line or arc loses the piece from `low` to `high`: shortened when the piece is at
// an end, split in two when it is in the middle (the second piece, a new entity,
// takes over the old end).
void trimOpen(SketchWork& sketch, const std::string& id, const CurveTrack& track,
              const Crossing* low, const Crossing* high) {
    SketchEntity* curve = sketch.find(id);
    const double length = track.length();
    if (!low || !high) {
        const bool atLow = !low; // the piece runs to the end at parameter 0
        const Crossing& cut = atLow ? *high : *low;
        curve->geometry = atLow ? track.piece(cut.u, length) : track.piece(0, cut.u);
        const std::string moved = track.endName(atLow);
        sketch.drop([&](const SketchConstraint& c) {
            return refersTo(c, id, moved) || holdsExtent(c, id) || tangentAtEnd(c, id, moved);
        });
        putOn(sketch, {id, moved}, cut.on);
        return;
    }

    // The curve keeps the piece with its start; the new one gets the piece with its end.
    const bool forward = track.forward;
    curve->geometry = forward ? track.piece(0, low->u) : track.piece(high->u, length);
    SketchEntity second;
    second.geometry = forward ? track.piece(high->u, length) : track.piece(0, low->u);
    second.construction = curve->construction;
    second.group = curve->group;
    const std::string secondId = sketch.add(std::move(second), sketch.indexOf(id) + 1);
    sketch.redirect([&](const SketchRef& ref) -> std::optional<SketchRef> {
        if (ref.entity != id || ref.part != "end") return std::nullopt;
        return SketchRef{secondId, "end"};
    });
    // A tangency held at the old end goes with it.
    for (SketchConstraint& c : sketch.constraints)
        if (tangentAtEnd(c, id, "end"))
            for (SketchRef& ref : c.refs)
                if (ref.entity == id) ref.entity = secondId;
    sketch.drop([&](const SketchConstraint& c) { return holdsExtent(c, id); });
    putOn(sketch, {id, "end"}, forward ? low->on : high->on);
    putOn(sketch, {secondId, "start"}, forward ? high->on : low->on);
}

} // namespace

Result<std::string> trimCurve(SketchWork& sketch, const std::string& id, Point2 click) {
    Result<SketchEntity*> found = sketch.requireEditable(id);
    if (!found) return Error(found);
    std::string target = id;
    const EntityKind kind = (*found)->kind();
    if (kind == EntityKind::Rectangle || kind == EntityKind::Polygon || kind == EntityKind::Slot) {
        Result<Exploded> exploded = explodeShape(sketch, id);
        if (!exploded) return Error(exploded);
        double best = std::numeric_limits<double>::infinity();
        for (const std::string& piece : exploded->pieces)
            if (double d = distanceTo(*sketch.find(piece), click); d < best) {
                best = d;
                target = piece;
            }
    }
    std::optional<CurveTrack> track = trackOf(*sketch.find(target));
    if (!track)
        return fail("Trim works on lines, circles and arcs, and the sides of rectangles, polygons "
                    "and slots.");

    const std::vector<Crossing> cuts = crossingsAlong(*track, sketch.entities, target);
    // A circle touched at one spot only has no piece to take out.
    if (cuts.empty() || (track->closed && cuts.size() < 2)) {
        sketch.remove(target);
        if (Result<void> solved = sketch.solve(); !solved)
            return solved.withPrefix("That would leave the sketch's constraints unsatisfiable: ");
        return "Deleted " + target + " (nothing crosses it).";
    }

    const double spot = track->parameter(click);
    if (track->closed) {
        trimCircle(sketch, target, *track, cuts, spot);
    } else {
        const Crossing* low = nullptr;
        const Crossing* high = nullptr;
        for (const Crossing& c : cuts) {
            if (c.u <= spot) low = &c;
            if (c.u > spot && !high) high = &c;
        }
        trimOpen(sketch, target, *track, low, high);
    }
    if (Result<void> solved = sketch.solve(); !solved)
        return solved.withPrefix("That would leave the sketch's constraints unsatisfiable: ");
    return "Trimmed " + target + ".";
}

} // namespace cad::ops

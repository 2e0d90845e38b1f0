// Chains of lines and arcs: finding them among the selected curves, and offsetting
// one as a whole. Each copy is the offset of its piece (a parallel line, a
// concentric arc), cut or lengthened to where it meets its neighbours' copies.
#include "sketch/ops/OffsetChain.h"

#include "sketch/ops/CurveTrack.h"
#include "sketch/ops/OpsGeometry.h"

#include <algorithm>
#include <array>
#include <limits>

namespace cad::ops {

namespace {

constexpr double kJoin = 1e-6; // ends this close join

Point2 endOf(const SketchEntity& e, int end) {
    if (auto* l = std::get_if<SketchLine>(&e.geometry)) return end == 0 ? l->start : l->end;
    const auto& a = std::get<SketchArc>(e.geometry);
    return polar(a.center, a.radius, radians(a.startAngle + (end == 0 ? 0 : a.sweepAngle)));
}

using Link = std::optional<std::pair<int, int>>; // the piece and its end a piece's end joins

// One piece as the chain runs along it, and its offset.
struct Run {
    SketchEntity source;
    bool reversed = false;
    bool arc = false;
    Point2 from, to;          // the piece's ends in the chain's direction
    Point2 along;             // a line's unit direction
    Point2 centre;            // an arc's centre
    double radius = 0;        // and radius
    double sweep = 0;         // and sweep in the chain's direction, radians
    Point2 shiftedFrom;       // a line's offset passes here
    double shiftedRadius = 0; // an arc's offset radius

    Point2 offsetOf(Point2 p) const {
        return arc ? centre + shiftedRadius * unit(p - centre) : p + (shiftedFrom - from);
    }
};

Run runOf(const SketchEntity& e, bool reversed) {
    Run r;
    r.source = e;
    r.reversed = reversed;
    r.from = endOf(e, reversed ? 1 : 0);
    r.to = endOf(e, reversed ? 0 : 1);
    if (auto* a = std::get_if<SketchArc>(&e.geometry)) {
        r.arc = true;
        r.centre = a->center;
        r.radius = a->radius;
        r.sweep = radians(reversed ? -a->sweepAngle : a->sweepAngle);
    } else {
        r.along = unit(r.to - r.from);
    }
    return r;
}

// Signed area inside a loop of lines and arcs (positive counter-clockwise), arcs by
// short chords.
double loopArea(const std::vector<Run>& runs, const std::vector<Point2>& starts,
                const std::vector<double>& sweeps, const std::vector<double>& radii) {
    std::vector<Point2> outline;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (!runs[i].arc) {
            outline.push_back(starts[i]);
            continue;
        }
        const double from = direction(runs[i].centre, starts[i]);
        for (int k = 0; k < 32; ++k)
            outline.push_back(polar(runs[i].centre, radii[i], from + sweeps[i] * k / 32));
    }
    double area = 0;
    for (std::size_t i = 0; i < outline.size(); ++i)
        area += cross(outline[i], outline[(i + 1) % outline.size()]);
    return area / 2;
}

// Where the offset curves of two pieces cross, each taken whole (infinite lines,
// full circles).
std::vector<Point2> offsetCrossings(const Run& a, const Run& b) {
    auto carrier = [](const Run& r) {
        Carrier c;
        c.circular = r.arc;
        c.origin = r.shiftedFrom;
        c.along = r.along;
        c.centre = r.centre;
        c.radius = r.shiftedRadius;
        return c;
    };
    auto fullCircle = [](const Run& r) {
        Bounded c;
        c.circular = true;
        c.centre = r.centre;
        c.radius = r.shiftedRadius;
        c.span = 2 * std::numbers::pi;
        return c;
    };
    if (!a.arc && !b.arc) {
        const double denominator = cross(a.along, b.along);
        if (std::fabs(denominator) <= 1e-12) return {};
        const double t = cross(b.shiftedFrom - a.shiftedFrom, b.along) / denominator;
        return {a.shiftedFrom + t * a.along};
    }
    if (!b.arc) return crossings(carrier(b), fullCircle(a));
    return crossings(carrier(a), fullCircle(b));
}

// Where the offsets of two neighbours meet: the joint's own offset where they run
// on smoothly, else the crossing of their offset curves nearest the joint.
std::optional<Point2> meet(const Run& a, const Run& b, Point2 joint) {
    const Point2 fromA = a.offsetOf(joint), fromB = b.offsetOf(joint);
    if (distance(fromA, fromB) <= 1e-9 * std::max(1.0, norm(joint))) return fromA;
    const std::vector<Point2> candidates = offsetCrossings(a, b);
    if (candidates.empty()) return std::nullopt;
    return *std::min_element(candidates.begin(), candidates.end(), [&](Point2 p, Point2 q) {
        return distance(p, joint) < distance(q, joint);
    });
}

// Joins two neighbouring copies, the first's end to the second's start. Where the
// sources run on smoothly (a line into a tangent arc), the copies' other ties already
// settle how far out the joint lies, so a coincidence there would say one thing twice
// and is refused as redundant; such a joint is held instead by the tangency at the
// arc's end and by the line's end lying on the arc's radius through it. Two lines
// running on in one line need nothing more than they have.
Result<void> join(SketchWork& sketch, const Run& a, const std::string& copyA, const Run& b,
                  const std::string& copyB) {
    const SketchRef end{copyA, a.reversed ? "start" : "end"};
    const SketchRef start{copyB, b.reversed ? "end" : "start"};
    const Point2 joint = a.to;
    const bool smooth =
        distance(a.offsetOf(joint), b.offsetOf(joint)) <= 1e-9 * std::max(1.0, norm(joint));
    if (smooth && a.arc != b.arc) {
        const SketchRef arc{a.arc ? copyA : copyB, {}}, line{a.arc ? copyB : copyA, {}};
        if (auto t = sketch.constrain(ConstraintType::Tangent, {line, arc}); !t) return Error(t);
    }
    Result<std::string> coincident = sketch.constrain(ConstraintType::Coincident, {end, start});
    if (coincident) return {};
    if (!smooth) return Error(coincident);
    if (!a.arc && !b.arc) return {};
    const SketchRef centre{a.arc ? copyA : copyB, "center"};
    const SketchRef onArc = a.arc ? end : start, other = a.arc ? start : end;
    if (auto i = sketch.constrain(ConstraintType::Inline, {centre, onArc, other}); !i)
        return Error(i);
    // Two arcs round different centres need each end on the other's radius too.
    if (a.arc && b.arc)
        static_cast<void>(
            sketch.constrain(ConstraintType::Inline, {{copyB, "center"}, start, end}));
    return {};
}

std::string listed(const Chain& chain) {
    std::string out;
    for (std::size_t i = 0; i < chain.pieces.size(); ++i) {
        if (i > 0) out += i + 1 == chain.pieces.size() ? " and " : ", ";
        out += chain.pieces[i].id;
    }
    return out;
}

} // namespace

std::vector<Chain> findChains(const std::vector<SketchEntity>& entities,
                              const std::vector<std::string>& ids) {
    std::vector<const SketchEntity*> members;
    for (const std::string& id : ids)
        if (const SketchEntity* e = findEntity(entities, id))
            if (e->kind() == EntityKind::Line || e->kind() == EntityKind::Arc) members.push_back(e);
    const int n = static_cast<int>(members.size());

    // Each end joins the one other end it touches, when that end touches only it.
    std::vector<std::array<std::vector<std::pair<int, int>>, 2>> touching(members.size());
    for (int i = 0; i < n; ++i)
        for (int e = 0; e < 2; ++e)
            for (int j = 0; j < n; ++j)
                for (int f = 0; f < 2; ++f)
                    if (j != i &&
                        distance(endOf(*members[static_cast<std::size_t>(i)], e),
                                 endOf(*members[static_cast<std::size_t>(j)], f)) <= kJoin)
                        touching[static_cast<std::size_t>(i)][static_cast<std::size_t>(e)]
                            .push_back({j, f});
    auto link = [&](int i, int e) -> Link {
        const auto& here = touching[static_cast<std::size_t>(i)][static_cast<std::size_t>(e)];
        if (here.size() != 1) return std::nullopt;
        const auto [j, f] = here.front();
        if (touching[static_cast<std::size_t>(j)][static_cast<std::size_t>(f)].size() != 1)
            return std::nullopt;
        return here.front();
    };

    std::vector<bool> visited(members.size(), false);
    std::vector<Chain> chains;
    for (int i = 0; i < n; ++i) {
        if (visited[static_cast<std::size_t>(i)]) continue;
        // Back up to where the chain begins, unless it closes on itself.
        int first = i;
        bool reversed = false, closed = false;
        for (int steps = 0; steps < n; ++steps) {
            const Link back = link(first, reversed ? 1 : 0);
            if (!back) break;
            if (back->first == i) {
                closed = true;
                break;
            }
            first = back->first;
            reversed = back->second == 0;
        }
        if (closed) {
            first = i;
            reversed = false;
        }
        Chain chain;
        chain.closed = closed;
        for (int at = first, steps = 0; steps < n; ++steps) {
            visited[static_cast<std::size_t>(at)] = true;
            chain.pieces.push_back({members[static_cast<std::size_t>(at)]->id, reversed});
            const Link next = link(at, reversed ? 0 : 1);
            if (!next || next->first == first || visited[static_cast<std::size_t>(next->first)])
                break;
            at = next->first;
            reversed = next->second == 1;
        }
        // An open chain runs the way its first listed member is drawn.
        auto mine =
            std::find_if(chain.pieces.begin(), chain.pieces.end(), [&](const ChainPiece& p) {
                return p.id == members[static_cast<std::size_t>(i)]->id;
            });
        if (!closed && mine != chain.pieces.end() && mine->reversed) {
            std::reverse(chain.pieces.begin(), chain.pieces.end());
            for (ChainPiece& p : chain.pieces) p.reversed = !p.reversed;
        }
        chains.push_back(std::move(chain));
    }
    return chains;
}

Result<void> offsetChain(SketchWork& sketch, const Chain& chain, double distanceBy,
                         std::optional<Point2> side) {
    std::vector<Run> runs;
    for (const ChainPiece& p : chain.pieces) runs.push_back(runOf(*sketch.find(p.id), p.reversed));
    const std::size_t n = runs.size();

    std::vector<Point2> starts;
    std::vector<double> sweeps, radii;
    for (const Run& r : runs) {
        starts.push_back(r.from);
        sweeps.push_back(r.sweep);
        radii.push_back(r.radius);
    }
    const double area = chain.closed ? loopArea(runs, starts, sweeps, radii) : 0;

    // Left of the chain's direction (+1) or right (-1).
    double toLeft = 1;
    if (side) {
        const Run* nearest = &runs.front();
        double best = std::numeric_limits<double>::infinity();
        for (const Run& r : runs)
            if (double d = distanceTo(r.source, *side); d < best) {
                best = d;
                nearest = &r;
            }
        const bool left = nearest->arc ? (nearest->sweep > 0) ==
                                             (distance(*side, nearest->centre) < nearest->radius)
                                       : cross(nearest->along, *side - nearest->from) >= 0;
        toLeft = left ? 1 : -1;
    } else if (chain.closed) {
        toLeft = area > 0 ? -1 : 1; // outward
    }
    const double shift = toLeft * distanceBy;
    // Left of a counter-clockwise loop is its inside.
    const bool inward = chain.closed && (shift > 0) == (area > 0);
    const std::string nothingLeft =
        "Offsetting " + listed(chain) + " that far inward leaves nothing.";

    for (Run& r : runs) {
        if (r.arc) {
            r.shiftedRadius = r.sweep > 0 ? r.radius - shift : r.radius + shift;
            if (r.shiftedRadius <= 1e-7)
                return fail(inward ? nothingLeft
                                   : "Offsetting " + r.source.id +
                                         " inward by that much leaves nothing.");
        } else {
            r.shiftedFrom = r.from + shift * leftOf(r.along);
        }
    }

    // The copies' ends: where neighbours meet, and at an open chain's ends the offset
    // of the end itself.
    std::vector<Point2> from(n), to(n);
    from.front() = runs.front().offsetOf(runs.front().from);
    to.back() = runs.back().offsetOf(runs.back().to);
    for (std::size_t k = 0; k < (chain.closed ? n : n - 1); ++k) {
        const std::size_t next = (k + 1) % n;
        std::optional<Point2> at = meet(runs[k], runs[next], runs[k].to);
        if (!at)
            return fail("The offset copies of " + runs[k].source.id + " and " +
                        runs[next].source.id + " don't meet.");
        to[k] = *at;
        from[next] = *at;
    }

    std::vector<double> newSweeps(n, 0), newRadii(n, 0);
    for (std::size_t k = 0; k < n; ++k) {
        const Run& r = runs[k];
        newRadii[k] = r.shiftedRadius;
        if (!r.arc) continue;
        const double sense = r.sweep > 0 ? 1 : -1;
        const double turn =
            wrapTurn(sense * (direction(r.centre, to[k]) - direction(r.centre, from[k])));
        newSweeps[k] = sense * turn;
    }
    if (inward) {
        const double after = loopArea(runs, from, newSweeps, newRadii);
        if (after * area <= 0 || std::fabs(after) <= 1e-9 * std::fabs(area))
            return fail(nothingLeft);
    }

    // The copies, each running the way its source is drawn.
    std::vector<std::string> copies;
    for (std::size_t k = 0; k < n; ++k) {
        const Run& r = runs[k];
        SketchEntity copy;
        copy.construction = r.source.construction;
        const std::string insideOut =
            "Offsetting " + r.source.id + " that far turns it inside out.";
        if (!r.arc) {
            if (dot(to[k] - from[k], r.along) <= 1e-7) return fail(insideOut);
            copy.geometry = r.reversed ? SketchLine{to[k], from[k]} : SketchLine{from[k], to[k]};
        } else {
            const double span = std::fabs(r.sweep), turn = std::fabs(newSweeps[k]);
            if (turn * r.shiftedRadius <= 1e-7 || turn > span + (2 * std::numbers::pi - span) / 2 ||
                degrees(turn) >= 359.999999)
                return fail(insideOut);
            const Point2 start = r.reversed ? to[k] : from[k];
            const double sweep = r.reversed ? -newSweeps[k] : newSweeps[k];
            copy.geometry = SketchArc{r.centre, r.shiftedRadius,
                                      degrees(direction(r.centre, start)), degrees(sweep)};
        }
        copies.push_back(sketch.add(std::move(copy)));
    }

    const double gap = std::fabs(distanceBy);
    for (std::size_t k = 0; k < n; ++k) {
        const SketchRef source{runs[k].source.id, {}}, copy{copies[k], {}};
        if (runs[k].arc) {
            if (auto c = sketch.constrain(ConstraintType::Concentric, {copy, source}); !c)
                return Error(c);
        } else {
            if (auto c = sketch.constrain(ConstraintType::Parallel, {copy, source}); !c)
                return Error(c);
            if (auto c = sketch.constrain(ConstraintType::Distance, {source, copy}, gap); !c)
                return Error(c);
        }
    }
    for (std::size_t k = 0; k < (chain.closed ? n : n - 1); ++k) {
        const std::size_t next = (k + 1) % n;
        if (Result<void> joined = join(sketch, runs[k], copies[k], runs[next], copies[next]);
            !joined)
            return joined;
    }
    return {};
}

} // namespace cad::ops

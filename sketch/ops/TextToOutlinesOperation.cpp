// text_to_outlines: a text's glyph contours become ordinary sketch curves: each
// straight piece a line, each smooth curved run a spline through points 0.12 mm apart
// along it, and the pieces of a contour joined end to end by coincidences.
#include "sketch/ops/SketchOperations.h"

#include "sketch/text/TextLayout.h"

#include <GCPnts_AbscissaPoint.hxx>
#include <Geom2dAdaptor_Curve.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ops {

namespace {

using text::Contour;
using text::OutlinePiece;

constexpr double kFitSpacing = 0.12; // mm between a spline's fit points
// Two curved pieces whose directions differ by less than this at their joint run on
// as one spline; a sharper corner starts a new one.
const double kSmoothCosine = std::cos(10.0 * std::numbers::pi / 180.0);

Point2 direction(Point2 from, Point2 to) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    return length > 0 ? Point2{(to.x - from.x) / length, (to.y - from.y) / length} : Point2{};
}
// The direction a Bézier piece leaves its start and arrives at its end.
Point2 startDirection(const OutlinePiece& p) {
    for (std::size_t i = 1; i < p.poles.size(); ++i)
        if (p.poles[i] != p.poles.front()) return direction(p.poles.front(), p.poles[i]);
    return {};
}
Point2 endDirection(const OutlinePiece& p) {
    for (std::size_t i = p.poles.size() - 1; i-- > 0;)
        if (p.poles[i] != p.poles.back()) return direction(p.poles[i], p.poles.back());
    return {};
}
bool smoothJoint(const OutlinePiece& a, const OutlinePiece& b) {
    if (a.straight() || b.straight()) return false;
    const Point2 u = endDirection(a), v = startDirection(b);
    return u.x * v.x + u.y * v.y >= kSmoothCosine;
}

// Consecutive pieces of a contour that become one entity: a straight piece alone,
// or a smooth run of curved ones.
struct Run {
    std::vector<const OutlinePiece*> pieces;
    bool closed = false; // a smooth curved run all the way round
};

std::vector<Run> runsOf(const Contour& contour) {
    const std::vector<OutlinePiece>& p = contour.pieces;
    const std::size_t n = p.size();
    // Start at a joint that breaks (a straight piece or a corner), so that no run
    // wraps past the end of the list.
    std::size_t first = 0;
    bool found = false;
    for (std::size_t i = 0; i < n && !found; ++i)
        if (!smoothJoint(p[(i + n - 1) % n], p[i])) first = i, found = true;
    std::vector<Run> runs;
    if (!found) { // one smooth closed curve
        Run run{{}, true};
        for (const OutlinePiece& piece : p) run.pieces.push_back(&piece);
        runs.push_back(std::move(run));
        return runs;
    }
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t i = (first + k) % n;
        const bool joins = k > 0 && smoothJoint(p[(i + n - 1) % n], p[i]);
        if (!joins) runs.emplace_back();
        runs.back().pieces.push_back(&p[i]);
    }
    return runs;
}

// Points spaced evenly along the run: `count` of them from its start to its end, or,
// round a closed run, `count` of them not repeating the start.
std::vector<Point2> pointsAlong(const Run& run, int count) {
    std::vector<double> lengths;
    double total = 0;
    for (const OutlinePiece* piece : run.pieces)
        total += lengths.emplace_back(text::pieceLength(*piece));
    std::vector<Point2> out;
    const int steps = run.closed ? count : count - 1;
    std::size_t at = 0;
    double before = 0; // length of the pieces ahead of `at`
    for (int k = 0; k < count; ++k) {
        const double d = total * k / steps;
        while (at + 1 < run.pieces.size() && d > before + lengths[at]) before += lengths[at++];
        const OutlinePiece& piece = *run.pieces[at];
        double t = lengths[at] > 0 ? std::clamp((d - before) / lengths[at], 0.0, 1.0) : 0.0;
        if (Handle(Geom2d_Curve) curve = text::pieceCurve(piece);
            !curve.IsNull() && t > 0 && t < 1) {
            Geom2dAdaptor_Curve adaptor(curve);
            GCPnts_AbscissaPoint abscissa(adaptor, d - before, curve->FirstParameter());
            if (abscissa.IsDone()) t = abscissa.Parameter();
        }
        out.push_back(text::pieceValue(piece, t));
    }
    if (!run.closed) out.back() = run.pieces.back()->end(); // exactly where the next begins
    return out;
}

struct Made {
    std::string id;
    SketchRef start, end;
};

Made addRun(SketchWork& sketch, const Run& run, const SketchEntity& source) {
    SketchEntity entity;
    entity.construction = source.construction;
    entity.group = source.group;
    if (run.pieces.size() == 1 && run.pieces.front()->straight()) {
        entity.geometry = SketchLine{run.pieces.front()->start(), run.pieces.front()->end()};
        const std::string id = sketch.add(std::move(entity));
        return {id, {id, "start"}, {id, "end"}};
    }
    double length = 0;
    for (const OutlinePiece* piece : run.pieces) length += text::pieceLength(*piece);
    const int count =
        std::max(static_cast<int>(std::ceil(length / kFitSpacing)), run.closed ? 3 : 2);
    SketchSpline spline{pointsAlong(run, count), run.closed};
    const std::string last = "point" + std::to_string(spline.points.size() - 1);
    entity.geometry = std::move(spline);
    const std::string id = sketch.add(std::move(entity));
    return {id, {id, "point0"}, {id, last}};
}

} // namespace

Result<std::string> textToOutlines(SketchWork& sketch, const std::string& id) {
    Result<SketchEntity*> found = sketch.requireEditable(id);
    if (!found) return Error(found);
    const SketchEntity source = **found;
    const auto* words = std::get_if<SketchText>(&source.geometry);
    if (!words) return fail("'" + id + "' isn't text.");
    // The outlines as the text is shown (on its path, in its font or the fallback).
    auto layout = text::layoutTextForSketch(*words, &sketch.entities);
    if (!layout) return Error(layout);

    sketch.remove(id);
    std::size_t curves = 0;
    for (const Contour& contour : (*layout)->contours) {
        std::vector<Made> made;
        for (const Run& run : runsOf(contour)) made.push_back(addRun(sketch, run, source));
        curves += made.size();
        if (made.size() < 2) continue;
        for (std::size_t k = 0; k < made.size(); ++k)
            if (auto joined = sketch.constrain(ConstraintType::Coincident,
                                               {made[k].end, made[(k + 1) % made.size()].start});
                !joined)
                return Error(joined);
    }
    return "Converted " + id + " to " + std::to_string(curves) + " curves.";
}

} // namespace cad::ops

// Turning a sketch's entities into drawing items: exact circles and arcs, and
// everything else as the points of its curves, one polyline per entity.
#include "sketch/drawing/SketchDrawing.h"

#include "sketch/SketchCurves.h"
#include "sketch/text/TextLayout.h"

#include <GCPnts_QuasiUniformDeflection.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>

#include <algorithm>
#include <cmath>
#include <memory>

namespace cad::drawing {

namespace {

constexpr double kJoin = 1e-9; // mm: ends this close are the same point

double distance(DrawingPoint a, DrawingPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }

bool isStraight(const Handle(Geom2d_Curve) & curve) {
    Handle(Geom2d_Curve) basis = curve;
    if (auto trimmed = Handle(Geom2d_TrimmedCurve)::DownCast(curve); !trimmed.IsNull())
        basis = trimmed->BasisCurve();
    return !Handle(Geom2d_Line)::DownCast(basis).IsNull();
}

// The curve's points from its start to its end, chords within the tolerance.
std::vector<DrawingPoint> samples(const Handle(Geom2d_Curve) & curve) {
    const double first = curve->FirstParameter(), last = curve->LastParameter();
    auto at = [&](double t) {
        const gp_Pnt2d p = curve->Value(t);
        return DrawingPoint{p.X(), p.Y()};
    };
    if (isStraight(curve)) return {at(first), at(last)};
    Geom2dAdaptor_Curve adaptor(curve);
    GCPnts_QuasiUniformDeflection sampler(adaptor, kExportTolerance);
    if (!sampler.IsDone() || sampler.NbPoints() < 2) return {at(first), at(last)};
    std::vector<DrawingPoint> out;
    out.reserve(static_cast<std::size_t>(sampler.NbPoints()));
    for (int i = 1; i <= sampler.NbPoints(); ++i) {
        const gp_Pnt p = sampler.Value(i);
        out.push_back({p.X(), p.Y()});
    }
    return out;
}

// Appends a run of points to a chain, turning it round when it starts at the
// chain's far end instead (a slot's sides and ends don't all run the same way).
void append(std::vector<DrawingPoint>& chain, std::vector<DrawingPoint> run) {
    if (run.empty()) return;
    if (chain.empty()) {
        chain = std::move(run);
        return;
    }
    if (distance(run.back(), chain.back()) < distance(run.front(), chain.back()))
        std::reverse(run.begin(), run.end());
    const bool joined = distance(run.front(), chain.back()) <= kJoin;
    chain.insert(chain.end(), run.begin() + (joined ? 1 : 0), run.end());
}

class Builder {
public:
    Builder(Drawing& out, double perMillimeter) : out_(out), scale_(perMillimeter) {}

    DrawingPoint point(Point2 p) const { return {p.x * scale_, p.y * scale_}; }
    DrawingPoint point(DrawingPoint p) const { return {p.x * scale_, p.y * scale_}; }

    void circle(const std::string& layer, Point2 center, double radius) {
        out_.items.push_back(
            {ItemKind::Circle, layer, {point(center)}, radius * scale_, 0, 0, false});
    }
    void arc(const std::string& layer, const SketchArc& a) {
        double start = a.sweepAngle >= 0 ? a.startAngle : a.startAngle + a.sweepAngle;
        start = std::fmod(start, 360.0);
        if (start < 0) start += 360.0;
        out_.items.push_back({ItemKind::Arc,
                              layer,
                              {point(a.center)},
                              a.radius * scale_,
                              start,
                              start + std::abs(a.sweepAngle),
                              false});
    }
    void dot(const std::string& layer, Point2 p) {
        out_.items.push_back({ItemKind::Point, layer, {point(p)}, 0, 0, 0, false});
    }
    // A chain of points in millimetres: a line when it is two points, else a
    // polyline, closed when its ends meet.
    void chain(const std::string& layer, std::vector<DrawingPoint> points) {
        if (points.size() < 2) return;
        bool closed = false;
        if (points.size() > 2 && distance(points.front(), points.back()) <= kJoin) {
            points.pop_back();
            closed = true;
        }
        for (DrawingPoint& p : points) p = point(p);
        const ItemKind kind = points.size() == 2 && !closed ? ItemKind::Line : ItemKind::Polyline;
        out_.items.push_back({kind, layer, std::move(points), 0, 0, 0, closed});
    }

private:
    Drawing& out_;
    double scale_;
};

void addText(Builder& builder, const std::string& layer, const SketchText& text,
             const std::vector<SketchEntity>& sketch) {
    Result<std::shared_ptr<const text::TextLayout>> layout =
        text::layoutTextForSketch(text, &sketch);
    if (!layout) return; // no font at all: nothing to engrave
    for (const text::Contour& contour : (*layout)->contours) {
        std::vector<DrawingPoint> points;
        for (const text::OutlinePiece& piece : contour.pieces) {
            if (piece.straight()) {
                append(points,
                       {{piece.start().x, piece.start().y}, {piece.end().x, piece.end().y}});
                continue;
            }
            Handle(Geom2d_Curve) curve = text::pieceCurve(piece);
            if (!curve.IsNull()) append(points, samples(curve));
        }
        // A glyph contour is closed even where its last point misses the first by a hair.
        if (points.size() > 2 && distance(points.front(), points.back()) > kJoin)
            points.push_back(points.front());
        builder.chain(layer, std::move(points));
    }
}

} // namespace

Drawing sketchDrawing(const std::vector<SketchEntity>& entities, units::Length unit,
                      bool includeConstruction) {
    Drawing out;
    out.unit = unit;
    Builder builder(out, 1.0 / units::unitScale(unit));
    static const std::string kCut = "CUT", kEngrave = "ENGRAVE", kConstruction = "CONSTRUCTION";
    for (const SketchEntity& entity : entities) {
        if (entity.construction && !includeConstruction) continue;
        const bool isText = entity.kind() == EntityKind::Text;
        const std::string& layer = entity.construction ? kConstruction : isText ? kEngrave : kCut;
        if (const auto* c = std::get_if<SketchCircle>(&entity.geometry)) {
            builder.circle(layer, c->center, c->radius);
        } else if (const auto* a = std::get_if<SketchArc>(&entity.geometry)) {
            builder.arc(layer, *a);
        } else if (const auto* p = std::get_if<SketchPoint>(&entity.geometry)) {
            builder.dot(layer, p->position);
        } else if (const auto* t = std::get_if<SketchText>(&entity.geometry)) {
            addText(builder, layer, *t, entities);
        } else {
            std::vector<DrawingPoint> points;
            for (const SketchCurve& curve : entityCurves(entity, entities))
                if (!curve.curve.IsNull()) append(points, samples(curve.curve));
            builder.chain(layer, std::move(points));
        }
    }
    return out;
}

} // namespace cad::drawing

// Picking and snapping in sketch coordinates: distances are exact for lines, arcs and
// circles, and within half a pixel for splines, divided by the model length of a pixel.
#include "ui/sketch/SketchScene.h"
#include "ui/sketch/Planar.h"

#include "sketch/SketchCurves.h"
#include "sketch/text/TextLayout.h"

#include <GCPnts_QuasiUniformDeflection.hxx>
#include <Geom2dAdaptor_Curve.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_map>

namespace cad::ui {

namespace {

using namespace planar;

constexpr double kTwoPi = 2 * std::numbers::pi;


void setBox(CurvePiece& piece) {
    auto extend = [&](Point2 p, bool first) {
        if (first) {
            piece.low = piece.high = p;
            return;
        }
        piece.low = {std::min(piece.low.x, p.x), std::min(piece.low.y, p.y)};
        piece.high = {std::max(piece.high.x, p.x), std::max(piece.high.y, p.y)};
    };
    switch (piece.shape) {
    case CurvePiece::Segment:
        extend(piece.a, true);
        extend(piece.b, false);
        break;
    case CurvePiece::Arc:
        // The whole circle's box: loose for short arcs, which only costs a distance test.
        piece.low = {piece.center.x - piece.radius, piece.center.y - piece.radius};
        piece.high = {piece.center.x + piece.radius, piece.center.y + piece.radius};
        break;
    case CurvePiece::Polyline:
        for (std::size_t i = 0; i < piece.points.size(); ++i) extend(piece.points[i], i == 0);
        break;
    }
}

CurvePiece segment(Point2 a, Point2 b, std::string reference, ResolvedRef::Kind kind, int entity) {
    CurvePiece piece;
    piece.shape = CurvePiece::Segment;
    piece.a = a;
    piece.b = b;
    piece.reference = std::move(reference);
    piece.refKind = kind;
    piece.entity = entity;
    setBox(piece);
    return piece;
}

CurvePiece arc(Point2 center, double radius, double start, double sweep, std::string reference,
               ResolvedRef::Kind kind, int entity) {
    CurvePiece piece;
    piece.shape = CurvePiece::Arc;
    piece.center = center;
    piece.radius = radius;
    piece.start = start;
    piece.sweep = sweep;
    piece.reference = std::move(reference);
    piece.refKind = kind;
    piece.entity = entity;
    setBox(piece);
    return piece;
}

std::vector<Point2> sampleSpline(const SketchSpline& spline, double deflection) {
    Handle(Geom2d_BSplineCurve) curve = interpolateSpline(spline);
    if (curve.IsNull()) return spline.points;
    double size = 0;
    for (const Point2& p : spline.points) size = std::max(size, length(p - spline.points.front()));
    // Never finer than a hundred-thousandth of the spline: enough for any zoom a sketch
    // is drawn at, and a bound on the number of samples.
    deflection = std::max({deflection, size * 1e-5, 1e-6});
    Geom2dAdaptor_Curve adaptor(curve);
    GCPnts_QuasiUniformDeflection sampler(adaptor, deflection);
    if (!sampler.IsDone() || sampler.NbPoints() < 2) return spline.points;
    std::vector<Point2> out;
    out.reserve(static_cast<std::size_t>(sampler.NbPoints()));
    for (int i = 1; i <= sampler.NbPoints(); ++i) {
        const gp_Pnt p = sampler.Value(i);
        out.push_back({p.X(), p.Y()});
    }
    return out;
}

// A glyph outline piece as points: its ends, or a Bézier piece cut into enough steps
// that its chords stay within `deflection` (the control polygon bounds the curve).
void appendOutline(const text::OutlinePiece& piece, double deflection, std::vector<Point2>& out) {
    if (out.empty()) out.push_back(piece.start());
    if (piece.straight()) {
        out.push_back(piece.end());
        return;
    }
    double hull = 0;
    for (std::size_t i = 1; i < piece.poles.size(); ++i)
        hull += length(piece.poles[i] - piece.poles[i - 1]);
    const int steps =
        std::clamp(static_cast<int>(std::ceil(std::sqrt(hull / std::max(deflection, 1e-6)))), 2, 64);
    for (int k = 1; k <= steps; ++k) {
        // De Casteljau at t.
        std::vector<Point2> q = piece.poles;
        const double t = static_cast<double>(k) / steps;
        for (std::size_t level = q.size() - 1; level > 0; --level)
            for (std::size_t i = 0; i < level; ++i) q[i] = q[i] * (1 - t) + q[i + 1] * t;
        out.push_back(q.front());
    }
}

} // namespace

std::vector<CurvePiece> entityPieces(const SketchEntity& e, int index, double deflection,
                                     const std::vector<SketchEntity>* sketch) {
    using K = ResolvedRef::Kind;
    std::vector<CurvePiece> out;
    const std::string& id = e.id;
    std::visit(
        [&](const auto& g) {
            using T = std::decay_t<decltype(g)>;
            if constexpr (std::is_same_v<T, SketchLine>) {
                out.push_back(segment(g.start, g.end, id, K::Line, index));
            } else if constexpr (std::is_same_v<T, SketchCircle>) {
                out.push_back(arc(g.center, g.radius, 0, kTwoPi, id, K::Circle, index));
            } else if constexpr (std::is_same_v<T, SketchArc>) {
                const double toRad = std::numbers::pi / 180;
                out.push_back(arc(g.center, g.radius, g.startAngle * toRad, g.sweepAngle * toRad,
                                  id, K::Circle, index));
            } else if constexpr (std::is_same_v<T, SketchRectangle>) {
                const Point2 bl = g.corner, br{g.corner.x + g.width, g.corner.y},
                             tr{g.corner.x + g.width, g.corner.y + g.height},
                             tl{g.corner.x, g.corner.y + g.height};
                out.push_back(segment(bl, br, id + ".bottom", K::Line, index));
                out.push_back(segment(br, tr, id + ".right", K::Line, index));
                out.push_back(segment(tl, tr, id + ".top", K::Line, index));
                out.push_back(segment(bl, tl, id + ".left", K::Line, index));
            } else if constexpr (std::is_same_v<T, SketchPolygon>) {
                if (g.sides < 3) return;
                const double rotation = g.rotation * std::numbers::pi / 180;
                for (int k = 0; k < g.sides; ++k) {
                    const Point2 a = polar(g.center, g.radius, rotation + kTwoPi * k / g.sides);
                    const Point2 b =
                        polar(g.center, g.radius, rotation + kTwoPi * (k + 1) / g.sides);
                    out.push_back(segment(a, b, id + ".edge" + std::to_string(k), K::Line, index));
                }
            } else if constexpr (std::is_same_v<T, SketchSlot>) {
                const Point2 d = g.end - g.start;
                const double len = length(d);
                if (len <= 0) return;
                const Point2 n{-d.y / len, d.x / len};
                const double h = g.width / 2;
                const double side = std::atan2(n.y, n.x);
                out.push_back(segment(g.start + n * h, g.end + n * h, id, K::Entity, index));
                out.push_back(segment(g.end - n * h, g.start - n * h, id, K::Entity, index));
                out.push_back(arc(g.end, h, side, -std::numbers::pi, id, K::Entity, index));
                out.push_back(arc(g.start, h, side, std::numbers::pi, id, K::Entity, index));
            } else if constexpr (std::is_same_v<T, SketchSpline>) {
                if (g.points.size() < 2) return;
                CurvePiece piece;
                piece.shape = CurvePiece::Polyline;
                piece.points = sampleSpline(g, deflection);
                piece.reference = id;
                piece.refKind = K::Entity;
                piece.entity = index;
                setBox(piece);
                out.push_back(std::move(piece));
            } else if constexpr (std::is_same_v<T, SketchText>) {
                // One closed polyline a glyph contour; text that can't be laid out
                // (its font gone, say) has none.
                auto layout = text::layoutTextForSketch(g, sketch);
                if (!layout) return;
                for (const text::Contour& contour : (*layout)->contours) {
                    CurvePiece piece;
                    piece.shape = CurvePiece::Polyline;
                    for (const text::OutlinePiece& part : contour.pieces)
                        appendOutline(part, deflection, piece.points);
                    if (piece.points.size() < 2) continue;
                    piece.reference = id;
                    piece.refKind = K::Entity;
                    piece.entity = index;
                    setBox(piece);
                    out.push_back(std::move(piece));
                }
            }
        },
        e.geometry);
    return out;
}

Point2 nearestOnPiece(const CurvePiece& piece, Point2 p, bool* inside) {
    if (inside) *inside = true;
    auto onSegment = [](Point2 a, Point2 b, Point2 q) {
        const Point2 d = b - a;
        const double dd = dot(d, d);
        const double t = dd > 0 ? std::clamp(dot(q - a, d) / dd, 0.0, 1.0) : 0.0;
        return a + d * t;
    };
    switch (piece.shape) {
    case CurvePiece::Segment:
        return onSegment(piece.a, piece.b, p);
    case CurvePiece::Polyline: {
        Point2 best = piece.points.empty() ? p : piece.points.front();
        double bestDistance = length(best - p);
        for (std::size_t i = 1; i < piece.points.size(); ++i) {
            const Point2 q = onSegment(piece.points[i - 1], piece.points[i], p);
            const double d = length(q - p);
            if (d < bestDistance) {
                bestDistance = d;
                best = q;
            }
        }
        return best;
    }
    case CurvePiece::Arc: {
        const Point2 d = p - piece.center;
        const double angle = length(d) > 0 ? std::atan2(d.y, d.x) : piece.start;
        const bool full = std::abs(piece.sweep) >= kTwoPi - 1e-12;
        const double along = piece.sweep >= 0 ? positiveAngle(angle - piece.start)
                                              : positiveAngle(piece.start - angle);
        if (full || along <= std::abs(piece.sweep)) return polar(piece.center, piece.radius, angle);
        if (inside) *inside = false;
        const Point2 first = polar(piece.center, piece.radius, piece.start);
        const Point2 last = polar(piece.center, piece.radius, piece.start + piece.sweep);
        return length(first - p) <= length(last - p) ? first : last;
    }
    }
    return p;
}

std::vector<Point2> pieceOutline(const CurvePiece& piece, double deflection) {
    switch (piece.shape) {
    case CurvePiece::Segment:
        return {piece.a, piece.b};
    case CurvePiece::Polyline:
        return piece.points;
    case CurvePiece::Arc: {
        // The chord error of n steps over the sweep is r (1 − cos(sweep / 2n)).
        const double r = std::max(piece.radius, 1e-12);
        const double ratio = std::clamp(1 - deflection / r, -1.0, 1.0);
        const double step = std::max(2 * std::acos(ratio), 1e-3);
        const int n = std::clamp(static_cast<int>(std::ceil(std::abs(piece.sweep) / step)), 8, 720);
        std::vector<Point2> out;
        out.reserve(static_cast<std::size_t>(n + 1));
        for (int i = 0; i <= n; ++i)
            out.push_back(polar(piece.center, piece.radius, piece.start + piece.sweep * i / n));
        return out;
    }
    }
    return {};
}

void SketchScene::rebuild(const std::vector<SketchEntity>& entities, double pixel) {
    entities_ = entities;
    points_ = namedPoints(entities_);
    pointEntity_.clear();
    std::unordered_map<std::string, int> index;
    for (std::size_t i = 0; i < entities_.size(); ++i) index[entities_[i].id] = static_cast<int>(i);
    for (const NamedPoint& p : points_) {
        const auto it = index.find(p.reference.substr(0, p.reference.find('.')));
        pointEntity_.push_back(it == index.end() ? -1 : it->second);
    }
    points_.push_back({"Origin", {0, 0}});
    pointEntity_.push_back(-1);
    pieces_.clear();
    sampledPixel_ = std::max(pixel, 1e-6);
    for (std::size_t i = 0; i < entities_.size(); ++i)
        for (CurvePiece& piece :
             entityPieces(entities_[i], static_cast<int>(i), sampledPixel_ / 2, &entities_))
            pieces_.push_back(std::move(piece));
}

void SketchScene::resample(double pixel) {
    pixel = std::max(pixel, 1e-6);
    // Only a zoom well past the sampling calls for new samples.
    if (pixel >= sampledPixel_ / 4) return;
    sampledPixel_ = pixel;
    for (CurvePiece& piece : pieces_) {
        if (piece.shape != CurvePiece::Polyline) continue;
        const SketchEntity& e = entities_[static_cast<std::size_t>(piece.entity)];
        // A spline is one piece; text, a piece a contour, keeps the samples it has.
        if (e.kind() != EntityKind::Spline) continue;
        std::vector<CurvePiece> fresh = entityPieces(e, piece.entity, pixel / 2);
        if (!fresh.empty()) piece = std::move(fresh.front());
    }
}

int SketchScene::entityIndex(const std::string& id) const {
    for (std::size_t i = 0; i < entities_.size(); ++i)
        if (entities_[i].id == id) return static_cast<int>(i);
    return -1;
}

Hit SketchScene::nearestPoint(Point2 cursor, double pixel, double tolerance) const {
    Hit best;
    const double reach = tolerance * pixel;
    double bestDistance = reach;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const Point2 p = points_[i].position;
        if (std::abs(p.x - cursor.x) > reach || std::abs(p.y - cursor.y) > reach) continue;
        const double d = length(p - cursor);
        if (d > bestDistance) continue;
        bestDistance = d;
        best.kind = Hit::Point;
        best.reference = points_[i].reference;
        best.refKind = ResolvedRef::Point;
        best.entity = pointEntity_[i];
        best.position = p;
        best.pixels = d / pixel;
    }
    return best;
}

Hit SketchScene::nearestCurve(Point2 cursor, double pixel, double tolerance, unsigned kinds,
                              bool insideArcsOnly) const {
    Hit best;
    const double reach = tolerance * pixel;
    double bestDistance = reach;
    for (const CurvePiece& piece : pieces_) {
        const unsigned kind = piece.refKind == ResolvedRef::Line     ? PickLines
                              : piece.refKind == ResolvedRef::Circle ? PickCircles
                                                                     : PickShapes;
        if (!(kinds & kind)) continue;
        if (cursor.x < piece.low.x - reach || cursor.x > piece.high.x + reach ||
            cursor.y < piece.low.y - reach || cursor.y > piece.high.y + reach)
            continue;
        bool inside = true;
        const Point2 foot = nearestOnPiece(piece, cursor, &inside);
        if (insideArcsOnly && !inside) continue;
        const double d = length(foot - cursor);
        if (d > bestDistance) continue;
        bestDistance = d;
        best.kind = Hit::Curve;
        best.reference = piece.reference;
        best.refKind = piece.refKind;
        best.entity = piece.entity;
        best.position = foot;
        best.pixels = d / pixel;
    }
    return best;
}

Hit SketchScene::pick(Point2 cursor, double pixel, unsigned kinds) const {
    pixel = std::max(pixel, 1e-6);
    if (kinds & PickPoints)
        if (Hit hit = nearestPoint(cursor, pixel, kPointPickPixels)) return hit;
    if (Hit hit = nearestCurve(cursor, pixel, kCurvePickPixels, kinds, false)) return hit;
    if (!(kinds & PickLines)) return {};
    const double toX = std::abs(cursor.y) / pixel, toY = std::abs(cursor.x) / pixel;
    if (std::min(toX, toY) > kCurvePickPixels) return {};
    Hit axis;
    axis.kind = Hit::Axis;
    axis.refKind = ResolvedRef::Line;
    const bool xAxis = toX <= toY;
    axis.reference = xAxis ? "XAxis" : "YAxis";
    axis.position = xAxis ? Point2{cursor.x, 0} : Point2{0, cursor.y};
    axis.pixels = std::min(toX, toY);
    return axis;
}

Hit SketchScene::snap(Point2 cursor, double pixel) const {
    pixel = std::max(pixel, 1e-6);
    if (Hit hit = nearestPoint(cursor, pixel, kSnapPixels)) return hit;
    return nearestCurve(cursor, pixel, kSnapPixels, PickAll, true);
}

double gridStep(units::Length unit) {
    return unit == units::Length::Inches || unit == units::Length::Feet ? 1.27 : 1.0;
}

Point2 roundToGrid(Point2 p, double step) {
    // A whole number of steps, cleaned of the last bits (3 × 1.27 is 3.81, not 3.8100000000000005).
    auto round = [step](double v) { return std::round(std::round(v / step) * step * 1e9) / 1e9; };
    return {round(p.x), round(p.y)};
}

} // namespace cad::ui

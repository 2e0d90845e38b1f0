// Scaling and placing an imported drawing and making its sketch entities. Endpoints
// that meet are made to meet exactly (a line or spline end moves onto its arc or
// curve neighbour) so the joining coincidences already hold and nothing moves when
// the sketch is solved.
#include "sketch/drawingimport/DrawingToSketch.h"

#include "sketch/SketchIds.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <set>

namespace cad::drawingimport {

namespace {

// Pieces shorter than this (mm, once scaled) are dropped.
constexpr double kShortest = 1e-6;
// More entities than this at once would bury the sketch.
constexpr std::size_t kMostPieces = 200000;
// Past this size (mm) a drawing has been scaled by mistake.
constexpr double kLargest = 1e7;

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

double distance(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y); }

Vec2 cubicAt(const std::vector<Vec2>& p, double t) {
    const double u = 1 - t;
    const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
    return {a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x,
            a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y};
}

Vec2 quadraticAt(const std::vector<Vec2>& p, double t) {
    const double u = 1 - t;
    return {u * u * p[0].x + 2 * u * t * p[1].x + t * t * p[2].x,
            u * u * p[0].y + 2 * u * t * p[1].y + t * t * p[2].y};
}

bool wellFormed(const Piece& piece) {
    switch (piece.kind) {
    case PieceKind::Segment:
        return piece.points.size() == 2;
    case PieceKind::Cubic:
        return piece.points.size() == 4;
    case PieceKind::Quadratic:
        return piece.points.size() == 3;
    case PieceKind::Polyline:
    case PieceKind::Spline:
        return !piece.points.empty();
    case PieceKind::Point:
        return piece.points.size() == 1;
    case PieceKind::Arc:
    case PieceKind::Circle:
        return true;
    }
    return false;
}

struct Box {
    double minX = std::numeric_limits<double>::infinity(), minY = minX;
    double maxX = -minX, maxY = -minX;

    void add(Vec2 p) {
        minX = std::min(minX, p.x);
        maxX = std::max(maxX, p.x);
        minY = std::min(minY, p.y);
        maxY = std::max(maxY, p.y);
    }
    bool empty() const { return !(minX <= maxX); }
};

// Where a Bézier's coordinate turns (its derivative's roots inside (0, 1)).
void addBezierTurns(const std::vector<Vec2>& p, Box& box) {
    auto roots = [](double a, double b, double c, auto&& use) { // a t² + b t + c = 0
        if (std::abs(a) < 1e-12) {
            if (std::abs(b) > 1e-12) use(-c / b);
            return;
        }
        const double disc = b * b - 4 * a * c;
        if (disc < 0) return;
        use((-b + std::sqrt(disc)) / (2 * a));
        use((-b - std::sqrt(disc)) / (2 * a));
    };
    for (int axis = 0; axis < 2; ++axis) {
        auto c = [&](std::size_t i) { return axis == 0 ? p[i].x : p[i].y; };
        auto use = [&](double t) {
            if (t > 0 && t < 1) box.add(p.size() == 4 ? cubicAt(p, t) : quadraticAt(p, t));
        };
        if (p.size() == 4)
            roots(3 * (-c(0) + 3 * c(1) - 3 * c(2) + c(3)), 6 * (c(0) - 2 * c(1) + c(2)),
                  3 * (c(1) - c(0)), use);
        else
            roots(0, 2 * (c(0) - 2 * c(1) + c(2)), 2 * (c(1) - c(0)), use);
    }
}

void addArc(const Piece& piece, Box& box) {
    auto at = [&](double degrees) {
        return Vec2{piece.center.x + piece.radius * std::cos(radians(degrees)),
                    piece.center.y + piece.radius * std::sin(radians(degrees))};
    };
    const double from = std::min(piece.startAngle, piece.startAngle + piece.sweepAngle);
    const double to = std::max(piece.startAngle, piece.startAngle + piece.sweepAngle);
    box.add(at(from));
    box.add(at(to));
    for (double quarter = std::ceil(from / 90) * 90; quarter < to; quarter += 90)
        box.add(at(quarter));
}

Box boundsOf(const ImportedDrawing& drawing) {
    Box box;
    for (const DrawingPath& path : drawing.paths)
        for (const Piece& piece : path.pieces) {
            if (!wellFormed(piece)) continue;
            switch (piece.kind) {
            case PieceKind::Arc:
                addArc(piece, box);
                break;
            case PieceKind::Circle:
                box.add({piece.center.x - piece.radius, piece.center.y - piece.radius});
                box.add({piece.center.x + piece.radius, piece.center.y + piece.radius});
                break;
            case PieceKind::Cubic:
            case PieceKind::Quadratic:
                box.add(piece.points.front());
                box.add(piece.points.back());
                addBezierTurns(piece.points, box);
                break;
            default:
                for (Vec2 p : piece.points) box.add(p);
            }
        }
    for (const DrawingText& text : drawing.texts) box.add(text.position);
    return box;
}

// The sketch's IDs, for new ones, and the first group number no entity uses.
struct SketchNames {
    NewIds ids;
    std::set<std::string, std::less<>> groups;

    SketchNames(const std::vector<SketchEntity>& entities,
                const std::vector<SketchConstraint>& constraints) {
        for (const SketchEntity& e : entities) {
            ids.use(e.id);
            groups.insert(e.group);
        }
        for (const SketchConstraint& c : constraints) ids.use(c.id);
    }
    std::string group() const {
        for (long long n = 1;; ++n)
            if (std::string id = "Group" + std::to_string(n); !groups.count(id)) return id;
    }
};

struct Placement {
    double scale = 1;
    Vec2 anchor, offset;
    Point2 operator()(Vec2 p) const {
        return {(p.x - anchor.x) * scale + offset.x, (p.y - anchor.y) * scale + offset.y};
    }
};

// Points with exact and near repeats left out.
std::vector<Point2> distinctPoints(const std::vector<Point2>& points) {
    std::vector<Point2> out;
    for (Point2 p : points)
        if (out.empty() || distance(out.back(), p) > kShortest) out.push_back(p);
    return out;
}

// Whether every point lies on the straight segment from the first to the last, in order.
bool straight(const std::vector<Point2>& points) {
    const Point2 a = points.front(), b = points.back();
    const double len = distance(a, b);
    if (len <= kShortest) return false;
    const double ux = (b.x - a.x) / len, uy = (b.y - a.y) / len;
    double along = 0;
    for (Point2 p : points) {
        const double s = (p.x - a.x) * ux + (p.y - a.y) * uy;
        const double off = (p.x - a.x) * uy - (p.y - a.y) * ux;
        if (std::abs(off) > 1e-9 * len + 1e-12 || s < along - 1e-9 * len) return false;
        along = s;
    }
    return true;
}

std::optional<SketchGeometry> geometryOf(const Piece& piece, const Placement& place) {
    const double s = place.scale;
    auto through = [&](const std::vector<Point2>& raw) -> std::optional<SketchGeometry> {
        std::vector<Point2> points = distinctPoints(raw);
        if (points.size() < 2) return std::nullopt;
        if (straight(points)) return SketchLine{points.front(), points.back()};
        return SketchSpline{std::move(points), false};
    };
    std::vector<Point2> placed;
    for (Vec2 p : piece.points) placed.push_back(place(p));
    switch (piece.kind) {
    case PieceKind::Segment:
        if (distance(placed[0], placed[1]) < kShortest) return std::nullopt;
        return SketchLine{placed[0], placed[1]};
    case PieceKind::Arc: {
        const double r = piece.radius * s;
        if (!(r >= kShortest) || std::abs(radians(piece.sweepAngle)) * r < kShortest)
            return std::nullopt;
        if (std::abs(piece.sweepAngle) >= 359.999999) return SketchCircle{place(piece.center), r};
        return SketchArc{place(piece.center), r, piece.startAngle, piece.sweepAngle};
    }
    case PieceKind::Circle: {
        const double r = piece.radius * s;
        if (!(r >= kShortest)) return std::nullopt;
        return SketchCircle{place(piece.center), r};
    }
    case PieceKind::Cubic:
    case PieceKind::Quadratic: {
        std::vector<Point2> samples;
        for (int k = 0; k <= kBezierIntervals; ++k) {
            const double t = static_cast<double>(k) / kBezierIntervals;
            samples.push_back(place(piece.kind == PieceKind::Cubic ? cubicAt(piece.points, t)
                                                                   : quadraticAt(piece.points, t)));
        }
        samples.front() = placed.front(); // the ends exactly
        samples.back() = placed.back();
        if (straight(placed)) return SketchLine{placed.front(), placed.back()};
        return through(samples);
    }
    case PieceKind::Polyline:
    case PieceKind::Spline:
        return through(placed);
    case PieceKind::Point:
        return SketchPoint{placed[0]};
    }
    return std::nullopt;
}

struct Ends {
    Point2 start, end;
    std::string startPart, endPart;
};

std::optional<Ends> endsOf(const SketchGeometry& g) {
    if (auto* l = std::get_if<SketchLine>(&g)) return Ends{l->start, l->end, "start", "end"};
    if (auto* a = std::get_if<SketchArc>(&g)) {
        auto at = [&](double deg) {
            return Point2{a->center.x + a->radius * std::cos(radians(deg)),
                          a->center.y + a->radius * std::sin(radians(deg))};
        };
        return Ends{at(a->startAngle), at(a->startAngle + a->sweepAngle), "start", "end"};
    }
    if (auto* s = std::get_if<SketchSpline>(&g))
        return Ends{s->points.front(), s->points.back(), "point0",
                    "point" + std::to_string(s->points.size() - 1)};
    return std::nullopt;
}

// Moves a line's or spline's end (start when `atStart`) exactly onto `to`.
bool snap(SketchGeometry& g, bool atStart, Point2 to) {
    if (auto* l = std::get_if<SketchLine>(&g)) {
        (atStart ? l->start : l->end) = to;
        return true;
    }
    if (auto* s = std::get_if<SketchSpline>(&g)) {
        (atStart ? s->points.front() : s->points.back()) = to;
        return true;
    }
    return false;
}

struct Join {
    std::size_t from, to; // new entity indices: from's end meets to's start
};

} // namespace

std::optional<DrawingExtent> drawingExtent(const ImportedDrawing& drawing) {
    const Box box = boundsOf(drawing);
    if (box.empty()) return std::nullopt;
    return DrawingExtent{box.maxX - box.minX, box.maxY - box.minY};
}

Result<DrawingToSketchResult> drawingToSketch(const ImportedDrawing& drawing,
                                              std::vector<SketchEntity>& entities,
                                              std::vector<SketchConstraint>& constraints,
                                              const DrawingToSketchOptions& options) {
    std::size_t pieces = drawing.texts.size();
    for (const DrawingPath& path : drawing.paths) pieces += path.pieces.size();
    if (pieces > kMostPieces)
        return fail("The drawing has " + std::to_string(pieces) + " pieces; at most " +
                    std::to_string(kMostPieces) + " can be imported at a time.");
    const Box box = boundsOf(drawing);
    if (box.empty()) return fail("The drawing is empty.");
    const double drawingWidth = box.maxX - box.minX, drawingHeight = box.maxY - box.minY;
    double scale = options.scale;
    if (options.width) {
        if (!(drawingWidth > 0)) return fail("The drawing has no width to scale.");
        scale = *options.width / drawingWidth;
    }
    if (!(scale > 0) || !std::isfinite(scale))
        return fail("The scale must be a number greater than zero.");
    const double extent = std::max({drawingWidth, drawingHeight, std::abs(box.minX),
                                    std::abs(box.maxX), std::abs(box.minY), std::abs(box.maxY)}) *
                          scale;
    if (!(extent <= kLargest) || !(std::abs(options.x) <= kLargest) ||
        !(std::abs(options.y) <= kLargest))
        return fail("At that scale the drawing would be too large for a sketch.");

    Placement place;
    place.scale = scale;
    place.offset = {options.x, options.y};
    if (options.place == DrawingPlace::Corner) place.anchor = {box.minX, box.minY};
    if (options.place == DrawingPlace::Center)
        place.anchor = {(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2};

    // The geometry first, with the joins between neighbours that meet.
    std::vector<SketchGeometry> made;
    std::vector<Join> joins;
    const double meet = std::max(1e-6, 1e-9 * extent);
    for (const DrawingPath& path : drawing.paths) {
        std::vector<std::size_t> chain; // joinable entities of this path, in order
        for (const Piece& piece : path.pieces) {
            if (!wellFormed(piece)) continue;
            std::optional<SketchGeometry> g = geometryOf(piece, place);
            if (!g) continue;
            made.push_back(std::move(*g));
            if (endsOf(made.back())) chain.push_back(made.size() - 1);
        }
        auto join = [&](std::size_t a, std::size_t b) {
            const Ends ea = *endsOf(made[a]), eb = *endsOf(made[b]);
            if (distance(ea.end, eb.start) > meet) return;
            // Lines and splines give way to arcs, whose ends follow their angles.
            if (!snap(made[b], true, ea.end)) snap(made[a], false, eb.start);
            joins.push_back({a, b});
        };
        for (std::size_t k = 0; k + 1 < chain.size(); ++k) join(chain[k], chain[k + 1]);
        if (path.closed && chain.size() > 1) join(chain.back(), chain.front());
    }
    for (const DrawingText& text : drawing.texts) {
        if (text.text.empty() || !(text.height * scale >= kShortest)) continue;
        SketchText t;
        t.text = text.text;
        t.height = text.height * scale;
        t.position = place(text.position);
        t.angle = text.rotation;
        made.push_back(std::move(t));
    }

    SketchNames names(entities, constraints);
    NewIds& ids = names.ids;
    DrawingToSketchResult result;
    result.group = names.group();
    std::vector<SketchEntity> added;
    added.reserve(made.size());
    std::vector<bool> kept(made.size(), true);
    for (std::size_t k = 0; k < made.size(); ++k) {
        SketchEntity entity;
        entity.geometry = std::move(made[k]);
        entity.construction = options.construction;
        entity.group = result.group;
        // A spline whose sampled points OpenCASCADE can't interpolate counts as degenerate.
        if (!validateEntity(entity)) {
            kept[k] = false;
            added.emplace_back();
            continue;
        }
        entity.id = ids.next(entityKindName(entity));
        added.push_back(std::move(entity));
    }
    std::vector<SketchConstraint> joined;
    joined.reserve(joins.size());
    for (const Join& j : joins) {
        if (!kept[j.from] || !kept[j.to]) continue;
        const Ends a = *endsOf(added[j.from].geometry), b = *endsOf(added[j.to].geometry);
        SketchConstraint c;
        c.type = ConstraintType::Coincident;
        c.id = ids.next(constraintPrefix(c.type));
        c.refs = {{added[j.from].id, a.endPart}, {added[j.to].id, b.startPart}};
        joined.push_back(std::move(c));
    }
    Box placed;
    std::size_t count = 0;
    for (std::size_t k = 0; k < added.size(); ++k)
        if (kept[k]) ++count;
    if (count == 0) return fail("Nothing in the drawing became sketch geometry.");

    entities.reserve(entities.size() + count);
    for (std::size_t k = 0; k < added.size(); ++k)
        if (kept[k]) entities.push_back(std::move(added[k]));
    constraints.insert(constraints.end(), std::make_move_iterator(joined.begin()),
                       std::make_move_iterator(joined.end()));
    result.curves = count;
    result.width = drawingWidth * scale;
    result.height = drawingHeight * scale;
    return result;
}

} // namespace cad::drawingimport

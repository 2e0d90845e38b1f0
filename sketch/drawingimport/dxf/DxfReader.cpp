// Turns DXF entities into paths and texts: each entity placed by its object
// coordinate system, the blocks it inserts and the file's unit.
#include "sketch/drawingimport/dxf/DxfReader.h"

#include "sketch/drawingimport/dxf/DxfCurves.h"
#include "sketch/drawingimport/dxf/DxfEntities.h"
#include "sketch/drawingimport/dxf/DxfText.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>

namespace cad::drawingimport {

namespace {

using namespace dxf;

constexpr int kMostInsertDepth = 16;
// Block arrays nest; past this many points kept, or groups read again and again for
// the copies, the file is refused instead of expanded.
constexpr std::size_t kMostPoints = 2'000'000;
constexpr std::size_t kMostGroupsRead = 8'000'000;
constexpr std::size_t kVisitCost = 16; // placing an entity costs about as much as reading 16 groups
constexpr double kFarthest = 1e12;     // mm; anything beyond is damage, not a drawing

struct PolyVertex {
    Vec2 at;
    double bulge = 0;
};

bool same(Vec2 p, Vec2 q) { return p.x == q.x && p.y == q.y; }

bool reasonable(double v) { return std::isfinite(v) && std::abs(v) <= kFarthest; }

bool reasonable(const Piece& piece) {
    for (const Vec2& p : piece.points) {
        if (!reasonable(p.x) || !reasonable(p.y)) return false;
    }
    return reasonable(piece.center.x) && reasonable(piece.center.y) && reasonable(piece.radius) &&
           reasonable(piece.startAngle) && reasonable(piece.sweepAngle);
}

class Emitter {
public:
    Emitter(const DxfFile& file, ImportedDrawing& out, const ReadLimits& limits)
        : file_(file), out_(out), mostPoints_(limits.of(kMostPoints)),
          mostGroupsRead_(limits.of(kMostGroupsRead)) {}

    bool tooLarge() const { return tooLarge_; }

    void entities(const std::vector<Entity>& list, const Affine& t, int depth) {
        for (const Entity& e : list) {
            if (tooLarge_) return;
            entity(e, t, depth);
        }
    }

private:
    bool spend(std::size_t points) {
        points_ += points;
        if (points_ > mostPoints_) tooLarge_ = true;
        return !tooLarge_;
    }

    bool read(const Entity& e) {
        groupsRead_ += kVisitCost + e.end - e.begin;
        for (const Entity& v : e.vertices) groupsRead_ += 1 + v.end - v.begin;
        if (groupsRead_ > mostGroupsRead_) tooLarge_ = true;
        return !tooLarge_;
    }

    void keep(DrawingPath path) {
        for (const Piece& piece : path.pieces) {
            if (!reasonable(piece)) return;
            if (!spend(piece.points.size())) return;
        }
        if (!path.pieces.empty()) out_.paths.push_back(std::move(path));
    }

    void keepOne(Piece piece, bool closed = false) {
        DrawingPath path;
        path.pieces.push_back(std::move(piece));
        path.closed = closed;
        keep(std::move(path));
    }

    void entity(const Entity& e, const Affine& parent, int depth) {
        if (e.kind == EntityKind::Other) return; // ignored types cost nothing to skip
        if (!spend(1) || !read(e)) return;
        Fields f(file_.groups, e);
        if (f.integer(60, 0) == 1) return; // invisible
        // A negative extrusion direction: the object coordinate system faces the other
        // way, which mirrors x. Circles, arcs, 2D polylines, TEXT and block references
        // are given in it; lines, points, splines, ellipses and MTEXT in world
        // coordinates, where it only turns an ellipse the other way round.
        const bool flipped = f.number(230, 1) < 0;
        const Affine ocs = flipped ? parent * Affine::scaling(-1, 1) : parent;
        if (f.damaged()) return;
        switch (e.kind) {
        case EntityKind::Line:
            return line(f, parent);
        case EntityKind::Circle:
            return circle(f, ocs);
        case EntityKind::Arc:
            return arc(f, ocs);
        case EntityKind::LwPolyline:
            return lwPolyline(e, f, ocs);
        case EntityKind::Polyline:
            return polyline(e, f, (f.integer(70, 0) & 8) != 0 ? parent : ocs);
        case EntityKind::Spline:
            return spline(e, f, parent);
        case EntityKind::Ellipse:
            return ellipse(f, parent, flipped);
        case EntityKind::Point:
            return point(f, parent);
        case EntityKind::Text:
            return text(f, ocs, false);
        case EntityKind::MText:
            return text(f, parent, true);
        case EntityKind::Insert:
            return insert(f, ocs, depth);
        case EntityKind::Other:
            return;
        }
    }

    void line(Fields& f, const Affine& t) {
        const Vec2 from = f.point(10);
        const Vec2 to = f.point(11);
        if (f.damaged()) return;
        Piece piece;
        piece.points = {t.apply(from), t.apply(to)};
        keepOne(std::move(piece));
    }

    void circle(Fields& f, const Affine& t) {
        const Vec2 center = f.point(10);
        const double radius = f.number(40, 0);
        if (f.damaged() || !(radius > 0)) return;
        fullCircle(center, radius, t);
    }

    void fullCircle(Vec2 center, double radius, const Affine& t) {
        if (!t.isSimilarity()) {
            Piece piece = placedArc(center, radius, 0, 360, t);
            piece.points.back() = piece.points.front();
            keepOne(std::move(piece), true);
            return;
        }
        const Piece arc = placedArc(center, radius, 0, 360, t);
        Piece piece;
        piece.kind = PieceKind::Circle;
        piece.center = arc.center;
        piece.radius = arc.radius;
        keepOne(std::move(piece));
    }

    void arc(Fields& f, const Affine& t) {
        const Vec2 center = f.point(10);
        const double radius = f.number(40, 0);
        const double start = f.number(50, 0);
        const double end = f.number(51, 360);
        if (f.damaged() || !(radius > 0)) return;
        // Counter-clockwise from start to end, across 360 when end is smaller.
        double sweep = std::fmod(end - start, 360.0);
        if (sweep < 0) sweep += 360;
        if (sweep < 1e-9) return fullCircle(center, radius, t);
        keepOne(placedArc(center, radius, start, sweep, t));
    }

    void lwPolyline(const Entity& e, Fields& f, const Affine& t) {
        std::vector<PolyVertex> vertices;
        for (std::size_t i = e.begin; i < e.end; ++i) {
            const Group& g = file_.groups[i];
            if (g.code != 10 && g.code != 20 && g.code != 42) continue;
            const std::optional<double> v = groupNumber(g.value);
            if (!v) return;
            if (g.code == 10)
                vertices.push_back({{*v, 0}, 0});
            else if (vertices.empty())
                continue;
            else if (g.code == 20)
                vertices.back().at.y = *v;
            else
                vertices.back().bulge = *v;
        }
        polylinePath(vertices, (f.integer(70, 0) & 1) != 0, t);
    }

    void polyline(const Entity& e, Fields& f, const Affine& t) {
        const long long flags = f.integer(70, 0);
        if (f.damaged() || (flags & (16 | 64)) != 0) return; // 3D meshes
        std::vector<PolyVertex> vertices;
        for (const Entity& v : e.vertices) {
            Fields vf(file_.groups, v);
            PolyVertex vertex{vf.point(10), vf.number(42, 0)};
            const long long vflags = vf.integer(70, 0);
            if (vf.damaged()) return;
            if ((vflags & 16) != 0) continue; // a spline frame's control point
            vertices.push_back(vertex);
        }
        polylinePath(vertices, (flags & 1) != 0, t);
    }

    void polylinePath(const std::vector<PolyVertex>& vertices, bool closed, const Affine& t) {
        const std::size_t n = vertices.size();
        if (n < 2) return;
        DrawingPath path;
        path.closed = closed;
        const std::size_t segments = closed ? n : n - 1;
        for (std::size_t i = 0; i < segments; ++i) {
            const PolyVertex& from = vertices[i];
            const Vec2 to = vertices[(i + 1) % n].at;
            if (same(from.at, to)) continue;
            Vec2 center;
            double radius = 0, start = 0, sweep = 0;
            if (bulgeArc(from.at, to, from.bulge, center, radius, start, sweep)) {
                path.pieces.push_back(placedArc(center, radius, start, sweep, t));
            } else {
                Piece piece;
                piece.points = {t.apply(from.at), t.apply(to)};
                path.pieces.push_back(std::move(piece));
            }
        }
        keep(std::move(path));
    }

    void spline(const Entity& e, Fields& f, const Affine& t) {
        std::vector<Vec2> fits;
        BSpline curve;
        for (std::size_t i = e.begin; i < e.end; ++i) {
            const Group& g = file_.groups[i];
            const bool used = g.code == 10 || g.code == 20 || g.code == 11 || g.code == 21 ||
                              g.code == 40 || g.code == 41;
            if (!used) continue;
            const std::optional<double> v = groupNumber(g.value);
            if (!v) return;
            switch (g.code) {
            case 10:
                curve.controls.push_back({*v, 0});
                break;
            case 20:
                if (!curve.controls.empty()) curve.controls.back().y = *v;
                break;
            case 11:
                fits.push_back({*v, 0});
                break;
            case 21:
                if (!fits.empty()) fits.back().y = *v;
                break;
            case 40:
                curve.knots.push_back(*v);
                break;
            default:
                curve.weights.push_back(*v);
                break;
            }
        }
        curve.degree = static_cast<int>(std::clamp<long long>(f.integer(71, 3), 1, 11));
        const bool closed = (f.integer(70, 0) & 1) != 0;
        if (f.damaged()) return;
        Piece piece;
        if (fits.size() >= 2) {
            piece.kind = PieceKind::Spline;
            for (const Vec2& p : fits) piece.points.push_back(t.apply(p));
        } else {
            piece.kind = PieceKind::Polyline;
            piece.points = sampledBSpline(curve, t);
            if (piece.points.size() < 2) return;
        }
        const bool ends = same(piece.points.front(), piece.points.back());
        if (closed && !ends) piece.points.push_back(piece.points.front());
        keepOne(std::move(piece), closed || ends);
    }

    void ellipse(Fields& f, const Affine& t, bool flipped) {
        const Vec2 center = f.point(10);
        const Vec2 major = f.point(11);
        const double ratio = f.number(40, 1);
        const double start = f.number(41, 0);
        const double end = f.number(42, 2 * std::numbers::pi);
        if (f.damaged() || !(ratio > 0) || ratio > 1e6 || std::hypot(major.x, major.y) == 0) return;
        Piece piece;
        piece.kind = PieceKind::Polyline;
        piece.points = sampledEllipse(center, major, flipped ? -ratio : ratio, start, end, t);
        if (piece.points.size() < 2) return;
        const double sweep = std::abs(std::fmod(end - start, 2 * std::numbers::pi));
        const bool full = sweep < 1e-9 || sweep > 2 * std::numbers::pi - 1e-9;
        if (full) piece.points.back() = piece.points.front();
        keepOne(std::move(piece), full);
    }

    void point(Fields& f, const Affine& t) {
        const Vec2 at = f.point(10);
        if (f.damaged()) return;
        Piece piece;
        piece.kind = PieceKind::Point;
        piece.points = {t.apply(at)};
        keepOne(std::move(piece));
    }

    void text(Fields& f, const Affine& t, bool multiline) {
        DrawingText out;
        Vec2 at = f.point(10);
        double height = f.number(40, 2.5);
        double rotation = f.number(50, 0);
        if (multiline && f.text(11).size() > 0) {
            const Vec2 axis = f.point(11);
            if (axis.x != 0 || axis.y != 0) rotation = degrees(std::atan2(axis.y, axis.x));
        }
        std::string raw;
        if (multiline) {
            // Long MTEXT arrives in 250-character pieces (group 3) before its end (group 1).
            for (std::size_t i = f.begin(); i < f.end(); ++i) {
                if (file_.groups[i].code == 3) raw += file_.groups[i].value;
            }
        }
        raw += f.text(1);
        if (f.damaged() || !(height > 0)) return;
        out.text = multiline ? plainMText(raw) : plainText(raw);
        if (out.text.empty()) return;
        if (multiline) {
            // The attachment point (71: 1-3 top, 4-6 middle, 7-9 bottom) to the first
            // line's baseline, with lines 5/3 of the height apart.
            const long long attach = f.integer(71, 1);
            const double lines =
                1.0 + static_cast<double>(std::count(out.text.begin(), out.text.end(), '\n'));
            const double block = height * (1 + (lines - 1) * 5.0 / 3.0);
            double down = height;
            if (attach >= 4 && attach <= 6)
                down = height - block / 2;
            else if (attach >= 7 && attach <= 9)
                down = height - block;
            const double r = radians(rotation);
            at = {at.x + down * std::sin(r), at.y - down * std::cos(r)};
        }
        const double r = radians(rotation);
        const Vec2 along = t.applyLinear({std::cos(r), std::sin(r)});
        const Vec2 up = t.applyLinear({-std::sin(r), std::cos(r)});
        out.position = t.apply(at);
        out.height = height * std::hypot(up.x, up.y);
        out.rotation = degrees(std::atan2(along.y, along.x));
        if (!reasonable(out.position.x) || !reasonable(out.position.y) || !reasonable(out.height) ||
            !(out.height > 0) || !spend(1))
            return;
        out_.texts.push_back(std::move(out));
    }

    void insert(Fields& f, const Affine& t, int depth) {
        if (depth >= kMostInsertDepth) return;
        const auto found = file_.blocks.find(upperCase(f.text(2)));
        if (found == file_.blocks.end()) return;
        const Block& block = found->second;
        const Vec2 at = f.point(10);
        const double sx = f.number(41, 1);
        const double sy = f.number(42, 1);
        const double rotation = f.number(50, 0);
        const long long columns = std::max(1LL, f.integer(70, 1));
        const long long rows = std::max(1LL, f.integer(71, 1));
        const double columnGap = f.number(44, 0);
        const double rowGap = f.number(45, 0);
        if (f.damaged() || sx == 0 || sy == 0) return;
        const Affine placed = t * Affine::translation(at.x, at.y) * Affine::rotation(rotation);
        const Affine shape =
            Affine::scaling(sx, sy) * Affine::translation(-block.base.x, -block.base.y);
        for (long long row = 0; row < rows && !tooLarge_; ++row) {
            for (long long column = 0; column < columns && !tooLarge_; ++column) {
                // Even a block of ignored entities costs a step for each of them.
                groupsRead_ += kVisitCost + block.entities.size();
                if (groupsRead_ > mostGroupsRead_) tooLarge_ = true;
                if (!spend(1)) return;
                const Affine cell = placed *
                                    Affine::translation(static_cast<double>(column) * columnGap,
                                                        static_cast<double>(row) * rowGap) *
                                    shape;
                entities(block.entities, cell, depth + 1);
            }
        }
    }

    const DxfFile& file_;
    ImportedDrawing& out_;
    std::size_t mostPoints_;
    std::size_t mostGroupsRead_;
    std::size_t points_ = 0;
    std::size_t groupsRead_ = 0;
    bool tooLarge_ = false;
};

} // namespace

Result<ImportedDrawing> readDxfText(std::string_view bytes, const std::string& path,
                                    const ReadLimits& limits) {
    if (bytes.substr(0, 18) == "AutoCAD Binary DXF")
        return fail("Binary DXF isn't supported; save it as ASCII DXF.");
    Result<DxfFile> file = readDxfStructure(bytes);
    if (!file) return Error(file);
    ImportedDrawing drawing;
    Emitter emitter(*file, drawing, limits);
    const double unit = file->millimetresPerUnit;
    emitter.entities(file->entities, Affine::scaling(unit, unit), 0);
    if (emitter.tooLarge()) return fail(path + " has too many pieces to import.");
    if (drawing.paths.empty() && drawing.texts.empty())
        return fail(path + " has no geometry I can import.");
    return drawing;
}

Result<ImportedDrawing> readDxf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail("Couldn't open " + path);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) return fail("Couldn't open " + path);
    return readDxfText(bytes, path);
}

} // namespace cad::drawingimport

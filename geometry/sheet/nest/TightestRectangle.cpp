// Sampling a part's items, the monotone-chain hull and the edge-by-edge search for
// the turn with the smallest bounding box.
#include "geometry/sheet/nest/TightestRectangle.h"

#include "geometry/sheet/nest/TurnedItems.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace cad::nest {

using drawing::DrawingItem;
using drawing::DrawingPoint;
using drawing::ItemKind;

namespace {

constexpr double kPi = 3.14159265358979323846;

void addPoint(std::vector<DrawingPoint>& out, DrawingPoint p) {
    if (std::isfinite(p.x) && std::isfinite(p.y)) out.push_back(p);
}

// `segments` equal steps of `sweep` degrees from `start`, both ends included.
void addCirclePoints(std::vector<DrawingPoint>& out, const DrawingItem& item, double start,
                     double sweep, int segments) {
    const DrawingPoint c = item.points.front();
    for (int i = 0; i <= segments; ++i) {
        const double a = (start + sweep * i / segments) * kPi / 180;
        addPoint(out, {c.x + item.radius * std::cos(a), c.y + item.radius * std::sin(a)});
    }
}

double cross(DrawingPoint o, DrawingPoint a, DrawingPoint b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double boxArea(const std::vector<DrawingPoint>& points, double degrees) {
    double minX = std::numeric_limits<double>::max(), minY = minX;
    double maxX = std::numeric_limits<double>::lowest(), maxY = maxX;
    for (DrawingPoint p : points) {
        const DrawingPoint t = turnedPoint(p, degrees);
        minX = std::min(minX, t.x);
        maxX = std::max(maxX, t.x);
        minY = std::min(minY, t.y);
        maxY = std::max(maxY, t.y);
    }
    return (maxX - minX) * (maxY - minY);
}

} // namespace

std::vector<DrawingPoint> sampledPoints(const drawing::Drawing& drawing) {
    std::vector<DrawingPoint> out;
    for (const DrawingItem& item : drawing.items) {
        switch (item.kind) {
        case ItemKind::Line:
        case ItemKind::Polyline:
            for (DrawingPoint p : item.points) addPoint(out, p);
            break;
        case ItemKind::Circle:
            if (!item.points.empty()) addCirclePoints(out, item, 0, 360, 72);
            break;
        case ItemKind::Arc: {
            if (item.points.empty()) break;
            const double turn = item.endAngle - item.startAngle + 360;
            const double sweep = turn - 360 * std::floor(turn / 360);
            if (!std::isfinite(sweep)) break;
            if (sweep < 1e-9)
                addCirclePoints(out, item, item.startAngle, 360, 72);
            else
                addCirclePoints(out, item, item.startAngle, sweep,
                                std::max(static_cast<int>(sweep / 5), 4));
            break;
        }
        case ItemKind::Point:
            break;
        }
    }
    return out;
}

std::vector<DrawingPoint> convexHull(std::vector<DrawingPoint> points) {
    std::sort(points.begin(), points.end(), [](DrawingPoint a, DrawingPoint b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    if (points.size() < 3) return points;
    std::vector<DrawingPoint> hull;
    hull.reserve(points.size() + 1);
    auto chain = [&](auto begin, auto end, std::size_t floor) {
        for (auto it = begin; it != end; ++it) {
            while (hull.size() >= floor + 2 && cross(hull[hull.size() - 2], hull.back(), *it) <= 0)
                hull.pop_back();
            hull.push_back(*it);
        }
        hull.pop_back(); // the next chain starts where this one ends
    };
    chain(points.begin(), points.end(), 0);
    chain(points.rbegin(), points.rend(), hull.size());
    return hull;
}

double tightestAngle(const drawing::Drawing& drawing) {
    const std::vector<DrawingPoint> points = sampledPoints(drawing);
    if (points.size() < 3) return 0;
    const std::vector<DrawingPoint> hull = convexHull(points);
    const double reference = boxArea(hull, 0);
    double best = std::numeric_limits<double>::max();
    double bestAngle = 0;
    for (std::size_t i = 0; i < hull.size(); ++i) {
        const DrawingPoint a = hull[i], b = hull[(i + 1) % hull.size()];
        const double angle = -std::atan2(b.y - a.y, b.x - a.x) * 180 / kPi;
        const double area = boxArea(hull, angle);
        if (area < best) {
            best = area;
            bestAngle = angle;
        }
    }
    return best < 0.999999 * reference ? bestAngle : 0;
}

} // namespace cad::nest

// Turning and moving drawing items as rigid pieces, quarter turns without rounding.
#include "geometry/sheet/nest/TurnedItems.h"

#include <cmath>

namespace cad::nest {

using drawing::DrawingItem;
using drawing::DrawingPoint;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Turn {
    double cos;
    double sin;
};

Turn turnOf(double degrees) {
    const double quarters = degrees / 90;
    if (std::abs(quarters) < 1e9 && quarters == std::round(quarters)) {
        switch ((static_cast<long long>(quarters) % 4 + 4) % 4) {
        case 0:
            return {1, 0};
        case 1:
            return {0, 1};
        case 2:
            return {-1, 0};
        default:
            return {0, -1};
        }
    }
    const double radians = degrees * kPi / 180;
    return {std::cos(radians), std::sin(radians)};
}

DrawingPoint apply(const Turn& turn, DrawingPoint p) {
    return {p.x * turn.cos - p.y * turn.sin, p.x * turn.sin + p.y * turn.cos};
}

} // namespace

DrawingPoint turnedPoint(DrawingPoint point, double degrees) {
    return apply(turnOf(degrees), point);
}

DrawingItem turnedItem(const DrawingItem& item, double degrees, DrawingPoint shift) {
    const Turn turn = turnOf(degrees);
    DrawingItem out = item;
    for (DrawingPoint& p : out.points) {
        p = apply(turn, p);
        p.x += shift.x;
        p.y += shift.y;
    }
    if (out.kind == drawing::ItemKind::Arc) {
        out.startAngle += degrees;
        out.endAngle += degrees;
    }
    return out;
}

void turnDrawing(drawing::Drawing& drawing, double degrees, DrawingPoint shift) {
    for (DrawingItem& item : drawing.items) item = turnedItem(item, degrees, shift);
}

} // namespace cad::nest

// The standard sketch workloads the solver is measured on, built directly as entity
// and constraint lists: W1, N independent constrained rectangles; W2, one closed
// staircase of M lines.
#pragma once

#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <string>
#include <utility>
#include <vector>

namespace cad::workloads {

struct SketchWorkload {
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
};

inline SketchEntity lineEntity(int number, Point2 a, Point2 b) {
    SketchEntity e;
    e.id = "Line" + std::to_string(number);
    e.geometry = SketchLine{a, b};
    return e;
}

inline std::string lineId(int index) { return "Line" + std::to_string(index + 1); }

class ConstraintList {
public:
    explicit ConstraintList(std::vector<SketchConstraint>& out) : out_(out) {}
    void add(ConstraintType type, std::vector<SketchRef> refs, double value = 0,
             std::vector<double> data = {}) {
        SketchConstraint c;
        c.id =
            std::string(constraintPrefix(type)) + std::to_string(++count_[static_cast<int>(type)]);
        c.type = type;
        c.refs = std::move(refs);
        c.value = value;
        c.data = std::move(data);
        out_.push_back(std::move(c));
    }

private:
    std::vector<SketchConstraint>& out_;
    int count_[32]{};
};

// W1: N axis-aligned 10×6 rectangles, rectangle i with its lower-left corner at
// (30·(i mod 50), 30·(i div 50)), each four lines (bottom, right, top, left, each
// ending where the next starts: Line4i+1 … Line4i+4) with four coincidences,
// horizontal bottom and top, vertical right and left.
inline SketchWorkload rectangles(int n) {
    SketchWorkload w;
    w.entities.reserve(static_cast<std::size_t>(4 * n));
    w.constraints.reserve(static_cast<std::size_t>(8 * n));
    ConstraintList list(w.constraints);
    for (int i = 0; i < n; ++i) {
        const double x = 30.0 * (i % 50), y = 30.0 * (i / 50);
        const Point2 corners[4] = {{x, y}, {x + 10, y}, {x + 10, y + 6}, {x, y + 6}};
        for (int k = 0; k < 4; ++k)
            w.entities.push_back(lineEntity(4 * i + k + 1, corners[k], corners[(k + 1) % 4]));
        for (int k = 0; k < 4; ++k)
            list.add(ConstraintType::Coincident,
                     {{lineId(4 * i + k), "end"}, {lineId(4 * i + (k + 1) % 4), "start"}});
        list.add(ConstraintType::Horizontal, {{lineId(4 * i), ""}});
        list.add(ConstraintType::Vertical, {{lineId(4 * i + 1), ""}});
        list.add(ConstraintType::Horizontal, {{lineId(4 * i + 2), ""}});
        list.add(ConstraintType::Vertical, {{lineId(4 * i + 3), ""}});
    }
    return w;
}

// W2: a closed staircase of M lines (M even): M − 2 steps of 5 mm from the origin,
// alternately right and up, closed by one long horizontal line back over the top
// and one long vertical line down to the origin. M coincidences (each line's end on
// the next one's start), a horizontal or vertical on every line, and a distance of
// 5 between the ends of every step whose index (0-based, Line1 is index 0) is
// divisible by 10.
inline SketchWorkload staircase(int m) {
    SketchWorkload w;
    ConstraintList list(w.constraints);
    const int steps = m - 2;
    Point2 at{0, 0};
    for (int k = 0; k < steps; ++k) {
        Point2 next = k % 2 == 0 ? Point2{at.x + 5, at.y} : Point2{at.x, at.y + 5};
        w.entities.push_back(lineEntity(k + 1, at, next));
        at = next;
    }
    w.entities.push_back(lineEntity(steps + 1, at, {0, at.y}));
    w.entities.push_back(lineEntity(steps + 2, {0, at.y}, {0, 0}));
    for (int k = 0; k < m; ++k)
        list.add(ConstraintType::Coincident, {{lineId(k), "end"}, {lineId((k + 1) % m), "start"}});
    for (int k = 0; k < m; ++k) {
        const bool horizontal = k < steps ? k % 2 == 0 : k == steps;
        list.add(horizontal ? ConstraintType::Horizontal : ConstraintType::Vertical,
                 {{lineId(k), ""}});
    }
    for (int k = 0; k < steps; k += 10)
        list.add(ConstraintType::Distance, {{lineId(k), "start"}, {lineId(k), "end"}}, 5.0);
    return w;
}

// The vertex W2 drags: the end of line M/2 + 3 (0-based).
inline SketchRef staircaseDragPoint(int m) { return {lineId(m / 2 + 3), "end"}; }

} // namespace cad::workloads

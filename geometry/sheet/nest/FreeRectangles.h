// The free space of one sheet as a list of maximal free rectangles: where a
// rectangle fits best by the shorter leftover side, and the list kept maximal after
// each placement.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace cad::nest {

struct Rectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

// A free rectangle that holds a size, and its shorter leftover side.
struct FreeFit {
    std::size_t index = 0;
    double score = 0;
};

class FreeRectangles {
public:
    // An empty sheet: one free rectangle from (0, 0).
    FreeRectangles(double width, double height);

    // The first free rectangle with the strictly lowest score min(free width - w,
    // free height - h) among those that hold w x h (within 1e-9), or none.
    std::optional<FreeFit> bestFit(double width, double height) const;

    // Takes `placed` out of the free space: rectangles it overlaps split into the
    // pieces left, right, below and above it, and rectangles inside others (within
    // 1e-9) are dropped, the earlier of two equal ones staying.
    void place(const Rectangle& placed);

    const std::vector<Rectangle>& rectangles() const { return free_; }

private:
    std::vector<Rectangle> free_;
};

} // namespace cad::nest

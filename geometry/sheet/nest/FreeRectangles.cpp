// The maximal-free-rectangles list of one sheet: best short-side fit, splitting by a
// placed rectangle and pruning rectangles held inside others.
#include "geometry/sheet/nest/FreeRectangles.h"

#include <algorithm>

namespace cad::nest {

namespace {

constexpr double kTolerance = 1e-9;

bool overlaps(const Rectangle& f, const Rectangle& p) {
    return !(f.x + f.width <= p.x || p.x + p.width <= f.x || f.y + f.height <= p.y ||
             p.y + p.height <= f.y);
}

bool inside(const Rectangle& r, const Rectangle& other) {
    return other.x - kTolerance <= r.x && other.y - kTolerance <= r.y &&
           r.x + r.width <= other.x + other.width + kTolerance &&
           r.y + r.height <= other.y + other.height + kTolerance;
}

} // namespace

FreeRectangles::FreeRectangles(double width, double height) : free_{{0, 0, width, height}} {}

std::optional<FreeFit> FreeRectangles::bestFit(double width, double height) const {
    std::optional<FreeFit> best;
    for (std::size_t i = 0; i < free_.size(); ++i) {
        const Rectangle& f = free_[i];
        if (width > f.width + kTolerance || height > f.height + kTolerance) continue;
        const double score = std::min(f.width - width, f.height - height);
        if (!best || score < best->score) best = FreeFit{i, score};
    }
    return best;
}

void FreeRectangles::place(const Rectangle& p) {
    std::vector<Rectangle> split;
    split.reserve(free_.size() + 4);
    for (const Rectangle& f : free_) {
        if (!overlaps(f, p)) {
            split.push_back(f);
            continue;
        }
        if (f.x < p.x) split.push_back({f.x, f.y, p.x - f.x, f.height});
        if (p.x + p.width < f.x + f.width)
            split.push_back({p.x + p.width, f.y, f.x + f.width - p.x - p.width, f.height});
        if (f.y < p.y) split.push_back({f.x, f.y, f.width, p.y - f.y});
        if (p.y + p.height < f.y + f.height)
            split.push_back({f.x, p.y + p.height, f.width, f.y + f.height - p.y - p.height});
    }
    // Two rectangles inside each other (equal within the tolerance) keep the earlier.
    free_.clear();
    for (std::size_t i = 0; i < split.size(); ++i) {
        bool dropped = false;
        for (std::size_t j = 0; j < split.size() && !dropped; ++j)
            dropped =
                j != i && inside(split[i], split[j]) && !(j > i && inside(split[j], split[i]));
        if (!dropped) free_.push_back(split[i]);
    }
}

} // namespace cad::nest

// The three layouts. Rectangular: steps along two directions. Circular: turns about
// a centre, a full turn spread without a copy on top of the selection. Path: the
// selection sits at the path's start; copies go at arc lengths along it, turning
// with the path when they follow it.
#include "sketch/patterns/PatternLayout.h"

#include "core/CommandRecord.h"
#include "sketch/SketchReference.h"
#include "sketch/patterns/PatternPath.h"

#include <cmath>
#include <numbers>

namespace cad {

namespace {

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

std::vector<RigidMotion> rectangular(const PatternRecipe& recipe) {
    const Point2 d1{std::cos(radians(recipe.angle)), std::sin(radians(recipe.angle))};
    const Point2 d2{std::cos(radians(recipe.angle2)), std::sin(radians(recipe.angle2))};
    // Whole quarter turns give exact directions, so a grid lands on its numbers.
    auto snap = [](double v) { return std::fabs(v) < 1e-15 ? 0.0 : v; };
    std::vector<RigidMotion> motions;
    for (int j = 0; j < recipe.count2; ++j)
        for (int i = 0; i < recipe.count; ++i) {
            if (i == 0 && j == 0) continue;
            RigidMotion m;
            m.shift = {snap(i * recipe.spacing * d1.x + j * recipe.spacing2 * d2.x),
                       snap(i * recipe.spacing * d1.y + j * recipe.spacing2 * d2.y)};
            motions.push_back(m);
        }
    return motions;
}

Result<std::vector<RigidMotion>> circular(const PatternRecipe& recipe,
                                          const std::vector<SketchEntity>& entities) {
    const std::string notAPoint = "'" + recipe.center + "' isn't a point in the sketch.";
    std::optional<SketchRef> ref = parseReference(recipe.center);
    if (!ref) return fail(notAPoint);
    Result<ResolvedRef> resolved = resolveReference(*ref, entities);
    if (!resolved || resolved->kind != ResolvedRef::Point) return fail(notAPoint);
    const Point2 centre = pointAt(*resolved, entities);

    const bool fullTurn = std::fabs(std::fabs(recipe.angle) - 360.0) <= 1e-9;
    const double step = fullTurn ? recipe.angle / recipe.count : recipe.angle / (recipe.count - 1);
    std::vector<RigidMotion> motions;
    for (int k = 1; k < recipe.count; ++k) {
        RigidMotion m;
        m.pivot = centre;
        m.turnDegrees = k * step;
        motions.push_back(m);
    }
    return motions;
}

Result<std::vector<RigidMotion>> alongPath(const PatternRecipe& recipe,
                                           const std::vector<SketchEntity>& entities) {
    Result<PatternPath> path = PatternPath::build(entities, recipe.path);
    if (!path) return Error(path);
    const double length = path->length();
    // Spread: an open path from end to end; a closed one all the way round without
    // a copy on top of the selection.
    const double step = recipe.spacingGiven ? recipe.spacing
                        : path->closed()  ? length / recipe.count
                                          : length / (recipe.count - 1);
    const double last = step * (recipe.count - 1);
    if (!path->closed() && last > length * (1 + 1e-9))
        return fail("The path is " + formatShortest(length) +
                    " mm long: " + std::to_string(recipe.count) + " copies " +
                    formatShortest(recipe.spacing) + " mm apart don't fit on it.");
    const PatternPath::Place start = path->at(0);
    std::vector<RigidMotion> motions;
    for (int k = 1; k < recipe.count; ++k) {
        double s = k * step;
        if (path->closed()) s = std::fmod(s, length);
        const PatternPath::Place place = path->at(s);
        RigidMotion m;
        m.pivot = start.point;
        m.turnDegrees = recipe.follow ? place.direction - start.direction : 0.0;
        m.shift = {place.point.x - start.point.x, place.point.y - start.point.y};
        motions.push_back(m);
    }
    return motions;
}

} // namespace

Result<std::vector<RigidMotion>> patternMotions(const PatternRecipe& recipe,
                                                const std::vector<SketchEntity>& entities) {
    switch (recipe.kind) {
    case PatternKind::Rectangular:
        return rectangular(recipe);
    case PatternKind::Circular:
        return circular(recipe, entities);
    case PatternKind::Path:
        return alongPath(recipe, entities);
    }
    return fail("Unknown pattern kind.");
}

} // namespace cad

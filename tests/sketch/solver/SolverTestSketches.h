// Small helpers for the solver tests: entities and constraints written the way a
// user would draw and constrain them, and adding constraints as the commands do.
#pragma once

#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"
#include "sketch/solver/SolverOptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace cad::test {

inline SketchEntity entity(std::string id, SketchGeometry geometry) {
    SketchEntity e;
    e.id = std::move(id);
    e.geometry = std::move(geometry);
    return e;
}
inline SketchEntity line(std::string id, double x1, double y1, double x2, double y2) {
    return entity(std::move(id), SketchLine{{x1, y1}, {x2, y2}});
}
inline SketchEntity circle(std::string id, double cx, double cy, double r) {
    return entity(std::move(id), SketchCircle{{cx, cy}, r});
}
inline SketchEntity arc(std::string id, double cx, double cy, double r, double start,
                        double sweep) {
    return entity(std::move(id), SketchArc{{cx, cy}, r, start, sweep});
}
inline SketchEntity point(std::string id, double x, double y) {
    return entity(std::move(id), SketchPoint{{x, y}});
}
inline SketchEntity rectangle(std::string id, double x, double y, double w, double h) {
    return entity(std::move(id), SketchRectangle{{x, y}, w, h});
}
inline SketchEntity polygon(std::string id, double cx, double cy, double r, int sides,
                            double rotation) {
    return entity(std::move(id), SketchPolygon{{cx, cy}, r, sides, rotation});
}
inline SketchEntity slot(std::string id, double x1, double y1, double x2, double y2, double w) {
    return entity(std::move(id), SketchSlot{{x1, y1}, {x2, y2}, w});
}

inline std::vector<SketchRef> refs(const std::vector<const char*>& texts) {
    std::vector<SketchRef> out;
    for (const char* t : texts) out.push_back(*parseReference(t));
    return out;
}

inline SketchConstraint constraint(ConstraintType type, const std::vector<const char*>& texts) {
    SketchConstraint c;
    c.type = type;
    c.refs = refs(texts);
    return c;
}

// A sketch being built constraint by constraint, as add_constraint does it.
struct Sketch {
    std::vector<SketchEntity> entities;
    std::vector<SketchConstraint> constraints;
    SolverOptions options{};

    // Prepares and adds; the error text when refused (empty on success).
    std::string add(ConstraintType type, const std::vector<const char*>& texts,
                    std::optional<double> value = std::nullopt) {
        SketchConstraint c = constraint(type, texts);
        if (value) c.value = *value;
        Result<SketchConstraint> prepared = prepareConstraint(entities, c, value.has_value());
        if (!prepared) return prepared.error();
        Result<ConstraintAddition> added = addConstraint(entities, constraints, *prepared, options);
        if (!added) return added.error();
        std::move(added).value().applyTo(entities, constraints);
        return {};
    }
    void mustAdd(ConstraintType type, const std::vector<const char*>& texts,
                 std::optional<double> value = std::nullopt) {
        std::string error = add(type, texts, value);
        ASSERT_EQ(error, "") << constraintKeyword(type);
    }
    Point2 at(const char* reference) const {
        Result<ResolvedRef> r = resolveReference(*parseReference(reference), entities);
        EXPECT_TRUE(r.ok()) << r.error();
        return r ? pointAt(*r, entities) : Point2{};
    }
    const SketchEntity& entity(const std::string& id) const { return *findEntity(entities, id); }
    SketchAnalysis analyse() const { return analyseSketch(entities, constraints, options); }
};

// Test names for suites run with both methods.
inline std::string methodName(const ::testing::TestParamInfo<SolverMethod>& method) {
    return method.param == SolverMethod::Dense ? "Dense" : "Blocks";
}
inline auto bothMethods() { return ::testing::Values(SolverMethod::Dense, SolverMethod::Blocks); }

inline double distance(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y); }

} // namespace cad::test

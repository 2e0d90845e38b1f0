// A sketch session with the sketch operations registered too, and what their tests
// read back: the whole sketch as JSON (for "nothing changed" and "undo restored it"),
// constraints by type, and where entity ends are.
#pragma once

#include "../sketch/SketchSession.h"

#include "sketch/SketchJson.h"
#include "sketch/SketchReference.h"
#include "sketch/ops/SketchOperationCommands.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace cad::test {

class SketchOpsSession : public SketchSession {
protected:
    SketchOpsSession() {
        registerSketchOperationCommands(registry);
        newSketch();
    }

    // Everything about the sketch's lists: IDs, values, flags, groups, constraint
    // references, values, orientation data and labels.
    std::string everything() {
        nlohmann::ordered_json all = nlohmann::ordered_json::array();
        for (const SketchEntity& e : sketch().entities) all.push_back(entityToJson(e));
        for (const SketchConstraint& c : sketch().constraints) all.push_back(constraintToJson(c));
        return all.dump();
    }

    std::vector<const SketchConstraint*> ofType(ConstraintType type) {
        std::vector<const SketchConstraint*> out;
        for (const SketchConstraint& c : sketch().constraints)
            if (c.type == type) out.push_back(&c);
        return out;
    }
    std::size_t count(ConstraintType type) { return ofType(type).size(); }
    // Whether a constraint of the type has exactly these references, in this order.
    bool has(ConstraintType type, const std::vector<std::string>& refs) {
        for (const SketchConstraint* c : ofType(type)) {
            std::vector<std::string> texts;
            for (const SketchRef& r : c->refs) texts.push_back(r.text());
            if (texts == refs) return true;
        }
        return false;
    }

    // A named point where it is now ("Line1.end", "Arc2.start").
    Point2 at(const std::string& reference) {
        const auto ref = parseReference(reference);
        const auto resolved = resolveReference(*ref, sketch().entities);
        EXPECT_TRUE(resolved.ok()) << reference << ": " << resolved.error();
        return resolved ? pointAt(*resolved, sketch().entities) : Point2{};
    }
    static double gap(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y); }

    void rectangle(double x1, double y1, double x2, double y2) {
        ok(on("add_rectangle", {{"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}}));
    }
    void circle(double cx, double cy, double radius) {
        ok(on("add_circle", {{"cx", cx}, {"cy", cy}, {"radius", radius}}));
    }
    // A closed chain of lines through the points, each ending where the next starts,
    // joined by coincidences as the line tool leaves them.
    void closedLines(const std::vector<Point2>& corners) {
        const std::size_t first = sketch().entities.size() + 1;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point2 a = corners[i], b = corners[(i + 1) % corners.size()];
            line(a.x, a.y, b.x, b.y);
        }
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const std::string here = "Line" + std::to_string(first + i);
            const std::string next = "Line" + std::to_string(first + (i + 1) % corners.size());
            ok(constraint("coincident", here + ".end", next + ".start"));
        }
    }
};

} // namespace cad::test

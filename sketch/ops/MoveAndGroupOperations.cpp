// move_entities (a slide held at the new place while the rest re-solves), and
// group and ungroup (members of a group select and move together).
#include "sketch/ops/SketchOperations.h"

#include "sketch/ops/OpsGeometry.h"

#include <algorithm>
#include <set>

namespace cad::ops {

namespace {

struct Translate {
    Point2 by;
    void operator()(SketchLine& l) const {
        l.start = l.start + by;
        l.end = l.end + by;
    }
    void operator()(SketchCircle& c) const { c.center = c.center + by; }
    void operator()(SketchRectangle& r) const { r.corner = r.corner + by; }
    void operator()(SketchPoint& p) const { p.position = p.position + by; }
    void operator()(SketchArc& a) const { a.center = a.center + by; }
    void operator()(SketchPolygon& p) const { p.center = p.center + by; }
    void operator()(SketchSpline& s) const {
        for (Point2& p : s.points) p = p + by;
    }
    void operator()(SketchSlot& s) const {
        s.start = s.start + by;
        s.end = s.end + by;
    }
    void operator()(SketchText& t) const { t.position = t.position + by; }
};

// Tied to the sketch's own origin: a point of it made coincident with Origin.
bool heldByOrigin(const SketchWork& sketch, const std::string& id) {
    return std::any_of(sketch.constraints.begin(), sketch.constraints.end(),
                       [&](const SketchConstraint& c) {
                           return c.type == ConstraintType::Coincident &&
                                  refersTo(c, "Origin", "") && refersTo(c, id);
                       });
}

std::string freeGroupId(const std::vector<SketchEntity>& entities) {
    std::set<std::string, std::less<>> used;
    for (const SketchEntity& e : entities) used.insert(e.group);
    for (long long n = 1;; ++n) {
        std::string id = "Group" + std::to_string(n);
        if (!used.count(id)) return id;
    }
}

} // namespace

Result<std::string> moveEntities(SketchWork& sketch, const std::vector<std::string>& ids,
                                 Point2 by) {
    if (ids.empty()) return fail("Choose what to move.");
    // Members of a group move together.
    std::vector<std::string> moving;
    auto take = [&](const std::string& id) {
        if (std::find(moving.begin(), moving.end(), id) == moving.end()) moving.push_back(id);
    };
    for (const std::string& id : ids) {
        Result<SketchEntity*> found = sketch.require(id);
        if (!found) return Error(found);
        take(id);
        if (const std::string group = (*found)->group; !group.empty())
            for (const SketchEntity& e : sketch.entities)
                if (e.group == group) take(e.id);
    }
    for (const std::string& id : moving) {
        const SketchEntity& e = *sketch.find(id);
        if (e.isProjected())
            return fail(id + " is projected: it follows what it was projected from.");
        if (heldByOrigin(sketch, id)) return fail(id + " can't be moved.");
    }
    for (const std::string& id : moving) std::visit(Translate{by}, sketch.find(id)->geometry);
    if (Result<void> solved = sketch.solve(moving); !solved)
        return fail("The sketch's constraints keep " +
                    (moving.size() == 1 ? moving.front() : "them") + " from moving there.");
    return "Moved " + countOf(moving.size(), "entity", "entities") + ".";
}

Result<std::string> groupEntities(SketchWork& sketch, const std::vector<std::string>& ids) {
    if (ids.empty()) return fail("Choose what to group.");
    for (const std::string& id : ids)
        if (Result<SketchEntity*> found = sketch.require(id); !found) return Error(found);
    const std::string group = freeGroupId(sketch.entities);
    for (const std::string& id : ids) sketch.find(id)->group = group;
    return "Grouped " + countOf(ids.size(), "entity", "entities") + " as " + group + ".";
}

Result<std::string> ungroupEntities(SketchWork& sketch, const std::vector<std::string>& ids) {
    if (ids.empty()) return fail("Choose what to ungroup.");
    std::set<std::string, std::less<>> groups;
    for (const std::string& id : ids) {
        Result<SketchEntity*> found = sketch.require(id);
        if (!found) return Error(found);
        if (!(*found)->group.empty()) groups.insert((*found)->group);
    }
    if (groups.empty()) return fail("Those aren't grouped.");
    for (SketchEntity& e : sketch.entities)
        if (groups.count(e.group)) e.group.clear();
    return std::string("Ungrouped.");
}

} // namespace cad::ops

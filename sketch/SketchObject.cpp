// The sketch object: its plane, following its support and its projected sources on
// recompute, and what it depends on.
#include "sketch/SketchObject.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/ExpressionNames.h"
#include "sketch/SketchPlaneResolver.h"
#include "sketch/SketchProjectionHook.h"
#include "sketch/SketchSolver.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace cad {

namespace {

std::shared_ptr<const SketchPlaneResolver>& installedResolver() {
    static std::shared_ptr<const SketchPlaneResolver> resolver;
    return resolver;
}

std::shared_ptr<const SketchProjectionHook>& installedProjectionHook() {
    static std::shared_ptr<const SketchProjectionHook> hook;
    return hook;
}

// "Body1/Extrude1.end" and "Sketch2/Circle1" name objects before the first '/';
// the origin planes are no objects.
std::string objectOf(std::string_view reference) {
    std::string_view head = reference.substr(0, reference.find('/'));
    if (head.empty() || parseOriginPlane(head)) return {};
    return std::string(head);
}

bool sameVector(const Vec3& a, const Vec3& b) {
    for (std::size_t i = 0; i < 3; ++i)
        if (std::fabs(a[i] - b[i]) > 1e-12) return false;
    return true;
}

bool sameEntities(const std::vector<SketchEntity>& a, const std::vector<SketchEntity>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].kind() != b[i].kind()) return false;
        const std::vector<double> p = entityParameters(a[i]), q = entityParameters(b[i]);
        if (p.size() != q.size()) return false;
        for (std::size_t k = 0; k < p.size(); ++k)
            if (std::fabs(p[k] - q[k]) > 1e-12) return false;
    }
    return true;
}

// A sketch on a reference plane or a face takes that plane again; true when it moved.
bool followSupport(SketchObject& sketch, const Document& document) {
    // A sketch on a body, on an origin plane or on no support stays where it is.
    if (sketch.support.empty() || parseOriginPlane(sketch.support)) return false;
    if (dynamic_cast<const GeometryObject*>(document.find(sketch.support))) return false;
    const SketchPlaneResolver* resolver = sketchPlaneResolver();
    if (!resolver) return false;
    Result<PlaneFrame> plane = resolver->planeOf(document, sketch.support);
    if (!plane) return false; // the support is gone or broken: keep the last good plane
    const PlaneFrame& f = *plane;
    if (sameVector(f.origin, sketch.origin) && sameVector(f.normal, sketch.normal) &&
        sameVector(f.xDirection, sketch.xDirection))
        return false;
    sketch.setFrame(f);
    return true;
}

// Projected entities rebuilt from their sources; the rest of the sketch solved again
// around them, so geometry constrained to a projection follows it. True when any
// entity moved or the problems changed.
bool followProjections(SketchObject& sketch, const Document& document) {
    const SketchProjectionHook* hook = sketchProjectionHook();
    const bool anyProjected = std::any_of(sketch.entities.begin(), sketch.entities.end(),
                                          [](const SketchEntity& e) { return e.isProjected(); });
    if (!hook || !anyProjected) {
        const bool hadProblems = !sketch.projectionProblems.empty();
        sketch.projectionProblems.clear();
        return hadProblems;
    }
    SketchProjectionHook::Refresh refreshed = hook->refresh(document, sketch);
    bool moved = !sameEntities(refreshed.entities, sketch.entities);
    // After a problem the constraints are tried again even when nothing moved.
    if (moved || !sketch.projectionProblems.empty()) {
        Result<std::vector<SketchEntity>> solved =
            solveSketch(refreshed.entities, sketch.constraints);
        if (solved) {
            moved = moved || !sameEntities(*solved, sketch.entities);
            sketch.entities = std::move(solved).value();
        } else {
            // The projections still follow their sources; the conflict is reported.
            sketch.entities = std::move(refreshed.entities);
            refreshed.problems.push_back(
                {"", "", "The constraints can't follow the projected geometry: " + solved.error()});
        }
    }
    const bool problemsChanged = refreshed.problems != sketch.projectionProblems;
    sketch.projectionProblems = std::move(refreshed.problems);
    return moved || problemsChanged;
}

} // namespace

void installSketchProjectionHook(std::shared_ptr<const SketchProjectionHook> hook) {
    installedProjectionHook() = std::move(hook);
}

const SketchProjectionHook* sketchProjectionHook() { return installedProjectionHook().get(); }

void installSketchPlaneResolver(std::shared_ptr<const SketchPlaneResolver> resolver) {
    installedResolver() = std::move(resolver);
}

const SketchPlaneResolver* sketchPlaneResolver() { return installedResolver().get(); }

std::vector<std::string> SketchObject::dependencies() const {
    std::vector<std::string> ids;
    auto note = [&](std::string_view reference) {
        std::string object = objectOf(reference);
        if (!object.empty() && std::find(ids.begin(), ids.end(), object) == ids.end())
            ids.push_back(std::move(object));
    };
    note(support);
    for (const SketchEntity& e : entities)
        if (e.isProjected()) note(e.source);
    return ids;
}

bool SketchObject::recompute(const Document& document) {
    const bool moved = followSupport(*this, document);
    const bool followed = followProjections(*this, document);
    return moved || followed;
}

void SketchObject::setFrame(const PlaneFrame& frame) {
    origin = frame.origin;
    normal = frame.normal;
    xDirection = frame.xDirection;
}

Vec3 SketchObject::toModel(Point2 p) const {
    const Vec3 y = frame().yDirection();
    Vec3 out;
    for (std::size_t i = 0; i < 3; ++i) out[i] = origin[i] + p.x * xDirection[i] + p.y * y[i];
    return out;
}

std::string SketchObject::error() const {
    std::string text;
    for (const ProjectionProblem& p : projectionProblems) {
        if (!p.entity.empty()) {
            const SketchEntity* e = findEntity(p.entity);
            if (!e || e->source != p.source) continue;
        }
        text += (text.empty() ? "" : " ") + p.sentence;
    }
    return text;
}

const SketchEntity* SketchObject::findEntity(std::string_view entityId) const {
    return cad::findEntity(entities, entityId);
}

const SketchConstraint* SketchObject::findConstraint(std::string_view constraintId) const {
    auto it = std::find_if(constraints.begin(), constraints.end(),
                           [&](const SketchConstraint& c) { return c.id == constraintId; });
    return it == constraints.end() ? nullptr : &*it;
}

std::vector<std::pair<std::string, units::Expression>> SketchObject::valueExpressions() const {
    std::vector<std::pair<std::string, units::Expression>> out;
    for (const SketchConstraint& c : constraints)
        if (c.expression) out.emplace_back(c.id, *c.expression);
    return out;
}

void SketchObject::renameInExpressions(std::string_view from, std::string_view to) {
    for (SketchConstraint& c : constraints)
        if (c.expression)
            c.expression->text = units::renameInExpression(c.expression->text, from, to);
}

bool SketchObject::reevaluateExpressions(std::vector<std::string>& problems) {
    std::vector<SketchConstraint> updated = constraints;
    const std::size_t problemsBefore = problems.size();
    bool changed = false;
    for (SketchConstraint& c : updated) {
        if (!c.expression) continue;
        Result<double> value = units::evaluate(*c.expression);
        if (!value) {
            problems.push_back(id + ": " + c.id + ": " + value.error());
            continue;
        }
        // The same checks as changing a dimension's value by hand.
        if (c.type == ConstraintType::Angle && (*value <= 0 || *value > 180)) {
            problems.push_back(id + ": " + c.id +
                               ": An angle must be more than 0° and at most 180°.");
            continue;
        }
        if (*value <= 0) {
            problems.push_back(id + ": " + c.id + ": A dimension must be greater than zero.");
            continue;
        }
        if (std::fabs(*value - c.value) <= 1e-12) continue;
        c.value = *value;
        changed = true;
    }
    if (!changed) return false;
    if (problems.size() > problemsBefore) return false;
    Result<std::vector<SketchEntity>> solved = solveSketch(entities, updated);
    if (!solved) {
        problems.push_back(id + ": " + solved.error());
        return false;
    }
    entities = std::move(solved).value();
    constraints = std::move(updated);
    return true;
}

std::any SketchObject::valuesSnapshot() const { return std::make_pair(entities, constraints); }

void SketchObject::restoreValues(const std::any& snapshot) {
    using Lists = std::pair<std::vector<SketchEntity>, std::vector<SketchConstraint>>;
    if (const auto* lists = std::any_cast<Lists>(&snapshot))
        std::tie(entities, constraints) = *lists;
}

} // namespace cad

// Building one solve's system from a sketch's entities and constraints, evaluating
// residuals and exact Jacobian rows, and writing solved parameters back.
#include "sketch/solver/SolverSystem.h"

#include "sketch/solver/ConstraintResiduals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_set>

namespace cad::solver {

namespace {

struct Box {
    double minX = 0, minY = 0, maxX = 0, maxY = 0; // starts with the origin
    void add(double x, double y) {
        minX = std::min(minX, x);
        maxX = std::max(maxX, x);
        minY = std::min(minY, y);
        maxY = std::max(maxY, y);
    }
    void add(Point2 p) { add(p.x, p.y); }
};

// The named points of an entity, as the reference grammar names them.
struct KeyPoints {
    Box& box;
    void polar(Point2 c, double r, double degrees) {
        const double a = degrees * std::numbers::pi / 180.0;
        box.add(c.x + r * std::cos(a), c.y + r * std::sin(a));
    }
    void operator()(const SketchLine& l) {
        box.add(l.start);
        box.add(l.end);
    }
    void operator()(const SketchCircle& c) { box.add(c.center); }
    void operator()(const SketchRectangle& r) {
        box.add(r.corner);
        box.add(r.corner.x + r.width, r.corner.y + r.height);
        box.add(r.corner.x + r.width, r.corner.y);
        box.add(r.corner.x, r.corner.y + r.height);
    }
    void operator()(const SketchPoint& p) { box.add(p.position); }
    void operator()(const SketchArc& a) {
        box.add(a.center);
        polar(a.center, a.radius, a.startAngle);
        polar(a.center, a.radius, a.startAngle + a.sweepAngle);
    }
    void operator()(const SketchPolygon& p) {
        box.add(p.center);
        for (int k = 0; k < p.sides; ++k)
            polar(p.center, p.radius, p.rotation + 360.0 * k / p.sides);
    }
    void operator()(const SketchSpline& s) {
        for (const Point2& p : s.points) box.add(p);
    }
    void operator()(const SketchSlot& s) {
        box.add(s.start);
        box.add(s.end);
    }
    // Kinds with one position (text) fall here.
    template <class Other> void operator()(const Other& other) {
        if constexpr (requires { other.position; }) box.add(other.position);
    }
};

template <int N>
void differentiateWith(const CompiledConstraint& c, const double* x, double scale,
                       double* residuals, double* derivatives) {
    Dual<N> local[N];
    for (int k = 0; k < c.slots; ++k)
        local[k] = Dual<N>::variable(x[c.params[static_cast<std::size_t>(k)]], k);
    Dual<N> out[2];
    constraintResiduals(c, local, scale, out);
    for (int r = 0; r < c.rows; ++r) {
        residuals[r] = out[r].v;
        for (int k = 0; k < c.slots; ++k)
            derivatives[r * c.slots + k] = out[r].d[static_cast<std::size_t>(k)];
    }
}

} // namespace

double sketchScale(const std::vector<SketchEntity>& entities) {
    Box box;
    for (const SketchEntity& e : entities) std::visit(KeyPoints{box}, e.geometry);
    const double diagonal = std::hypot(box.maxX - box.minX, box.maxY - box.minY);
    return std::isfinite(diagonal) ? std::max(1.0, diagonal) : 1.0;
}

Result<SolverSystem> buildSystem(const std::vector<SketchEntity>& entities,
                                 const std::vector<SketchConstraint>& constraints,
                                 const SystemOptions& options) {
    SolverSystem system;
    const std::size_t n = entities.size();
    system.layout.offset.reserve(n + 1);
    system.layout.offset.push_back(0);
    std::unordered_set<std::string_view> held(options.held.begin(), options.held.end());
    for (std::size_t i = 0; i < n; ++i) {
        const SketchEntity& e = entities[i];
        std::vector<double> p = entityParameters(e);
        const char fixed = e.isProjected() || held.count(e.id) ? 1 : 0;
        system.x0.insert(system.x0.end(), p.begin(), p.end());
        system.owner.insert(system.owner.end(), p.size(), static_cast<int>(i));
        system.fixed.insert(system.fixed.end(), p.size(), fixed);
        system.layout.offset.push_back(static_cast<int>(system.x0.size()));
    }
    system.scale = options.scale ? *options.scale : sketchScale(entities);
    system.tolerance = 1e-9 * system.scale;

    ReferenceResolver resolver(entities);
    system.constraints.reserve(constraints.size() + 1);
    std::vector<ResolvedRef> refs;
    for (std::size_t i = 0; i < constraints.size(); ++i) {
        const SketchConstraint& constraint = constraints[i];
        refs.clear();
        std::string problem;
        for (const SketchRef& ref : constraint.refs) {
            Result<ResolvedRef> r = resolver.resolve(ref);
            if (!r) {
                problem = r.error();
                break;
            }
            refs.push_back(*r);
        }
        if (problem.empty()) {
            auto ordered = orderReferences(constraint.type, refs, constraint.refs);
            if (ordered)
                refs = std::move(ordered).value();
            else
                problem = ordered.error();
        }
        if (!problem.empty()) {
            if (options.skipBroken) continue;
            return fail(constraint.id + ": " + problem);
        }
        CompiledConstraint c =
            compile(constraint, refs, entities, system.layout, system.scale, system.fixPool);
        c.source = static_cast<int>(i);
        system.constraints.push_back(c);
    }

    if (options.drag) {
        Result<ResolvedRef> r = resolver.resolve(options.drag->point);
        if (!r) return Error{r.error()};
        if (r->kind != ResolvedRef::Point) return fail("Only points can be dragged.");
        if (r->entity >= 0) {
            const SketchEntity& e = entities[static_cast<std::size_t>(r->entity)];
            if (e.isProjected())
                return fail(e.id + " is projected: it follows what it was projected from.");
        }
        system.constraints.push_back(
            compileDrag(*r, options.drag->target, entities, system.layout));
        system.dragging = true;
    }
    return system;
}

void evaluateRows(const SolverSystem& system, const CompiledConstraint& c, const double* x,
                  double* out) {
    if (c.shape == CompiledConstraint::Shape::FixEntity) {
        for (int i = 0; i < c.fixCount; ++i) {
            const double* pool = &system.fixPool[static_cast<std::size_t>(c.poolOffset + 2 * i)];
            out[i] = (x[c.fixOffset + i] - pool[0]) * pool[1];
        }
        return;
    }
    double local[kMaxSlots];
    for (int k = 0; k < c.slots; ++k) local[k] = x[c.params[static_cast<std::size_t>(k)]];
    constraintResiduals(c, local, system.scale, out);
}

void differentiate(const CompiledConstraint& c, const double* x, double scale, double* residuals,
                   double* derivatives) {
    if (c.slots <= 4)
        differentiateWith<4>(c, x, scale, residuals, derivatives);
    else if (c.slots <= 8)
        differentiateWith<8>(c, x, scale, residuals, derivatives);
    else
        differentiateWith<16>(c, x, scale, residuals, derivatives);
}

std::vector<SketchEntity> writeBack(const SolverSystem& system,
                                    const std::vector<SketchEntity>& entities,
                                    const std::vector<double>& x) {
    std::vector<SketchEntity> out = entities;
    for (std::size_t i = 0; i < entities.size(); ++i) {
        const int begin = system.layout.offset[i], end = system.layout.offset[i + 1];
        bool moved = false;
        for (int j = begin; j < end && !moved; ++j)
            moved = x[static_cast<std::size_t>(j)] != system.x0[static_cast<std::size_t>(j)];
        if (!moved) continue; // unmoved entities keep their values exactly, degrees and all
        setEntityParameters(out[i], std::vector<double>(x.begin() + begin, x.begin() + end));
    }
    return out;
}

} // namespace cad::solver

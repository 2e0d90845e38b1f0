// The copy of a footprint in a sketch. A quarter turn keeps every constraint (a
// horizontal one turns vertical, a rectangle's named parts go round with it); at a
// free angle horizontal and vertical ones can't hold and are left out.
#include "sketch/footprints/FootprintPlacement.h"

#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"
#include "sketch/patterns/EntityMotion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <set>

namespace cad {

namespace {

constexpr std::array<std::string_view, 4> kCorners{"bottom_left", "bottom_right", "top_right",
                                                   "top_left"};
constexpr std::array<std::string_view, 4> kSides{"bottom", "right", "top", "left"};

// A rectangle's part after `quarters` counter-clockwise quarter turns: the corner
// or side now where the named one went ("bottom" turned once is "right").
std::string turnedRectanglePart(const std::string& part, long quarters) {
    for (const auto* names : {&kCorners, &kSides}) {
        auto it = std::find(names->begin(), names->end(), part);
        if (it == names->end()) continue;
        const long k = (static_cast<long>(it - names->begin()) + quarters) % 4;
        return std::string((*names)[static_cast<std::size_t>(k)]);
    }
    return part; // the centre and the whole rectangle
}

// The farthest any point of the footprint lies from its reference point.
double reach(const std::vector<SketchEntity>& entities) {
    double far = 0;
    auto at = [](Point2 p) { return std::hypot(p.x, p.y); };
    for (const NamedPoint& p : namedPoints(entities)) far = std::max(far, at(p.position));
    for (const SketchEntity& e : entities) {
        if (const auto* c = std::get_if<SketchCircle>(&e.geometry))
            far = std::max(far, at(c->center) + c->radius);
        else if (const auto* a = std::get_if<SketchArc>(&e.geometry))
            far = std::max(far, at(a->center) + a->radius);
        else if (const auto* s = std::get_if<SketchSlot>(&e.geometry))
            far = std::max({far, at(s->start) + s->width / 2, at(s->end) + s->width / 2});
    }
    return far;
}

bool isAxisBound(ConstraintType type) {
    return type == ConstraintType::Horizontal || type == ConstraintType::Vertical ||
           type == ConstraintType::HorizontalDistance || type == ConstraintType::VerticalDistance;
}

ConstraintType turnedQuarter(ConstraintType type) {
    switch (type) {
    case ConstraintType::Horizontal:
        return ConstraintType::Vertical;
    case ConstraintType::Vertical:
        return ConstraintType::Horizontal;
    case ConstraintType::HorizontalDistance:
        return ConstraintType::VerticalDistance;
    case ConstraintType::VerticalDistance:
        return ConstraintType::HorizontalDistance;
    default:
        return type;
    }
}

// Adds the entities and constraints of one placement, handing out IDs as the
// sketch's rules do.
class Placer {
public:
    Placer(const Footprint& footprint, Point2 at, double angle, std::vector<SketchEntity>& entities,
           std::vector<SketchConstraint>& constraints)
        : footprint_(footprint), entities_(entities),
          constraints_(constraints), motion_{{0, 0}, angle, at},
          quarters_(std::lround(angle / 90.0)),
          quarterTurn_(std::fabs(angle / 90.0 - std::round(angle / 90.0)) < 1e-9),
          halfLength_(std::max(10.0, reach(footprint.entities))) {}

    Result<FootprintPlacement> run() {
        placed_.anchor = add(SketchPoint{motion_.shift}, true);
        for (const SketchEntity& original : footprint_.entities) {
            Result<SketchGeometry> geometry = moveGeometry(original.geometry, motion_);
            if (!geometry) return geometry.withPrefix(original.id + ": ");
            copies_[original.id] = add(std::move(geometry).value(), original.construction);
        }
        // Text that follows a curve of the footprint follows that curve's copy.
        for (const auto& [from, to] : copies_) {
            SketchEntity& copy = entity(to);
            if (auto* text = std::get_if<SketchText>(&copy.geometry); text && !text->path.empty()) {
                auto path = copies_.find(text->path);
                text->path = path == copies_.end() ? std::string() : path->second;
            }
        }
        for (const SketchConstraint& original : footprint_.constraints) {
            if (isAxisBound(original.type) && !quarterTurn_) {
                ++placed_.leftOut;
                continue;
            }
            if (Result<void> ok = copyConstraint(original); !ok) return Error(ok);
        }
        Result<std::vector<SketchEntity>> solved = solveSketch(entities_, constraints_);
        if (!solved) return Error(solved);
        entities_ = std::move(solved).value();
        return placed_;
    }

private:
    SketchEntity& entity(const std::string& id) {
        return *std::find_if(entities_.begin(), entities_.end(),
                             [&](const SketchEntity& e) { return e.id == id; });
    }

    // A new entity with the sketch's next ID for its kind. Copies are plain geometry:
    // in no group, following nothing.
    std::string add(SketchGeometry geometry, bool construction) {
        SketchEntity e;
        e.geometry = std::move(geometry);
        e.construction = construction;
        e.id = nextEntityId(entities_, entityKindName(e));
        std::string id = e.id;
        entities_.push_back(std::move(e));
        return id;
    }

    void addConstraint(ConstraintType type, std::vector<SketchRef> refs) {
        SketchConstraint c;
        c.type = type;
        c.refs = std::move(refs);
        c.id = nextConstraintId(constraints_, constraintPrefix(type));
        constraints_.push_back(std::move(c));
    }

    // The construction line standing for the footprint's x axis (or y axis): through
    // the anchor along the turned axis, held at its middle by the anchor.
    std::string axisLine(bool xAxis) {
        std::optional<std::string>& line = xAxis ? xLine_ : yLine_;
        if (line) return *line;
        // The turned unit vector: the motion of (1, 0) or (0, 1) less its shift.
        const Point2 end = motion_.apply(xAxis ? Point2{1, 0} : Point2{0, 1});
        const Point2 d{end.x - motion_.shift.x, end.y - motion_.shift.y};
        const Point2 at = motion_.shift;
        const Point2 from{at.x - halfLength_ * d.x, at.y - halfLength_ * d.y};
        const Point2 to{at.x + halfLength_ * d.x, at.y + halfLength_ * d.y};
        line = add(SketchLine{from, to}, true);
        addConstraint(ConstraintType::Midpoint, {{placed_.anchor, ""}, {*line, ""}});
        // Square to the sketch the axis keeps its direction; at a free angle it turns
        // with the copy about the anchor.
        if (quarterTurn_) {
            const bool horizontal = std::fabs(d.y) < 0.5;
            addConstraint(horizontal ? ConstraintType::Horizontal : ConstraintType::Vertical,
                          {{*line, ""}});
        } else if (xLine_ && yLine_) {
            addConstraint(ConstraintType::Perpendicular, {{*xLine_, ""}, {*yLine_, ""}});
        }
        return *line;
    }

    Result<SketchRef> rewrite(const SketchRef& ref) {
        if (ref.entity == "Origin") return SketchRef{placed_.anchor, ""};
        if (ref.entity == "XAxis" || ref.entity == "YAxis")
            return SketchRef{axisLine(ref.entity == "XAxis"), ref.part};
        auto copy = copies_.find(ref.entity);
        if (copy == copies_.end())
            return fail("The footprint '" + footprint_.name + "' refers to '" + ref.text() +
                        "', which it doesn't hold.");
        const SketchEntity* original = findEntity(footprint_.entities, ref.entity);
        std::string part = ref.part;
        if (original->kind() == EntityKind::Rectangle)
            part = turnedRectanglePart(part, ((quarters_ % 4) + 4) % 4);
        return SketchRef{copy->second, part};
    }

    Result<void> copyConstraint(const SketchConstraint& original) {
        SketchConstraint c;
        c.type = quarters_ % 2 != 0 ? turnedQuarter(original.type) : original.type;
        for (const SketchRef& ref : original.refs) {
            Result<SketchRef> rewritten = rewrite(ref);
            if (!rewritten) return Error(rewritten);
            c.refs.push_back(*rewritten);
        }
        c.value = original.value;
        if (original.label) { // an offset from the dimension's anchor: it only turns
            const RigidMotion turn{{0, 0}, motion_.turnDegrees, {0, 0}};
            const Point2 label = turn.apply({original.label->first, original.label->second});
            c.label = std::make_pair(label.x, label.y);
        }
        // The orientation (which side, which end) is read again from the turned copy;
        // a typed expression stays behind, since its parameters belong to another project.
        Result<SketchConstraint> prepared = prepareConstraint(entities_, c, isDimension(c.type));
        if (!prepared) return prepared.withPrefix(original.id + ": ");
        prepared->id = nextConstraintId(constraints_, constraintPrefix(prepared->type));
        constraints_.push_back(std::move(prepared).value());
        return {};
    }

    const Footprint& footprint_;
    std::vector<SketchEntity>& entities_;
    std::vector<SketchConstraint>& constraints_;
    RigidMotion motion_;
    long quarters_;
    bool quarterTurn_;
    double halfLength_;
    FootprintPlacement placed_;
    std::map<std::string, std::string> copies_; // footprint ID -> copy's ID
    std::optional<std::string> xLine_, yLine_;
};

} // namespace

std::string nextConstraintId(const std::vector<SketchConstraint>& constraints,
                             std::string_view prefix) {
    std::set<std::string, std::less<>> used;
    for (const SketchConstraint& c : constraints) used.insert(c.id);
    for (long long n = 1;; ++n) {
        std::string id = std::string(prefix) + std::to_string(n);
        if (!used.count(id)) return id;
    }
}

Result<FootprintPlacement> placeFootprint(const Footprint& footprint, Point2 at,
                                          double angleDegrees, std::vector<SketchEntity>& entities,
                                          std::vector<SketchConstraint>& constraints) {
    if (footprint.entities.empty()) return fail("The footprint '" + footprint.name + "' is empty.");
    const double quarters = angleDegrees / 90.0;
    const bool hasRectangle =
        std::any_of(footprint.entities.begin(), footprint.entities.end(),
                    [](const SketchEntity& e) { return e.kind() == EntityKind::Rectangle; });
    if (hasRectangle && std::fabs(quarters - std::round(quarters)) >= 1e-9)
        return fail("'" + footprint.name +
                    "' has a rectangle, which stays square to the sketch: turn it in 90° steps (or "
                    "draw the outline with lines to turn it freely).");
    return Placer(footprint, at, angleDegrees, entities, constraints).run();
}

} // namespace cad

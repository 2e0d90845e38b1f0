// edit_sketch_entity: applying the given values to a copy of the entity, checking it
// (a text must still lay out) and the constraints that use it, and solving with it held.
#include "sketch/EditSketchEntityCommand.h"

#include "core/ArgReader.h"
#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"
#include "sketch/SplinePoints.h"
#include "sketch/text/TextLayout.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad {

namespace {

using T = ArgType;

// "height" is read apart: a text's size may also be given in points ("12pt").
constexpr const char* kLengthKeys[] = {"x1",     "y1",       "x2",          "y2", "length",
                                       "x",      "y",        "width",       "cx", "cy",
                                       "radius", "diameter", "across_flats"};
constexpr const char* kAngleKeys[] = {"angle", "start_angle", "sweep_angle", "rotation"};

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

// Applies the changes that make sense for the entity's kind; false when none did.
class Applier {
public:
    explicit Applier(const EditSketchEntityCommand::Changes& changes) : c_(changes) {}

    bool operator()(SketchLine& l) {
        take("x1", l.start.x);
        take("y1", l.start.y);
        take("x2", l.end.x);
        take("y2", l.end.y);
        const auto length = find("length"), angle = find("angle");
        if (length || angle) {
            const double dx = l.end.x - l.start.x, dy = l.end.y - l.start.y;
            const double len = length ? *length : std::hypot(dx, dy);
            const double a = angle ? radians(*angle) : std::atan2(dy, dx);
            l.end = {l.start.x + len * std::cos(a), l.start.y + len * std::sin(a)};
            changed_ = true;
        }
        return changed_;
    }
    bool operator()(SketchRectangle& r) {
        take("x", r.corner.x);
        take("y", r.corner.y);
        take("width", r.width);
        take("height", r.height);
        return changed_;
    }
    bool operator()(SketchCircle& c) {
        take("cx", c.center.x);
        take("cy", c.center.y);
        takeRadius(c.radius);
        return changed_;
    }
    bool operator()(SketchPoint& p) {
        take("x", p.position.x);
        take("y", p.position.y);
        return changed_;
    }
    bool operator()(SketchArc& a) {
        take("cx", a.center.x);
        take("cy", a.center.y);
        takeRadius(a.radius);
        take("start_angle", a.startAngle);
        take("sweep_angle", a.sweepAngle);
        return changed_;
    }
    bool operator()(SketchPolygon& p) {
        take("cx", p.center.x);
        take("cy", p.center.y);
        take("rotation", p.rotation);
        if (c_.sides) {
            p.sides = *c_.sides;
            changed_ = true;
        }
        takeRadius(p.radius);
        if (auto flats = find("across_flats")) {
            p.radius = *flats / (2 * std::cos(std::numbers::pi / p.sides));
            changed_ = true;
        }
        return changed_;
    }
    bool operator()(SketchSpline& s) {
        if (c_.points) {
            s.points = *c_.points;
            changed_ = true;
        }
        if (c_.closed) {
            s.closed = *c_.closed;
            changed_ = true;
        }
        return changed_;
    }
    bool operator()(SketchText& t) {
        if (!c_.text.any()) return false;
        c_.text.applyTo(t);
        return true;
    }
    bool operator()(SketchSlot& s) {
        take("x1", s.start.x);
        take("y1", s.start.y);
        take("x2", s.end.x);
        take("y2", s.end.y);
        take("width", s.width);
        return changed_;
    }

private:
    std::optional<double> find(std::string_view key) const {
        auto it = c_.values.find(key);
        return it == c_.values.end() ? std::nullopt : std::optional<double>(it->second);
    }
    void take(std::string_view key, double& target) {
        if (auto v = find(key)) {
            target = *v;
            changed_ = true;
        }
    }
    void takeRadius(double& radius) {
        take("radius", radius);
        if (auto d = find("diameter")) {
            radius = *d / 2;
            changed_ = true;
        }
    }

    const EditSketchEntityCommand::Changes& c_;
    bool changed_ = false;
};

} // namespace

std::vector<ArgSpec> EditSketchEntityCommand::arguments() {
    auto length = [](const char* name, const char* description) {
        return ArgSpec{name, T::Length, false, description, {}, ""};
    };
    auto angle = [](const char* name, const char* description) {
        return ArgSpec{name, T::Angle, false, description, {}, ""};
    };
    std::vector<ArgSpec> declared{
        {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"},
        {"entity", T::String, true, "The entity, e.g. \"Circle1\".", {}, ""},
        length("x1", "Line or slot start x."),
        length("y1", "Line or slot start y."),
        length("x2", "Line or slot end x."),
        length("y2", "Line or slot end y."),
        length("length", "Line length (the start stays)."),
        angle("angle", "Line direction, degrees."),
        length("x", "Point x, a rectangle's lower-left corner x, or where a text sits."),
        length("y", "Point y, a rectangle's lower-left corner y, or where a text sits."),
        length("width", "Rectangle or slot width."),
        length("height", "Rectangle height, or a text's cap height (or \"12pt\")."),
        length("cx", "Center x."),
        length("cy", "Center y."),
        length("radius", "Circle, arc or polygon radius."),
        length("diameter", "Circle, arc or polygon diameter."),
        angle("start_angle", "Arc start, degrees from the sketch x axis."),
        angle("sweep_angle", "Arc sweep, degrees; negative is clockwise."),
        {"sides", T::Integer, false, "Polygon sides, 3 to 1000.", {}, ""},
        length("across_flats", "Polygon size across flats."),
        angle("rotation", "Polygon: direction of the first corner, degrees."),
        {"points", T::String, false, "Spline fit points: \"x,y; x,y; ...\".", {}, ""},
        {"closed", T::Boolean, false, "Spline: closed and periodic.", {}, ""},
    };
    for (ArgSpec& argument : text::textArguments()) {
        const auto& only = text::textOnlyKeys();
        if (std::find(only.begin(), only.end(), argument.name) == only.end()) continue;
        argument.required = false;
        declared.push_back(std::move(argument));
    }
    return declared;
}

Result<std::unique_ptr<Command>> EditSketchEntityCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    Result<SketchItem> names = readSketchItem(record, arguments(), "entity");
    if (!names) return Error(names);

    Changes changes;
    for (const char* key : kLengthKeys) {
        if (!reader.has(key)) continue;
        Result<double> v = reader.length(key);
        if (!v) return Error(v);
        changes.values[key] = *v;
    }
    if (reader.has("height")) {
        Result<double> height = text::readTextHeight(record);
        if (!height) return Error(height);
        changes.values["height"] = *height;
    }
    for (const char* key : kAngleKeys) {
        if (!reader.has(key)) continue;
        Result<double> v = reader.angle(key);
        if (!v) return Error(v);
        changes.values[key] = *v;
    }
    if (reader.has("radius") && reader.has("diameter"))
        return fail("Give either 'radius' or 'diameter', not both.");
    if (reader.has("across_flats") && (reader.has("radius") || reader.has("diameter")))
        return fail("Give only one of 'radius', 'diameter' or 'across_flats'.");
    if (reader.has("sides")) {
        Result<std::int64_t> sides = reader.integer("sides");
        if (!sides) return Error(sides);
        // Out-of-range counts are left to the polygon's own check.
        changes.sides = static_cast<int>(std::clamp<std::int64_t>(*sides, -1, 1001));
    }
    if (reader.has("points")) {
        const auto* text = std::get_if<std::string>(record.find("points"));
        Result<std::vector<Point2>> points =
            text ? parseSplinePoints(*text) : Result<std::vector<Point2>>(Error{});
        if (!text || !points) return fail("'points' must be a string like \"x,y; x,y\".");
        changes.points = std::move(points).value();
    }
    if (reader.has("closed")) {
        Result<bool> closed = reader.boolean("closed");
        if (!closed) return Error(closed);
        changes.closed = *closed;
    }
    Result<text::TextChanges> textChanges = text::readTextChanges(record);
    if (!textChanges) return Error(textChanges);
    changes.text = std::move(textChanges).value();
    return std::unique_ptr<Command>(std::make_unique<EditSketchEntityCommand>(
        record, names->sketch, names->item, std::move(changes)));
}

Result<std::string> EditSketchEntityCommand::edit(const SketchObject& sketch, Lists& lists) {
    auto it = std::find_if(lists.entities.begin(), lists.entities.end(),
                           [&](const SketchEntity& e) { return e.id == entity_; });
    if (it == lists.entities.end())
        return fail(sketch.id + " has no entity named '" + entity_ + "'.");
    SketchEntity& entity = *it;
    if (entity.isProjected())
        return fail(entity.id + " is projected from " + entity.source +
                    "; it follows that. Delete it to unlink.");

    Applier apply(changes_);
    if (!std::visit(apply, entity.geometry)) return fail("edit_sketch_entity: nothing to change.");
    const auto* edited = std::get_if<SketchText>(&entity.geometry);
    if (edited && edited->path.find_first_not_of(" \t\r\n") != std::string::npos)
        if (auto path = text::findTextPath(*edited, lists.entities); !path) return Error(path);
    if (auto valid = validateEntity(entity); !valid) return Error(valid);
    if (edited)
        if (auto layout = text::layoutTextStrictly(*edited, lists.entities); !layout)
            return Error(layout);

    for (const SketchConstraint& c : lists.constraints)
        for (const SketchRef& ref : c.refs)
            if (ref.entity == entity.id && !resolveReference(ref, lists.entities))
                return fail(c.id + " uses a part of " + entity.id +
                            " that the change removes; delete " + c.id + " first.");
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);

    Result<std::vector<SketchEntity>> solved =
        solveSketch(lists.entities, lists.constraints, {entity.id});
    if (!solved)
        return fail("That change conflicts with the sketch's constraints; edit the dimension "
                    "that controls it instead.");
    const std::string id = entity.id;
    lists.entities = std::move(solved).value();
    return "Changed " + id + ".";
}

} // namespace cad

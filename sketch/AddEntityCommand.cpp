// Reading the add commands' arguments into a new entity, and adding it. The entity
// keeps the ID it got the first time, so redo brings back the same ID.
#include "sketch/AddEntityCommand.h"

#include "core/ArgReader.h"
#include "core/units/Length.h"
#include "core/units/NameLookup.h"
#include "sketch/SplinePoints.h"
#include "sketch/text/TextLayout.h"
#include "sketch/text/TextOptions.h"

#include <cmath>
#include <numbers>

namespace cad {

namespace {

using T = ArgType;

ArgSpec sketchArg() {
    return {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"};
}
ArgSpec lengthArg(const char* name, const char* description, bool required = true) {
    return {name, T::Length, required, description, {}, ""};
}
ArgSpec constructionArg() {
    return {"construction",
            T::Boolean,
            false,
            "Construction (reference) geometry: drawn dashed, not used for profiles or exports "
            "(default false).",
            {},
            ""};
}

std::vector<ArgSpec> twoPoints(const char* first, const char* second) {
    return {lengthArg("x1", first), lengthArg("y1", first), lengthArg("x2", second),
            lengthArg("y2", second)};
}

// Reads lengths in order into the given places; the first problem wins.
Result<void> readLengths(const ArgReader& reader,
                         std::initializer_list<std::pair<const char*, double*>> targets) {
    for (auto [key, target] : targets) {
        Result<double> value = reader.length(key);
        if (!value) return Error(value);
        *target = *value;
    }
    return {};
}

// Circle and arc size: exactly one of radius and diameter.
Result<double> readRadius(const ArgReader& reader, const std::string& command) {
    if (reader.has("radius") == reader.has("diameter"))
        return fail(command + ": give exactly one of 'radius' or 'diameter'.");
    if (reader.has("radius")) return reader.length("radius");
    Result<double> diameter = reader.length("diameter");
    if (!diameter) return diameter;
    return *diameter / 2;
}

double degrees(double radians) { return radians * 180.0 / std::numbers::pi; }

// The arc from p1 through p2 to p3: centre at the circumcentre, starting at p1, the
// sweep counter-clockwise positive.
Result<SketchArc> arcThrough(Point2 p1, Point2 p2, Point2 p3) {
    const double ax = p2.x - p1.x, ay = p2.y - p1.y, bx = p3.x - p1.x, by = p3.y - p1.y;
    const double cross = ax * by - ay * bx;
    if (std::fabs(cross) <= 1e-12 * std::hypot(ax, ay) * std::hypot(bx, by))
        return fail("add_arc: the three points are in a line; they don't define an arc.");
    const double a2 = ax * ax + ay * ay, b2 = bx * bx + by * by;
    const Point2 c{p1.x + (by * a2 - ay * b2) / (2 * cross),
                   p1.y + (ax * b2 - bx * a2) / (2 * cross)};
    auto direction = [&](Point2 p) { return std::atan2(p.y - c.y, p.x - c.x); };
    auto turn = [](double from, double to) { // counter-clockwise, in [0, 2pi)
        double t = std::fmod(to - from, 2 * std::numbers::pi);
        return t < 0 ? t + 2 * std::numbers::pi : t;
    };
    const double start = direction(p1);
    const double toEnd = turn(start, direction(p3));
    const double toMiddle = turn(start, direction(p2));
    const double sweep = toMiddle < toEnd ? toEnd : toEnd - 2 * std::numbers::pi;
    return SketchArc{c, std::hypot(p1.x - c.x, p1.y - c.y), degrees(start), degrees(sweep)};
}

Result<SketchGeometry> readLine(const ArgReader& reader) {
    SketchLine l;
    if (auto ok = readLengths(
            reader, {{"x1", &l.start.x}, {"y1", &l.start.y}, {"x2", &l.end.x}, {"y2", &l.end.y}});
        !ok)
        return Error(ok);
    return SketchGeometry(l);
}

Result<SketchGeometry> readRectangle(const ArgReader& reader) {
    Point2 a, b;
    if (auto ok = readLengths(reader, {{"x1", &a.x}, {"y1", &a.y}, {"x2", &b.x}, {"y2", &b.y}});
        !ok)
        return Error(ok);
    return SketchGeometry(SketchRectangle{
        {std::min(a.x, b.x), std::min(a.y, b.y)}, std::fabs(b.x - a.x), std::fabs(b.y - a.y)});
}

Result<SketchGeometry> readCircle(const ArgReader& reader, const std::string& command) {
    SketchCircle c;
    if (auto ok = readLengths(reader, {{"cx", &c.center.x}, {"cy", &c.center.y}}); !ok)
        return Error(ok);
    Result<double> r = readRadius(reader, command);
    if (!r) return Error(r);
    c.radius = *r;
    return SketchGeometry(c);
}

Result<SketchGeometry> readPoint(const ArgReader& reader) {
    SketchPoint p;
    if (auto ok = readLengths(reader, {{"x", &p.position.x}, {"y", &p.position.y}}); !ok)
        return Error(ok);
    return SketchGeometry(p);
}

Result<SketchGeometry> readArc(const ArgReader& reader, const std::string& command) {
    bool centerForm = false, threePoints = false;
    for (const char* key : {"cx", "cy", "radius", "diameter", "start_angle", "sweep_angle"})
        centerForm = centerForm || reader.has(key);
    for (const char* key : {"x1", "y1", "x2", "y2", "x3", "y3"})
        threePoints = threePoints || reader.has(key);
    if (centerForm && threePoints)
        return fail("add_arc: give either the center form or three points, not both.");
    if (threePoints) {
        Point2 p1, p2, p3;
        if (auto ok = readLengths(reader, {{"x1", &p1.x},
                                           {"y1", &p1.y},
                                           {"x2", &p2.x},
                                           {"y2", &p2.y},
                                           {"x3", &p3.x},
                                           {"y3", &p3.y}});
            !ok)
            return Error(ok);
        Result<SketchArc> arc = arcThrough(p1, p2, p3);
        if (!arc) return Error(arc);
        return SketchGeometry(*arc);
    }
    SketchArc a;
    if (auto ok = readLengths(reader, {{"cx", &a.center.x}, {"cy", &a.center.y}}); !ok)
        return Error(ok);
    Result<double> r = readRadius(reader, command);
    if (!r) return Error(r);
    a.radius = *r;
    Result<double> start = reader.angle("start_angle");
    if (!start) return Error(start);
    Result<double> sweep = reader.angle("sweep_angle");
    if (!sweep) return Error(sweep);
    a.startAngle = *start;
    a.sweepAngle = *sweep;
    return SketchGeometry(a);
}

Result<SketchGeometry> readPolygon(const ArgReader& reader) {
    SketchPolygon p;
    if (auto ok = readLengths(reader, {{"cx", &p.center.x}, {"cy", &p.center.y}}); !ok)
        return Error(ok);
    if (!reader.has("sides")) return Error(reader.integer("sides"));
    Result<std::int64_t> sides = reader.integer("sides");
    if (!sides || *sides < 3 || *sides > 1000)
        return fail("add_polygon: 'sides' must be a whole number from 3 to 1000.");
    p.sides = static_cast<int>(*sides);
    const int sizes = (reader.has("radius") ? 1 : 0) + (reader.has("diameter") ? 1 : 0) +
                      (reader.has("across_flats") ? 1 : 0);
    if (sizes != 1)
        return fail("add_polygon: give exactly one of 'radius', 'diameter' or 'across_flats'.");
    const char* key = reader.has("radius")     ? "radius"
                      : reader.has("diameter") ? "diameter"
                                               : "across_flats";
    Result<double> size = reader.length(key);
    if (!size) return Error(size);
    if (reader.has("radius"))
        p.radius = *size;
    else if (reader.has("diameter"))
        p.radius = *size / 2;
    else
        p.radius = *size / (2 * std::cos(std::numbers::pi / p.sides));
    Result<double> rotation = reader.angle("rotation", 90.0);
    if (!rotation) return Error(rotation);
    p.rotation = *rotation;
    return SketchGeometry(p);
}

Result<SketchGeometry> readSpline(const ArgReader& reader) {
    Result<std::string> text = reader.string("points");
    if (!text) return Error(text);
    Result<bool> closed = reader.boolean("closed", false);
    if (!closed) return Error(closed);
    Result<std::vector<Point2>> points = parseSplinePoints(*text);
    if (!points) return Error(points);
    return SketchGeometry(SketchSpline{std::move(points).value(), *closed});
}

Result<SketchGeometry> readSlot(const ArgReader& reader) {
    SketchSlot s;
    if (auto ok = readLengths(reader, {{"x1", &s.start.x},
                                       {"y1", &s.start.y},
                                       {"x2", &s.end.x},
                                       {"y2", &s.end.y},
                                       {"width", &s.width}});
        !ok)
        return Error(ok);
    return SketchGeometry(s);
}

// A new text: the defaults, then what was given. The size is shown in the
// document's unit unless the command says otherwise.
Result<SketchGeometry> readText(const ArgReader& reader, const CommandRecord& record) {
    Result<std::string> words = reader.string("text");
    if (!words) return Error(words);
    Result<text::TextChanges> changes = text::readTextChanges(record);
    if (!changes) return Error(changes);
    SketchText t;
    t.sizeUnit = std::string(units::unitAbbreviation(units::currentLengthUnit()));
    changes->applyTo(t);
    return SketchGeometry(std::move(t));
}

} // namespace

std::vector<ArgSpec> AddEntityCommand::arguments(EntityKind kind) {
    std::vector<ArgSpec> declared{sketchArg()};
    auto add = [&](std::vector<ArgSpec> more) {
        for (ArgSpec& declaredArg : more) declared.push_back(std::move(declaredArg));
    };
    const char* radius = "Give radius or diameter.";
    switch (kind) {
    case EntityKind::Line:
        add(twoPoints("Start point.", "End point."));
        break;
    case EntityKind::Rectangle:
        add(twoPoints("A corner.", "The opposite corner."));
        break;
    case EntityKind::Circle:
        add({lengthArg("cx", "Center."), lengthArg("cy", "Center."),
             lengthArg("radius", radius, false), lengthArg("diameter", radius, false)});
        break;
    case EntityKind::Point:
        add({lengthArg("x", "Position."), lengthArg("y", "Position.")});
        break;
    case EntityKind::Arc:
        add({lengthArg("cx", "Center (center form).", false),
             lengthArg("cy", "Center (center form).", false),
             lengthArg("radius", radius, false),
             lengthArg("diameter", radius, false),
             {"start_angle", T::Angle, false, "Degrees from the sketch x axis.", {}, ""},
             {"sweep_angle", T::Angle, false, "Degrees; negative is clockwise.", {}, ""},
             lengthArg("x1", "Start (three points).", false),
             lengthArg("y1", "Start (three points).", false),
             lengthArg("x2", "A point on the arc (three points).", false),
             lengthArg("y2", "A point on the arc (three points).", false),
             lengthArg("x3", "End (three points).", false),
             lengthArg("y3", "End (three points).", false)});
        break;
    case EntityKind::Polygon:
        add({lengthArg("cx", "Center."),
             lengthArg("cy", "Center."),
             {"sides", T::Integer, true, "3 to 1000.", {}, ""},
             lengthArg("radius", "To the corners. Give one of radius, diameter, across_flats.",
                       false),
             lengthArg("diameter", "Across corners.", false),
             lengthArg("across_flats", "Across flats (e.g. a nut).", false),
             {"rotation", T::Angle, false, "Direction of the first corner (default 90).", {}, ""}});
        break;
    case EntityKind::Spline:
        add({{"points",
              T::String,
              true,
              "Fit points as x,y pairs separated by semicolons: \"0,0; 10,5; 20,0\" (at least 2, "
              "3 when closed).",
              {},
              ""},
             {"closed", T::Boolean, false, "A closed, periodic spline.", {}, ""}});
        break;
    case EntityKind::Slot:
        add({lengthArg("x1", "First end center."), lengthArg("y1", "First end center."),
             lengthArg("x2", "Second end center."), lengthArg("y2", "Second end center."),
             lengthArg("width", "Full width.")});
        break;
    case EntityKind::Text:
        add(text::textArguments());
        break;
    }
    declared.push_back(constructionArg());
    return declared;
}

Result<std::unique_ptr<Command>> AddEntityCommand::create(EntityKind kind,
                                                          const CommandRecord& record) {
    ArgReader reader(record);
    const std::string& command = record.name;
    if ((kind == EntityKind::Circle || kind == EntityKind::Arc) && reader.has("across_flats"))
        return fail(command + ": 'across_flats' only applies to polygons.");
    if (auto ok = reader.allowDeclared(arguments(kind)); !ok) return Error(ok);
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);

    Result<SketchGeometry> geometry = [&]() -> Result<SketchGeometry> {
        switch (kind) {
        case EntityKind::Line:
            return readLine(reader);
        case EntityKind::Rectangle:
            return readRectangle(reader);
        case EntityKind::Circle:
            return readCircle(reader, command);
        case EntityKind::Point:
            return readPoint(reader);
        case EntityKind::Arc:
            return readArc(reader, command);
        case EntityKind::Polygon:
            return readPolygon(reader);
        case EntityKind::Spline:
            return readSpline(reader);
        case EntityKind::Slot:
            return readSlot(reader);
        case EntityKind::Text:
            return readText(reader, record);
        }
        return fail(command + ": unknown entity kind.");
    }();
    if (!geometry) return Error(geometry);
    Result<bool> construction = reader.boolean("construction", false);
    if (!construction) return Error(construction);

    SketchEntity entity;
    entity.geometry = std::move(geometry).value();
    entity.construction = *construction;
    if (auto valid = validateEntity(entity); !valid) return Error(valid);

    std::unique_ptr<Command> made;
    switch (kind) {
    case EntityKind::Line:
        made = std::make_unique<AddLineCommand>(record, *sketch, std::move(entity));
        break;
    case EntityKind::Rectangle:
        made = std::make_unique<AddRectangleCommand>(record, *sketch, std::move(entity));
        break;
    case EntityKind::Circle:
        made = std::make_unique<AddCircleCommand>(record, *sketch, std::move(entity));
        break;
    default:
        made = std::make_unique<AddEntityCommand>(record, *sketch, std::move(entity));
        break;
    }
    return made;
}

Result<std::string> AddEntityCommand::edit(const SketchObject& sketch, Lists& lists) {
    // Text is refused when it can't be laid out: a font that isn't installed, a path
    // that isn't a curve of this sketch.
    if (const auto* t = std::get_if<SketchText>(&entity_.geometry))
        if (auto layout = text::layoutTextStrictly(*t, lists.entities); !layout)
            return Error(layout);
    if (entity_.id.empty()) {
        entity_.id = nextEntityId(lists.entities, entityKindName(entity_));
    } else if (findEntity(lists.entities, entity_.id)) {
        return fail(sketch.id + " already has an entity named '" + entity_.id + "'.");
    }
    lists.entities.push_back(entity_);
    return "Added " + entity_.id + " to " + sketch.id + ".";
}

} // namespace cad

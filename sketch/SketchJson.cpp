// Sketch records: one JSON object per entity ({"id", "kind", its values}) and per
// constraint ({"id", "type", "refs", "value", "data", "label", "expression"}).
// Reading checks every value and every entity's validity before anything is kept.
#include "sketch/SketchJson.h"

#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"
#include "sketch/text/TextOptions.h"

#include <cmath>
#include <iterator>
#include <optional>

namespace cad {

namespace {

using json = nlohmann::json;
using ordered_json = nlohmann::ordered_json;

constexpr const char* kKindWords[] = {"line",    "circle", "rectangle", "point", "arc",
                                      "polygon", "spline", "slot",      "text"};
constexpr int kKinds = static_cast<int>(std::size(kKindWords));

ordered_json point(Point2 p) { return ordered_json::array({p.x, p.y}); }

bool finite(const json& v) { return v.is_number() && std::isfinite(v.get<double>()); }

Result<double> number(const json& record, const char* key) {
    auto it = record.find(key);
    if (it == record.end() || !finite(*it))
        return fail(std::string("\"") + key + "\" must be a number");
    return it->get<double>();
}

Result<Point2> pointFrom(const json& value, const std::string& what) {
    if (!value.is_array() || value.size() != 2 || !finite(value[0]) || !finite(value[1]))
        return fail(what + " must be [x, y]");
    return Point2{value[0].get<double>(), value[1].get<double>()};
}

Result<Point2> pointKey(const json& record, const char* key) {
    auto it = record.find(key);
    return pointFrom(it == record.end() ? json() : *it, std::string("\"") + key + "\"");
}

struct GeometryWriter {
    ordered_json& r;
    void operator()(const SketchLine& g) const {
        r["start"] = point(g.start), r["end"] = point(g.end);
    }
    void operator()(const SketchCircle& g) const {
        r["center"] = point(g.center), r["radius"] = g.radius;
    }
    void operator()(const SketchRectangle& g) const {
        r["corner"] = point(g.corner), r["width"] = g.width, r["height"] = g.height;
    }
    void operator()(const SketchPoint& g) const { r["position"] = point(g.position); }
    void operator()(const SketchArc& g) const {
        r["center"] = point(g.center), r["radius"] = g.radius;
        r["startAngle"] = g.startAngle, r["sweepAngle"] = g.sweepAngle;
    }
    void operator()(const SketchPolygon& g) const {
        r["center"] = point(g.center), r["radius"] = g.radius, r["sides"] = g.sides,
        r["rotation"] = g.rotation;
    }
    void operator()(const SketchSpline& g) const {
        ordered_json points = ordered_json::array();
        for (Point2 p : g.points) points.push_back(point(p));
        r["points"] = points;
        r["closed"] = g.closed;
    }
    void operator()(const SketchSlot& g) const {
        r["start"] = point(g.start), r["end"] = point(g.end), r["width"] = g.width;
    }
    void operator()(const SketchText& g) const {
        r["text"] = g.text, r["font"] = g.font, r["height"] = g.height;
        r["position"] = point(g.position), r["angle"] = g.angle;
        r["align"] = text::alignWord(g.align), r["valign"] = text::valignWord(g.valign);
        r["bold"] = g.bold, r["italic"] = g.italic, r["sizeIs"] = text::sizeIsWord(g.sizeIs);
        r["lineSpacing"] = g.lineSpacing, r["tracking"] = g.tracking, r["kerning"] = g.kerning;
        r["widthScale"] = g.widthScale, r["heightScale"] = g.heightScale;
        r["baselineShift"] = g.baselineShift, r["charRotation"] = g.charRotation;
        r["vertical"] = g.vertical, r["allCaps"] = g.allCaps;
        r["path"] = g.path, r["pathOffset"] = g.pathOffset, r["pathFlip"] = g.pathFlip;
        r["sizeUnit"] = g.sizeUnit;
    }
};

// A text record: "text" and "position" are needed; every option may be missing and
// then keeps its default, but one that is there must be of its kind.
Result<SketchGeometry> textFrom(const json& r) {
    SketchText t;
    auto text = r.find("text");
    if (text == r.end() || !text->is_string()) return fail("\"text\" must be a string");
    t.text = text->get<std::string>();
    auto position = pointKey(r, "position");
    if (!position) return Error(position);
    t.position = *position;
    for (auto [key, target] : {std::pair{"height", &t.height},
                               {"angle", &t.angle},
                               {"lineSpacing", &t.lineSpacing},
                               {"tracking", &t.tracking},
                               {"widthScale", &t.widthScale},
                               {"heightScale", &t.heightScale},
                               {"baselineShift", &t.baselineShift},
                               {"charRotation", &t.charRotation},
                               {"pathOffset", &t.pathOffset}}) {
        if (!r.contains(key)) continue;
        auto v = number(r, key);
        if (!v) return Error(v);
        *target = *v;
    }
    for (auto [key, target] : {std::pair{"bold", &t.bold},
                               {"italic", &t.italic},
                               {"kerning", &t.kerning},
                               {"vertical", &t.vertical},
                               {"allCaps", &t.allCaps},
                               {"pathFlip", &t.pathFlip}}) {
        auto v = r.find(key);
        if (v == r.end()) continue;
        if (!v->is_boolean()) return fail(std::string("\"") + key + "\" must be true or false");
        *target = v->get<bool>();
    }
    for (auto [key, target] : {std::pair{"font", &t.font}, {"path", &t.path}}) {
        auto v = r.find(key);
        if (v == r.end()) continue;
        if (!v->is_string()) return fail(std::string("\"") + key + "\" must be a string");
        *target = v->get<std::string>();
    }
    // Choices by their words; a word this version doesn't know is refused, not guessed.
    auto word = [&](const char* key) -> std::optional<std::string> {
        auto v = r.find(key);
        if (v == r.end() || !v->is_string()) return std::nullopt;
        return v->get<std::string>();
    };
    auto choice = [&](const char* key, auto parse, auto& target) -> Result<void> {
        if (!r.contains(key)) return {};
        std::optional<std::string> w = word(key);
        auto parsed = w ? parse(*w) : std::nullopt;
        if (!parsed) return fail(std::string("\"") + key + "\" isn't a known choice");
        target = *parsed;
        return {};
    };
    if (auto ok = choice("align", text::parseAlign, t.align); !ok) return Error(ok);
    if (auto ok = choice("valign", text::parseValign, t.valign); !ok) return Error(ok);
    if (auto ok = choice("sizeIs", text::parseSizeIs, t.sizeIs); !ok) return Error(ok);
    if (r.contains("sizeUnit")) {
        std::optional<std::string> unit = word("sizeUnit");
        if (!unit || !text::isSizeUnit(*unit))
            return fail("\"sizeUnit\" must be pt, mm, cm, m, in or ft");
        t.sizeUnit = *unit;
    }
    return SketchGeometry(std::move(t));
}

Result<SketchGeometry> geometryFrom(EntityKind kind, const json& r) {
    // Each kind reads its values in table order; the first problem wins.
    switch (kind) {
    case EntityKind::Line: {
        auto a = pointKey(r, "start"), b = pointKey(r, "end");
        if (!a) return Error(a);
        if (!b) return Error(b);
        return SketchGeometry(SketchLine{*a, *b});
    }
    case EntityKind::Circle: {
        auto c = pointKey(r, "center");
        auto radius = number(r, "radius");
        if (!c) return Error(c);
        if (!radius) return Error(radius);
        return SketchGeometry(SketchCircle{*c, *radius});
    }
    case EntityKind::Rectangle: {
        auto c = pointKey(r, "corner");
        auto w = number(r, "width"), h = number(r, "height");
        if (!c) return Error(c);
        if (!w) return Error(w);
        if (!h) return Error(h);
        return SketchGeometry(SketchRectangle{*c, *w, *h});
    }
    case EntityKind::Point: {
        auto p = pointKey(r, "position");
        if (!p) return Error(p);
        return SketchGeometry(SketchPoint{*p});
    }
    case EntityKind::Arc: {
        auto c = pointKey(r, "center");
        auto radius = number(r, "radius"), start = number(r, "startAngle"),
             sweep = number(r, "sweepAngle");
        if (!c) return Error(c);
        for (auto* v : {&radius, &start, &sweep})
            if (!*v) return Error(*v);
        return SketchGeometry(SketchArc{*c, *radius, *start, *sweep});
    }
    case EntityKind::Polygon: {
        auto c = pointKey(r, "center");
        auto radius = number(r, "radius"), rotation = number(r, "rotation");
        auto sides = r.find("sides");
        if (!c) return Error(c);
        if (!radius) return Error(radius);
        if (sides == r.end() || !sides->is_number_integer() || sides->get<std::int64_t>() < 3 ||
            sides->get<std::int64_t>() > 1000)
            return fail("\"sides\" must be a whole number from 3 to 1000");
        if (!rotation) return Error(rotation);
        return SketchGeometry(SketchPolygon{*c, *radius, sides->get<int>(), *rotation});
    }
    case EntityKind::Spline: {
        auto points = r.find("points");
        if (points == r.end() || !points->is_array())
            return fail("\"points\" must be a list of [x, y]");
        SketchSpline spline;
        for (const json& p : *points) {
            auto q = pointFrom(p, "every spline point");
            if (!q) return Error(q);
            spline.points.push_back(*q);
        }
        auto closed = r.find("closed");
        if (closed != r.end() && !closed->is_boolean())
            return fail("\"closed\" must be true or false");
        spline.closed = closed != r.end() && closed->get<bool>();
        return SketchGeometry(std::move(spline));
    }
    case EntityKind::Slot: {
        auto a = pointKey(r, "start"), b = pointKey(r, "end");
        auto width = number(r, "width");
        if (!a) return Error(a);
        if (!b) return Error(b);
        if (!width) return Error(width);
        return SketchGeometry(SketchSlot{*a, *b, *width});
    }
    case EntityKind::Text:
        return textFrom(r);
    }
    return fail("unknown entity kind");
}

bool optionalString(const json& r, const char* key, std::string& out) {
    auto it = r.find(key);
    if (it == r.end()) return true;
    if (!it->is_string()) return false;
    out = it->get<std::string>();
    return true;
}

ordered_json valueToJson(const Value& value) {
    return std::visit([](const auto& v) { return ordered_json(v); }, value);
}

ordered_json sketchRecord(const SketchObject& sketch, ordered_json& r) {
    r["plane"] = {
        {"origin", sketch.origin}, {"normal", sketch.normal}, {"xDirection", sketch.xDirection}};
    if (!sketch.support.empty()) r["support"] = sketch.support;
    ordered_json entities = ordered_json::array(), constraints = ordered_json::array();
    for (const SketchEntity& e : sketch.entities) entities.push_back(entityToJson(e));
    for (const SketchConstraint& c : sketch.constraints) constraints.push_back(constraintToJson(c));
    r["entities"] = entities;
    r["constraints"] = constraints;
    if (!sketch.patterns.empty()) {
        ordered_json patterns = ordered_json::array();
        for (const SketchPattern& p : sketch.patterns) {
            ordered_json arguments = ordered_json::object();
            for (const auto& [key, value] : p.record.arguments) arguments[key] = valueToJson(value);
            patterns.push_back({{"id", p.id},
                                {"command", p.record.name},
                                {"arguments", arguments},
                                {"copies", p.copies}});
        }
        r["patterns"] = patterns;
    }
    return r;
}

Result<Vec3> vectorKey(const json& plane, const char* key) {
    auto it = plane.find(key);
    if (it == plane.end() || !it->is_array() || it->size() != 3 || !finite((*it)[0]) ||
        !finite((*it)[1]) || !finite((*it)[2]))
        return fail(std::string("\"plane\".\"") + key + "\" must be [x, y, z]");
    return Vec3{(*it)[0].get<double>(), (*it)[1].get<double>(), (*it)[2].get<double>()};
}

Result<void> readPatterns(const json& list, SketchObject& sketch) {
    if (!list.is_array()) return fail("\"patterns\" must be a list");
    for (const json& p : list) {
        SketchPattern pattern;
        if (!p.is_object() || !optionalString(p, "id", pattern.id) ||
            !optionalString(p, "command", pattern.record.name))
            return fail("a pattern needs an \"id\" and a \"command\"");
        if (auto args = p.find("arguments"); args != p.end()) {
            if (!args->is_object())
                return fail("pattern " + pattern.id + ": \"arguments\" must be an object");
            for (auto a = args->begin(); a != args->end(); ++a) {
                if (a->is_boolean())
                    pattern.record.set(a.key(), Value(a->get<bool>()));
                else if (a->is_number_integer())
                    pattern.record.set(a.key(), Value(a->get<std::int64_t>()));
                else if (a->is_number())
                    pattern.record.set(a.key(), Value(a->get<double>()));
                else if (a->is_string())
                    pattern.record.set(a.key(), Value(a->get<std::string>()));
                else
                    return fail("pattern " + pattern.id +
                                ": arguments must be numbers, strings or booleans");
            }
        }
        if (auto copies = p.find("copies"); copies != p.end()) {
            if (!copies->is_array())
                return fail("pattern " + pattern.id + ": \"copies\" must be a list");
            for (const json& c : *copies) {
                if (!c.is_string())
                    return fail("pattern " + pattern.id + ": copies must be entity IDs");
                pattern.copies.push_back(c.get<std::string>());
            }
        }
        sketch.patterns.push_back(std::move(pattern));
    }
    return {};
}

Result<void> readSketch(SketchObject& sketch, const json& r) {
    auto plane = r.find("plane");
    if (plane == r.end() || !plane->is_object()) return fail("\"plane\" must be an object");
    auto origin = vectorKey(*plane, "origin"), normal = vectorKey(*plane, "normal");
    auto xDirection = vectorKey(*plane, "xDirection");
    for (auto* v : {&origin, &normal, &xDirection})
        if (!*v) return Error(*v);
    sketch.setFrame({*origin, *normal, *xDirection});
    if (!optionalString(r, "support", sketch.support)) return fail("\"support\" must be a string");

    auto entities = r.find("entities");
    if (entities != r.end()) {
        if (!entities->is_array()) return fail("\"entities\" must be a list");
        for (const json& e : *entities) {
            Result<SketchEntity> entity = entityFromJson(e);
            if (!entity) return Error(entity);
            if (findEntity(sketch.entities, entity->id))
                return fail("two entities are named \"" + entity->id + "\"");
            sketch.entities.push_back(std::move(entity).value());
        }
    }
    auto constraints = r.find("constraints");
    if (constraints != r.end()) {
        if (!constraints->is_array()) return fail("\"constraints\" must be a list");
        for (const json& c : *constraints) {
            Result<SketchConstraint> constraint = constraintFromJson(c);
            if (!constraint) return Error(constraint);
            if (sketch.findConstraint(constraint->id))
                return fail("two constraints are named \"" + constraint->id + "\"");
            sketch.constraints.push_back(std::move(constraint).value());
        }
    }
    if (auto patterns = r.find("patterns"); patterns != r.end())
        return readPatterns(*patterns, sketch);
    return {};
}

} // namespace

ordered_json entityToJson(const SketchEntity& entity) {
    ordered_json r = ordered_json::object();
    r["id"] = entity.id;
    r["kind"] = kKindWords[entity.geometry.index()];
    std::visit(GeometryWriter{r}, entity.geometry);
    if (entity.construction) r["construction"] = true;
    if (!entity.group.empty()) r["group"] = entity.group;
    if (!entity.source.empty()) r["source"] = entity.source;
    return r;
}

Result<SketchEntity> entityFromJson(const json& r) {
    if (!r.is_object()) return fail("every entity must be an object");
    SketchEntity entity;
    if (!optionalString(r, "id", entity.id) || entity.id.empty())
        return fail("every entity needs an \"id\"");
    std::string kindWord;
    optionalString(r, "kind", kindWord);
    int kind = -1;
    for (int k = 0; k < kKinds; ++k)
        if (kindWord == kKindWords[k]) kind = k;
    if (kind < 0) return fail(entity.id + ": unknown entity kind \"" + kindWord + "\"");
    Result<SketchGeometry> geometry = geometryFrom(static_cast<EntityKind>(kind), r);
    if (!geometry) return geometry.withPrefix(entity.id + ": ");
    entity.geometry = std::move(geometry).value();
    if (auto c = r.find("construction"); c != r.end()) {
        if (!c->is_boolean()) return fail(entity.id + ": \"construction\" must be true or false");
        entity.construction = c->get<bool>();
    }
    if (!optionalString(r, "group", entity.group) || !optionalString(r, "source", entity.source))
        return fail(entity.id + ": \"group\" and \"source\" must be strings");
    if (Result<void> valid = validateEntity(entity); !valid)
        return valid.withPrefix(entity.id + ": ");
    return entity;
}

ordered_json constraintToJson(const SketchConstraint& c) {
    ordered_json r = ordered_json::object();
    r["id"] = c.id;
    r["type"] = std::string(constraintKeyword(c.type));
    ordered_json refs = ordered_json::array();
    for (const SketchRef& ref : c.refs) refs.push_back(ref.text());
    r["refs"] = refs;
    if (isDimension(c.type)) r["value"] = c.value;
    if (!c.data.empty()) r["data"] = c.data;
    if (c.label) r["label"] = {c.label->first, c.label->second};
    if (c.expression) r["expression"] = units::expressionToJson(*c.expression);
    return r;
}

Result<SketchConstraint> constraintFromJson(const json& r) {
    if (!r.is_object()) return fail("every constraint must be an object");
    SketchConstraint c;
    if (!optionalString(r, "id", c.id) || c.id.empty())
        return fail("every constraint needs an \"id\"");
    std::string keyword;
    optionalString(r, "type", keyword);
    std::optional<ConstraintType> type = parseConstraintKeyword(keyword);
    if (!type) return fail(c.id + ": unknown constraint type \"" + keyword + "\"");
    c.type = *type;
    auto refs = r.find("refs");
    if (refs == r.end() || !refs->is_array()) return fail(c.id + ": \"refs\" must be a list");
    for (const json& ref : *refs) {
        std::optional<SketchRef> parsed =
            ref.is_string() ? parseReference(ref.get<std::string>()) : std::nullopt;
        if (!parsed) return fail(c.id + ": every reference must be text such as \"Line1.end\"");
        c.refs.push_back(*parsed);
    }
    if (isDimension(c.type)) {
        Result<double> value = number(r, "value");
        if (!value) return value.withPrefix(c.id + ": ");
        c.value = *value;
    }
    if (auto data = r.find("data"); data != r.end()) {
        if (!data->is_array()) return fail(c.id + ": \"data\" must be a list of numbers");
        for (const json& d : *data) {
            if (!finite(d)) return fail(c.id + ": \"data\" must be a list of numbers");
            c.data.push_back(d.get<double>());
        }
    }
    if (auto label = r.find("label"); label != r.end()) {
        Result<Point2> p = pointFrom(*label, c.id + ": \"label\"");
        if (!p) return Error(p);
        c.label = std::make_pair(p->x, p->y);
    }
    if (auto expression = r.find("expression"); expression != r.end()) {
        c.expression = units::expressionFromJson(*expression);
        if (!c.expression) return fail(c.id + ": \"expression\" must be an expression record");
    }
    return c;
}

void registerSketchTypes(ObjectTypes& types) {
    types.add({"Sketch", "sketch", [] { return std::make_unique<SketchObject>(); },
               [](const DocumentObject& o, ordered_json& r, SideFiles&) {
                   sketchRecord(static_cast<const SketchObject&>(o), r);
               },
               [](DocumentObject& o, const json& r, const ArchiveReader&) {
                   return readSketch(static_cast<SketchObject&>(o), r);
               }});
}

} // namespace cad

// Rounding and bevelling a sketch corner: finding the two lines that meet there,
// cutting them back, adding the arc or bevel line, and carrying the corner's
// dimensions over to a construction point that keeps the sharp corner.
#include "sketch/ops/SketchCornerCommand.h"

#include "core/ArgReader.h"
#include "sketch/SketchReference.h"
#include "sketch/ops/OpsGeometry.h"
#include "sketch/ops/SketchWork.h"

#include <algorithm>
#include <charconv>

namespace cad {

namespace {

using namespace ops;

Error notALineEnd(const std::string& command) {
    return fail(command + ": 'corner' must name a line end such as \"Line1.end\".");
}

Point2 endOf(const SketchEntity& e, const std::string& part) {
    if (auto* l = std::get_if<SketchLine>(&e.geometry)) return part == "end" ? l->end : l->start;
    const auto& a = std::get<SketchArc>(e.geometry);
    return polar(a.center, a.radius, radians(a.startAngle + (part == "end" ? a.sweepAngle : 0)));
}

const char* otherEnd(const std::string& part) { return part == "end" ? "start" : "end"; }

// The two lines at a corner: the named one and the one other line or arc with an
// end within 1e-7 mm of it.
struct Corner {
    SketchRef first, second; // the ends at the corner
    Point2 vertex, far1, far2;
};

Result<Corner> findCorner(SketchWork& sketch, const SketchRef& corner, const std::string& command) {
    Result<SketchEntity*> named = sketch.require(corner.entity);
    if (!named) return Error(named);
    const EntityKind kind = (*named)->kind();
    if (kind != EntityKind::Line && kind != EntityKind::Arc) return notALineEnd(command);

    Corner out;
    out.first = corner;
    out.vertex = endOf(**named, corner.part);
    std::vector<SketchRef> others;
    for (const SketchEntity& e : sketch.entities) {
        if (e.id == corner.entity) continue;
        if (e.kind() != EntityKind::Line && e.kind() != EntityKind::Arc) continue;
        for (const char* part : {"start", "end"})
            if (distance(endOf(e, part), out.vertex) <= 1e-7) others.push_back({e.id, part});
    }
    if (others.size() != 1)
        return fail(corner.text() + " is not a corner where exactly two lines meet.");
    out.second = others.front();
    const SketchEntity& other = *sketch.find(out.second.entity);
    if (kind != EntityKind::Line || other.kind() != EntityKind::Line)
        return fail("The corner must join two lines.");
    for (const SketchEntity* e : {static_cast<const SketchEntity*>(*named), &other})
        if (e->isProjected()) return fail(e->id + " is projected; it follows its source.");
    out.far1 = endOf(**named, otherEnd(out.first.part));
    out.far2 = endOf(other, otherEnd(out.second.part));
    return out;
}

// "%f": six decimals, not trimmed, whatever the locale.
std::string sixDecimals(double value) {
    char buffer[64];
    auto [end, ec] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
    return ec == std::errc() ? std::string(buffer, end) : std::string("?");
}

} // namespace

std::vector<ArgSpec> SketchCornerCommand::arguments(std::string_view command) {
    std::vector<ArgSpec> declared{
        {"sketch", ArgType::String, true, "The sketch's ID or name.", {}, "sketch"},
        {"corner",
         ArgType::SketchReference,
         true,
         "A line end at the corner, e.g. \"Line1.end\".",
         {},
         ""}};
    if (command == "sketch_fillet") {
        declared.push_back({"radius", ArgType::Length, true, "The rounding's radius.", {}, ""});
    } else {
        declared.push_back({"distance",
                            ArgType::Length,
                            true,
                            "Along the first line (and the second, unless distance2).",
                            {},
                            ""});
        declared.push_back({"distance2", ArgType::Length, false, "Along the second line.", {}, ""});
    }
    return declared;
}

Result<std::unique_ptr<Command>> SketchCornerCommand::create(const CommandRecord& record) {
    const std::string& command = record.name;
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments(command)); !ok) return Error(ok);
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);
    const auto* text = std::get_if<std::string>(record.find("corner"));
    std::optional<SketchRef> corner = text ? parseReference(*text) : std::nullopt;
    if (!corner || (corner->part != "start" && corner->part != "end")) return notALineEnd(command);

    const bool fillet = command == "sketch_fillet";
    Result<double> size = reader.length(fillet ? "radius" : "distance");
    if (!size) return Error(size);
    std::optional<double> second;
    if (!fillet && reader.has("distance2")) {
        Result<double> d2 = reader.length("distance2");
        if (!d2) return Error(d2);
        second = *d2;
    }
    return std::unique_ptr<Command>(
        std::make_unique<SketchCornerCommand>(record, *sketch, std::move(*corner), *size, second));
}

Result<std::string> SketchCornerCommand::edit(const SketchObject& before, Lists& lists) {
    const bool fillet = record_.name == "sketch_fillet";
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);
    SketchWork sketch(lists.entities, lists.constraints);
    Result<Corner> found = findCorner(sketch, corner_, record_.name);
    if (!found) return Error(found);
    const Corner& c = *found;

    const Point2 v = c.vertex;
    const double l1 = distance(c.far1, v), l2 = distance(c.far2, v);
    const Point2 u1 = unit(c.far1 - v), u2 = unit(c.far2 - v);
    const double theta = std::acos(std::clamp(dot(u1, u2), -1.0, 1.0));
    if (theta < 1e-6 || theta > std::numbers::pi - 1e-6)
        return fail("The lines at that corner are in line with each other; there is no corner to "
                    "round.");
    if (fillet && !(size_ > 0)) return fail("The radius must be greater than zero.");
    if (!fillet && (!(size_ > 0) || (second_ && !(*second_ > 0))))
        return fail("The chamfer distance must be greater than zero.");

    const double t1 = fillet ? size_ / std::tan(theta / 2) : size_;
    const double t2 = fillet ? t1 : second_.value_or(size_);
    if (t1 >= l1 - 1e-6 || t2 >= l2 - 1e-6) {
        if (!fillet) return fail("That chamfer is longer than the lines it cuts.");
        return fail("That radius is too large for these lines (the largest that fits is about " +
                    sixDecimals(std::tan(theta / 2) * std::min(l1, l2)) + " mm).");
    }
    const Point2 p1 = v + t1 * u1, p2 = v + t2 * u2;

    SketchEntity& first = *sketch.find(c.first.entity);
    SketchEntity& second = *sketch.find(c.second.entity);
    (c.first.part == "end" ? std::get<SketchLine>(first.geometry).end
                           : std::get<SketchLine>(first.geometry).start) = p1;
    (c.second.part == "end" ? std::get<SketchLine>(second.geometry).end
                            : std::get<SketchLine>(second.geometry).start) = p2;
    const bool construction = first.construction && second.construction;

    SketchEntity sharp;
    sharp.geometry = SketchPoint{v};
    sharp.construction = true;
    const SketchRef point{sketch.add(std::move(sharp)), {}};
    SketchEntity joining;
    joining.construction = construction;
    if (fillet) {
        const Point2 centre = v + (size_ / std::sin(theta / 2)) * unit(u1 + u2);
        const double start = direction(centre, p1);
        const double sweep = std::remainder(direction(centre, p2) - start, 2 * std::numbers::pi);
        joining.geometry = SketchArc{centre, size_, degrees(start), degrees(sweep)};
    } else {
        joining.geometry = SketchLine{p1, p2};
    }
    const std::string added = sketch.add(std::move(joining));

    // A length on either line now runs from the sharp corner to the far end; whatever
    // named the corner ends names the sharp corner.
    for (SketchConstraint& k : sketch.constraints)
        for (const SketchRef* line : {&c.first, &c.second})
            if (k.type == ConstraintType::Length && refersTo(k, line->entity, "")) {
                k.type = ConstraintType::Distance;
                k.refs = {point, {line->entity, otherEnd(line->part)}};
                k.data.clear();
            }
    sketch.redirect([&](const SketchRef& ref) -> std::optional<SketchRef> {
        if (ref == c.first || ref == c.second) return point;
        return std::nullopt;
    });
    // What tied the two ends together now ties the point to itself and goes: the
    // coincidence that joined them, anything measured between them. Ends held
    // symmetric about a line put the corner on that line, which is kept below when
    // the new corner doesn't already keep it there.
    std::vector<SketchRef> mirrorLines;
    sketch.drop([&](const SketchConstraint& k) {
        if (std::count(k.refs.begin(), k.refs.end(), point) < 2) return false;
        if (k.type == ConstraintType::Symmetric && k.refs.size() == 3)
            mirrorLines.push_back(k.refs[2]);
        return true;
    });

    const SketchRef whole1{c.first.entity, {}}, whole2{c.second.entity, {}};
    const SketchRef arc{added, {}};
    std::vector<std::pair<ConstraintType, std::vector<SketchRef>>> ties{
        {ConstraintType::Coincident, {point, whole1}},
        {ConstraintType::Coincident, {point, whole2}},
        {ConstraintType::Coincident, {{added, "start"}, c.first}},
        {ConstraintType::Coincident, {{added, "end"}, c.second}}};
    std::vector<std::optional<double>> values(ties.size());
    auto tie = [&](ConstraintType type, std::vector<SketchRef> refs, std::optional<double> value) {
        ties.push_back({type, std::move(refs)});
        values.push_back(value);
    };
    if (fillet) {
        tie(ConstraintType::Tangent, {whole1, arc}, std::nullopt);
        tie(ConstraintType::Tangent, {whole2, arc}, std::nullopt);
        tie(ConstraintType::Radius, {arc}, size_);
    } else {
        tie(ConstraintType::Distance, {point, c.first}, size_);
        if (second_)
            tie(ConstraintType::Distance, {point, c.second}, *second_);
        else
            tie(ConstraintType::EqualDistance, {point, c.first, c.second}, std::nullopt);
    }
    for (std::size_t i = 0; i < ties.size(); ++i)
        if (Result<std::string> k = sketch.constrain(ties[i].first, ties[i].second, values[i]); !k)
            return k.withPrefix("Could not constrain the new corner: ");
    for (const SketchRef& line : mirrorLines)
        static_cast<void>(sketch.constrain(ConstraintType::Coincident, {point, line}));
    if (Result<void> solved = sketch.solve(); !solved)
        return solved.withPrefix(std::string("That ") + (fillet ? "fillet" : "chamfer") +
                                 " conflicts with the sketch's constraints: ");
    if (Result<void> valid = validateChanged(before.entities, lists.entities); !valid)
        return Error(valid);
    return std::string(fillet ? "Filleted " : "Chamfered ") + corner_.text() + " with " + added +
           ".";
}

} // namespace cad

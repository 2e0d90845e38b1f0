// Reference parsing and resolution: "Line1.end" becomes the entity's index and the
// part's sub-index, checked against what that kind of entity has.
#include "sketch/SketchReference.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

namespace cad {

namespace {

std::string_view trimSpaces(std::string_view text) {
    const char* spaces = " \t\r\n";
    std::size_t first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos) return {};
    std::size_t last = text.find_last_not_of(spaces);
    return text.substr(first, last - first + 1);
}

struct NamedPart {
    std::string_view name;
    ResolvedRef::Kind kind;
    int sub;
};

// The fixed parts of each kind, in the order they are listed.
std::vector<NamedPart> fixedParts(EntityKind kind) {
    using K = ResolvedRef::Kind;
    switch (kind) {
    case EntityKind::Line:
        return {{"start", K::Point, 0}, {"end", K::Point, 1}};
    case EntityKind::Circle:
        return {{"center", K::Point, 0}};
    case EntityKind::Arc:
        return {{"center", K::Point, 0}, {"start", K::Point, 1}, {"end", K::Point, 2}};
    case EntityKind::Point:
        return {{"point", K::Point, 0}};
    case EntityKind::Rectangle:
        return {
            {"bottom_left", K::Point, 0}, {"bottom_right", K::Point, 1}, {"top_right", K::Point, 2},
            {"top_left", K::Point, 3},    {"center", K::Point, 4},       {"bottom", K::Line, 0},
            {"right", K::Line, 1},        {"top", K::Line, 2},           {"left", K::Line, 3}};
    case EntityKind::Polygon:
        return {{"center", K::Point, kPolygonCenter}};
    case EntityKind::Slot:
        return {{"start", K::Point, 0}, {"end", K::Point, 1}};
    case EntityKind::Text:
        return {{"position", K::Point, 0}};
    case EntityKind::Spline:
        break;
    }
    return {};
}

ResolvedRef::Kind wholeKind(EntityKind kind) {
    switch (kind) {
    case EntityKind::Line:
        return ResolvedRef::Line;
    case EntityKind::Circle:
    case EntityKind::Arc:
        return ResolvedRef::Circle;
    case EntityKind::Point:
    case EntityKind::Text: // the text's position
        return ResolvedRef::Point;
    default:
        return ResolvedRef::Entity;
    }
}

// "corner12" with word "corner": 12. Nothing when the text is not the word followed
// by decimal digits only; a number too large to hold counts as past any end.
std::optional<long long> numberedPart(std::string_view part, std::string_view word) {
    if (part.size() <= word.size() || part.substr(0, word.size()) != word) return std::nullopt;
    std::string_view digits = part.substr(word.size());
    if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    long long k = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), k);
    if (ec == std::errc::result_out_of_range) return std::numeric_limits<long long>::max();
    return k;
}

Point2 polar(Point2 c, double r, double radians) {
    return {c.x + r * std::cos(radians), c.y + r * std::sin(radians)};
}

double radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

Point2 polygonCorner(const SketchPolygon& p, int k) {
    return polar(p.center, p.radius,
                 radians(p.rotation) + 2.0 * std::numbers::pi * k / std::max(p.sides, 1));
}

std::array<Point2, 5> rectanglePoints(const SketchRectangle& r) {
    const Point2 c = r.corner;
    return {{{c.x, c.y},
             {c.x + r.width, c.y},
             {c.x + r.width, c.y + r.height},
             {c.x, c.y + r.height},
             {c.x + r.width / 2, c.y + r.height / 2}}};
}

} // namespace

std::optional<SketchRef> parseReference(std::string_view text) {
    text = trimSpaces(text);
    if (text.empty()) return std::nullopt;
    std::size_t dot = text.find('.');
    if (dot == std::string_view::npos) return SketchRef{std::string(text), {}};
    return SketchRef{std::string(text.substr(0, dot)), std::string(text.substr(dot + 1))};
}

Result<ResolvedRef> resolveReference(const SketchRef& ref,
                                     const std::vector<SketchEntity>& entities) {
    if (ref.part.empty()) {
        if (ref.entity == "Origin") return ResolvedRef{ResolvedRef::Point, kOriginIndex, 0};
        if (ref.entity == "XAxis") return ResolvedRef{ResolvedRef::Line, kXAxisIndex, 0};
        if (ref.entity == "YAxis") return ResolvedRef{ResolvedRef::Line, kYAxisIndex, 0};
    }
    auto it = std::find_if(entities.begin(), entities.end(),
                           [&](const SketchEntity& e) { return e.id == ref.entity; });
    if (it == entities.end()) return fail("The sketch has no entity named '" + ref.entity + "'.");
    const int index = static_cast<int>(it - entities.begin());
    const SketchEntity& entity = *it;
    if (ref.part.empty()) return ResolvedRef{wholeKind(entity.kind()), index, 0};

    for (const NamedPart& part : fixedParts(entity.kind()))
        if (part.name == ref.part) return ResolvedRef{part.kind, index, part.sub};

    auto pastEnd = [&](const std::string& what) { return fail(ref.text() + ": " + what); };
    if (auto* polygon = std::get_if<SketchPolygon>(&entity.geometry)) {
        const std::string sides = std::to_string(polygon->sides);
        if (auto k = numberedPart(ref.part, "corner")) {
            if (*k >= polygon->sides) return pastEnd("the polygon has " + sides + " corners");
            return ResolvedRef{ResolvedRef::Point, index, static_cast<int>(*k)};
        }
        if (auto k = numberedPart(ref.part, "edge")) {
            if (*k >= polygon->sides) return pastEnd("the polygon has " + sides + " edges");
            return ResolvedRef{ResolvedRef::Line, index, static_cast<int>(*k)};
        }
    }
    if (auto* spline = std::get_if<SketchSpline>(&entity.geometry)) {
        if (auto k = numberedPart(ref.part, "point")) {
            if (*k >= static_cast<long long>(spline->points.size()))
                return pastEnd("the spline has fewer points");
            return ResolvedRef{ResolvedRef::Point, index, static_cast<int>(*k)};
        }
    }
    return fail(ref.text() + ": no such part of a " + std::string(entityKindName(entity)) + ".");
}

Point2 pointAt(const ResolvedRef& ref, const std::vector<SketchEntity>& entities) {
    if (ref.entity < 0 || ref.entity >= static_cast<int>(entities.size())) return {0, 0};
    const SketchGeometry& g = entities[static_cast<std::size_t>(ref.entity)].geometry;
    const int sub = ref.sub;
    if (auto* l = std::get_if<SketchLine>(&g)) return sub == 1 ? l->end : l->start;
    if (auto* c = std::get_if<SketchCircle>(&g)) return c->center;
    if (auto* a = std::get_if<SketchArc>(&g)) {
        if (sub == 1) return polar(a->center, a->radius, radians(a->startAngle));
        if (sub == 2) return polar(a->center, a->radius, radians(a->startAngle + a->sweepAngle));
        return a->center;
    }
    if (auto* p = std::get_if<SketchPoint>(&g)) return p->position;
    if (auto* r = std::get_if<SketchRectangle>(&g))
        return rectanglePoints(*r)[static_cast<std::size_t>(std::clamp(sub, 0, 4))];
    if (auto* p = std::get_if<SketchPolygon>(&g))
        return sub == kPolygonCenter ? p->center : polygonCorner(*p, sub);
    if (auto* s = std::get_if<SketchSlot>(&g)) return sub == 1 ? s->end : s->start;
    if (auto* t = std::get_if<SketchText>(&g)) return t->position;
    if (auto* s = std::get_if<SketchSpline>(&g))
        if (sub >= 0 && sub < static_cast<int>(s->points.size()))
            return s->points[static_cast<std::size_t>(sub)];
    return {0, 0};
}

std::pair<Point2, Point2> lineAt(const ResolvedRef& ref,
                                 const std::vector<SketchEntity>& entities) {
    if (ref.entity == kXAxisIndex) return {{0, 0}, {1, 0}};
    if (ref.entity == kYAxisIndex) return {{0, 0}, {0, 1}};
    if (ref.entity < 0 || ref.entity >= static_cast<int>(entities.size())) return {};
    const SketchGeometry& g = entities[static_cast<std::size_t>(ref.entity)].geometry;
    if (auto* l = std::get_if<SketchLine>(&g)) return {l->start, l->end};
    if (auto* r = std::get_if<SketchRectangle>(&g)) {
        auto p = rectanglePoints(*r);
        // The top and left edges run left to right and bottom to top.
        static constexpr std::array<std::pair<int, int>, 4> edges{{{0, 1}, {1, 2}, {3, 2}, {0, 3}}};
        auto [a, b] = edges[static_cast<std::size_t>(std::clamp(ref.sub, 0, 3))];
        return {p[static_cast<std::size_t>(a)], p[static_cast<std::size_t>(b)]};
    }
    if (auto* p = std::get_if<SketchPolygon>(&g))
        return {polygonCorner(*p, ref.sub),
                polygonCorner(*p, (ref.sub + 1) % std::max(p->sides, 1))};
    return {};
}

std::vector<NamedPoint> namedPoints(const std::vector<SketchEntity>& entities) {
    std::vector<NamedPoint> out;
    for (std::size_t i = 0; i < entities.size(); ++i) {
        const SketchEntity& e = entities[i];
        auto add = [&](std::string part, int sub) {
            ResolvedRef ref{ResolvedRef::Point, static_cast<int>(i), sub};
            out.push_back({e.id + "." + part, pointAt(ref, entities)});
        };
        for (const NamedPart& part : fixedParts(e.kind()))
            if (part.kind == ResolvedRef::Point) add(std::string(part.name), part.sub);
        if (auto* polygon = std::get_if<SketchPolygon>(&e.geometry))
            for (int k = 0; k < polygon->sides; ++k) add("corner" + std::to_string(k), k);
        if (auto* spline = std::get_if<SketchSpline>(&e.geometry))
            for (std::size_t k = 0; k < spline->points.size(); ++k)
                add("point" + std::to_string(k), static_cast<int>(k));
    }
    return out;
}

std::pair<Point2, double> circleAt(const ResolvedRef& ref,
                                   const std::vector<SketchEntity>& entities) {
    if (ref.entity < 0 || ref.entity >= static_cast<int>(entities.size())) return {};
    const SketchGeometry& g = entities[static_cast<std::size_t>(ref.entity)].geometry;
    if (auto* c = std::get_if<SketchCircle>(&g)) return {c->center, c->radius};
    if (auto* a = std::get_if<SketchArc>(&g)) return {a->center, a->radius};
    return {};
}

} // namespace cad

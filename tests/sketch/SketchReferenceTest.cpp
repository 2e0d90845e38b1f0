// Sketch references: what each part resolves to and where it is, every failure
// sentence, and the named points listed for agents.
#include "sketch/SketchReference.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace cad;

namespace {

SketchEntity entity(std::string id, SketchGeometry geometry) {
    SketchEntity e;
    e.id = std::move(id);
    e.geometry = std::move(geometry);
    return e;
}

const std::vector<SketchEntity> kSketch{
    entity("Line1", SketchLine{{0, 0}, {10, 0}}),
    entity("Rectangle1", SketchRectangle{{1, 2}, 4, 3}),
    entity("Polygon1", SketchPolygon{{0, 0}, 2, 6, 0}),
    entity("Spline1", SketchSpline{{{0, 0}, {5, 5}, {10, 0}}, false}),
    entity("Arc1", SketchArc{{0, 0}, 2, 90, -90}),
    entity("Circle1", SketchCircle{{3, 3}, 1}),
    entity("Point1", SketchPoint{{7, 8}}),
    entity("Slot1", SketchSlot{{0, 0}, {4, 0}, 2}),
};

Result<ResolvedRef> resolve(std::string_view text) {
    std::optional<SketchRef> ref = parseReference(text);
    if (!ref) return fail("no reference");
    return resolveReference(*ref, kSketch);
}

void expectNear(Point2 actual, Point2 expected, const char* text) {
    EXPECT_NEAR(actual.x, expected.x, 1e-12) << text;
    EXPECT_NEAR(actual.y, expected.y, 1e-12) << text;
}

} // namespace

// Points are where the part is; lines run as constraints read them (rectangle top and
// left edges left to right and bottom to top, an arc clockwise from its start).
TEST(SketchReference, PartsResolveToTheirKindAndPlace) {
    using K = ResolvedRef::Kind;
    const double r3 = std::sqrt(3.0);
    struct Case {
        const char* text;
        K kind;
        Point2 a{}, b{}; // the point, the line's ends, or the circle's centre and (radius, 0)
    };
    const Case cases[] = {
        {"Origin", K::Point, {0, 0}},
        {"XAxis", K::Line, {0, 0}, {1, 0}},
        {" Line1.end ", K::Point, {10, 0}},
        {"Line1", K::Line, {0, 0}, {10, 0}},
        {"Rectangle1", K::Entity},
        {"Rectangle1.center", K::Point, {3, 3.5}},
        {"Rectangle1.top", K::Line, {1, 5}, {5, 5}},
        {"Rectangle1.left", K::Line, {1, 2}, {1, 5}},
        {"Polygon1.center", K::Point, {0, 0}},
        {"Polygon1.corner5", K::Point, {1, -r3}},
        {"Polygon1.edge5", K::Line, {1, -r3}, {2, 0}},
        {"Spline1.point2", K::Point, {10, 0}},
        {"Arc1", K::Circle, {0, 0}, {2, 0}},
        {"Arc1.start", K::Point, {0, 2}},
        {"Arc1.end", K::Point, {2, 0}},
        {"Circle1", K::Circle, {3, 3}, {1, 0}},
        {"Point1", K::Point, {7, 8}},
        {"Point1.point", K::Point, {7, 8}},
        {"Slot1.end", K::Point, {4, 0}},
    };
    for (const Case& c : cases) {
        Result<ResolvedRef> r = resolve(c.text);
        ASSERT_TRUE(r.ok()) << c.text << ": " << r.error();
        EXPECT_EQ(r->kind, c.kind) << c.text;
        if (c.kind == K::Point) expectNear(pointAt(*r, kSketch), c.a, c.text);
        if (c.kind == K::Line) {
            expectNear(lineAt(*r, kSketch).first, c.a, c.text);
            expectNear(lineAt(*r, kSketch).second, c.b, c.text);
        }
        if (c.kind == K::Circle) {
            expectNear(circleAt(*r, kSketch).first, c.a, c.text);
            EXPECT_EQ(circleAt(*r, kSketch).second, c.b.x) << c.text;
        }
    }
}

TEST(SketchReference, FailuresSayWhatIsWrong) {
    const std::pair<const char*, const char*> cases[] = {
        {"line1.end", "The sketch has no entity named 'line1'."},
        {"Origin.x", "The sketch has no entity named 'Origin'."},
        {"Line1.middle", "Line1.middle: no such part of a Line."},
        {"Polygon1.corner6", "Polygon1.corner6: the polygon has 6 corners"},
        {"Polygon1.edge99999999999999999999", "Polygon1.edge99999999999999999999: the polygon "
                                              "has 6 edges"},
        {"Polygon1.corner-1", "Polygon1.corner-1: no such part of a Polygon."},
        {"Polygon1.corner2x", "Polygon1.corner2x: no such part of a Polygon."},
        {"Polygon1.corner", "Polygon1.corner: no such part of a Polygon."},
        {"Spline1.point3", "Spline1.point3: the spline has fewer points"},
        {"Circle1.start", "Circle1.start: no such part of a Circle."},
        {"Rectangle1.corner0", "Rectangle1.corner0: no such part of a Rectangle."},
    };
    for (auto [text, message] : cases) {
        Result<ResolvedRef> r = resolve(text);
        ASSERT_FALSE(r.ok()) << text;
        EXPECT_EQ(r.error(), message) << text;
    }
    EXPECT_EQ(parseReference("   "), std::nullopt);
}

TEST(SketchReference, NamedPointsInEntityAndPartOrder) {
    std::string names;
    for (const NamedPoint& p : namedPoints(kSketch)) {
        names += p.reference + " ";
        // Each listed name resolves back to the point it was listed with.
        EXPECT_EQ(pointAt(*resolve(p.reference), kSketch), p.position) << p.reference;
    }
    EXPECT_EQ(names, "Line1.start Line1.end Rectangle1.bottom_left Rectangle1.bottom_right "
                     "Rectangle1.top_right Rectangle1.top_left Rectangle1.center Polygon1.center "
                     "Polygon1.corner0 Polygon1.corner1 Polygon1.corner2 Polygon1.corner3 "
                     "Polygon1.corner4 Polygon1.corner5 Spline1.point0 Spline1.point1 "
                     "Spline1.point2 Arc1.center Arc1.start Arc1.end Circle1.center Point1.point "
                     "Slot1.start Slot1.end ");
}

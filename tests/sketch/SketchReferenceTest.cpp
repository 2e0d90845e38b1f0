// Sketch references: parsing, resolution with every failure sentence, where
// resolved parts are, and the named points listed for agents.
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

std::vector<SketchEntity> sampleSketch() {
    return {
        entity("Line1", SketchLine{{0, 0}, {10, 0}}),
        entity("Rectangle1", SketchRectangle{{1, 2}, 4, 3}),
        entity("Polygon1", SketchPolygon{{0, 0}, 2, 6, 0}),
        entity("Spline1", SketchSpline{{{0, 0}, {5, 5}, {10, 0}}, false}),
        entity("Arc1", SketchArc{{0, 0}, 2, 90, -90}),
        entity("Circle1", SketchCircle{{3, 3}, 1}),
        entity("Point1", SketchPoint{{7, 8}}),
        entity("Slot1", SketchSlot{{0, 0}, {4, 0}, 2}),
    };
}

Result<ResolvedRef> resolve(std::string_view text, const std::vector<SketchEntity>& entities) {
    std::optional<SketchRef> ref = parseReference(text);
    if (!ref) return fail("no reference");
    return resolveReference(*ref, entities);
}

} // namespace

TEST(SketchReference, ParseTrimsAndSplitsAtTheFirstDot) {
    EXPECT_EQ(parseReference("  Line1.end "), (SketchRef{"Line1", "end"}));
    EXPECT_EQ(parseReference("Rectangle1"), (SketchRef{"Rectangle1", ""}));
    EXPECT_EQ(parseReference("A.b.c"), (SketchRef{"A", "b.c"}));
    EXPECT_EQ(parseReference("   "), std::nullopt);
    EXPECT_EQ(parseReference(""), std::nullopt);
}

TEST(SketchReference, ResolvesPartsToKindsAndSubIndices) {
    const auto entities = sampleSketch();
    struct Case {
        const char* text;
        ResolvedRef::Kind kind;
        int entity;
        int sub;
    };
    const Case cases[] = {
        {"Origin", ResolvedRef::Point, kOriginIndex, 0},
        {"XAxis", ResolvedRef::Line, kXAxisIndex, 0},
        {"YAxis", ResolvedRef::Line, kYAxisIndex, 0},
        {"Line1", ResolvedRef::Line, 0, 0},
        {" Line1.end ", ResolvedRef::Point, 0, 1},
        {"Rectangle1", ResolvedRef::Entity, 1, 0},
        {"Rectangle1.center", ResolvedRef::Point, 1, 4},
        {"Rectangle1.top", ResolvedRef::Line, 1, 2},
        {"Rectangle1.left", ResolvedRef::Line, 1, 3},
        {"Polygon1.corner5", ResolvedRef::Point, 2, 5},
        {"Polygon1.edge0", ResolvedRef::Line, 2, 0},
        {"Polygon1.center", ResolvedRef::Point, 2, kPolygonCenter},
        {"Spline1.point2", ResolvedRef::Point, 3, 2},
        {"Arc1", ResolvedRef::Circle, 4, 0},
        {"Arc1.end", ResolvedRef::Point, 4, 2},
        {"Circle1", ResolvedRef::Circle, 5, 0},
        {"Point1", ResolvedRef::Point, 6, 0},
        {"Point1.point", ResolvedRef::Point, 6, 0},
        {"Slot1.end", ResolvedRef::Point, 7, 1},
        {"Slot1", ResolvedRef::Entity, 7, 0},
    };
    for (const Case& c : cases) {
        Result<ResolvedRef> r = resolve(c.text, entities);
        ASSERT_TRUE(r.ok()) << c.text << ": " << r.error();
        EXPECT_EQ(r->kind, c.kind) << c.text;
        EXPECT_EQ(r->entity, c.entity) << c.text;
        EXPECT_EQ(r->sub, c.sub) << c.text;
    }
}

TEST(SketchReference, FailuresSayWhatIsWrong) {
    const auto entities = sampleSketch();
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
        Result<ResolvedRef> r = resolve(text, entities);
        ASSERT_FALSE(r.ok()) << text;
        EXPECT_EQ(r.error(), message) << text;
    }
}

TEST(SketchReference, RectangleEdgesRunLeftToRightAndBottomToTop) {
    const auto entities = sampleSketch();
    auto top = lineAt(*resolve("Rectangle1.top", entities), entities);
    EXPECT_EQ(top.first, (Point2{1, 5}));
    EXPECT_EQ(top.second, (Point2{5, 5}));
    auto left = lineAt(*resolve("Rectangle1.left", entities), entities);
    EXPECT_EQ(left.first, (Point2{1, 2}));
    EXPECT_EQ(left.second, (Point2{1, 5}));
    auto edge = lineAt(*resolve("Polygon1.edge5", entities), entities);
    EXPECT_NEAR(edge.first.x, 1, 1e-12); // corner 5 of a hexagon at rotation 0
    EXPECT_NEAR(edge.first.y, -std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(edge.second.x, 2, 1e-12); // back to corner 0
    EXPECT_NEAR(edge.second.y, 0, 1e-12);
}

TEST(SketchReference, ArcEndsFollowAClockwiseSweep) {
    const auto entities = sampleSketch();
    Point2 start = pointAt(*resolve("Arc1.start", entities), entities);
    Point2 end = pointAt(*resolve("Arc1.end", entities), entities);
    EXPECT_NEAR(start.x, 0, 1e-12);
    EXPECT_NEAR(start.y, 2, 1e-12);
    EXPECT_NEAR(end.x, 2, 1e-12);
    EXPECT_NEAR(end.y, 0, 1e-12);
}

TEST(SketchReference, NamedPointsInEntityAndPartOrder) {
    const auto entities = sampleSketch();
    std::vector<std::string> names;
    for (const NamedPoint& p : namedPoints(entities)) names.push_back(p.reference);
    const std::vector<std::string> expected{"Line1.start",
                                            "Line1.end",
                                            "Rectangle1.bottom_left",
                                            "Rectangle1.bottom_right",
                                            "Rectangle1.top_right",
                                            "Rectangle1.top_left",
                                            "Rectangle1.center",
                                            "Polygon1.center",
                                            "Polygon1.corner0",
                                            "Polygon1.corner1",
                                            "Polygon1.corner2",
                                            "Polygon1.corner3",
                                            "Polygon1.corner4",
                                            "Polygon1.corner5",
                                            "Spline1.point0",
                                            "Spline1.point1",
                                            "Spline1.point2",
                                            "Arc1.center",
                                            "Arc1.start",
                                            "Arc1.end",
                                            "Circle1.center",
                                            "Point1.point",
                                            "Slot1.start",
                                            "Slot1.end"};
    EXPECT_EQ(names, expected);
    // Each listed name resolves back to the point it was listed with.
    for (const NamedPoint& p : namedPoints(entities)) {
        Point2 at = pointAt(*resolve(p.reference, entities), entities);
        EXPECT_EQ(at, p.position) << p.reference;
    }
}

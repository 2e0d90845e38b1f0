// Drawing by hand: shapes become add commands with the constraints that hold them, as
// one undo step; snaps, the grid and typed values decide where points land.
#include "SessionFixture.h"

#include <QLineEdit>

using namespace cad;
using cad::test::SessionFixture;

namespace {

using Drawing = SessionFixture;

TEST_F(Drawing, RectangleIsFourConstrainedLinesUndoneAsOneStep) {
    session->setTool(ui::SketchSession::Rectangle);
    const std::size_t steps = stack.undoCount();
    click(5, 5);
    click(15, 11);

    ASSERT_EQ(sketch().entities.size(), 4u);
    for (const SketchEntity& e : sketch().entities) EXPECT_EQ(e.kind(), EntityKind::Line);
    const auto& bottom = std::get<SketchLine>(sketch().entities[0].geometry);
    const auto& top = std::get<SketchLine>(sketch().entities[2].geometry);
    EXPECT_EQ(bottom.start, (Point2{5, 5}));
    EXPECT_EQ(bottom.end, (Point2{15, 5}));
    EXPECT_EQ(top.start, (Point2{15, 11})); // each line runs from its corner to the next
    EXPECT_EQ(sketch().constraints.size(), 8u);
    EXPECT_EQ(count(ConstraintType::Coincident), 4);
    EXPECT_EQ(count(ConstraintType::Horizontal), 2);
    EXPECT_EQ(count(ConstraintType::Vertical), 2);
    EXPECT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(session->step(), 0);

    EXPECT_EQ(stack.undoCount(), steps + 1);
    ASSERT_TRUE(stack.undo());
    session->refresh();
    EXPECT_TRUE(sketch().entities.empty());
    EXPECT_TRUE(sketch().constraints.empty());
}

TEST_F(Drawing, CenterRectangleAddsDiagonalsAndCentrePoint) {
    session->setTool(ui::SketchSession::CenterRectangle);
    click(20, 20);
    click(25, 23);

    ASSERT_EQ(sketch().entities.size(), 7u);
    EXPECT_TRUE(sketch().entities[4].construction);
    EXPECT_TRUE(sketch().entities[5].construction);
    EXPECT_EQ(std::get<SketchPoint>(sketch().entities[6].geometry).position, (Point2{20, 20}));
    EXPECT_EQ(std::get<SketchLine>(sketch().entities[0].geometry).start, (Point2{15, 17}));
    EXPECT_EQ(sketch().constraints.size(), 13u);
    EXPECT_EQ(count(ConstraintType::Coincident), 7);
    EXPECT_EQ(count(ConstraintType::Midpoint), 2);
    EXPECT_TRUE(errors.empty()) << errors.front();
}

TEST_F(Drawing, SnapsJoinAndLevelLinesStayLevel) {
    line(0, 5, 10, 5);
    session->setTool(ui::SketchSession::Line);
    click(10.4, 5.3); // 5 px from Line1's end: snaps onto it
    EXPECT_NE(session->caption().indexOf("snap"), -1);
    click(10, 15);

    ASSERT_EQ(sketch().entities.size(), 2u);
    EXPECT_EQ(std::get<SketchLine>(sketch().entities[1].geometry).start, (Point2{10, 5}));
    const SketchConstraint* joined = constraint(ConstraintType::Coincident);
    ASSERT_NE(joined, nullptr);
    EXPECT_EQ(joined->refs[0].text(), "Line2.start");
    EXPECT_EQ(joined->refs[1].text(), "Line1.end");
    EXPECT_EQ(count(ConstraintType::Vertical), 1);

    // The tool chains on from Line2's end; a level line there gets horizontal and joins.
    EXPECT_EQ(session->step(), 1);
    click(20, 15);
    EXPECT_EQ(count(ConstraintType::Horizontal), 1);
    EXPECT_EQ(count(ConstraintType::Coincident), 2);
    EXPECT_TRUE(errors.empty()) << errors.front();
    EXPECT_TRUE(key(Qt::Key_Escape));
    EXPECT_EQ(session->step(), 0);
    EXPECT_TRUE(key(Qt::Key_Escape));
    EXPECT_EQ(session->tool(), ui::SketchSession::Select);
}

TEST_F(Drawing, InchDocumentsRoundToTheFiftiethOfAnInch) {
    execute(CommandRecord("set_units").set("length", "in"));
    session->setTool(ui::SketchSession::Point);
    click(3.3, 4.0);
    ASSERT_EQ(sketch().entities.size(), 1u);
    const Point2 p = std::get<SketchPoint>(sketch().entities[0].geometry).position;
    EXPECT_NEAR(p.x, 3.81, 1e-12);
    EXPECT_NEAR(p.y, 3.81, 1e-12);
}

TEST_F(Drawing, TypedLengthFixesTheLineAndStaysAsDimension) {
    session->setTool(ui::SketchSession::Line);
    click(1, 1);
    move(5, 1.2);
    type("25");
    ASSERT_NE(field("length"), nullptr);
    EXPECT_EQ(field("length")->text(), "25");
    EXPECT_NE(session->caption().indexOf("25 mm"), -1) << session->caption().toStdString();
    QTest::keyClick(field(), Qt::Key_Return);

    ASSERT_EQ(sketch().entities.size(), 1u);
    const auto& made = std::get<SketchLine>(sketch().entities[0].geometry);
    EXPECT_EQ(made.start, (Point2{1, 1}));
    EXPECT_EQ(made.end, (Point2{26, 1}));
    const SketchConstraint* length = constraint(ConstraintType::Length);
    ASSERT_NE(length, nullptr);
    EXPECT_DOUBLE_EQ(length->value, 25);
    EXPECT_EQ(count(ConstraintType::Horizontal), 1);
    EXPECT_TRUE(field()->text().isEmpty()); // the next step starts with empty fields
}

TEST_F(Drawing, ExpressionThatDoesNotEvaluateRunsNothing) {
    session->setTool(ui::SketchSession::Circle);
    click(3, 3);
    type("4 + nosuch");
    QTest::keyClick(field(), Qt::Key_Return);
    EXPECT_TRUE(records.empty());
    EXPECT_EQ(session->step(), 1);
    EXPECT_TRUE(field()->property("error").toBool());
    EXPECT_FALSE(field()->toolTip().isEmpty());
    click(6, 3); // nor does a click while the field is wrong
    EXPECT_TRUE(records.empty());
}

TEST_F(Drawing, RefusedCommandLeavesTheToolAtItsStep) {
    session->setTool(ui::SketchSession::Line);
    click(1, 1);
    refuse = true;
    click(6, 1);
    ASSERT_EQ(names(), std::vector<std::string>{"add_line"});
    EXPECT_TRUE(sketch().entities.empty());
    EXPECT_EQ(session->step(), 1);
    refuse = false;
    click(6, 4); // the start is still the first click
    ASSERT_EQ(sketch().entities.size(), 1u);
    EXPECT_EQ(std::get<SketchLine>(sketch().entities[0].geometry).start, (Point2{1, 1}));
}

TEST_F(Drawing, SplineEscapeKeepsNothingEnterFinishesClickingTheStartCloses) {
    session->setTool(ui::SketchSession::Spline);
    click(1, 1);
    click(5, 3);
    EXPECT_TRUE(key(Qt::Key_Escape));
    EXPECT_TRUE(records.empty());
    EXPECT_EQ(session->step(), 0);

    click(1, 1);
    click(5, 3);
    click(9, 1);
    EXPECT_TRUE(key(Qt::Key_Return));
    ASSERT_EQ(sketch().entities.size(), 1u);
    const auto& open = std::get<SketchSpline>(sketch().entities[0].geometry);
    EXPECT_EQ(open.points.size(), 3u);
    EXPECT_FALSE(open.closed);

    click(20, 1);
    click(25, 3);
    click(29, 1);
    click(20.3, 1.2); // back on its first point
    ASSERT_EQ(sketch().entities.size(), 2u);
    EXPECT_TRUE(std::get<SketchSpline>(sketch().entities[1].geometry).closed);
    EXPECT_EQ(std::get<SketchSpline>(sketch().entities[1].geometry).points.size(), 3u);
}

} // namespace

namespace {

TEST_F(Drawing, EachToolMakesItsShape) {
    session->setTool(ui::SketchSession::Circle);
    click(30, 30);
    move(33, 30);
    type("8");
    QTest::keyClick(field(), Qt::Key_Return);

    session->setTool(ui::SketchSession::Arc);
    click(55, 50);
    click(45, 50);
    click(50, 55);

    session->setTool(ui::SketchSession::CenterArc);
    click(70, 50);
    click(75, 50);
    move(73.5, 46.5); // round clockwise
    click(70, 45);

    session->setTool(ui::SketchSession::Polygon);
    click(90, 50);
    click(90, 55);

    session->setConstruction(true);
    session->setTool(ui::SketchSession::Slot);
    click(10, 80);
    click(30, 80);
    click(20, 83);

    ASSERT_EQ(sketch().entities.size(), 5u) << (errors.empty() ? "" : errors.back());
    const auto& circle = std::get<SketchCircle>(sketch().entities[0].geometry);
    EXPECT_DOUBLE_EQ(circle.radius, 4);
    ASSERT_NE(constraint(ConstraintType::Diameter), nullptr);
    EXPECT_DOUBLE_EQ(constraint(ConstraintType::Diameter)->value, 8);

    const auto& arc = std::get<SketchArc>(sketch().entities[1].geometry);
    EXPECT_NEAR(arc.center.x, 50, 1e-9);
    EXPECT_NEAR(arc.radius, 5, 1e-9);
    EXPECT_NEAR(arc.sweepAngle, 180, 1e-9);
    const auto& clockwise = std::get<SketchArc>(sketch().entities[2].geometry);
    EXPECT_NEAR(clockwise.startAngle, 0, 1e-9);
    EXPECT_NEAR(clockwise.sweepAngle, -90, 1e-9);

    const auto& polygon = std::get<SketchPolygon>(sketch().entities[3].geometry);
    EXPECT_EQ(polygon.sides, 6);
    EXPECT_NEAR(polygon.radius, 5, 1e-9);
    EXPECT_NEAR(polygon.rotation, 90, 1e-9);

    const SketchEntity& slot = sketch().entities[4];
    EXPECT_NEAR(std::get<SketchSlot>(slot.geometry).width, 6, 1e-9);
    EXPECT_TRUE(slot.construction);
    EXPECT_FALSE(sketch().entities[3].construction);
    EXPECT_TRUE(errors.empty()) << errors.front();
}

TEST_F(Drawing, TypedRectangleSizesStayOnTheBottomAndRightLines) {
    session->setTool(ui::SketchSession::Rectangle);
    click(5, 5);
    move(20, -10); // the cursor gives the direction: right and down
    type("30");
    QTest::keyClick(field("width"), Qt::Key_Tab);
    EXPECT_TRUE(field("height")->hasFocus());
    QTest::keyClicks(field("height"), "12");
    QTest::keyClick(field("height"), Qt::Key_Return);

    ASSERT_EQ(sketch().entities.size(), 4u);
    const auto& bottom = std::get<SketchLine>(sketch().entities[0].geometry);
    EXPECT_EQ(bottom.start, (Point2{5, -7}));
    EXPECT_EQ(bottom.end, (Point2{35, -7}));
    std::vector<std::pair<std::string, double>> lengths;
    for (const SketchConstraint& c : sketch().constraints)
        if (c.type == ConstraintType::Length) lengths.emplace_back(c.refs[0].text(), c.value);
    EXPECT_EQ(lengths, (std::vector<std::pair<std::string, double>>{{"Line1", 30}, {"Line2", 12}}));
}

TEST_F(Drawing, ConstraintsTheSketchAlreadyImpliesAreLeftOutQuietly) {
    session->setTool(ui::SketchSession::Rectangle);
    click(5, 5);
    click(15, 11);
    session->setTool(ui::SketchSession::Line);
    click(5.2, 5.2);  // the rectangle's bottom-left corner
    click(14.8, 5.2); // its bottom-right corner: level already, through the rectangle
    EXPECT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(count(ConstraintType::Horizontal), 2);
    EXPECT_EQ(count(ConstraintType::Coincident), 6);
}

} // namespace

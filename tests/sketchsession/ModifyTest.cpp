// Reworking what is drawn by hand: corner fillets and chamfers with the value each
// click chooses, trim, extend, offset, mirror, dragging entities, chains and groups,
// and the picks a form makes in the sketch.
#include "SessionFixture.h"

#include "ui/sketch/SketchCorners.h"

#include <QSignalSpy>

#include <numbers>

using namespace cad;
using cad::test::SessionFixture;

namespace {

using Modify = SessionFixture;
using Tool = ui::SketchSession;

const SketchLine& lineOf(const SketchObject& sketch, const std::string& id) {
    return std::get<SketchLine>(sketch.findEntity(id)->geometry);
}

TEST_F(Modify, FilletUsesAFifthOfTheShorterLineUnlessTheLastRadiusFitsAndOffersItsRadius) {
    line(0, 0, 30, 0);
    line(30, 0, 30, 30);
    line(50, 0, 55, 0);
    line(55, 0, 55, 5);
    session->setTool(Tool::Fillet);
    EXPECT_EQ(session->status().toStdString(), "Fillet · click a corner where two lines meet");
    QSignalSpy offered(session.get(), &ui::SketchSession::editDimensionRequested);
    auto* editor = host.findChild<ui::LengthEdit*>("dimensionEditor");
    ASSERT_NE(editor, nullptr);

    std::vector<double> radii;
    for (Point2 corner : {Point2{30, 0}, Point2{55, 0}}) {
        click(corner.x + 0.3, corner.y + 0.2);
        ASSERT_TRUE(errors.empty()) << errors.front();
        ASSERT_EQ(records.back().name, "sketch_fillet");
        radii.push_back(std::get<double>(*records.back().find("radius")));
        // The new radius dimension waits in the editor for the exact size.
        ASSERT_EQ(offered.size(), static_cast<qsizetype>(radii.size()));
        const SketchConstraint* radius =
            sketch().findConstraint(offered.back().at(0).toString().toStdString());
        ASSERT_NE(radius, nullptr);
        EXPECT_EQ(radius->type, ConstraintType::Radius);
        EXPECT_DOUBLE_EQ(radius->value, radii.back());
        EXPECT_TRUE(editor->isVisible());
        EXPECT_EQ(session->tool(), Tool::Fillet);
    }
    // 6 mm doesn't fit two 5 mm lines: a fifth of them does.
    EXPECT_EQ(radii, (std::vector<double>{6, 1}));

    // Typing in the editor sets the radius; the corner stays round.
    editor->setText("4");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(records.back().name, "edit_constraint");
    EXPECT_TRUE(errors.empty()) << errors.front();
}

TEST_F(Modify, ClickThatIsNoCornerKeepsTheToolAndSaysWhy) {
    line(0, 0, 10, 0);
    session->setTool(Tool::Fillet);
    click(10.2, 0.1); // a line end that meets nothing
    EXPECT_EQ(session->status().toStdString(),
              "That isn't a corner where two lines meet   ·   Fillet · click a corner where two "
              "lines meet");
    EXPECT_TRUE(records.empty());
    EXPECT_EQ(session->tool(), Tool::Fillet);

    // Two lines in line are a corner the command refuses; the tool stays put.
    line(10, 0, 20, 0);
    click(10, 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_NE(errors[0].find("in line with each other"), std::string::npos);
    EXPECT_EQ(sketch().entities.size(), 2u);
    EXPECT_EQ(session->tool(), Tool::Fillet);
}

TEST_F(Modify, ChamferOffersItsDistanceAlongTheClickedLine) {
    line(0, 0, 20, 0);
    line(20, 0, 20, 15);
    session->setTool(Tool::Chamfer);
    QSignalSpy offered(session.get(), &ui::SketchSession::editDimensionRequested);
    click(20, 0);
    ASSERT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(std::get<double>(*records.back().find("distance")), 3); // a fifth of 15
    ASSERT_EQ(offered.size(), 1);
    const SketchConstraint* along =
        sketch().findConstraint(offered[0].at(0).toString().toStdString());
    ASSERT_NE(along, nullptr);
    EXPECT_EQ(along->type, ConstraintType::Distance);
    const std::string corner = std::get<std::string>(*records.back().find("corner"));
    EXPECT_EQ(along->refs[1].text(), corner);
}

TEST_F(Modify, TrimCutsThePieceBetweenTwoCrossingsAsOneStep) {
    line(0, 0, 20, 0);
    line(5, -5, 5, 5);
    line(15, -5, 15, 5);
    const std::size_t steps = stack.undoCount();
    session->setTool(Tool::Trim);
    click(10, 0.3);
    ASSERT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(records.back().toCall(), "trim(sketch=\"Sketch1\", entity=\"Line1\", x=10, y=0)");
    ASSERT_EQ(sketch().entities.size(), 4u);
    EXPECT_EQ(lineOf(sketch(), "Line1").end, (Point2{5, 0}));
    EXPECT_EQ(lineOf(sketch(), "Line4").start, (Point2{15, 0}));
    EXPECT_EQ(stack.undoCount(), steps + 1);

    click(30, 30); // nothing there
    EXPECT_TRUE(session->status().startsWith("That can't be used here   ·   Trim"));
}

TEST_F(Modify, ExtendReachesTheNextCurveAndTakesOnlyLinesAndArcs) {
    line(0, 0, 5, 0);
    line(10, -5, 10, 5);
    execute(CommandRecord("add_circle").set("sketch", "Sketch1").set("cx", 40.0).set("cy", 0.0)
                .set("radius", 3.0));
    session->setTool(Tool::Extend);
    click(4.5, 0.1);
    ASSERT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(lineOf(sketch(), "Line1").end, (Point2{10, 0}));
    click(43, 0);
    EXPECT_TRUE(session->status().startsWith("That can't be used here"));
    EXPECT_EQ(records.size(), 1u);
}

TEST_F(Modify, OffsetPlacesByClickOrTypedDistance) {
    line(0, 0, 20, 0);
    session->setTool(Tool::Offset);
    EXPECT_EQ(session->status().toStdString(),
              "Offset · click a curve (Shift: just that one, not its chain)");
    click(10, 0.2);
    EXPECT_EQ(session->chosen(), std::vector<std::string>{"Line1"});
    EXPECT_TRUE(session->status().startsWith("Offset · click where the copy goes, or type the "
                                             "distance (negative: the other side)"));
    move(10, 5);
    EXPECT_TRUE(session->caption().startsWith("Offset · 5 mm   ·   click to place"))
        << session->caption().toStdString();
    type("3");
    QTest::keyClick(field("distance"), Qt::Key_Return);
    ASSERT_TRUE(errors.empty()) << errors.front();
    ASSERT_EQ(sketch().entities.size(), 2u);
    EXPECT_DOUBLE_EQ(lineOf(sketch(), "Line2").start.y, 3);
    ASSERT_NE(constraint(ConstraintType::Distance), nullptr);
    EXPECT_DOUBLE_EQ(constraint(ConstraintType::Distance)->value, 3);
    EXPECT_EQ(session->step(), 0);

    // A click puts the copy through the cursor, in whole grid steps.
    click(10, 0.2);
    click(10, -4.3);
    ASSERT_TRUE(errors.empty()) << errors.front();
    ASSERT_EQ(sketch().entities.size(), 3u);
    EXPECT_DOUBLE_EQ(lineOf(sketch(), "Line3").start.y, -4);
}

TEST_F(Modify, OffsetTakesTheChainUnlessShiftAndCtrlClickEditsIt) {
    session->setTool(Tool::Rectangle);
    click(0, 0);
    click(10, 6);
    line(30, 0, 40, 0);
    session->setTool(Tool::Offset);
    click(5, 0.2);
    EXPECT_EQ(session->chosen().size(), 4u);
    click(35, 0.1, Qt::ControlModifier); // added
    click(10.1, 3, Qt::ControlModifier); // the right side dropped
    EXPECT_EQ(session->chosen(), (std::vector<std::string>{"Line1", "Line3", "Line4", "Line5"}));
    EXPECT_TRUE(key(Qt::Key_Escape)); // pick again
    EXPECT_TRUE(session->chosen().empty());
    click(5, 0.2, Qt::ShiftModifier);
    EXPECT_EQ(session->chosen(), std::vector<std::string>{"Line1"});
}

TEST_F(Modify, MirrorPicksThenTakesTheLineOrAnAxis) {
    line(2, 1, 6, 3);
    session->setTool(Tool::Mirror);
    EXPECT_EQ(session->status().toStdString(), "Mirror · click what to mirror");
    click(4, 2.1);
    EXPECT_EQ(session->status().toStdString(),
              "Mirror · 1 picked; click more, or Enter for the mirror line");
    EXPECT_TRUE(key(Qt::Key_Return));
    EXPECT_EQ(session->status().toStdString(), "Mirror · click the mirror line or an axis");
    click(0.3, 10);
    ASSERT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(records.back().toCall(),
              "mirror(sketch=\"Sketch1\", entities=\"Line1\", line=\"YAxis\")");
    ASSERT_EQ(sketch().entities.size(), 2u);
    const SketchLine& copy = lineOf(sketch(), "Line2");
    EXPECT_NEAR(copy.start.x, -2, 1e-9);
    EXPECT_NEAR(copy.end.x, -6, 1e-9);
    EXPECT_EQ(count(ConstraintType::Symmetric), 2);
    EXPECT_EQ(session->step(), 0);

    // Esc backs out of the line step to nothing picked, then puts the tool down.
    click(4, 2.1);
    key(Qt::Key_Return);
    EXPECT_TRUE(key(Qt::Key_Escape));
    EXPECT_EQ(session->step(), 0);
    EXPECT_TRUE(session->chosen().empty());
    EXPECT_TRUE(key(Qt::Key_Escape));
    EXPECT_EQ(session->tool(), Tool::Select);
}

TEST_F(Modify, DraggingACurveMovesItsSelectionByGridSteps) {
    line(0, 0, 10, 0);
    line(0, 5, 10, 5);
    execute(CommandRecord("group").set("sketch", "Sketch1").set("entities", "Line1; Line2"));
    const std::size_t steps = stack.undoCount();
    session->mousePress(px(5, 0), Qt::NoModifier);
    session->mouseMove(px(6.6, 1.1), Qt::NoModifier);
    session->mouseMove(px(8.2, 3.1), Qt::NoModifier);
    session->mouseRelease(px(8.2, 3.1), Qt::NoModifier);
    ASSERT_TRUE(errors.empty()) << errors.front();
    EXPECT_EQ(records.back().name, "move_entities");
    EXPECT_EQ(lineOf(sketch(), "Line1").start, (Point2{3, 3}));
    EXPECT_EQ(lineOf(sketch(), "Line2").start, (Point2{3, 8})); // its group went along
    EXPECT_EQ(stack.undoCount(), steps + 1);
    EXPECT_EQ(session->selectedEntities(), (std::vector<std::string>{"Line1", "Line2"}));
}

TEST_F(Modify, ChainSelectionTakesJoinedCurves) {
    session->setTool(Tool::Rectangle);
    click(0, 0);
    click(10, 6);
    session->setTool(Tool::Select);
    click(5, 0.1);
    EXPECT_EQ(session->selectedEntities().size(), 1u);
    session->setChainSelection(true);
    click(5, 0.1);
    EXPECT_EQ(session->selectedEntities().size(), 4u);
    click(5, 0.1, Qt::ControlModifier); // the whole chain goes out again
    EXPECT_TRUE(session->selectedEntities().empty());
}

TEST_F(Modify, PatternCopiesOpenTheirPatternAndFormsPickInTheSketch) {
    line(0, 0, 4, 0);
    execute(CommandRecord("sketch_pattern_rectangular").set("sketch", "Sketch1")
                .set("entities", "Line1").set("count", 3));
    session->setTool(Tool::Select);
    QSignalSpy pattern(session.get(), &ui::SketchSession::editPatternRequested);
    session->mouseDoubleClick(px(12, 0.1), Qt::NoModifier);
    ASSERT_EQ(pattern.size(), 1);
    EXPECT_EQ(pattern[0].at(0).toString(), "Pattern1");

    std::vector<std::string> picked;
    execute(CommandRecord("add_circle").set("sketch", "Sketch1").set("cx", 30.0).set("cy", 0.0)
                .set("radius", 5.0));
    session->startFormPick(
        ui::SketchSession::FormPick::Points,
        [&](const std::string& reference) { picked.push_back(reference); });
    click(30.2, 0.1);
    click(35, 0.1);     // the circle's edge holds no named point
    session->startFormPick(ui::SketchSession::FormPick::Curves,
                           [&](const std::string& reference) { picked.push_back(reference); });
    click(35, 0.1);
    click(0.1, 0.1);
    session->stopFormPick();
    click(35, 0.1);
    EXPECT_EQ(picked, (std::vector<std::string>{"Circle1.center", "Circle1", "Line1"}));
}

TEST(CornerValues, FitFollowsTheSetbackAndRoundsToTheGrid) {
    std::vector<SketchEntity> entities(2);
    entities[0].id = "Line1";
    entities[0].geometry = SketchLine{{0, 0}, {30, 0}};
    entities[1].id = "Line2";
    entities[1].geometry = SketchLine{{30, 0}, {30 + 15, 15 * std::sqrt(3.0)}}; // 30 long, 120°
    const std::optional<ui::LineCorner> corner = ui::lineCornerAt(entities, {30, 0});
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->end, "Line1.end");
    EXPECT_NEAR(corner->angle, 2 * std::numbers::pi / 3, 1e-12);
    // A fillet's setback is r / tan(60°): 51.96 mm of radius just reaches the far ends.
    EXPECT_TRUE(ui::cornerFits(*corner, true, 51.9));
    EXPECT_FALSE(ui::cornerFits(*corner, true, 52));
    EXPECT_FALSE(ui::cornerFits(*corner, false, 30));
    EXPECT_NEAR(ui::cornerValue(*corner, true, 0, 1.27), 6.35, 1e-12); // 5 steps of 1/20"
    EXPECT_DOUBLE_EQ(ui::cornerValue(*corner, false, 12.5, 1), 12.5);

    // A third line at the corner, or only one, is no corner.
    EXPECT_FALSE(ui::lineCornerAt(entities, {0, 0}));
    entities.push_back(entities[1]);
    entities[2].id = "Line3";
    EXPECT_FALSE(ui::lineCornerAt(entities, {30, 0}));
}

} // namespace

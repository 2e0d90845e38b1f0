// Working on geometry that exists: dimensions placed by their label, constraint tools,
// dragging points and labels, and editing a dimension's value in the view.
#include "SessionFixture.h"

using namespace cad;
using cad::test::SessionFixture;

namespace {

using Picking = SessionFixture;

TEST_F(Picking, LabelPlacementChoosesTheDistanceBetweenTwoPoints) {
    execute(CommandRecord("add_point").set("sketch", "Sketch1").set("x", 20.0).set("y", 10.0));
    execute(CommandRecord("add_point").set("sketch", "Sketch1").set("x", 30.0).set("y", 15.0));
    struct Case {
        Point2 label;
        ConstraintType type;
        double value;
    };
    // The points span the box x 20..30, y 10..15; anchors are their midpoint (25, 12.5).
    for (const Case& c : {Case{{25, 30}, ConstraintType::HorizontalDistance, 10},
                          Case{{40, 12}, ConstraintType::VerticalDistance, 5},
                          Case{{40, 30}, ConstraintType::Distance, std::hypot(10.0, 5.0)}}) {
        session->setTool(ui::SketchSession::Dimension);
        click(20, 10);
        EXPECT_EQ(session->status().toStdString(), "Dimension · click another point or a line");
        click(30, 15);
        click(c.label.x, c.label.y);
        ASSERT_EQ(sketch().constraints.size(), 1u) << (errors.empty() ? "" : errors.back());
        const SketchConstraint& made = sketch().constraints[0];
        EXPECT_EQ(made.type, c.type);
        EXPECT_NEAR(made.value, c.value, 1e-9);
        ASSERT_TRUE(made.label);
        EXPECT_NEAR(made.label->first, c.label.x - 25, 1e-9);
        EXPECT_NEAR(made.label->second, c.label.y - 12.5, 1e-9);
        ASSERT_TRUE(stack.undo());
        session->refresh();
    }
}

TEST_F(Picking, LineThenEmptySpaceGivesItsLengthAndWrongPicksAreRefused) {
    line(0, 5, 10, 5);
    session->setTool(ui::SketchSession::Dimension);
    click(30, 30); // nothing there
    EXPECT_TRUE(session->status().startsWith("That can't be used here   ·"));
    EXPECT_EQ(session->step(), 0);
    click(5, 5.2);
    EXPECT_FALSE(session->status().startsWith("That can't"));
    click(5, 9);
    const SketchConstraint* length = constraint(ConstraintType::Length);
    ASSERT_NE(length, nullptr);
    EXPECT_DOUBLE_EQ(length->value, 10);

    session->setTool(ui::SketchSession::Constraint, static_cast<int>(ConstraintType::Parallel));
    EXPECT_EQ(session->status().toStdString(), "Parallel · click a line");
    click(0, 5.1); // on the line's end: parallel takes the line, not the point
    EXPECT_EQ(session->status().toStdString(), "Parallel · click the other line");
    click(3, 0.2); // the x axis
    EXPECT_EQ(count(ConstraintType::Parallel), 1);
    EXPECT_EQ(constraint(ConstraintType::Parallel)->refs[1].text(), "XAxis");
    EXPECT_EQ(session->step(), 0);
}

TEST_F(Picking, DraggingAPointMovesItThroughTheSolver) {
    line(2, 2, 8, 2);
    execute(CommandRecord("add_constraint")
                .set("sketch", "Sketch1")
                .set("type", "horizontal")
                .set("a", "Line1"));
    session->setTool(ui::SketchSession::Select);
    session->mousePress(px(8, 2), Qt::NoModifier);
    session->mouseMove(px(8, 4), Qt::NoModifier);
    session->mouseMove(px(9, 5), Qt::NoModifier);
    session->mouseRelease(px(9, 5), Qt::NoModifier);

    ASSERT_FALSE(records.empty());
    const CommandRecord& moved = records.back();
    EXPECT_EQ(moved.name, "move_sketch_point");
    EXPECT_EQ(std::get<std::string>(*moved.find("point")), "Line1.end");
    const auto& l = std::get<SketchLine>(sketch().entities[0].geometry);
    EXPECT_NEAR(l.end.x, 9, 1e-6);
    EXPECT_NEAR(l.end.y, 5, 1e-6);
    EXPECT_NEAR(l.start.y, 5, 1e-6);                  // the horizontal held: the start came along
    EXPECT_TRUE(session->selectedEntities().empty()); // a drag is no click
}

TEST_F(Picking, LabelsSelectDragAndEditTheirDimension) {
    line(0, 0, 10, 0);
    execute(CommandRecord("add_constraint")
                .set("sketch", "Sketch1")
                .set("type", "length")
                .set("a", "Line1")
                .set("label_x", 0.0)
                .set("label_y", 4.0));
    session->setTool(ui::SketchSession::Select);
    click(5, 4);
    EXPECT_EQ(session->selectedConstraints(), std::vector<std::string>{"Length1"});

    session->mousePress(px(5, 4), Qt::NoModifier);
    session->mouseMove(px(5, 7), Qt::NoModifier);
    session->mouseRelease(px(5, 8), Qt::NoModifier);
    EXPECT_EQ(records.back().name, "move_dimension");
    ASSERT_TRUE(sketch().constraints[0].label);
    EXPECT_NEAR(sketch().constraints[0].label->second, 8, 1e-9);

    session->mouseDoubleClick(px(5, 8), Qt::NoModifier);
    auto* editor = host.findChild<ui::LengthEdit*>("dimensionEditor");
    ASSERT_NE(editor, nullptr);
    EXPECT_FALSE(editor->isHidden());
    EXPECT_EQ(editor->accessibleName(), "Dimension value");
    editor->setText("12 + 3mm");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(records.back().name, "edit_constraint");
    EXPECT_DOUBLE_EQ(sketch().constraints[0].value, 15);
    EXPECT_TRUE(editor->isHidden());
    const auto& l = std::get<SketchLine>(sketch().entities[0].geometry);
    EXPECT_NEAR(l.end.x - l.start.x, 15, 1e-6);
}

TEST_F(Picking, EscapeDropsTheSelectionThenLetsTheSketchFinish) {
    line(0, 5, 10, 5);
    click(5, 5.1);
    EXPECT_EQ(session->selectedEntities(), std::vector<std::string>{"Line1"});
    EXPECT_TRUE(session->cancel());
    EXPECT_TRUE(session->selectedEntities().empty());
    EXPECT_FALSE(session->cancel());

    // Deleting the sketch from elsewhere ends the session.
    execute(CommandRecord("delete_object").set("object", "Sketch1"));
    EXPECT_FALSE(session->isActive());
}

} // namespace

namespace {

TEST_F(Picking, ConstraintToolsTakeWhatEachStepAccepts) {
    execute(CommandRecord("add_point").set("sketch", "Sketch1").set("x", 3.0).set("y", 8.0));
    line(0, 5, 10, 5);
    execute(CommandRecord("add_rectangle")
                .set("sketch", "Sketch1")
                .set("x1", 20.0)
                .set("y1", 0.0)
                .set("x2", 30.0)
                .set("y2", 6.0));

    session->setTool(ui::SketchSession::Constraint, static_cast<int>(ConstraintType::Coincident));
    click(6, 5.1); // a curve where a point is asked for
    EXPECT_TRUE(session->status().startsWith("That can't be used here"));
    click(3, 8);
    EXPECT_EQ(session->status().toStdString(), "Coincident · click a point or a curve");
    click(3, 5.1);
    const SketchConstraint* on = constraint(ConstraintType::Coincident);
    ASSERT_NE(on, nullptr);
    EXPECT_EQ(on->refs[1].text(), "Line1");
    const Point2 p = std::get<SketchPoint>(sketch().entities[0].geometry).position;
    const auto& l = std::get<SketchLine>(sketch().entities[1].geometry);
    const double across =
        (p.y - l.start.y) * (l.end.x - l.start.x) - (p.x - l.start.x) * (l.end.y - l.start.y);
    EXPECT_NEAR(across, 0, 1e-6); // the point now lies on the line

    session->setTool(ui::SketchSession::Constraint, static_cast<int>(ConstraintType::Fix));
    click(25, 6.1); // the rectangle's top edge fixes the whole rectangle
    ASSERT_NE(constraint(ConstraintType::Fix), nullptr);
    EXPECT_EQ(constraint(ConstraintType::Fix)->refs[0].text(), "Rectangle1");
    click(0.1, 0.1); // the origin is fixed already
    EXPECT_TRUE(session->status().startsWith("That can't be used here"));
    click(25, 6.1); // refused as redundant: the message goes to the window, the tool stays
    EXPECT_EQ(count(ConstraintType::Fix), 1);
    ASSERT_FALSE(errors.empty());
    EXPECT_NE(errors.back().find("redundant"), std::string::npos);
    EXPECT_EQ(session->step(), 0);
}

TEST_F(Picking, CirclesGetDiametersAndArcsRadii) {
    execute(CommandRecord("add_circle")
                .set("sketch", "Sketch1")
                .set("cx", 40.0)
                .set("cy", 40.0)
                .set("radius", 5.0));
    execute(CommandRecord("add_arc")
                .set("sketch", "Sketch1")
                .set("cx", 60.0)
                .set("cy", 40.0)
                .set("radius", 5.0)
                .set("start_angle", 0.0)
                .set("sweep_angle", 90.0));
    session->setTool(ui::SketchSession::Dimension);
    click(45, 40.1);
    EXPECT_EQ(session->status().toStdString(), "Dimension · click to place it");
    click(50, 50);
    click(60 + 5 / std::sqrt(2.0), 40 + 5 / std::sqrt(2.0));
    click(70, 50);
    ASSERT_EQ(sketch().constraints.size(), 2u);
    EXPECT_EQ(sketch().constraints[0].type, ConstraintType::Diameter);
    EXPECT_DOUBLE_EQ(sketch().constraints[0].value, 10);
    EXPECT_EQ(sketch().constraints[1].type, ConstraintType::Radius);
    EXPECT_DOUBLE_EQ(sketch().constraints[1].value, 5);
}

TEST_F(Picking, SignalsFollowTheSessionAndVanishedPicksAreDropped) {
    std::vector<std::string> heard;
    QObject::connect(session.get(), &ui::SketchSession::activeChanged,
                     [&](bool on) { heard.push_back(on ? "active" : "inactive"); });
    QObject::connect(session.get(), &ui::SketchSession::toolChanged,
                     [&](int tool) { heard.push_back("tool " + std::to_string(tool)); });
    QObject::connect(session.get(), &ui::SketchSession::statusChanged,
                     [&](const QString&) { heard.push_back("status"); });
    QObject::connect(session.get(), &ui::SketchSession::hoverTextChanged,
                     [&](const QString& text) { heard.push_back(text.toStdString()); });
    session->setTool(ui::SketchSession::Line);
    session->end();
    session->begin("Sketch1");
    EXPECT_EQ(heard, (std::vector<std::string>{"tool 1", "status", "inactive", "active", "tool 0",
                                               "status"}));

    line(0, 5, 10, 5);
    heard.clear();
    move(5, 5.2);
    EXPECT_EQ(heard, std::vector<std::string>{"Line1  ·  10 mm"});

    session->setTool(ui::SketchSession::Constraint, static_cast<int>(ConstraintType::Parallel));
    click(5, 5.2);
    EXPECT_EQ(session->step(), 1);
    execute(CommandRecord("delete_sketch_entity").set("sketch", "Sketch1").set("entity", "Line1"));
    EXPECT_EQ(session->step(), 0);
    EXPECT_EQ(session->status().toStdString(), "Parallel · click a line");
}

} // namespace

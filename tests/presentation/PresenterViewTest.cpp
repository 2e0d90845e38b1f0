// The presenter and the picker on a real 3D view under a virtual X screen: bodies
// picked by the selection filter, changes redrawn in place, removals, cosmetic
// threads marked with their body, and the picker's candidates, groups, hint and
// Shift rule.
#include "PresenterViewFixture.h"

#include "geometry/References.h"
#include "geometry/holes/HoleCommands.h"

#include <AIS_Shape.hxx>
#include <StdSelect_BRepOwner.hxx>
#include <TColStd_ListOfInteger.hxx>

#include <QImage>
#include <QKeyEvent>
#include <QSignalSpy>

namespace cad::testing {

TEST_F(PresenterView, BodiesPickByTheFilterAndPickersKeepTheirOwnKinds) {
    ok("create_box", {{"width", 20.0}, {"depth", 20.0}, {"height", 20.0}});
    presenter->setOriginVisible(false);
    settle();
    const QPointF top = project(6, 12, 20); // no hidden edge lies behind it
    const Handle(AIS_InteractiveObject) box = presenter->presentationOf("Box1");
    ASSERT_FALSE(box.IsNull());
    EXPECT_EQ(presenter->objectOf(box), "Box1");
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{4});
    ASSERT_FALSE(plainPick(top).empty());
    EXPECT_EQ(plainPick(top).front(), std::pair(std::string("Box1"), TopAbs_FACE));
    EXPECT_NEAR(presenter->shownBodiesBox().CornerMax().Z(), 20, 0.01);

    // Edges only: the middle of a face picks nothing, but a picker asking for faces
    // still gets them.
    presenter->setSelectionFilter(false, true, false);
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{2});
    EXPECT_TRUE(plainPick(top).empty());
    picker->activate(ui::PickFace, [](const std::vector<std::string>&) {});
    const std::vector<ui::PickCandidate> candidates = picker->candidatesAt(top);
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().kind, ui::PickFace);
    EXPECT_EQ(candidates.front().reference, "Box1/Box1.top");
    for (std::size_t i = 1; i < candidates.size(); ++i)
        EXPECT_LE(candidates[i - 1].depth, candidates[i].depth);
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{2});
    picker->deactivate();

    // Bodies: a click anywhere on it is the whole body.
    presenter->setSelectionFilter(false, false, false, true);
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{0});
    ASSERT_FALSE(plainPick(top).empty());
    EXPECT_EQ(plainPick(top).front().first, "Box1");
    EXPECT_NE(plainPick(top).front().second, TopAbs_FACE);

    // With faces on, the body can still be selected whole (a double-click does it),
    // and face picking stays as it was.
    presenter->setSelectionFilter(true, false, false);
    EXPECT_TRUE(presenter->selectWholeBody("Box1"));
    EXPECT_FALSE(presenter->selectWholeBody("Nothing"));
    ASSERT_EQ(context()->NbSelected(), 1);
    context()->InitSelected();
    const auto owner = Handle(StdSelect_BRepOwner)::DownCast(context()->SelectedOwner());
    ASSERT_FALSE(owner.IsNull());
    EXPECT_FALSE(owner->ComesFromDecomposition());
    EXPECT_EQ(presenter->objectOf(context()->SelectedOwner()), "Box1");
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{4});

    // Hidden bodies are erased and leave the box; shown again, they pick again.
    document.find("Box1")->visible = false;
    presenter->refreshVisibility();
    EXPECT_FALSE(context()->IsDisplayed(box));
    EXPECT_TRUE(presenter->shownBodiesBox().IsVoid());
    EXPECT_FALSE(presenter->selectWholeBody("Box1"));
    document.find("Box1")->visible = true;
    presenter->refreshVisibility();
    EXPECT_EQ(activeModes("Box1"), std::vector<int>{4});

    // A body without a shape has nothing to show.
    auto empty = std::make_unique<GeometryObject>();
    empty->id = "Body7";
    document.add(std::move(empty));
    EXPECT_TRUE(presenter->presentationOf("Body7").IsNull());
}

TEST_F(PresenterView, ChangesRedrawInPlaceAndRemovalsRemove) {
    roundedOutline();
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5.0}});
    presenter->setOriginVisible(false);
    settle();
    const Handle(AIS_InteractiveObject) body = presenter->presentationOf("Body1");
    ASSERT_FALSE(body.IsNull());

    const QPointF top = project(20, 10, 5);
    context()->MoveTo(static_cast<int>(top.x()), static_cast<int>(top.y()), viewport->view(),
                      false);
    context()->SelectDetected(AIS_SelectionScheme_Replace);
    ASSERT_EQ(context()->NbSelected(), 1);
    ok("edit_feature", {{"feature", "Extrude1"}, {"distance", 12.0}});
    EXPECT_EQ(presenter->presentationOf("Body1"), body) << "redisplayed in place";
    EXPECT_NEAR(presenter->shownBodiesBox().CornerMax().Z(), 12, 0.01);
    EXPECT_EQ(context()->NbSelected(), 0) << "a changed selected object is deselected";
    EXPECT_EQ(activeModes("Body1"), std::vector<int>{4});
    // Picking follows the new shape: the end face is now at z = 12.
    picker->activate(ui::PickFace, [](const std::vector<std::string>&) {});
    const auto raised = picker->candidatesAt(project(20, 10, 12));
    ASSERT_FALSE(raised.empty());
    EXPECT_EQ(raised.front().reference, "Body1/Extrude1.end");

    // Undoing the extrude removes the body.
    ASSERT_TRUE(stack.undo()); // edit
    ASSERT_TRUE(stack.undo()); // extrude: the body goes
    EXPECT_TRUE(presenter->presentationOf("Body1").IsNull());
    EXPECT_FALSE(context()->IsDisplayed(body));
    EXPECT_TRUE(presenter->shownBodiesBox().IsVoid());

    // Reset rebuilds from the document.
    presenter->documentReset();
    EXPECT_TRUE(presenter->presentationOf("Body1").IsNull());
    EXPECT_TRUE(context()->IsDisplayed(presenter->presentationOf("Sketch1")));
}

TEST_F(PresenterView, RolledBackObjectsAreErasedAndComeBack) {
    sketchWithRectangles({{0, 0, 10, 6}});
    sketchWithRectangles({{0, 0, 4, 4}}, 5);
    settle();
    const Handle(AIS_InteractiveObject) first = presenter->presentationOf("Sketch1");
    const Handle(AIS_InteractiveObject) second = presenter->presentationOf("Sketch2");
    ASSERT_TRUE(context()->IsDisplayed(second));
    document.setRollback("Sketch2", true);
    EXPECT_TRUE(context()->IsDisplayed(first));
    EXPECT_FALSE(context()->IsDisplayed(second));
    document.setRollback("", true);
    EXPECT_TRUE(context()->IsDisplayed(second));
    EXPECT_EQ(activeModes("Sketch2"), std::vector<int>{2});
}

TEST_F(PresenterView, OriginItemsShowAndPick) {
    presenter->setOriginVisible(true);
    settle(V3d_Zpos);
    picker->activate(ui::PickPlane | ui::PickAxis, [](const std::vector<std::string>&) {});
    // Looking down on XY from above, a point off the axes finds the XY plane.
    auto candidates = picker->candidatesAt(project(10, 20, 0));
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().reference, "XY");
    EXPECT_EQ(candidates.front().kind, ui::PickPlane);
    // Seen from above the X axis lies along the edge of the XZ plane: only the axis
    // is an axis.
    picker->activate(ui::PickAxis, [](const std::vector<std::string>&) {});
    candidates = picker->candidatesAt(project(20, 0, 0));
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().reference, "X");
    EXPECT_EQ(candidates.front().kind, ui::PickAxis);

    presenter->setOriginVisible(false);
    EXPECT_TRUE(picker->candidatesAt(project(10, 20, 0)).empty());
}

TEST_F(PresenterView, PickerGroupsHintsAndShift) {
    roundedOutline();
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5.0}});
    presenter->setOriginVisible(false);
    settle();

    std::vector<std::vector<std::string>> picks;
    picker->activate(ui::PickEdge,
                     [&](const std::vector<std::string>& refs) { picks.push_back(refs); });
    EXPECT_TRUE(picker->isActive());
    EXPECT_EQ(viewport->tool(), picker.get());
    QSignalSpy hints(picker.get(), &ReferencePicker::hintChanged);

    // The middle of the top edge along Line1: a tangent chain of eight edges.
    const QPointF edge = project(20, 0, 5);
    const std::string top = "Body1/Edge(Extrude1.end, Extrude1.side.Line1)";
    const auto candidates = picker->candidatesAt(edge);
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().reference, top);
    picker->mouseMove(edge, Qt::NoModifier);
    EXPECT_EQ(picker->hintText().toStdString(), ui::referenceLabel(document, top).toStdString() +
                                                    " and 7 more (Shift: just this one)");
    EXPECT_EQ(hints.count(), 1);
    // The whole group is drawn in the hover colour, over the body.
    const QImage hovered = viewport->grabFramebuffer();
    for (const QPointF& at : {edge, project(40, 10, 5), project(5, 20, 5)}) {
        const QColor c = hovered.pixelColor(at.toPoint());
        EXPECT_GT(c.blue(), c.red() + 60) << at.x() << "," << at.y();
    }

    EXPECT_TRUE(picker->mousePress(edge, Qt::NoModifier));
    EXPECT_TRUE(picker->mousePress(edge, Qt::ShiftModifier));
    ASSERT_EQ(picks.size(), 2u);
    EXPECT_EQ(picks[0].size(), 8u);
    EXPECT_EQ(picks[0].front(), top);
    EXPECT_EQ(picks[1], std::vector<std::string>{top});

    // Over nothing a press is not the picker's; leaving the view clears the hint.
    EXPECT_FALSE(picker->mousePress(QPointF(5, viewport->height() - 5), Qt::NoModifier));
    EXPECT_EQ(picks.size(), 2u);
    picker->leave();
    EXPECT_TRUE(picker->hintText().isEmpty());

    // Deleting the body while it is hovered: the next move finds nothing.
    picker->mouseMove(edge, Qt::NoModifier);
    ASSERT_FALSE(picker->hintText().isEmpty());
    ASSERT_TRUE(stack.undo());
    picker->mouseMove(edge, Qt::NoModifier);
    EXPECT_TRUE(picker->hintText().isEmpty());

    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_TRUE(picker->keyPress(&escape));
    EXPECT_FALSE(picker->isActive());
    EXPECT_NE(viewport->tool(), picker.get());
    EXPECT_FALSE(picker->mousePress(edge, Qt::NoModifier));
}

TEST_F(PresenterView, PickerFindsSketchEntitiesAndRegions) {
    const std::string sketch = roundedOutline();
    presenter->setOriginVisible(false);
    settle(V3d_Zpos);

    std::vector<std::string> picked;
    picker->activate(ui::PickSketchEntity,
                     [&](const std::vector<std::string>& refs) { picked = refs; });
    const QPointF line = project(20, 20, 0);
    auto candidates = picker->candidatesAt(line);
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().reference, sketch + "/Line3");
    EXPECT_EQ(candidates.front().kind, ui::PickSketchEntity);
    picker->mousePress(line, Qt::NoModifier);
    EXPECT_EQ(picked.size(), 8u);

    // Regions are pickable only by pickers that ask for them.
    EXPECT_TRUE(picker->candidatesAt(project(20, 10, 0)).empty());
    picker->activate(ui::PickRegion, [](const std::vector<std::string>&) {});
    candidates = picker->candidatesAt(project(20, 10, 0));
    ASSERT_EQ(candidates.size(), 1u);
    EXPECT_EQ(candidates.front().kind, ui::PickRegion);
    EXPECT_TRUE(candidates.front().reference.starts_with(sketch + "/Region("));
    EXPECT_TRUE(geometry::resolveReference(document, candidates.front().reference));
}

TEST_F(PresenterView, CosmeticThreadsAreMarkedWithTheirBodyAndFollowIt) {
    registerHoleCommands(registry);
    ok("create_box", {{"width", 40}, {"depth", 40}, {"height", 10}});
    ok("create_sketch", {{"origin_x", 0.0},
                         {"origin_y", 0.0},
                         {"origin_z", 10.0},
                         {"normal_x", 0.0},
                         {"normal_y", 0.0},
                         {"normal_z", 1.0},
                         {"x_dir_x", 1.0},
                         {"x_dir_y", 0.0},
                         {"x_dir_z", 0.0},
                         {"support", "Box1"}});
    ok("add_point", {{"sketch", "Sketch1"}, {"x", 12}, {"y", 20}});
    EXPECT_TRUE(presenter->threadMarksOf("Box1").empty());

    // A tapped M6 hole 10 deep: a helix at the 3 mm major radius down the hole, drawn
    // with the body and never picked.
    ok("hole", {{"sketch", "Sketch1"}, {"size", "M6"}});
    auto marks = presenter->threadMarksOf("Box1");
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_TRUE(context()->IsDisplayed(marks.front()));
    TColStd_ListOfInteger modes;
    context()->ActivatedModes(marks.front(), modes);
    EXPECT_TRUE(modes.IsEmpty());
    const auto b = bounds(Handle(AIS_Shape)::DownCast(marks.front())->Shape());
    EXPECT_NEAR(b[0], 9, 1e-3);
    EXPECT_NEAR(b[4], 23, 1e-3);
    EXPECT_NEAR(b[5], 10, 1e-3);
    EXPECT_NEAR(b[2], 0, 1e-3); // the whole depth

    // Hidden with the body; gone once the thread is modeled, back on undo.
    ok("set_visibility", {{"object", "Box1"}, {"visible", false}});
    EXPECT_FALSE(context()->IsDisplayed(presenter->threadMarksOf("Box1").front()));
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(context()->IsDisplayed(presenter->threadMarksOf("Box1").front()));
    // A counterbore's thread starts at its floor, 6.4 deep for M6.
    ok("edit_hole", {{"feature", "Hole1"}, {"kind", "counterbore"}});
    ASSERT_EQ(presenter->threadMarksOf("Box1").size(), 1u);
    const auto below =
        bounds(Handle(AIS_Shape)::DownCast(presenter->threadMarksOf("Box1").front())->Shape());
    EXPECT_NEAR(below[5], 10 - 6.4, 1e-3);
    ASSERT_TRUE(stack.undo());
    ok("edit_hole", {{"feature", "Hole1"}, {"modeled", true}});
    EXPECT_TRUE(presenter->threadMarksOf("Box1").empty());
    ASSERT_TRUE(stack.undo());
    ASSERT_EQ(presenter->threadMarksOf("Box1").size(), 1u);
    EXPECT_TRUE(context()->IsDisplayed(presenter->threadMarksOf("Box1").front()));
}

} // namespace cad::testing

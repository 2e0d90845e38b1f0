// Reference planes and section analyses in a real 3D view: planes drawn, moved,
// selected, hidden, rolled back, deleted and picked whole; sections cutting every
// shown body open with a capped cut that follows them, out of the pickers' way.
#include "PresenterViewFixture.h"

#include "geometry/planes/PlaneObject.h"

#include <AIS_Shape.hxx>
#include <Graphic3d_ClipPlane.hxx>

#include <QImage>

#include <algorithm>

namespace cad::testing {

namespace {

class PlanesView : public PresenterView {
protected:
    std::array<double, 6> drawn(const std::string& id) {
        const auto shape = Handle(AIS_Shape)::DownCast(presenter->presentationOf(id));
        return shape.IsNull() ? std::array<double, 6>{} : bounds(shape->Shape());
    }
    bool shown(const std::string& id) {
        const Handle(AIS_InteractiveObject) p = presenter->presentationOf(id);
        return !p.IsNull() && context()->IsDisplayed(p);
    }
    std::vector<Handle(Graphic3d_ClipPlane)> cutsOf(const std::string& id) {
        std::vector<Handle(Graphic3d_ClipPlane)> cuts;
        Graphic3d_SequenceOfHClipPlane::Iterator it(presenter->presentationOf(id)->ClipPlanes());
        for (; it.More(); it.Next()) cuts.push_back(it.Value());
        return cuts;
    }
    static bool cutsAway(const Handle(Graphic3d_ClipPlane) & cut, double z) {
        return cut->IsPointOutHalfspace(Graphic3d_Vec4d(10, 10, z, 1.0));
    }
};

} // namespace

TEST_F(PlanesView, AReferencePlaneIsDrawnMovedSelectedHiddenAndDeleted) {
    presenter->setOriginVisible(false);
    ok("add_plane", {{"references", "XY"}, {"distance", 10}, {"size", 30}});
    settle(V3d_Zpos);
    ASSERT_TRUE(shown("Plane1"));
    const Handle(AIS_InteractiveObject) plane = presenter->presentationOf("Plane1");
    Quantity_Color colour;
    plane->Color(colour);
    EXPECT_LT(colour.Distance(Quantity_Color(0.98, 0.66, 0.22, Quantity_TOC_sRGB)), 1e-3);
    EXPECT_NEAR(plane->Transparency(), 0.82, 1e-6);
    const std::array<double, 6> square{-30, -30, 10, 30, 30, 10};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(drawn("Plane1")[i], square[i], 1e-6);
    // Seen from above it tints the dark background orange.
    const QPointF centre = project(12, 7, 10);
    const QColor tint = viewport->grabFramebuffer().pixelColor(centre.toPoint());
    EXPECT_GT(tint.red(), tint.blue() + 20);

    // Plain selection takes it whole, by a click and from the browser; a rename keeps
    // the selection, an edit moves the same presentation and drops it.
    context()->MoveTo(static_cast<int>(centre.x()), static_cast<int>(centre.y()), viewport->view(),
                      false);
    context()->SelectDetected(AIS_SelectionScheme_Replace);
    EXPECT_EQ(presenter->selectedObjects(), std::vector<std::string>{"Plane1"});
    context()->ClearSelected(false);
    EXPECT_EQ(presenter->selectObjects({"Plane1"}), 1);
    ok("rename_object", {{"object", "Plane1"}, {"name", "Datum"}});
    EXPECT_EQ(presenter->selectedObjects(), std::vector<std::string>{"Plane1"});
    ok("edit_plane", {{"plane", "Plane1"}, {"distance", 25}});
    EXPECT_EQ(presenter->presentationOf("Plane1"), plane);
    EXPECT_NEAR(drawn("Plane1")[2], 25, 1e-6);
    EXPECT_TRUE(presenter->selectedObjects().empty());

    ok("set_visibility", {{"object", "Plane1"}, {"visible", false}});
    EXPECT_FALSE(shown("Plane1"));
    ASSERT_TRUE(stack.undo());
    ok("roll_back", {{"to", "Plane1"}});
    EXPECT_FALSE(shown("Plane1"));
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(shown("Plane1"));
    EXPECT_EQ(activeModes("Plane1"), std::vector<int>{0});
    ok("delete_object", {{"object", "Plane1"}});
    EXPECT_TRUE(presenter->presentationOf("Plane1").IsNull());
    EXPECT_FALSE(context()->IsDisplayed(plane));

    // A plane that never computed has nothing to show.
    auto unplaced = std::make_unique<PlaneObject>();
    unplaced->id = "Plane9";
    document.add(std::move(unplaced));
    EXPECT_TRUE(presenter->presentationOf("Plane9").IsNull());
}

TEST_F(PlanesView, PickersTakeAReferencePlaneWholeByItsId) {
    presenter->setOriginVisible(false);
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 5}});
    ok("add_plane", {{"references", "XY"}, {"distance", 12}, {"size", 15}});
    settle(V3d_Zpos);
    std::vector<std::string> picked;
    picker->activate(ui::PickPlane | ui::PickFace,
                     [&](const std::vector<std::string>& refs) { picked = refs; });
    const QPointF centre = project(3, 4, 12);
    auto candidates = picker->candidatesAt(centre);
    ASSERT_GE(candidates.size(), 2u);
    EXPECT_EQ(candidates[0].reference, "Plane1");
    EXPECT_EQ(candidates[0].kind, ui::PickPlane);
    EXPECT_EQ(candidates[1].reference, "Box1/Box1.top");
    EXPECT_TRUE(picker->mousePress(centre, Qt::NoModifier));
    EXPECT_EQ(picked, std::vector<std::string>{"Plane1"});

    // Faces only: the pick passes through the plane to the box.
    picker->activate(ui::PickFace, [](const std::vector<std::string>&) {});
    candidates = picker->candidatesAt(centre);
    ASSERT_FALSE(candidates.empty());
    EXPECT_EQ(candidates.front().reference, "Box1/Box1.top");
}

TEST_F(PlanesView, AVisibleSectionCutsEveryBodyOpenWithACappedCut) {
    presenter->setOriginVisible(false);
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 20}});
    ok("add_section", {{"references", "XY"}, {"distance", 10}});
    ASSERT_TRUE(shown("Section1"));
    const auto cuts = cutsOf("Box1");
    ASSERT_EQ(cuts.size(), 1u);
    const Handle(Graphic3d_ClipPlane) cut = cuts.front();
    EXPECT_TRUE(cut->IsCapping());
    EXPECT_FALSE(cut->CappingTexture().IsNull()); // the hatch
    EXPECT_TRUE(cutsAway(cut, 15));               // the side the normal points to goes
    EXPECT_FALSE(cutsAway(cut, 5));
    EXPECT_TRUE(cutsOf("Section1").empty());
    // Drawn over the body where it cuts it, a tenth and 2 mm wider on each side.
    const std::array<double, 6> cover{-3, -3, 10, 23, 23, 10};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(drawn("Section1")[i], cover[i], 1e-3);

    // Seen from the front the upper half is gone.
    settle(V3d_Yneg);
    const QImage front = viewport->grabFramebuffer();
    EXPECT_GT(front.pixelColor(project(10, 0, 4).toPoint()).lightness(),
              front.pixelColor(project(10, 0, 16).toPoint()).lightness() + 40);

    // Pickers never see it and a click through it finds the body; the browser can
    // still select it.
    settle(V3d_Zpos);
    picker->activate(ui::PickAnything, [](const std::vector<std::string>&) {});
    const QPointF middle = project(10, 10, 10);
    for (const ui::PickCandidate& c : picker->candidatesAt(middle))
        EXPECT_NE(c.objectId, "Section1");
    ASSERT_FALSE(plainPick(middle).empty());
    EXPECT_EQ(plainPick(middle).front().first, "Box1");
    EXPECT_EQ(presenter->selectObjects({"Section1"}), 1);
    EXPECT_EQ(presenter->selectedObjects(), std::vector<std::string>{"Section1"});

    // An edit moves the same cut; a body added later is cut too; a second section
    // adds its cut; hiding or deleting one takes its cut away at once.
    ok("edit_section", {{"section", "Section1"}, {"distance", 4}});
    EXPECT_EQ(cutsOf("Box1"), cuts);
    EXPECT_TRUE(cutsAway(cut, 6));
    EXPECT_NEAR(drawn("Section1")[2], 4, 1e-6);
    ok("create_box", {{"width", 5}, {"depth", 5}, {"height", 5}});
    EXPECT_EQ(cutsOf("Box2"), cuts);
    ok("add_section", {{"references", "YZ"}, {"distance", 15}});
    EXPECT_EQ(cutsOf("Box1").size(), 2u);
    EXPECT_NEAR(drawn("Section2")[2], -3, 1e-3); // its y direction runs along Z
    ok("set_visibility", {{"object", "Section1"}, {"visible", false}});
    ASSERT_EQ(cutsOf("Box2").size(), 1u);
    EXPECT_NE(cutsOf("Box2").front(), cut);
    ok("delete_object", {{"object", "Section2"}});
    EXPECT_TRUE(cutsOf("Box1").empty());
    ASSERT_TRUE(stack.undo());
    ASSERT_TRUE(stack.undo());
    EXPECT_EQ(cutsOf("Box1").size(), 2u);
}

} // namespace cad::testing

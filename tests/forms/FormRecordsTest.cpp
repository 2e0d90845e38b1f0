// The fillet, shell, hole and thread forms without a view: what their rows make of
// picks and typed values (the command each would run, and the commands a clicked
// hole needs first), what a bad value does to the message line and OK, and edits
// that carry only what changed. The commands then run, so a record is also checked
// against the model it makes.
#include "tests/forms/FormRecordHarness.h"
#include "tests/holes/HoleTestModel.h"

#include "geometry/DressUpFeatures.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/ThreadFeature.h"
#include "ui/forms/DressUpForms.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormDefinition.h"
#include "ui/forms/HoleForm.h"
#include "ui/forms/ThreadForm.h"

#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepGProp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <QComboBox>

#include <cmath>
#include <memory>
#include <numbers>

namespace cad::testing {

using ui::FeatureForm;
using ui::FormDefinition;

namespace {

class FormRecords : public FormHarness<HoleModel> {
protected:
    // "Box1/<name>" of the first sub-shape of this type whose centre passes the test.
    std::string piece(const std::string& id, TopAbs_ShapeEnum type,
                      const std::function<bool(const gp_Pnt&)>& where) {
        const geometry::NamedShape& shape = body(id)->shape;
        for (TopExp_Explorer e(shape.shape(), type); e.More(); e.Next()) {
            GProp_GProps props;
            if (type == TopAbs_EDGE)
                BRepGProp::LinearProperties(e.Current(), props);
            else
                BRepGProp::SurfaceProperties(e.Current(), props);
            if (where(props.CentreOfMass())) return id + "/" + shape.nameOf(e.Current());
        }
        return {};
    }
    bool solidAt(const std::string& id, const gp_Pnt& p) {
        BRepClass3d_SolidClassifier inside(body(id)->shape.shape(), p, 1e-6);
        return inside.State() == TopAbs_IN;
    }
};

} // namespace

TEST_F(FormRecords, FilletPanelRoundsOrBevelsThePickedEdgesOfOneBody) {
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}});
    ok("create_box", {{"width", 5}, {"depth", 5}, {"height", 5}, {"x", 30}});
    const std::string edge =
        piece("Box1", TopAbs_EDGE, [](const gp_Pnt& c) { return c.X() > 9 && c.Y() > 9; });
    const std::string top = piece("Box1", TopAbs_FACE, [](const gp_Pnt& c) { return c.Z() > 9; });
    ASSERT_FALSE(edge.empty());

    // Only the selected edges are taken; a face selected with them is not.
    FeatureForm& f = load(ui::filletForm(document, {top, edge}, false));
    EXPECT_EQ(f.references(QStringLiteral("edges")), std::vector<std::string>{edge});
    EXPECT_EQ(check(), "fillet(body=\"Box1\", edges=\"" + edge + "\", radius=\"2\")");
    EXPECT_TRUE(f.acceptEnabled());

    f.setText(QStringLiteral("radius"), QStringLiteral("2 +"));
    EXPECT_EQ(check().rfind("! Radius: ", 0), 0u);
    EXPECT_FALSE(f.acceptEnabled());
    EXPECT_TRUE(f.messageIsError());

    // Chamfer mode runs chamfer with its own distance row; a square end if asked.
    f.setText(QStringLiteral("mode"), QStringLiteral("chamfer"));
    EXPECT_FALSE(f.isShown(QStringLiteral("radius")));
    f.setText(QStringLiteral("distance"), QStringLiteral("1 + 0.5"));
    f.setFlag(QStringLiteral("tangent_chain"), false);
    EXPECT_EQ(check(), "chamfer(body=\"Box1\", edges=\"" + edge +
                           "\", distance=\"1 + 0.5\", tangent_chain=false)");
    EXPECT_TRUE(f.acceptEnabled());

    // Nothing picked: the prompt, not an error; a second body's edge: one body at a time.
    f.setReferences(QStringLiteral("edges"), {});
    EXPECT_EQ(check(), "! Pick the edges in the view.");
    EXPECT_FALSE(f.messageIsError());
    EXPECT_FALSE(f.acceptEnabled());
    const std::string other = piece("Box2", TopAbs_EDGE, [](const gp_Pnt&) { return true; });
    f.setReferences(QStringLiteral("edges"), {edge, other});
    EXPECT_EQ(check(), "! Pick edges of one body at a time.");

    // The fillet record makes the rounded edge it describes.
    f.setReferences(QStringLiteral("edges"), {edge});
    f.setText(QStringLiteral("mode"), QStringLiteral("fillet"));
    f.setText(QStringLiteral("radius"), QStringLiteral("2"));
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_NEAR(volumeOf("Box1"), 1000 - (4 - std::numbers::pi) * 10, 1e-6);
    EXPECT_NE(document.findAs<FilletFeature>("Fillet1"), nullptr);
}

TEST_F(FormRecords, ShellAndThreadFormsNameTheirBodyFaceAndSize) {
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 10}});
    const std::string top = piece("Box1", TopAbs_FACE, [](const gp_Pnt& c) { return c.Z() > 9; });
    FeatureForm& shell = load(ui::shellForm(document, {top}));
    shell.setText(QStringLiteral("thickness"), QStringLiteral("1.5"));
    shell.setText(QStringLiteral("direction"), QStringLiteral("outside"));
    EXPECT_EQ(check(), "shell(body=\"Box1\", faces=\"" + top +
                           "\", thickness=\"1.5\", direction=\"outside\")");
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_GT(volumeOf("Box1"), 0.0);
    EXPECT_LT(volumeOf("Box1"), 4000.0);

    // A thread starts on the size matching the face, says which, and can take another.
    boss(6);
    const std::string round = "Body1/Extrude1.side.Circle1";
    FeatureForm& f = load(ui::threadForm(document, {top, round}));
    EXPECT_EQ(check(), "thread(body=\"Body1\", face=\"" + round + "\")");
    EXPECT_EQ(qobject_cast<QComboBox*>(f.editor(QStringLiteral("standard")))->itemText(0),
              QStringLiteral("Match the face (M6)"));
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_NE(document.findAs<ThreadFeature>("Thread1"), nullptr);
    f.setText(QStringLiteral("standard"), QStringLiteral("iso"));
    f.setText(QStringLiteral("size_iso"), QStringLiteral("M6x0.75"));
    f.setText(QStringLiteral("length"), QStringLiteral("4"));
    f.setFlag(QStringLiteral("modeled"), true);
    EXPECT_EQ(check(), "thread(body=\"Body1\", face=\"" + round +
                           "\", size=\"M6x0.75\", length=\"4\", modeled=true)");

    // A flat face is refused with the thread's own reason, and the row keeps what it had.
    f.activatePick(QStringLiteral("face"));
    f.picked({"Body1/Extrude1.end"});
    EXPECT_TRUE(f.messageIsError());
    EXPECT_TRUE(
        f.message().endsWith(QStringLiteral(" isn't cylindrical; threads go on round faces.")))
        << f.message().toStdString();
    EXPECT_EQ(f.references(QStringLiteral("face")), std::vector<std::string>{round});
}

TEST_F(FormRecords, HolePanelDrillsASketchsPointsOrWhereAFaceWasClicked) {
    plateWithPoints({{10, 10}, {30, 30}});
    FeatureForm& f = load(ui::holeForm(document, {"Sketch1"}));
    EXPECT_EQ(check(), "hole(sketch=\"Sketch1\", size=\"M6\", fit=\"tapped\", depth=\"10\")");

    f.setText(QStringLiteral("kind"), QStringLiteral("counterbore"));
    f.setText(QStringLiteral("standard"), QStringLiteral("unc"));
    f.setText(QStringLiteral("fit"), QStringLiteral("close"));
    f.setText(QStringLiteral("counterbore_depth"), QStringLiteral("3"));
    f.setFlag(QStringLiteral("through"), true);
    EXPECT_FALSE(f.isShown(QStringLiteral("modeled"))); // clearance holes have no thread
    EXPECT_EQ(check(), "hole(sketch=\"Sketch1\", kind=\"counterbore\", size=\"1/4-20 UNC\", "
                       "fit=\"close\", through=true, counterbore_depth=\"3\")");

    f.setText(QStringLiteral("kind"), QStringLiteral("simple"));
    f.setText(QStringLiteral("standard"), QStringLiteral("diameter"));
    f.setFlag(QStringLiteral("through"), false);
    f.setText(QStringLiteral("depth"), QStringLiteral("4 +"));
    EXPECT_EQ(check().rfind("! Depth: ", 0), 0u);
    EXPECT_FALSE(f.acceptEnabled());
    f.setText(QStringLiteral("depth"), QStringLiteral("4"));
    f.setText(QStringLiteral("tip_angle"), QStringLiteral("0"));
    f.setReferences(QStringLiteral("position"), {"Sketch1/Point2"});
    EXPECT_EQ(check(), "hole(sketch=\"Sketch1\", points=\"Point2\", diameter=\"6\", depth=\"4\", "
                       "tip_angle=\"0\")");

    // Clicks on the top face: a sketch on it with a point at each click comes first.
    const std::string top = piece("Box1", TopAbs_FACE, [](const gp_Pnt& c) { return c.Z() > 9; });
    f.setReferences(QStringLiteral("position"), {});
    f.activatePick(QStringLiteral("position"));
    f.picked({top}, std::array<double, 3>{25, 12, 10});
    f.picked({top}, std::array<double, 3>{8, 31, 10});
    EXPECT_EQ(f.references(QStringLiteral("position")).size(), 2u);
    EXPECT_EQ(check(), "hole(sketch=\"Sketch2\", diameter=\"6\", depth=\"4\", tip_angle=\"0\")");
    const CommandRecord holes = record();
    const std::vector<CommandRecord> first = before();
    ASSERT_EQ(first.size(), 3u);
    EXPECT_EQ(first[0].toCall(), "create_sketch(on=\"" + top + "\")");
    for (const CommandRecord& step : first) ASSERT_TRUE(stack.execute(step).ok) << step.toCall();
    const CommandResult drilled = stack.execute(holes);
    ASSERT_TRUE(drilled.ok) << drilled.message;
    EXPECT_FALSE(solidAt("Box1", gp_Pnt(25, 12, 7)));
    EXPECT_FALSE(solidAt("Box1", gp_Pnt(8, 31, 7)));
    EXPECT_TRUE(solidAt("Box1", gp_Pnt(10, 10, 7)));
    EXPECT_NEAR(volumeOf("Box1"), 16000 - 2 * std::numbers::pi * 9 * 4, 1e-6);

    // A click and a sketch point can't be mixed; a sketch on a plane needs a body.
    f.setReferences(QStringLiteral("position"),
                    {"Sketch1", f.references(QStringLiteral("position")).front()});
    EXPECT_EQ(check(), "! Holes go either at a sketch's points or where a face was clicked, not "
                       "both.");
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_point", {{"sketch", "Sketch3"}, {"x", 5}, {"y", 5}});
    f.setReferences(QStringLiteral("position"), {"Sketch3"});
    EXPECT_EQ(check(), "! Holes need a body: give a target, or sketch on the body's face.");
}

TEST_F(FormRecords, EditFormsCarryOnlyWhatChanged) {
    plateWithPoints({{10, 10}});
    ok("hole", {{"sketch", "Sketch1"}, {"size", "M6"}});
    FeatureForm& hole = load(ui::editHoleForm(document, *document.findAs<HoleFeature>("Hole1")));
    EXPECT_EQ(definition_.title, QStringLiteral("Edit Hole1"));
    check();
    EXPECT_FALSE(hole.acceptEnabled()); // nothing changed yet
    EXPECT_TRUE(hole.message().isEmpty());
    hole.setText(QStringLiteral("size_iso"), QStringLiteral("M8"));
    EXPECT_EQ(check(), "edit_hole(feature=\"Hole1\", size=\"M8\", fit=\"tapped\")");
    hole.setText(QStringLiteral("standard"), QStringLiteral("diameter"));
    hole.setFlag(QStringLiteral("through"), true);
    EXPECT_EQ(check(), "edit_hole(feature=\"Hole1\", diameter=\"6\", through=true)");
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_TRUE(document.findAs<HoleFeature>("Hole1")->options.size.empty());

    // A fillet's radius as typed; its edges are shown, not changed.
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 60}});
    const std::string edge =
        piece("Box2", TopAbs_EDGE, [](const gp_Pnt& c) { return c.X() > 69 && c.Y() > 9; });
    ok("fillet", {{"body", "Box2"}, {"edges", edge}, {"radius", 1}});
    FeatureForm& fillet =
        load(ui::editDressUpForm(document, *document.findAs<DressUpFeature>("Fillet1")));
    EXPECT_FALSE(fillet.editor(QStringLiteral("edges"))->isEnabled());
    fillet.setText(QStringLiteral("radius"), QStringLiteral("1.5"));
    EXPECT_EQ(check(), "edit_feature(feature=\"Fillet1\", radius=\"1.5\")");
    fillet.setFlag(QStringLiteral("tangent_chain"), false);
    EXPECT_EQ(check(), "edit_feature(feature=\"Fillet1\", radius=\"1.5\", tangent_chain=false)");

    // A thread's length emptied goes back to the whole face.
    boss(6);
    ok("thread", {{"body", "Body1"}, {"face", "Extrude1.side.Circle1"}, {"length", 4}});
    FeatureForm& thread =
        load(ui::editThreadForm(document, *document.findAs<ThreadFeature>("Thread1")));
    thread.setText(QStringLiteral("length"), {});
    thread.setFlag(QStringLiteral("modeled"), true);
    EXPECT_EQ(check(), "edit_thread(feature=\"Thread1\", length=0, modeled=true)");
}

} // namespace cad::testing

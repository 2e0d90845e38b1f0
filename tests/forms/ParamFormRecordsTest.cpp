// The forms made from argument tables, and the plane, section, mirror and pattern
// forms, without a view: which row each argument becomes, what clicks and the
// selection give each row, the commands built from them (run against the model
// they describe), edits that carry only what changed, and trials that leave the
// document exactly as it was.
#include "tests/forms/FormRecordHarness.h"
#include "tests/patterns/PatternTestModel.h"

#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/PatternSetObject.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionObject.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FormSession.h"
#include "ui/forms/MirrorForm.h"
#include "ui/forms/ParamFeatureForm.h"
#include "ui/forms/PatternForms.h"
#include "ui/forms/PlaneForm.h"
#include "ui/forms/SectionForm.h"
#include "ui/presentation/ReferencePicker.h"

#include <QComboBox>
#include <QLabel>
#include <QSpinBox>

namespace cad::testing {

using ui::FeatureForm;

namespace {

QString q(const char* text) { return QString::fromLatin1(text); }

class ParamForms : public FormHarness<PatternModel> {
protected:
    // "Body1/<name>" of the first face whose name starts with `prefix`.
    std::string faceOf(const std::string& id, const std::string& prefix) {
        const geometry::NamedShape& shape = body(id)->shape;
        for (TopExp_Explorer e(shape.shape(), TopAbs_FACE); e.More(); e.Next())
            if (const std::string name = shape.nameOf(e.Current()); name.starts_with(prefix))
                return id + "/" + name;
        return {};
    }
    const ParamFeatureType& kind(const char* typeId) {
        const ParamFeatureType* type = paramFeatureTypes().find(typeId);
        EXPECT_NE(type, nullptr) << typeId;
        return *type;
    }
    static std::string region(const std::string& sketch) {
        return sketch +
               "/Region(Rectangle1.bottom+Rectangle1.left+Rectangle1.right+Rectangle1.top)";
    }
    // What tells two states of the document apart: its objects and its ID counters.
    std::pair<std::vector<std::string>, std::map<std::string, int>> snapshot() const {
        std::vector<std::string> ids;
        for (const auto& object : document.objects()) ids.push_back(object->id);
        return {ids, document.idCounters()};
    }
};

} // namespace

TEST_F(ParamForms, RevolveRowsComeFromItsTableAndItsRecordMakesTheSolid) {
    const std::string sketch = sketchWithRectangles({{10, 0, 20, 10}});
    addLine(sketch, 0, 0, 0, 30);
    // The region goes to the profile as it is, the line to the axis as it is.
    FeatureForm& f =
        load(ui::paramFeatureForm(document, kind("Revolve"), {region(sketch), sketch + "/Line1"}));
    EXPECT_EQ(definition_.title, q("Revolve"));
    EXPECT_FALSE(f.has(q("name")));
    EXPECT_FALSE(f.has(q("body")));
    // The label column carries the argument's description.
    QString angleTip;
    for (const QLabel* label : f.findChildren<QLabel*>(q("fieldLabel")))
        if (label->text() == q("Angle")) angleTip = label->toolTip();
    EXPECT_EQ(angleTip, q("Degrees (default 360); negative turns the other way."));
    EXPECT_EQ(f.references(q("sketch")), std::vector<std::string>{region(sketch)});
    EXPECT_EQ(f.references(q("axis")), std::vector<std::string>{sketch + "/Line1"});
    EXPECT_FALSE(f.isShown(q("target")));

    // A plane clicked for the axis is refused, naming it; the Y axis is taken.
    f.activatePick(q("axis"));
    f.picked({"XY"});
    EXPECT_EQ(f.message(),
              q("XY plane can't be the axis: pick an edge, a sketch curve or an axis."));
    EXPECT_EQ(f.references(q("axis")), std::vector<std::string>{sketch + "/Line1"});
    f.picked({"Y"});
    EXPECT_EQ(f.references(q("axis")), std::vector<std::string>{"Y"});
    f.setText(q("angle"), q("180"));
    EXPECT_EQ(check(), "revolve(sketch=\"" + region(sketch) + "\", axis=\"Y\", angle=\"180\")");
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_NEAR(volumeOf("Body1"), 100 * 15 * pi, 1e-6); // Pappus: area by half a turn at r 15

    // Cutting a body: the target row shows and a click on any face names its body.
    FeatureForm& cut = load(ui::paramFeatureForm(document, kind("Revolve"), {sketch}));
    EXPECT_EQ(cut.references(q("sketch")), std::vector<std::string>{sketch});
    cut.setReferences(q("axis"), {"X"});
    cut.setText(q("operation"), q("cut"));
    ASSERT_TRUE(cut.isShown(q("target")));
    cut.activatePick(q("target"));
    cut.picked({faceOf("Body1", "Revolve1")});
    EXPECT_EQ(check(), "revolve(sketch=\"" + sketch +
                           "\", axis=\"X\", operation=\"cut\", target=\"Body1\")");
    cut.setText(q("angle"), q("90 +"));
    EXPECT_EQ(check().rfind("! Angle: ", 0), 0u);
}

TEST_F(ParamForms, EveryKindOfArgumentBecomesItsRowWithoutFormCode) {
    using Kind = FeatureArgument::Kind;
    ParamFeatureType rows;
    rows.typeId = "TestRows";
    rows.nameBase = "Rows";
    rows.command = "rows";
    rows.label = "Rows";
    rows.formId = "rows";
    rows.arguments = {
        {"Height", "How high.", "height", Kind::Length, true, {}, {}, ""},
        {"Steps", "How many.", "steps", Kind::Integer, false, {}, 3, ""},
        {"Side", "Which side.", "side", Kind::Choice, false, {"both_sides", "left"}, "left", ""},
        {"Mirrored", "Mirrored.", "mirrored", Kind::Bool, false, {}, false, ""},
        {"Note", "A note.", "note", Kind::Text, false, {}, {}, ""},
        {"Faces",
         "Faces, separated by ';'.",
         "faces",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Faces},
        {"Base", "The base.", "base", Kind::Text, false, {}, {}, "body", FeatureArgument::Bodies},
    };
    FeatureForm& f = load(ui::paramFeatureForm(document, rows, {}));
    EXPECT_EQ(f.kind(q("height")), ui::FieldKind::Length);
    EXPECT_EQ(f.text(q("height")), q("10")); // a length it can't do without starts at 10
    auto* steps = qobject_cast<QSpinBox*>(f.editor(q("steps")));
    ASSERT_NE(steps, nullptr);
    EXPECT_EQ(steps->value(), 3);
    EXPECT_EQ(steps->minimum(), 1);
    EXPECT_EQ(steps->maximum(), 1000);
    auto* side = qobject_cast<QComboBox*>(f.editor(q("side")));
    ASSERT_NE(side, nullptr);
    EXPECT_EQ(side->itemText(0), q("Both sides"));
    EXPECT_EQ(f.text(q("side")), q("left"));
    EXPECT_EQ(f.kind(q("mirrored")), ui::FieldKind::Flag);
    EXPECT_EQ(f.kind(q("note")), ui::FieldKind::Text);
    // Lists take several picks, whole objects one; a body changed is picked too.
    EXPECT_TRUE(f.pickRule(q("faces"))->multiple);
    EXPECT_FALSE(f.pickRule(q("base"))->multiple);
    EXPECT_EQ(f.pickRule(q("faces"))->kinds, std::uint32_t{ui::PickFace});
    EXPECT_TRUE(f.pickRule(q("base"))->kinds & ui::PickEdge);
    EXPECT_EQ(f.kind(q("body")), ui::FieldKind::Pick);
    EXPECT_FALSE(f.has(q("name")));

    // Values at their defaults are left to the command.
    EXPECT_EQ(check(), "rows(height=\"10\")");
    f.setText(q("steps"), q("5"));
    f.setText(q("side"), q("both_sides"));
    f.setFlag(q("mirrored"), true);
    f.setText(q("note"), q("x"));
    EXPECT_EQ(check(),
              "rows(height=\"10\", steps=5, side=\"both_sides\", mirrored=true, note=\"x\")");
}

TEST_F(ParamForms, ClicksBecomeTheFeatureTheBodyOrTheSketchTheRowTakes) {
    plateWith(-4);
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 200}});
    const std::string pocket = faceOf("Body1", "Extrude2");
    ASSERT_FALSE(pocket.empty());

    FeatureForm& f = load(*ui::patternForm(document, q("rectangular"), {}));
    f.activatePick(q("features"));
    f.picked({pocket});
    EXPECT_EQ(f.references(q("features")), std::vector<std::string>{"Extrude2"});
    f.picked({faceOf("Box1", "Box1.top")});
    EXPECT_EQ(f.message(),
              q("Box1/Box1.top wasn't made by a feature: click a face a feature made."))
        << f.message().toStdString();
    EXPECT_EQ(f.references(q("features")), std::vector<std::string>{"Extrude2"});

    f.setText(q("what"), q("bodies"));
    f.activatePick(q("bodies"));
    f.picked({pocket});
    f.picked({"Box1"});
    EXPECT_EQ(f.references(q("bodies")), (std::vector<std::string>{"Body1", "Box1"}));

    // A curve stands for its sketch unless curves are taken; a region stays a region.
    using Pick = FeatureArgument::Pick;
    const auto take = [&](const std::string& reference, std::uint32_t picks) {
        Result<ui::TakenReference> taken = ui::takeReference(document, reference, picks, q("row"));
        return taken ? taken->reference : "! " + taken.error();
    };
    EXPECT_EQ(take("Sketch2/Rectangle1.top", Pick::Sketches | Pick::Regions), "Sketch2");
    EXPECT_EQ(take("Sketch2/Rectangle1.top", Pick::SketchCurves), "Sketch2/Rectangle1.top");
    EXPECT_EQ(take(region("Sketch2"), Pick::Sketches | Pick::Regions), region("Sketch2"));
    EXPECT_EQ(take(region("Sketch2"), Pick::Sketches), "Sketch2");
    EXPECT_EQ(take("Sketch2/Rectangle1.top", Pick::Vertices),
              "! Sketch2/Rectangle1.top can't be the row: pick a point.");
    EXPECT_EQ(take("Plane9", Pick::Planes), "! Plane9 can't be the row: pick a plane.");
    EXPECT_EQ(take("Extrude2", Pick::Bodies), "Body1");
}

TEST_F(ParamForms, PatternFormsRepeatFeaturesOrBodiesAndEditEither) {
    plateWith(-4);
    const std::string pocket = faceOf("Body1", "Extrude2");
    EXPECT_FALSE(ui::patternForm(document, q("spiral"), {}));
    FeatureForm& circular = load(*ui::patternForm(document, q("circular"), {}));
    EXPECT_EQ(definition_.title, q("Circular Pattern"));
    EXPECT_TRUE(circular.has(q("axis")));
    EXPECT_FALSE(circular.has(q("direction")));

    FeatureForm& f = load(*ui::patternForm(document, q("rectangular"), {pocket, "X"}));
    EXPECT_EQ(f.references(q("features")), std::vector<std::string>{"Extrude2"});
    EXPECT_EQ(f.references(q("direction")), std::vector<std::string>{"X"});
    f.setText(q("count"), q("3"));
    EXPECT_EQ(
        check(),
        "pattern_rectangular(features=\"Extrude2\", direction=\"X\", count=3, spacing=\"10\")");
    // A grid's second count and spacing come with its second direction.
    f.setReferences(q("direction2"), {"Y"});
    EXPECT_EQ(check(), "pattern_rectangular(features=\"Extrude2\", direction=\"X\", count=3, "
                       "spacing=\"10\", direction2=\"Y\", spacing2=\"10\")");
    f.setReferences(q("direction2"), {});
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_NEAR(volumeOf("Body1"), kPlate - 3 * kSquare, 1e-6);

    f.setText(q("what"), q("bodies"));
    EXPECT_EQ(check(), "! Pick the bodies to pattern.");
    f.setReferences(q("bodies"), {"Body1"});
    f.setText(q("spacing"), q("120"));
    EXPECT_EQ(check(), "pattern_bodies(bodies=\"Body1\", pattern=\"rectangular\", direction=\"X\", "
                       "count=3, spacing=\"120\")");
    ASSERT_TRUE(stack.execute(record()).ok);
    const auto* set = document.findAs<PatternSetObject>("PatternSet1");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->copies.size(), 2u);

    // The set's edit: its bodies stay, a changed count is all that goes.
    FeatureForm& edit = load(ui::editPatternSetForm(document, *set));
    EXPECT_EQ(definition_.title, q("Edit PatternSet1"));
    EXPECT_FALSE(edit.editor(q("bodies"))->isEnabled());
    EXPECT_EQ(edit.text(q("spacing")), q("120"));
    check();
    EXPECT_FALSE(edit.acceptEnabled());
    edit.setText(q("count"), q("4"));
    EXPECT_EQ(check(), "edit_pattern(pattern_set=\"PatternSet1\", count=4)");
    ASSERT_TRUE(stack.execute(record()).ok);
    EXPECT_EQ(document.findAs<PatternSetObject>("PatternSet1")->copies.size(), 3u);

    // The feature pattern's edit, in the same rows.
    const auto* pattern = document.findAs<ParamFeature>("Pattern1");
    ASSERT_NE(pattern, nullptr);
    ASSERT_TRUE(ui::isFeaturePattern(*pattern));
    FeatureForm& feature = load(ui::editFeaturePatternForm(document, *pattern));
    EXPECT_EQ(feature.references(q("features")), std::vector<std::string>{"Extrude2"});
    feature.setText(q("spacing"), q("15"));
    EXPECT_EQ(check(), "edit_pattern_rectangular(feature=\"Pattern1\", spacing=\"15\")");
}

TEST_F(ParamForms, PlaneAndSectionFormsBuildTheirCommandsAndEdits) {
    FeatureForm& f = load(ui::planeForm(document, {"XY"}));
    EXPECT_EQ(definition_.title, q("Reference Plane"));
    EXPECT_EQ(f.text(q("kind")), q("offset"));
    EXPECT_FALSE(f.isShown(q("angle")));
    EXPECT_FALSE(f.isShown(q("ang_line")));
    f.setText(q("distance"), q("10"));
    EXPECT_EQ(check(), "add_plane(kind=\"offset\", references=\"XY\", distance=\"10\")");
    ASSERT_TRUE(stack.execute(record()).ok);
    const auto* plane = document.findAs<PlaneObject>("Plane1");
    ASSERT_NE(plane, nullptr);
    EXPECT_NEAR(plane->placement.Location().Z(), 10, 1e-9);

    // Another kind shows its own rows, references in the order it takes them.
    f.setText(q("kind"), q("angle"));
    EXPECT_FALSE(f.isShown(q("off_ref")));
    EXPECT_EQ(check(), "! Pick the line it turns about.");
    f.setReferences(q("ang_line"), {"X"});
    f.setReferences(q("ang_ref"), {"XY"});
    f.setText(q("angle"), q("30"));
    EXPECT_EQ(check(), "add_plane(kind=\"angle\", references=\"X;XY\", angle=\"30\")");
    // The selection picks the kind it defines.
    FeatureForm& mid = load(ui::planeForm(document, {"XY", "Plane1"}));
    EXPECT_EQ(mid.text(q("kind")), q("midplane"));
    EXPECT_EQ(check(), "add_plane(kind=\"midplane\", references=\"XY;Plane1\")");

    FeatureForm& edit = load(ui::editPlaneForm(document, *plane));
    EXPECT_EQ(definition_.title, q("Edit Plane1"));
    EXPECT_EQ(edit.references(q("off_ref")), std::vector<std::string>{"XY"});
    check();
    EXPECT_FALSE(edit.acceptEnabled());
    edit.setText(q("distance"), q("5"));
    EXPECT_EQ(check(), "edit_plane(plane=\"Plane1\", distance=\"5\")");
    edit.setText(q("kind"), q("midplane"));
    edit.setReferences(q("mid_a"), {"XY"});
    edit.setReferences(q("mid_b"), {"XZ"});
    EXPECT_EQ(check(), "edit_plane(plane=\"Plane1\", kind=\"midplane\", references=\"XY;XZ\")");

    FeatureForm& section = load(ui::sectionForm(document, {"Plane1"}));
    EXPECT_EQ(check(), "add_section(references=\"Plane1\")");
    section.setText(q("tilt"), q("90"));
    section.setFlag(q("flip"), true);
    EXPECT_EQ(check(), "add_section(references=\"Plane1\", tilt=\"90\", flip=true)");
    ASSERT_TRUE(stack.execute(record()).ok);
    FeatureForm& editSection =
        load(ui::editSectionForm(document, *document.findAs<SectionObject>("Section1")));
    EXPECT_EQ(editSection.text(q("tilt")), q("90"));
    editSection.setText(q("turn"), q("15"));
    EXPECT_EQ(check(), "edit_section(section=\"Section1\", turn=\"15\")");
}

TEST_F(ParamForms, EditsSendOnlyWhatChangedAndTrialsLeaveTheDocumentAsItWas) {
    ok("set_parameter", {{"name", "a"}, {"expression", "45"}});
    const std::string sketch = sketchWithRectangles({{10, 0, 20, 10}});
    ok("revolve", {{"sketch", sketch}, {"axis", "Y"}, {"angle", "a * 2"}});
    const double quarter = 100 * 15 * pi / 2;
    EXPECT_NEAR(volumeOf("Body1"), quarter, 1e-6);
    const auto before = snapshot();
    const std::size_t steps = stack.undoCount();

    FeatureForm& f =
        load(ui::editParamFeatureForm(document, *document.findAs<ParamFeature>("Revolve1")));
    EXPECT_EQ(definition_.title, q("Edit Revolve1"));
    EXPECT_EQ(f.text(q("angle")), q("a * 2")); // the expression it follows
    EXPECT_EQ(f.references(q("axis")), std::vector<std::string>{"Y"});
    EXPECT_EQ(f.text(q("operation")), q("new_body"));
    EXPECT_FALSE(f.editor(q("operation"))->isEnabled());
    check();
    EXPECT_FALSE(f.acceptEnabled()); // nothing changed yet
    f.setText(q("angle"), q("180"));
    EXPECT_EQ(check(), "edit_revolve(feature=\"Revolve1\", angle=\"180\")");

    // Tried live on the feature, then withdrawn: the document is as it was.
    const std::optional<ui::FormSession::Handle> handle = definition_.session(f);
    ASSERT_TRUE(handle);
    EXPECT_EQ(handle->featureId, "Revolve1");
    {
        ui::FormSession session(nullptr, stack, handle);
        ASSERT_TRUE(session.tryEdit(record()).ok);
        EXPECT_NEAR(volumeOf("Body1"), 2 * quarter, 1e-6);
        EXPECT_EQ(stack.undoCount(), steps);
    }
    EXPECT_NEAR(volumeOf("Body1"), quarter, 1e-6);
    EXPECT_EQ(snapshot(), before);

    // A new body tried and withdrawn leaves its names free for the real one.
    FeatureForm& fresh = load(ui::paramFeatureForm(document, kind("Revolve"), {sketch, "X"}));
    EXPECT_EQ(fresh.references(q("axis")), std::vector<std::string>{"X"});
    {
        ui::FormSession session(nullptr, stack, definition_.session(fresh));
        ASSERT_TRUE(session.tryEdit(record()).ok);
        EXPECT_NE(body("Body2"), nullptr);
    }
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(stack.undoCount(), steps);
    EXPECT_EQ(stack.execute(record()).message, "Created Body2 with Revolve2.");
}

TEST_F(ParamForms, MirrorCombineAndDeleteFacesTakeTheSelection) {
    plateWith(-4);
    ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}, {"x", 200}});
    const std::string pocket = faceOf("Body1", "Extrude2");

    // Bodies each become a mirrored body, in one step with the last one tried.
    FeatureForm& bodies = load(ui::mirrorForm(document, {"Body1", "Box1", "XZ"}));
    EXPECT_EQ(bodies.text(q("what")), q("bodies"));
    EXPECT_EQ(check(), "mirror_body(source=\"Box1\", plane=\"XZ\")");
    const std::vector<CommandRecord> first = before();
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].toCall(), "mirror_body(source=\"Body1\", plane=\"XZ\")");
    ASSERT_TRUE(stack.execute(first[0]).ok);
    EXPECT_NEAR(volumeOf("Body2"), volumeOf("Body1"), 1e-6);
    bodies.setText(q("what"), q("features"));
    EXPECT_EQ(check(), "! Pick the features to mirror.");

    FeatureForm& features = load(ui::mirrorForm(document, {pocket}));
    EXPECT_EQ(features.references(q("features")), std::vector<std::string>{"Extrude2"});
    EXPECT_EQ(check(), "! Pick the mirror plane.");
    features.setReferences(q("plane"), {"YZ"});
    EXPECT_EQ(check(), "mirror_features(features=\"Extrude2\", plane=\"YZ\")");

    // The combine's target takes the first body, its tools the rest.
    FeatureForm& combine = load(ui::paramFeatureForm(document, kind("Combine"), {"Body1", "Box1"}));
    EXPECT_EQ(check(), "combine(target=\"Body1\", tools=\"Box1\")");
    combine.setText(q("operation"), q("cut"));
    combine.setText(q("clearance"), q("0.1"));
    EXPECT_EQ(check(), "combine(target=\"Body1\", tools=\"Box1\", operation=\"cut\", "
                       "clearance=\"0.1\")");

    load(ui::paramFeatureForm(document, kind("DeleteFaces"), {pocket}));
    EXPECT_EQ(definition_.title, q("Delete Faces"));
    EXPECT_EQ(check(), "delete_faces(faces=\"" + pocket + "\")");
}

} // namespace cad::testing

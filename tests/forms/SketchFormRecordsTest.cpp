// The forms that work inside a sketch, without a view: the three sketch pattern forms
// and their edits, and the Project form. What their rows make (run against the
// sketch, so a record is also checked by the command), what a missing pick says,
// and edits that carry only what changed.
#include "tests/forms/FormRecordHarness.h"
#include "tests/geometry/GeometryTestModel.h"

#include "geometry/projection/ProjectionCommands.h"
#include "sketch/SketchObject.h"
#include "sketch/patterns/SketchPatternCommands.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/SketchForms.h"

namespace cad::testing {

using ui::FeatureForm;

namespace {

QString q(const char* text) { return QString::fromLatin1(text); }

class SketchForms : public FormHarness<GeometryModel> {
protected:
    SketchForms() {
        registerSketchPatternCommands(registry);
        registerProjectionCommands(registry);
        ok("create_sketch", {{"plane", "XY"}});
        ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 0.0}, {"cy", 20.0}, {"radius", 2.0}});
        ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0.0}, {"y1", 0.0}, {"x2", 40.0}, {"y2", 0.0}});
    }
    const SketchObject& sketch(const char* id = "Sketch1") {
        return *document.findAs<SketchObject>(id);
    }
    // Runs the form's command as OK would.
    void accept() {
        const CommandResult result = stack.execute(record());
        ASSERT_TRUE(result.ok) << result.message;
    }
};

TEST_F(SketchForms, RectangularPatternStartsFromTheSelectionAndAddsAGridOnlyWhenAsked) {
    FeatureForm& f = load(*ui::sketchPatternForm(document, "Sketch1", 0, {"Circle1"}));
    EXPECT_EQ(definition_.title, q("Rectangular Pattern"));
    EXPECT_EQ(f.pickRule(q("entities"))->sketch, ui::SketchPick::Entities);
    EXPECT_EQ(check(), "sketch_pattern_rectangular(sketch=\"Sketch1\", entities=\"Circle1\", "
                       "count=2, spacing=\"10\", angle=0)");
    f.setText(q("count"), q("3"));
    f.setText(q("count2"), q("2"));
    f.setText(q("angle2"), q("45"));
    EXPECT_EQ(check(), "sketch_pattern_rectangular(sketch=\"Sketch1\", entities=\"Circle1\", "
                       "count=3, spacing=\"10\", angle=0, count2=2, spacing2=\"10\", angle2=45)");
    accept();
    EXPECT_EQ(sketch().entities.size(), 2u + 5u);

    f.setReferences(q("entities"), {});
    EXPECT_EQ(check(), "! Click the geometry to copy.");
    EXPECT_FALSE(f.acceptEnabled());
    f.setReferences(q("entities"), {"Line1"});
    f.setText(q("angle"), q("1 +"));
    EXPECT_EQ(check().rfind("! Direction: ", 0), 0u) << check();
}

TEST_F(SketchForms, CircularAndPathPatternsTakeTheirPointAndCurves) {
    FeatureForm& circular = load(*ui::sketchPatternForm(document, "Sketch1", 1, {"Line1"}));
    EXPECT_EQ(circular.pickRule(q("center"))->sketch, ui::SketchPick::Points);
    EXPECT_FALSE(circular.pickRule(q("center"))->required);
    circular.setText(q("count"), q("6"));
    circular.setText(q("angle"), q("180"));
    circular.setReferences(q("center"), {"Circle1.center"});
    EXPECT_EQ(check(), "sketch_pattern_circular(sketch=\"Sketch1\", entities=\"Line1\", count=6, "
                       "center=\"Circle1.center\", angle=180)");
    accept();
    EXPECT_EQ(sketch().entities.size(), 2u + 5u);

    FeatureForm& path = load(*ui::sketchPatternForm(document, "Sketch1", 2, {"Circle1"}));
    EXPECT_EQ(check(), "! Click the path's curves.");
    EXPECT_EQ(path.pickRule(q("path"))->sketch, ui::SketchPick::Curves);
    path.setReferences(q("path"), {"Line1"});
    path.setFlag(q("follow"), false);
    path.setText(q("count"), q("3"));
    EXPECT_EQ(check(), "sketch_pattern_path(sketch=\"Sketch1\", entities=\"Circle1\", "
                       "path=\"Line1\", count=3, follow=false)");
    accept();
    EXPECT_FALSE(ui::sketchPatternForm(document, "Sketch1", 3, {}));
    EXPECT_FALSE(ui::sketchPatternForm(document, "", 0, {}));
}

TEST_F(SketchForms, PatternEditShowsItsValuesAndCarriesOnlyWhatChanged) {
    ok("sketch_pattern_rectangular",
       {{"sketch", "Sketch1"}, {"entities", "Circle1"}, {"count", 3}, {"spacing", 12.5}});
    EXPECT_FALSE(ui::editSketchPatternForm(document, "Sketch1", "Pattern9"));
    FeatureForm& f = load(*ui::editSketchPatternForm(document, "Sketch1", "Pattern1"));
    EXPECT_EQ(definition_.title, q("Edit Pattern1"));
    EXPECT_EQ(f.text(q("count")), q("3"));
    EXPECT_EQ(f.text(q("spacing")), q("12.5"));
    EXPECT_EQ(f.references(q("entities")), std::vector<std::string>{"Circle1"});
    check();
    EXPECT_FALSE(f.acceptEnabled()); // nothing differs yet

    f.setText(q("count"), q("4"));
    EXPECT_EQ(check(), "edit_sketch_pattern(sketch=\"Sketch1\", pattern=\"Pattern1\", count=4)");
    EXPECT_TRUE(f.acceptEnabled());
    accept();
    EXPECT_EQ(sketch().patterns.front().copies.size(), 3u);
}

TEST_F(SketchForms, ProjectTakesOtherGeometryAndRefusesTheSketchItself) {
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_circle", {{"sketch", "Sketch2"}, {"cx", 5.0}, {"cy", 5.0}, {"radius", 1.5}});
    FeatureForm& f = load(ui::projectForm("Sketch1"));
    EXPECT_EQ(definition_.title, q("Project"));
    EXPECT_EQ(check(), "! Click what to project.");

    const ui::PickRule& rule = *f.pickRule(q("refs"));
    EXPECT_EQ(rule.sketch, ui::SketchPick::None); // picked in the view, across objects
    const Result<std::string> own = rule.accept("Sketch1/Line1");
    ASSERT_FALSE(own.ok());
    EXPECT_EQ(own.error(), "A sketch can't project its own geometry.");

    f.setReferences(q("refs"), {"Sketch2/Circle1"});
    f.setFlag(q("construction"), true);
    EXPECT_EQ(check(), "project(sketch=\"Sketch1\", references=\"Sketch2/Circle1\", "
                       "construction=true)");
    accept();
    const SketchEntity& projected = sketch().entities.back();
    EXPECT_EQ(projected.source, "Sketch2/Circle1");
    EXPECT_TRUE(projected.construction);
}

} // namespace

} // namespace cad::testing

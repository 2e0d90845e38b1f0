// The design history: body rebuilds with their shortcuts, change propagation,
// settling, and the commands that edit the history and objects.
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistoryCommands.h"
#include "tests/core/TestObjects.h"

#include <gtest/gtest.h>

using namespace cad;
using test::TestFeature;
using test::thing;
using test::vertexCount;

namespace {

struct History : ::testing::Test {
    History() {
        registerHistoryCommands(registry);
        doc.add(thing("Sketch", "Sketch1"));
        f1 = add<TestFeature>("Extrude1", std::vector<std::string>{"Sketch1"});
        f2 = add<TestFeature>("Fillet1");
        f3 = add<TestFeature>("Chamfer1");
        body = add<GeometryObject>();
        body->id = "Body1";
        body->features = {"Extrude1", "Fillet1", "Chamfer1"};
    }
    template <typename T, typename... A> T* add(A&&... args) {
        return static_cast<T*>(doc.add(std::make_unique<T>(std::forward<A>(args)...)));
    }
    CommandResult run(CommandRecord r) { return stack.execute(r); }
    std::vector<std::string> order() const {
        std::vector<std::string> out;
        for (const auto& o : doc.objects()) out.push_back(o->id);
        return out;
    }
    void resetCounts() { f1->applied = f2->applied = f3->applied = 0; }

    Document doc;
    CommandRegistry registry;
    CommandStack stack{doc, registry};
    TestFeature *f1, *f2, *f3;
    GeometryObject* body;
};

} // namespace

TEST_F(History, RebuildRecordsFailuresAndKeepsTheLastGoodShape) {
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    EXPECT_EQ(vertexCount(body->shape), 3);

    f2->failure = "The fillet radius is too large for this edge.";
    Result<void> r = doc.rebuildBody(*body);
    EXPECT_EQ(r.error(), "Fillet1: The fillet radius is too large for this edge.");
    EXPECT_EQ(vertexCount(body->shape), 1); // the shape before the fillet
    EXPECT_EQ(f2->error, "The fillet radius is too large for this edge.");
    EXPECT_EQ(f3->error, "Not computed because an earlier feature failed.");

    f2->failure.clear();
    body->features.insert(body->features.begin() + 1, "Ghost1");
    EXPECT_EQ(doc.rebuildBody(*body).error(), "Feature 'Ghost1' is missing.");
    EXPECT_EQ(f2->error, "Not computed because an earlier feature failed.");
}

TEST_F(History, EditingTheEndOfTheHistoryTouchesOnlyTheEnd) {
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    resetCounts();
    // Added at the end: only the new feature is computed.
    auto* f4 = add<TestFeature>("Shell1");
    body->features.push_back("Shell1");
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    EXPECT_EQ(f1->applied + f2->applied + f3->applied, 0);
    EXPECT_EQ(f4->applied, 1);
    EXPECT_EQ(vertexCount(body->shape), 4);

    // The last one suppressed: the shape before it comes back without computing.
    f4->suppressed = true;
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    EXPECT_EQ(vertexCount(body->shape), 3);
    EXPECT_EQ(f1->applied + f2->applied + f3->applied + f4->applied - 1, 0);

    // Something else changed the body's shape: the cache is not trusted.
    body->shape = geometry::NamedShape();
    f4->suppressed = false;
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    EXPECT_EQ(f1->applied, 1);
    EXPECT_EQ(vertexCount(body->shape), 4);
}

TEST_F(History, AChangeRebuildsFromTheFeatureItReaches) {
    auto* late = add<TestFeature>("Hole1", std::vector<std::string>{"Plane7"});
    body->features.push_back("Hole1");
    auto* plane = doc.add(thing("Plane", "Plane7"));
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    resetCounts();
    late->applied = 0;

    // The plane only reaches the last feature: the three before it are not recomputed.
    doc.notifyChanged(*plane);
    EXPECT_EQ(f1->applied + f2->applied + f3->applied, 0);
    EXPECT_EQ(late->applied, 1);
    EXPECT_EQ(vertexCount(body->shape), 4);

    // Editing a middle feature recomputes it and what follows, not what precedes it.
    ASSERT_TRUE(doc.rebuildBodyFrom(*body, "Fillet1").ok());
    EXPECT_EQ(f1->applied, 0);
    EXPECT_EQ(f2->applied, 1);
    EXPECT_EQ(late->applied, 2);

    // When something else changed the body, nothing cached is trusted.
    body->shape = geometry::NamedShape();
    ASSERT_TRUE(doc.rebuildBodyFrom(*body, "Hole1").ok());
    EXPECT_EQ(f1->applied, 1);
    EXPECT_EQ(vertexCount(body->shape), 4);
}

TEST_F(History, ChangesReachWhatDependsOnThemInOrder) {
    auto section = thing("Section", "Section1");
    section->uses = {"Body1"};
    section->recomputesLeft = 1;
    auto* s = doc.add(std::move(section));
    auto unrelated = thing("Plane", "Plane1");
    unrelated->recomputesLeft = 5;
    auto* plane = static_cast<test::Thing*>(doc.add(std::move(unrelated)));

    doc.notifyChanged(*doc.find("Sketch1"));
    EXPECT_EQ(vertexCount(body->shape), 3);                     // rebuilt: Extrude1 uses Sketch1
    EXPECT_EQ(static_cast<test::Thing*>(s)->recomputesLeft, 0); // then the section using the body
    EXPECT_EQ(plane->recomputesLeft, 5);                        // untouched

    // Two objects that keep moving each other stop after the settling passes.
    plane->recomputesLeft = 100;
    doc.recomputeAll();
    EXPECT_EQ(plane->recomputesLeft, 100 - 1 - 8);
}

TEST_F(History, RollBackAndSuppress) {
    EXPECT_EQ(run(CommandRecord("roll_back").set("to", "Body1")).message,
              "Body1 isn't a step of the history.");
    CommandResult whole = run(CommandRecord("roll_back"));
    EXPECT_EQ(whole.message, "The whole history is built.");
    EXPECT_EQ(f1->applied, 0); // nothing was rolled back: no recompute

    EXPECT_EQ(run(CommandRecord("roll_back").set("to", "fillet1")).message,
              "Rolled back to before Fillet1.");
    EXPECT_EQ(vertexCount(body->shape), 1);
    stack.undo();
    EXPECT_EQ(doc.rollback(), "");
    EXPECT_EQ(vertexCount(body->shape), 3);

    f3->failure = "No edge.";
    CommandResult s = run(CommandRecord("suppress_feature").set("feature", "Extrude1"));
    EXPECT_EQ(s.message, "Suppressed Extrude1. Now failing: Chamfer1: No edge.");
    EXPECT_TRUE(f1->suppressed);
    stack.undo();
    EXPECT_FALSE(f1->suppressed);
    EXPECT_EQ(run(CommandRecord("suppress_feature").set("feature", "Sketch1")).message,
              "No feature named 'Sketch1'.");
    EXPECT_EQ(run(CommandRecord("suppress_feature")).message,
              "suppress_feature: missing 'feature'.");
}

TEST_F(History, MovingAStepKeepsWhatItUsesBeforeIt) {
    doc.find("Extrude1")->label = "Base";
    EXPECT_EQ(
        run(CommandRecord("move_step").set("step", "Fillet1").set("before", "Extrude1")).message,
        "Fillet1 uses Base, which would come after it.");
    EXPECT_EQ(run(CommandRecord("move_step").set("step", "Sketch1").set("before", "Body1")).message,
              "Base uses Sketch1, which would come after it.");

    doc.add(thing("Plane", "Plane1"));
    CommandResult moved =
        run(CommandRecord("move_step").set("step", "Plane1").set("before", "Sketch1"));
    EXPECT_EQ(moved.message, "Moved Plane1 before Sketch1.");
    EXPECT_EQ(order().front(), "Plane1");
    EXPECT_EQ(run(CommandRecord("move_step").set("step", "Plane1")).message,
              "Moved Plane1 to the end.");
    EXPECT_EQ(order().back(), "Plane1");
    stack.undo();
    stack.undo();
    EXPECT_EQ(order().back(), "Plane1");
    EXPECT_EQ(order().front(), "Sketch1");

    // A body that starts from its own shape is the step its features follow.
    auto* box = add<GeometryObject>();
    box->id = "Body2";
    TopoDS_Vertex corner;
    BRep_Builder().MakeVertex(corner, gp_Pnt(0, 0, 0), 1e-7);
    box->baseShape = geometry::NamedShape(corner);
    add<TestFeature>("Hole1");
    box->features = {"Hole1"};
    EXPECT_EQ(run(CommandRecord("move_step").set("step", "Hole1").set("before", "Body2")).message,
              "Hole1 uses Body2, which would come after it.");
}

TEST_F(History, DeletingWhatIsUsed) {
    ASSERT_TRUE(doc.rebuildBody(*body).ok());
    std::vector<std::string> before = order();
    EXPECT_EQ(run(CommandRecord("delete_object").set("object", "Sketch1")).message,
              "Sketch1 is used by Extrude1; delete that first, or delete with its dependents.");

    CommandResult r =
        run(CommandRecord("delete_object").set("object", "Sketch1").set("with_dependents", true));
    EXPECT_EQ(r.message, "Deleted Sketch1 and what used it.");
    EXPECT_EQ(body->features, (std::vector<std::string>{"Fillet1", "Chamfer1"}));
    EXPECT_EQ(vertexCount(body->shape), 2);
    stack.undo();
    EXPECT_EQ(order(), before);
    EXPECT_EQ(body->features, (std::vector<std::string>{"Extrude1", "Fillet1", "Chamfer1"}));
    EXPECT_EQ(vertexCount(body->shape), 3);

    // A body goes with its features; redo does it again.
    EXPECT_EQ(run(CommandRecord("delete_object").set("object", "Body1")).message, "Deleted Body1.");
    EXPECT_EQ(order(), (std::vector<std::string>{"Sketch1"}));
    stack.undo();
    EXPECT_EQ(order(), before);
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_EQ(order(), (std::vector<std::string>{"Sketch1"}));
}

TEST_F(History, RenameShowHideAndUnits) {
    doc.add(thing("Body", "Body2"));
    EXPECT_EQ(
        run(CommandRecord("rename_object").set("object", "Body1").set("name", "  Gear ")).message,
        "Renamed Body1 to Gear.");
    EXPECT_EQ(
        run(CommandRecord("rename_object").set("object", "Body2").set("name", "gear")).message,
        "Renamed Body2 to gear 2 ('gear' was taken).");
    EXPECT_EQ(
        run(CommandRecord("rename_object").set("object", "gear 2").set("name", "a/b")).message,
        "Names can't contain '/' or line breaks.");
    EXPECT_EQ(run(CommandRecord("rename_object").set("object", "Gear").set("name", "")).message,
              "Body1 shows its ID again.");
    stack.undo();
    EXPECT_EQ(body->label, "Gear");

    EXPECT_EQ(
        run(CommandRecord("set_visibility").set("object", "Gear").set("visible", false)).message,
        "Hid Body1.");
    EXPECT_FALSE(body->visible);
    stack.undo();
    EXPECT_TRUE(body->visible);

    EXPECT_EQ(run(CommandRecord("set_units").set("length", "in")).message, "Units: in.");
    EXPECT_EQ(doc.lengthUnit(), units::Length::Inches);
    EXPECT_EQ(run(CommandRecord("set_units").set("length", "yd")).message,
              "set_units: 'length' must be one of mm, cm, m, in, ft.");
    stack.undo();
    EXPECT_EQ(doc.lengthUnit(), units::Length::Millimeters);
}

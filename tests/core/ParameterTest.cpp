// Parameters: name rules, values that follow them, refusals that change nothing,
// renaming through every expression, and undo that computes only what the change reached.
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/Parameters.h"
#include "tests/core/TestObjects.h"

#include <gtest/gtest.h>

using namespace cad;

namespace {

struct Parameters : ::testing::Test {
    Parameters() {
        registerParameterCommands(registry);
        extrude = static_cast<test::TestFeature*>(
            doc.add(std::make_unique<test::TestFeature>("Extrude1")));
        auto body = std::make_unique<GeometryObject>();
        body->id = "Body1";
        body->features = {"Extrude1"};
        doc.add(std::move(body));
    }
    CommandResult set(const char* name, const char* expression) {
        return stack.execute(
            CommandRecord("set_parameter").set("name", name).set("expression", expression));
    }
    void followExpression(const char* text, test::TestFeature* feature = nullptr) {
        (feature ? feature : extrude)->distanceExpression =
            units::Expression{text, units::Length::Millimeters, true, false};
    }
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const Parameter& p : doc.parameters()) out.push_back(p.name + "=" + p.expression);
        return out;
    }

    Document doc;
    CommandRegistry registry;
    CommandStack stack{doc, registry};
    test::TestFeature* extrude;
};

} // namespace

TEST_F(Parameters, NameRules) {
    for (const char* unit : {"in", "MM", "Feet"})
        EXPECT_EQ(validateParameterName(unit).error(),
                  std::string("'") + unit + "' is a unit; pick another name.");
    EXPECT_TRUE(validateParameterName("_w").ok());
    EXPECT_TRUE(validateParameterName("w2").ok());
    EXPECT_EQ(validateParameterName("2w").error(),
              "A parameter's name starts with a letter or _ (e.g. panel_width).");
    EXPECT_EQ(validateParameterName("w-2").error(),
              "A parameter's name has only letters, digits and _ (e.g. panel_width).");
    EXPECT_EQ(validateParameterName("").error(), "A parameter needs a name.");
    EXPECT_EQ(set("in", "3").message, "'in' is a unit; pick another name.");
    EXPECT_EQ(stack.execute(CommandRecord("set_parameter").set("name", "w")).message,
              "set_parameter: give its expression, e.g. \"6in\" or \"panel_width / 2\".");
    EXPECT_EQ(set("w", "  ").message, "set_parameter: the expression is empty.");
}

TEST_F(Parameters, ValuesFollowAndRefusalsChangeNothing) {
    EXPECT_EQ(set("w", "10").message, "w = 10");
    followExpression("w * 2");
    EXPECT_EQ(set("w", "12mm").message, "w = 12 mm");
    EXPECT_EQ(extrude->distance, 24);
    EXPECT_GT(extrude->applied, 0); // the body was rebuilt

    EXPECT_EQ(set("b", "1").message, "b = 1");
    EXPECT_EQ(set("a", "b + 1").message, "a = 2");
    std::vector<std::string> before = names();
    EXPECT_EQ(set("b", "a").message,
              "b: a: 'b' depends on itself (through the parameters it uses).");
    EXPECT_EQ(names(), before);

    // A value that can no longer be evaluated refuses the change, everything kept.
    followExpression("w * 2 + b");
    ASSERT_TRUE(set("w", "5").ok);
    EXPECT_EQ(extrude->distance, 11);
    EXPECT_EQ(set("w", "2in * 1in").message,
              "w: Multiplying two lengths gives an area, not a length.");
    doc.setLengthUnit(units::Length::Inches);
    EXPECT_EQ(set("margin", "0.25").message, "margin = 0.25");
    followExpression("1 / w");
    CommandResult broken = set("w", "0");
    EXPECT_EQ(broken.message, "That would break Extrude1.distance: Division by zero.");
    EXPECT_EQ(doc.findParameter("w")->expression, "5");
    EXPECT_EQ(extrude->distance, 11);
}

TEST_F(Parameters, RenameDeleteAndUndo) {
    set("w", "10");
    set("wx", "w * 2");
    followExpression("w*2 + wx");
    set("w", "20");
    ASSERT_EQ(extrude->distance, 80);

    EXPECT_EQ(stack.execute(CommandRecord("rename_parameter").set("name", "w").set("to", "width"))
                  .message,
              "Renamed w to width.");
    EXPECT_EQ(extrude->distanceExpression->text, "width*2 + wx");
    EXPECT_EQ(doc.findParameter("wx")->expression, "width * 2");
    EXPECT_EQ(stack.execute(CommandRecord("rename_parameter").set("name", "width").set("to", "wx"))
                  .message,
              "There's a parameter named 'wx' already.");
    EXPECT_EQ(stack.execute(CommandRecord("rename_parameter").set("name", "width")).message,
              "rename_parameter: give the name and the new name ('to').");

    EXPECT_EQ(stack.execute(CommandRecord("delete_parameter").set("name", "width")).message,
              "width is used by wx, Extrude1.distance; change those first.");
    extrude->distanceExpression.reset();
    EXPECT_EQ(stack.execute(CommandRecord("delete_parameter").set("name", "wx")).message,
              "Deleted wx.");
    EXPECT_EQ(stack.execute(CommandRecord("delete_parameter").set("name", "wx")).message,
              "There's no parameter 'wx'.");

    stack.undo(); // delete
    stack.undo(); // rename: the expression and the name come back exactly
    EXPECT_EQ(doc.findParameter("wx")->expression, "w * 2");
    EXPECT_TRUE(doc.findParameter("w"));
    stack.undo(); // w = 20
    EXPECT_EQ(doc.findParameter("w")->expression, "10");
    EXPECT_EQ(extrude->distance, 0); // before the expression was attached by hand
}

TEST_F(Parameters, OnlyWhatAChangeReachesIsComputedAgain) {
    // Body1: Extrude1, Hole1, Hole2; Body2: Pocket1, which no parameter reaches.
    auto feature = [&](const char* id) {
        return static_cast<test::TestFeature*>(doc.add(std::make_unique<test::TestFeature>(id)));
    };
    test::TestFeature* middle = feature("Hole1");
    test::TestFeature* last = feature("Hole2");
    test::TestFeature* pocket = feature("Pocket1");
    auto* body = doc.findAs<GeometryObject>("Body1");
    body->features = {"Extrude1", "Hole1", "Hole2"};
    auto other = std::make_unique<GeometryObject>();
    other->id = "Body2";
    other->features = {"Pocket1"};
    auto* body2 = static_cast<GeometryObject*>(doc.add(std::move(other)));
    ASSERT_TRUE(doc.rebuildBody(*body).ok() && doc.rebuildBody(*body2).ok());
    const TopoDS_Shape untouched = body2->shape.shape();
    auto computed = [&] {
        std::vector<int> counts{extrude->applied, middle->applied, last->applied, pocket->applied};
        extrude->applied = middle->applied = last->applied = pocket->applied = 0;
        return counts;
    };
    computed();

    // Changing the last feature's value computes that feature alone.
    ASSERT_TRUE(set("w", "10").ok);
    followExpression("w * 2", last);
    ASSERT_TRUE(set("w", "3").ok);
    EXPECT_EQ(last->distance, 6);
    EXPECT_EQ(computed(), (std::vector<int>{0, 0, 1, 0}));
    followExpression("12 / w", middle);
    ASSERT_TRUE(set("w", "4").ok);
    EXPECT_EQ(computed(), (std::vector<int>{0, 1, 1, 0})); // once, from the first one reached

    // Refusals put back the values they changed and compute nothing.
    const TopoDS_Shape built = body->shape.shape();
    EXPECT_EQ(set("w", "0").message, "That would break Hole1.distance: Division by zero.");
    EXPECT_FALSE(set("w", "4mmm").ok);
    EXPECT_EQ(last->distance, 8);
    EXPECT_EQ(middle->distance, 3);
    EXPECT_EQ(computed(), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_TRUE(body->shape.shape().IsSame(built));

    // A rename changes no value: neither it nor its undo computes anything.
    ASSERT_TRUE(
        stack.execute(CommandRecord("rename_parameter").set("name", "w").set("to", "width")).ok);
    EXPECT_EQ(middle->distanceExpression->text, "12 / width");
    stack.undo();
    EXPECT_EQ(middle->distanceExpression->text, "12 / w");
    EXPECT_EQ(computed(), (std::vector<int>{0, 0, 0, 0}));

    // Undo puts back exactly the values before and computes only what uses them.
    stack.undo(); // w = 4
    EXPECT_EQ(doc.findParameter("w")->expression, "3");
    EXPECT_EQ(middle->distance, 0);
    EXPECT_EQ(last->distance, 6);
    EXPECT_EQ(computed(), (std::vector<int>{0, 1, 1, 0}));
    EXPECT_EQ(test::vertexCount(body->shape), 3);
    EXPECT_TRUE(body2->shape.shape().IsSame(untouched));
}

// Labels of references and the groups a click takes: sketch chains joined end to
// end, tangent chains of body edges, and everything else alone.
#include "PresentationModel.h"

#include "geometry/References.h"
#include "ui/presentation/ReferencePicker.h"

#include <algorithm>

namespace cad::testing {

using ui::expandReference;
using ui::referenceLabel;

namespace {

class ReferenceText : public PresentationModel {};

std::vector<std::string> sorted(std::vector<std::string> v) {
    std::sort(v.begin(), v.end());
    return v;
}

} // namespace

TEST_F(ReferenceText, LabelsReadAsWords) {
    roundedOutline();
    const std::pair<const char*, const char*> table[] = {
        {"X", "X axis"},
        {"z", "Z axis"},
        {"YAxis", "Y axis"},
        {"XY", "XY plane"},
        {"xzplane", "XZ plane"},
        {"YZ", "YZ plane"},
        {"Origin", "Origin"},
        {"Sketch1/Region(Arc1+Line1+Line2)", "Arc1+Line1+Line2 region"},
        // Only a sketch has regions; anything else reads as text.
        {"Body9/Region(Line1)", "Body9/Region(Line1)"},
        {"Sketch1/Rectangle1.bottom_left", "Sketch1/Rectangle1.bottom left"},
        {"plane.center_center", "Plane.center"},
        {"Body1/Edge(Extrude1.end, Extrude1.side.Line1)",
         "Body1/Edge(Extrude1.end, Extrude1.side.Line1)"},
        {"  sketch1/Line1.start ", "Sketch1/Line1.start"},
        {"", ""},
    };
    for (const auto& [reference, label] : table)
        EXPECT_EQ(referenceLabel(document, reference).toStdString(), label) << reference;
}

TEST_F(ReferenceText, SketchLinesAndArcsTakeTheirChain) {
    const std::string sketch = roundedOutline();
    addLine(sketch, 60, 0, 70, 0);   // Line5: on its own
    addLine(sketch, 40, 15, 50, 30); // Line6: starts where Line2 ends
    ok("add_line", {{"sketch", sketch}, {"x1", 0.0}, {"y1", 5.0}, {"x2", -10.0}, {"y2", 0.0}});
    ok("set_construction", {{"sketch", sketch}, {"entity", "Line7"}, {"construction", true}});
    ok("add_circle", {{"sketch", sketch}, {"cx", 60.0}, {"cy", 0.0}, {"radius", 2.0}});

    const std::vector<std::string> outline = {"Sketch1/Arc1",  "Sketch1/Arc2",  "Sketch1/Arc3",
                                              "Sketch1/Arc4",  "Sketch1/Line1", "Sketch1/Line2",
                                              "Sketch1/Line3", "Sketch1/Line4", "Sketch1/Line6"};
    for (std::string clicked : {"Sketch1/Line1", "Sketch1/Arc3", "Sketch1/Line6"}) {
        const std::vector<std::string> group = expandReference(document, clicked);
        ASSERT_FALSE(group.empty());
        EXPECT_EQ(group.front(), clicked) << "the clicked curve leads its group";
        EXPECT_EQ(sorted(group), outline) << clicked;
    }
    // A construction curve chains only with construction curves; a circle or a
    // named point stays alone, as does a reference that does not resolve.
    for (const char* alone :
         {"Sketch1/Line5", "Sketch1/Line7", "Sketch1/Circle1", "Sketch1/Line1.start",
          "Sketch1/Line99", "Sketch1/Region(Line5)", "Sketch1", "XY", "Nothing/Line1"})
        EXPECT_EQ(expandReference(document, alone), std::vector<std::string>{alone}) << alone;
}

TEST_F(ReferenceText, BodyEdgesTakeTheirTangentChain) {
    roundedOutline();
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5.0}});
    GeometryObject* b = body("Body1");
    ASSERT_TRUE(b && !b->shape.isNull());

    const std::string top = "Body1/Edge(Extrude1.end, Extrude1.side.Line1)";
    const std::vector<std::string> group = expandReference(document, top);
    ASSERT_EQ(group.size(), 8u);
    EXPECT_EQ(group.front(), top);
    for (const std::string& reference : group) {
        EXPECT_NE(reference.find("Extrude1.end"), std::string::npos) << reference;
        EXPECT_TRUE(geometry::resolveReference(document, reference)) << reference;
    }
    // From an arc's edge the same chain comes back, led by that edge.
    const std::string arc = "Body1/Edge(Extrude1.end, Extrude1.side.Arc2)";
    const std::vector<std::string> fromArc = expandReference(document, arc);
    EXPECT_EQ(fromArc.front(), arc);
    EXPECT_EQ(sorted(fromArc), sorted(group));

    // The vertical edge between a flat side and a rounded one meets its neighbours at
    // right angles: it stays alone, and so do faces and vertices.
    const std::string vertical = "Body1/Edge(Extrude1.side.Arc1, Extrude1.side.Line1)";
    ASSERT_TRUE(b->shape.findByName(vertical.substr(6)));
    EXPECT_EQ(expandReference(document, vertical), std::vector<std::string>{vertical});
    for (const char* alone :
         {"Body1/Extrude1.end", "Body1/Edge(Nothing)", "Body1/Extrude1.side.Arc1"})
        EXPECT_EQ(expandReference(document, alone), std::vector<std::string>{alone}) << alone;
}

TEST_F(ReferenceText, BoxEdgesMeetAtCornersAndStayAlone) {
    ok("create_box", {{"width", 10.0}, {"depth", 10.0}, {"height", 10.0}});
    const std::string edge = "Box1/Edge(Box1.front, Box1.top)";
    ASSERT_TRUE(geometry::resolveReference(document, edge));
    EXPECT_EQ(expandReference(document, edge), std::vector<std::string>{edge});
}

} // namespace cad::testing

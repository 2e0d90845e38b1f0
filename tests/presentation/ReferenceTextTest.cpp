// Labels of references and the groups a click takes: sketch chains joined end to
// end, tangent chains of body edges, and everything else alone. (The full chains
// a click takes in the view are checked with the picker.)
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
        {"xzplane", "XZ plane"},
        {"Origin", "Origin"},
        {"Sketch1/Region(Arc1+Line1+Line2)", "Arc1+Line1+Line2 region"},
        // Only a sketch has regions; anything else reads as text.
        {"Body9/Region(Line1)", "Body9/Region(Line1)"},
        {"Sketch1/Rectangle1.bottom_left", "Sketch1/Rectangle1.bottom left"},
        {"plane.center_center", "Plane.center"},
        {"  sketch1/Line1.start ", "Sketch1/Line1.start"},
        {"", ""},
    };
    for (const auto& [reference, label] : table)
        EXPECT_EQ(referenceLabel(document, reference).toStdString(), label) << reference;
}

TEST_F(ReferenceText, SketchChainsFollowEndsAndKeepConstructionApart) {
    const std::string sketch = roundedOutline();
    addLine(sketch, 60, 0, 70, 0);   // Line5: on its own
    addLine(sketch, 40, 15, 50, 30); // Line6: starts where Line2 ends
    ok("add_line", {{"sketch", sketch}, {"x1", 0.0}, {"y1", 5.0}, {"x2", -10.0}, {"y2", 0.0}});
    ok("set_construction", {{"sketch", sketch}, {"entity", "Line7"}, {"construction", true}});
    ok("add_circle", {{"sketch", sketch}, {"cx", 60.0}, {"cy", 0.0}, {"radius", 2.0}});

    const std::vector<std::string> group = expandReference(document, "Sketch1/Arc3");
    ASSERT_FALSE(group.empty());
    EXPECT_EQ(group.front(), "Sketch1/Arc3") << "the clicked curve leads its group";
    EXPECT_EQ(sorted(group), (std::vector<std::string>{
                                 "Sketch1/Arc1", "Sketch1/Arc2", "Sketch1/Arc3", "Sketch1/Arc4",
                                 "Sketch1/Line1", "Sketch1/Line2", "Sketch1/Line3",
                                 "Sketch1/Line4", "Sketch1/Line6"}));
    // A construction curve chains only with construction curves; a circle or a
    // named point stays alone, as does a reference that does not resolve.
    for (const char* alone :
         {"Sketch1/Line5", "Sketch1/Line7", "Sketch1/Circle1", "Sketch1/Line1.start",
          "Sketch1/Line99", "Sketch1/Region(Line5)", "Sketch1", "XY", "Nothing/Line1"})
        EXPECT_EQ(expandReference(document, alone), std::vector<std::string>{alone}) << alone;
}

TEST_F(ReferenceText, BodyEdgesChainOnlyWhereTheyMeetTangentially) {
    roundedOutline();
    ok("extrude", {{"sketch", "Sketch1"}, {"distance", 5.0}});
    ok("create_box", {{"width", 10.0}, {"depth", 10.0}, {"height", 10.0}, {"x", 100.0}});

    // From an arc's edge the chain round the end face comes back, led by that edge.
    const std::string arc = "Body1/Edge(Extrude1.end, Extrude1.side.Arc2)";
    const std::vector<std::string> group = expandReference(document, arc);
    ASSERT_EQ(group.size(), 8u);
    EXPECT_EQ(group.front(), arc);
    for (const std::string& reference : group)
        EXPECT_TRUE(geometry::resolveReference(document, reference)) << reference;

    // Edges meeting their neighbours at right angles stay alone (the vertical edge
    // between a flat side and a rounded one, a box's edges), as do faces and names
    // that resolve to nothing.
    for (const char* alone :
         {"Body1/Edge(Extrude1.side.Arc1, Extrude1.side.Line1)", "Box1/Edge(Box1.front, Box1.top)",
          "Body1/Extrude1.end", "Body1/Edge(Nothing)"}) {
        EXPECT_EQ(expandReference(document, alone), std::vector<std::string>{alone}) << alone;
        EXPECT_EQ(static_cast<bool>(geometry::resolveReference(document, alone)),
                  std::string_view(alone).find("Nothing") == std::string_view::npos)
            << alone;
    }
}

} // namespace cad::testing

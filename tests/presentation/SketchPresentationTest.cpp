// The sketch's parts: every piece carries a reference that resolves back to the
// geometry it was drawn from, curves and construction apart, regions by name.
#include "PresentationModel.h"

#include "geometry/References.h"
#include "sketch/SketchObject.h"
#include "ui/presentation/OriginPresentation.h"
#include "ui/presentation/SketchPresentation.h"

#include <TopExp_Explorer.hxx>

#include <algorithm>
#include <map>

namespace cad::testing {

using ui::SketchPartPresentation;
using Part = SketchPartPresentation::Part;

namespace {

class SketchParts : public PresentationModel {
protected:
    std::map<Part, Handle(SketchPartPresentation)> partsOf(const std::string& id) {
        std::map<Part, Handle(SketchPartPresentation)> out;
        for (const auto& p : ui::makeSketchParts(*document.findAs<SketchObject>(id)))
            out[p->part()] = p;
        return out;
    }
    static bool has(const Handle(SketchPartPresentation) & part, const std::string& reference) {
        const auto& refs = part->references();
        return std::find(refs.begin(), refs.end(), reference) != refs.end();
    }
};

} // namespace

TEST_F(SketchParts, EveryPieceNamesWhatItWasDrawnFrom) {
    const std::string sketch = sketchWithRectangles({{0, 0, 10, 6}});
    addLine(sketch, 20, 0, 30, 0);
    addLine(sketch, 20, 5, 30, 5);
    ok("set_construction", {{"sketch", sketch}, {"entity", "Line2"}, {"construction", true}});
    ok("add_point", {{"sketch", sketch}, {"x", 3.0}, {"y", 3.0}});
    ok("add_polygon",
       {{"sketch", sketch}, {"cx", 50.0}, {"cy", 0.0}, {"radius", 4.0}, {"sides", 6}});

    auto parts = partsOf(sketch);
    ASSERT_EQ(parts.size(), 4u);
    EXPECT_EQ(parts[Part::Curves]->references(),
              (std::vector<std::string>{"Rectangle1.bottom", "Rectangle1.right", "Rectangle1.top",
                                        "Rectangle1.left", "Line1", "Polygon1.edge0",
                                        "Polygon1.edge1", "Polygon1.edge2", "Polygon1.edge3",
                                        "Polygon1.edge4", "Polygon1.edge5"}));
    EXPECT_EQ(parts[Part::Construction]->references(), std::vector<std::string>{"Line2"});
    for (const char* point : {"Rectangle1.bottom_left", "Rectangle1.center", "Line1.start",
                              "Line2.end", "Point1", "Polygon1.center", "Polygon1.corner5"})
        EXPECT_TRUE(has(parts[Part::Points], point)) << point;
    // The rectangle and the hexagon close; the lines don't.
    EXPECT_EQ(parts[Part::Regions]->references().size(), 2u);

    // Every reference resolves as the picker writes it, and the piece found by
    // the shape is the piece's own reference.
    for (auto& [part, presentation] : parts) {
        int pieces = 0;
        const TopAbs_ShapeEnum type = part == Part::Points    ? TopAbs_VERTEX
                                      : part == Part::Regions ? TopAbs_FACE
                                                              : TopAbs_EDGE;
        for (TopExp_Explorer e(presentation->Shape(), type); e.More(); e.Next(), ++pieces) {
            const std::string reference = presentation->referenceOf(e.Current());
            ASSERT_FALSE(reference.empty());
            EXPECT_TRUE(geometry::resolveReference(document, sketch + "/" + reference))
                << reference;
        }
        EXPECT_EQ(pieces, static_cast<int>(presentation->references().size()));
    }
}

TEST_F(SketchParts, RebuildFollowsTheSketch) {
    const std::string sketch = sketchWithRectangles({{0, 0, 10, 6}});
    auto parts = partsOf(sketch);
    ok("delete_sketch_entity", {{"sketch", sketch}, {"entity", "Rectangle1"}});
    addLine(sketch, 0, 0, 5, 5);
    for (auto& [part, presentation] : parts)
        presentation->rebuild(*document.findAs<SketchObject>(sketch));
    EXPECT_EQ(parts[Part::Curves]->references(), std::vector<std::string>{"Line1"});
    EXPECT_TRUE(parts[Part::Regions]->references().empty());
    EXPECT_EQ(parts[Part::Points]->references(),
              (std::vector<std::string>{"Line1.start", "Line1.end"}));
}

TEST(OriginItems, EveryItemIsAReferenceThatResolves) {
    Document document;
    std::vector<std::string> names;
    for (const ui::OriginItem& item : ui::makeOriginItems(60)) {
        names.push_back(item.name);
        EXPECT_TRUE(geometry::resolveReference(document, item.name)) << item.name;
    }
    EXPECT_EQ(names, (std::vector<std::string>{"XY", "XZ", "YZ", "X", "Y", "Z", "Origin"}));
}

} // namespace cad::testing

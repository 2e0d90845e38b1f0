// One of the four parts a sketch is drawn with (curves, construction curves, named
// points, closed regions), remembering which sketch reference each piece stands for.
#pragma once

#include <AIS_Shape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <string>
#include <vector>

namespace cad {
class SketchObject;
}

namespace cad::ui {

class SketchPartPresentation : public AIS_Shape {
public:
    enum class Part { Curves, Construction, Points, Regions };

    explicit SketchPartPresentation(Part part);

    Part part() const { return part_; }
    // Rebuilds the part's shape and its references from the sketch as it is now.
    void rebuild(const SketchObject& sketch);
    // The reference of one piece inside the sketch ("Line3", "Rectangle1.top",
    // "Line1.start", "Region(Line1+Line2+Line3)"); empty for anything else.
    std::string referenceOf(const TopoDS_Shape& piece) const;
    // Every reference of the part, in the order the pieces were made.
    const std::vector<std::string>& references() const { return references_; }
    // What plain selection picks in this part: edges of curves, vertices of points,
    // faces of regions (AIS_Shape selection modes).
    int selectionMode() const;
    // Wireframe for lines and points, shaded for regions.
    int displayMode() const;

private:
    Part part_;
    TopTools_IndexedMapOfShape pieces_;
    std::vector<std::string> references_; // by piece index - 1
};

// The four parts of a sketch, in drawing order: regions, construction, curves, points.
std::vector<Handle(SketchPartPresentation)> makeSketchParts(const SketchObject& sketch);

} // namespace cad::ui

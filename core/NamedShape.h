// A shape with persistent names for its faces, edges and vertices. Features add
// naming entries for the faces they make; the finish step (in geometry/) turns the
// entries into final, unique names and stores them here as the index.
#pragma once

#include <TopAbs_ShapeEnum.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS_Shape.hxx>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace cad::geometry {

struct NamingEntry {
    TopoDS_Shape subShape;
    std::string name; // "Extrude1.end", "Box1.top", "Extrude1.side.Line3"
    std::string tag;  // tells faces of one name apart; may be empty
};

class NamedShape {
public:
    // Final names, in the map order of TopExp::MapShapes for each kind.
    struct Index {
        TopTools_IndexedMapOfShape faces, edges, vertices;
        std::vector<std::string> faceNames, edgeNames, vertexNames;
        std::unordered_map<std::string, TopoDS_Shape> byName;
    };

    NamedShape() = default;
    explicit NamedShape(TopoDS_Shape shape) : shape_(std::move(shape)) {}

    const TopoDS_Shape& shape() const { return shape_; }
    bool isNull() const { return shape_.IsNull(); }
    // A new shape invalidates the index until the next finish.
    void setShape(TopoDS_Shape shape);

    void addName(const TopoDS_Shape& subShape, std::string name, std::string tag = {});
    const std::vector<NamingEntry>& entries() const { return entries_; }
    std::vector<NamingEntry>& entries() { return entries_; }

    void setIndex(Index index) { index_ = std::move(index); }
    const Index& index() const { return index_; }

    // (sub-shape, final name) for every face, edge or vertex, in map order.
    std::vector<std::pair<TopoDS_Shape, std::string>> names(TopAbs_ShapeEnum type) const;
    std::optional<TopoDS_Shape> findByName(std::string_view name) const;
    // The N-th face, edge or vertex in map order, counted from 1.
    std::optional<TopoDS_Shape> elementByIndex(TopAbs_ShapeEnum type, int oneBased) const;
    // The final name of a face, edge or vertex; empty when it has none.
    std::string nameOf(const TopoDS_Shape& subShape) const;

private:
    TopoDS_Shape shape_;
    std::vector<NamingEntry> entries_;
    Index index_;
};

} // namespace cad::geometry

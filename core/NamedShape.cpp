// Lookups over a named shape's index of final names.
#include "core/NamedShape.h"

namespace cad::geometry {

namespace {

struct IndexKind {
    const TopTools_IndexedMapOfShape* map;
    const std::vector<std::string>* names;
};

IndexKind kindOf(const NamedShape::Index& index, TopAbs_ShapeEnum type) {
    switch (type) {
    case TopAbs_FACE:
        return {&index.faces, &index.faceNames};
    case TopAbs_EDGE:
        return {&index.edges, &index.edgeNames};
    case TopAbs_VERTEX:
        return {&index.vertices, &index.vertexNames};
    default:
        return {nullptr, nullptr};
    }
}

} // namespace

void NamedShape::setShape(TopoDS_Shape shape) {
    shape_ = std::move(shape);
    index_ = Index{};
}

void NamedShape::addName(const TopoDS_Shape& subShape, std::string name, std::string tag) {
    entries_.push_back({subShape, std::move(name), std::move(tag)});
}

std::vector<std::pair<TopoDS_Shape, std::string>> NamedShape::names(TopAbs_ShapeEnum type) const {
    std::vector<std::pair<TopoDS_Shape, std::string>> out;
    IndexKind kind = kindOf(index_, type);
    if (!kind.map) return out;
    for (int i = 1; i <= kind.map->Extent(); ++i)
        out.emplace_back(kind.map->FindKey(i), (*kind.names)[static_cast<std::size_t>(i - 1)]);
    return out;
}

std::optional<TopoDS_Shape> NamedShape::findByName(std::string_view name) const {
    auto it = index_.byName.find(std::string(name));
    if (it == index_.byName.end()) return std::nullopt;
    return it->second;
}

std::optional<TopoDS_Shape> NamedShape::elementByIndex(TopAbs_ShapeEnum type, int oneBased) const {
    IndexKind kind = kindOf(index_, type);
    if (!kind.map || oneBased < 1 || oneBased > kind.map->Extent()) return std::nullopt;
    return kind.map->FindKey(oneBased);
}

std::string NamedShape::nameOf(const TopoDS_Shape& subShape) const {
    IndexKind kind = kindOf(index_, subShape.ShapeType());
    if (!kind.map) return {};
    int i = kind.map->FindIndex(subShape);
    return i > 0 ? (*kind.names)[static_cast<std::size_t>(i - 1)] : std::string();
}

} // namespace cad::geometry

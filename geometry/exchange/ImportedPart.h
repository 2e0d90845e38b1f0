// One solid (or surface set) read from a STEP or STL file: its name, its shape in
// the file's placement, and the colours the file gave it.
#pragma once

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>

#include <string>
#include <utility>
#include <vector>

namespace cad::exchange {

struct ImportedPart {
    std::string name;   // the part's name as UTF-8; the file's stem when the file has none
    TopoDS_Shape shape; // a solid, or shells/faces when the file has no solids
    std::string colour; // "#rrggbb" of the part's surface, empty when the file gives none
    // Faces of `shape` whose colour differs from the part's, each with its "#rrggbb".
    std::vector<std::pair<TopoDS_Face, std::string>> faceColours;
};

} // namespace cad::exchange

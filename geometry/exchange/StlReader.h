// Reading an STL mesh into one part: the triangles scaled from the file's unit to
// millimetres and sewn into a solid (or an open shell), named after the file.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "geometry/exchange/ImportedPart.h"

#include <cstddef>
#include <string>

namespace cad::exchange {

// The most triangles the import command makes into a solid.
inline constexpr std::size_t kMaxStlTriangles = 150000;

// "No file at <path>", "Couldn't read <path> as STL.", "<file> has <n> triangles; up
// to <max> can be made into a solid. Reduce the mesh first.", or the sewing's
// sentence.
Result<ImportedPart> readStl(const std::string& path, units::Length unit,
                             std::size_t maxTriangles = kMaxStlTriangles);

} // namespace cad::exchange

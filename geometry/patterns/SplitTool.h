// The face a split cuts with: a plane made big enough to cross the body, or a face,
// grown over its whole surface or a given distance past its edges.
#pragma once

#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>

namespace cad {

class Document;
namespace geometry {
struct ReferenceContext;
}

Result<TopoDS_Face> splittingFace(const Document& document, const nlohmann::json& parameters,
                                  const TopoDS_Shape& body,
                                  const geometry::ReferenceContext& context);

} // namespace cad

// Rounding and bevelling a body's edges by their persistent names, following
// tangent chains or, when asked, limited to the chosen edges alone.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <string>
#include <vector>

namespace cad::geometry {

enum class BlendKind { Fillet = 0, Chamfer = 1 };

struct EdgeBlend {
    BlendKind kind = BlendKind::Fillet;
    std::vector<std::string> edges; // final edge names in the body
    double value = 0;               // the radius, or the distance along each face
    bool tangentChain = true;
    std::string feature; // names the new faces: "<feature>.round(<edge>)"
};

// The body with the edges blended; the new faces are named after the edges and
// vertices they came from, every other face keeps its name.
Result<NamedShape> blendEdges(const NamedShape& body, const EdgeBlend& blend);

} // namespace cad::geometry

// Reference texts and what they denote: origin planes, axes and point, whole
// objects, body elements by final name or index, sketch curves, points and regions.
// Lists of references are separated by ';'.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <TopoDS_Shape.hxx>
#include <gp_Ax1.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pnt.hxx>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::geometry {

struct ResolvedReference {
    TopoDS_Shape shape; // may be null (origin planes, axes and points)
    std::optional<gp_Ax3> plane;
    std::optional<gp_Ax1> axis;
    std::optional<gp_Pnt> point;
};

// The text before the first '/', trimmed; empty for origin names.
std::string objectPart(std::string_view reference);
// The objects a list of references names, each once, in order; origin names none.
std::vector<std::string> referencedObjects(const std::vector<std::string>& references);
// The items of a ';'-separated list, trimmed, empty items dropped.
std::vector<std::string> splitReferenceList(std::string_view text);

// On whose behalf a reference is resolved: a feature of a body sees that body as it
// was just before the feature, never its own result.
struct ReferenceContext {
    std::string featureId;
    std::string bodyId;
};

Result<ResolvedReference> resolveReference(const Document& document, std::string_view text,
                                           const ReferenceContext& context = {});

// The shape a reference into this body sees: the body just before the context's
// feature when that feature belongs to it, else the body as it is now.
Result<const NamedShape*> referencedBodyShape(const Document& document, const GeometryObject& body,
                                              std::string_view text,
                                              const ReferenceContext& context);

// For the query tools: "Body1", "Body1/<final name>", "Body1.face3" / edgeN / vertexN.
Result<TopoDS_Shape> resolveElement(const Document& document, std::string_view text);

} // namespace cad::geometry

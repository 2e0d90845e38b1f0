// The combine feature's compute: each tool body's current shape, grown for a cut's
// clearance, met with the target in turn; the tools' faces keep their own names.
#include "geometry/patterns/Combine.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/ToolClearance.h"

#include <cmath>

namespace cad {

using namespace geometry;

namespace {

// The direction a cut's axial clearance runs along, when one is named.
Result<std::optional<gp_Dir>> namedAxis(const Document& document, const std::string& reference,
                                        const ReferenceContext& context) {
    if (splitReferenceList(reference).empty()) return std::optional<gp_Dir>();
    Result<ResolvedReference> resolved = resolveReference(document, reference, context);
    if (!resolved) return Error(resolved);
    if (resolved->axis) return std::optional<gp_Dir>(resolved->axis->Direction());
    if (resolved->plane) return std::optional<gp_Dir>(resolved->plane->Direction());
    return fail("'" + reference + "' doesn't give a direction.");
}

BooleanKind kindOf(const std::string& operation) {
    if (operation == "cut") return BooleanKind::Cut;
    if (operation == "intersect") return BooleanKind::Intersect;
    return BooleanKind::Join;
}

} // namespace

Result<NamedShape> computeCombine(const Document& document, const nlohmann::json& parameters,
                                  const NamedShape& body, const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    const std::vector<std::string> tools = splitReferenceList(parameterText(parameters, "tools"));
    if (tools.empty()) return fail("Pick the bodies to combine with this one.");
    if (body.isNull()) return fail("The target body has no shape to combine yet.");
    const std::string operation = parameterText(parameters, "operation");
    if (!operation.empty() && operation != "join" && operation != "cut" && operation != "intersect")
        return fail("Unknown operation '" + operation + "' (join, cut or intersect).");
    const BooleanKind kind = kindOf(operation);

    const double radial = parameterNumber(parameters, "clearance", 0);
    const bool axialGiven = parameters.contains("axial_clearance");
    const double axial = axialGiven ? parameterNumber(parameters, "axial_clearance", 0) : radial;
    if (!std::isfinite(radial) || !std::isfinite(axial) || radial < 0 || axial < 0)
        return fail("A clearance can't be negative.");
    const bool grow = kind == BooleanKind::Cut && (radial > 0 || axial > 0);
    Result<std::optional<gp_Dir>> axis =
        grow ? namedAxis(document, parameterText(parameters, "axis"), context)
             : Result<std::optional<gp_Dir>>(std::optional<gp_Dir>());
    if (!axis) return Error(axis);
    const std::string growFailure =
        axialGiven && radial > 0 ? "The geometry kernel couldn't grow the tool by the clearances."
                                 : "The geometry kernel couldn't grow the tool by the clearance.";

    const GeometryObject* self = document.bodyOfFeature(featureName);
    NamedShape result = body;
    for (const std::string& name : tools) {
        auto* other = document.findAs<GeometryObject>(name);
        if (!other) return fail("There's no body named '" + name + "'.");
        if (other == self) return fail("A body can't be combined with itself.");
        Result<const NamedShape*> shape = referencedBodyShape(document, *other, name, context);
        if (!shape) return Error(shape);
        NamedShape tool = **shape;
        if (grow) {
            const gp_Dir along = axis->value_or(ownAxis(tool.shape()).value_or(gp_Dir(0, 0, 1)));
            Result<NamedShape> grown = grownTool(tool, radial, axial, along, growFailure);
            if (!grown) return Error(grown);
            tool = std::move(grown).value();
        }
        Result<NamedShape> met = shapeBoolean(result, tool, kind);
        if (!met) return Error(met);
        result = std::move(met).value();
    }
    return result;
}

} // namespace cad

// Copies of whole bodies: each source's current shape under each copy's motion.
#include "geometry/patterns/BodyPattern.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/Naming.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/CopiedShapes.h"
#include "geometry/patterns/PatternLayout.h"

#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <cmath>

namespace cad {

using namespace geometry;

Result<NamedShape> computePatternBody(const Document& document, const nlohmann::json& parameters,
                                      const NamedShape&, const std::string& featureName) {
    const std::string setId = parameterText(parameters, "set");
    if (const DocumentObject* set = setId.empty() ? nullptr : document.find(setId))
        if (document.isRolledBack(*set)) return NamedShape();

    const ReferenceContext context = featureContext(document, featureName);
    const std::vector<std::string> sources =
        splitReferenceList(parameterText(parameters, "bodies"));
    if (sources.empty()) return fail("Pick the bodies to pattern.");
    const std::optional<PatternKind> kind = parsePatternKind(parameterText(parameters, "pattern"));
    if (!kind) return fail("A pattern is rectangular, circular or along a path.");

    std::vector<const NamedShape*> shapes;
    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    for (const std::string& source : sources) {
        auto* found = document.findAs<GeometryObject>(source);
        if (!found) return fail("'" + source + "' isn't a body.");
        Result<const NamedShape*> shape = referencedBodyShape(document, *found, source, context);
        if (!shape) return Error(shape);
        shapes.push_back(*shape);
        builder.Add(all, (*shape)->shape());
    }
    Result<std::vector<PatternCopy>> copies =
        patternCopies(document, *kind, parameters, context, centreOf(all));
    if (!copies) return Error(copies);

    const double picked = parameterNumber(parameters, "copy", 0);
    const int only = std::isfinite(picked) ? static_cast<int>(std::clamp(picked, 0.0, 1e9)) : 0;
    std::vector<NamedShape> made;
    for (const NamedShape* shape : shapes) {
        const std::vector<NamingEntry> names = faceNamesToCopy(*shape);
        for (const PatternCopy& copy : *copies) {
            if (only != 0 && copy.number != only) continue;
            const std::string prefix =
                only != 0 ? std::string()
                          : featureName + ".copy" + std::to_string(copy.number) + ".";
            Result<NamedShape> one = copyUnder(*shape, names, copy.motion, prefix);
            if (!one) return Error(one);
            made.push_back(std::move(one).value());
        }
    }
    if (made.empty()) return fail("This copy is no longer part of the pattern.");
    Result<NamedShape> tool = oneTool(std::move(made));
    if (!tool) return Error(tool);
    finishNames(*tool);
    return tool;
}

} // namespace cad

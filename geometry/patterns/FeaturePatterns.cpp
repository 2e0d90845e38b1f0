// Repeating features inside their body. Every copy's faces are named after the
// pattern, the copy and the face it copies ("Pattern1.copy3.Extrude2.side.Line1"),
// so what refers to a copy follows it when the spacing or the count changes.
#include "geometry/patterns/FeaturePatterns.h"

#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/CopiedShapes.h"
#include "geometry/patterns/FeatureTools.h"
#include "geometry/patterns/PatternLayout.h"

#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <functional>

namespace cad {

using namespace geometry;

namespace {

// The copies' motions once the point they start from is known.
using Layout = std::function<Result<std::vector<PatternCopy>>(const gp_Pnt& reference)>;
// The prefix of a copy's face names.
using CopyPrefix = std::function<std::string(const PatternCopy& copy)>;

Result<NamedShape> copiesOf(const NamedShape& source, const std::vector<PatternCopy>& copies,
                            const CopyPrefix& prefix) {
    const std::vector<NamingEntry> names = faceNamesToCopy(source);
    std::vector<NamedShape> made;
    for (const PatternCopy& copy : copies) {
        Result<NamedShape> one = copyUnder(source, names, copy.motion, prefix(copy));
        if (!one) return Error(one);
        made.push_back(std::move(one).value());
    }
    return oneTool(std::move(made));
}

Result<NamedShape> repeatInBody(const Document& document, const nlohmann::json& parameters,
                                const NamedShape& body, const Layout& layout,
                                const CopyPrefix& prefix) {
    const std::vector<std::string> features =
        splitReferenceList(parameterText(parameters, "features"));
    if (body.isNull())
        return fail(features.empty() ? "There's no body to pattern yet."
                                     : "There's no body to pattern into.");

    if (features.empty()) {
        Result<std::vector<PatternCopy>> copies = layout(centreOf(body.shape()));
        if (!copies) return Error(copies);
        Result<NamedShape> tool = copiesOf(body, *copies, prefix);
        if (!tool) return Error(tool);
        return shapeBoolean(body, *tool, BooleanKind::Join);
    }

    std::vector<FeatureTool> tools;
    TopoDS_Compound all;
    BRep_Builder builder;
    builder.MakeCompound(all);
    for (const std::string& feature : features) {
        Result<FeatureTool> tool = featureTool(document, feature, body);
        if (!tool) return Error(tool);
        builder.Add(all, tool->shape.shape());
        tools.push_back(std::move(tool).value());
    }
    Result<std::vector<PatternCopy>> copies = layout(centreOf(all));
    if (!copies) return Error(copies);

    NamedShape result = body;
    for (const FeatureTool& tool : tools) {
        Result<NamedShape> repeated = copiesOf(tool.shape, *copies, prefix);
        if (!repeated) return Error(repeated);
        Result<NamedShape> met = shapeBoolean(result, *repeated, tool.kind);
        if (!met) return Error(met);
        result = std::move(met).value();
    }
    return result;
}

Result<NamedShape> pattern(const Document& document, PatternKind kind,
                           const nlohmann::json& parameters, const NamedShape& body,
                           const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    return repeatInBody(
        document, parameters, body,
        [&](const gp_Pnt& reference) {
            return patternCopies(document, kind, parameters, context, reference);
        },
        [&](const PatternCopy& copy) {
            return featureName + ".copy" + std::to_string(copy.number) + ".";
        });
}

} // namespace

Result<NamedShape> computeRectangularPattern(const Document& document,
                                             const nlohmann::json& parameters,
                                             const NamedShape& body,
                                             const std::string& featureName) {
    return pattern(document, PatternKind::Rectangular, parameters, body, featureName);
}

Result<NamedShape> computeCircularPattern(const Document& document,
                                          const nlohmann::json& parameters, const NamedShape& body,
                                          const std::string& featureName) {
    return pattern(document, PatternKind::Circular, parameters, body, featureName);
}

Result<NamedShape> computePathPattern(const Document& document, const nlohmann::json& parameters,
                                      const NamedShape& body, const std::string& featureName) {
    return pattern(document, PatternKind::Path, parameters, body, featureName);
}

Result<NamedShape> computeMirror(const Document& document, const nlohmann::json& parameters,
                                 const NamedShape& body, const std::string& featureName) {
    const ReferenceContext context = featureContext(document, featureName);
    return repeatInBody(
        document, parameters, body,
        [&](const gp_Pnt&) -> Result<std::vector<PatternCopy>> {
            Result<gp_Trsf> mirror =
                mirrorMotion(document, parameterText(parameters, "plane"), context);
            if (!mirror) return Error(mirror);
            return std::vector<PatternCopy>{{2, *mirror}};
        },
        [&](const PatternCopy&) { return featureName + "."; });
}

} // namespace cad

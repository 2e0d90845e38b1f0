// The sheet flange: a whole sketch with closed regions makes a plate the thickness
// (named as an extrude), one without makes a bent part of its lines; regions and
// faces picked one by one make plates. The rules are checked before anything.
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/ExtrudeProfile.h"
#include "geometry/SketchRegions.h"
#include "geometry/materials/BodyMaterial.h"
#include "geometry/param/FeatureReferences.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/metal/BentProfile.h"
#include "geometry/sheet/metal/SheetMetalFeatures.h"
#include "geometry/sheet/metal/SheetRules.h"
#include "geometry/sheet/metal/SheetThickness.h"
#include "sketch/SketchObject.h"

#include <Standard_Failure.hxx>

#include <variant>

namespace cad::sheet {

using geometry::NamedShape;

namespace {

double materialK(const Document& document, const std::string& featureName) {
    const geometry::ReferenceContext context = featureContext(document, featureName);
    const DocumentObject* body = document.find(context.bodyId);
    return body ? kFactorOf(document, *body) : 0.44;
}

// The thickness along `normal` (flip: against it).
Result<NamedShape> plate(const geometry::Profile& profile, const gp_Dir& normal,
                         const nlohmann::json& parameters, const SheetRules& rules,
                         const std::string& f) {
    const double side = parameterFlag(parameters, "flip", false) ? -1 : 1;
    return geometry::extrudeProfile(profile, gp_Vec(normal) * (side * rules.thickness), f);
}

Result<NamedShape> bentPart(const SketchObject& sketch, const nlohmann::json& parameters,
                            const SheetRules& rules, const std::string& f) {
    if (!parameters.contains("width"))
        return fail("An open profile needs the flange's width (along the sketch's normal).");
    const double width = parameterNumber(parameters, "width", 0);
    if (!(width > 0)) return fail("The flange needs a width (along the sketch's normal).");

    BentProfile profile;
    profile.plane = geometry::sketchPlane(sketch);
    for (const SketchEntity& entity : sketch.entities) {
        if (entity.construction || entity.kind() == EntityKind::Point) continue;
        const auto* line = std::get_if<SketchLine>(&entity.geometry);
        if (!line)
            return fail(entity.id +
                        " isn't a straight line: draw the profile with lines; its corners become "
                        "the bends.");
        profile.lines.push_back({entity.id, gp_Pnt2d(line->start.x, line->start.y),
                                 gp_Pnt2d(line->end.x, line->end.y)});
    }
    profile.thickness = rules.thickness;
    profile.bendRadius = rules.bendRadius;
    const bool symmetric = parameterFlag(parameters, "symmetric", false);
    profile.side = symmetric                                      ? ThicknessSide::Centre
                   : parameterText(parameters, "side") == "right" ? ThicknessSide::Right
                                                                  : ThicknessSide::Left;
    if (symmetric) {
        profile.widthFrom = -width / 2;
        profile.widthTo = width / 2;
    } else if (parameterFlag(parameters, "flip", false)) {
        profile.widthFrom = -width;
    } else {
        profile.widthTo = width;
    }
    return makeBentProfile(profile, f);
}

} // namespace

Result<NamedShape> computeSheetFlange(const Document& document, const nlohmann::json& parameters,
                                      const NamedShape&, const std::string& featureName) {
    const std::string references = parameterText(parameters, "sketch");
    const std::vector<std::string> items = geometry::splitReferenceList(references);
    if (items.empty())
        return fail("Pick the flange's sketch: a closed shape makes a flat plate, an open profile "
                    "of lines a bent part.");
    Result<SheetRules> rules = readSheetRules(parameters, materialK(document, featureName));
    if (!rules) return Error(rules);

    try {
        const bool whole = items.size() == 1 && items.front().find('/') == std::string::npos;
        const auto* sketch =
            whole ? dynamic_cast<const SketchObject*>(document.findByName(items.front())) : nullptr;
        if (sketch) {
            const std::vector<geometry::NamedEdge> curves = geometry::sketchEdges(*sketch);
            if (curves.empty())
                return fail(sketch->displayName() + " has nothing to make a flange from.");
            const gp_Ax3 plane = geometry::sketchPlane(*sketch);
            if (Result<geometry::Profile> regions =
                    geometry::buildSketchRegions(plane, curves, false))
                return plate(*regions, plane.Direction(), parameters, *rules, featureName);
            return bentPart(*sketch, parameters, *rules, featureName);
        }

        // Regions and faces picked one by one: a plate off the first one's plane.
        const geometry::ReferenceContext context = featureContext(document, featureName);
        Result<geometry::Profile> profile = geometry::featureProfile(document, references, context);
        if (!profile) return Error(profile);
        const auto* first = dynamic_cast<const SketchObject*>(
            document.findByName(geometry::objectPart(items.front())));
        const std::optional<gp_Dir> normal = first ? geometry::sketchPlane(*first).Direction()
                                                   : flatFaceNormal(profile->faces.front());
        if (!normal) return fail("A face to extrude must be flat.");
        return plate(*profile, *normal, parameters, *rules, featureName);
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not make the flange.");
    }
}

Result<NamedShape> computeSheetRules(const Document& document, const nlohmann::json& parameters,
                                     const NamedShape& body, const std::string& featureName) {
    if (body.isNull()) return fail("Pick the body to make sheet metal.");
    nlohmann::json rules = parameters;
    if (parameterNumber(parameters, "thickness", 0) == 0) {
        Result<double> measured = measureSheetThickness(body.shape());
        if (!measured) return Error(measured);
        rules["thickness"] = *measured;
    }
    Result<SheetRules> read = readSheetRules(rules, materialK(document, featureName));
    if (!read) return Error(read);
    return body;
}

} // namespace cad::sheet

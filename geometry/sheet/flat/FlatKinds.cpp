// The table entries of Unfold and Fold: names, descriptions, argument tables and
// compute functions. Both change the body they belong to and name no other object.
#include "geometry/sheet/flat/FlatKinds.h"

#include "geometry/References.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/sheet/flat/FoldFeature.h"
#include "geometry/sheet/flat/UnfoldFeature.h"

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

// The fixed face is one of the body's own: "Body1/Flange1.start" names the body the
// Unfold goes on, which is no other object it uses.
std::vector<std::string> fixedFaceBody(const nlohmann::json& parameters) {
    const std::string face = parameterText(parameters, "face");
    const std::string body = geometry::objectPart(face);
    if (face.find('/') == std::string::npos || body.empty()) return {};
    return {body};
}

std::vector<std::string> noOtherObjects(const nlohmann::json&) { return {}; }

ParamFeatureType unfoldType() {
    ParamFeatureType type;
    type.typeId = "Unfold";
    type.nameBase = "Unfold";
    type.command = "unfold";
    type.label = "Unfold";
    type.formId = "flat-pattern";
    type.description =
        "Unfold a sheet metal body in its history (its flat pattern): from here on it's flat, the "
        "fixed face where it was and the rest laid in its plane. Features after it work on the "
        "flat part (holes, cuts, chamfers on its corners) until a fold.";
    type.arguments = {{"Fixed face",
                       "The flat face that stays put (default: the largest).",
                       "face",
                       Kind::References,
                       false,
                       {},
                       {},
                       "",
                       FeatureArgument::Faces}};
    type.compute = flat::computeUnfold;
    type.dependencies = fixedFaceBody;
    return type;
}

ParamFeatureType foldType() {
    ParamFeatureType type;
    type.typeId = "Fold";
    type.nameBase = "Fold";
    type.command = "fold";
    type.label = "Fold";
    type.formId = "fold";
    type.description =
        "Fold a body unfolded by the Unfold before it back up, carrying what was done to it flat "
        "onto the bent part. Open: left flat to work on (features made then go just before it).";
    type.arguments = {
        {"Open", "Leave it flat to work on.", "open", Kind::Bool, false, {}, false, ""}};
    type.compute = flat::computeFold;
    type.dependencies = noOtherObjects;
    // Left open, the part stays flat and what is made on it goes before the fold.
    type.keepsLast = [](const nlohmann::json& parameters) {
        return parameterFlag(parameters, "open", false);
    };
    return type;
}

} // namespace

void addFlatKinds() {
    ParamFeatureTypes& types = paramFeatureTypes();
    if (types.find("Unfold")) return;
    types.add(unfoldType());
    types.add(foldType());
}

} // namespace cad

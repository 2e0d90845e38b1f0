// edit_feature: the parse errors in their documented order, then the checks of
// the feature kind, then the change and the body's rebuild. Undo puts the old
// values back and rebuilds again.
#include "geometry/EditFeatureCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "geometry/AppendFeatureCommand.h"
#include "geometry/CommandSupport.h"
#include "geometry/DressUpFeatures.h"

#include <cmath>

namespace cad {

namespace {

// The flag a dress-up feature carries: a fillet's or chamfer's tangent chain, a
// shell's outward direction.
bool* flagOf(DressUpFeature& feature) {
    if (auto* fillet = dynamic_cast<FilletFeature*>(&feature)) return &fillet->tangentChain;
    if (auto* chamfer = dynamic_cast<ChamferFeature*>(&feature)) return &chamfer->tangentChain;
    if (auto* shell = dynamic_cast<ShellFeature*>(&feature)) return &shell->outward;
    return nullptr;
}

} // namespace

std::vector<ArgSpec> EditFeatureCommand::arguments() {
    using T = ArgType;
    return {
        {"feature", T::String, true, "e.g. \"Extrude1\" or \"Fillet1\".", {}, "feature"},
        {"distance", T::Length, false, "Extrudes and chamfers.", {}, ""},
        {"operation", T::String, false, "Extrudes.", {"new_body", "join", "cut"}, ""},
        {"radius", T::Length, false, "Fillets.", {}, ""},
        {"thickness", T::Length, false, "Shells; extrudes' thin wall (0: solid).", {}, ""},
        {"direction", T::String, false, "Shells.", {"inside", "outside"}, ""},
        {"thin_side",
         T::String,
         false,
         "Extrudes' thin wall.",
         {"inside", "outside", "center"},
         ""},
        {"extent",
         T::String,
         false,
         "Extrudes: one side, two sides (distance and distance2) or symmetric (distance in all).",
         {"one_side", "two_sides", "symmetric"},
         ""},
        {"distance2",
         T::Length,
         false,
         "Extrudes going two sides: the distance the other way.",
         {},
         ""},
        {"tangent_chain",
         T::Boolean,
         false,
         "Fillets and chamfers: also the edges continuing them smoothly (false: only the listed "
         "edges).",
         {},
         ""},
    };
}

Result<std::unique_ptr<Command>> EditFeatureCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<EditFeatureCommand> command(new EditFeatureCommand(record));
    EditFeatureCommand& c = *command;

    Result<std::string> feature = reader.string("feature");
    if (!feature) return Error(feature);
    c.featureName_ = *feature;

    auto operation = word(record, "operation", {"new_body", "join", "cut"},
                          "'operation' must be \"new_body\", \"join\" or \"cut\".");
    if (!operation) return Error(operation);
    c.operation_ = *operation;
    auto direction = word(record, "direction", {"inside", "outside"},
                          "'direction' must be \"inside\" or \"outside\".");
    if (!direction) return Error(direction);
    c.direction_ = *direction;
    auto side = word(record, "thin_side", {"inside", "outside", "center"},
                     "'thin_side' must be \"inside\", \"outside\" or \"center\".");
    if (!side) return Error(side);
    c.thinSide_ = *side;
    auto extent = word(record, "extent", {"one_side", "two_sides", "symmetric"},
                       "'extent' must be \"one_side\", \"two_sides\" or \"symmetric\".");
    if (!extent) return Error(extent);
    c.extent_ = *extent;

    for (auto [arg, out] :
         {std::pair{"distance", &c.distance_}, std::pair{"radius", &c.radius_},
          std::pair{"thickness", &c.thickness_}, std::pair{"distance2", &c.distance2_}}) {
        if (!reader.has(arg)) continue;
        Result<double> value = reader.length(arg);
        if (!value) return Error(value);
        *out = *value;
    }
    if (reader.has("tangent_chain")) {
        Result<bool> chain = reader.boolean("tangent_chain");
        if (!chain) return Error(chain);
        c.tangentChain_ = *chain;
    }
    if (!c.distance_ && !c.radius_ && !c.thickness_ && !c.distance2_ && !c.operation_ &&
        !c.direction_ && !c.thinSide_ && !c.extent_ && !c.tangentChain_)
        return fail("edit_feature: nothing to change.");
    return std::unique_ptr<Command>(std::move(command));
}

EditFeatureCommand::ExtrudeValues EditFeatureCommand::valuesOf(const ExtrudeFeature& f) {
    return {f.distance, f.thickness, f.distance2, f.operation, f.thinSide, f.extent, f.expressions};
}

void EditFeatureCommand::restore(ExtrudeFeature& f, const ExtrudeValues& v) {
    f.distance = v.distance;
    f.thickness = v.thickness;
    f.distance2 = v.distance2;
    f.operation = v.operation;
    f.thinSide = v.thinSide;
    f.extent = v.extent;
    f.expressions = v.expressions;
}

EditFeatureCommand::DressUpValues EditFeatureCommand::valuesOf(DressUpFeature& f) {
    const bool* flag = flagOf(f);
    return {f.value(), f.expressions, flag && *flag};
}

void EditFeatureCommand::restore(DressUpFeature& f, const DressUpValues& v) {
    f.setValue(v.value);
    f.expressions = v.expressions;
    if (bool* flag = flagOf(f)) *flag = v.flag;
}

CommandResult EditFeatureCommand::execute(Document& document) {
    DocumentObject* found = document.findMatching(featureName_, [](const DocumentObject& o) {
        return dynamic_cast<const ExtrudeFeature*>(&o) || dynamic_cast<const DressUpFeature*>(&o);
    });
    if (!found)
        return CommandResult::failure("No extrude, fillet or chamfer named '" + featureName_ +
                                      "' exists.");
    auto* extrude = dynamic_cast<ExtrudeFeature*>(found);
    if (!extrude && (extent_ || distance2_))
        return CommandResult::failure("Only an extrude goes one side, two sides or symmetric.");
    const bool blend = dynamic_cast<FilletFeature*>(found) || dynamic_cast<ChamferFeature*>(found);
    if (tangentChain_ && !blend)
        return CommandResult::failure("Only fillets and chamfers follow tangent chains.");
    if (extrude) return editExtrude(document, *extrude);
    return editDressUp(document, static_cast<DressUpFeature&>(*found));
}

CommandResult EditFeatureCommand::editDressUp(Document& document, DressUpFeature& feature) {
    // The one value this kind takes, checked to be above zero; anything else is refused.
    std::optional<double> value;
    const char* kind = "fillet";
    if (dynamic_cast<ShellFeature*>(&feature)) {
        if (distance_ || radius_ || operation_ || thinSide_)
            return CommandResult::failure("A shell has a thickness and a direction.");
        value = thickness_;
        kind = "shell";
    } else if (dynamic_cast<ChamferFeature*>(&feature)) {
        if (radius_ || operation_ || thickness_ || direction_ || thinSide_)
            return CommandResult::failure("A chamfer has a distance, not a radius or operation.");
        value = distance_;
        kind = "chamfer";
    } else {
        if (distance_ || operation_ || thickness_ || direction_ || thinSide_)
            return CommandResult::failure("A fillet has a radius, not a distance or operation.");
        value = radius_;
    }
    const std::string key(feature.valueKey());
    if (value && *value <= 1e-7)
        return CommandResult::failure(std::string("The ") + kind + " " + key +
                                      " must be greater than zero.");
    if (!document.bodyOfFeature(feature.id))
        return CommandResult::failure(feature.id + " doesn't belong to a body.");

    featureSerial_ = feature.serial;
    dressUpBefore_ = valuesOf(feature);
    if (value) {
        feature.setValue(*value);
        if (auto e = boundExpression(record_.find(key), document))
            feature.expressions[key] = *e;
        else
            feature.expressions.erase(key);
    }
    if (bool* flag = flagOf(feature)) {
        if (tangentChain_) *flag = *tangentChain_;
        if (direction_) *flag = *direction_ == "outside";
    }

    return CommandResult::success(
        withFailure("Edited " + feature.id + ".", rebuildAfterEdit(document, feature)));
}

CommandResult EditFeatureCommand::editExtrude(Document& document, ExtrudeFeature& feature) {
    if (radius_)
        return CommandResult::failure(
            "An extrude has distances, a direction, an operation and a thin wall's thickness and "
            "side, not a radius.");
    if (distance_ && std::abs(*distance_) <= 1e-7)
        return CommandResult::failure("The extrusion distance must not be zero.");
    if (operation_) {
        const bool wasNew = feature.operation == ExtrudeOperation::NewBody;
        const bool becomesNew = *operation_ == "new_body";
        if (wasNew != becomesNew)
            return CommandResult::failure(
                "A new-body extrude can't become a join or cut (or the reverse) yet; only join "
                "and cut can be swapped.");
    }
    if (thickness_ && *thickness_ < 0)
        return CommandResult::failure("A thin wall's thickness can't be negative (0: solid).");
    const std::string extent = extent_ ? *extent_ : feature.extent;
    const double distance2 = distance2_ ? *distance2_ : feature.distance2;
    if (extent == "two_sides" && (extent_ || distance2_) && !(std::abs(distance2) > 1e-7))
        return CommandResult::failure("Two sides needs a distance the other way (distance2).");
    if (!document.bodyOfFeature(feature.id))
        return CommandResult::failure(feature.id + " doesn't belong to a body.");

    featureSerial_ = feature.serial;
    before_ = valuesOf(feature);
    struct Length {
        const char* key;
        const std::optional<double>& value;
        double& field;
    };
    for (Length l : {Length{"distance", distance_, feature.distance},
                     Length{"thickness", thickness_, feature.thickness},
                     Length{"distance2", distance2_, feature.distance2}}) {
        if (!l.value) continue;
        l.field = *l.value;
        if (auto e = boundExpression(record_.find(l.key), document))
            feature.expressions[l.key] = *e;
        else
            feature.expressions.erase(l.key);
    }
    if (operation_) feature.operation = *parseExtrudeOperation(*operation_);
    if (thinSide_) feature.thinSide = *thinSide_;
    if (extent_) feature.extent = *extent_;

    return CommandResult::success(
        withFailure("Edited " + feature.id + ".", rebuildAfterEdit(document, feature)));
}

void EditFeatureCommand::undo(Document& document) {
    DocumentObject* object = document.findBySerial(featureSerial_);
    if (auto* extrude = dynamic_cast<ExtrudeFeature*>(object); extrude && !dressUpBefore_)
        restore(*extrude, before_);
    else if (auto* dressUp = dynamic_cast<DressUpFeature*>(object); dressUp && dressUpBefore_)
        restore(*dressUp, *dressUpBefore_);
    else
        return;
    (void)rebuildAfterEdit(document, *static_cast<FeatureObject*>(object));
}

} // namespace cad

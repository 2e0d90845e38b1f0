// Editing a parametric feature: the keys given replace the stored ones (references
// by ID, expressions kept or dropped), and the body rebuilds. A change that makes
// the feature itself fail is taken back and fails with the feature's sentence.
#include "geometry/param/EditParamFeatureCommand.h"

#include "core/Document.h"
#include "core/HistorySupport.h"
#include "geometry/AppendFeatureCommand.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"

namespace cad {

namespace {

ParamFeature* findFeature(const Document& document, const std::string& name,
                          const std::string& typeId) {
    return static_cast<ParamFeature*>(
        document.findMatching(name, [&typeId](const DocumentObject& o) {
            auto* feature = dynamic_cast<const ParamFeature*>(&o);
            return feature && feature->typeId == typeId;
        }));
}

} // namespace

Result<std::unique_ptr<Command>> EditParamFeatureCommand::create(const std::string& typeId,
                                                                 const CommandRecord& record) {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    if (!type) return fail("Unknown feature type");
    const FeatureArguments table = editArguments(*type);
    std::vector<std::string> accepted;
    for (const FeatureArgument& argument : table) accepted.push_back(argument.key);
    Result<nlohmann::json> values = readFeatureValues(record, table, accepted, true);
    if (!values) return Error(values);

    std::unique_ptr<EditParamFeatureCommand> command(new EditParamFeatureCommand(typeId, record));
    command->values_ = std::move(values).value();
    command->featureName_ = command->values_["feature"].get<std::string>();
    command->values_.erase("feature");
    if (command->values_.empty()) return fail(record.name + ": nothing to change.");
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult EditParamFeatureCommand::execute(Document& document) {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId_);
    if (!type) return CommandResult::failure("Unknown feature type");
    ParamFeature* feature = findFeature(document, featureName_, typeId_);
    if (!feature)
        return CommandResult::failure("No " + type->label + " feature named '" + featureName_ +
                                      "'.");
    if (!document.bodyOfFeature(feature->id))
        return CommandResult::failure(feature->id + " doesn't belong to a body.");

    featureSerial_ = feature->serial;
    before_ = feature->parameters;
    for (const FeatureArgument& argument : type->arguments) {
        auto value = values_.find(argument.key);
        if (value == values_.end()) continue;
        if (argument.kind == FeatureArgument::Kind::References && value->is_string())
            feature->parameters[argument.key] = referencesById(document, value->get<std::string>());
        else
            feature->parameters[argument.key] = *value;
        if (auto e = argumentExpression(argument, record_.find(argument.key), document))
            units::setExpression(feature->parameters, argument.key, *e);
        else
            units::clearExpression(feature->parameters, argument.key);
    }

    const std::string failure = rebuildAfterEdit(document, *feature);
    const std::string own = feature->id + ": ";
    if (failure.rfind(own, 0) == 0) {
        feature->parameters = before_;
        (void)rebuildAfterEdit(document, *feature);
        return CommandResult::failure(failure.substr(own.size()));
    }
    return CommandResult::success(withFailure("Changed " + feature->id + ".", failure));
}

void EditParamFeatureCommand::undo(Document& document) {
    auto* feature = dynamic_cast<ParamFeature*>(document.findBySerial(featureSerial_));
    if (!feature) return;
    feature->parameters = before_;
    (void)rebuildAfterEdit(document, *feature);
}

} // namespace cad

// Creating a parametric feature: the record read by the kind's table, the names and
// the body checked, the feature added and its body rebuilt. A feature that fails on
// its first compute fails the command and leaves the document as it was.
#include "geometry/param/FeatureCommand.h"

#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "geometry/CommandSupport.h"
#include "geometry/References.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "sketch/SketchObject.h"

#include <algorithm>

namespace cad {

namespace {

constexpr const char* kNoBody = "Give the target body (it isn't clear which body this changes).";

// The parameters as the feature keeps them: references by ID, the table's defaults
// for what was not given, and the expressions numbers were typed as.
nlohmann::json storedParameters(const ParamFeatureType& type, const nlohmann::json& given,
                                const CommandRecord& record, const Document& document) {
    nlohmann::json stored = nlohmann::json::object();
    for (const FeatureArgument& argument : type.arguments) {
        auto value = given.find(argument.key);
        if (value == given.end()) {
            if (!argument.fallback.is_null()) stored[argument.key] = argument.fallback;
            continue;
        }
        if (argument.kind == FeatureArgument::Kind::References && value->is_string())
            stored[argument.key] = referencesById(document, value->get<std::string>());
        else
            stored[argument.key] = *value;
        if (auto e = argumentExpression(argument, record.find(argument.key), document))
            units::setExpression(stored, argument.key, *e);
    }
    return stored;
}

std::string takeText(nlohmann::json& values, const std::string& key) {
    auto it = values.find(key);
    if (it == values.end()) return {};
    std::string text = it->is_string() ? it->get<std::string>() : std::string();
    values.erase(it);
    return text;
}

} // namespace

GeometryObject* bodyOfUsedObjects(const Document& document,
                                  const std::vector<std::string>& objects) {
    for (const std::string& name : objects) {
        const DocumentObject* object = document.findByName(name);
        if (auto* sketch = dynamic_cast<const SketchObject*>(object)) {
            const std::string support = geometry::objectPart(sketch->support);
            if (auto* body = support.empty() ? nullptr : document.findAs<GeometryObject>(support))
                return body;
        } else if (auto* body = dynamic_cast<const GeometryObject*>(object)) {
            return document.findAs<GeometryObject>(body->id);
        } else if (auto* feature = dynamic_cast<const FeatureObject*>(object)) {
            if (GeometryObject* owner = document.bodyOfFeature(feature->id)) return owner;
        }
    }
    return nullptr;
}

Result<std::unique_ptr<Command>> FeatureCommand::create(const std::string& typeId,
                                                        const CommandRecord& record) {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    if (!type) return fail("Unknown feature type");
    const FeatureArguments table = commandArguments(*type);
    std::vector<std::string> accepted;
    for (const FeatureArgument& argument : table) accepted.push_back(argument.key);
    Result<nlohmann::json> values = readFeatureValues(record, table, accepted, true);
    if (!values) return Error(values);

    std::unique_ptr<FeatureCommand> command(new FeatureCommand(typeId, record));
    FeatureCommand& c = *command;
    c.values_ = std::move(values).value();
    c.featureName_ = takeText(c.values_, "name");
    if (type->makesNewSolid) {
        if (c.values_.contains("operation")) c.operation_ = takeText(c.values_, "operation");
        c.targetName_ = takeText(c.values_, "target");
        c.bodyName_ = takeText(c.values_, "body");
    } else {
        // The body may be one of the kind's own keys ("target" of combine): then it stays.
        auto own = std::find_if(type->arguments.begin(), type->arguments.end(),
                                [&](const FeatureArgument& a) { return a.key == type->bodyKey; });
        if (own == type->arguments.end())
            c.bodyName_ = takeText(c.values_, type->bodyKey);
        else if (auto it = c.values_.find(type->bodyKey); it != c.values_.end() && it->is_string())
            c.bodyName_ = it->get<std::string>();
    }
    return std::unique_ptr<Command>(std::move(command));
}

Result<GeometryObject*> FeatureCommand::bodyFor(Document& document, const ParamFeatureType& type,
                                                const nlohmann::json& parameters,
                                                const std::string& given) const {
    if (!given.empty()) {
        auto* body = document.findAs<GeometryObject>(given);
        if (!body) return fail("No body named '" + given + "'.");
        return body;
    }
    const std::vector<std::string> used =
        type.dependencies ? type.dependencies(parameters) : referencedObjects(type, parameters);
    if (GeometryObject* body = bodyOfUsedObjects(document, used)) return body;
    return fail(type.noBody.empty() ? kNoBody : type.noBody);
}

std::string FeatureCommand::done(const std::string& feature, const std::string& body) const {
    return newBody_ ? "Created " + body + " with " + feature + "."
                    : "Added " + feature + " to " + body + ".";
}

CommandResult FeatureCommand::execute(Document& document) {
    if (undone_.empty()) return firstRun(document);
    // Redo: the same objects with the same IDs, where they were.
    insert(document);
    auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_));
    DocumentObject* feature = document.findBySerial(featureSerial_);
    if (!body || !feature) return CommandResult::failure("The feature can't be made again.");
    Result<void> rebuilt = document.rebuildBody(*body);
    document.notifyChanged(*body);
    return CommandResult::success(
        withFailure(done(feature->id, body->id), rebuilt ? std::string() : rebuilt.error()));
}

CommandResult FeatureCommand::firstRun(Document& document) {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId_);
    if (!type) return CommandResult::failure("Unknown feature type");
    if (!featureName_.empty() && nameTaken(document, featureName_))
        return CommandResult::failure("An object named '" + featureName_ + "' already exists.");

    auto feature = std::make_unique<ParamFeature>();
    feature->typeId = type->typeId;
    feature->parameters = storedParameters(*type, values_, record_, document);
    feature->operation = type->makesNewSolid ? operation_ : std::string();

    newBody_ = type->makesNewSolid && operation_ == "new_body";
    GeometryObject* body = nullptr;
    if (newBody_) {
        if (!bodyName_.empty() && nameTaken(document, bodyName_))
            return CommandResult::failure("An object named '" + bodyName_ + "' already exists.");
    } else {
        Result<GeometryObject*> found = bodyFor(document, *type, feature->parameters,
                                                type->makesNewSolid ? targetName_ : bodyName_);
        if (!found) return CommandResult::failure(found.error());
        body = *found;
        if (type->makesNewSolid) feature->target = body->id;
    }
    if (badObjectName(featureName_) || (newBody_ && badObjectName(bodyName_)))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    const std::map<std::string, int> counters = document.idCounters();
    feature->id = featureName_.empty() ? document.nextId(type->nameBase) : featureName_;
    if (newBody_) {
        auto made = std::make_unique<GeometryObject>();
        made->id = bodyName_.empty() ? document.nextId("Body") : bodyName_;
        body = static_cast<GeometryObject*>(document.add(std::move(made)));
    }
    bodySerial_ = body->serial;
    addFeatureTo(document, *body, feature->id);
    DocumentObject* added = document.add(std::move(feature));
    featureSerial_ = added->serial;

    Result<void> rebuilt = document.rebuildBody(*body);
    if (!rebuilt && rebuilt.error().rfind(added->id + ": ", 0) == 0) {
        const std::string error = static_cast<FeatureObject*>(added)->error;
        // The body kept the shape it had before the feature; only the lists change back.
        remove(document);
        undone_.clear();
        document.setIdCounters(counters);
        return CommandResult::failure(error);
    }
    document.notifyChanged(*body);
    return CommandResult::success(
        withFailure(done(added->id, body->id), rebuilt ? std::string() : rebuilt.error()));
}

void FeatureCommand::remove(Document& document) {
    auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_));
    DocumentObject* feature = document.findBySerial(featureSerial_);
    if (body && feature) std::erase(body->features, feature->id);
    undone_.clear();
    undone_.push_back(document.take(featureSerial_));
    if (newBody_) undone_.push_back(document.take(bodySerial_));
}

void FeatureCommand::insert(Document& document) {
    // The feature was taken first, then the body: put back in the reverse order.
    for (auto it = undone_.rbegin(); it != undone_.rend(); ++it)
        if (it->object) document.add(std::move(it->object), it->index);
    undone_.clear();
    auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_));
    DocumentObject* feature = document.findBySerial(featureSerial_);
    if (body && feature) addFeatureTo(document, *body, feature->id);
}

void FeatureCommand::undo(Document& document) {
    remove(document);
    if (newBody_) return;
    if (auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_))) {
        (void)document.rebuildBody(*body);
        document.notifyChanged(*body);
    }
}

} // namespace cad

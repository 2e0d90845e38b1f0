// Appending a feature to a body: the first run adds and rebuilds (or backs out and
// fails), undo takes the feature out, redo puts the same object back where it was.
#include "geometry/AppendFeatureCommand.h"

#include "core/GeometryObject.h"
#include "core/HistorySupport.h"

#include <algorithm>
#include <map>

namespace cad {

CommandResult AppendFeatureCommand::execute(Document& document) {
    if (!undone_) return firstRun(document);
    auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_));
    if (!body || !undone_->object)
        return CommandResult::failure("The feature can't be made again.");
    auto* feature =
        static_cast<FeatureObject*>(document.add(std::move(undone_->object), undone_->index));
    undone_.reset();
    addFeatureTo(document, *body, feature->id);
    Result<void> rebuilt = document.rebuildBody(*body);
    document.notifyChanged(*body);
    return CommandResult::success(
        withFailure(done(document, *feature, *body), rebuilt ? std::string() : rebuilt.error()));
}

CommandResult AppendFeatureCommand::append(Document& document, GeometryObject& body,
                                           std::unique_ptr<FeatureObject> feature) {
    const std::map<std::string, int> counters = document.idCounters();
    addFeatureTo(document, body, feature->id);
    auto* added = static_cast<FeatureObject*>(document.add(std::move(feature)));
    featureSerial_ = added->serial;
    bodySerial_ = body.serial;

    Result<void> rebuilt = document.rebuildBody(body);
    if (!rebuilt && rebuilt.error().rfind(added->id + ": ", 0) == 0) {
        std::string error = added->error;
        // The body kept the shape it had before the feature; only the lists change back.
        takeOut(document);
        undone_.reset();
        document.setIdCounters(counters);
        return CommandResult::failure(error);
    }
    document.notifyChanged(body);
    return CommandResult::success(
        withFailure(done(document, *added, body), rebuilt ? std::string() : rebuilt.error()));
}

void AppendFeatureCommand::takeOut(Document& document) {
    auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_));
    DocumentObject* feature = document.findBySerial(featureSerial_);
    if (!body || !feature) return;
    std::erase(body->features, feature->id);
    undone_ = document.take(featureSerial_);
}

void AppendFeatureCommand::undo(Document& document) {
    takeOut(document);
    if (auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(bodySerial_))) {
        (void)document.rebuildBody(*body);
        document.notifyChanged(*body);
    }
}

std::string rebuildAfterEdit(Document& document, const FeatureObject& feature) {
    GeometryObject* body = document.bodyOfFeature(feature.id);
    if (!body) return {};
    // Only this feature and the ones after it need computing again.
    Result<void> rebuilt = document.rebuildBodyFrom(*body, feature.id);
    document.notifyChanged(*body);
    document.notifyChanged(feature);
    return rebuilt ? std::string() : rebuilt.error();
}

} // namespace cad

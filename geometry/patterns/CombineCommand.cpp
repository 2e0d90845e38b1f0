// Hiding a combine's tools after the feature is added, and showing them again on undo.
#include "geometry/patterns/CombineCommand.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/param/FeatureCommand.h"

#include <variant>

namespace cad {

Result<std::unique_ptr<Command>> CombineCommand::create(const CommandRecord& record) {
    Result<std::unique_ptr<Command>> made = FeatureCommand::create("Combine", record);
    if (!made) return made;
    const Value* keep = record.find("keep");
    const bool kept = keep && std::holds_alternative<bool>(*keep) && std::get<bool>(*keep);
    return std::unique_ptr<Command>(new CombineCommand(record, std::move(made).value(), kept));
}

CommandResult CombineCommand::execute(Document& document) {
    CommandResult result = made_->execute(document);
    if (!result.ok || keep_) return result;
    const Value* tools = record_.find("tools");
    const auto* list = tools ? std::get_if<std::string>(tools) : nullptr;
    if (!list) return result;
    for (const std::string& name : geometry::splitReferenceList(*list)) {
        auto* body = document.findAs<GeometryObject>(name);
        if (!body || !body->visible) continue;
        body->visible = false;
        hidden_.push_back(body->serial);
        document.notifyChanged(*body);
    }
    return result;
}

void CombineCommand::undo(Document& document) {
    for (std::uint64_t serial : hidden_) {
        if (DocumentObject* body = document.findBySerial(serial)) {
            body->visible = true;
            document.notifyChanged(*body);
        }
    }
    hidden_.clear();
    made_->undo(document);
}

} // namespace cad

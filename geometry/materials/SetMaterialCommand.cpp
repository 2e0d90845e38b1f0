// set_material: reads the objects and the material, sets the material on every
// object (or takes it off), and keeps what each had for undo.
#include "geometry/materials/SetMaterialCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/TextCase.h"
#include "geometry/References.h"
#include "geometry/materials/MaterialTables.h"

#include <algorithm>

namespace cad {

std::vector<ArgSpec> SetMaterialCommand::arguments() {
    return {
        {"objects",
         ArgType::String,
         true,
         "Bodies or components separated by ';', e.g. \"Body1; Component2\".",
         {},
         ""},
        {"material",
         ArgType::String,
         true,
         "A material id from list_materials, e.g. \"aluminum_6061\"; empty takes it off.",
         {},
         ""},
    };
}

Result<std::unique_ptr<Command>> SetMaterialCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<SetMaterialCommand> command(new SetMaterialCommand(record));
    Result<std::string> objects = reader.string("objects", "");
    if (!objects) return Error(objects);
    command->names_ = geometry::splitReferenceList(*objects);
    if (command->names_.empty())
        return fail(record.name + ": give the bodies or components ('objects').");
    if (!reader.has("material"))
        return fail(record.name + ": missing string argument 'material' (empty takes it off).");
    Result<std::string> material = reader.string("material");
    if (!material) return Error(material);
    if (std::string_view id = trimmed(*material); !id.empty()) {
        command->material_ = findMaterial(id);
        if (!command->material_)
            return fail("No physical material '" + std::string(id) +
                        "'. list_materials shows them.");
    }
    return std::unique_ptr<Command>(std::move(command));
}

CommandRecord SetMaterialCommand::record() const {
    CommandRecord refined = record_;
    if (!ids_.empty()) {
        std::string list;
        for (const std::string& id : ids_) list += (list.empty() ? "" : "; ") + id;
        refined.set("objects", list);
    }
    refined.set("material", material_ ? std::string(material_->id) : std::string());
    return refined;
}

CommandResult SetMaterialCommand::execute(Document& document) {
    std::vector<DocumentObject*> objects;
    for (const std::string& name : names_) {
        Result<DocumentObject*> object = findBodyOrComponent(document, name);
        if (!object) return CommandResult::failure(object.error());
        if (std::find(objects.begin(), objects.end(), *object) == objects.end())
            objects.push_back(*object);
    }
    saved_.clear();
    ids_.clear();
    for (DocumentObject* object : objects) {
        saved_.remember(*object);
        object->material = material_ ? std::string(material_->id) : std::string();
        ids_.push_back(object->id);
    }
    notifyLooksChanged(document, objects);
    if (!material_) return CommandResult::success("Material taken off.");
    return CommandResult::success("Made of " + std::string(material_->name) + ".");
}

void SetMaterialCommand::undo(Document& document) { saved_.restore(document); }

} // namespace cad

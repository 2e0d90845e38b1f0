// The command registry: lookup by exact name, name-to-ID rewriting, creation.
#include "core/CommandRegistry.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"

#include <exception>

namespace cad {

void CommandRegistry::add(std::string name, std::string description, std::vector<ArgSpec> arguments,
                          CommandFactory factory) {
    entries_.push_back(
        {std::move(name), std::move(description), std::move(factory), std::move(arguments)});
}

void CommandRegistry::addChecked(std::string name, std::string description,
                                 std::vector<ArgSpec> arguments, CommandFactory factory) {
    auto checked = [arguments, factory = std::move(factory)](
                       const CommandRecord& record) -> Result<std::unique_ptr<Command>> {
        if (Result<void> ok = checkArguments(record, arguments); !ok) return Error(ok);
        return factory(record);
    };
    add(std::move(name), std::move(description), std::move(arguments), std::move(checked));
}

const CommandRegistry::Entry* CommandRegistry::find(std::string_view name) const {
    for (const Entry& entry : entries_)
        if (entry.name == name) return &entry;
    return nullptr;
}

static const DocumentObject* resolveObject(const Document& document, std::string_view refersTo,
                                           std::string_view name) {
    if (refersTo == "sketch")
        return document.findMatching(
            name, [](const DocumentObject& o) { return o.typeName() == "Sketch"; });
    if (refersTo == "body") return document.findAs<GeometryObject>(name);
    if (refersTo == "feature") return document.findAs<FeatureObject>(name);
    return document.findByName(name);
}

CommandRecord CommandRegistry::canonicalize(const CommandRecord& record,
                                            const Document& document) const {
    const Entry* entry = find(record.name);
    if (!entry) return record;
    CommandRecord result = record;
    for (const ArgSpec& declaredArg : entry->arguments) {
        if (declaredArg.refersTo.empty()) continue;
        const Value* value = result.find(declaredArg.name);
        if (!value || !std::holds_alternative<std::string>(*value)) continue;
        if (const DocumentObject* object =
                resolveObject(document, declaredArg.refersTo, std::get<std::string>(*value)))
            result.set(declaredArg.name, Value(object->id));
    }
    return result;
}

Result<std::unique_ptr<Command>> CommandRegistry::create(const CommandRecord& record) const {
    const Entry* entry = find(record.name);
    if (!entry) return fail("Unknown command '" + record.name + "'.");
    // Every declared argument is checked against its type before the factory reads
    // it, so no factory ever meets a value of the wrong kind.
    if (Result<void> ok = checkArgumentTypes(record, entry->arguments); !ok) return Error(ok);
    try {
        return entry->factory(record);
    } catch (const UncheckedResult& e) {
        return fail(e.what());
    } catch (const std::exception& e) {
        // Factories report problems as values; this only keeps a slip from escaping.
        return fail(record.name + ": the arguments could not be read (" + e.what() + ").");
    }
}

} // namespace cad

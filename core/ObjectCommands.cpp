// Delete, rename, show or hide, and the document's unit: commands on objects as
// a whole. Each keeps what it needs to undo itself.
#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "core/TextCase.h"

#include <algorithm>
#include <set>

namespace cad {

namespace {

class DeleteObjectCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        ArgReader args(record_);
        std::string name = *args.object("object");
        bool withDependents = *args.boolean("with_dependents", false);
        DocumentObject* object = doc.findByName(name);
        if (!object) return CommandResult::failure(doc.lookupError(name));

        std::vector<DocumentObject*> set;
        addWithOwned(doc, object, set);
        std::size_t owned = set.size();
        for (;;) {
            std::vector<DocumentObject*> users = usersOf(doc, set);
            if (users.empty()) break;
            if (!withDependents) {
                std::string list;
                for (DocumentObject* user : users) list += (list.empty() ? "" : ", ") + user->id;
                return CommandResult::failure(
                    object->id + " is used by " + list +
                    "; delete that first, or delete with its dependents.");
            }
            for (DocumentObject* user : users) addWithOwned(doc, user, set);
        }
        std::string message =
            "Deleted " + object->id + (set.size() > owned ? " and what used it" : "") + ".";

        // Features leave their bodies' lists first, then everything leaves the document.
        std::set<DocumentObject*> deleting(set.begin(), set.end());
        std::vector<GeometryObject*> rebuild;
        for (DocumentObject* o : set) {
            GeometryObject* body = doc.bodyOfFeature(o->id);
            if (!body) continue;
            auto at = std::find(body->features.begin(), body->features.end(), o->id);
            features_.push_back(
                {body->serial, o->id, static_cast<std::size_t>(at - body->features.begin())});
            body->features.erase(at);
            if (!deleting.count(body) &&
                std::find(rebuild.begin(), rebuild.end(), body) == rebuild.end())
                rebuild.push_back(body);
        }
        rollback_ = doc.rollback();
        for (DocumentObject* o : set) taken_.push_back(doc.take(o->serial));

        std::string failure;
        for (GeometryObject* body : rebuild) {
            Result<void> rebuilt = doc.rebuildBody(*body);
            if (!rebuilt && failure.empty()) failure = rebuilt.error();
            doc.notifyChanged(*body);
        }
        return CommandResult::success(withFailure(std::move(message), failure));
    }

    void undo(Document& doc) override {
        for (auto it = taken_.rbegin(); it != taken_.rend(); ++it)
            doc.add(std::move(it->object), it->index);
        doc.setRollback(rollback_);
        std::vector<GeometryObject*> rebuild;
        for (auto it = features_.rbegin(); it != features_.rend(); ++it) {
            auto* body = dynamic_cast<GeometryObject*>(doc.findBySerial(it->bodySerial));
            if (!body) continue;
            body->features.insert(
                body->features.begin() +
                    static_cast<std::ptrdiff_t>(std::min(it->position, body->features.size())),
                it->featureId);
            if (std::find(rebuild.begin(), rebuild.end(), body) == rebuild.end())
                rebuild.push_back(body);
        }
        for (GeometryObject* body : rebuild) {
            (void)doc.rebuildBody(*body);
            doc.notifyChanged(*body);
        }
        taken_.clear();
        features_.clear();
    }

private:
    // The object and what it owns: a body goes with its features.
    static void addWithOwned(const Document& doc, DocumentObject* object,
                             std::vector<DocumentObject*>& set) {
        auto add = [&](DocumentObject* o) {
            if (o && std::find(set.begin(), set.end(), o) == set.end()) set.push_back(o);
        };
        add(object);
        if (auto* body = dynamic_cast<GeometryObject*>(object))
            for (const std::string& id : body->features) add(doc.find(id));
    }

    // Objects outside the set that use something in it, in history order.
    static std::vector<DocumentObject*> usersOf(const Document& doc,
                                                const std::vector<DocumentObject*>& set) {
        std::vector<DocumentObject*> users;
        for (const auto& o : doc.objects()) {
            if (std::find(set.begin(), set.end(), o.get()) != set.end()) continue;
            auto* feature = dynamic_cast<const FeatureObject*>(o.get());
            std::vector<std::string> uses = feature ? feature->references() : o->dependencies();
            bool uses_set = std::any_of(set.begin(), set.end(), [&](const DocumentObject* d) {
                return std::find(uses.begin(), uses.end(), d->id) != uses.end();
            });
            if (uses_set) users.push_back(o.get());
        }
        return users;
    }

    struct RemovedFeature {
        std::uint64_t bodySerial;
        std::string featureId;
        std::size_t position;
    };
    std::vector<Document::Taken> taken_;
    std::vector<RemovedFeature> features_;
    std::string rollback_;
};

class RenameObjectCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        ArgReader args(record_);
        std::string name = *args.object("object");
        DocumentObject* object = doc.findByName(name);
        if (!object) return CommandResult::failure(doc.lookupError(name));
        std::string requested(trimmed(*args.string("name")));
        if (requested.find_first_of("/\n\r\t") != std::string::npos)
            return CommandResult::failure("Names can't contain '/' or line breaks.");

        std::string label = requested;
        for (int n = 2; !label.empty() && taken(doc, *object, label); ++n)
            label = requested + " " + std::to_string(n);

        serial_ = object->serial;
        previous_ = object->label;
        std::string oldName = object->displayName();
        object->label = label;
        doc.notifyChanged(*object);
        if (label.empty()) return CommandResult::success(object->id + " shows its ID again.");
        std::string message = "Renamed " + oldName + " to " + label;
        if (label != requested) message += " ('" + requested + "' was taken)";
        return CommandResult::success(message + ".");
    }
    void undo(Document& doc) override {
        if (DocumentObject* object = doc.findBySerial(serial_)) {
            object->label = previous_;
            doc.notifyChanged(*object);
        }
    }

private:
    static bool taken(const Document& doc, const DocumentObject& self, std::string_view name) {
        return std::any_of(doc.objects().begin(), doc.objects().end(), [&](const auto& o) {
            return o.get() != &self &&
                   (equalsIgnoringCase(o->label, name) || equalsIgnoringCase(o->id, name));
        });
    }

    std::uint64_t serial_ = 0;
    std::string previous_;
};

class SetVisibilityCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        ArgReader args(record_);
        std::string name = *args.object("object");
        Result<bool> visible = args.boolean("visible");
        if (!visible) return CommandResult::failure(visible.error());
        DocumentObject* object = doc.findByName(name);
        if (!object) return CommandResult::failure(doc.lookupError(name));
        serial_ = object->serial;
        previous_ = object->visible;
        object->visible = *visible;
        doc.notifyChanged(*object);
        return CommandResult::success((*visible ? "Showing " : "Hid ") + object->id + ".");
    }
    void undo(Document& doc) override {
        if (DocumentObject* object = doc.findBySerial(serial_)) {
            object->visible = previous_;
            doc.notifyChanged(*object);
        }
    }

private:
    std::uint64_t serial_ = 0;
    bool previous_ = true;
};

const std::vector<std::string> kUnitChoices = {"mm", "cm", "m", "in", "ft"};

class SetUnitsCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        Result<std::string> unit = ArgReader(record_).choice("length", kUnitChoices);
        if (!unit) return CommandResult::failure(unit.error());
        previous_ = doc.lengthUnit();
        doc.setLengthUnit(*units::parseUnitName(*unit));
        return CommandResult::success("Units: " + *unit + ".");
    }
    void undo(Document& doc) override { doc.setLengthUnit(previous_); }

private:
    units::Length previous_ = units::Length::Millimeters;
};

} // namespace

void registerObjectCommands(CommandRegistry& registry) {
    registry.addChecked(
        "delete_object",
        "Delete an object: a body (with its features), a feature (its body is rebuilt without it), "
        "a "
        "sketch, plane, component (with its instances), instance, connection, section, setup or "
        "operation. What other objects still use can't be deleted unless with_dependents is true, "
        "which deletes those too.",
        {{"object", ArgType::String, true, "The object's ID or name.", {}, "object"},
         {"with_dependents",
          ArgType::Boolean,
          false,
          "true also deletes everything that uses it (default false).",
          {},
          ""}},
        makeCommand<DeleteObjectCommand>());
    registry.addChecked(
        "rename_object",
        "Rename a body, sketch or feature. Only its display name changes: its ID (\"Body1\") "
        "stays, so "
        "features and references keep working. Objects can be addressed by ID or by name "
        "afterwards.",
        {{"object", ArgType::String, true, "The object's ID or name.", {}, "object"},
         {"name",
          ArgType::String,
          true,
          "The new display name; empty to go back to showing the ID.",
          {},
          ""}},
        makeCommand<RenameObjectCommand>());
    registry.addChecked(
        "set_visibility", "Show or hide a sketch or body.",
        {{"object", ArgType::String, true, "The object's ID or name.", {}, "object"},
         {"visible", ArgType::Boolean, true, "true to show, false to hide.", {}, ""}},
        makeCommand<SetVisibilityCommand>());
    registry.addChecked(
        "set_units", "Set the document's display unit (geometry is always stored in mm).",
        {{"length", ArgType::String, true, "One of mm, cm, m, in, ft.", kUnitChoices, ""}},
        makeCommand<SetUnitsCommand>());
}

} // namespace cad

// Roll back, suppress and move: the commands that change which steps of the
// history are built, and in what order.
#include "core/HistoryCommands.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistorySupport.h"

#include <algorithm>

namespace cad {

namespace {

std::string notAStep(std::string_view text) {
    return std::string(text) + " isn't a step of the history.";
}

class RollBackCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        std::string to = *ArgReader(record_).string("to", "");
        std::string target;
        if (!to.empty()) {
            DocumentObject* step = doc.findByName(to);
            if (!step) return CommandResult::failure(doc.lookupError(to));
            if (!doc.isHistoryStep(*step)) return CommandResult::failure(notAStep(to));
            target = step->id;
        }
        previous_ = doc.rollback();
        doc.setRollback(target, true);
        return CommandResult::success(target.empty() ? "The whole history is built."
                                                     : "Rolled back to before " + target + ".");
    }
    void undo(Document& doc) override { doc.setRollback(previous_, true); }

private:
    std::string previous_;
};

class SuppressFeatureCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        std::string name = *ArgReader(record_).object("feature");
        auto* feature = doc.findAs<FeatureObject>(name);
        if (!feature) return CommandResult::failure("No feature named '" + name + "'.");
        id_ = feature->id;
        previous_ = feature->suppressed;
        return CommandResult::success(
            apply(doc, *feature, *ArgReader(record_).boolean("suppressed", true)));
    }
    void undo(Document& doc) override {
        if (auto* feature = dynamic_cast<FeatureObject*>(doc.find(id_)))
            apply(doc, *feature, previous_);
    }

private:
    static std::string apply(Document& doc, FeatureObject& feature, bool suppressed) {
        feature.suppressed = suppressed;
        std::string failure;
        if (GeometryObject* body = doc.bodyOfFeature(feature.id)) {
            if (Result<void> rebuilt = doc.rebuildBody(*body); !rebuilt) failure = rebuilt.error();
            doc.notifyChanged(*body);
        }
        doc.notifyChanged(feature);
        std::string message = (suppressed ? "Suppressed " : "Brought back ") + feature.id + ".";
        return withFailure(std::move(message), failure);
    }

    std::string id_;
    bool previous_ = false;
};

class MoveStepCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        ArgReader args(record_);
        std::string stepName = *args.object("step");
        std::string beforeName = *args.string("before", "");
        DocumentObject* step = doc.findByName(stepName);
        if (!step) return CommandResult::failure(doc.lookupError(stepName));
        if (!doc.isHistoryStep(*step)) return CommandResult::failure(notAStep(stepName));
        DocumentObject* before = nullptr;
        if (!beforeName.empty()) {
            before = doc.findByName(beforeName);
            if (!before) return CommandResult::failure(doc.lookupError(beforeName));
        }
        serial_ = step->serial;
        from_ = *doc.indexOf(*step);
        std::string message = before ? "Moved " + step->id + " before " + before->id + "."
                                     : "Moved " + step->id + " to the end.";
        if (before == step) return CommandResult::success(message);

        std::size_t to = before ? *doc.indexOf(*before) : doc.objects().size();
        if (to > from_) --to;
        if (Result<void> ok = checkOrder(doc, *step, to); !ok)
            return CommandResult::failure(ok.error());
        doc.moveObject(serial_, to);
        doc.recomputeAllAndNotify();
        return CommandResult::success(message);
    }
    void undo(Document& doc) override {
        doc.moveObject(serial_, from_);
        doc.recomputeAllAndNotify();
    }

private:
    // Refuses a move after which a step would use something that comes after it.
    static Result<void> checkOrder(const Document& doc, const DocumentObject& moving,
                                   std::size_t to) {
        std::vector<const DocumentObject*> order;
        for (const auto& o : doc.objects())
            if (o.get() != &moving) order.push_back(o.get());
        order.insert(order.begin() + static_cast<std::ptrdiff_t>(std::min(to, order.size())),
                     &moving);
        auto position = [&](const DocumentObject* o) {
            return std::find(order.begin(), order.end(), o) - order.begin();
        };
        for (const DocumentObject* user : order) {
            if (!doc.isHistoryStep(*user)) continue;
            std::vector<std::string> uses;
            if (auto* feature = dynamic_cast<const FeatureObject*>(user)) {
                uses = feature->references();
                if (const GeometryObject* body = doc.bodyOfFeature(feature->id)) {
                    // A body that starts from its own shape (a box, an import) is
                    // the step that creates it, so its features must follow it.
                    if (doc.isHistoryStep(*body)) uses.push_back(body->id);
                    for (const std::string& earlier : body->features) {
                        if (earlier == feature->id) break;
                        uses.push_back(earlier);
                    }
                }
            } else {
                uses = user->dependencies();
            }
            for (const std::string& id : uses) {
                const DocumentObject* used = doc.find(id);
                if (used && position(used) > position(user))
                    return fail(user->displayName() + " uses " + used->displayName() +
                                ", which would come after it.");
            }
        }
        return {};
    }

    std::uint64_t serial_ = 0;
    std::size_t from_ = 0;
};

} // namespace

void registerHistoryCommands(CommandRegistry& registry) {
    registry.addChecked(
        "roll_back",
        "Roll the design's history back to just before a step (a sketch, plane or feature): it "
        "and every later step are left out, and new steps go in there. An empty 'to' builds the "
        "whole history again.",
        {{"to",
          ArgType::String,
          false,
          "The step to roll back to just before, by ID or name; empty or absent = build the "
          "whole history.",
          {},
          "step"}},
        makeCommand<RollBackCommand>());
    registry.addChecked("suppress_feature",
                        "Leave a feature out of its body's rebuild (or bring it back), keeping it.",
                        {{"feature", ArgType::String, true, "The feature.", {}, "feature"},
                         {"suppressed",
                          ArgType::Boolean,
                          false,
                          "true to leave it out (default), false to bring it back.",
                          {},
                          ""}},
                        makeCommand<SuppressFeatureCommand>());
    registry.addChecked(
        "move_step",
        "Move a step of the history (a sketch, plane or feature) to just before another; "
        "refused when something it uses would come after it, or it after something that uses it.",
        {{"step", ArgType::String, true, "The sketch, plane or feature to move.", {}, "step"},
         {"before",
          ArgType::String,
          false,
          "The step to put it just before; absent = to the end.",
          {},
          "step"}},
        makeCommand<MoveStepCommand>());
    registerObjectCommands(registry);
}

} // namespace cad

// thread: reads the body, face and size, then appends the feature; its first compute
// refuses faces that aren't round. edit_thread: changes only the values given.
#include "geometry/holes/ThreadCommand.h"

#include "core/ArgReader.h"
#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "core/TextCase.h"
#include "geometry/CommandSupport.h"
#include "geometry/holes/ThreadFeature.h"

namespace cad {

namespace {

using T = ArgType;

std::string unknownSize(const std::string& size) {
    return "'" + size + "' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC).";
}

Result<std::optional<std::string>> optionalText(const ArgReader& reader, const char* arg) {
    if (!reader.has(arg)) return std::optional<std::string>();
    Result<std::string> text = reader.string(arg);
    if (!text) return Error(text);
    return std::optional<std::string>(std::string(trimmed(*text)));
}

} // namespace

// ---------------------------------------------------------------- thread

std::vector<ArgSpec> ThreadCommand::arguments() {
    return {
        {"body", T::String, true, "The body, e.g. \"Body1\".", {}, "body"},
        {"face", T::String, true, "The cylindrical face's name (from get_body).", {}, ""},
        {"size",
         T::String,
         false,
         "Thread standard, e.g. M8 or 5/16-18 UNC (default: matched to the diameter).",
         {},
         ""},
        {"length", T::Length, false, "From the free end (default the whole face).", {}, ""},
        {"modeled", T::Boolean, false, "Cut a real thread.", {}, ""},
        {"name", T::String, false, "Feature name (default ThreadN).", {}, ""},
    };
}

Result<std::unique_ptr<Command>> ThreadCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<ThreadCommand> command(new ThreadCommand(record));
    ThreadCommand& c = *command;
    for (auto [arg, out] : {std::pair{"body", &c.body_}, std::pair{"face", &c.face_},
                            std::pair{"size", &c.size_}, std::pair{"name", &c.name_}}) {
        Result<std::optional<std::string>> text = optionalText(reader, arg);
        if (!text) return Error(text);
        *out = text->value_or("");
    }
    if (c.body_.empty() || c.face_.empty())
        return fail(record.name + ": give the body and the cylindrical face.");
    Result<double> length = reader.length("length", 0.0);
    if (!length) return Error(length);
    c.length_ = *length;
    Result<bool> modeled = reader.boolean("modeled", false);
    if (!modeled) return Error(modeled);
    c.modeled_ = *modeled;
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult ThreadCommand::firstRun(Document& document) {
    if (!size_.empty() && !findThreadSize(size_)) return CommandResult::failure(unknownSize(size_));
    auto* body = document.findAs<GeometryObject>(body_);
    if (!body) return CommandResult::failure("No body named '" + body_ + "' exists.");
    if (!name_.empty() && nameTaken(document, name_))
        return CommandResult::failure("An object named '" + name_ + "' already exists.");
    if (badObjectName(name_))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    // "Body1/Extrude1.side.Circle1" and "Extrude1.side.Circle1" name the same face.
    std::string face = face_;
    if (std::size_t slash = face.find('/'); slash != std::string::npos) {
        const std::string head(trimmed(std::string_view(face).substr(0, slash)));
        if (document.findAs<GeometryObject>(head) == body)
            face = std::string(trimmed(std::string_view(face).substr(slash + 1)));
    }
    auto feature = std::make_unique<ThreadFeature>();
    feature->id = name_.empty() ? document.nextId("Thread") : name_;
    feature->face = face;
    feature->size = size_;
    feature->length = length_;
    feature->modeled = modeled_;
    return append(document, *body, std::move(feature));
}

std::string ThreadCommand::done(const Document& document, const FeatureObject& feature,
                                const GeometryObject& body) const {
    const auto& thread = static_cast<const ThreadFeature&>(feature);
    std::string size = thread.size;
    if (const geometry::NamedShape* before = document.shapeBefore(thread.id))
        if (Result<ThreadLayout> layout =
                layOutThread(*before, thread.face, thread.size, thread.length))
            size = layout->size->name;
    return "Threaded " + size + " of " + body.id + " (" + thread.id + ", " +
           (thread.modeled ? "modeled" : "cosmetic") + ").";
}

// ---------------------------------------------------------------- edit_thread

std::vector<ArgSpec> EditThreadCommand::arguments() {
    std::vector<ArgSpec> args = ThreadCommand::arguments();
    args.erase(args.begin(), args.begin() + 2); // body and face
    args.pop_back();                            // name
    args.insert(args.begin(), {"feature", T::String, true, "e.g. \"Thread1\".", {}, "feature"});
    return args;
}

Result<std::unique_ptr<Command>> EditThreadCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<EditThreadCommand> command(new EditThreadCommand(record));
    EditThreadCommand& c = *command;
    Result<std::string> feature = reader.string("feature");
    if (!feature) return Error(feature);
    c.featureName_ = *feature;
    Result<std::optional<std::string>> size = optionalText(reader, "size");
    if (!size) return Error(size);
    c.size_ = *size;
    if (reader.has("length")) {
        Result<double> length = reader.length("length");
        if (!length) return Error(length);
        c.length_ = *length;
    }
    if (reader.has("modeled")) {
        Result<bool> modeled = reader.boolean("modeled");
        if (!modeled) return Error(modeled);
        c.modeled_ = *modeled;
    }
    if (!c.size_ && !c.length_ && !c.modeled_) return fail(record.name + ": nothing to change.");
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult EditThreadCommand::execute(Document& document) {
    auto* thread = document.findAs<ThreadFeature>(featureName_);
    if (!thread) return CommandResult::failure("No thread named '" + featureName_ + "' exists.");
    if (size_ && !size_->empty() && !findThreadSize(*size_))
        return CommandResult::failure(unknownSize(*size_));
    if (!document.bodyOfFeature(thread->id))
        return CommandResult::failure(thread->id + " doesn't belong to a body.");

    featureSerial_ = thread->serial;
    before_ = {thread->size, thread->length, thread->modeled};
    if (size_) thread->size = *size_;
    if (length_) thread->length = *length_;
    if (modeled_) thread->modeled = *modeled_;
    return CommandResult::success(
        withFailure("Edited " + thread->id + ".", rebuildAfterEdit(document, *thread)));
}

void EditThreadCommand::undo(Document& document) {
    auto* thread = dynamic_cast<ThreadFeature*>(document.findBySerial(featureSerial_));
    if (!thread) return;
    thread->size = before_.size;
    thread->length = before_.length;
    thread->modeled = before_.modeled;
    (void)rebuildAfterEdit(document, *thread);
}

} // namespace cad

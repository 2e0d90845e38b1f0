// fillet, chamfer and shell: read the body, the names and the value, append the
// feature to the body's history and let it rebuild. A feature that fails on its
// first compute fails the command and leaves the document as it was.
#include "geometry/FilletCommand.h"

#include "core/ArgReader.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/CommandSupport.h"
#include "geometry/DressUpFeatures.h"
#include "geometry/References.h"

#include <algorithm>

namespace cad {

namespace {

using Kind = FilletCommand::Kind;

// The words each kind uses in its arguments and sentences.
struct KindWords {
    const char* kind;   // "fillet"
    const char* names;  // "edges"
    const char* value;  // "radius"
    const char* prefix; // "Fillet": default names
    const char* done;   // "Rounded"
};

KindWords wordsOf(Kind kind) {
    switch (kind) {
    case Kind::Chamfer:
        return {"chamfer", "edges", "distance", "Chamfer", "Beveled"};
    case Kind::Shell:
        return {"shell", "faces", "thickness", "Shell", "Shelled"};
    case Kind::Fillet:
        break;
    }
    return {"fillet", "edges", "radius", "Fillet", "Rounded"};
}

ArgSpec bodyArgument() {
    return {"body", ArgType::String, true, "The body, e.g. \"Body1\".", {}, "body"};
}

ArgSpec edgesArgument() {
    const char* help = "Edge names separated by ';' (\"Body1/\" prefixes are fine).";
    return {"edges", ArgType::String, true, help, {}, ""};
}

// The name without a leading "<body>/" that names this body; nothing when the
// prefix names something else.
std::optional<std::string> withoutBodyPrefix(const std::string& name, const GeometryObject& body,
                                             const std::string& given) {
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos) return name;
    const std::string_view head = trimmed(std::string_view(name).substr(0, slash));
    // Names of faces and edges never hold '/' before their first '('.
    if (head.find('(') != std::string_view::npos) return name;
    if (equalsIgnoringCase(head, body.id) || equalsIgnoringCase(head, given) ||
        (!body.label.empty() && equalsIgnoringCase(head, body.label)))
        return std::string(trimmed(std::string_view(name).substr(slash + 1)));
    return std::nullopt;
}

} // namespace

std::vector<ArgSpec> FilletCommand::arguments(Kind kind) {
    using T = ArgType;
    switch (kind) {
    case Kind::Chamfer:
        return {bodyArgument(),
                edgesArgument(),
                {"distance", T::Length, true, "Along each face.", {}, ""},
                {"name", T::String, false, "Feature name (default ChamferN).", {}, ""},
                {"tangent_chain",
                 T::Boolean,
                 false,
                 "As for fillet: false bevels only these edges.",
                 {},
                 ""}};
    case Kind::Shell:
        return {bodyArgument(),
                {"faces",
                 T::String,
                 true,
                 "Faces to remove (the openings), separated by ';', e.g. \"Extrude1.end\".",
                 {},
                 ""},
                {"thickness", T::Length, true, "Wall thickness.", {}, ""},
                {"direction",
                 T::String,
                 false,
                 "Walls grow into the body (default) or out of it.",
                 {"inside", "outside"},
                 ""},
                {"name", T::String, false, "Feature name (default ShellN).", {}, ""}};
    case Kind::Fillet:
        break;
    }
    return {bodyArgument(),
            edgesArgument(),
            {"radius", T::Length, true, "Fillet radius.", {}, ""},
            {"name", T::String, false, "Feature name (default FilletN).", {}, ""},
            {"tangent_chain",
             T::Boolean,
             false,
             "Also round the edges continuing these smoothly (default true); false: only these "
             "edges, the fillet ending square where they end.",
             {},
             ""}};
}

Result<std::unique_ptr<Command>> FilletCommand::create(Kind kind, const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments(kind)); !ok) return Error(ok);
    std::unique_ptr<FilletCommand> command(new FilletCommand(kind, record));
    FilletCommand& c = *command;
    const KindWords w = wordsOf(kind);

    Result<std::string> body = reader.string("body");
    if (!body) return Error(body);
    c.bodyName_ = *body;

    const std::string missingNames =
        record.name + ": missing '" + w.names + "' (names separated by ';').";
    if (!reader.has(w.names)) return fail(missingNames);
    Result<std::string> names = reader.string(w.names);
    if (!names) return Error(names);
    c.names_ = geometry::splitReferenceList(*names);
    if (c.names_.empty()) return fail(missingNames);

    Result<double> value = reader.length(w.value);
    if (!value) return Error(value);
    c.value_ = *value;

    if (kind == Kind::Shell) {
        auto direction = word(record, "direction", {"inside", "outside"},
                              "'direction' must be \"inside\" or \"outside\".");
        if (!direction) return Error(direction);
        c.outward_ = *direction && **direction == "outside";
    } else {
        Result<bool> chain = reader.boolean("tangent_chain", true);
        if (!chain) return Error(chain);
        c.tangentChain_ = *chain;
    }
    Result<std::string> name = reader.string("name", "");
    if (!name) return Error(name);
    c.featureName_ = *name;
    return std::unique_ptr<Command>(std::move(command));
}

std::unique_ptr<DressUpFeature> FilletCommand::makeFeature(std::vector<std::string> names) const {
    switch (kind_) {
    case Kind::Chamfer: {
        auto f = std::make_unique<ChamferFeature>();
        f->edges = std::move(names);
        f->tangentChain = tangentChain_;
        return f;
    }
    case Kind::Shell: {
        auto f = std::make_unique<ShellFeature>();
        f->faces = std::move(names);
        f->outward = outward_;
        return f;
    }
    case Kind::Fillet:
        break;
    }
    auto f = std::make_unique<FilletFeature>();
    f->edges = std::move(names);
    f->tangentChain = tangentChain_;
    return f;
}

std::string FilletCommand::done(const Document&, const FeatureObject& feature,
                                const GeometryObject& body) const {
    const std::size_t n = names_.size();
    const std::string count = std::to_string(n);
    if (kind_ == Kind::Shell)
        return "Shelled " + body.id + ", open at " + count + (n == 1 ? " face" : " faces") + " (" +
               feature.id + ").";
    return std::string(wordsOf(kind_).done) + " " + count + (n == 1 ? " edge" : " edges") + " of " +
           body.id + " (" + feature.id + ").";
}

CommandResult FilletCommand::firstRun(Document& document) {
    const KindWords w = wordsOf(kind_);
    auto* body = document.findAs<GeometryObject>(bodyName_);
    if (!body) return CommandResult::failure("No body named '" + bodyName_ + "' exists.");
    if (value_ <= 1e-7)
        return CommandResult::failure(std::string("The ") + w.kind + " " + w.value +
                                      " must be greater than zero.");
    if (!featureName_.empty() && nameTaken(document, featureName_))
        return CommandResult::failure("An object named '" + featureName_ + "' already exists.");
    if (badObjectName(featureName_))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    std::vector<std::string> names;
    for (const std::string& given : names_) {
        std::optional<std::string> name = withoutBodyPrefix(given, *body, bodyName_);
        if (!name) return CommandResult::failure("'" + given + "' isn't on " + body->id + ".");
        names.push_back(std::move(*name));
    }

    std::unique_ptr<DressUpFeature> feature = makeFeature(std::move(names));
    feature->setValue(value_);
    feature->id = featureName_.empty() ? document.nextId(w.prefix) : featureName_;
    if (auto e = boundExpression(record_.find(w.value), document))
        feature->expressions[w.value] = *e;
    return append(document, *body, std::move(feature));
}

} // namespace cad

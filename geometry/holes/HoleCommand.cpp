// hole: reads the options, finds the sketch and the body, checks the size and the
// points, then appends the feature. edit_hole: changes only the options given.
#include "geometry/holes/HoleCommand.h"

#include "core/ArgReader.h"
#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "core/TextCase.h"
#include "geometry/CommandSupport.h"
#include "geometry/References.h"
#include "sketch/SketchObject.h"

namespace cad {

namespace {

using T = ArgType;

// The options both commands take, with their catalogue texts.
std::vector<ArgSpec> optionArguments() {
    return {
        {"size",
         T::String,
         false,
         "A thread standard: M1-M64 (M6), metric fine (M10x1.25), UNC/UNF (1/4-20 UNC, #10-32 "
         "UNF). Sizes the hole, counterbore and countersink.",
         {},
         ""},
        {"fit",
         T::String,
         false,
         "With a size: tapped (tap drill, threaded) or a clearance fit. Default tapped.",
         {"tapped", "close", "normal", "loose"},
         ""},
        {"diameter", T::Length, false, "A custom diameter instead of a size.", {}, ""},
        {"kind", T::String, false, "Default simple.", {"simple", "counterbore", "countersink"}, ""},
        {"depth", T::Length, false, "To the end of the full diameter (default 10 mm).", {}, ""},
        {"through", T::Boolean, false, "Through everything along the axis.", {}, ""},
        {"tip_angle",
         T::Number,
         false,
         "Drill point, included degrees (default 118; 0 = flat bottom).",
         {},
         ""},
        {"counterbore_diameter", T::Length, false, "Default from the size.", {}, ""},
        {"counterbore_depth", T::Length, false, "Default from the size.", {}, ""},
        {"countersink_diameter", T::Length, false, "Default from the size.", {}, ""},
        {"countersink_angle",
         T::Number,
         false,
         "Included degrees (default from the size: 90 metric, 82 inch).",
         {},
         ""},
        {"thread_length", T::Length, false, "Tapped holes (default the full depth).", {}, ""},
        {"modeled",
         T::Boolean,
         false,
         "Tapped holes: cut a real helical thread instead of a cosmetic one.",
         {},
         ""},
        {"points",
         T::String,
         false,
         "Which sketch points (or circles) get holes, separated by ';' (default every point).",
         {},
         ""},
        {"flip",
         T::Boolean,
         false,
         "Drill along the sketch normal instead of into the face.",
         {},
         ""},
    };
}

Result<HoleChanges> readChanges(const ArgReader& reader) {
    HoleChanges c;
    for (auto [arg, out] :
         {std::pair{"size", &c.size}, std::pair{"fit", &c.fit}, std::pair{"kind", &c.kind}}) {
        if (!reader.has(arg)) continue;
        Result<std::string> text = reader.string(arg);
        if (!text) return Error(text);
        *out = std::string(trimmed(*text));
    }
    for (auto [arg, out] : {std::pair{"diameter", &c.diameter}, std::pair{"depth", &c.depth},
                            std::pair{"counterbore_diameter", &c.counterboreDiameter},
                            std::pair{"counterbore_depth", &c.counterboreDepth},
                            std::pair{"countersink_diameter", &c.countersinkDiameter},
                            std::pair{"thread_length", &c.threadLength}}) {
        if (!reader.has(arg)) continue;
        Result<double> value = reader.length(arg);
        if (!value) return Error(value);
        *out = *value;
    }
    for (auto [arg, out] : {std::pair{"tip_angle", &c.tipAngle},
                            std::pair{"countersink_angle", &c.countersinkAngle}}) {
        if (!reader.has(arg)) continue;
        Result<double> value = reader.number(arg);
        if (!value) return Error(value);
        *out = *value;
    }
    for (auto [arg, out] : {std::pair{"through", &c.through}, std::pair{"modeled", &c.modeled},
                            std::pair{"flip", &c.flip}}) {
        if (!reader.has(arg)) continue;
        Result<bool> value = reader.boolean(arg);
        if (!value) return Error(value);
        *out = *value;
    }
    if (reader.has("points")) {
        Result<std::string> text = reader.string("points");
        if (!text) return Error(text);
        c.points = geometry::splitReferenceList(*text);
    }
    return c;
}

} // namespace

bool HoleChanges::empty() const {
    return !size && !fit && !kind && !diameter && !depth && !tipAngle && !counterboreDiameter &&
           !counterboreDepth && !countersinkDiameter && !countersinkAngle && !threadLength &&
           !through && !modeled && !flip && !points;
}

void HoleChanges::applyTo(HoleFeature& f) const {
    HoleOptions& o = f.options;
    if (size) o.size = *size;
    if (diameter) {
        o.diameter = *diameter;
        if (!size) o.size.clear();
    }
    if (fit) o.fit = *fit;
    if (kind) o.kind = *kind;
    for (auto [given, field] : {std::pair{&depth, &o.depth}, std::pair{&tipAngle, &o.tipAngle},
                                std::pair{&counterboreDiameter, &o.counterboreDiameter},
                                std::pair{&counterboreDepth, &o.counterboreDepth},
                                std::pair{&countersinkDiameter, &o.countersinkDiameter},
                                std::pair{&countersinkAngle, &o.countersinkAngle},
                                std::pair{&threadLength, &o.threadLength}})
        if (*given) *field = **given;
    if (through) o.through = *through;
    if (modeled) o.modeled = *modeled;
    if (flip) f.flip = *flip;
    if (points) f.points = *points;
}

// ---------------------------------------------------------------- hole

std::vector<ArgSpec> HoleCommand::arguments() {
    std::vector<ArgSpec> args{
        {"sketch", T::String, true, "The sketch whose points get holes.", {}, "sketch"},
        {"target", T::String, false, "The body (default: the one the sketch is on).", {}, "body"},
        {"name", T::String, false, "Feature name (default HoleN).", {}, ""},
    };
    std::vector<ArgSpec> options = optionArguments();
    args.insert(args.end(), options.begin(), options.end());
    return args;
}

Result<std::unique_ptr<Command>> HoleCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<HoleCommand> command(new HoleCommand(record));
    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);
    command->sketch_ = *sketch;
    for (auto [arg, out] :
         {std::pair{"target", &command->target_}, std::pair{"name", &command->name_}}) {
        Result<std::string> text = reader.string(arg, "");
        if (!text) return Error(text);
        *out = *text;
    }
    Result<HoleChanges> changes = readChanges(reader);
    if (!changes) return Error(changes);
    command->changes_ = *changes;
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult HoleCommand::firstRun(Document& document) {
    auto* sketch = document.findAs<SketchObject>(sketch_);
    if (!sketch) return CommandResult::failure("No sketch named '" + sketch_ + "' exists.");
    GeometryObject* body = nullptr;
    if (!target_.empty()) {
        body = document.findAs<GeometryObject>(target_);
        if (!body) return CommandResult::failure("No body named '" + target_ + "' exists.");
    } else {
        const std::string support = geometry::objectPart(sketch->support);
        body = support.empty() ? nullptr : document.findAs<GeometryObject>(support);
        if (!body)
            return CommandResult::failure(
                "Holes need a body: give a target, or sketch on the body's face.");
    }
    if (!name_.empty() && nameTaken(document, name_))
        return CommandResult::failure("An object named '" + name_ + "' already exists.");
    if (badObjectName(name_))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    auto feature = std::make_unique<HoleFeature>();
    changes_.applyTo(*feature);
    if (Result<ResolvedHole> drill = resolveHole(feature->options); !drill)
        return CommandResult::failure(drill.error());
    if (feature->points.empty() && !sketchHolePoints(*sketch, {}))
        return CommandResult::failure("There's nowhere to put a hole: the sketch has no points.");
    if (auto found = sketchHolePoints(*sketch, feature->points); !found)
        return CommandResult::failure(found.error());

    feature->id = name_.empty() ? document.nextId("Hole") : name_;
    feature->sketch = sketch->id;
    return append(document, *body, std::move(feature));
}

std::string HoleCommand::done(const Document& document, const FeatureObject& feature,
                              const GeometryObject& body) const {
    const auto& hole = static_cast<const HoleFeature&>(feature);
    Result<std::vector<HoleFeature::Placement>> places = hole.placements(document);
    const std::size_t n = places ? places->size() : 0;
    return "Made " + std::to_string(n) + (n == 1 ? " hole" : " holes") + " in " + body.id + " (" +
           feature.id + ").";
}

// ---------------------------------------------------------------- edit_hole

std::vector<ArgSpec> EditHoleCommand::arguments() {
    std::vector<ArgSpec> args{{"feature", T::String, true, "e.g. \"Hole1\".", {}, "feature"}};
    std::vector<ArgSpec> options = optionArguments();
    args.insert(args.end(), options.begin(), options.end());
    return args;
}

Result<std::unique_ptr<Command>> EditHoleCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<EditHoleCommand> command(new EditHoleCommand(record));
    Result<std::string> feature = reader.string("feature");
    if (!feature) return Error(feature);
    command->featureName_ = *feature;
    Result<HoleChanges> changes = readChanges(reader);
    if (!changes) return Error(changes);
    if (changes->empty()) return fail(record.name + ": nothing to change.");
    command->changes_ = *changes;
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult EditHoleCommand::execute(Document& document) {
    auto* hole = document.findAs<HoleFeature>(featureName_);
    if (!hole) return CommandResult::failure("No hole named '" + featureName_ + "' exists.");
    HoleFeature changed = *hole;
    changes_.applyTo(changed);
    if (Result<ResolvedHole> drill = resolveHole(changed.options); !drill)
        return CommandResult::failure(drill.error());
    if (!document.bodyOfFeature(hole->id))
        return CommandResult::failure(hole->id + " doesn't belong to a body.");

    featureSerial_ = hole->serial;
    before_ = {hole->points, hole->flip, hole->options};
    hole->points = changed.points;
    hole->flip = changed.flip;
    hole->options = changed.options;
    return CommandResult::success(
        withFailure("Edited " + hole->id + ".", rebuildAfterEdit(document, *hole)));
}

void EditHoleCommand::undo(Document& document) {
    auto* hole = dynamic_cast<HoleFeature*>(document.findBySerial(featureSerial_));
    if (!hole) return;
    hole->points = before_.points;
    hole->flip = before_.flip;
    hole->options = before_.options;
    (void)rebuildAfterEdit(document, *hole);
}

} // namespace cad

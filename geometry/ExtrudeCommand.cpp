// extrude: reads its arguments in the documented order, picks the target body,
// adds the feature (and a new body) and lets the body rebuild. A feature that fails
// on its first compute fails the command and leaves the document as it was.
#include "geometry/ExtrudeCommand.h"

#include "core/ArgReader.h"
#include "core/GeometryObject.h"
#include "geometry/CommandSupport.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/References.h"
#include "sketch/SketchObject.h"

#include <algorithm>
#include <cmath>

namespace cad {

namespace {

constexpr const char* kOperationError = "'operation' must be \"new_body\", \"join\" or \"cut\".";
constexpr const char* kThinSideError = "'thin_side' must be \"inside\", \"outside\" or \"center\".";
constexpr const char* kExtentError =
    "'extent' must be \"one_side\", \"two_sides\" or \"symmetric\".";

// A word argument that must be one of a few; nothing when absent.

} // namespace

std::vector<ArgSpec> ExtrudeCommand::arguments() {
    using T = ArgType;
    return {
        {"sketch",
         T::String,
         true,
         "The profile, separated by ';': sketches (all their closed regions), single regions "
         "(\"Sketch1/Region(Arc1+Line1+Line2)\", named by the curves round them) or flat faces "
         "(\"Body1/Extrude1.end\").",
         {},
         "sketch"},
        {"distance",
         T::Length,
         true,
         "Signed distance (negative: against the sketch normal).",
         {},
         ""},
        {"operation", T::String, false, "Default new_body.", {"new_body", "join", "cut"}, ""},
        {"target",
         T::String,
         false,
         "Body to join or cut (default: the body the sketch sits on).",
         {},
         "body"},
        {"name", T::String, false, "Feature name (default ExtrudeN).", {}, ""},
        {"body", T::String, false, "New body's name (default BodyN).", {}, ""},
        {"thickness",
         T::Length,
         false,
         "Thin wall: a band this thick along the profile's edges (open curves too) instead of "
         "solid regions.",
         {},
         ""},
        {"thin_side",
         T::String,
         false,
         "Thin wall: inside the regions (default), outside, or centered on the curves.",
         {"inside", "outside", "center"},
         ""},
        {"extent",
         T::String,
         false,
         "One side (default: distance from the profile), two sides (distance one way, distance2 "
         "the other) or symmetric (distance in all, half each way).",
         {"one_side", "two_sides", "symmetric"},
         ""},
        {"distance2", T::Length, false, "Two sides: the distance the other way.", {}, ""},
    };
}

ExtrudeCommand::ExtrudeCommand(CommandRecord record)
    : Command(std::move(record)), feature_(std::make_unique<ExtrudeFeature>()) {}

Result<std::unique_ptr<Command>> ExtrudeCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<ExtrudeCommand> command(new ExtrudeCommand(record));
    ExtrudeFeature& f = *command->feature_;

    Result<std::string> sketch = reader.string("sketch");
    if (!sketch) return Error(sketch);
    f.profile = *sketch;
    Result<double> distance = reader.length("distance");
    if (!distance) return Error(distance);
    f.distance = *distance;

    auto operation = word(record, "operation", {"new_body", "join", "cut"}, kOperationError);
    if (!operation) return Error(operation);
    if (*operation) f.operation = *parseExtrudeOperation(**operation);

    Result<double> thickness = reader.length("thickness", 0.0);
    if (!thickness) return Error(thickness);
    if (*thickness < 0) return fail("extrude: 'thickness' can't be negative.");
    f.thickness = *thickness;

    auto side = word(record, "thin_side", {"inside", "outside", "center"}, kThinSideError);
    if (!side) return Error(side);
    if (*side) f.thinSide = **side;
    auto extent = word(record, "extent", {"one_side", "two_sides", "symmetric"}, kExtentError);
    if (!extent) return Error(extent);
    if (*extent) f.extent = **extent;

    Result<double> distance2 = reader.length("distance2", 0.0);
    if (!distance2) return Error(distance2);
    f.distance2 = *distance2;
    if (f.extent == "two_sides" && !(f.distance2 > 1e-7))
        return fail("extrude: two sides needs 'distance2', the distance the other way.");

    for (auto [arg, out] : {std::pair{"target", &command->targetName_}, std::pair{"name", &f.id},
                            std::pair{"body", &command->bodyName_}}) {
        Result<std::string> text = reader.string(arg, "");
        if (!text) return Error(text);
        *out = *text;
    }
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult ExtrudeCommand::execute(Document& document) {
    if (undone_.empty()) return firstRun(document);
    // Redo: the same objects with the same IDs, where they were.
    insert(document);
    auto* body = dynamic_cast<GeometryObject*>(
        document.findBySerial(newBody_ ? bodySerial_ : targetSerial_));
    auto* feature = dynamic_cast<ExtrudeFeature*>(document.findBySerial(featureSerial_));
    if (!body || !feature) return CommandResult::failure("The extrusion can't be made again.");
    (void)document.rebuildBody(*body);
    document.notifyChanged(*body);
    if (newBody_)
        return CommandResult::success("Created " + body->id + " with " + feature->id + ".");
    return CommandResult::success("Added " + feature->id + " to " + body->id + ".");
}

CommandResult ExtrudeCommand::firstRun(Document& document) {
    ExtrudeFeature& f = *feature_;
    std::vector<std::string> references = geometry::splitReferenceList(f.profile);
    if (references.size() == 1 && references.front().find('/') == std::string::npos &&
        !document.findByName(references.front()))
        return CommandResult::failure("No sketch named '" + f.profile + "' exists.");
    if (std::abs(f.distance) <= 1e-7)
        return CommandResult::failure("The extrusion distance must not be zero.");

    // The profile names objects by ID, so renaming them later breaks nothing.
    std::string profile;
    for (const std::string& reference : references) {
        std::string text = reference;
        std::string head = geometry::objectPart(reference);
        if (const DocumentObject* object = head.empty() ? nullptr : document.findByName(head))
            text = object->id + text.substr(std::min(text.find('/'), text.size()));
        profile += (profile.empty() ? "" : ";") + text;
    }

    GeometryObject* target = nullptr;
    newBody_ = f.operation == ExtrudeOperation::NewBody;
    if (!newBody_) {
        if (!targetName_.empty()) {
            target = document.findAs<GeometryObject>(targetName_);
            if (!target)
                return CommandResult::failure("No body named '" + targetName_ + "' exists.");
        }
        for (const std::string& reference : references) {
            if (target) break;
            const DocumentObject* object = document.findByName(geometry::objectPart(reference));
            if (auto* sketch = dynamic_cast<const SketchObject*>(object)) {
                std::string support = geometry::objectPart(sketch->support);
                target = support.empty() ? nullptr : document.findAs<GeometryObject>(support);
                break;
            }
            if (auto* body = dynamic_cast<const GeometryObject*>(object)) {
                target = document.findAs<GeometryObject>(body->id);
                break;
            }
        }
        if (!target)
            return CommandResult::failure(
                "Join and cut need a target body; this sketch isn't on a body.");
    }
    if (!f.id.empty() && nameTaken(document, f.id))
        return CommandResult::failure("An object named '" + f.id + "' already exists.");
    if (newBody_ && !bodyName_.empty() && nameTaken(document, bodyName_))
        return CommandResult::failure("An object named '" + bodyName_ + "' already exists.");
    if (badObjectName(f.id) || (newBody_ && badObjectName(bodyName_)))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    const std::map<std::string, int> counters = document.idCounters();
    auto feature = std::make_unique<ExtrudeFeature>(f);
    feature->profile = profile;
    feature->target = target ? target->id : std::string();
    if (feature->id.empty()) feature->id = document.nextId("Extrude");
    if (auto e = boundExpression(record_.find("distance"), document))
        feature->expressions["distance"] = *e;
    if (auto e = boundExpression(record_.find("distance2"), document))
        feature->expressions["distance2"] = *e;
    if (auto e = boundExpression(record_.find("thickness"), document))
        feature->expressions["thickness"] = *e;

    GeometryObject* body = target;
    if (newBody_) {
        auto made = std::make_unique<GeometryObject>();
        made->id = bodyName_.empty() ? document.nextId("Body") : bodyName_;
        made->features.push_back(feature->id);
        body = static_cast<GeometryObject*>(document.add(std::move(made)));
        bodySerial_ = body->serial;
    } else {
        addFeatureTo(document, *body, feature->id);
        targetSerial_ = body->serial;
    }
    auto* added = static_cast<ExtrudeFeature*>(document.add(std::move(feature)));
    featureSerial_ = added->serial;

    Result<void> rebuilt = document.rebuildBody(*body);
    if (!rebuilt && rebuilt.error().rfind(added->id + ": ", 0) == 0) {
        std::string error = added->error;
        // The body kept the shape it had before the feature; only the lists change back.
        remove(document);
        undone_.clear();
        document.setIdCounters(counters);
        return CommandResult::failure(error);
    }
    document.notifyChanged(*body);
    std::string message = newBody_ ? "Created " + body->id + " with " + added->id + "."
                                   : "Added " + added->id + " to " + body->id + ".";
    if (!rebuilt) message += " Now failing: " + rebuilt.error();
    return CommandResult::success(message);
}

void ExtrudeCommand::remove(Document& document) {
    if (!newBody_) {
        auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(targetSerial_));
        auto* feature = document.findBySerial(featureSerial_);
        if (body && feature) std::erase(body->features, feature->id);
    }
    undone_.clear();
    undone_.push_back(document.take(featureSerial_));
    if (newBody_) undone_.push_back(document.take(bodySerial_));
}

void ExtrudeCommand::insert(Document& document) {
    // Taken feature first, then the body: put back in the reverse order.
    for (auto it = undone_.rbegin(); it != undone_.rend(); ++it)
        if (it->object) document.add(std::move(it->object), it->index);
    undone_.clear();
    if (!newBody_) {
        auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(targetSerial_));
        auto* feature = document.findBySerial(featureSerial_);
        if (body && feature) addFeatureTo(document, *body, feature->id);
    }
}

void ExtrudeCommand::undo(Document& document) {
    remove(document);
    if (!newBody_) {
        if (auto* body = dynamic_cast<GeometryObject*>(document.findBySerial(targetSerial_))) {
            (void)document.rebuildBody(*body);
            document.notifyChanged(*body);
        }
    }
}

} // namespace cad

// add_plane and edit_plane: the arguments in their documented order, the plane
// computed before anything changes, and undo by putting the old plane back.
#include "geometry/planes/PlaneCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "geometry/planes/PlaneArguments.h"
#include "geometry/planes/PlaneGeometry.h"

#include <tuple>

namespace cad {

namespace {

constexpr const char* kNoReferences =
    ": give the references it's defined from, e.g. \"XY\" or \"Body1/Extrude1.end\".";

} // namespace

std::vector<ArgSpec> PlaneCommand::arguments(Mode mode) {
    using T = ArgType;
    std::vector<ArgSpec> declared;
    if (mode == Mode::Edit)
        declared.push_back({"plane", T::String, true, "e.g. \"Plane1\".", {}, "plane"});
    declared.insert(
        declared.end(),
        {
            {"kind", T::String, false,
             "offset: from a plane or flat face by distance. angle: about a line (references[0]) "
             "by angle degrees from a plane (references[1], optional). midplane: midway between "
             "/ bisecting two planes or faces. three_points. through: a line and a second line "
             "or point. tangent: touching a cylinder or sphere face at angle degrees or at a "
             "point (references[1]). normal: perpendicular to a curve at position 0..1 or a "
             "point. Default offset.",
             planeKinds(), ""},
            {"references",
             T::String,
             mode == Mode::Add,
             "What it's defined from, separated by ';'.",
             {},
             ""},
            {"distance",
             T::Length,
             false,
             "offset: along the reference's normal (negative: the other side).",
             {},
             ""},
            {"angle", T::Angle, false, "Degrees (angle, tangent).", {}, ""},
            {"position", T::Number, false, "normal: 0 (start) to 1 (end) along the curve.", {}, ""},
            {"flip", T::Boolean, false, "Reverse the normal.", {}, ""},
            {"size",
             T::Length,
             false,
             "Half-width as drawn (default: fits what it's defined from).",
             {},
             ""},
        });
    if (mode == Mode::Add)
        declared.push_back({"name", T::Text, false, "Plane name (default PlaneN).", {}, ""});
    return declared;
}

Result<std::unique_ptr<Command>> PlaneCommand::create(Mode mode, const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments(mode)); !ok) return Error(ok);
    std::unique_ptr<PlaneCommand> command(new PlaneCommand(mode, record));
    PlaneCommand& c = *command;

    if (mode == Mode::Edit) {
        Result<std::string> plane = reader.object("plane");
        if (!plane) return Error(plane);
        c.name_ = *plane;
    }
    if (reader.has("kind")) {
        Result<std::string> kind = reader.choice("kind", planeKinds());
        if (!kind) return Error(kind);
        c.kind_ = *kind;
    }
    auto references = optionalReferences(record, "references", kNoReferences);
    if (!references) return Error(references);
    c.references_ = *references;
    if (mode == Mode::Add && !c.references_) return fail(record.name + kNoReferences);

    for (auto [key, out, kind] : {std::tuple{"distance", &c.distance_, ValueKind::Length},
                                  std::tuple{"angle", &c.angle_, ValueKind::Number},
                                  std::tuple{"position", &c.position_, ValueKind::Number},
                                  std::tuple{"size", &c.size_, ValueKind::Length}}) {
        auto value = optionalValue(record, key, kind);
        if (!value) return Error(value);
        *out = *value;
    }
    if (c.size_ && !(*c.size_ > 0))
        return fail(record.name + ": 'size' must be greater than zero.");
    if (c.position_ && !(*c.position_ >= 0 && *c.position_ <= 1))
        return fail(record.name + ": 'position' must be from 0 to 1.");
    auto flip = optionalFlag(record, "flip");
    if (!flip) return Error(flip);
    c.flip_ = *flip;

    if (mode == Mode::Add) {
        Result<std::string> name = reader.string("name", "");
        if (!name) return Error(name);
        c.name_ = *name;
    } else if (!c.kind_ && !c.references_ && !c.distance_ && !c.angle_ && !c.position_ &&
               !c.size_ && !c.flip_) {
        return fail(record.name + ": nothing to change.");
    }
    return std::unique_ptr<Command>(std::move(command));
}

PlaneDefinition PlaneCommand::changed(const Document& document, PlaneDefinition d) {
    if (kind_) d.kind = *kind_;
    if (references_) {
        d.references.clear();
        for (const std::string& reference : *references_)
            d.references.push_back(referenceById(document, reference));
        // What is recorded and redone names objects by ID.
        record_.set("references", joinReferences(d.references));
    }
    if (distance_) d.distance = *distance_;
    if (angle_) d.angle = *angle_;
    if (position_) d.position = *position_;
    if (size_) d.size = *size_;
    if (flip_) d.flip = *flip_;
    return d;
}

CommandResult PlaneCommand::execute(Document& document) {
    return mode_ == Mode::Add ? add(document) : edit(document);
}

CommandResult PlaneCommand::add(Document& document) {
    if (DocumentObject* again = added_.redo(document))
        return CommandResult::success("Created " + again->displayName() + ".");
    if (std::string problem = nameProblem(document, name_); !problem.empty())
        return CommandResult::failure(problem);

    const PlaneDefinition definition = changed(document, PlaneDefinition{});
    if (std::optional<std::string> problem = geometry::definitionProblem(definition))
        return CommandResult::failure(record_.name + ": " + *problem);
    Result<geometry::PlacedPlane> placed = geometry::computePlane(document, definition);
    if (!placed) return CommandResult::failure(placed.error());

    auto plane = std::make_unique<PlaneObject>();
    plane->id = document.nextId("Plane");
    plane->label = name_;
    plane->definition = definition;
    plane->placement = placed->placement;
    plane->halfWidth = placed->halfWidth;
    plane->placed = true;
    DocumentObject* added = added_.add(document, std::move(plane));
    return CommandResult::success("Created " + added->displayName() + ".");
}

CommandResult PlaneCommand::edit(Document& document) {
    auto* plane = static_cast<PlaneObject*>(document.findMatching(
        name_, [](const DocumentObject& o) { return dynamic_cast<const PlaneObject*>(&o); }));
    if (!plane) return CommandResult::failure("No reference plane named '" + name_ + "'.");

    const PlaneDefinition definition = changed(document, plane->definition);
    if (std::optional<std::string> problem = geometry::definitionProblem(definition))
        return CommandResult::failure(record_.name + ": " + *problem);
    if (std::string problem = circularProblem(document, plane->id, definition.references);
        !problem.empty())
        return CommandResult::failure(problem);
    Result<geometry::PlacedPlane> placed = geometry::computePlane(document, definition);
    if (!placed) return CommandResult::failure(placed.error());

    before_ = *plane;
    editedSerial_ = plane->serial;
    plane->definition = definition;
    plane->placement = placed->placement;
    plane->halfWidth = placed->halfWidth;
    plane->placed = true;
    plane->error.clear();
    // Sketches on the plane follow it, and what is built from them.
    document.notifyChanged(*plane);
    return CommandResult::success("Changed " + plane->id + ".");
}

void PlaneCommand::undo(Document& document) {
    if (mode_ == Mode::Add) {
        added_.undo(document);
        return;
    }
    auto* plane = dynamic_cast<PlaneObject*>(document.findBySerial(editedSerial_));
    if (!plane || !before_) return;
    *plane = *before_;
    document.notifyChanged(*plane);
}

} // namespace cad

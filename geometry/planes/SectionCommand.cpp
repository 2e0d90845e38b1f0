// add_section and edit_section: the arguments, the cut computed before anything
// changes, and undo by taking the section out or putting the old one back.
#include "geometry/planes/SectionCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "geometry/planes/PlaneArguments.h"

#include <tuple>

namespace cad {

namespace {

constexpr const char* kNoPlane =
    ": give the plane or flat face to cut along, e.g. \"XZ\" or \"Body1/Extrude1.end\".";

} // namespace

std::vector<ArgSpec> SectionCommand::arguments(Mode mode) {
    using T = ArgType;
    std::vector<ArgSpec> declared;
    if (mode == Mode::Edit)
        declared.push_back({"section", T::String, true, "e.g. \"Section1\".", {}, "section"});
    declared.insert(declared.end(),
                 {
                     {"references",
                      T::String,
                      mode == Mode::Add,
                      "The plane or flat face to cut along, e.g. \"XZ\", \"Plane1\" or "
                      "\"Body1/Extrude1.end\".",
                      {},
                      ""},
                     {"distance",
                      T::Length,
                      false,
                      "Moves the cut along the reference's normal (negative: the other way).",
                      {},
                      ""},
                     {"tilt",
                      T::Angle,
                      false,
                      "Degrees the cut leans about the reference plane's X direction.",
                      {},
                      ""},
                     {"turn",
                      T::Angle,
                      false,
                      "Degrees the cut leans about the reference plane's Y direction.",
                      {},
                      ""},
                     {"flip", T::Boolean, false, "Cut away the other side.", {}, ""},
                 });
    if (mode == Mode::Add)
        declared.push_back({"name", T::Text, false, "Section name (default SectionN).", {}, ""});
    return declared;
}

Result<std::unique_ptr<Command>> SectionCommand::create(Mode mode, const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments(mode)); !ok) return Error(ok);
    std::unique_ptr<SectionCommand> command(new SectionCommand(mode, record));
    SectionCommand& c = *command;

    if (mode == Mode::Edit) {
        Result<std::string> section = reader.object("section");
        if (!section) return Error(section);
        c.name_ = *section;
    }
    auto references = optionalReferences(record, "references", kNoPlane);
    if (!references) return Error(references);
    c.references_ = *references;
    if (mode == Mode::Add && !c.references_) return fail(record.name + kNoPlane);

    for (auto [key, out, kind] : {std::tuple{"distance", &c.distance_, ValueKind::Length},
                                  std::tuple{"tilt", &c.tilt_, ValueKind::Number},
                                  std::tuple{"turn", &c.turn_, ValueKind::Number}}) {
        auto value = optionalValue(record, key, kind);
        if (!value) return Error(value);
        *out = *value;
    }
    auto flip = optionalFlag(record, "flip");
    if (!flip) return Error(flip);
    c.flip_ = *flip;

    if (mode == Mode::Add) {
        Result<std::string> name = reader.string("name", "");
        if (!name) return Error(name);
        c.name_ = *name;
    } else if (!c.references_ && !c.distance_ && !c.tilt_ && !c.turn_ && !c.flip_) {
        return fail(record.name + ": nothing to change.");
    }
    return std::unique_ptr<Command>(std::move(command));
}

SectionDefinition SectionCommand::changed(const Document& document, SectionDefinition d) {
    if (references_) {
        d.references.clear();
        for (const std::string& reference : *references_)
            d.references.push_back(referenceById(document, reference));
        record_.set("references", joinReferences(d.references));
    }
    if (distance_) d.distance = *distance_;
    if (tilt_) d.tilt = *tilt_;
    if (turn_) d.turn = *turn_;
    if (flip_) d.flip = *flip_;
    return d;
}

CommandResult SectionCommand::execute(Document& document) {
    return mode_ == Mode::Add ? add(document) : edit(document);
}

CommandResult SectionCommand::add(Document& document) {
    if (DocumentObject* again = added_.redo(document))
        return CommandResult::success("Created " + again->displayName() + ".");
    if (std::string problem = nameProblem(document, name_); !problem.empty())
        return CommandResult::failure(problem);

    const SectionDefinition definition = changed(document, SectionDefinition{});
    Result<gp_Ax3> cut = geometry::computeSection(document, definition);
    if (!cut) return CommandResult::failure(cut.error());

    auto section = std::make_unique<SectionObject>();
    section->id = document.nextId("Section");
    section->label = name_;
    section->definition = definition;
    section->placement = *cut;
    section->placed = true;
    DocumentObject* added = added_.add(document, std::move(section));
    return CommandResult::success("Created " + added->displayName() + ".");
}

CommandResult SectionCommand::edit(Document& document) {
    auto* section = static_cast<SectionObject*>(document.findMatching(
        name_, [](const DocumentObject& o) { return dynamic_cast<const SectionObject*>(&o); }));
    if (!section) return CommandResult::failure("No section named '" + name_ + "'.");

    const SectionDefinition definition = changed(document, section->definition);
    Result<gp_Ax3> cut = geometry::computeSection(document, definition);
    if (!cut) return CommandResult::failure(cut.error());

    before_ = *section;
    editedSerial_ = section->serial;
    section->definition = definition;
    section->placement = *cut;
    section->placed = true;
    section->error.clear();
    document.notifyChanged(*section);
    return CommandResult::success("Changed " + section->id + ".");
}

void SectionCommand::undo(Document& document) {
    if (mode_ == Mode::Add) {
        added_.undo(document);
        return;
    }
    auto* section = dynamic_cast<SectionObject*>(document.findBySerial(editedSerial_));
    if (!section || !before_) return;
    *section = *before_;
    document.notifyChanged(*section);
}

} // namespace cad

// set_appearance: finds every target first, so a wrong one changes nothing, then
// paints faces by their persistent names and whole objects (clearing the face
// appearances they had), keeping the looks before for undo.
#include "geometry/materials/SetAppearanceCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/References.h"
#include "geometry/materials/Appearance.h"

#include <algorithm>

namespace cad {

namespace {

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + (n == 1 ? one : many);
}

bool hasFace(const GeometryObject& body, std::string_view name) {
    const std::vector<std::string>& faces = body.shape.index().faceNames;
    return !body.shape.isNull() && std::find(faces.begin(), faces.end(), name) != faces.end();
}

} // namespace

std::vector<ArgSpec> SetAppearanceCommand::arguments() {
    return {
        {"targets",
         ArgType::String,
         true,
         "Separated by ';': faces (\"Body1/Extrude1.end\", as get_body names them), bodies "
         "(\"Body1\") or components (\"Component1\").",
         {},
         ""},
        {"appearance",
         ArgType::String,
         true,
         "An appearance id (\"anodized_black\"), or a color \"#rrggbb\" with an optional finish "
         "(\"#3a7bd5/glossy\": polished, satin, glossy, matte, rubber, glass); empty takes "
         "appearances off.",
         {},
         ""},
    };
}

Result<std::unique_ptr<Command>> SetAppearanceCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<SetAppearanceCommand> command(new SetAppearanceCommand(record));
    Result<std::string> targets = reader.string("targets", "");
    if (!targets) return Error(targets);
    command->targets_ = geometry::splitReferenceList(*targets);
    if (command->targets_.empty())
        return fail(record.name + ": give the faces, bodies or components ('targets').");
    if (!reader.has("appearance"))
        return fail(record.name + ": missing string argument 'appearance' (empty takes it off).");
    Result<std::string> appearance = reader.string("appearance");
    if (!appearance) return Error(appearance);
    if (!trimmed(*appearance).empty()) {
        Result<Appearance> look = readAppearance(*appearance);
        if (!look) return Error(look);
        command->appearance_ = look->text;
    }
    return std::unique_ptr<Command>(std::move(command));
}

Result<SetAppearanceCommand::Target>
SetAppearanceCommand::findTarget(const Document& document, const std::string& text) const {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) {
        Result<DocumentObject*> whole = findBodyOrComponent(document, text);
        if (!whole) return Error(whole);
        return Target{*whole, {}};
    }
    const std::string owner(trimmed(std::string_view(text).substr(0, slash)));
    const std::string face(trimmed(std::string_view(text).substr(slash + 1)));
    auto* body = dynamic_cast<GeometryObject*>(document.findByName(owner));
    if (!body)
        return fail("'" + owner +
                    "' is not a body (a linked part's faces take its component's appearance).");
    if (!hasFace(*body, face))
        return fail("'" + face + "' is not a face of " + body->id + " (get_body lists its faces).");
    return Target{body, face};
}

CommandResult SetAppearanceCommand::execute(Document& document) {
    std::vector<Target> found;
    for (const std::string& text : targets_) {
        Result<Target> target = findTarget(document, text);
        if (!target) return CommandResult::failure(target.error());
        const bool again = std::any_of(found.begin(), found.end(), [&](const Target& t) {
            return t.object == target->object && t.face == target->face;
        });
        if (!again) found.push_back(*target);
    }

    saved_.clear();
    std::vector<DocumentObject*> changed;
    std::size_t faces = 0, wholes = 0;
    for (const Target& target : found) {
        DocumentObject& object = *target.object;
        saved_.remember(object);
        if (target.face.empty()) {
            // Painting the whole covers every face: the faces' own looks go.
            object.appearance = appearance_;
            object.faceAppearances.clear();
            ++wholes;
        } else if (appearance_.empty()) {
            object.faceAppearances.erase(target.face);
            ++faces;
        } else {
            object.faceAppearances[target.face] = appearance_;
            ++faces;
        }
        if (std::find(changed.begin(), changed.end(), &object) == changed.end())
            changed.push_back(&object);
    }
    notifyLooksChanged(document, changed);

    std::string what;
    if (faces > 0) what = counted(faces, " face", " faces");
    if (wholes > 0)
        what += (what.empty() ? "" : " and ") +
                counted(wholes, " body or component", " bodies or components");
    if (appearance_.empty()) return CommandResult::success("Took the appearance off " + what + ".");
    return CommandResult::success("Painted " + what + ".");
}

void SetAppearanceCommand::undo(Document& document) { saved_.restore(document); }

} // namespace cad

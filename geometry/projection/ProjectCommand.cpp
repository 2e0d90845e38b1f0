// Projecting references onto a sketch: every piece is projected along the normal;
// pieces already projected from the same source, and edges seen end-on, are left
// out. The new entities carry their source and the construction flag asked for.
#include "geometry/projection/ProjectCommand.h"

#include "core/ArgReader.h"
#include "geometry/References.h"
#include "geometry/projection/ProjectShape.h"
#include "geometry/projection/ProjectionSources.h"

#include <set>

namespace cad {

namespace {

constexpr const char* kName = "project";

} // namespace

std::vector<ArgSpec> ProjectCommand::arguments() {
    using T = ArgType;
    return {{"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"},
            {"references",
             T::String,
             true,
             "What to project, separated by ';', e.g. \"Body1/Extrude1.end; Sketch2/Circle1\".",
             {},
             ""},
            {"construction",
             T::Boolean,
             false,
             "Make it construction (reference) geometry: drawn dashed, not used for profiles or "
             "exports (default false).",
             {},
             ""}};
}

Result<std::unique_ptr<Command>> ProjectCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    Result<std::string> sketch = reader.object("sketch");
    if (!sketch) return Error(sketch);
    const auto* text = std::get_if<std::string>(record.find("references"));
    std::vector<std::string> references =
        text ? geometry::splitReferenceList(*text) : std::vector<std::string>{};
    if (references.empty())
        return fail(std::string(kName) + ": give the references to project, separated by ';'.");
    Result<bool> construction = reader.boolean("construction", false);
    if (!construction) return Error(construction);
    return std::unique_ptr<Command>(
        std::make_unique<ProjectCommand>(record, *sketch, std::move(references), *construction));
}

Result<std::string> ProjectCommand::change(const Document& document, const SketchObject& sketch,
                                           Lists& lists) {
    std::set<std::string> projected; // sources already in the sketch
    for (const SketchEntity& e : lists.entities)
        if (e.isProjected()) projected.insert(e.source);

    std::vector<std::string> made;
    int considered = 0;
    std::string_view onlySkip; // why the one piece considered made nothing
    for (const std::string& reference : references_) {
        Result<geometry::SourcePieces> pieces = geometry::sourcePieces(document, sketch, reference);
        if (!pieces) return Error(pieces);
        if (!pieces->found) return fail("'" + reference + "' can't be projected.");
        std::set<std::string> newSources;
        for (const geometry::SourcePiece& piece : pieces->pieces) {
            ++considered;
            if (projected.count(piece.source)) continue;
            Result<geometry::ShapeProjection> result =
                geometry::projectShape(sketch.frame(), piece.shape);
            if (!result) return Error(result);
            if (result->outcome != geometry::ShapeProjection::Made) {
                onlySkip = geometry::outcomeSentence(result->outcome);
                continue;
            }
            SketchEntity entity;
            entity.geometry = result->geometry;
            entity.construction = construction_;
            entity.source = piece.source;
            entity.id = nextEntityId(lists.entities, entityKindName(entity));
            if (Result<void> valid = validateEntity(entity); !valid)
                return fail("'" + reference + "' can't be projected: " + valid.error());
            made.push_back(entity.id);
            newSources.insert(piece.source);
            lists.entities.push_back(std::move(entity));
        }
        projected.insert(newSources.begin(), newSources.end());
    }
    if (considered == 0) return fail("Nothing to project.");
    if (made.empty()) {
        if (considered == 1 && !onlySkip.empty()) return fail(std::string(onlySkip));
        return fail("Nothing new to project (already projected, or seen end-on).");
    }
    std::string list;
    for (const std::string& id : made) list += (list.empty() ? "" : ", ") + id;
    return "Projected " + std::to_string(made.size()) +
           (made.size() == 1 ? " entity" : " entities") + " onto " + sketch.id + ": " + list + ".";
}

} // namespace cad

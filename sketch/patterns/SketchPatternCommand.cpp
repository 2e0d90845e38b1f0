// Making a sketch pattern: the selection is copy 0 and stays; every other copy is
// the selection moved rigidly. Copies are free geometry: the constraints among the
// selection are not repeated on them, so editing the pattern can remake them freely.
#include "sketch/patterns/SketchPatternCommand.h"

#include "core/ArgReader.h"
#include "sketch/SketchIds.h"
#include "sketch/patterns/PatternLayout.h"

#include <algorithm>
#include <map>
#include <set>

namespace cad {

namespace {

// More than this many new entities at once is almost certainly a slip.
constexpr std::size_t kMostNewEntities = 100000;

int totalCopies(const PatternRecipe& recipe) {
    return recipe.kind == PatternKind::Rectangular ? recipe.count * recipe.count2 : recipe.count;
}

} // namespace

Result<std::unique_ptr<Command>> SketchPatternCommand::create(PatternKind kind,
                                                              const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(patternArguments(kind)); !ok) return Error(ok);
    Result<std::string> sketch = reader.object("sketch");
    if (!sketch) return Error(sketch);
    Result<PatternRecipe> recipe = readPatternRecipe(kind, record);
    if (!recipe) return Error(recipe);
    return std::unique_ptr<Command>(
        std::make_unique<SketchPatternCommand>(record, *sketch, std::move(recipe).value()));
}

Result<std::vector<std::string>> makePatternCopies(const PatternRecipe& recipe,
                                                   std::vector<SketchEntity>& entities) {
    std::vector<SketchEntity> selection;
    for (const std::string& id : recipe.entities) {
        const SketchEntity* entity = findEntity(entities, id);
        if (!entity) return fail("No entity named '" + id + "'.");
        const bool twice = std::any_of(selection.begin(), selection.end(),
                                       [&](const SketchEntity& e) { return e.id == id; });
        if (!twice) selection.push_back(*entity);
    }
    if (selection.empty()) return fail("Choose what to pattern.");

    const std::size_t newEntities =
        static_cast<std::size_t>(totalCopies(recipe) - 1) * selection.size();
    if (newEntities > kMostNewEntities)
        return fail("That pattern would make " + std::to_string(newEntities) +
                    " entities; at most " + std::to_string(kMostNewEntities) + " at a time.");
    Result<std::vector<RigidMotion>> motions = patternMotions(recipe, entities);
    if (!motions) return Error(motions);

    std::vector<std::string> made;
    NewIds ids;
    for (const SketchEntity& e : entities) ids.use(e.id);
    for (const RigidMotion& motion : *motions) {
        for (const SketchEntity& original : selection) {
            Result<SketchGeometry> geometry = moveGeometry(original.geometry, motion);
            if (!geometry) return geometry.withPrefix(original.id + ": ");
            SketchEntity copy;
            copy.geometry = std::move(geometry).value();
            copy.construction = original.construction;
            // A copy is plain geometry: in no group, following nothing.
            copy.id = ids.next(entityKindName(copy));
            if (Result<void> valid = validateEntity(copy); !valid)
                return fail("A copy of " + original.id + " would be invalid: " + valid.error());
            made.push_back(copy.id);
            entities.push_back(std::move(copy));
        }
    }
    return made;
}

std::string patternSummary(const PatternRecipe& recipe) {
    std::vector<std::string> distinct;
    for (const std::string& id : recipe.entities)
        if (std::find(distinct.begin(), distinct.end(), id) == distinct.end())
            distinct.push_back(id);
    const std::size_t n = distinct.size();
    return std::to_string(n) + (n == 1 ? " entity" : " entities") + " into " +
           std::to_string(totalCopies(recipe)) + " copies";
}

std::string nextPatternId(const std::vector<SketchPattern>& patterns) {
    for (int n = 1;; ++n) {
        std::string id = "Pattern" + std::to_string(n);
        if (std::none_of(patterns.begin(), patterns.end(),
                         [&](const SketchPattern& p) { return p.id == id; }))
            return id;
    }
}

Result<std::string> SketchPatternCommand::change(const Document&, const SketchObject&,
                                                 Lists& lists) {
    Result<std::vector<std::string>> copies = makePatternCopies(spec_, lists.entities);
    if (!copies) return Error(copies);
    lists.patterns.push_back({nextPatternId(lists.patterns), record_, std::move(copies).value()});
    return "Patterned " + patternSummary(spec_) + ".";
}

} // namespace cad

// Bringing projected entities up to date. The entities that follow one source take
// what it projects to now, in order; an entity whose source is gone, or no longer
// projects to its kind, stays where it was and the sketch says why.
#include "geometry/projection/ProjectionRefresher.h"

#include "geometry/projection/ProjectShape.h"
#include "geometry/projection/ProjectionSources.h"
#include "sketch/SketchObject.h"

#include <map>
#include <memory>

namespace cad::geometry {

namespace {

ProjectionProblem cantFollow(const SketchEntity& e, std::string_view why) {
    return {e.id, e.source, e.id + " can't follow '" + e.source + "': " + std::string(why)};
}

// "a line", "an arc": the kind as a sentence names it.
std::string aKind(const SketchEntity& e) {
    std::string word(entityKindName(e));
    word[0] = static_cast<char>(word[0] - 'A' + 'a');
    return (word[0] == 'a' ? "an " : "a ") + word;
}

// What the source projects to now, in order; `why` says why a piece made nothing.
struct Projected {
    std::vector<SketchGeometry> made;
    std::string why;
};

Result<Projected> projectSource(const Document& document, const SketchObject& sketch,
                                const std::string& source, bool& gone) {
    Result<SourcePieces> pieces = sourcePieces(document, sketch, source);
    if (!pieces) return Error(pieces);
    gone = !pieces->found;
    Projected out;
    for (const SourcePiece& piece : pieces->pieces) {
        if (piece.source != source) continue;
        Result<ShapeProjection> result = projectShape(sketch.frame(), piece.shape);
        if (!result) return Error(result);
        if (result->outcome == ShapeProjection::Made)
            out.made.push_back(result->geometry);
        else
            out.why = outcomeSentence(result->outcome);
    }
    return out;
}

} // namespace

SketchProjectionHook::Refresh ProjectionRefresher::refresh(const Document& document,
                                                           const SketchObject& sketch) const {
    Refresh out;
    out.entities = sketch.entities;
    // The entities following each source, in entity order.
    std::vector<std::string> order;
    std::map<std::string, std::vector<std::size_t>> following;
    for (std::size_t i = 0; i < out.entities.size(); ++i) {
        const SketchEntity& e = out.entities[i];
        if (!e.isProjected()) continue;
        if (!following.count(e.source)) order.push_back(e.source);
        following[e.source].push_back(i);
    }

    for (const std::string& source : order) {
        const std::vector<std::size_t>& indices = following[source];
        bool gone = false;
        Result<Projected> projected = projectSource(document, sketch, source, gone);
        for (std::size_t k = 0; k < indices.size(); ++k) {
            SketchEntity& entity = out.entities[indices[k]];
            if (!projected) {
                out.problems.push_back(cantFollow(entity, projected.error()));
            } else if (gone) {
                out.problems.push_back({entity.id, source,
                                        entity.id + "'s source '" + source +
                                            "' is gone; it stays where it was (delete it to "
                                            "unlink)."});
            } else if (k >= projected->made.size()) {
                out.problems.push_back(cantFollow(entity, projected->why.empty()
                                                              ? "it projects to fewer curves now."
                                                              : projected->why));
            } else {
                SketchEntity moved = entity;
                moved.geometry = projected->made[k];
                if (moved.kind() != entity.kind()) {
                    out.problems.push_back(cantFollow(entity, "it projects to " + aKind(moved) +
                                                                  " now, not " + aKind(entity) +
                                                                  "."));
                } else if (Result<void> valid = validateEntity(moved); !valid) {
                    out.problems.push_back(cantFollow(entity, valid.error()));
                } else {
                    entity = std::move(moved);
                }
            }
        }
    }
    return out;
}

void installProjectionRefresher() {
    installSketchProjectionHook(std::make_shared<ProjectionRefresher>());
}

} // namespace cad::geometry

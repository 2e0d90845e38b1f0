// How a sketch's projected entities follow their sources on recompute. Sources are
// body edges, faces and vertices and other sketches' geometry, which the geometry
// layer resolves; it installs the hook here, as it does the plane resolver.
#pragma once

#include "sketch/SketchEntity.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class Document;
class SketchObject;

// Why a projected entity can't follow its source (it then stays where it was), or,
// with no entity, why the sketch's constraints can't follow its projections.
struct ProjectionProblem {
    std::string entity; // the entity's ID; empty for the sketch as a whole
    std::string source;
    std::string sentence; // names the entity and the source
    bool operator==(const ProjectionProblem&) const = default;
};

class SketchProjectionHook {
public:
    struct Refresh {
        // The sketch's entities in their order, each projected one rebuilt from its
        // source on the sketch's current plane; the others as they were.
        std::vector<SketchEntity> entities;
        // One for each projected entity that can't follow its source.
        std::vector<ProjectionProblem> problems;
    };

    virtual ~SketchProjectionHook() = default;
    virtual Refresh refresh(const Document& document, const SketchObject& sketch) const = 0;
};

// Installs the process-wide hook (null removes it). Without one, projected entities
// keep where they were last put.
void installSketchProjectionHook(std::shared_ptr<const SketchProjectionHook> hook);
const SketchProjectionHook* sketchProjectionHook();

} // namespace cad

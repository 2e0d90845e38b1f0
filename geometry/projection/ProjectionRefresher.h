// The geometry layer's side of projected sketch geometry: on every recompute of a
// sketch, each projected entity is projected again from its source.
#pragma once

#include "sketch/SketchProjectionHook.h"

namespace cad::geometry {

class ProjectionRefresher : public SketchProjectionHook {
public:
    Refresh refresh(const Document& document, const SketchObject& sketch) const override;
};

// Installs a ProjectionRefresher as the sketches' projection hook.
void installProjectionRefresher();

} // namespace cad::geometry

// How the view marks a body's cosmetic threads, which leave the shape as it is: a
// helix at the thread's major radius over its length, closed by a ring at each end.
#pragma once

#include "geometry/holes/CosmeticThreads.h"

#include <AIS_Shape.hxx>
#include <TopoDS_Shape.hxx>

#include <vector>

namespace cad::ui {

// The marks of these threads as wires; null when there are none. A long fine thread
// draws at most kMaxThreadTurns turns, stretched over its length.
inline constexpr int kMaxThreadTurns = 60;
TopoDS_Shape threadMarks(const std::vector<CosmeticThread>& threads);

// The marks drawn as thin lines that picking passes through. Threads inside holes
// sit in the material, so they are drawn over the body as a drawing shows hidden
// threads; threads outside lie on the face.
Handle(AIS_Shape) makeThreadPresentation(const TopoDS_Shape& marks, bool internal);

} // namespace cad::ui

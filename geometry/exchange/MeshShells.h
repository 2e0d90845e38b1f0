// Shells built straight from a mesh whose triangles share their corners: triangles
// wound against their neighbours are turned, then every edge that joins exactly
// two triangles running along it in opposite directions is one shared edge, so the
// topology is known without any search. Sewing would find the same shells, only
// far more slowly; it is left only the edges that do not pair that way.
#pragma once

#include "geometry/exchange/TrianglesToSolid.h"

#include <TopoDS_Shell.hxx>

#include <array>
#include <vector>

namespace cad::exchange {

struct MeshShell {
    TopoDS_Shell shell;
    bool closed = true; // every edge of it shared by two of its faces
    double volume = 0;  // the volume it encloses when closed, negative when wound inside out
    // Two neighbouring triangles lie in one plane (so faces may be merged); when
    // false, no merging can change the shell.
    bool coplanarNeighbours = false;
};

struct MeshShells {
    std::vector<MeshShell> shells; // one per piece joined by shared edges
    // The edges not shared by exactly two triangles wound against each other, once
    // for each triangle using them: each is that triangle's own, for sewing to join.
    // With none, every shell is closed and consistently wound.
    std::vector<std::array<gp_Pnt, 2>> unpaired;
};

// The shells of `triangles` (every one usable), faces wound as the triangles are
// once their windings agree.
MeshShells meshShells(const std::vector<Triangle>& triangles);

} // namespace cad::exchange

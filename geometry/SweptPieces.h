// Solids swept from the faces of one profile, joined into one result: pieces that
// touch are fused into one solid, islands stay separate solids of one compound.
#pragma once

#include "core/NamedShape.h"

#include <TopoDS_Shape.hxx>

#include <vector>

namespace cad::geometry {

// One profile face swept into a solid, with the names of its faces.
struct SweptPiece {
    TopoDS_Shape solid;
    std::vector<NamingEntry> entries;
};

// One piece as it is; several in one compound, fused into one solid when any two
// touch (a fuse the kernel refuses keeps them separate). Names are carried.
NamedShape joinTouchingPieces(std::vector<SweptPiece> pieces);

} // namespace cad::geometry

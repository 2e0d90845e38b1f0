// Laying a bent sheet flat: from a fixed flat face, walk the sheet's face on that
// side wall to bend to wall, lay each bend flat as a strip its bend length long and
// turn the walls beyond into the fixed face's plane, then join the pieces into one
// blank the sheet's thickness. What each wall and bend became is kept, so a flat
// pattern can draw the bend lines and work done flat can be carried back.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/sheet/flat/BendStrip.h"
#include "geometry/sheet/metal/SheetRules.h"

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>
#include <gp_Trsf.hxx>

#include <string>
#include <vector>

namespace cad::flat {

struct UnfoldOptions {
    // The fixed face's final name, with or without "<body>/" before it; empty: the
    // largest flat face.
    std::string fixedFace;
    sheet::SheetRules rules;      // K-factor and bend table; the thickness when given
    bool measureThickness = true; // false: rules.thickness is the sheet's thickness
};

// A wall of the laid side: its face on the part and laid flat, and the move between.
struct LaidWall {
    TopoDS_Face bent;
    TopoDS_Face flat;
    gp_Trsf toFlat;
};

struct Unfolding {
    // The fixed face's plane: on the face, its main direction the face's outward
    // normal, its X direction the face's own.
    gp_Ax3 plane;
    std::string fixedName;  // the fixed face's final name (may be empty)
    std::string acrossName; // the name of the face across the thickness from it
    double thickness = 0;
    sheet::SheetRules rules; // as used, thickness included
    std::vector<LaidWall> walls;
    std::vector<LaidBend> bends; // in the order the walk met them
    // One solid: the fixed face where it was, the rest laid in its plane, the
    // thickness behind it. Without bends, the part itself.
    TopoDS_Shape blank;
};

// The part laid flat. Refuses, each in its own sentence: no solid, no flat face (or
// the fixed one gone), no face across from it, a face running smoothly on from the
// sheet that is curved but neither a cylinder nor a cone, bends it can't lay flat
// and pieces that don't join. Curved faces elsewhere (round holes, engraved text)
// don't matter.
Result<Unfolding> unfoldSheet(const geometry::NamedShape& part, const UnfoldOptions& options);

// "Body1/Flange1.start" and "Flange1.start" both name the face "Flange1.start".
std::string faceNameOf(const std::string& reference);

} // namespace cad::flat

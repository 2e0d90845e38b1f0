// The straight outside edge a flange or hem goes on: found by its reference, checked
// to run between the sheet's face and the face of its thickness, and measured.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/References.h"

#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <string>

namespace cad {
class Document;
}

namespace cad::sheet {

struct SheetEdge {
    gp_Pnt start; // where the edge starts, as its curve runs
    gp_Dir along; // the way it runs
    double length = 0;
    gp_Dir sheetNormal; // out of the sheet's face the edge is on
    gp_Dir outward;     // out of the face of the thickness: away from the sheet
    double thickness = 0;
};

// The edge `reference` names in `body`. With `thickness` above 0 the face of the
// thickness must be that wide; with 0 the thickness is measured there. Each way the
// edge can be wrong has its sentence ("Pick a straight edge.", "The edge isn't on the
// sheet.", ...).
Result<SheetEdge> findSheetEdge(const Document& document, const std::string& reference,
                                const geometry::NamedShape& body,
                                const geometry::ReferenceContext& context, double thickness);

} // namespace cad::sheet

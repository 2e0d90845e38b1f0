// Display meshing of bodies: absolute chordal deviation from the bounding box's
// diagonal, so a 10 m plate stays light and a 1 mm part stays round.
#include "ui/presentation/Tessellation.h"

#include "ui/presentation/DocumentPresenter.h"

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <Standard_Failure.hxx>

#include <algorithm>
#include <cmath>

namespace cad::ui {

double tessellationDeviation(const Bnd_Box& box) {
    const double diagonal = box.IsVoid() ? 100.0 : std::sqrt(box.SquareExtent());
    return std::clamp(diagonal * 0.0002, 0.002, 0.2);
}

void applyTessellation(const TopoDS_Shape& shape, const Handle(Prs3d_Drawer) & drawer) {
    Bnd_Box box;
    if (!shape.IsNull()) BRepBndLib::Add(shape, box, true);
    const double deviation = tessellationDeviation(box);
    drawer->SetTypeOfDeflection(Aspect_TOD_ABSOLUTE);
    drawer->SetMaximalChordialDeviation(deviation);
    drawer->SetDeviationAngle(kTessellationAngle);
    if (shape.IsNull()) return;
    try {
        BRepMesh_IncrementalMesh mesh(shape, deviation, false, kTessellationAngle, false);
    } catch (const Standard_Failure&) {
        // The presentation meshes the shape itself with the drawer's values.
    }
}

} // namespace cad::ui

// The box primitive, with its own size check so a zero side never reaches the kernel.
#include "geometry/Box.h"

#include "core/CommandRecord.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <Standard_Failure.hxx>

namespace cad::geometry {

Result<TopoDS_Shape> makeBox(double width, double depth, double height, const gp_Pnt& corner) {
    if (!(width > 1e-7) || !(depth > 1e-7) || !(height > 1e-7))
        return fail(
            "Box dimensions must all be greater than zero (got width=" + formatShortest(width) +
            ", depth=" + formatShortest(depth) + ", height=" + formatShortest(height) + ")");
    try {
        BRepPrimAPI_MakeBox make(corner, width, depth, height);
        make.Build();
        if (!make.IsDone()) return fail("The geometry kernel could not build the box.");
        return make.Shape();
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not build the box.");
    }
}

} // namespace cad::geometry

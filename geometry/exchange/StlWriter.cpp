// STL export: one compound of every body, scaled into the file's unit, meshed in
// parallel with an absolute deflection, written by the kernel's STL writer.
#include "geometry/exchange/StlWriter.h"

#include "core/ReplaceFile.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <Standard_Failure.hxx>
#include <StlAPI_Writer.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Trsf.hxx>

#include <algorithm>
#include <cmath>
#include <exception>

namespace cad::exchange {

namespace {

// The compound of every body in the file's unit, on new topology so that meshing it
// leaves the bodies' own faces alone.
TopoDS_Shape fileShape(const std::vector<ExportBody>& bodies, double factor) {
    BRep_Builder builder;
    TopoDS_Compound compound;
    builder.MakeCompound(compound);
    for (const ExportBody& body : bodies) builder.Add(compound, body.shape);
    if (std::abs(factor - 1) > 1e-12) {
        gp_Trsf scale;
        scale.SetScale(gp_Pnt(0, 0, 0), 1 / factor);
        BRepBuilderAPI_Transform transform(compound, scale, true);
        return transform.IsDone() ? transform.Shape() : TopoDS_Shape();
    }
    BRepBuilderAPI_Copy copy(compound, false, false);
    return copy.IsDone() ? copy.Shape() : TopoDS_Shape();
}

// Meshes every face; false when the mesher fails or no face got triangles.
bool mesh(const TopoDS_Shape& shape, const StlExportOptions& options) {
    BRepMesh_IncrementalMesh mesher(shape, meshDeflection(options), false,
                                    options.angularDeflection, true);
    if (!mesher.IsDone()) return false;
    bool any = false;
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
        TopLoc_Location location;
        Handle(Poly_Triangulation) triangles =
            BRep_Tool::Triangulation(TopoDS::Face(faces.Current()), location);
        any = any || (!triangles.IsNull() && triangles->NbTriangles() > 0);
    }
    return any;
}

} // namespace

double meshDeflection(const StlExportOptions& options) {
    const double deflection = options.linearDeflection / units::unitScale(options.unit);
    return std::isfinite(deflection) ? std::max(deflection, 0.0001) : 0.0001;
}

Result<void> writeStl(const std::vector<ExportBody>& bodies, const std::string& path,
                      const StlExportOptions& options) {
    if (bodies.empty()) return fail("Nothing to export.");
    TopoDS_Shape shape;
    try {
        for (const ExportBody& body : bodies)
            if (body.shape.IsNull()) return fail("The shapes couldn't be meshed.");
        shape = fileShape(bodies, units::unitScale(options.unit));
        if (shape.IsNull() || !mesh(shape, options)) return fail("The shapes couldn't be meshed.");
    } catch (const Standard_Failure&) {
        return fail("The shapes couldn't be meshed.");
    } catch (const std::exception&) {
        return fail("The shapes couldn't be meshed.");
    }
    return replaceFile(path, [&](const std::string& temporary) {
        StlAPI_Writer writer;
        writer.ASCIIMode() = !options.binary;
        return static_cast<bool>(writer.Write(shape, temporary.c_str()));
    });
}

} // namespace cad::exchange

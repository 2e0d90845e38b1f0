// Reading a frozen step's BRep text; the body's earlier shape plays no part.
#include "geometry/patterns/FrozenShape.h"

#include "core/TextCase.h"
#include "geometry/Naming.h"
#include "geometry/param/ParamFeature.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <Standard_Failure.hxx>

#include <sstream>

namespace cad {

Result<geometry::NamedShape> computeFrozen(const Document&, const nlohmann::json& parameters,
                                           const geometry::NamedShape&,
                                           const std::string& featureName) {
    const std::string text = parameterText(parameters, "brep");
    if (trimmed(text).empty()) return fail("This frozen step has no shape.");
    TopoDS_Shape shape;
    // Only BRep text is handed to the reader, which talks about anything else.
    if (text.find("CASCADE Topology") == std::string::npos)
        return fail("The frozen shape couldn't be read.");
    try {
        std::istringstream in(text);
        BRep_Builder builder;
        BRepTools::Read(shape, in, builder);
    } catch (const Standard_Failure&) {
        shape.Nullify();
    }
    if (shape.IsNull()) return fail("The frozen shape couldn't be read.");
    return geometry::nameFacesByDirection(shape, featureName);
}

} // namespace cad

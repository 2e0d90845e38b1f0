// The kernel's defeaturing on faces picked by persistent name. Faces it rebuilt to
// close the gap keep their names with ".healed" after them.
#include "geometry/patterns/DeleteFaces.h"

#include "core/TextCase.h"
#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/References.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/param/ParamFeature.h"

#include <BOPAlgo_Alerts.hxx>
#include <BRepAlgoAPI_Defeaturing.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>

#include <algorithm>
#include <cmath>

namespace cad {

using namespace geometry;

namespace {

constexpr const char* kNoClose =
    "Those faces can't be taken off: the faces around them don't meet to close the gap.";

// "Body1/Fillet1.face" and "Fillet1.face" both name the face "Fillet1.face".
std::string faceName(const std::string& reference) {
    const std::size_t slash = reference.find('/');
    return slash == std::string::npos ? reference
                                      : std::string(trimmed(reference.substr(slash + 1)));
}

// Whether a face came out of the kernel as it went in: the same area round the same
// centre (the kernel hands every face back as a new one, changed or not).
bool sameExtent(const TopoDS_Shape& before, const TopoDS_Shape& after) {
    GProp_GProps a, b;
    BRepGProp::SurfaceProperties(before, a);
    BRepGProp::SurfaceProperties(after, b);
    return std::abs(a.Mass() - b.Mass()) <= 1e-9 * std::max(1.0, a.Mass()) &&
           a.CentreOfMass().Distance(b.CentreOfMass()) <= 1e-7;
}

} // namespace

std::vector<std::string> deleteFacesDependencies(const nlohmann::json& parameters) {
    std::vector<std::string> withBody;
    for (const std::string& item : splitReferenceList(parameterText(parameters, "faces")))
        if (item.find('/') != std::string::npos) withBody.push_back(item);
    return referencedObjects(withBody);
}

Result<NamedShape> computeDeleteFaces(const Document&, const nlohmann::json& parameters,
                                      const NamedShape& body, const std::string&) {
    const std::vector<std::string> faces = splitReferenceList(parameterText(parameters, "faces"));
    if (faces.empty()) return fail("Pick the faces to delete.");
    if (body.isNull()) return fail("There's no body to delete faces from.");

    BRepAlgoAPI_Defeaturing defeaturing;
    defeaturing.SetShape(body.shape());
    for (const std::string& reference : faces) {
        const std::string name = faceName(reference);
        std::optional<TopoDS_Shape> face = body.findByName(name);
        if (!face || face->ShapeType() != TopAbs_FACE)
            return fail("The body has no face '" + name + "' now.");
        defeaturing.AddFaceToRemove(*face);
    }
    defeaturing.SetRunParallel(parallelBooleans());
    defeaturing.SetToFillHistory(Standard_True);
    defeaturing.Build();
    // A face it can't take off is left where it was, with a warning.
    if (!defeaturing.IsDone() || defeaturing.HasErrors() ||
        defeaturing.HasWarning(STANDARD_TYPE(BOPAlgo_AlertUnableToRemoveTheFeature)))
        return fail(kNoClose);
    const TopoDS_Shape& result = defeaturing.Shape();
    if (!TopExp_Explorer(result, TopAbs_SOLID).More() || !BRepCheck_Analyzer(result).IsValid())
        return fail(kNoClose);

    // Names follow the faces; one that grew or shrank to close the gap says so.
    NamedShape healed(result);
    for (const NamingEntry& entry : body.entries()) {
        if (entry.subShape.ShapeType() != TopAbs_FACE || defeaturing.IsDeleted(entry.subShape))
            continue;
        const TopTools_ListOfShape& modified = defeaturing.Modified(entry.subShape);
        if (modified.IsEmpty()) {
            healed.addName(entry.subShape, entry.name, entry.tag);
            continue;
        }
        for (TopTools_ListOfShape::Iterator it(modified); it.More(); it.Next()) {
            const bool same = sameExtent(entry.subShape, it.Value());
            healed.addName(it.Value(), same ? entry.name : entry.name + ".healed", entry.tag);
        }
    }
    dropStaleEntries(healed);
    finishNames(healed);
    return healed;
}

} // namespace cad

// Prisms from profile faces. Regions that touch are fused into one solid; islands
// stay separate solids of one compound without a boolean.
#include "geometry/ExtrudeProfile.h"

#include "geometry/Deadline.h"
#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepExtrema_DistShapeShape.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Trsf.hxx>

#include <algorithm>
#include <memory>

namespace cad::geometry {

namespace {

constexpr const char* kNoPrism = "The geometry kernel could not extrude a profile.";

struct Prism {
    TopoDS_Shape solid;
    std::vector<NamingEntry> entries;
};

// One face swept along the vector, with the names of its faces.
Result<Prism> makePrism(const TopoDS_Face& original, const TopoDS_Face& moved,
                        const Profile& profile, const gp_Vec& vector, const std::string& feature) {
    // Names of the moved face's edges, from the original's (same order, same shapes).
    std::vector<std::string> names;
    for (TopExp_Explorer e(original, TopAbs_EDGE); e.More(); e.Next())
        names.push_back(profile.edgeName(e.Current()));
    std::string tag;
    for (const std::string& n : names)
        if (!n.empty() && (tag.empty() || n < tag)) tag = n;

    TopoDS_Face face = moved;
    for (int attempt = 0; attempt < 2; ++attempt) {
        BRepPrimAPI_MakePrism make(face, vector, Standard_False, Standard_True);
        make.Build();
        if (!make.IsDone()) return fail(kNoPrism);
        GProp_GProps props;
        BRepGProp::VolumeProperties(make.Shape(), props);
        if (props.Mass() < 0 && attempt == 0) {
            face = TopoDS::Face(moved.Reversed());
            continue;
        }
        Prism prism;
        prism.solid = make.Shape();
        prism.entries.push_back({make.FirstShape(), feature + ".start", tag});
        prism.entries.push_back({make.LastShape(), feature + ".end", tag});
        std::size_t i = 0;
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next(), ++i) {
            const std::string& edgeName = i < names.size() ? names[i] : std::string();
            std::string side = feature + ".side." + (edgeName.empty() ? "edge" : edgeName);
            for (const TopoDS_Shape& generated : make.Generated(e.Current()))
                if (generated.ShapeType() == TopAbs_FACE)
                    prism.entries.push_back({generated, side, tag});
        }
        return prism;
    }
    return fail(kNoPrism);
}

bool touches(const TopoDS_Shape& a, const Bnd_Box& boxA, const TopoDS_Shape& b,
             const Bnd_Box& boxB) {
    if (boxA.IsOut(boxB)) return false;
    BRepExtrema_DistShapeShape distance(a, b);
    return distance.IsDone() && distance.Value() < 1e-7;
}

// Fuses touching prisms into one shape; nothing when the kernel can't.
std::optional<NamedShape> fuseAll(const std::vector<Prism>& prisms) {
    BRepAlgoAPI_Fuse fuse;
    TopTools_ListOfShape arguments, tools;
    arguments.Append(prisms.front().solid);
    for (std::size_t i = 1; i < prisms.size(); ++i) tools.Append(prisms[i].solid);
    fuse.SetArguments(arguments);
    fuse.SetTools(tools);
    fuse.SetRunParallel(parallelBooleans());
    Handle(Deadline) deadline = new Deadline();
    fuse.Build(deadline->Start());
    if (!fuse.IsDone() || fuse.HasErrors()) return std::nullopt;

    std::vector<NamingEntry> entries;
    for (const Prism& p : prisms) {
        std::vector<NamingEntry> carried = carryNames(p.entries, fuse);
        entries.insert(entries.end(), carried.begin(), carried.end());
    }
    TopoDS_Shape simplified = unifyWithNames(fuse.Shape(), entries);
    int solids = 0;
    TopoDS_Shape only;
    for (TopExp_Explorer e(simplified, TopAbs_SOLID); e.More(); e.Next(), ++solids)
        only = e.Current();
    NamedShape result(solids == 1 ? only : simplified);
    result.entries() = std::move(entries);
    return result;
}

} // namespace

Result<NamedShape> extrudeProfile(const Profile& profile, const gp_Vec& vector,
                                  std::string_view featureName, const gp_Vec& startOffset) {
    if (profile.faces.empty()) return fail("There is no profile to extrude.");
    if (vector.Magnitude() <= 1e-7) return fail("The extrusion distance must not be zero.");
    const std::string feature(featureName);
    try {
        TopLoc_Location move;
        if (startOffset.Magnitude() > 1e-7) {
            gp_Trsf shift;
            shift.SetTranslation(startOffset);
            move = TopLoc_Location(shift);
        }
        std::vector<Prism> prisms;
        for (const TopoDS_Face& face : profile.faces) {
            TopoDS_Face moved = TopoDS::Face(face.Moved(move));
            Result<Prism> prism = makePrism(face, moved, profile, vector, feature);
            if (!prism) return Error(prism);
            prisms.push_back(std::move(prism).value());
        }

        NamedShape result;
        if (prisms.size() == 1) {
            result = NamedShape(prisms.front().solid);
            result.entries() = prisms.front().entries;
        } else {
            std::vector<Bnd_Box> boxes(prisms.size());
            for (std::size_t i = 0; i < prisms.size(); ++i)
                BRepBndLib::Add(prisms[i].solid, boxes[i]);
            bool anyTouch = false;
            for (std::size_t i = 0; i < prisms.size() && !anyTouch; ++i)
                for (std::size_t j = i + 1; j < prisms.size() && !anyTouch; ++j)
                    anyTouch = touches(prisms[i].solid, boxes[i], prisms[j].solid, boxes[j]);
            std::optional<NamedShape> fused;
            if (anyTouch) fused = fuseAll(prisms);
            if (fused) {
                result = std::move(*fused);
            } else {
                TopoDS_Compound all;
                BRep_Builder builder;
                builder.MakeCompound(all);
                std::vector<NamingEntry> entries;
                for (const Prism& p : prisms) {
                    builder.Add(all, p.solid);
                    entries.insert(entries.end(), p.entries.begin(), p.entries.end());
                }
                result = NamedShape(all);
                result.entries() = std::move(entries);
            }
        }
        finishNames(result);
        return result;
    } catch (const Standard_Failure&) {
        return fail(kNoPrism);
    }
}

} // namespace cad::geometry

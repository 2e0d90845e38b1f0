// The difference between the worked flat part and its blank, split by tall slabs
// over each wall and each bend strip. A wall's share moves back with the wall; a
// bend's share, which must go right through the sheet, is bent back point by point
// from its outline at half the thickness and lofted across the sheet.
#include "geometry/sheet/flat/FoldPieces.h"

#include "geometry/NameHistory.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/sheet/flat/MappedCurve.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepGProp.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepTools.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Pln.hxx>

#include <cmath>
#include <optional>
#include <vector>

namespace cad::flat {

using geometry::NamedShape;
using geometry::NamingEntry;

namespace {

constexpr const char* kAcrossBend = "A cut across a bend couldn't be folded.";
constexpr const char* kNotCompared = "The work done flat couldn't be compared with the blank.";

double volumeOf(const TopoDS_Shape& shape) {
    if (shape.IsNull()) return 0;
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

// A shape and the names its faces carry.
struct Named {
    TopoDS_Shape shape;
    std::vector<NamingEntry> names;
};

// a (op) b, with the names of `names` carried through; a retry with a fuzzy value.
std::optional<Named> boolean(const TopoDS_Shape& a, const TopoDS_Shape& b, BOPAlgo_Operation op,
                             const std::vector<NamingEntry>& names) {
    for (double fuzzy : {0.0, geometry::kRetryFuzzyValue}) {
        BRepAlgoAPI_BooleanOperation operation;
        TopTools_ListOfShape arguments, tools;
        arguments.Append(a);
        tools.Append(b);
        operation.SetArguments(arguments);
        operation.SetTools(tools);
        operation.SetOperation(op);
        operation.SetRunParallel(geometry::parallelBooleans());
        if (fuzzy > 0) operation.SetFuzzyValue(fuzzy);
        operation.Build();
        if (!operation.IsDone() || operation.HasErrors()) continue;
        return Named{operation.Shape(), geometry::carryNames(names, operation)};
    }
    return std::nullopt;
}

// A slab reaching `reach` either side of the flat face, square to it.
TopoDS_Shape slabOver(const TopoDS_Face& flat, const gp_Dir& outward, double reach) {
    gp_Trsf lift;
    lift.SetTranslation(gp_Vec(outward) * reach);
    const TopoDS_Shape raised = BRepBuilderAPI_Transform(flat, lift, Standard_True).Shape();
    return BRepPrimAPI_MakePrism(raised, gp_Vec(outward) * (-2 * reach)).Shape();
}

// Where the two sections of a bent-back cut lie, just outside the sheet's two sides.
struct Sections {
    TopoDS_Wire laidSide, otherSide;
};

// One outline at half the thickness, bent back at just outside both sides.
std::optional<Sections> bentOutline(const LaidBend& bend, const TopoDS_Wire& wire,
                                    const TopoDS_Face& face, const gp_Dir& outward,
                                    double thickness) {
    const double margin = std::max(0.05, thickness * 0.1);
    BRepBuilderAPI_MakeWire laid, other;
    for (BRepTools_WireExplorer e(wire, face); e.More(); e.Next()) {
        const BRepAdaptor_Curve curve(e.Current());
        for (int side = 0; side < 2; ++side) {
            const double offset = (thickness / 2 + margin) * (side == 0 ? 1 : -1);
            auto at = [&](double t) {
                return bentPoint(bend, curve.Value(t).Translated(gp_Vec(outward) * offset));
            };
            std::optional<TopoDS_Edge> edge =
                edgeThrough(at, curve.FirstParameter(), curve.LastParameter());
            if (!edge) return std::nullopt;
            edge->Orientation(e.Current().Orientation());
            (side == 0 ? laid : other).Add(*edge);
            if (!(side == 0 ? laid : other).IsDone()) return std::nullopt;
        }
    }
    if (!laid.IsDone() || !other.IsDone()) return std::nullopt;
    return Sections{laid.Wire(), other.Wire()};
}

// A piece of a cut inside one bend strip, bent back: it must go right through.
Result<std::vector<TopoDS_Shape>> bendBack(const LaidBend& bend, const TopoDS_Shape& piece,
                                           const gp_Ax3& plane, double thickness, double reach) {
    const gp_Dir outward = plane.Direction();
    const gp_Pln middle(plane.Location().Translated(gp_Vec(outward) * (-thickness / 2)), outward);
    const TopoDS_Face sheet = BRepBuilderAPI_MakeFace(middle, -reach, reach, -reach, reach).Face();
    std::optional<Named> outline = boolean(piece, sheet, BOPAlgo_COMMON, {});
    if (!outline) return fail(kAcrossBend);
    GProp_GProps area;
    BRepGProp::SurfaceProperties(outline->shape, area);
    const double volume = volumeOf(piece);
    if (std::abs(volume - area.Mass() * thickness) > 0.01 * volume) return fail(kAcrossBend);

    std::vector<TopoDS_Shape> bent;
    for (TopExp_Explorer e(outline->shape, TopAbs_FACE); e.More(); e.Next()) {
        const TopoDS_Face& face = TopoDS::Face(e.Current());
        int wires = 0;
        for (TopExp_Explorer w(face, TopAbs_WIRE); w.More(); w.Next()) ++wires;
        // A cut around an island that stays: not carried across a bend yet.
        if (wires != 1) return fail(kAcrossBend);
        std::optional<Sections> sections =
            bentOutline(bend, BRepTools::OuterWire(face), face, outward, thickness);
        if (!sections) return fail(kAcrossBend);
        BRepOffsetAPI_ThruSections loft(Standard_True, Standard_True, 1e-6);
        loft.AddWire(sections->laidSide);
        loft.AddWire(sections->otherSide);
        loft.CheckCompatibility(Standard_False);
        loft.Build();
        if (!loft.IsDone() || std::abs(volumeOf(loft.Shape())) < 1e-12) return fail(kAcrossBend);
        bent.push_back(loft.Shape());
    }
    return bent;
}

double reachOf(const TopoDS_Shape& a, const TopoDS_Shape& b, double thickness) {
    Bnd_Box box;
    BRepBndLib::Add(a, box);
    BRepBndLib::Add(b, box);
    return std::sqrt(box.SquareExtent()) + thickness + 10;
}

} // namespace

Result<CarriedWork> carryBack(const Unfolding& unfolding, const NamedShape& worked,
                              const std::string& featureName) {
    try {
        std::vector<NamingEntry> names;
        for (const auto& [face, name] : worked.names(TopAbs_FACE))
            names.push_back({face, name, {}});
        const std::optional<Named> removed =
            boolean(unfolding.blank, worked.shape(), BOPAlgo_CUT, names);
        const std::optional<Named> added =
            boolean(worked.shape(), unfolding.blank, BOPAlgo_CUT, names);
        if (!removed || !added) return fail(kNotCompared);

        const double tolerance = std::max(1e-6, 1e-7 * volumeOf(unfolding.blank));
        const double reach = reachOf(unfolding.blank, worked.shape(), unfolding.thickness);
        const gp_Dir outward = unfolding.plane.Direction();
        CarriedWork out;

        // What lies over one wall or bend, or none when (next to) nothing does.
        auto share = [&](const Named& work,
                         const TopoDS_Face& flat) -> Result<std::optional<Named>> {
            std::optional<Named> piece =
                boolean(work.shape, slabOver(flat, outward, reach), BOPAlgo_COMMON, work.names);
            if (!piece) return fail(kNotCompared);
            if (volumeOf(piece->shape) <= tolerance) return std::optional<Named>();
            return piece;
        };
        // Moves a wall's share back to the wall, names and all.
        auto movedBack = [&](const Named& piece, const gp_Trsf& toFlat) {
            BRepBuilderAPI_Transform moved(piece.shape, toFlat.Inverted(), Standard_True);
            NamedShape named(moved.Shape());
            named.entries() = geometry::carryNames(piece.names, moved);
            return named;
        };

        const double cut = volumeOf(removed->shape);
        if (cut > tolerance) {
            double carried = 0;
            for (const LaidWall& wall : unfolding.walls) {
                Result<std::optional<Named>> piece = share(*removed, wall.flat);
                if (!piece) return Error(piece);
                if (!*piece) continue;
                carried += volumeOf((*piece)->shape);
                out.cuts.push_back(movedBack(**piece, wall.toFlat));
            }
            for (const LaidBend& bend : unfolding.bends) {
                Result<std::optional<Named>> piece = share(*removed, bend.flat);
                if (!piece) return Error(piece);
                if (!*piece) continue;
                carried += volumeOf((*piece)->shape);
                Result<std::vector<TopoDS_Shape>> bent =
                    bendBack(bend, (*piece)->shape, unfolding.plane, unfolding.thickness, reach);
                if (!bent) return Error(bent);
                for (const TopoDS_Shape& shape : *bent) {
                    NamedShape named(shape);
                    for (TopExp_Explorer f(shape, TopAbs_FACE); f.More(); f.Next())
                        named.addName(f.Current(), featureName + ".cut");
                    out.cuts.push_back(std::move(named));
                }
            }
            if (cut - carried > 10 * tolerance) return fail("Part of a cut is outside the blank.");
        }

        const double grown = volumeOf(added->shape);
        if (grown > tolerance) {
            double carried = 0;
            for (const LaidBend& bend : unfolding.bends) {
                Result<std::optional<Named>> piece = share(*added, bend.flat);
                if (!piece) return Error(piece);
                if (*piece)
                    return fail("Material added across a bend doesn't fold yet; add it on a flat "
                                "wall.");
            }
            for (const LaidWall& wall : unfolding.walls) {
                Result<std::optional<Named>> piece = share(*added, wall.flat);
                if (!piece) return Error(piece);
                if (!*piece) continue;
                carried += volumeOf((*piece)->shape);
                out.added.push_back(movedBack(**piece, wall.toFlat));
            }
            if (grown - carried > 10 * tolerance)
                return fail("Material added outside the blank doesn't fold yet; keep it within the "
                            "flat walls.");
        }
        return out;
    } catch (const Standard_Failure&) {
        return fail(kNotCompared);
    }
}

} // namespace cad::flat

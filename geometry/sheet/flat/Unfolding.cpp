// The walk over the sheet's laid side and the blank joined from what it laid flat.
// Only faces meeting smoothly are crossed, so the walk never leaves the side it
// started on: the thickness's edges meet the sheet's faces square.
#include "geometry/sheet/flat/Unfolding.h"

#include "core/TextCase.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/sheet/flat/SheetFaces.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Curve.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

#include <deque>
#include <optional>
#include <utility>

namespace cad::flat {

namespace {

constexpr const char* kNotJoined = "The blank's faces couldn't be joined.";

constexpr const char* kOtherCurve =
    "Only cylindrical and conical bends unfold; this part has another kind of curved face.";

enum class FaceKind { Wall, Bend, Other };

FaceKind kindOf(const TopoDS_Face& face) {
    switch (BRepAdaptor_Surface(face, false).GetType()) {
    case GeomAbs_Plane:
        return FaceKind::Wall;
    case GeomAbs_Cylinder:
    case GeomAbs_Cone:
        return FaceKind::Bend;
    default:
        return FaceKind::Other;
    }
}

// The u of an edge of a curved face, at its middle.
std::optional<double> uOfEdge(const TopoDS_Edge& edge, const TopoDS_Face& face) {
    double first = 0, last = 0;
    Handle(Geom2d_Curve) curve = BRep_Tool::CurveOnSurface(edge, face, first, last);
    if (curve.IsNull()) return std::nullopt;
    return curve->Value((first + last) / 2).X();
}

// The part with faces and edges on one surface merged, so a wall or a bend the
// kernel left in pieces is walked as one; `fixed` followed into it.
struct Merged {
    TopoDS_Shape shape;
    TopoDS_Face fixed;
};
Merged merged(const TopoDS_Shape& solid, const TopoDS_Face& fixed) {
    ShapeUpgrade_UnifySameDomain unify(solid, Standard_True, Standard_True, Standard_False);
    unify.Build();
    Merged out{unify.Shape(), fixed};
    const Handle(BRepTools_History) history = unify.History();
    if (!history.IsNull() && history->IsSupportedType(fixed)) {
        const TopTools_ListOfShape& became = history->Modified(fixed);
        if (!became.IsEmpty()) out.fixed = TopoDS::Face(became.First());
    }
    // The face as it lies in the merged solid, with its orientation there.
    for (TopExp_Explorer e(out.shape, TopAbs_FACE); e.More(); e.Next())
        if (e.Current().IsSame(out.fixed)) out.fixed = TopoDS::Face(e.Current());
    return out;
}

class SheetWalk {
public:
    SheetWalk(const TopoDS_Shape& shape, double thickness, sheet::SheetRules rules)
        : shape_(shape), thickness_(thickness), rules_(std::move(rules)) {
        TopExp::MapShapes(shape, TopAbs_FACE, faces_);
        TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edgeFaces_);
        placed_.resize(static_cast<std::size_t>(faces_.Extent()) + 1);
        bendDone_.resize(placed_.size(), false);
    }

    Result<void> walk(const TopoDS_Face& fixed) {
        place(fixed, gp_Trsf());
        while (!queue_.empty()) {
            const int i = queue_.front();
            queue_.pop_front();
            Result<void> ok = fromWall(i);
            if (!ok) return ok;
        }
        return {};
    }

    std::vector<LaidWall> walls;
    std::vector<LaidBend> bends;

private:
    TopoDS_Face face(int i) const { return TopoDS::Face(faces_(i)); }

    void place(const TopoDS_Face& wall, const gp_Trsf& move) {
        const int i = faces_.FindIndex(wall);
        if (i == 0 || placed_[static_cast<std::size_t>(i)]) return;
        placed_[static_cast<std::size_t>(i)] = move;
        BRepBuilderAPI_Transform moved(wall, move, Standard_True);
        walls.push_back({wall, TopoDS::Face(moved.Shape()), move});
        queue_.push_back(i);
    }

    // The faces meeting `face` smoothly, each with the edge they share.
    std::vector<std::pair<TopoDS_Face, TopoDS_Edge>> smoothNeighbours(const TopoDS_Face& face) {
        std::vector<std::pair<TopoDS_Face, TopoDS_Edge>> out;
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            const TopoDS_Edge& edge = TopoDS::Edge(e.Current());
            if (BRep_Tool::Degenerated(edge) || !edgeFaces_.Contains(edge)) continue;
            for (const TopoDS_Shape& other : edgeFaces_.FindFromKey(edge)) {
                if (other.IsSame(face)) continue;
                const TopoDS_Face neighbour = inShape(other);
                if (meetSmoothly(face, neighbour, edge)) out.emplace_back(neighbour, edge);
            }
        }
        return out;
    }
    // A face with the orientation it has in the solid.
    TopoDS_Face inShape(const TopoDS_Shape& any) const {
        const int i = faces_.FindIndex(any);
        return i == 0 ? TopoDS::Face(any) : face(i);
    }

    Result<void> fromWall(int i) {
        const TopoDS_Face wall = face(i);
        const gp_Trsf move = *placed_[static_cast<std::size_t>(i)];
        for (const auto& [neighbour, edge] : smoothNeighbours(wall)) {
            const FaceKind kind = kindOf(neighbour);
            if (kind == FaceKind::Other) return fail(kOtherCurve);
            if (kind == FaceKind::Wall) {
                place(neighbour, move); // the same wall, left in two faces
                continue;
            }
            const std::size_t j = static_cast<std::size_t>(faces_.FindIndex(neighbour));
            if (bendDone_[j]) continue;
            bendDone_[j] = true;
            Result<LaidBend> laid = layBendFlat(shape_, neighbour, edge, move, thickness_, rules_);
            if (!laid) return Error(laid);
            for (const auto& [beyond, edge2] : smoothNeighbours(neighbour)) {
                const FaceKind next = kindOf(beyond);
                if (next == FaceKind::Other) return fail(kOtherCurve);
                if (next == FaceKind::Bend)
                    return fail(
                        "Two bends meet with no flat between them; that doesn't unfold yet.");
                const std::optional<double> u = uOfEdge(edge2, neighbour);
                const bool nearSide = u && std::abs(*u - laid->startU) < 1e-6;
                place(beyond, nearSide ? move : laid->farWall);
            }
            bends.push_back(std::move(laid).value());
        }
        return {};
    }

    TopoDS_Shape shape_;
    double thickness_;
    sheet::SheetRules rules_;
    TopTools_IndexedMapOfShape faces_;
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces_;
    std::vector<std::optional<gp_Trsf>> placed_;
    std::vector<bool> bendDone_;
    std::deque<int> queue_;
};

// Every laid-flat face as a slab the thickness deep behind the fixed face's plane,
// all joined into one solid.
Result<TopoDS_Shape> joinBlank(const std::vector<TopoDS_Face>& pieces, const gp_Dir& outward,
                               double thickness) {
    TopTools_ListOfShape arguments, tools;
    for (const TopoDS_Face& piece : pieces) {
        BRepPrimAPI_MakePrism slab(piece, gp_Vec(outward) * -thickness);
        if (!slab.IsDone()) return fail(kNotJoined);
        (arguments.IsEmpty() ? arguments : tools).Append(slab.Shape());
    }
    if (arguments.IsEmpty()) return fail("The blank came out empty.");
    TopoDS_Shape joined = arguments.First();
    if (!tools.IsEmpty()) {
        bool done = false;
        for (double fuzzy : {0.0, geometry::kRetryFuzzyValue}) {
            BRepAlgoAPI_Fuse fuse;
            fuse.SetArguments(arguments);
            fuse.SetTools(tools);
            fuse.SetRunParallel(geometry::parallelBooleans());
            if (fuzzy > 0) fuse.SetFuzzyValue(fuzzy);
            fuse.Build();
            if (!fuse.IsDone() || fuse.HasErrors()) continue;
            joined = fuse.Shape();
            done = true;
            break;
        }
        if (!done) return fail(kNotJoined);
    }
    ShapeUpgrade_UnifySameDomain unify(joined, Standard_True, Standard_True, Standard_False);
    unify.Build();
    int solids = 0;
    TopoDS_Shape solid;
    for (TopExp_Explorer e(unify.Shape(), TopAbs_SOLID); e.More(); e.Next()) {
        ++solids;
        solid = e.Current();
    }
    if (solids == 0) return fail("The blank came out empty.");
    if (solids > 1 || !BRepCheck_Analyzer(solid).IsValid()) return fail(kNotJoined);
    return solid;
}

// The direction of the face's longest straight edge (the way a drawing of it is
// best laid along), else `otherwise`.
gp_Dir alongLongestEdge(const TopoDS_Face& face, const gp_Dir& otherwise) {
    gp_Dir along = otherwise;
    double longest = 0;
    for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
        const BRepAdaptor_Curve curve(TopoDS::Edge(e.Current()));
        if (curve.GetType() != GeomAbs_Line) continue;
        const double length =
            curve.Value(curve.FirstParameter()).Distance(curve.Value(curve.LastParameter()));
        if (length > longest * (1 + 1e-9)) {
            longest = length;
            along = curve.Line().Direction();
        }
    }
    return along;
}

} // namespace

std::string faceNameOf(const std::string& reference) {
    const std::size_t slash = reference.find('/');
    return std::string(
        trimmed(slash == std::string::npos ? reference : reference.substr(slash + 1)));
}

Result<Unfolding> unfoldSheet(const geometry::NamedShape& part, const UnfoldOptions& options) {
    TopoDS_Shape solid;
    if (!part.isNull())
        if (TopExp_Explorer e(part.shape(), TopAbs_SOLID); e.More()) solid = e.Current();
    if (solid.IsNull()) return fail("There's no body to lay flat.");
    try {
        TopoDS_Face fixed;
        if (!options.fixedFace.empty()) {
            const std::string name = faceNameOf(options.fixedFace);
            std::optional<TopoDS_Shape> found = part.findByName(name);
            if (!found || found->ShapeType() != TopAbs_FACE)
                return fail("The fixed face '" + options.fixedFace +
                            "' isn't on the part any more.");
            fixed = TopoDS::Face(*found);
            if (!flatNormal(fixed))
                return fail("The fixed face '" + options.fixedFace + "' isn't flat.");
        } else {
            fixed = largestFlatFace(solid);
            if (fixed.IsNull()) return fail("The body has no flat face to lay flat from.");
        }
        const std::optional<FaceAcross> across = faceAcross(solid, fixed);
        if (!across)
            return fail("The body isn't a sheet: there's no face across from its largest face.");

        Unfolding out;
        out.fixedName = part.nameOf(fixed);
        out.acrossName = part.nameOf(across->face);
        out.rules = options.rules;
        out.thickness = options.measureThickness ? across->distance : options.rules.thickness;
        out.rules.thickness = out.thickness;
        {
            // The origin on the face itself, so the plane is where the part is.
            BRepAdaptor_Surface surface(fixed, false);
            const std::vector<gp_Pnt> on = pointsInside(fixed, 1);
            out.plane = gp_Ax3(on.empty() ? surface.Value(0, 0) : on.front(), *flatNormal(fixed),
                               alongLongestEdge(fixed, surface.Plane().XAxis().Direction()));
        }

        const Merged work = merged(solid, fixed);
        SheetWalk walk(work.shape, out.thickness, out.rules);
        if (Result<void> walked = walk.walk(work.fixed); !walked) return Error(walked);
        out.walls = std::move(walk.walls);
        out.bends = std::move(walk.bends);
        if (out.bends.empty()) {
            out.blank = solid;
            return out;
        }

        std::vector<TopoDS_Face> pieces;
        for (const LaidWall& wall : out.walls) pieces.push_back(wall.flat);
        for (const LaidBend& bend : out.bends) pieces.push_back(bend.flat);
        Result<TopoDS_Shape> blank = joinBlank(pieces, out.plane.Direction(), out.thickness);
        if (!blank) return Error(blank);
        out.blank = *blank;
        return out;
    } catch (const Standard_Failure&) {
        return fail("A bend couldn't be laid flat.");
    }
}

} // namespace cad::flat

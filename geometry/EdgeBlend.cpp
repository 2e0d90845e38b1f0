// Fillets and chamfers on named edges. The kernel extends a blend along edges that
// continue it smoothly; without the tangent chain the blend is kept only inside a
// square tube swept along each chosen edge and the body stays as it was elsewhere.
#include "geometry/EdgeBlend.h"

#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepFilletAPI_MakeChamfer.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepOffsetAPI_MakePipe.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <gp_Ax2.hxx>

#include <memory>
#include <optional>

namespace cad::geometry {

namespace {

struct Words {
    std::string kind;  // "fillet"
    std::string verb;  // "round": names the faces made from an edge
    std::string value; // "radius"
};

Words wordsOf(BlendKind kind) {
    if (kind == BlendKind::Chamfer) return {"chamfer", "bevel", "distance"};
    return {"fillet", "round", "radius"};
}

std::string notBuilt(const Words& w) {
    return "The " + w.kind + " couldn't be built: the " + w.value +
           " may be too large for the faces around these edges.";
}

// A square of half-width `half` across the edge at its start, swept along it.
std::optional<TopoDS_Shape> limiterTube(const TopoDS_Edge& edge, double half, bool& skipped) {
    const TopoDS_Edge forward = TopoDS::Edge(edge.Oriented(TopAbs_FORWARD));
    BRepAdaptor_Curve curve(forward);
    gp_Pnt p;
    gp_Vec tangent;
    curve.D1(curve.FirstParameter(), p, tangent);
    skipped = tangent.Magnitude() < 1e-12;
    if (skipped) return std::nullopt;
    const gp_Ax2 frame(p, gp_Dir(tangent));
    const gp_Vec x = gp_Vec(frame.XDirection()) * half, y = gp_Vec(frame.YDirection()) * half;
    BRepBuilderAPI_MakePolygon square(p.Translated(x + y), p.Translated(-x + y),
                                      p.Translated(-x - y), p.Translated(x - y), Standard_True);
    if (!square.IsDone()) return std::nullopt;
    BRepBuilderAPI_MakeFace face(square.Wire(), Standard_True);
    if (!face.IsDone()) return std::nullopt;
    BRepBuilderAPI_MakeWire spine(forward);
    if (!spine.IsDone()) return std::nullopt;
    BRepOffsetAPI_MakePipe pipe(spine.Wire(), face.Face());
    pipe.Build();
    if (!pipe.IsDone()) return std::nullopt;
    return pipe.Shape();
}

// Keeps the blend only inside tubes round the chosen edges: the body outside the
// tubes joined with the blended body inside them.
Result<NamedShape> limitToEdges(const NamedShape& body, const NamedShape& blended,
                                const std::vector<TopoDS_Edge>& edges, double value,
                                const Words& w) {
    const std::string refused = "The " + w.kind + " couldn't be limited to the chosen edges";
    const double half = value * 1.5 + 0.1;
    std::optional<NamedShape> limiter;
    for (const TopoDS_Edge& edge : edges) {
        bool skipped = false;
        std::optional<TopoDS_Shape> tube = limiterTube(edge, half, skipped);
        if (skipped) continue;
        if (!tube) return fail(refused + ".");
        NamedShape named(*tube);
        if (!limiter) {
            finishNames(named);
            limiter = std::move(named);
            continue;
        }
        Result<NamedShape> fused = shapeBoolean(*limiter, named, BooleanKind::Join);
        if (!fused) return fail(refused + ": " + fused.error());
        limiter = std::move(fused).value();
    }
    if (!limiter) return fail(refused + ".");

    Result<NamedShape> outside = shapeBoolean(body, *limiter, BooleanKind::Cut);
    if (!outside) return fail(refused + ": " + outside.error());
    Result<NamedShape> inside = shapeBoolean(blended, *limiter, BooleanKind::Intersect);
    if (!inside) return fail(refused + ": " + inside.error());
    Result<NamedShape> joined = shapeBoolean(*outside, *inside, BooleanKind::Join);
    if (!joined) return fail(refused + ": " + joined.error());
    return joined;
}

} // namespace

Result<NamedShape> blendEdges(const NamedShape& body, const EdgeBlend& blend) {
    const Words w = wordsOf(blend.kind);
    if (body.isNull()) return fail("A " + w.kind + " needs a body.");
    if (blend.edges.empty()) return fail("Choose at least one edge.");
    if (blend.value <= 1e-7)
        return fail("The " + w.kind + " " + w.value + " must be greater than zero.");

    try {
        std::unique_ptr<BRepFilletAPI_LocalOperation> builder;
        BRepFilletAPI_MakeFillet* fillet = nullptr;
        BRepFilletAPI_MakeChamfer* chamfer = nullptr;
        if (blend.kind == BlendKind::Chamfer) {
            auto made = std::make_unique<BRepFilletAPI_MakeChamfer>(body.shape());
            chamfer = made.get();
            builder = std::move(made);
        } else {
            auto made = std::make_unique<BRepFilletAPI_MakeFillet>(body.shape(), ChFi3d_Rational);
            fillet = made.get();
            builder = std::move(made);
        }

        std::vector<TopoDS_Edge> chosen;
        for (const std::string& name : blend.edges) {
            std::optional<TopoDS_Shape> found = body.findByName(name);
            if (!found || found->ShapeType() != TopAbs_EDGE)
                return fail(name + " no longer exists: the geometry it was on has changed.");
            const TopoDS_Edge& edge = TopoDS::Edge(*found);
            bool again = false;
            for (const TopoDS_Edge& e : chosen) again = again || e.IsSame(edge);
            if (again) continue;
            chosen.push_back(edge);
            if (fillet) fillet->Add(blend.value, edge);
            if (chamfer) chamfer->Add(blend.value, edge);
        }

        builder->Build();
        if (!builder->IsDone() || builder->Shape().IsNull() ||
            !BRepCheck_Analyzer(builder->Shape()).IsValid())
            return fail(notBuilt(w));

        NamedShape result(builder->Shape());
        result.entries() = carryNames(body.entries(), *builder);
        int contourEdges = 0;
        for (int c = 1; c <= builder->NbContours(); ++c) {
            for (int e = 1; e <= builder->NbEdges(c); ++e) {
                ++contourEdges;
                const TopoDS_Edge& edge = builder->Edge(c, e);
                const std::string name = body.nameOf(edge);
                if (name.empty()) continue;
                for (const TopoDS_Shape& face : builder->Generated(edge))
                    if (face.ShapeType() == TopAbs_FACE)
                        result.addName(face, blend.feature + "." + w.verb + "(" + name + ")");
            }
        }
        const NamedShape::Index& index = body.index();
        for (int v = 1; v <= index.vertices.Extent(); ++v) {
            const std::string& name = index.vertexNames[static_cast<std::size_t>(v - 1)];
            for (const TopoDS_Shape& face : builder->Generated(index.vertices(v)))
                if (face.ShapeType() == TopAbs_FACE)
                    result.addName(face, blend.feature + ".corner(" + name + ")");
        }
        finishNames(result);

        if (blend.tangentChain || contourEdges <= static_cast<int>(chosen.size())) return result;
        return limitToEdges(body, result, chosen, blend.value, w);
    } catch (const Standard_Failure&) {
        return fail(notBuilt(w));
    }
}

} // namespace cad::geometry

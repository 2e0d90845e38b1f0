// Bent sheets made straight from the kernel for the flat tests: a cross-section
// carried along straights (prisms) and bends (revolved about an axis beside the
// sheet), all fused. Also the geometry document with the sheet metal and flat kinds
// registered.
#pragma once

#include "geometry/Naming.h"
#include "geometry/param/ParamCommands.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/sheet/flat/FlatKinds.h"
#include "geometry/sheet/metal/SheetMetalKinds.h"
#include "tests/geometry/GeometryTestModel.h"

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepClass3d_SolidClassifier.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace cad::testing {

inline constexpr double pi = std::numbers::pi;

// A sheet `thickness` thick and `width` wide (along +Y), its lower face starting
// at the origin along +X. Bends up turn toward +Z (their inside is the upper face).
class SheetPath {
public:
    SheetPath(double thickness, double width) : t_(thickness), wide_(0, width, 0) {}

    SheetPath& straight(double length) {
        BRepPrimAPI_MakePrism piece(section(), gp_Vec(along_) * length);
        pieces_.Append(piece.Shape());
        origin_.Translate(gp_Vec(along_) * length);
        return *this;
    }
    // A tilt leans the hinge toward the sheet, across its middle: the bend is conical.
    SheetPath& bend(double degrees, double innerRadius, bool up = true, double tilt = 0) {
        const gp_Vec side = gp_Vec(up_) * (up ? t_ + innerRadius : -innerRadius);
        const gp_Vec square(up ? along_.Crossed(up_) : up_.Crossed(along_));
        const gp_Dir axis(square * std::cos(tilt) + gp_Vec(up_) * std::sin(tilt));
        const gp_Ax1 hinge(origin_.Translated(side + wide_ / 2), axis);
        const double angle = degrees * pi / 180;
        pieces_.Append(BRepPrimAPI_MakeRevol(section(), hinge, angle).Shape());
        gp_Trsf turn;
        turn.SetRotation(hinge, angle);
        origin_.Transform(turn);
        along_.Transform(turn);
        up_.Transform(turn);
        wide_.Transform(turn);
        return *this;
    }
    TopoDS_Shape shape() const {
        TopTools_ListOfShape first, rest;
        for (const TopoDS_Shape& piece : pieces_) (first.IsEmpty() ? first : rest).Append(piece);
        BRepAlgoAPI_Fuse fuse;
        fuse.SetArguments(first);
        fuse.SetTools(rest);
        fuse.Build();
        ShapeUpgrade_UnifySameDomain unify(fuse.Shape(), true, true, false);
        unify.Build();
        return unify.Shape();
    }

private:
    TopoDS_Face section() const {
        const gp_Vec across = gp_Vec(up_) * t_;
        BRepBuilderAPI_MakePolygon outline(origin_, origin_.Translated(wide_),
                                           origin_.Translated(wide_ + across),
                                           origin_.Translated(across), Standard_True);
        return BRepBuilderAPI_MakeFace(outline.Wire()).Face();
    }

    double t_;
    gp_Vec wide_;
    gp_Pnt origin_{0, 0, 0};
    gp_Dir along_{1, 0, 0}, up_{0, 0, 1};
    TopTools_ListOfShape pieces_;
};

// A body whose shape is `shape`, its flat faces named Sheet.top, Sheet.bottom, ...
inline GeometryObject* addBody(Document& document, const TopoDS_Shape& shape,
                               const std::string& id = "Body1") {
    auto made = std::make_unique<GeometryObject>();
    made->id = id;
    made->baseShape = geometry::nameFacesByDirection(shape, "Sheet");
    auto* body = static_cast<GeometryObject*>(document.add(std::move(made)));
    (void)document.rebuildBody(*body);
    return body;
}

inline bool inside(const TopoDS_Shape& solid, const gp_Pnt& point) {
    BRepClass3d_SolidClassifier classify(solid, point, 1e-7);
    return classify.State() == TopAbs_IN;
}

class FlatModel : public GeometryModel {
protected:
    FlatModel() {
        addSheetMetalKinds();
        addFlatKinds();
        registerParamCommands(registry);
    }

    // Body1: an L, `a` then a bend of 90 degrees (R 2) then `b`, 2 thick, 20 wide,
    // with the rules T 2, R 2, K 0.44.
    void lBracket(double a = 30, double b = 20) {
        addBody(document, SheetPath(2, 20).straight(a).bend(90, 2).straight(b).shape());
        ok("sheet_rules",
           {{"body", "Body1"}, {"thickness", 2}, {"bend_radius", 2}, {"k_factor", 0.44}});
    }
    // The flat length of that bend, worked out here.
    static double quarterBend() { return pi / 2 * (2 + 0.44 * 2); }

    // A hole of radius r right through the flat part from z = 0 to 2, at (x, y).
    void cutHole(double x, double y, double r) {
        const std::string sketch = sketchWithRectangles({}, 2);
        ok("add_circle", {{"sketch", sketch}, {"cx", x}, {"cy", y}, {"radius", r}});
        ok("extrude",
           {{"sketch", sketch}, {"distance", -2}, {"operation", "cut"}, {"target", "Body1"}});
    }

    // A command that must fail without touching the document: its message.
    std::string refused(const std::string& name, Args arguments) {
        const std::size_t objects = document.objects().size();
        CommandResult result = run(name, arguments);
        EXPECT_FALSE(result.ok) << name;
        EXPECT_EQ(document.objects().size(), objects) << name;
        return result.message;
    }
};

} // namespace cad::testing

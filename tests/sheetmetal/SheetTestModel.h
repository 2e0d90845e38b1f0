// The geometry test document with the sheet metal kinds and the parametric and
// material commands registered as the application does, and the sheets most tests
// start from.
#pragma once

#include "geometry/materials/MaterialCommands.h"
#include "geometry/param/ParamCommands.h"
#include "geometry/sheet/metal/SheetMetalKinds.h"
#include "tests/geometry/GeometryTestModel.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <TopoDS.hxx>

#include <numbers>
#include <string>
#include <vector>

namespace cad::testing {

inline constexpr double pi = std::numbers::pi;

class SheetModel : public GeometryModel {
protected:
    SheetModel() {
        addSheetMetalKinds();
        registerParamCommands(registry);
        registerMaterialCommands(registry);
    }

    // A sketch on XY holding the open chain of lines through the points.
    std::string chain(std::vector<std::array<double, 2>> points) {
        std::string id = sketchWithRectangles({});
        for (std::size_t i = 1; i < points.size(); ++i)
            addLine(id, points[i - 1][0], points[i - 1][1], points[i][0], points[i][1]);
        return id;
    }

    // Body1: a 40 x 30 plate, 2 thick, bend radius 2, from a rectangle at the origin.
    // Its edge at x = 40 along the top: "Body1/Edge(Flange1.end, Flange1.side.Rectangle1.right)".
    void plate() {
        sketchWithRectangles({{0, 0, 40, 30}});
        ok("sheet_flange", {{"sketch", "Sketch1"}, {"thickness", 2}, {"bend_radius", 2}});
    }
    static constexpr double kPlate = 40 * 30 * 2;
    static constexpr const char* kRightEdge =
        "Body1/Edge(Flange1.end, Flange1.side.Rectangle1.right)";

    // A bend of `degrees` between inner radius r and r + t, `width` long.
    static double bendVolume(double degrees, double r, double t, double width) {
        return degrees * pi / 180 * ((r + t) * (r + t) - r * r) / 2 * width;
    }

    bool valid(const std::string& id) {
        GeometryObject* b = body(id);
        return b && !b->shape.isNull() && BRepCheck_Analyzer(b->shape.shape()).IsValid();
    }
    // The radius of a body's cylindrical face by name; -1 when it isn't one.
    double cylinderRadius(const std::string& id, const std::string& face) {
        GeometryObject* b = body(id);
        std::optional<TopoDS_Shape> found = b ? b->shape.findByName(face) : std::nullopt;
        if (!found) return -1;
        BRepAdaptor_Surface surface(TopoDS::Face(*found));
        return surface.GetType() == GeomAbs_Cylinder ? surface.Cylinder().Radius() : -1;
    }

    // A command that must fail leaving the document as it was: its message.
    std::string refused(const std::string& name, Args arguments) {
        const std::size_t objects = document.objects().size();
        const std::size_t steps = stack.undoCount();
        const double volume = volumeOf("Body1");
        CommandResult result = run(name, arguments);
        EXPECT_FALSE(result.ok) << name;
        EXPECT_EQ(document.objects().size(), objects) << name;
        EXPECT_EQ(stack.undoCount(), steps) << name;
        EXPECT_NEAR(volumeOf("Body1"), volume, 1e-9) << name;
        return result.message;
    }
};

} // namespace cad::testing

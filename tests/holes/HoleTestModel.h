// The geometry test document with the hole and thread commands registered, a plate
// with sketch points on its top face, a round boss, and measures of round faces.
#pragma once

#include "geometry/holes/HoleCommands.h"
#include "tests/geometry/GeometryTestModel.h"

#include <BRepAdaptor_Surface.hxx>
#include <TopoDS.hxx>

#include <string>
#include <utility>
#include <vector>

namespace cad::testing {

class HoleModel : public GeometryModel {
protected:
    HoleModel() { registerHoleCommands(registry); }

    // Box1, 40 x 40 x 10 from the origin, and Sketch1 on its top face (z = 10,
    // sketch axes along X and Y) holding a point at each position.
    void plateWithPoints(const std::vector<std::pair<double, double>>& points) {
        ok("create_box", {{"width", 40}, {"depth", 40}, {"height", 10}});
        ok("create_sketch", {{"origin_x", 0.0},
                             {"origin_y", 0.0},
                             {"origin_z", 10.0},
                             {"normal_x", 0.0},
                             {"normal_y", 0.0},
                             {"normal_z", 1.0},
                             {"x_dir_x", 1.0},
                             {"x_dir_y", 0.0},
                             {"x_dir_z", 0.0},
                             {"support", "Box1"}});
        for (auto [x, y] : points) ok("add_point", {{"sketch", "Sketch1"}, {"x", x}, {"y", y}});
    }

    // Body1: a cylinder of this diameter standing 10 high on XY; its round face is
    // "Extrude1.side.Circle1".
    void boss(double diameter) {
        ok("create_sketch", {{"plane", "XY"}});
        std::string sketch = document.objects().back()->id;
        ok("add_circle", {{"sketch", sketch}, {"cx", 0}, {"cy", 0}, {"radius", diameter / 2}});
        ok("extrude", {{"sketch", sketch}, {"distance", 10}});
    }

    // The radius of a body's cylindrical face by name; -1 when it isn't there or round.
    double radiusOf(const std::string& bodyId, const std::string& face) {
        GeometryObject* b = body(bodyId);
        auto found = b ? b->shape.findByName(face) : std::nullopt;
        if (!found) return -1;
        BRepAdaptor_Surface surface(TopoDS::Face(*found));
        return surface.GetType() == GeomAbs_Cylinder ? surface.Cylinder().Radius() : -1;
    }
    bool hasFace(const std::string& bodyId, const std::string& face) {
        GeometryObject* b = body(bodyId);
        return b && b->shape.findByName(face).has_value();
    }
};

} // namespace cad::testing

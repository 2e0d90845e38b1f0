// The geometry test document with the parametric feature commands registered, and
// the sketches revolve, sweep and loft tests start from.
#pragma once

#include "geometry/param/ParamCommands.h"
#include "tests/geometry/GeometryTestModel.h"

#include <numbers>
#include <string>

namespace cad::testing {

inline constexpr double pi = std::numbers::pi;

class ParamModel : public GeometryModel {
protected:
    ParamModel() { registerParamCommands(registry); }

    // A sketch on XZ (sketch x along X, sketch y along Z) with one rectangle.
    std::string xzRectangle(double x1, double z1, double x2, double z2) {
        std::string id = document.nextId("Sketch");
        ok("create_sketch", {{"plane", "XZ"}});
        ok("add_rectangle", {{"sketch", id}, {"x1", x1}, {"y1", z1}, {"x2", x2}, {"y2", z2}});
        return id;
    }
    // A sketch on the plane z = height, parallel to XY, with one circle at the origin.
    std::string circleAt(double height, double radius) {
        std::string id = sketchWithRectangles({}, height);
        ok("add_circle", {{"sketch", id}, {"cx", 0}, {"cy", 0}, {"radius", radius}});
        return id;
    }
    std::size_t objectCount() const { return document.objects().size(); }
};

} // namespace cad::testing

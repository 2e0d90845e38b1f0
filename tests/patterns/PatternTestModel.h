// The geometry test document with the hole, parametric and pattern commands
// registered in the order the application uses, and the plate most tests start from.
#pragma once

#include "geometry/holes/HoleCommands.h"
#include "geometry/param/ParamCommands.h"
#include "geometry/patterns/PatternCommands.h"
#include "geometry/patterns/PatternKinds.h"
#include "tests/geometry/GeometryTestModel.h"

#include <gp_Pnt.hxx>

#include <numbers>
#include <optional>
#include <string>

namespace cad::testing {

inline constexpr double pi = std::numbers::pi;

class PatternModel : public GeometryModel {
protected:
    PatternModel() {
        addPatternKinds();
        registerHoleCommands(registry);
        registerPatternCommands(registry);
        registerParamCommands(registry);
    }

    // Body1: a 100 x 40 x 10 plate from the origin (Extrude1), and Extrude2 from
    // Sketch2 at z = 10: a 6 x 6 square at (45..51, 5..11), a pocket 4 deep (distance
    // -4, cut) or a boss 4 high (distance 4, join).
    void plateWith(double distance) {
        sketchWithRectangles({{0, 0, 100, 40}});
        ok("extrude", {{"sketch", "Sketch1"}, {"distance", 10}});
        sketchWithRectangles({{45, 5, 51, 11}}, 10);
        ok("extrude", {{"sketch", "Sketch2"},
                       {"distance", distance},
                       {"operation", distance < 0 ? "cut" : "join"},
                       {"target", "Body1"}});
    }
    static constexpr double kPlate = 100 * 40 * 10, kSquare = 6 * 6 * 4;

    // A sketch at height z parallel to XY holding one circle.
    std::string circleSketch(double z, double cx, double cy, double radius) {
        std::string id = sketchWithRectangles({}, z);
        ok("add_circle", {{"sketch", id}, {"cx", cx}, {"cy", cy}, {"radius", radius}});
        return id;
    }

    // The centre of a body's face by name; far away when there is no such face.
    gp_Pnt faceCentre(const std::string& bodyId, const std::string& face) {
        GeometryObject* b = body(bodyId);
        std::optional<TopoDS_Shape> found = b ? b->shape.findByName(face) : std::nullopt;
        if (!found) return gp_Pnt(1e9, 1e9, 1e9);
        GProp_GProps props;
        BRepGProp::SurfaceProperties(*found, props);
        return props.CentreOfMass();
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

// A document driven through the command stack the way the window and agents drive
// it, with the history, sketch and geometry commands registered, plus measuring
// helpers for the resulting shapes.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistoryCommands.h"
#include "core/Parameters.h"
#include "geometry/GeometryCommands.h"
#include "sketch/SketchCommands.h"

#include <BRepBndLib.hxx>
#include <BRepGProp.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace cad::testing {

// A command argument as tests write it: "text", 10, 2.5 or true.
struct Arg {
    Value value;
    Arg(const char* text) : value(std::string(text)) {}
    Arg(std::string text) : value(std::move(text)) {}
    Arg(double number) : value(number) {}
    Arg(int number) : value(static_cast<std::int64_t>(number)) {}
    Arg(bool flag) : value(flag) {}
};
using Args = std::initializer_list<std::pair<const char*, Arg>>;

class GeometryModel : public ::testing::Test {
protected:
    GeometryModel() : stack(document, registry) {
        registerHistoryCommands(registry);
        registerParameterCommands(registry);
        registerSketchCommands(registry);
        registerGeometryCommands(registry);
    }

    CommandResult run(const std::string& name, Args arguments) {
        CommandRecord record(name);
        for (const auto& [key, arg] : arguments) record.set(key, arg.value);
        return stack.execute(record);
    }
    // Runs a command that must succeed; returns its message.
    std::string ok(const std::string& name, Args arguments) {
        CommandResult result = run(name, arguments);
        EXPECT_TRUE(result.ok) << name << ": " << result.message;
        return result.message;
    }

    // A sketch on XY (or at height z) with an axis-aligned rectangle per corner pair.
    std::string sketchWithRectangles(std::initializer_list<std::array<double, 4>> rectangles,
                                     double z = 0) {
        std::string id = document.nextId("Sketch");
        if (z == 0)
            ok("create_sketch", {{"plane", "XY"}});
        else
            ok("create_sketch", {{"origin_x", 0.0},
                                 {"origin_y", 0.0},
                                 {"origin_z", z},
                                 {"normal_x", 0.0},
                                 {"normal_y", 0.0},
                                 {"normal_z", 1.0},
                                 {"x_dir_x", 1.0},
                                 {"x_dir_y", 0.0},
                                 {"x_dir_z", 0.0}});
        for (const auto& r : rectangles)
            ok("add_rectangle",
               {{"sketch", id}, {"x1", r[0]}, {"y1", r[1]}, {"x2", r[2]}, {"y2", r[3]}});
        return id;
    }
    void addLine(const std::string& sketch, double x1, double y1, double x2, double y2) {
        ok("add_line", {{"sketch", sketch}, {"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}});
    }

    GeometryObject* body(const std::string& id) { return document.findAs<GeometryObject>(id); }

    static double volume(const TopoDS_Shape& shape) {
        GProp_GProps props;
        BRepGProp::VolumeProperties(shape, props);
        return props.Mass();
    }
    double volumeOf(const std::string& id) {
        GeometryObject* b = body(id);
        return b && !b->shape.isNull() ? volume(b->shape.shape()) : 0.0;
    }
    static int count(const TopoDS_Shape& shape, TopAbs_ShapeEnum type) {
        int n = 0;
        for (TopExp_Explorer e(shape, type); e.More(); e.Next()) ++n;
        return n;
    }
    // {xmin, ymin, zmin, xmax, ymax, zmax}, tight (from the exact geometry).
    static std::array<double, 6> bounds(const TopoDS_Shape& shape) {
        Bnd_Box box;
        BRepBndLib::AddOptimal(shape, box, Standard_False, Standard_False);
        std::array<double, 6> b{};
        box.Get(b[0], b[1], b[2], b[3], b[4], b[5]);
        return b;
    }

    Document document;
    CommandRegistry registry;
    CommandStack stack;
};

} // namespace cad::testing

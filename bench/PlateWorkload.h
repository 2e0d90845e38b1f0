// The W3 plate workload: a 100 x 100 x 5 plate from a fully constrained sketch at the
// origin, then K features in a 10 x 10 grid, even k a 5 x 5 boss 3 high, odd k a 3 x 3
// pocket 2 deep, each from its own fully constrained sketch at z = 5; built through
// the command stack, with the volume the model must have and a check of it that
// stays out of the timing.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/HistoryCommands.h"
#include "core/Parameters.h"
#include "geometry/GeometryCommands.h"
#include "sketch/SketchCommands.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

#include <benchmark/benchmark.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace cad::workloads {

class Plate {
public:
    explicit Plate(int features) : stack_(document_, registry_), features_(features) {
        registerHistoryCommands(registry_);
        registerParameterCommands(registry_);
        registerSketchCommands(registry_);
        registerGeometryCommands(registry_);

        run(CommandRecord("create_sketch").set("plane", "XY"));
        rectangle("Sketch1", 0, 0, 100, 100);
        run(CommandRecord("add_constraint")
                .set("sketch", "Sketch1")
                .set("type", "coincident")
                .set("a", "Rectangle1.bottom_left")
                .set("b", "Origin"));
        dimension("Sketch1", "horizontal_distance", "Rectangle1.bottom_right", 100);
        dimension("Sketch1", "vertical_distance", "Rectangle1.top_left", 100);
        run(CommandRecord("extrude").set("sketch", "Sketch1").set("distance", 5));

        for (int k = 0; k < features; ++k) {
            const bool boss = k % 2 == 0;
            const double size = boss ? 5 : 3;
            const double cx = 9.5 + 9 * (k % 10), cy = 9.5 + 9 * (k / 10);
            const std::string sketch = "Sketch" + std::to_string(k + 2);
            run(CommandRecord("create_sketch")
                    .set("origin_x", 0)
                    .set("origin_y", 0)
                    .set("origin_z", 5)
                    .set("normal_x", 0)
                    .set("normal_y", 0)
                    .set("normal_z", 1)
                    .set("x_dir_x", 1)
                    .set("x_dir_y", 0)
                    .set("x_dir_z", 0));
            const double x = cx - size / 2, y = cy - size / 2;
            rectangle(sketch, x, y, x + size, y + size);
            // Fully constrained: the corner from the origin, then width and height.
            dimension(sketch, "horizontal_distance", "Rectangle1.bottom_left", x, "Origin");
            dimension(sketch, "vertical_distance", "Rectangle1.bottom_left", y, "Origin");
            dimension(sketch, "horizontal_distance", "Rectangle1.bottom_right", size);
            dimension(sketch, "vertical_distance", "Rectangle1.top_left", size);
            run(CommandRecord("extrude")
                    .set("sketch", sketch)
                    .set("distance", boss ? 3.0 : -2.0)
                    .set("operation", boss ? "join" : "cut")
                    .set("target", "Body1"));
        }
        body_ = document_.findAs<GeometryObject>("Body1");
        lastFeature_ = "Extrude" + std::to_string(features + 1);
    }

    void run(const CommandRecord& record) {
        CommandResult result = stack_.execute(record);
        if (!result.ok) throw std::runtime_error(record.toCall() + ": " + result.message);
    }
    // Runs a command that may be refused; true when it was carried out.
    bool attempt(const CommandRecord& record) { return stack_.execute(record).ok; }
    void undo() {
        if (!stack_.undo()) throw std::runtime_error("nothing to undo");
    }

    double expectedVolume() const {
        const int bosses = (features_ + 1) / 2, pockets = features_ / 2;
        return width_ * 100 * 5 + bosses * 75.0 - (pockets - 1) * 18.0 - 9.0 * lastDepth_;
    }
    double volume() const {
        GProp_GProps props;
        BRepGProp::VolumeProperties(body_->shape.shape(), props);
        return props.Mass();
    }
    bool volumeIsRight() const {
        return std::abs(volume() - expectedVolume()) < 1e-6 * expectedVolume();
    }

    Document& document() { return document_; }
    GeometryObject& body() { return *body_; }
    const std::string& lastFeature() const { return lastFeature_; }
    void setWidth(double width) {
        width_ = width;
        run(CommandRecord("edit_constraint")
                .set("sketch", "Sketch1")
                .set("constraint", "HorizontalDistance1")
                .set("value", width));
    }
    void setLastDepth(double depth) {
        lastDepth_ = depth;
        run(CommandRecord("edit_feature").set("feature", lastFeature_).set("distance", -depth));
    }
    // The depth the volume is checked against, after a change made some other way.
    void expectLastDepth(double depth) { lastDepth_ = depth; }
    double width() const { return width_; }
    double lastDepth() const { return lastDepth_; }

private:
    void rectangle(const std::string& sketch, double x1, double y1, double x2, double y2) {
        run(CommandRecord("add_rectangle")
                .set("sketch", sketch)
                .set("x1", x1)
                .set("y1", y1)
                .set("x2", x2)
                .set("y2", y2));
    }
    void dimension(const std::string& sketch, const char* type, const char* a, double value,
                   const char* from = "Rectangle1.bottom_left") {
        run(CommandRecord("add_constraint")
                .set("sketch", sketch)
                .set("type", type)
                .set("a", from)
                .set("b", a)
                .set("value", value));
    }

    Document document_;
    CommandRegistry registry_;
    CommandStack stack_;
    int features_;
    GeometryObject* body_ = nullptr;
    std::string lastFeature_;
    double width_ = 100;
    double lastDepth_ = 2;
};

// Checks the volume outside the timing; false (and the run marked failed) when wrong.
inline bool checkVolume(benchmark::State& state, const Plate& plate) {
    state.PauseTiming();
    if (!plate.volumeIsRight()) {
        state.SkipWithError(("the plate's volume is wrong: expected " +
                             std::to_string(plate.expectedVolume()) + ", got " +
                             std::to_string(plate.volume()))
                                .c_str());
        return false;
    }
    state.ResumeTiming();
    return true;
}

} // namespace cad::workloads

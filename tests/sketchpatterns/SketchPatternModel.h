// A document with the sketch, geometry, pattern and projection commands registered
// (the projection hook installed), and lookups of sketch entities for the checks.
#pragma once

#include "tests/geometry/GeometryTestModel.h"

#include "geometry/projection/ProjectionCommands.h"
#include "sketch/SketchJson.h"
#include "sketch/SketchObject.h"
#include "sketch/patterns/SketchPatternCommands.h"

#include <cmath>
#include <numbers>
#include <string>

namespace cad::testing {

class SketchPatternModel : public GeometryModel {
protected:
    SketchPatternModel() {
        registerSketchPatternCommands(registry);
        registerProjectionCommands(registry);
    }

    std::string error(const std::string& name, Args arguments) {
        CommandResult result = run(name, arguments);
        EXPECT_FALSE(result.ok) << name << " succeeded: " << result.message;
        return result.message;
    }

    SketchObject& sketch(const std::string& id) {
        auto* found = document.findAs<SketchObject>(id);
        EXPECT_NE(found, nullptr) << id;
        return *found;
    }
    const SketchEntity& entity(const std::string& sketchId, const std::string& id) {
        const SketchEntity* found = sketch(sketchId).findEntity(id);
        EXPECT_NE(found, nullptr) << id;
        static const SketchEntity none;
        return found ? *found : none;
    }
    // Everything undo has to put back: entities, constraints and patterns as the
    // project file writes them.
    std::string snapshot(const std::string& sketchId) {
        nlohmann::ordered_json record = nlohmann::ordered_json::object();
        SideFiles sideFiles;
        ObjectTypes types;
        registerSketchTypes(types);
        types.find("Sketch")->write(sketch(sketchId), record, sideFiles);
        return record.dump();
    }

    static Point2 turned(Point2 p, double degrees, Point2 about = {}) {
        const double t = degrees * std::numbers::pi / 180.0;
        const double dx = p.x - about.x, dy = p.y - about.y;
        return {about.x + dx * std::cos(t) - dy * std::sin(t),
                about.y + dx * std::sin(t) + dy * std::cos(t)};
    }
    static void expectNear(Point2 actual, Point2 expected, const std::string& what,
                           double tolerance = 1e-9) {
        EXPECT_NEAR(actual.x, expected.x, tolerance) << what;
        EXPECT_NEAR(actual.y, expected.y, tolerance) << what;
    }
};

} // namespace cad::testing

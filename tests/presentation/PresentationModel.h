// Models the presentation tests share, built through the real commands: a rounded
// outline (four lines joined by four quarter arcs) and its extrusion.
#pragma once

#include "GeometryTestModel.h"

namespace cad::testing {

class PresentationModel : public GeometryModel {
protected:
    // Sketch on XY: a 40 x 20 outline with corner radius 5 (Line1, Arc1, Line2, Arc2,
    // ... in order round it), plus whatever the test adds.
    std::string roundedOutline() {
        const std::string sketch = document.nextId("Sketch");
        ok("create_sketch", {{"plane", "XY"}});
        auto arc = [&](double cx, double cy, double start) {
            ok("add_arc", {{"sketch", sketch},
                           {"cx", cx},
                           {"cy", cy},
                           {"radius", 5.0},
                           {"start_angle", start},
                           {"sweep_angle", 90.0}});
        };
        addLine(sketch, 5, 0, 35, 0);
        arc(35, 5, -90);
        addLine(sketch, 40, 5, 40, 15);
        arc(35, 15, 0);
        addLine(sketch, 35, 20, 5, 20);
        arc(5, 15, 90);
        addLine(sketch, 0, 15, 0, 5);
        arc(5, 5, 180);
        return sketch;
    }
};

} // namespace cad::testing

// Where the hole panel's holes go, as its position row keeps them: a sketch
// ("Sketch2") or some of its points and circles ("Sketch2/Point1"), or points
// clicked on a flat face ("Box1/Extrude1.end@12.5,3,10"). Clicked points become a
// sketch on the face with a point at each click when OK is pressed.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"

#include <QString>

#include <gp_Ax1.hxx>
#include <gp_Pnt.hxx>

#include <array>
#include <string>
#include <vector>

namespace cad {
class Document;
}

namespace cad::ui {

// A click or a selected object as the position row keeps it: a sketch's point or
// circle as it is, any other part of a sketch as the whole sketch; a sentence for
// anything else (a face needs the point it was clicked at).
Result<std::string> holePosition(const Document& document, const std::string& reference);
// A click with the model point it hit: on a flat face of a body, the face and the point.
Result<std::string> holePositionAt(const Document& document, const std::string& reference,
                                   const std::array<double, 3>& point);
// What a kept position reads as in the row.
QString holePositionLabel(const Document& document, const std::string& position);

// The positions read back: on one sketch, or clicked on one face.
struct HolePlacement {
    std::string sketch;              // the sketch the holes sit on; empty for clicks
    std::vector<std::string> points; // some of its points or circles; empty: every one
    std::string face;                // or the flat face clicked ("Box1/Extrude1.end")
    std::vector<gp_Pnt> clicks;      // and where
};
Result<HolePlacement> readHolePositions(const Document& document,
                                        const std::vector<std::string>& positions);

// For clicks: the commands that make a sketch on the face with a point at each click;
// `sketch` receives the ID the sketch will have.
Result<std::vector<CommandRecord>>
faceSketchCommands(const Document& document, const HolePlacement& placement, std::string& sketch);

// Where each hole starts and the way it is drilled.
Result<std::vector<gp_Ax1>> holeAxes(const Document& document, const HolePlacement& placement,
                                     bool flip);

} // namespace cad::ui

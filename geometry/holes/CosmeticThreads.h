// The cosmetic threads of a body, for the view to draw: a cosmetic thread leaves
// the shape as it is, so its axis, size and length are all there is to show.
#pragma once

#include <gp_Ax1.hxx>

#include <string>
#include <vector>

namespace cad {

class Document;
class GeometryObject;

struct CosmeticThread {
    std::string feature; // "Hole1", "Thread2"
    gp_Ax1 axis;         // starts where the thread starts, points along it
    double radius = 0;   // the thread's major radius
    double pitch = 0;
    double length = 0;
    bool internal = false; // inside a hole
};

// Every cosmetic thread of the body's features that computed: tapped holes without a
// modeled thread (one per hole) and thread features that aren't modeled.
std::vector<CosmeticThread> cosmeticThreads(const Document& document, const GeometryObject& body);

} // namespace cad

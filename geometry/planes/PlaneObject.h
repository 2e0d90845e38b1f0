// Reference planes: construction planes defined from existing geometry (offset
// from a face, through three points, normal to a curve...) that follow it.
#pragma once

#include "core/DocumentObject.h"

#include <gp_Ax3.hxx>

#include <string>
#include <string_view>
#include <vector>

namespace cad {

// What a reference plane is defined from; a copy is what an edit puts back on undo.
struct PlaneDefinition {
    // "offset", "angle", "midplane", "three_points", "through", "tangent" or "normal".
    std::string kind = "offset";
    std::vector<std::string> references; // reference texts, objects named by ID
    double distance = 0;                 // mm along the normal (offset)
    double angle = 0;                    // degrees (angle, tangent)
    double position = 0;                 // 0 (start) to 1 (end) along a curve (normal)
    bool flip = false;                   // reverses the normal
    double size = 0;                     // half-width as drawn; 0 fits what it's defined from
};

// Every plane kind word, in the order the catalogue lists them.
const std::vector<std::string>& planeKinds();

class PlaneObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "Plane"; }
    // The objects its references name.
    std::vector<std::string> dependencies() const override;
    // Computes the placement again; when a reference fails the plane keeps its last
    // placement and the sentence. True when the placement or the sentence changed.
    bool recompute(const Document& document) override;

    PlaneDefinition definition;

    // The result of the last compute.
    gp_Ax3 placement;      // origin, normal (Direction) and X direction; right-handed
    double halfWidth = 10; // mm, as drawn
    bool placed = false;   // false until it has computed once
    std::string error;     // why the last compute failed; empty when it computed
};

} // namespace cad

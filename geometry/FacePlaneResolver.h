// What lets sketches sit on reference planes and flat faces: the plane of a
// reference, resolved by the geometry layer for the sketch layer below it.
#pragma once

#include "sketch/SketchPlaneResolver.h"

namespace cad::geometry {

class FacePlaneResolver : public SketchPlaneResolver {
public:
    Result<PlaneFrame> planeOf(const Document& document, std::string_view reference) const override;
};

// Installs a FacePlaneResolver as the sketches' resolver.
void installFacePlaneResolver();

} // namespace cad::geometry

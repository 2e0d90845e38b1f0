// How a sketch finds the plane it sits on when that is a reference plane or a flat
// face. The geometry layer knows planes and faces; it installs the resolver here.
#pragma once

#include "core/OriginPlanes.h"
#include "core/Result.h"

#include <memory>
#include <string_view>

namespace cad {

class Document;

class SketchPlaneResolver {
public:
    virtual ~SketchPlaneResolver() = default;
    // The plane of a reference plane object or a flat face ("Plane1",
    // "Body1/Extrude1.end"), or why the reference is neither.
    virtual Result<PlaneFrame> planeOf(const Document& document,
                                       std::string_view reference) const = 0;
};

// Installs the process-wide resolver (null removes it). Until one is installed only
// the origin planes can be sketched on by name, and sketches keep their planes.
void installSketchPlaneResolver(std::shared_ptr<const SketchPlaneResolver> resolver);
const SketchPlaneResolver* sketchPlaneResolver();

} // namespace cad

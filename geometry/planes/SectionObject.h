// Section analyses: the view cut open along a plane or flat face, leaned and moved
// from it. They change nothing in the model; the view clips bodies with them.
#pragma once

#include "core/DocumentObject.h"
#include "core/Result.h"

#include <gp_Ax3.hxx>

#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;

struct SectionDefinition {
    std::vector<std::string> references; // the plane or flat face to cut along, by ID
    double distance = 0;                 // mm along the reference's normal
    double tilt = 0;                     // degrees about the reference plane's X direction
    double turn = 0;                     // degrees about its Y direction
    bool flip = false;                   // cut away the other side
};

class SectionObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "Section"; }
    std::vector<std::string> dependencies() const override;
    // As a reference plane: a vanished reference leaves the last cut and the sentence.
    bool recompute(const Document& document) override;

    SectionDefinition definition;

    // The cut plane from the last compute; its normal points to the side cut away.
    gp_Ax3 placement;
    bool placed = false;
    std::string error;
};

namespace geometry {

// The cut plane: the reference's plane turned by tilt about its X direction and by
// turn about its Y direction, moved by distance along its normal, reversed by flip.
Result<gp_Ax3> computeSection(const Document& document, const SectionDefinition& definition);

} // namespace geometry

} // namespace cad

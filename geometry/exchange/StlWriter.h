// Writing bodies to one STL mesh file, meshed to a chosen precision, in binary or
// text form, with its numbers in a chosen unit.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "geometry/exchange/ExportBodies.h"

#include <string>
#include <vector>

namespace cad::exchange {

struct StlExportOptions {
    double linearDeflection = 0.01;  // mm: how far triangles may stray from the surfaces
    double angularDeflection = 0.35; // radians
    bool binary = true;
    units::Length unit = units::Length::Millimeters; // what the file's numbers are in

    StlExportOptions() = default;
};

// The linear deflection the mesher is given: the option in the file's unit, at
// least 0.0001.
double meshDeflection(const StlExportOptions& options);

// "Nothing to export.", "The shapes couldn't be meshed.", "Couldn't write <path>". The
// bodies' own shapes are not touched (the mesh is made on a copy). A failed write
// leaves any file already at `path` as it was.
Result<void> writeStl(const std::vector<ExportBody>& bodies, const std::string& path,
                      const StlExportOptions& options);

} // namespace cad::exchange

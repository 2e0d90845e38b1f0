// Choosing the bodies to export: those listed by ID or name, else every visible
// body, each with the name it is written under.
#pragma once

#include "core/Result.h"

#include <TopoDS_Shape.hxx>

#include <string>
#include <vector>

namespace cad {
class Document;
}

namespace cad::exchange {

struct ExportBody {
    std::string name; // the body's label, else its ID
    TopoDS_Shape shape;
};

// The listed bodies in the order given (a body listed twice comes once), or, with
// no names, every visible body that has a shape. "No body named '<name>'.", "<name>
// has no shape.", "There are no visible bodies to export.".
Result<std::vector<ExportBody>> collectBodies(const Document& document,
                                              const std::vector<std::string>& names);

} // namespace cad::exchange

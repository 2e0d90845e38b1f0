// The project file's support for bodies and their features (their own keys, and a
// body's base shape as a BRep side file), reference planes and section analyses.
#pragma once

namespace cad {

class ObjectTypes;

void registerGeometryTypes(ObjectTypes& types);

} // namespace cad

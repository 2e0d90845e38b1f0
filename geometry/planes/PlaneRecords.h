// The project file's records of reference planes and section analyses: their
// definitions under "params"; placements are computed again when the file opens.
#pragma once

namespace cad {

class ObjectTypes;

void registerPlaneTypes(ObjectTypes& types);

} // namespace cad

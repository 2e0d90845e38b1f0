// The project file's "Hole" and "Thread" records.
#pragma once

namespace cad {

class ObjectTypes;

void registerHoleTypes(ObjectTypes& types);

} // namespace cad

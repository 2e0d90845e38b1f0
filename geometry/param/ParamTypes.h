// The project-file records of the parametric kinds: "type" is the kind's type id,
// "params" its parameters, and kinds that make a new solid add "operation" and
// "target".
#pragma once

namespace cad {

class ObjectTypes;

void registerParamTypes(ObjectTypes& types);

} // namespace cad

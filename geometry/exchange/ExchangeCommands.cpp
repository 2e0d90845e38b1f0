// Registers import_model with its catalogue description.
#include "geometry/exchange/ExchangeCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/exchange/ImportModelCommand.h"

namespace cad::exchange {

void registerExchangeCommands(CommandRegistry& registry) {
    registry.add("import_model",
                 "Bring in a 3D model as bodies, in place: a STEP file's solids (named after their "
                 "parts), or an STL mesh sewn into a solid. Lengths: STEP carries its own units; "
                 "an STL's numbers are in `unit` (default mm).",
                 ImportModelCommand::arguments(), &ImportModelCommand::create);
}

} // namespace cad::exchange

// The model exchange commands: import_model.
#pragma once

namespace cad {
class CommandRegistry;
}

namespace cad::exchange {

void registerExchangeCommands(CommandRegistry& registry);

} // namespace cad::exchange

// Commands that edit the design history and the document's objects as a whole:
// roll back, suppress, move a step, delete, rename, show or hide, set the unit.
#pragma once

namespace cad {

class CommandRegistry;

void registerHistoryCommands(CommandRegistry& registry);

} // namespace cad

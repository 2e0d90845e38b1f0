// The commands of the parametric kinds: for each registered kind its command and
// "edit_" + command, with schemas from its argument table.
#pragma once

namespace cad {

class CommandRegistry;

void registerParamCommands(CommandRegistry& registry);

} // namespace cad

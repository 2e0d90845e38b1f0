// Registers "project" and installs what keeps projected sketch geometry following
// its sources.
#pragma once

namespace cad {

class CommandRegistry;

void registerProjectionCommands(CommandRegistry& registry);

} // namespace cad

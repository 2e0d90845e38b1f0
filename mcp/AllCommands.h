// One place that builds the whole command registry and the whole object type table,
// so the window, the headless server and the tests all get the same set.
#pragma once

#include <string_view>
#include <vector>

namespace cad {
class CommandRegistry;
class ObjectTypes;
} // namespace cad

namespace cad::mcp {

// Every folder's commands, in the order the tool catalogue lists them.
void registerAllCommands(CommandRegistry& registry);
// Every object type a project file can hold.
void registerAllTypes(ObjectTypes& types);

// Command names in catalogue order. Commands missing here follow, in the order
// their folders register them.
const std::vector<std::string_view>& catalogueCommandOrder();

} // namespace cad::mcp

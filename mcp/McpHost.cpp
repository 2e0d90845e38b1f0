// What every host shares: the view names an agent may ask for.
#include "mcp/McpHost.h"

namespace cad::mcp {

Result<void> checkViewName(const std::string& name) {
    for (const char* known : {"top", "front", "right", "iso", "fit"})
        if (name == known) return {};
    return fail("Unknown view '" + name + "'. Expected top, front, right, iso or fit.");
}

} // namespace cad::mcp

// What the agent protocol handler needs from the application it drives: the
// document and its command machinery, project files, and the 3D view if there is one.
#pragma once

#include "core/Result.h"

#include <string>

namespace cad {
class Document;
class CommandStack;
class CommandRegistry;
} // namespace cad

namespace cad::mcp {

class McpHost {
public:
    virtual ~McpHost() = default;
    virtual Document& document() = 0;
    virtual CommandStack& commandStack() = 0;
    virtual CommandRegistry& registry() = 0;
    // Starts a new, empty document.
    virtual Result<void> newDocument() = 0;
    virtual Result<void> openProject(const std::string& path) = 0;
    // An empty path means the current file.
    virtual Result<void> saveProject(const std::string& path) = 0;
    // The open project's path; empty while it was never saved.
    virtual std::string currentPath() const = 0;
    // True when a window shows the model: picks the instructions and enables the view tools.
    virtual bool isInteractive() const = 0;
    // The 3D view as PNG bytes.
    virtual Result<std::string> screenshot() = 0;
    // "top", "front", "right", "iso", or "fit" to fit everything.
    virtual Result<void> setView(const std::string& name) = 0;
};

// The sentence for a view name no host knows, or success for the five it does.
Result<void> checkViewName(const std::string& name);

} // namespace cad::mcp

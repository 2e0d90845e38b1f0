// The agents' host inside the main window: the agent drives the window's own
// document, undo history and files, and sees and turns the window's 3D view.
#pragma once

#include "mcp/McpHost.h"

namespace cad::ui {

class MainWindow;

class MainWindowMcpHost : public mcp::McpHost {
public:
    explicit MainWindowMcpHost(MainWindow& window) : window_(window) {}

    Document& document() override;
    CommandStack& commandStack() override;
    CommandRegistry& registry() override;
    // Both refuse while the user has unsaved changes: only the user may drop them.
    Result<void> newDocument() override;
    Result<void> openProject(const std::string& path) override;
    Result<void> saveProject(const std::string& path) override;
    std::string currentPath() const override;
    bool isInteractive() const override { return true; }
    // What the view shows now, as PNG bytes.
    Result<std::string> screenshot() override;
    // Turns at once, without animation, so that a screenshot right after shows it.
    Result<void> setView(const std::string& name) override;

private:
    MainWindow& window_;
};

} // namespace cad::ui

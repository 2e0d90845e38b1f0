// The host without a window: it owns a document, the full command registry, the
// undo stack and the current project path. The agent server on stdio and on the
// local socket drives it; nothing is shown, so there is no view to capture or turn.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "mcp/McpHost.h"

#include <string>

namespace cad::mcp {

class HeadlessHost : public McpHost {
public:
    // `generator` is written into saved projects' manifests.
    explicit HeadlessHost(std::string generator = "Korvel Studio agent server");

    Document& document() override { return document_; }
    CommandStack& commandStack() override { return stack_; }
    CommandRegistry& registry() override { return registry_; }
    // Discards the open document, saved or not: nobody else is looking at it.
    Result<void> newDocument() override;
    Result<void> openProject(const std::string& path) override;
    Result<void> saveProject(const std::string& path) override;
    std::string currentPath() const override { return path_; }
    bool isInteractive() const override { return false; }
    Result<std::string> screenshot() override;
    Result<void> setView(const std::string& name) override;

private:
    Document document_;
    CommandRegistry registry_;
    CommandStack stack_;
    std::string path_;
    std::string generator_;
};

} // namespace cad::mcp

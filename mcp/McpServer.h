// The agent protocol handler: one JSON-RPC 2.0 request text in, at most one
// response text out. It sees the application only through McpHost and runs on the
// thread that owns the document, one request at a time.
#pragma once

#include "mcp/McpHost.h"
#include "mcp/ToolAnswer.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace cad::mcp {

inline constexpr const char* kProtocolVersion = "2025-06-18";

class McpServer {
public:
    // `version` is the application's version, "dev" when empty.
    McpServer(McpHost& host, std::string version);

    // The response to one message, or none for a notification.
    std::optional<std::string> handle(std::string_view requestText);

    McpHost& host() { return host_; }
    const std::string& version() const { return version_; }
    // The paragraph "initialize" hands the agent, with the sentence for this host.
    std::string instructions() const;

private:
    // Runs one tool; an exception that slips out becomes the tool's failure.
    static ToolAnswer guarded(const std::string& tool, const std::function<ToolAnswer()>& run);

    McpHost& host_;
    std::string version_;
    // The "tools" array as text, made on the first "tools/list": the registry is
    // built once and never changes afterwards.
    std::string toolList_;
};

// Whether handle() answers this text at all: everything but a notification does.
// Relays use it to know how many answers are still owed.
bool expectsAnswer(std::string_view requestText);

} // namespace cad::mcp

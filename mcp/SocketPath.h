// Where the agent socket lives and the platform work around it: the per-user
// default path, the KORVEL_MCP_PIPE override, and keeping the socket private.
// Each platform implements these in its own file (SocketPath_posix.cpp here).
#pragma once

#include "core/Result.h"

#include <string>
#include <string_view>

namespace cad::mcp {

// The logon name with '\', '/' and spaces made '_'; "user" when it can't be read.
std::string currentUserName();
// The socket path: KORVEL_MCP_PIPE when it holds 1 to 255 characters, else the
// platform's per-user default.
std::string mcpSocketPath();
// The per-user default: $XDG_RUNTIME_DIR/korvel-mcp-<user>, else /tmp/korvel-mcp-<user>.
std::string defaultMcpSocketPath();

// The user's name made safe for a path: '\', '/' and spaces become '_'.
std::string pathSafeUserName(std::string_view name);

enum class PathKind { Missing, Socket, Other };
PathKind pathKind(const std::string& path);
// Readable and writable by its owner only (mode 0600).
Result<void> restrictToOwner(const std::string& path);

} // namespace cad::mcp

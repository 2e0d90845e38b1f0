// The agent protocol over a pair of streams, one message a line: what korvel-mcp
// does on stdin and stdout, and what a relay does between stdio and a socket.
#pragma once

#include "mcp/McpServer.h"

#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace cad::mcp {

// Writes one answer line (the text plus a line feed); false when the output is gone.
using LineWriter = std::function<bool(std::string_view line)>;

// Answers every message read from `in` until it ends or the output fails. Blank
// lines are skipped and a trailing carriage return is dropped.
void serveLines(McpServer& server, std::istream& in, const LineWriter& write);

// Relays stdin to the socket of a running Korvel Studio and its answers to
// `out`, until the input ends and every answer owed has arrived, or the socket
// closes. Returns the process exit code; problems are told on standard error.
int relayToSocket(const std::string& socketPath, std::istream& in, const LineWriter& write);

} // namespace cad::mcp

// korvel-mcp: the agent server without a window. On stdin/stdout (the default) it
// serves a fresh document; --listen serves the agent socket instead; --connect
// relays stdin/stdout to the socket of a running Korvel Studio.
#include "core/Version.h"
#include "mcp/HeadlessHost.h"
#include "mcp/McpListener.h"
#include "mcp/McpServer.h"
#include "mcp/ProcessSupport.h"
#include "mcp/SocketPath.h"
#include "mcp/StdioServer.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

namespace {

const char* const kUsage =
    "usage: korvel-mcp                    serve MCP on stdin/stdout (one message a line)\n"
    "       korvel-mcp --listen [SOCKET]  serve MCP on the agent socket until stopped\n"
    "       korvel-mcp --connect [SOCKET] relay stdin/stdout to a running Korvel Studio\n"
    "The socket defaults to KORVEL_MCP_PIPE, else $XDG_RUNTIME_DIR/korvel-mcp-<user>.\n";

cad::mcp::LineWriter lineWriter(std::FILE* out) {
    return [out](std::string_view line) {
        if (std::fwrite(line.data(), 1, line.size(), out) != line.size()) return false;
        if (std::fputc('\n', out) == EOF) return false;
        return std::fflush(out) == 0;
    };
}

int serveStdio() {
    std::FILE* out = cad::mcp::claimStdoutForProtocol();
    std::ios::sync_with_stdio(false);
    cad::mcp::HeadlessHost host;
    cad::mcp::McpServer server(host, cad::kApplicationVersion);
    cad::mcp::serveLines(server, std::cin, lineWriter(out));
    return 0;
}

int listen(int argc, char** argv, const std::string& path) {
    QCoreApplication app(argc, argv);
    cad::mcp::quitOnTerminationSignals();
    cad::mcp::HeadlessHost host;
    cad::mcp::McpServer server(host, cad::kApplicationVersion);
    cad::mcp::McpListener listener(
        [&server](const std::string& line) { return server.handle(line); });
    if (cad::Result<void> listening = listener.listen(path); !listening) {
        std::fprintf(stderr, "korvel-mcp: %s\n", listening.error().c_str());
        return 1;
    }
    std::fprintf(stderr, "korvel-mcp: serving agents at %s\n", path.c_str());
    return app.exec();
}

int connect(int argc, char** argv, const std::string& path) {
    std::FILE* out = cad::mcp::claimStdoutForProtocol();
    QCoreApplication app(argc, argv);
    int code = cad::mcp::relayToSocket(path, std::cin, lineWriter(out));
    std::fflush(out);
    // The stdin reader may still be blocked in a read: end the process here.
    std::_Exit(code);
}

} // namespace

int main(int argc, char** argv) {
    cad::mcp::ignoreBrokenPipes();
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (argc > 3 || (argc == 3 && mode != "--listen" && mode != "--connect")) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (mode.empty()) return serveStdio();
    if (mode == "--help" || mode == "-h") {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (mode == "--version") {
        std::printf("korvel-mcp %s\n", cad::kApplicationVersion);
        return 0;
    }
    const std::string path = argc == 3 ? argv[2] : cad::mcp::mcpSocketPath();
    if (mode == "--listen") return listen(argc, argv, path);
    if (mode == "--connect") return connect(argc, argv, path);
    std::fputs(kUsage, stderr);
    return 2;
}

// korvel-mcp: the agent server without a window. On stdin/stdout (the default) it
// serves a fresh document; --listen serves the agent socket instead; --connect
// relays stdin/stdout to the socket of a running Korvel Studio; --print-config
// writes the set-up block for MCP clients.
#include "core/Version.h"
#include "mcp/HeadlessHost.h"
#include "mcp/McpListener.h"
#include "mcp/McpServer.h"
#include "mcp/ProcessSupport.h"
#include "mcp/SocketPath.h"
#include "mcp/StdioServer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QStringList>

#include <nlohmann/json.hpp>

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
    "       korvel-mcp --print-config     write the MCP client set-up (\"mcpServers\")\n"
    "       korvel-mcp --help | --version\n"
    "The socket defaults to KORVEL_MCP_PIPE, else $XDG_RUNTIME_DIR/korvel-mcp-<user>.\n";

enum class Mode { Stdio, Listen, Connect, PrintConfig, Help, Version };

// What the command line asked for, or the exit code of a command line refused.
struct CommandLine {
    Mode mode = Mode::Stdio;
    std::string socket; // given after --listen or --connect; empty means the default
    int refused = 0;
};

CommandLine refuse(const std::string& problem) {
    std::fprintf(stderr, "korvel-mcp: %s\n", problem.c_str());
    return {Mode::Stdio, {}, 2};
}

// Read only when there are arguments: the plain stdio server starts without a parser.
CommandLine readCommandLine(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    QCommandLineParser parser;
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QString());
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")}, QString());
    const QCommandLineOption listen(QStringLiteral("listen"), QString());
    const QCommandLineOption connect(QStringLiteral("connect"), QString());
    const QCommandLineOption printConfig(QStringLiteral("print-config"), QString());
    parser.addOptions({help, version, listen, connect, printConfig});
    if (!parser.parse(arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        if (unknown.isEmpty()) return refuse(parser.errorText().toStdString());
        const std::string name = unknown.front().toStdString();
        return refuse("unknown option " + std::string(name.size() == 1 ? "-" : "--") + name +
                      "; korvel-mcp --help lists the options.");
    }
    if (parser.isSet(help)) return {Mode::Help, {}, 0};
    if (parser.isSet(version)) return {Mode::Version, {}, 0};

    const int modes = (parser.isSet(listen) ? 1 : 0) + (parser.isSet(connect) ? 1 : 0) +
                      (parser.isSet(printConfig) ? 1 : 0);
    if (modes > 1) return refuse("--listen, --connect and --print-config each go alone.");
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) return refuse("give one socket path at most.");
    const Mode mode = parser.isSet(listen)        ? Mode::Listen
                      : parser.isSet(connect)     ? Mode::Connect
                      : parser.isSet(printConfig) ? Mode::PrintConfig
                                                  : Mode::Stdio;
    if (!positional.isEmpty() && mode != Mode::Listen && mode != Mode::Connect)
        return refuse("a socket path goes after --listen or --connect.");
    return {mode, positional.isEmpty() ? std::string() : positional.front().toStdString(), 0};
}

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

// The block MCP clients read their servers from, naming this very program by its
// absolute path: one server without a window, one for the open Korvel Studio.
int printConfig(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const std::string program = QCoreApplication::applicationFilePath().toStdString();
    nlohmann::ordered_json headless{{"command", program}, {"args", nlohmann::json::array()}};
    nlohmann::ordered_json window{{"command", program},
                                  {"args", nlohmann::json::array({"--connect"})}};
    nlohmann::ordered_json servers{{"korvel", headless}, {"korvel-window", window}};
    const nlohmann::ordered_json config{{"mcpServers", servers}};
    std::printf("%s\n", config.dump(2).c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    cad::mcp::ignoreBrokenPipes();
    const CommandLine commandLine = argc > 1 ? readCommandLine(argc, argv) : CommandLine{};
    if (commandLine.refused != 0) return commandLine.refused;
    const std::string path =
        commandLine.socket.empty() ? cad::mcp::mcpSocketPath() : commandLine.socket;
    switch (commandLine.mode) {
    case Mode::Stdio:
        return serveStdio();
    case Mode::Listen:
        return listen(argc, argv, path);
    case Mode::Connect:
        return connect(argc, argv, path);
    case Mode::PrintConfig:
        return printConfig(argc, argv);
    case Mode::Help:
        std::fputs(kUsage, stdout);
        return 0;
    case Mode::Version:
        std::printf("korvel-mcp %s\n", cad::kApplicationVersion);
        return 0;
    }
    return 2;
}

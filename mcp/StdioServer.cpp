// Line-delimited JSON-RPC over streams: the headless server's loop, and the relay
// that carries a stdio client's lines to a window's socket and back.
#include "mcp/StdioServer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QLocalSocket>

#include <cstdio>
#include <memory>
#include <thread>

namespace cad::mcp {

namespace {

// Drops a trailing carriage return; true when nothing but spaces is left.
bool trimLine(std::string& line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line.find_first_not_of(" \t") == std::string::npos;
}

} // namespace

void serveLines(McpServer& server, std::istream& in, const LineWriter& write) {
    std::string line;
    while (std::getline(in, line)) {
        if (trimLine(line)) continue;
        std::optional<std::string> answer = server.handle(line);
        if (answer && !write(*answer)) return;
    }
}

int relayToSocket(const std::string& socketPath, std::istream& in, const LineWriter& write) {
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(socketPath));
    if (!socket.waitForConnected(3000)) {
        std::fprintf(stderr,
                     "korvel-mcp: nothing is serving agents at %s. Start Korvel Studio (or "
                     "korvel-mcp --listen), or give the socket path after --connect.\n",
                     socketPath.c_str());
        return 1;
    }

    struct State {
        long owed = 0;          // answers still to come for the lines sent
        bool inputDone = false; // stdin has ended
        std::string partial;    // answer bytes after the last line feed
    };
    auto state = std::make_shared<State>();
    QEventLoop loop;
    auto finishIfDone = [&] {
        if (state->inputDone && state->owed <= 0) loop.exit(0);
    };
    QObject::connect(&socket, &QLocalSocket::readyRead, &loop, [&] {
        QByteArray bytes = socket.readAll();
        state->partial.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        std::size_t start = 0;
        for (std::size_t nl = state->partial.find('\n'); nl != std::string::npos;
             nl = state->partial.find('\n', start)) {
            if (!write(std::string_view(state->partial).substr(start, nl - start))) loop.exit(1);
            start = nl + 1;
            --state->owed;
        }
        state->partial.erase(0, start);
        finishIfDone();
    });
    QObject::connect(&socket, &QLocalSocket::disconnected, &loop, [&] {
        if (!(state->inputDone && state->owed <= 0))
            std::fprintf(stderr, "korvel-mcp: Korvel Studio closed the connection.\n");
        loop.exit(state->inputDone && state->owed <= 0 ? 0 : 1);
    });

    // The input is read on its own thread (reading blocks); lines go to the socket
    // from this thread. The reader may outlive the loop while blocked on stdin, so
    // it only posts to the application object, which lives until the process ends.
    QCoreApplication* app = QCoreApplication::instance();
    QLocalSocket* target = &socket;
    QEventLoop* owner = &loop;
    std::thread([app, target, owner, state, &in] {
        std::string line;
        while (std::getline(in, line)) {
            if (trimLine(line)) continue;
            const bool owed = expectsAnswer(line);
            QMetaObject::invokeMethod(
                app,
                [target, state, owed, text = line + '\n'] {
                    if (owed) ++state->owed;
                    target->write(text.data(), static_cast<qint64>(text.size()));
                },
                Qt::QueuedConnection);
        }
        QMetaObject::invokeMethod(
            app,
            [owner, state] {
                state->inputDone = true;
                if (state->owed <= 0) owner->exit(0);
            },
            Qt::QueuedConnection);
    }).detach();

    int code = loop.exec();
    socket.flush();
    return code;
}

} // namespace cad::mcp

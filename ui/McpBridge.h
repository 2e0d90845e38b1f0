// The agents' way into the running window: the protocol handler and the local
// socket that feeds it, living on the GUI thread. When another live process owns
// the socket, it keeps trying once a second without disturbing that process.
#pragma once

// moc needs none of the model's headers (and cannot parse C++20 concepts).
#ifndef Q_MOC_RUN
#include "mcp/McpServer.h"
#endif

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <string>

namespace cad::mcp {
class McpListener;
}

namespace cad::ui {

class McpBridge : public QObject {
    Q_OBJECT
public:
    // Starts listening at once on mcpSocketPath().
    McpBridge(mcp::McpHost& host, const QString& version, QObject* parent = nullptr);
    // Disconnects every client and removes the socket.
    ~McpBridge() override;

    mcp::McpServer& server() { return server_; }
    const std::string& socketPath() const { return path_; }
    bool isListening() const;
    // Why the last attempt to take the socket failed; empty while listening.
    const std::string& lastError() const { return lastError_; }

private:
    void tryListen();

    mcp::McpServer server_;
    std::string path_;
    std::string lastError_;
    std::unique_ptr<mcp::McpListener> listener_;
    QTimer retry_;
};

} // namespace cad::ui

// The bridge between the agent socket and the window's protocol handler: every
// message is answered on the GUI thread, one at a time, in arrival order.
#include "ui/McpBridge.h"

#include "mcp/McpListener.h"
#include "mcp/SocketPath.h"

namespace cad::ui {

namespace {
constexpr int kRetryMilliseconds = 1000;
}

McpBridge::McpBridge(mcp::McpHost& host, const QString& version, QObject* parent)
    : QObject(parent), server_(host, version.toStdString()), path_(mcp::mcpSocketPath()),
      listener_(std::make_unique<mcp::McpListener>(
          [this](const std::string& message) { return server_.handle(message); })) {
    retry_.setInterval(kRetryMilliseconds);
    connect(&retry_, &QTimer::timeout, this, &McpBridge::tryListen);
    tryListen();
}

McpBridge::~McpBridge() {
    retry_.stop();
    listener_->close();
}

bool McpBridge::isListening() const { return listener_->isListening(); }

void McpBridge::tryListen() {
    if (Result<void> listening = listener_->listen(path_); !listening) {
        lastError_ = listening.error();
        if (!retry_.isActive()) retry_.start();
        return;
    }
    lastError_.clear();
    retry_.stop();
}

} // namespace cad::ui

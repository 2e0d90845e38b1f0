// The agent socket on QLocalServer. Reader threads only split the byte stream into
// lines and write answers back; handling happens on the listener's own thread.
#include "mcp/McpListener.h"

#include "mcp/SocketPath.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>

#include <map>

namespace cad::mcp {

namespace {

const char* const kParseError =
    R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"Parse error"}})";

bool blank(const std::string& line) { return line.find_first_not_of(" \t\r") == std::string::npos; }

} // namespace

// Hands each incoming connection's descriptor to the listener instead of making
// the socket here, so the socket can be made in its reader's thread.
class McpListener::Server : public QLocalServer {
public:
    explicit Server(McpListener& owner) : owner_(owner) {}

protected:
    void incomingConnection(quintptr descriptor) override { owner_.accept(descriptor); }

private:
    McpListener& owner_;
};

// Lives in one client's thread: reads lines, posts them to the listener, writes answers.
class McpListener::Reader : public QObject {
public:
    Reader(McpListener& owner, quint64 id) : owner_(owner), id_(id) {}

    void start(quintptr descriptor) {
        socket_ = new QLocalSocket(this);
        QObject::connect(socket_, &QLocalSocket::readyRead, this, [this] { read(); });
        QObject::connect(socket_, &QLocalSocket::disconnected, this, [this] { closed(); });
        if (!socket_->setSocketDescriptor(static_cast<qintptr>(descriptor)))
            closed();
        else
            read(); // bytes may have come before the notifier was set up
    }

    void write(const std::string& answer) {
        if (!socket_ || socket_->state() != QLocalSocket::ConnectedState) return;
        std::string line = answer;
        line += '\n';
        socket_->write(line.data(), static_cast<qint64>(line.size()));
    }

private:
    void read() {
        while (socket_ && socket_->bytesAvailable() > 0) {
            QByteArray chunk = socket_->read(65536);
            if (chunk.isEmpty()) break;
            std::size_t from = buffer_.size();
            buffer_.append(chunk.constData(), static_cast<std::size_t>(chunk.size()));
            std::size_t start = 0;
            for (std::size_t nl = buffer_.find('\n', from); nl != std::string::npos;
                 nl = buffer_.find('\n', start)) {
                std::string line = buffer_.substr(start, nl - start);
                start = nl + 1;
                finishLine(std::move(line));
            }
            buffer_.erase(0, start);
            if (buffer_.size() > kMaxMessageBytes) {
                // Too long to keep: drop it now and answer once its end arrives.
                buffer_.clear();
                overlong_ = true;
            }
        }
    }

    void finishLine(std::string line) {
        if (overlong_) {
            overlong_ = false;
            write(kParseError);
            return;
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (blank(line)) return;
        if (line.size() > kMaxMessageBytes) {
            write(kParseError);
            return;
        }
        McpListener* owner = &owner_;
        quint64 id = id_;
        QMetaObject::invokeMethod(
            owner, [owner, id, message = std::move(line)] { owner->serve(id, message); },
            Qt::QueuedConnection);
    }

    void closed() {
        if (closing_) return;
        closing_ = true;
        McpListener* owner = &owner_;
        quint64 id = id_;
        QMetaObject::invokeMethod(
            owner, [owner, id] { owner->drop(id); }, Qt::QueuedConnection);
    }

    McpListener& owner_;
    quint64 id_;
    QLocalSocket* socket_ = nullptr;
    std::string buffer_;
    bool overlong_ = false;
    bool closing_ = false;
};

struct McpListener::Client {
    QThread thread;
    Reader* reader = nullptr;
};

struct McpListener::Clients {
    std::map<quint64, std::unique_ptr<Client>> byId;
    quint64 next = 1;
};

struct McpListener::Lock {
    explicit Lock(const std::string& path) : file(QString::fromStdString(path)) {}
    QLockFile file;
};

McpListener::McpListener(Handler handler, QObject* parent)
    : QObject(parent), handler_(std::move(handler)), clients_(std::make_unique<Clients>()) {}

McpListener::~McpListener() { close(); }

Result<void> McpListener::listen(const std::string& path) {
    close();
    if (path.empty()) return fail("The agent socket needs a path.");
    // The lock file says which process owns the path; a crashed owner's lock is stale.
    auto lock = std::make_unique<Lock>(path + ".lock");
    lock->file.setStaleLockTime(0);
    if (!lock->file.tryLock(0))
        return fail("Another Korvel Studio is already serving agents at " + path +
                    ". Close it, or set KORVEL_MCP_PIPE to another path.");
    switch (pathKind(path)) {
    case PathKind::Missing:
        break;
    case PathKind::Other:
        return fail(path + " exists and is not a socket. Remove it, or set KORVEL_MCP_PIPE to "
                           "another path.");
    case PathKind::Socket: {
        QLocalSocket probe;
        probe.connectToServer(QString::fromStdString(path));
        if (probe.waitForConnected(1000)) {
            probe.abort();
            return fail("Another program is already serving agents at " + path +
                        ". Close it, or set KORVEL_MCP_PIPE to another path.");
        }
        QLocalServer::removeServer(QString::fromStdString(path)); // stale: nobody answers
        break;
    }
    }
    auto server = std::make_unique<Server>(*this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(QString::fromStdString(path)))
        return fail("Couldn't listen for agents at " + path + ": " +
                    server->errorString().toStdString() + ".");
    if (Result<void> restricted = restrictToOwner(path); !restricted) {
        server->close();
        return restricted;
    }
    server_ = std::move(server);
    lock_ = std::move(lock);
    path_ = path;
    return {};
}

void McpListener::close() {
    if (server_) server_->close(); // removes the socket file
    server_.reset();
    for (auto& [id, client] : clients_->byId) {
        client->thread.quit();
        client->thread.wait();
    }
    clients_->byId.clear();
    lock_.reset(); // unlocks and removes the lock file
    path_.clear();
}

bool McpListener::isListening() const { return server_ && server_->isListening(); }

std::size_t McpListener::clientCount() const { return clients_->byId.size(); }

void McpListener::accept(quintptr descriptor) {
    const quint64 id = clients_->next++;
    auto client = std::make_unique<Client>();
    client->reader = new Reader(*this, id);
    client->reader->moveToThread(&client->thread);
    Reader* reader = client->reader;
    QObject::connect(&client->thread, &QThread::finished, reader, &QObject::deleteLater);
    client->thread.start();
    QMetaObject::invokeMethod(
        reader, [reader, descriptor] { reader->start(descriptor); }, Qt::QueuedConnection);
    clients_->byId.emplace(id, std::move(client));
}

void McpListener::serve(quint64 client, const std::string& message) {
    std::optional<std::string> answer = handler_(message);
    if (!answer) return;
    auto it = clients_->byId.find(client);
    if (it == clients_->byId.end()) return; // it left before its answer was ready
    Reader* reader = it->second->reader;
    QMetaObject::invokeMethod(
        reader, [reader, text = std::move(*answer)] { reader->write(text); }, Qt::QueuedConnection);
}

void McpListener::drop(quint64 client) {
    auto it = clients_->byId.find(client);
    if (it == clients_->byId.end()) return;
    it->second->thread.quit();
    it->second->thread.wait();
    clients_->byId.erase(it);
}

} // namespace cad::mcp

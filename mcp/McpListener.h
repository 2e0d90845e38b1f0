// The agent socket: a local server at the agent socket path, one reader thread per
// connected client, and every request handed to the owning thread, which answers
// them one at a time in the order they arrived.
#pragma once

#include "core/Result.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace cad::mcp {

class McpListener : public QObject {
public:
    // Runs on the thread that owns the listener: one message in, at most one answer out.
    using Handler = std::function<std::optional<std::string>(const std::string& message)>;

    // Messages longer than this are refused with a parse error without being kept.
    static constexpr std::size_t kMaxMessageBytes = std::size_t{64} << 20;

    explicit McpListener(Handler handler, QObject* parent = nullptr);
    ~McpListener() override;
    McpListener(const McpListener&) = delete;
    McpListener& operator=(const McpListener&) = delete;

    // Takes the socket path: refused while another process serves it (a live socket
    // is never taken over); a stale socket left by a crash is replaced.
    Result<void> listen(const std::string& path);
    // Disconnects every client, stops their threads and removes the socket.
    void close();
    bool isListening() const;
    const std::string& path() const { return path_; }
    std::size_t clientCount() const;

private:
    class Server;
    class Reader;
    struct Client;

    void accept(quintptr descriptor);
    void serve(quint64 client, const std::string& message);
    void drop(quint64 client);

    Handler handler_;
    std::string path_;
    std::unique_ptr<Server> server_;
    struct Clients;
    std::unique_ptr<Clients> clients_;
    struct Lock;
    std::unique_ptr<Lock> lock_;
};

} // namespace cad::mcp

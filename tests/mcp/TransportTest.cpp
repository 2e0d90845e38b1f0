// The agent socket: its path rules, a private socket that is never taken from a
// live owner, and many clients served one request at a time on the owning thread.
#include "McpTestSupport.h"

#include "mcp/McpListener.h"
#include "mcp/SocketPath.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QLocalSocket>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <thread>

namespace cad::mcp::testing {
namespace {

QCoreApplication& app() {
    static int argc = 1;
    static char name[] = "mcp_tests";
    static char* argv[] = {name, nullptr};
    static QCoreApplication* instance =
        QCoreApplication::instance() ? nullptr : new QCoreApplication(argc, argv);
    return instance ? *instance : *QCoreApplication::instance();
}

// Runs the owning thread's events until `done` holds or the time is up.
bool spinUntil(const std::function<bool()>& done, int milliseconds = 10000) {
    app();
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

// Each function runs on its own thread while this thread serves the listener.
void runClients(const std::vector<std::function<void()>>& clients) {
    std::atomic<std::size_t> finished{0};
    std::vector<std::thread> threads;
    for (const auto& client : clients)
        threads.emplace_back([&, client] {
            client();
            ++finished;
        });
    EXPECT_TRUE(spinUntil([&] { return finished == clients.size(); }, 60000));
    for (std::thread& t : threads) t.join();
}

// A blocking client for use on a thread of its own.
class Client {
public:
    bool connect(const std::string& path) {
        socket_.connectToServer(QString::fromStdString(path));
        return socket_.waitForConnected(5000);
    }
    void send(const std::string& text) {
        std::string line = text + "\n";
        socket_.write(line.data(), static_cast<qint64>(line.size()));
        while (socket_.bytesToWrite() > 0)
            if (!socket_.waitForBytesWritten(10000)) break;
    }
    std::string readLine(int milliseconds = 10000) {
        while (!socket_.canReadLine())
            if (!socket_.waitForReadyRead(milliseconds)) return "<timeout>";
        QByteArray line = socket_.readLine();
        return std::string(line.constData(), static_cast<std::size_t>(line.size()) - 1);
    }
    json call(const json& message) {
        send(message.dump());
        return json::parse(readLine(), nullptr, false);
    }
    void close() { socket_.abort(); }

private:
    QLocalSocket socket_;
};

json ping(int id) { return request(id, "ping"); }

json tool(int id, const std::string& name, json arguments) {
    return request(id, "tools/call", {{"name", name}, {"arguments", std::move(arguments)}});
}

// A headless server listening on a socket of its own in a temporary folder.
class SocketServer : public ::testing::Test {
protected:
    SocketServer() : listener([this](const std::string& m) { return session.server.handle(m); }) {
        app();
        path = folder.file("agents.sock");
    }
    void listen() {
        Result<void> ok = listener.listen(path);
        ASSERT_TRUE(ok) << ok.error();
    }

    TempFolder folder;
    HeadlessHost host;
    Session session{host};
    McpListener listener;
    std::string path;
};

TEST(McpSocketPath, FollowsTheOverrideAndTheRuntimeFolder) {
    struct Case {
        const char* name;
        const char* safe;
    };
    for (const Case& c : {Case{"ann", "ann"}, Case{"DOMAIN\\ann lee", "DOMAIN_ann_lee"},
                          Case{"a/b", "a_b"}, Case{"", "user"}})
        EXPECT_EQ(pathSafeUserName(c.name), c.safe);

    // Put the environment back as it was, whatever the outcome.
    struct Restore {
        std::optional<std::string> runtime, pipe;
        static std::optional<std::string> get(const char* name) {
            const char* v = std::getenv(name);
            return v ? std::optional<std::string>(v) : std::nullopt;
        }
        static void put(const char* name, const std::optional<std::string>& v) {
            if (v)
                ::setenv(name, v->c_str(), 1);
            else
                ::unsetenv(name);
        }
        ~Restore() {
            put("XDG_RUNTIME_DIR", runtime);
            put("KORVEL_MCP_PIPE", pipe);
        }
    } restore{Restore::get("XDG_RUNTIME_DIR"), Restore::get("KORVEL_MCP_PIPE")};

    const std::string user = currentUserName();
    EXPECT_FALSE(user.empty());
    ::setenv("XDG_RUNTIME_DIR", "/run/user/4242", 1);
    EXPECT_EQ(defaultMcpSocketPath(), "/run/user/4242/korvel-mcp-" + user);
    ::unsetenv("KORVEL_MCP_PIPE");
    EXPECT_EQ(mcpSocketPath(), "/run/user/4242/korvel-mcp-" + user);
    ::setenv("KORVEL_MCP_PIPE", "/tmp/elsewhere.sock", 1);
    EXPECT_EQ(mcpSocketPath(), "/tmp/elsewhere.sock");
    ::setenv("KORVEL_MCP_PIPE", std::string(256, 'p').c_str(), 1);
    EXPECT_EQ(mcpSocketPath(), "/run/user/4242/korvel-mcp-" + user);
    ::setenv("KORVEL_MCP_PIPE", "", 1);
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(mcpSocketPath(), "/tmp/korvel-mcp-" + user);
}

TEST_F(SocketServer, MakesAPrivateSocketAndRemovesItOnClose) {
    listen();
    struct stat info {};
    ASSERT_EQ(::lstat(path.c_str(), &info), 0);
    EXPECT_TRUE(S_ISSOCK(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_TRUE(listener.isListening());
    listener.close();
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_FALSE(std::filesystem::exists(path + ".lock"));
    listen(); // and it can be taken again
}

TEST_F(SocketServer, NeverTakesOverALiveSocket) {
    QLocalServer other;
    ASSERT_TRUE(other.listen(QString::fromStdString(path)));
    Result<void> refused = listener.listen(path);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), "Another program is already serving agents at " + path +
                                   ". Close it, or set KORVEL_MCP_PIPE to another path.");
    QLocalSocket probe;
    probe.connectToServer(QString::fromStdString(path));
    EXPECT_TRUE(probe.waitForConnected(2000)); // the other server still has its socket
    probe.abort();
    other.close();

    listen();
    McpListener second([](const std::string&) { return std::optional<std::string>(); });
    Result<void> again = second.listen(path);
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error(), "Another Korvel Studio is already serving agents at " + path +
                                 ". Close it, or set KORVEL_MCP_PIPE to another path.");
    EXPECT_TRUE(listener.isListening());
}

TEST_F(SocketServer, ReplacesAStaleSocketButNoOtherFile) {
    // A socket file whose owner is gone: bound, never listening, closed.
    int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(fd);
    ASSERT_EQ(pathKind(path), PathKind::Socket);
    listen();
    runClients({[&] {
        Client c;
        ASSERT_TRUE(c.connect(path));
        EXPECT_EQ(c.call(ping(1))["result"], json::object());
    }});
    listener.close();

    std::ofstream(path) << "keep me";
    Result<void> refused = listener.listen(path);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), path + " exists and is not a socket. Remove it, or set "
                                      "KORVEL_MCP_PIPE to another path.");
    std::ifstream kept(path);
    std::string text;
    std::getline(kept, text);
    EXPECT_EQ(text, "keep me");
}

TEST_F(SocketServer, EveryClientGetsItsOwnAnswersInOrder) {
    listen();
    std::vector<std::function<void()>> clients;
    for (int c = 0; c < 4; ++c)
        clients.push_back([&, c] {
            Client client;
            ASSERT_TRUE(client.connect(path));
            for (int i = 0; i < 50; ++i) client.send(ping(c * 1000 + i).dump()); // pipelined
            client.send(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
            client.send("");
            client.send(request(c * 1000 + 50, "tools/list").dump() + "\r");
            for (int i = 0; i <= 50; ++i) {
                json answer = json::parse(client.readLine());
                EXPECT_EQ(answer["id"], c * 1000 + i);
            }
        });
    runClients(clients);
}

TEST_F(SocketServer, TwoClientsCreatingSketchesAtOnceGetOneEach) {
    listen();
    std::vector<std::string> answers(2);
    std::vector<std::function<void()>> clients;
    for (int c = 0; c < 2; ++c)
        clients.push_back([&, c] {
            Client client;
            ASSERT_TRUE(client.connect(path));
            answers[static_cast<std::size_t>(c)] = client.call(
                tool(1, "create_sketch", {{"plane", "XY"}}))["result"]["content"][0]["text"];
        });
    runClients(clients);
    std::sort(answers.begin(), answers.end());
    EXPECT_EQ(answers[0], "Created Sketch1.");
    EXPECT_EQ(answers[1], "Created Sketch2.");
    EXPECT_EQ(host.document().objects().size(), 2u);
}

TEST_F(SocketServer, AClientLeavingMidRequestHarmsNoOne) {
    listen();
    std::atomic<bool> left{false};
    runClients({[&] {
                    Client c;
                    ASSERT_TRUE(c.connect(path));
                    c.send(tool(1, "create_sketch", {{"plane", "XZ"}}).dump());
                    c.send(request(2, "ping", {{"pad", std::string(2 << 20, 'x')}}).dump());
                    c.close();
                    left = true;
                },
                [&] {
                    Client c;
                    ASSERT_TRUE(c.connect(path));
                    while (!left) std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    for (int i = 0; i < 20; ++i) EXPECT_EQ(c.call(ping(i))["id"], i);
                }});
    EXPECT_TRUE(spinUntil([&] { return listener.clientCount() == 0; }));
    EXPECT_EQ(host.document().objects().size(), 1u); // the request that was sent still ran
}

TEST_F(SocketServer, HugeLinesAndBadBytesNeitherCrashNorBlock) {
    listen();
    std::atomic<bool> bigSent{false};
    runClients({[&] {
                    Client c;
                    ASSERT_TRUE(c.connect(path));
                    json big = request(7, "ping", {{"pad", std::string(10 << 20, 'y')}});
                    c.send(big.dump());
                    bigSent = true;
                    EXPECT_EQ(c.call(ping(8))["id"], 7); // the big one's answer comes first
                    EXPECT_EQ(json::parse(c.readLine())["id"], 8);
                    c.send("{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"\xc3\x28\"}");
                    EXPECT_EQ(json::parse(c.readLine())["error"]["message"], "Parse error");
                    // Longer than any message may be: refused without being kept.
                    c.send(std::string(McpListener::kMaxMessageBytes + 1000, 'z'));
                    EXPECT_EQ(json::parse(c.readLine())["error"]["message"], "Parse error");
                    EXPECT_EQ(c.call(ping(9))["id"], 9);
                },
                [&] {
                    Client c;
                    ASSERT_TRUE(c.connect(path));
                    for (int i = 0; i < 200 || !bigSent; ++i) {
                        EXPECT_EQ(c.call(ping(i))["id"], i);
                        if (i > 100000) break;
                    }
                }});
}

} // namespace
} // namespace cad::mcp::testing

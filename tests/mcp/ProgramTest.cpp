// The korvel-mcp program as agents meet it: on stdin/stdout, serving the socket to
// many clients at once under load, relaying stdio to a socket, and its failures.
#include "McpTestSupport.h"

#include <QLocalSocket>
#include <QProcess>
#include <QProcessEnvironment>

#include <atomic>
#include <set>
#include <sstream>
#include <thread>

namespace cad::mcp::testing {
namespace {

const QString kProgram = QStringLiteral(KORVEL_MCP_PROGRAM);

std::vector<json> answerLines(const QByteArray& output) {
    std::vector<json> answers;
    std::istringstream lines(output.toStdString());
    for (std::string line; std::getline(lines, line);) {
        json answer = json::parse(line, nullptr, false);
        EXPECT_FALSE(answer.is_discarded()) << "not a protocol line: " << line;
        answers.push_back(std::move(answer));
    }
    return answers;
}

std::string text(const json& answer) { return answer["result"]["content"][0].value("text", ""); }

json tool(int id, const std::string& name, json arguments = json::object()) {
    return request(id, "tools/call", {{"name", name}, {"arguments", std::move(arguments)}});
}

// One korvel-mcp process with a socket of its own.
class Program : public ::testing::Test {
protected:
    Program() { socket = folder.file("agents.sock"); }
    ~Program() override {
        for (auto& p : processes) {
            p->terminate();
            if (!p->waitForFinished(5000)) p->kill();
            p->waitForFinished(2000);
        }
    }
    QProcess& start(const QStringList& arguments) {
        processes.push_back(std::make_unique<QProcess>());
        QProcess& p = *processes.back();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KORVEL_MCP_PIPE", QString::fromStdString(socket));
        p.setProcessEnvironment(env);
        p.start(kProgram, arguments);
        EXPECT_TRUE(p.waitForStarted(5000));
        return p;
    }
    // A socket server; returns when it accepts connections.
    QProcess& startListening() {
        QProcess& p = start({"--listen"});
        bool ready = false;
        for (int i = 0; i < 200 && !ready; ++i) {
            QLocalSocket probe;
            probe.connectToServer(QString::fromStdString(socket));
            ready = probe.waitForConnected(50);
            if (!ready) std::this_thread::sleep_for(std::chrono::milliseconds(25));
        }
        EXPECT_TRUE(ready) << p.readAllStandardError().toStdString();
        return p;
    }
    std::vector<json> converse(QProcess& p, const std::vector<std::string>& lines) {
        for (const std::string& line : lines) p.write((line + "\n").c_str());
        p.closeWriteChannel();
        EXPECT_TRUE(p.waitForFinished(30000));
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
        return answerLines(p.readAllStandardOutput());
    }

    TempFolder folder;
    std::string socket;
    std::vector<std::unique_ptr<QProcess>> processes;
};

// A blocking socket client.
class Client {
public:
    explicit Client(const std::string& path) {
        socket_.connectToServer(QString::fromStdString(path));
        connected = socket_.waitForConnected(5000);
    }
    void send(const json& message) {
        std::string line = message.dump() + "\n";
        socket_.write(line.data(), static_cast<qint64>(line.size()));
    }
    json receive() {
        socket_.flush();
        while (!socket_.canReadLine())
            if (!socket_.waitForReadyRead(30000)) return json();
        return json::parse(socket_.readLine().toStdString(), nullptr, false);
    }
    json call(const json& message) {
        send(message);
        return receive();
    }
    bool connected = false;

private:
    QLocalSocket socket_;
};

TEST_F(Program, ServesAFreshDocumentOnStdio) {
    QProcess& p = start({});
    std::vector<json> answers = converse(
        p, {request(1, "initialize", {{"protocolVersion", "2025-06-18"}}).dump(),
            R"({"jsonrpc":"2.0","method":"notifications/initialized"})", "nonsense",
            tool(2, "create_sketch", {{"plane", "XY"}}).dump(),
            tool(3, "add_rectangle",
                 {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 10}})
                .dump(),
            tool(4, "extrude", {{"sketch", "Sketch1"}, {"distance", "10 + 2mm"}}).dump(),
            tool(5, "measure", {{"a", "Body1/Extrude1.end"}, {"b", "Body1/Extrude1.start"}}).dump(),
            request(6, "ping").dump()});
    ASSERT_EQ(answers.size(), 7u); // every line on stdout is a protocol message
    EXPECT_EQ(answers[0]["result"]["protocolVersion"], "2025-06-18");
    EXPECT_EQ(answers[1]["error"]["code"], -32700);
    EXPECT_EQ(text(answers[4]), "Created Body1 with Extrude1.");
    EXPECT_EQ(json::parse(text(answers[5]))["distance_mm"], 12.0);
    EXPECT_EQ(answers[6]["id"], 6);
}

TEST_F(Program, RelaysStdioToARunningServer) {
    startListening();
    QProcess& relay = start({"--connect", QString::fromStdString(socket)});
    std::vector<json> answers = converse(
        relay, {request(1, "initialize").dump(),
                R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
                tool(2, "create_sketch", {{"plane", "YZ"}}).dump(), request(3, "ping").dump()});
    ASSERT_EQ(answers.size(), 3u);
    EXPECT_EQ(text(answers[1]), "Created Sketch1.");
    EXPECT_EQ(answers[2]["id"], 3);
    Client other(socket); // the server's document kept the sketch
    ASSERT_TRUE(other.connected);
    EXPECT_EQ(text(other.call(tool(1, "create_sketch", {{"plane", "XY"}}))), "Created Sketch2.");
}

TEST_F(Program, SaysWhyItCannotServe) {
    QProcess& lonely = start({"--connect"});
    lonely.closeWriteChannel();
    ASSERT_TRUE(lonely.waitForFinished(10000));
    EXPECT_EQ(lonely.exitCode(), 1);
    EXPECT_NE(
        lonely.readAllStandardError().toStdString().find("nothing is serving agents at " + socket),
        std::string::npos);

    startListening();
    QProcess& second = start({"--listen"});
    ASSERT_TRUE(second.waitForFinished(10000));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_NE(
        second.readAllStandardError().toStdString().find("already serving agents at " + socket),
        std::string::npos);

    QProcess& wrong = start({"--frobnicate"});
    ASSERT_TRUE(wrong.waitForFinished(10000));
    EXPECT_EQ(wrong.exitCode(), 2);
}

TEST_F(Program, StopsCleanlyOnSigterm) {
    QProcess& server = startListening();
    ASSERT_TRUE(std::filesystem::exists(socket));
    server.terminate();
    ASSERT_TRUE(server.waitForFinished(10000));
    EXPECT_EQ(server.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(server.exitCode(), 0);
    EXPECT_FALSE(std::filesystem::exists(socket));
    EXPECT_FALSE(std::filesystem::exists(socket + ".lock"));
}

// Eight clients, a thousand mixed calls each, pipelined: every answer arrives once
// with its own ID, and the document ends consistent.
TEST_F(Program, EightClientsUnderLoad) {
    startListening();
    constexpr int kClients = 8, kCalls = 1000, kWindow = 16;
    std::vector<long> changes(kClients, 0), undos(kClients, 0);
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int c = 0; c < kClients; ++c)
        threads.emplace_back([&, c] {
            Client client(socket);
            if (!client.connected) {
                ++failures;
                return;
            }
            std::string mySketch;
            auto message = [&](int i) {
                const int id = c * 100000 + i;
                switch (i % 20) {
                case 0:
                    return tool(id, "create_sketch", {{"plane", "XY"}});
                case 1:
                case 2:
                case 5:
                case 6:
                case 9:
                case 13:
                    return tool(id, "add_line",
                                {{"sketch", mySketch.empty() ? "Sketch1" : mySketch},
                                 {"x1", 0},
                                 {"y1", 0},
                                 {"x2", i + 1},
                                 {"y2", c + 1}});
                case 3:
                    return tool(id, "undo");
                case 4:
                    return i % 200 == 4 ? tool(id, "get_document") : request(id, "tools/list");
                case 7:
                    return tool(id, "get_sketch",
                                {{"sketch", mySketch.empty() ? "Sketch1" : mySketch}});
                case 8:
                    return tool(id, "no_such_tool");
                case 10:
                    return tool(
                        id, "add_line",
                        {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 0}, {"y2", 0}});
                default:
                    return request(id, "ping");
                }
            };
            int sent = 0, received = 0;
            while (received < kCalls) {
                while (sent < kCalls && sent - received < kWindow) {
                    json m = message(sent);
                    client.send(m);
                    ++sent;
                    if (sent % 20 == 1)
                        break; // wait for create_sketch's answer: later lines use it
                }
                json answer = client.receive();
                const int expected = c * 100000 + received;
                if (answer.is_discarded() || answer["id"] != expected) {
                    ++failures;
                    return;
                }
                const int kind = received % 20;
                const bool ok = answer.contains("result") && answer["result"].contains("isError")
                                    ? !answer["result"]["isError"].get<bool>()
                                    : answer.contains("result");
                if (kind == 0 && ok) {
                    std::string t = text(answer); // "Created SketchN."
                    mySketch = t.substr(8, t.size() - 9);
                }
                const bool isChange = kind == 0 || kind == 1 || kind == 2 || kind == 5 ||
                                      kind == 6 || kind == 9 || kind == 13 || kind == 10;
                if (isChange && ok) ++changes[static_cast<std::size_t>(c)];
                if (kind == 3 && ok) ++undos[static_cast<std::size_t>(c)];
                ++received;
            }
        });
    for (std::thread& t : threads) t.join();
    ASSERT_EQ(failures, 0);

    Client check(socket);
    ASSERT_TRUE(check.connected);
    json document = json::parse(text(check.call(tool(1, "get_document"))))["document"];
    std::set<std::string> names;
    for (const json& o : document["objects"]) {
        EXPECT_TRUE(names.insert(o["name"].get<std::string>()).second) << o["name"];
        json sketch = json::parse(text(check.call(tool(2, "get_sketch", {{"sketch", o["name"]}}))));
        std::set<std::string> refs;
        for (const json& p : sketch["named_points"])
            EXPECT_TRUE(refs.insert(p["ref"].get<std::string>()).second) << p["ref"];
    }
    long expectedSteps = 0;
    for (int c = 0; c < kClients; ++c)
        expectedSteps += changes[static_cast<std::size_t>(c)] - undos[static_cast<std::size_t>(c)];
    EXPECT_GT(expectedSteps, 1000); // the mix really changed the document
    long steps = 0;
    while (text(check.call(tool(3, "undo"))) != "Nothing to undo.") ++steps;
    EXPECT_EQ(steps, expectedSteps);
    EXPECT_EQ(json::parse(text(check.call(tool(4, "get_document"))))["document"]["objects"].size(),
              0u);
}

} // namespace
} // namespace cad::mcp::testing

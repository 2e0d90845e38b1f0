// An agent on the window's local socket, as a real client: requests written as
// lines, answers read while the window's event loop runs; and the window test with
// its agent interface switched on.
#pragma once

#include "tests/ui/WindowFixture.h"

#include <QByteArray>
#include <QLocalSocket>

#include <nlohmann/json.hpp>

#include <string>

namespace cad::ui::testing {

using nlohmann::json;

class AgentClient {
public:
    explicit AgentClient(const std::string& path) {
        socket_.connectToServer(QString::fromStdString(path));
        connected_ = socket_.waitForConnected(5000);
    }
    bool connected() const { return connected_; }

    json request(const std::string& method, json params = json::object()) {
        const json message{
            {"jsonrpc", "2.0"}, {"id", ++id_}, {"method", method}, {"params", params}};
        socket_.write(QByteArray::fromStdString(message.dump() + "\n"));
        socket_.flush();
        if (!waitUntil([this] { return socket_.canReadLine(); }, 30000)) return json();
        return json::parse(socket_.readLine().toStdString(), nullptr, false);
    }
    // A tool's result object: {"content": [...], "isError": ...}.
    json call(const std::string& tool, json arguments = json::object()) {
        const json answer = request("tools/call", {{"name", tool}, {"arguments", arguments}});
        return answer.contains("result") ? answer["result"] : json();
    }
    static std::string text(const json& result) {
        return result.value("content", json::array()).empty()
                   ? std::string()
                   : result["content"][0].value("text", std::string());
    }

private:
    QLocalSocket socket_;
    bool connected_ = false;
    int id_ = 0;
};

class AgentTest : public WindowTest {
protected:
    void SetUp() override {
        qputenv("KORVEL_MCP", "1");
        WindowTest::SetUp();
    }
    void TearDown() override {
        WindowTest::TearDown();
        qputenv("KORVEL_MCP", "0");
    }
};

} // namespace cad::ui::testing

// Helpers for the agent interface tests: a headless session to send JSON-RPC
// messages to, and the tool results read back as text and error flag.
#pragma once

#include "mcp/HeadlessHost.h"
#include "mcp/McpServer.h"
#include "tests/support/TempFolder.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>

namespace cad::mcp::testing {

using json = nlohmann::ordered_json;

struct ToolReply {
    std::string text;
    bool isError = false;
    json content; // the content item as sent
};

inline json request(int id, const std::string& method, json params = nullptr) {
    json r = json::object();
    r["jsonrpc"] = "2.0";
    r["id"] = id;
    r["method"] = method;
    if (!params.is_null()) r["params"] = std::move(params);
    return r;
}

// A headless document driven through the protocol handler, as an agent drives it.
class Session {
public:
    explicit Session(McpHost& host) : server(host, "test") {}

    // The parsed answer; fails the test when there is none.
    json send(const json& message) {
        std::optional<std::string> answer = server.handle(message.dump());
        EXPECT_TRUE(answer.has_value()) << message.dump();
        return answer ? json::parse(*answer) : json();
    }
    ToolReply call(const std::string& tool, json arguments = json::object()) {
        json params = json::object();
        params["name"] = tool;
        params["arguments"] = std::move(arguments);
        json answer = send(request(++lastId, "tools/call", std::move(params)));
        ToolReply reply;
        const json& result = answer["result"];
        reply.isError = result.value("isError", true);
        reply.content = result["content"][0];
        reply.text = reply.content.value("text", "");
        return reply;
    }
    // A call that must succeed; returns its text.
    std::string ok(const std::string& tool, json arguments = json::object()) {
        ToolReply reply = call(tool, std::move(arguments));
        EXPECT_FALSE(reply.isError) << tool << ": " << reply.text;
        return reply.text;
    }
    json okJson(const std::string& tool, json arguments = json::object()) {
        return json::parse(ok(tool, std::move(arguments)));
    }

    McpServer server;
    int lastId = 0;
};

// A headless host with a session on it.
struct HeadlessSession {
    HeadlessHost host;
    Session session{host};
};

using cad::testing::TempFolder;

} // namespace cad::mcp::testing

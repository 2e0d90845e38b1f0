// Agents in the window through a real local-socket client: what the window's host
// answers that the end-to-end test does not reach (the version it reports, the
// user's unsaved work, view names, a second window waiting for the socket).
#include "tests/ui/AgentClient.h"

#include "core/Version.h"
#include "mcp/SocketPath.h"
#include "ui/McpBridge.h"

namespace cad::ui::testing {
namespace {

TEST_F(AgentTest, TheWindowReportsTheVersionTheHeadlessServerReports) {
    ASSERT_NE(window->mcpBridge(), nullptr);
    AgentClient agent(mcp::mcpSocketPath());
    ASSERT_TRUE(agent.connected());
    const json hello = agent.request("initialize", {{"protocolVersion", "2024-11-05"}});
    ASSERT_TRUE(hello.contains("result")) << hello.dump();
    EXPECT_EQ(hello["result"]["serverInfo"]["version"], std::string(kApplicationVersion));
    EXPECT_NE(std::string(kApplicationVersion), "");

    // Views by name; an unknown one is refused with the names there are.
    EXPECT_EQ(agent.call("set_view", {{"view", "top"}}).value("isError", true), false);
    EXPECT_EQ(AgentClient::text(agent.call("set_view", {{"view", "side"}})),
              "Unknown view 'side'. Expected top, front, right, iso or fit.");
}

TEST_F(AgentTest, UnsavedChangesAreTheUsersToDrop) {
    AgentClient agent(mcp::mcpSocketPath());
    ASSERT_TRUE(agent.connected());
    ASSERT_TRUE(addBox().ok);

    const std::string refusal = "The open document has unsaved changes. Save it first "
                                "(save_project), or ask the user to save or discard them.";
    for (const auto& [tool, arguments] :
         {std::pair<std::string, json>{"new_document", json::object()},
          std::pair<std::string, json>{"open_project", {{"path", "/nowhere/x.kv3"}}}}) {
        const json refused = agent.call(tool, arguments);
        EXPECT_EQ(refused.value("isError", false), true) << tool;
        EXPECT_EQ(AgentClient::text(refused), refusal) << tool;
    }
    EXPECT_NE(window->document().find("Box1"), nullptr);

    const json unsaved = agent.call("save_project");
    EXPECT_EQ(unsaved.value("isError", false), true);
    EXPECT_EQ(AgentClient::text(unsaved), "The document has never been saved: give a path.");

    // Once the user's work is saved, the agent may start over; the window follows.
    QTemporaryDir folder;
    ASSERT_TRUE(window->saveProject(folder.path() + "/mine.kv3").ok());
    const json fresh = agent.call("new_document");
    EXPECT_EQ(fresh.value("isError", true), false) << fresh.dump();
    EXPECT_TRUE(window->document().objects().empty());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled"));
}

TEST_F(AgentTest, ASecondWindowWaitsForTheSocketAndTakesItOnceFree) {
    MainWindow second;
    ASSERT_NE(second.mcpBridge(), nullptr);
    EXPECT_FALSE(second.mcpBridge()->isListening());
    EXPECT_FALSE(second.mcpBridge()->lastError().empty());
    EXPECT_TRUE(window->mcpBridge()->isListening());

    window.reset();
    EXPECT_TRUE(waitUntil([&] { return second.mcpBridge()->isListening(); }, 5000));
    AgentClient agent(mcp::mcpSocketPath());
    ASSERT_TRUE(agent.connected());
    ASSERT_EQ(agent.call("create_box", {{"width", 5}, {"depth", 5}, {"height", 5}})
                  .value("isError", true),
              false);
    EXPECT_NE(second.document().find("Box1"), nullptr);
}

} // namespace
} // namespace cad::ui::testing

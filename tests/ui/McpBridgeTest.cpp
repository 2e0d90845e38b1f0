// Agents in the window: a real local-socket client drives the open window through
// the bridge, sees it live, changes it undoably, captures and turns the view. (That
// KORVEL_MCP=0 and closing leave no socket is checked end to end on the program.)
#include "tests/ui/WindowFixture.h"

#include "mcp/SocketPath.h"
#include "ui/McpBridge.h"
#include "ui/presentation/DocumentPresenter.h"

#include <AIS_InteractiveObject.hxx>
#include <Quantity_Color.hxx>

#include <QAction>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QLocalSocket>

#include <nlohmann/json.hpp>

#include <cmath>

namespace cad::ui::testing {
namespace {

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

TEST_F(AgentTest, AnAgentSeesTheWindowLiveAndItsChangesUndoFromTheWindow) {
    ASSERT_NE(window->mcpBridge(), nullptr);
    EXPECT_EQ(mcp::pathKind(mcp::mcpSocketPath()), mcp::PathKind::Socket);
    AgentClient agent(mcp::mcpSocketPath());
    ASSERT_TRUE(agent.connected());

    const json hello = agent.request("initialize", {{"protocolVersion", "2024-11-05"}});
    ASSERT_TRUE(hello.contains("result")) << hello.dump();
    EXPECT_EQ(hello["result"]["protocolVersion"], "2025-06-18");
    EXPECT_EQ(hello["result"]["serverInfo"]["version"],
              "v" + QCoreApplication::applicationVersion().toStdString());
    EXPECT_NE(
        hello["result"]["instructions"].get<std::string>().find("You are driving the user's open"),
        std::string::npos);

    const json document =
        json::parse(AgentClient::text(agent.call("get_document")), nullptr, false);
    ASSERT_TRUE(document.is_object());
    EXPECT_EQ(document["live"], true);

    const json created = agent.call("create_box", {{"width", 30}, {"depth", 20}, {"height", 10}});
    ASSERT_EQ(created.value("isError", true), false) << created.dump();
    EXPECT_FALSE(window->presenter().presentationOf("Box1").IsNull());
    EXPECT_TRUE(window->isModified());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korvel Studio — Untitled •"));

    window->findChild<QAction*>(QStringLiteral("undo"))->trigger();
    EXPECT_EQ(window->document().find("Box1"), nullptr);
    EXPECT_TRUE(window->presenter().presentationOf("Box1").IsNull());
    EXPECT_FALSE(window->isModified());
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

TEST_F(AgentTest, ScreenshotShowsTheBodyInTheMiddle) {
    AgentClient agent(mcp::mcpSocketPath());
    ASSERT_TRUE(agent.connected());
    // Only the body in view: the origin's planes would take part in the fit.
    window->findChild<QAction*>(QStringLiteral("showOrigin"))->setChecked(false);
    ASSERT_EQ(agent.call("create_box", {{"width", 80}, {"depth", 80}, {"height", 80}})
                  .value("isError", true),
              false);
    const json turned = agent.call("set_view", {{"view", "top"}});
    EXPECT_EQ(turned.value("isError", true), false) << turned.dump();
    const json unknown = agent.call("set_view", {{"view", "side"}});
    EXPECT_EQ(AgentClient::text(unknown),
              "Unknown view 'side'. Expected top, front, right, iso or fit.");
    ASSERT_EQ(agent.call("set_view", {{"view", "fit"}}).value("isError", true), false);

    const json shot = agent.call("screenshot");
    ASSERT_EQ(shot.value("isError", true), false) << shot.dump().substr(0, 300);
    const json& picture = shot["content"][0];
    ASSERT_EQ(picture.value("type", ""), "image");
    EXPECT_EQ(picture.value("mimeType", ""), "image/png");
    const QByteArray png =
        QByteArray::fromBase64(QByteArray::fromStdString(picture.value("data", std::string())));
    const QImage image = QImage::fromData(png, "PNG");
    ASSERT_FALSE(image.isNull());
    if (const QString keep = qEnvironmentVariable("KORVEL_KEEP_SCREENSHOT"); !keep.isEmpty())
        image.save(keep);

    // The top face shows the body's colour, lit (so brighter, but of the same hue); the
    // corner below on the left shows the background.
    const Handle(AIS_InteractiveObject) body = window->presenter().presentationOf("Box1");
    ASSERT_FALSE(body.IsNull());
    Quantity_Color colour;
    body->Color(colour);
    const QColor expected =
        QColor::fromRgbF(static_cast<float>(colour.Red()), static_cast<float>(colour.Green()),
                         static_cast<float>(colour.Blue()));
    const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
    const QColor background = image.pixelColor(4, image.height() - 4);
    const auto distance = [](const QColor& a, const QColor& b) {
        return std::hypot(a.red() - b.red(), a.green() - b.green(), a.blue() - b.blue());
    };
    ASSERT_GT(expected.hsvSaturationF(), 0.1f);
    EXPECT_GT(centre.hsvSaturationF(), 0.05f) << centre.name().toStdString();
    const int hueGap = std::abs(centre.hsvHue() - expected.hsvHue());
    EXPECT_LT(std::min(hueGap, 360 - hueGap), 20)
        << centre.name().toStdString() << " vs " << expected.name().toStdString();
    EXPECT_GT(distance(centre, background), 40) << background.name().toStdString();
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

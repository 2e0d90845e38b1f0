// The protocol handler: JSON-RPC framing and errors, initialize, the tool list and
// its schemas, and how tool calls become command records.
#include "McpTestSupport.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "mcp/AllCommands.h"
#include "mcp/ToolCatalogue.h"

#include <BRepBndLib.hxx>
#include <Bnd_Box.hxx>
#include <Standard_Failure.hxx>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace cad::mcp::testing {
namespace {

// A host over a registry the test fills, for commands with chosen arguments.
class RegistryHost : public McpHost {
public:
    Document& document() override { return doc; }
    CommandStack& commandStack() override { return stack; }
    CommandRegistry& registry() override { return commands; }
    Result<void> newDocument() override { return {}; }
    Result<void> openProject(const std::string&) override { return {}; }
    Result<void> saveProject(const std::string&) override { return {}; }
    std::string currentPath() const override { return {}; }
    bool isInteractive() const override { return interactive; }
    Result<std::string> screenshot() override { return std::string("\x89PNG\r\n", 6); }
    Result<void> setView(const std::string& name) override { return checkViewName(name); }

    Document doc;
    CommandRegistry commands;
    CommandStack stack{doc, commands};
    bool interactive = true;
};

// Remembers the record it was made from; succeeds with the message in "say".
class EchoCommand : public Command {
public:
    using Command::Command;
    static inline CommandRecord last;
    CommandResult execute(Document&) override {
        last = record_;
        if (const Value* say = record_.find("say"))
            if (auto* text = std::get_if<std::string>(say)) {
                if (*text == "fail") return CommandResult::failure("echo: it failed.");
                return CommandResult::success(*text);
            }
        return CommandResult::success();
    }
    void undo(Document&) override {}
};

std::string raw(McpServer& server, std::string_view text) {
    std::optional<std::string> answer = server.handle(text);
    return answer ? *answer : "<none>";
}

TEST(McpProtocol, MalformedMessagesGetTheirErrors) {
    HeadlessSession s;
    McpServer& server = s.session.server;
    const std::string parseError =
        R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"Parse error"}})";
    EXPECT_EQ(raw(server, "nonsense"), parseError);
    EXPECT_EQ(raw(server, "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"ping\""), parseError);
    EXPECT_EQ(raw(server, "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"p\xff\xfe\"}"), parseError);
    EXPECT_EQ(raw(server, ""), parseError);

    struct Case {
        const char* text;
        const char* id; // as it must come back
    };
    for (const Case& c : {Case{"{}", "null"}, Case{"[1,2]", "null"}, Case{"42", "null"},
                          Case{R"({"id":5})", "5"}, Case{R"({"id":"a","method":7})", "\"a\""},
                          Case{R"({"id":{"x":1},"method":"ping"})", "null"},
                          Case{R"({"id":[1],"method":"ping"})", "null"}})
        EXPECT_EQ(raw(server, c.text),
                  std::string(R"({"jsonrpc":"2.0","id":)") + c.id +
                      R"(,"error":{"code":-32600,"message":"Invalid request"}})")
            << c.text;
}

TEST(McpProtocol, NotificationsAreNeverAnsweredAndDoNothing) {
    HeadlessSession s;
    McpServer& server = s.session.server;
    for (
        const char* text :
        {R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
         R"({"jsonrpc":"2.0","method":"no/such/method"})", R"({"jsonrpc":"2.0","method":"ping"})",
         R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"create_sketch","arguments":{"plane":"XY"}}})"}) {
        EXPECT_FALSE(server.handle(text).has_value()) << text;
        EXPECT_FALSE(expectsAnswer(text)) << text;
    }
    EXPECT_TRUE(s.host.document().objects().empty());
    EXPECT_TRUE(expectsAnswer("nonsense"));
    EXPECT_TRUE(expectsAnswer("{}"));
    EXPECT_TRUE(expectsAnswer(R"({"id":null,"method":"ping"})"));
}

TEST(McpProtocol, PingAndUnknownMethodsEchoTheId) {
    HeadlessSession s;
    McpServer& server = s.session.server;
    EXPECT_EQ(raw(server, R"({"jsonrpc":"2.0","id":"abc","method":"ping"})"),
              R"({"jsonrpc":"2.0","id":"abc","result":{}})");
    EXPECT_EQ(raw(server, R"({"jsonrpc":"2.0","id":null,"method":"ping"})"),
              R"({"jsonrpc":"2.0","id":null,"result":{}})");
    EXPECT_EQ(
        raw(server, R"({"jsonrpc":"2.0","id":9,"method":"resources/list"})"),
        R"({"jsonrpc":"2.0","id":9,"error":{"code":-32601,"message":"Method not found: resources/list"}})");
    // A call without a usable tool name is the tool's failure, not a protocol error.
    for (const json& params : {json{{"arguments", json::object()}}, json{{"name", 5}}, json()}) {
        json bad = s.session.send(request(3, "tools/call", params));
        EXPECT_TRUE(bad["result"]["isError"].get<bool>()) << bad.dump();
        EXPECT_EQ(bad["result"]["content"][0]["text"],
                  "tools/call needs the tool's name as text in params.name.");
    }
}

TEST(McpProtocol, InitializeAnswersOurVersionAndTheHostsInstructions) {
    RegistryHost windowHost;
    Session window(windowHost);
    HeadlessSession headless;
    json params = {{"protocolVersion", "2024-11-05"},
                   {"capabilities", json::object()},
                   {"clientInfo", {{"name", "t"}, {"version", "1"}}}};
    json live = window.send(request(1, "initialize", params))["result"];
    json off = headless.session.send(request(1, "initialize", params))["result"];
    for (const json& r : {live, off}) {
        EXPECT_EQ(r["protocolVersion"], "2025-06-18");
        EXPECT_EQ(r["capabilities"].dump(), R"({"tools":{"listChanged":false}})");
        EXPECT_EQ(r["serverInfo"].dump(),
                  R"({"name":"korvel","title":"Korvel Studio","version":"test"})");
        std::string text = r["instructions"];
        EXPECT_EQ(text.rfind("Korvel Studio is a parametric CAD application. Typical flow: "
                             "create_sketch (plane XY, XZ or YZ) -> add_line",
                             0),
                  0u);
        EXPECT_NE(text.find("(\"0.5in\", \"1/4\\\"\", \"10 + 2mm\")"), std::string::npos);
    }
    const std::string liveText = live["instructions"], offText = off["instructions"];
    EXPECT_TRUE(liveText.ends_with("so prefer them in references. You are driving the user's open "
                                   "Korvel Studio window: they see each change; screenshot shows "
                                   "the view."));
    EXPECT_TRUE(offText.ends_with("so prefer them in references. Running headless (the app is not "
                                  "open): use open_project / save_project for files."));
    EXPECT_EQ(McpServer(windowHost, "").version(), "dev");
}

TEST(McpToolList, QueryToolsSurroundTheCommandsInCatalogueOrder) {
    HeadlessSession s;
    json tools = s.session.send(request(1, "tools/list"))["result"]["tools"];
    const auto& entries = s.host.registry().entries();
    ASSERT_EQ(tools.size(), entries.size() + 21);
    std::vector<std::string> names;
    for (const json& t : tools) names.push_back(t["name"]);
    EXPECT_EQ(names[4 + entries.size()], "list_materials");
    EXPECT_EQ(names[5 + entries.size()], "list_footprints");
    EXPECT_EQ(names[6 + entries.size()], "save_footprint");
    EXPECT_EQ(names[7 + entries.size()], "delete_footprint");
    const std::vector<std::string> first{"get_document", "get_body", "measure", "get_sketch"};
    const std::vector<std::string> last{
        "undo",          "redo",        "new_document", "open_project", "save_project",
        "export_sketch", "export_flat", "flat_pattern", "export_step",  "export_stl",
        "nest_parts",    "screenshot",  "set_view"};
    EXPECT_TRUE(std::equal(first.begin(), first.end(), names.begin()));
    EXPECT_TRUE(std::equal(last.begin(), last.end(), names.end() - 13));
    for (std::size_t i = 0; i < entries.size(); ++i) EXPECT_EQ(names[4 + i], entries[i].name);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());

    const std::set<std::string> readOnly{"get_document", "get_body",       "measure",
                                         "get_sketch",   "list_materials", "list_footprints",
                                         "flat_pattern", "screenshot"};
    for (const json& t : tools) {
        bool marked = t.contains("annotations") && t["annotations"].value("readOnlyHint", false);
        EXPECT_EQ(marked, readOnly.count(t["name"]) == 1) << t["name"];
        EXPECT_EQ(t["inputSchema"]["additionalProperties"], false);
    }
    json getBody = tools[1];
    const json& stl = tools[tools.size() - 4]["inputSchema"]["properties"];
    EXPECT_EQ(
        stl["bodies"].dump(),
        R"({"type":"array","items":{"type":"string"},"description":"Bodies' IDs or names (default: every visible body)."})");
    EXPECT_EQ(stl["deflection"]["type"], "number");
    EXPECT_EQ(stl["binary"]["type"], "boolean");
    EXPECT_EQ(stl["unit"]["enum"].size(), 5u);
    const json& nestParts = tools[tools.size() - 3]["inputSchema"];
    EXPECT_EQ(nestParts["required"], json({"parts", "sheet_width", "sheet_height"}));
    EXPECT_EQ(nestParts["properties"]["parts"]["items"]["required"], json({"body"}));
    EXPECT_EQ(nestParts["properties"]["parts"]["items"]["properties"]["quantity"]["type"],
              "integer");
    EXPECT_EQ(
        getBody["inputSchema"].dump(),
        R"({"type":"object","properties":{"body":{"type":"string","description":"e.g. \"Body1\""}},"required":["body"],"additionalProperties":false})");
    EXPECT_EQ(tools[0]["inputSchema"].dump(),
              R"({"type":"object","properties":{},"additionalProperties":false})");
    EXPECT_EQ(tools.back()["inputSchema"]["properties"]["view"].dump(),
              R"({"type":"string","enum":["top","front","right","iso","fit"]})");
    EXPECT_EQ(
        tools[0]["description"],
        "The whole model as JSON: units, sketches (plane, entities, constraints, degrees of "
        "freedom), features (parameters, errors) and bodies (volume, bounds). Lengths in mm.");
}

TEST(McpToolList, RegisteredCommandsFollowTheCatalogue) {
    CommandRegistry registry;
    registerAllCommands(registry);
    const auto& order = catalogueCommandOrder();
    std::ptrdiff_t previous = -1;
    for (const auto& entry : registry.entries()) {
        auto at = std::find(order.begin(), order.end(), entry.name);
        ASSERT_NE(at, order.end()) << entry.name << " is missing from the catalogue order";
        EXPECT_GT(at - order.begin(), previous) << entry.name;
        previous = at - order.begin();
    }
    for (const char* name : {"create_box", "create_sketch", "add_line", "extrude", "undo"}) {
        bool registered = registry.find(name) != nullptr;
        EXPECT_EQ(registered, std::string(name) != "undo") << name;
    }
    EXPECT_EQ(registry.find("extrude")->description,
              "Extrude a sketch's closed regions along its normal (negative distance: the other "
              "way) into a new body, or join/cut an existing body. Regions fill even-odd: a shape "
              "inside another is a hole.");
}

TEST(McpToolList, CommandSchemasComeFromTheirDeclaredArguments) {
    RegistryHost host;
    host.commands.add("probe", "Probe.",
                      {{"l", ArgType::Length, true, "Distance.", {}, ""},
                       {"n", ArgType::Number, false, "", {}, ""},
                       {"a", ArgType::Angle, false, "Turn.", {}, ""},
                       {"i", ArgType::Integer, false, "Count.", {}, ""},
                       {"s", ArgType::String, true, "Mode.", {"join", "cut"}, ""},
                       {"b", ArgType::Boolean, false, "Flag.", {}, ""},
                       {"r", ArgType::SketchReference, false, "", {}, ""},
                       {"t", ArgType::Text, false, "Words.", {}, ""}},
                      makeCommand<EchoCommand>());
    host.commands.add("bare", "No arguments.", {}, makeCommand<EchoCommand>());
    Session session(host);
    json tools = session.send(request(1, "tools/list"))["result"]["tools"];
    auto find = [&](const std::string& name) {
        for (const json& t : tools)
            if (t["name"] == name) return t;
        return json();
    };
    json probe = find("probe");
    EXPECT_FALSE(probe.contains("annotations"));
    EXPECT_EQ(probe["description"], "Probe.");
    const json& p = probe["inputSchema"]["properties"];
    EXPECT_EQ(
        p["l"].dump(),
        R"({"type":["number","string"],"description":"Distance. Length: mm, or a string with units (\"0.5in\", \"1/4\\\"\", \"10 + 2mm\")."})");
    EXPECT_EQ(p["n"].dump(), R"({"type":"number"})");
    EXPECT_EQ(p["a"].dump(), R"({"type":"number","description":"Turn. Degrees."})");
    EXPECT_EQ(p["i"].dump(), R"({"type":"integer","description":"Count."})");
    EXPECT_EQ(p["s"].dump(), R"({"type":"string","description":"Mode.","enum":["join","cut"]})");
    EXPECT_EQ(p["b"].dump(), R"({"type":"boolean","description":"Flag."})");
    EXPECT_EQ(
        p["r"].dump(),
        R"({"type":"string","description":"A sketch reference such as \"Line1.end\", \"Circle1\", \"Origin\"."})");
    EXPECT_EQ(p["t"].dump(), R"({"type":"string","description":"Words."})");
    EXPECT_EQ(probe["inputSchema"]["required"].dump(), R"(["l","s"])");
    EXPECT_FALSE(find("bare")["inputSchema"].contains("required"));
}

TEST(McpToolCall, ArgumentsBecomeTypedRecordsInTheOrderGiven) {
    RegistryHost host;
    host.commands.add("echo", "Echo.", {}, makeCommand<EchoCommand>());
    Session session(host);
    json args = json::object();
    args["z"] = 3;
    args["a"] = 2.5;
    args["m"] = true;
    args["say"] = "hello";
    args["big"] = 18446744073709551615ull;
    EXPECT_EQ(session.ok("echo", args), "hello");
    const CommandRecord& r = EchoCommand::last;
    ASSERT_EQ(r.arguments.size(), 5u);
    EXPECT_EQ(r.arguments[0].first, "z");
    EXPECT_EQ(std::get<std::int64_t>(r.arguments[0].second), 3);
    EXPECT_EQ(std::get<double>(r.arguments[1].second), 2.5);
    EXPECT_EQ(std::get<bool>(r.arguments[2].second), true);
    EXPECT_EQ(std::get<std::string>(r.arguments[3].second), "hello");
    EXPECT_TRUE(std::holds_alternative<double>(r.arguments[4].second));

    EXPECT_EQ(session.ok("echo"), "Done.");
    ToolReply failed = session.call("echo", {{"say", "fail"}});
    EXPECT_TRUE(failed.isError);
    EXPECT_EQ(failed.text, "echo: it failed.");
    EXPECT_EQ(host.stack.undoCount(), 2u);

    // A call whose arguments are no object is refused before the command is made.
    for (const json& arguments : {json::array({1}), json("x")})
        EXPECT_EQ(session.call("echo", arguments).text, "echo: arguments must be an object.");
    EXPECT_EQ(host.stack.undoCount(), 2u);
    ToolReply unknown = session.call("frobnicate");
    EXPECT_TRUE(unknown.isError);
    EXPECT_EQ(unknown.text, "Unknown tool 'frobnicate'.");
    EXPECT_EQ(unknown.content["type"], "text");
}

// Breaks the rule that nothing throws across a command.
template <typename E> class ThrowingCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document&) override { throw E("bad"); }
    void undo(Document&) override {}
};

TEST(McpToolCall, AThrowingCommandIsAToolErrorNotACrash) {
    RegistryHost host;
    host.commands.add("boom", "Throws.", {}, makeCommand<ThrowingCommand<std::runtime_error>>());
    host.commands.add("kernel", "Throws.", {}, makeCommand<ThrowingCommand<Standard_Failure>>());
    Session session(host);
    for (const char* name : {"boom", "kernel"}) {
        ToolReply reply = session.call(name);
        EXPECT_TRUE(reply.isError);
        EXPECT_EQ(reply.text.rfind(name, 0), 0u) << reply.text;
        EXPECT_NE(reply.text.find("bad"), std::string::npos) << reply.text;
    }
    EXPECT_EQ(session.send(request(9, "ping"))["id"], 9);
    EXPECT_EQ(host.stack.undoCount(), 0u);
}

TEST(McpToolCall, LengthsAsTextReachTheExtrudeReader) {
    struct Case {
        json distance;
        double height;
    };
    for (const Case& c : {Case{"10 + 2mm", 12}, Case{"1/2in", 12.7}, Case{7, 7}, Case{2.5, 2.5}}) {
        HeadlessSession s;
        s.session.ok("create_sketch", {{"plane", "XY"}});
        s.session.ok("add_rectangle",
                     {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 20}});
        EXPECT_EQ(s.session.ok("extrude", {{"sketch", "Sketch1"}, {"distance", c.distance}}),
                  "Created Body1 with Extrude1.");
        auto* body = s.host.document().findAs<GeometryObject>("Body1");
        ASSERT_NE(body, nullptr);
        Bnd_Box box;
        BRepBndLib::AddOptimal(body->shape.shape(), box, false, false);
        EXPECT_NEAR(box.CornerMax().Z() - box.CornerMin().Z(), c.height, 1e-9) << c.distance.dump();
    }
}

TEST(McpToolCall, ScreenshotsComeBackAsBase64Images) {
    RegistryHost host;
    Session session(host);
    ToolReply shot = session.call("screenshot");
    EXPECT_FALSE(shot.isError);
    EXPECT_EQ(shot.content["type"], "image");
    EXPECT_EQ(shot.content["mimeType"], "image/png");
    EXPECT_EQ(shot.content["data"], "iVBORw0K"); // the six bytes \x89PNG\r\n
}

TEST(McpRobustness, HugeAndDeepMessagesAreAnsweredWithoutHarm) {
    HeadlessSession s;
    McpServer& server = s.session.server;
    std::string deep(200000, '[');
    EXPECT_EQ(json::parse(raw(server, deep))["error"]["code"], -32700);
    std::string deepValid = deep + std::string(200000, ']');
    EXPECT_EQ(json::parse(raw(server, deepValid))["error"]["code"], -32600);
    std::string deepId = R"({"jsonrpc":"2.0","method":"ping","id":)" + deepValid + "}";
    EXPECT_EQ(raw(server, deepId),
              R"({"jsonrpc":"2.0","id":null,"error":{"code":-32600,"message":"Invalid request"}})");
    std::string deepArgument =
        R"({"jsonrpc":"2.0","id":4,"method":"tools/call","params":{"name":"create_sketch","arguments":{"plane":)" +
        deepValid + "}}}";
    json answer = json::parse(raw(server, deepArgument));
    EXPECT_EQ(answer["result"]["content"][0]["text"],
              "create_sketch: 'plane' must be a number, string or boolean.");

    json big = request(5, "tools/call",
                       {{"name", "create_sketch"},
                        {"arguments", {{"plane", "XY"}, {"name", std::string(10 << 20, 'x')}}}});
    json bigAnswer = json::parse(raw(server, big.dump()));
    EXPECT_EQ(bigAnswer["id"], 5);
    EXPECT_TRUE(bigAnswer["result"].contains("isError"));
}

} // namespace
} // namespace cad::mcp::testing

// Every tool, given values of kinds its arguments don't take, answers in its own
// words: a sentence naming the tool and the argument, never an internal error.
#include "McpTestSupport.h"

#include "core/CommandRegistry.h"
#include "mcp/ToolCatalogue.h"

#include <string>
#include <vector>

namespace cad::mcp::testing {
namespace {

// JSON values an argument of this declaration must refuse.
std::vector<json> wrongKinds(const ArgSpec& declaredArg) {
    std::vector<json> wrong = {nullptr, json::array({1}), json::object({{"a", 1}})};
    switch (declaredArg.type) {
    case ArgType::Length:
    case ArgType::Number:
    case ArgType::Angle:
    case ArgType::Integer:
        wrong.push_back(true);
        break;
    case ArgType::Boolean:
        wrong.insert(wrong.end(), {"true", 1, 0.5});
        break;
    case ArgType::String:
    case ArgType::SketchReference:
    case ArgType::Text:
        wrong.insert(wrong.end(), {5, 2.5, false});
        if (!declaredArg.refersTo.empty() && declaredArg.required) wrong.push_back("");
        break;
    }
    return wrong;
}

TEST(ArgumentKinds, EveryCommandRefusesWrongKindsWithItsOwnSentence) {
    HeadlessSession s;
    // Something for the lookups to find, so no refusal comes from a missing object.
    s.session.ok("create_sketch", {{"plane", "XY"}});
    s.session.ok("add_rectangle",
                 {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 10}, {"y2", 5}});
    s.session.ok("extrude", {{"sketch", "Sketch1"}, {"distance", 4}});
    const std::size_t steps = s.host.commandStack().undoCount();

    int calls = 0;
    for (const CommandRegistry::Entry& entry : s.host.registry().entries()) {
        for (const ArgSpec& declaredArg : entry.arguments) {
            for (const json& value : wrongKinds(declaredArg)) {
                ToolReply reply = s.session.call(entry.name, {{declaredArg.name, value}});
                ++calls;
                const std::string where = entry.name + " " + declaredArg.name + "=" + value.dump();
                EXPECT_TRUE(reply.isError) << where;
                EXPECT_EQ(reply.text.rfind(entry.name + ": ", 0), 0u)
                    << where << ": " << reply.text;
                EXPECT_NE(reply.text.find("'" + declaredArg.name + "'"), std::string::npos)
                    << where << ": " << reply.text;
            }
        }
    }
    EXPECT_GT(calls, 100);
    // And every one refuses a name it doesn't declare.
    for (const CommandRegistry::Entry& entry : s.host.registry().entries()) {
        ToolReply reply = s.session.call(entry.name, {{"colour", "red"}});
        EXPECT_EQ(reply.text.rfind(entry.name + ": unknown argument 'colour'.", 0), 0u)
            << reply.text;
    }
    EXPECT_EQ(s.host.commandStack().undoCount(), steps);
}

TEST(ArgumentKinds, TheReportedSlipsAnswerTheReadersSentences) {
    HeadlessSession s;
    s.session.ok("create_box", {{"width", 10}, {"depth", 10}, {"height", 10}});
    struct Case {
        const char* tool;
        json arguments;
        const char* text;
    };
    for (const Case& c : {
             Case{"delete_object",
                  {{"object", "Box1"}, {"with_dependents", "true"}},
                  "delete_object: 'with_dependents' must be true or false."},
             Case{"suppress_feature", {{"feature", ""}}, "suppress_feature: missing 'feature'."},
             Case{"roll_back", {{"to", 3}}, "roll_back: 'to' must be the name or ID of an object."},
             Case{"rename_object",
                  {{"object", "Box1"}, {"name", 5}},
                  "rename_object: 'name' must be text."},
             Case{"set_parameter",
                  {{"name", "w"}, {"expression", "5"}, {"comment", 1}},
                  "set_parameter: 'comment' must be text."},
         }) {
        ToolReply reply = s.session.call(c.tool, c.arguments);
        EXPECT_TRUE(reply.isError) << c.tool;
        EXPECT_EQ(reply.text, c.text);
    }
}

TEST(ArgumentKinds, QueryToolsGetTheirJsonArguments) {
    HeadlessSession s;
    // An array reaches the tool, which answers it in its own words.
    ToolReply listed = s.session.call("get_document", {{"x", json::array({1})}});
    EXPECT_TRUE(listed.isError);
    EXPECT_EQ(listed.text, "get_document: unknown argument 'x'. It takes no arguments.");
    ToolReply scalar = s.session.call("measure", {{"a", json::array({"Body1"})}});
    EXPECT_EQ(scalar.text, "measure: 'a' must be a number, string or boolean.");

    json arguments = {{"bodies", json::array({"Body1", "Body2"})}, {"path", "a.step"}};
    ToolArguments args("export_step", arguments);
    EXPECT_TRUE(args.allow({"path"}, {"bodies"}).ok());
    ASSERT_NE(args.find("bodies"), nullptr);
    EXPECT_EQ(args.find("bodies")->size(), 2u);
    EXPECT_EQ(args.record().arguments.size(), 1u); // only the plain value
    json notAList = {{"bodies", "Body1"}};
    EXPECT_EQ(ToolArguments("export_step", notAList).allow({"path"}, {"bodies"}).error(),
              "export_step: 'bodies' must be a list.");
}

} // namespace
} // namespace cad::mcp::testing

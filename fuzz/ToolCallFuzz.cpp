// libFuzzer target: tools/call for every tool the server offers, with arguments of
// every JSON kind (missing, null, flags, numbers small and huge, names of things in
// the model, empty and huge text, lists, objects, text that looks like NaN), on a
// small model. Every answer must be the tool's own sentence: an escaped exception
// ("failed unexpectedly", "internal error") or a failed Result used as a value is a
// finding.
#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "fuzz/FuzzHost.h"
#include "mcp/McpServer.h"
#include "mcp/ToolCatalogue.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

using json = nlohmann::ordered_json;

struct Tool {
    std::string name;
    std::vector<std::string> arguments;
};

// Every tool with the argument names its schema lists.
std::vector<Tool> allTools(cad::mcp::McpHost& host) {
    std::vector<Tool> tools;
    for (const json& descriptor : cad::mcp::toolDescriptors(host.registry())) {
        Tool tool{descriptor["name"].get<std::string>(), {}};
        for (const auto& [name, schema] : descriptor["inputSchema"]["properties"].items())
            tool.arguments.push_back(name);
        tools.push_back(std::move(tool));
    }
    return tools;
}

// Names and texts that mean something in the model below, or nearly do.
const char* const kWords[] = {"Sketch1",
                              "Sketch2",
                              "Body1",
                              "Body2",
                              "Box1",
                              "Extrude1",
                              "Line1",
                              "Line1.end",
                              "Line1.start",
                              "Rectangle1",
                              "Rectangle1.top",
                              "Rectangle1.bottom_left",
                              "Circle1",
                              "Circle1.center",
                              "Origin",
                              "XAxis",
                              "YAxis",
                              "XY",
                              "XZ",
                              "YZ",
                              "Body1/Extrude1.end",
                              "Body2/Box1.top",
                              "Body1/Extrude1.side.Rectangle1.top",
                              "Body1.face1",
                              "Body1.edge3",
                              "Body1.vertex99",
                              "Sketch1/Region(Rectangle1)",
                              "Sketch1/Line1",
                              "w",
                              "w * 2",
                              "w / 0",
                              "10 mm",
                              "1/4\"",
                              "2'6\"",
                              "-5",
                              "0",
                              "1e308",
                              "distance",
                              "horizontal",
                              "coincident",
                              "angle",
                              "radius",
                              "Coincident1",
                              "Distance1",
                              "join",
                              "cut",
                              "new_body",
                              "symmetric",
                              "two_sides",
                              "one_side",
                              "inside",
                              "outside",
                              "0,0; 10,0; 10,10",
                              "1,2",
                              "x,y",
                              "mm",
                              "in",
                              "ft",
                              "fit",
                              "top",
                              "iso",
                              "Plane1",
                              "Gear",
                              "a/b",
                              " ",
                              "\t",
                              "\xff\xfe",
                              "Body1/",
                              "/Extrude1.end",
                              "Sketch1/Region()",
                              "Body1/Edge(Extrude1.end, Extrude1.side.Line1)"};
const char* const kNumberish[] = {
    "NaN", "nan",      "inf",    "-inf", "Infinity", "1e999", "-1e999", "1e-400",
    "-0",  "0x10",     "--1",    "1..2", "()",       "1/0",   "0/0",    "9999999999999999999999",
    "w+",  "sqrt(-1)", "1 in in"};

// Reads the fuzzer's bytes one decision at a time; zeros once they run out.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    bool empty() const { return at_ >= size_; }
    std::uint8_t next() { return at_ < size_ ? data_[at_++] : 0; }
    double nextDouble() {
        double d = 0;
        unsigned char raw[sizeof d] = {};
        for (unsigned char& c : raw) c = next();
        std::memcpy(&d, raw, sizeof d);
        return d;
    }
    std::string nextText() {
        std::size_t n = next() % 24;
        std::string text;
        while (n-- > 0 && !empty()) text += static_cast<char>(next());
        return text;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

// One value of the kind the next byte picks; "missing" leaves the member out.
bool addValue(json& arguments, const std::string& name, Bytes& in) {
    const std::uint8_t word = in.next();
    switch (in.next() % 16) {
    case 0:
        return false;
    case 1:
        arguments[name] = nullptr;
        break;
    case 2:
        arguments[name] = (word & 1) != 0;
        break;
    case 3:
        arguments[name] = static_cast<std::int8_t>(word);
        break;
    case 4:
        arguments[name] = word & 1 ? std::numeric_limits<std::int64_t>::max()
                                   : std::numeric_limits<std::int64_t>::min();
        break;
    case 5:
        arguments[name] = std::numeric_limits<std::uint64_t>::max();
        break;
    case 6:
        arguments[name] = in.nextDouble();
        break;
    case 7:
        arguments[name] = word & 1 ? 1e300 : -1e-300;
        break;
    case 8:
    case 9:
        arguments[name] = kWords[word % std::size(kWords)];
        break;
    case 10:
        arguments[name] = "";
        break;
    case 11:
        arguments[name] = kNumberish[word % std::size(kNumberish)];
        break;
    case 12:
        arguments[name] = std::string(word & 1 ? 1 << 16 : 1 << 12, word & 2 ? '9' : 'x');
        break;
    case 13:
        arguments[name] = json::array({kWords[word % std::size(kWords)], word});
        break;
    case 14:
        arguments[name] = json::object({{"x", word}});
        break;
    default:
        arguments[name] = in.nextText();
        break;
    }
    return true;
}

void check(const std::string& request, const std::string& answer) {
    const json parsed = json::parse(answer, nullptr, false);
    const json* text = nullptr;
    if (parsed.is_object() && parsed.contains("result")) {
        const json& result = parsed["result"];
        if (result.contains("content") && result["content"].is_array() &&
            !result["content"].empty() && result["content"][0].contains("text"))
            text = &result["content"][0]["text"];
        else if (result.contains("content"))
            return; // an image
    }
    bool bad = text == nullptr || !text->is_string() || text->get<std::string>().empty();
    if (!bad) {
        const std::string& t = text->get_ref<const std::string&>();
        // The words of an escaped exception, unless the request itself put them there
        // (an unknown name is echoed back).
        for (const char* slip : {"failed unexpectedly", "stopped on an internal error",
                                 "stopped on a geometry kernel error", "could not be read ("})
            bad = bad ||
                  (t.find(slip) != std::string::npos && request.find(slip) == std::string::npos);
    }
    if (bad) {
        std::fprintf(stderr, "request: %.2000s\nanswer: %.2000s\n", request.c_str(),
                     answer.c_str());
        std::abort();
    }
}

std::string call(cad::mcp::McpServer& server, int id, const std::string& tool, json arguments) {
    json request = json::object();
    request["jsonrpc"] = "2.0";
    request["id"] = id;
    request["method"] = "tools/call";
    request["params"] = {{"name", tool}, {"arguments", std::move(arguments)}};
    const std::string text = request.dump(-1, ' ', false, json::error_handler_t::replace);
    std::optional<std::string> answer = server.handle(text);
    if (!answer) std::abort();
    check(text, *answer);
    return *answer;
}

// A small model with something of each kind to name: a parameter, a sketch with a
// rectangle and a line, an extruded body and a box.
void buildModel(cad::mcp::McpServer& server) {
    call(server, 1, "set_parameter", {{"name", "w"}, {"expression", "10"}});
    call(server, 2, "create_sketch", {{"plane", "XY"}});
    call(server, 3, "add_rectangle",
         {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", "w"}, {"y2", 5}});
    call(server, 4, "add_line",
         {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 3}, {"y2", 4}});
    call(server, 5, "add_constraint",
         {{"sketch", "Sketch1"}, {"type", "distance"}, {"a", "Line1"}});
    call(server, 6, "extrude", {{"sketch", "Sketch1"}, {"distance", 4}});
    call(server, 7, "create_box", {{"width", 5}, {"depth", 5}, {"height", 5}, {"x", 30}});
}

// The host knows when a call started a new document, so the model is built again.
class ModelHost : public cad::fuzz::FuzzHost {
public:
    cad::Result<void> newDocument() override {
        replaced = true;
        return FuzzHost::newDocument();
    }
    bool replaced = true;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ModelHost host;
    static cad::mcp::McpServer server(host, "fuzz");
    static const std::vector<Tool> tools = allTools(host);
    // Every input starts on the same model with empty undo and redo stacks. Building
    // it is slow, so it is built once and each input's changes are undone after it;
    // only an input that started a new document has it built again.
    if (host.replaced) {
        (void)host.newDocument();
        buildModel(server);
        host.commandStack().clear();
        host.replaced = false;
    }

    Bytes in(data, size);
    for (int n = 0; n < 4 && !in.empty(); ++n) {
        const Tool& tool = tools[in.next() % tools.size()];
        json arguments = json::object();
        const std::size_t count = in.next() % (tool.arguments.size() + 2);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t pick = in.next();
            // Now and then a name the tool doesn't declare.
            const std::string name = pick % (tool.arguments.size() + 1) == tool.arguments.size()
                                         ? "colour"
                                         : tool.arguments[pick % (tool.arguments.size() + 1)];
            addValue(arguments, name, in);
        }
        call(server, 100 + n, tool.name, std::move(arguments));
    }
    cad::CommandStack& stack = host.commandStack();
    while (stack.undo()) {}
    stack.clear();
    return 0;
}

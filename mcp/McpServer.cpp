// JSON-RPC 2.0 handling of the agent protocol: parse and validate one message,
// answer "initialize", "ping", "tools/list" and "tools/call", and turn tool calls
// into command records executed through the command stack.
#include "mcp/McpServer.h"

#include "core/CommandStack.h"
#include "mcp/ToolArguments.h"
#include "mcp/ToolCatalogue.h"

#include <Standard_Failure.hxx>
#include <nlohmann/json.hpp>

#include <cstdint>

namespace cad::mcp {

namespace {

using ordered_json = nlohmann::ordered_json;

const char* const kInstructions =
    "Korvel Studio is a parametric CAD application. Typical flow: create_sketch (plane XY, XZ "
    "or YZ) -> add_line / add_circle / add_arc / ... -> add_constraint (geometric constraints "
    "and dimensions) -> extrude. Lengths are mm unless given as strings with units (\"0.5in\", "
    "\"1/4\\\"\", \"10 + 2mm\"); angles are degrees. Sketch geometry is addressed by references "
    "such as \"Line1.end\", \"Circle1\", \"Rectangle1.top\", \"Origin\"; call get_sketch to see "
    "an entity's named points and the sketch's degrees of freedom, and get_document for the "
    "whole model. A sketch's closed regions extrude even-odd (a shape inside another is a "
    "hole). Every change is undoable (undo / redo) and conflicting or redundant constraints are "
    "refused with a reason. Check finished geometry with get_body (faces, edges and vertices by "
    "persistent name, e.g. \"Body1/Extrude1.end\") and measure (distances, angles, hole "
    "spacing). Objects have a permanent ID (\"Body1\") and may have a display name the user "
    "gave them (\"label\" in get_document); either works as an argument, but IDs never change, "
    "so prefer them in references.";

enum class Kind { ParseError, Invalid, Notification, Request };

struct Classified {
    Kind kind = Kind::ParseError;
    ordered_json message;
    ordered_json id; // null unless the request carries a usable one
};

bool usableId(const ordered_json& id) { return id.is_string() || id.is_number() || id.is_null(); }

Classified classify(std::string_view text) {
    Classified c;
    c.message = ordered_json::parse(text.begin(), text.end(), nullptr, false);
    if (c.message.is_discarded()) return c;
    if (!c.message.is_object()) {
        c.kind = Kind::Invalid;
        return c;
    }
    auto id = c.message.find("id");
    bool hasId = id != c.message.end();
    if (hasId && usableId(*id)) c.id = *id;
    auto method = c.message.find("method");
    if (method == c.message.end() || !method->is_string() || (hasId && !usableId(*id))) {
        c.kind = Kind::Invalid;
        return c;
    }
    c.kind = hasId ? Kind::Request : Kind::Notification;
    return c;
}

std::string dump(const ordered_json& value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string errorText(const ordered_json& id, int code, const std::string& message) {
    ordered_json answer = ordered_json::object();
    answer["jsonrpc"] = "2.0";
    answer["id"] = id;
    answer["error"] = {{"code", code}, {"message", message}};
    return dump(answer);
}

std::string resultText(const ordered_json& id, ordered_json result) {
    ordered_json answer = ordered_json::object();
    answer["jsonrpc"] = "2.0";
    answer["id"] = id;
    answer["result"] = std::move(result);
    return dump(answer);
}

ordered_json toolResult(const ToolAnswer& answer) {
    ordered_json item = ordered_json::object();
    if (!answer.png.empty()) {
        static const char* const alphabet =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string data;
        const std::string& in = answer.png;
        data.reserve((in.size() + 2) / 3 * 4);
        for (std::size_t i = 0; i < in.size(); i += 3) {
            std::uint32_t n = static_cast<unsigned char>(in[i]) << 16;
            if (i + 1 < in.size()) n |= static_cast<unsigned char>(in[i + 1]) << 8;
            if (i + 2 < in.size()) n |= static_cast<unsigned char>(in[i + 2]);
            data += alphabet[(n >> 18) & 63];
            data += alphabet[(n >> 12) & 63];
            data += i + 1 < in.size() ? alphabet[(n >> 6) & 63] : '=';
            data += i + 2 < in.size() ? alphabet[n & 63] : '=';
        }
        item["type"] = "image";
        item["data"] = std::move(data);
        item["mimeType"] = "image/png";
    } else {
        item["type"] = "text";
        item["text"] = answer.text;
    }
    ordered_json result = ordered_json::object();
    result["content"] = ordered_json::array({std::move(item)});
    result["isError"] = answer.isError;
    return result;
}

// The call's arguments as a record, each member converted by its JSON type, in
// the order given.
Result<CommandRecord> recordFromArguments(const std::string& name, const ordered_json& arguments) {
    CommandRecord record(name);
    for (auto it = arguments.begin(); it != arguments.end(); ++it) {
        Result<Value> value = toCommandValue(name, it.key(), it.value());
        if (!value) return Error(value);
        record.arguments.emplace_back(it.key(), std::move(value).value());
    }
    return record;
}

} // namespace

McpServer::McpServer(McpHost& host, std::string version)
    : host_(host), version_(version.empty() ? "dev" : std::move(version)) {}

std::string McpServer::instructions() const {
    return std::string(kInstructions) +
           (host_.isInteractive()
                ? " You are driving the user's open Korvel Studio window: they see each change; "
                  "screenshot shows the view."
                : " Running headless (the app is not open): use open_project / save_project for "
                  "files.");
}

std::optional<std::string> McpServer::handle(std::string_view requestText) {
    Classified c = classify(requestText);
    switch (c.kind) {
    case Kind::ParseError:
        return errorText(nullptr, -32700, "Parse error");
    case Kind::Invalid:
        return errorText(c.id, -32600, "Invalid request");
    case Kind::Notification:
        return std::nullopt;
    case Kind::Request:
        break;
    }
    const std::string method = c.message["method"].get<std::string>();
    const ordered_json* params = nullptr;
    if (auto it = c.message.find("params"); it != c.message.end()) params = &*it;

    if (method == "initialize") {
        ordered_json result = ordered_json::object();
        result["protocolVersion"] = kProtocolVersion;
        result["capabilities"] = {{"tools", {{"listChanged", false}}}};
        ordered_json info = ordered_json::object();
        info["name"] = "korvel";
        info["title"] = "Korvel Studio";
        info["version"] = version_;
        result["serverInfo"] = std::move(info);
        result["instructions"] = instructions();
        return resultText(c.id, std::move(result));
    }
    if (method == "ping") return resultText(c.id, ordered_json::object());
    if (method == "tools/list") {
        if (toolList_.empty()) toolList_ = dump(toolDescriptors(host_.registry()));
        return R"({"jsonrpc":"2.0","id":)" + dump(c.id) + R"(,"result":{"tools":)" + toolList_ +
               "}}";
    }
    if (method != "tools/call") return errorText(c.id, -32601, "Method not found: " + method);

    // From here on every problem is the tool's answer, not a protocol error.
    auto answer = [&](const ToolAnswer& a) { return resultText(c.id, toolResult(a)); };
    const ordered_json* name = nullptr;
    if (params && params->is_object())
        if (auto it = params->find("name"); it != params->end() && it->is_string()) name = &*it;
    if (!name)
        return answer(ToolAnswer::failure("tools/call needs the tool's name as text in "
                                          "params.name."));
    const std::string tool = name->get<std::string>();
    static const ordered_json none = ordered_json::object();
    const ordered_json* arguments = &none;
    if (auto it = params->find("arguments"); it != params->end() && !it->is_null())
        arguments = &*it;
    if (!arguments->is_object())
        return answer(ToolAnswer::failure(tool + ": arguments must be an object."));

    if (const QueryTool* query = findQueryTool(tool))
        return answer(
            guarded(tool, [&] { return query->run(host_, ToolArguments(tool, *arguments)); }));
    if (!host_.registry().find(tool))
        return answer(ToolAnswer::failure("Unknown tool '" + tool + "'."));
    Result<CommandRecord> record = recordFromArguments(tool, *arguments);
    if (!record) return answer(ToolAnswer::failure(record.error()));
    return answer(guarded(tool, [&] {
        CommandResult done = host_.commandStack().execute(*record);
        if (!done.ok) return ToolAnswer::failure(done.message);
        return ToolAnswer::success(done.message.empty() ? std::string("Done.") : done.message);
    }));
}

ToolAnswer McpServer::guarded(const std::string& tool, const std::function<ToolAnswer()>& run) {
    // Nothing may throw across a tool, but if something does, the agent hears of it
    // and the session goes on.
    try {
        return run();
    } catch (const UncheckedResult& e) {
        return ToolAnswer::failure(e.what());
    } catch (const std::exception& e) {
        return ToolAnswer::failure(tool + " stopped on an internal error (" + e.what() +
                                   "). Check the model with get_document before going on.");
    } catch (const Standard_Failure& e) {
        return ToolAnswer::failure(tool + " stopped on a geometry kernel error (" +
                                   std::string(e.GetMessageString()) +
                                   "). Check the model with get_document before going on.");
    }
}

bool expectsAnswer(std::string_view requestText) {
    return classify(requestText).kind != Kind::Notification;
}

} // namespace cad::mcp

// export_step and export_stl: read the path, the bodies and the mesh options,
// collect the bodies and hand them to the writers; answer what was written.
#include "mcp/ExchangeTools.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"
#include "geometry/exchange/ExchangeUnit.h"
#include "geometry/exchange/ExportBodies.h"
#include "geometry/exchange/StepWriter.h"
#include "geometry/exchange/StlWriter.h"
#include "mcp/McpHost.h"

#include <algorithm>
#include <filesystem>

namespace cad::mcp {

namespace {

#define KORVEL_CHECK(result)                                                                       \
    if (auto&& checked = (result); !checked) return ToolAnswer::failure(checked.error())

// The path, which must end in one of `extensions` (compared without case).
Result<std::string> exportPath(const ToolArguments& arguments,
                               std::initializer_list<std::string_view> extensions,
                               const char* wanted) {
    Result<std::string> path = ArgReader(arguments.record()).string("path");
    if (!path) return path;
    if (trimmed(*path).empty()) return fail(arguments.tool() + ": give the file's 'path'.");
    const std::string extension = toLowerAscii(std::filesystem::path(*path).extension().string());
    for (std::string_view allowed : extensions)
        if (extension == allowed) return path;
    return fail(arguments.tool() + ": the path must end in " + wanted + ".");
}

// The "bodies" list: every item a body's ID or name.
Result<std::vector<std::string>> bodyNames(const ToolArguments& arguments) {
    std::vector<std::string> names;
    const nlohmann::ordered_json* list = arguments.find("bodies");
    if (!list) return names;
    for (const nlohmann::ordered_json& item : *list) {
        if (!item.is_string() || trimmed(item.get<std::string>()).empty())
            return fail(arguments.tool() + ": 'bodies' must list bodies' IDs or names.");
        names.emplace_back(trimmed(item.get<std::string>()));
    }
    return names;
}

std::string wrote(const std::string& path, std::size_t bodies) {
    return "Wrote " + path + ": " + std::to_string(bodies) + (bodies == 1 ? " body." : " bodies.");
}

} // namespace

ToolAnswer exportStepTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"path"}, {"bodies"}));
    Result<std::string> path = exportPath(arguments, {".step", ".stp"}, ".step or .stp");
    KORVEL_CHECK(path);
    Result<std::vector<std::string>> names = bodyNames(arguments);
    KORVEL_CHECK(names);
    Result<std::vector<exchange::ExportBody>> bodies =
        exchange::collectBodies(host.document(), *names);
    KORVEL_CHECK(bodies);
    KORVEL_CHECK(exchange::writeStep(*bodies, *path));
    return ToolAnswer::success(wrote(*path, bodies->size()));
}

ToolAnswer exportStlTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"path", "deflection", "unit", "binary"}, {"bodies"}));
    Result<std::string> path = exportPath(arguments, {".stl"}, ".stl");
    KORVEL_CHECK(path);
    Result<std::vector<std::string>> names = bodyNames(arguments);
    KORVEL_CHECK(names);

    ArgReader reader(arguments.record());
    exchange::StlExportOptions options;
    Result<double> deflection = reader.number("deflection", options.linearDeflection);
    KORVEL_CHECK(deflection);
    options.linearDeflection = std::max(*deflection, 0.001);
    Result<bool> binary = reader.boolean("binary", true);
    KORVEL_CHECK(binary);
    options.binary = *binary;
    if (const Value* unit = arguments.record().find("unit")) {
        const auto* text = std::get_if<std::string>(unit);
        std::optional<units::Length> length = text ? exchange::exchangeUnit(*text) : std::nullopt;
        if (!length) return ToolAnswer::failure("Unknown unit.");
        options.unit = *length;
    }

    Result<std::vector<exchange::ExportBody>> bodies =
        exchange::collectBodies(host.document(), *names);
    KORVEL_CHECK(bodies);
    KORVEL_CHECK(exchange::writeStl(*bodies, *path, options));
    return ToolAnswer::success(wrote(*path, bodies->size()));
}

} // namespace cad::mcp

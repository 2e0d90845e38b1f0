// The footprint library tools: read the arguments, take the sketch's entities and
// constraints for save_footprint, and answer the library's sentences.
#include "mcp/FootprintTools.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"
#include "mcp/McpHost.h"
#include "mcp/QueryTools.h"
#include "sketch/SketchEditCommand.h"
#include "sketch/footprints/FootprintLibrary.h"

namespace cad::mcp {

namespace {

#define KORVEL_CHECK(result)                                                                       \
    if (auto&& checked = (result); !checked) return ToolAnswer::failure(checked.error())

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

} // namespace

nlohmann::ordered_json footprintListing() {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const StoredFootprint& stored : FootprintLibrary().list()) {
        const Footprint& f = stored.footprint;
        list.push_back({{"name", f.name},
                        {"description", f.description},
                        {"entities", footprintContents(f)},
                        {"constraints", f.constraints.size()}});
    }
    return {{"footprints", std::move(list)}};
}

ToolAnswer listFootprintsTool(McpHost&, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({}));
    return ToolAnswer::success(toolJsonText(footprintListing()));
}

ToolAnswer saveFootprintTool(McpHost& host, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"sketch", "name", "description", "entities", "replace"}));
    ArgReader reader(arguments.record());
    Result<std::string> sketchName = reader.string("sketch");
    KORVEL_CHECK(sketchName);
    Result<std::string> name = reader.string("name", "");
    KORVEL_CHECK(name);
    Result<std::string> description = reader.string("description", "");
    KORVEL_CHECK(description);
    Result<std::string> only = reader.string("entities", "");
    KORVEL_CHECK(only);
    Result<bool> replace = reader.boolean("replace", false);
    KORVEL_CHECK(replace);

    const std::string wanted(trimmed(*sketchName));
    Result<SketchObject*> sketch = findSketch(host.document(), wanted);
    if (!sketch) return ToolAnswer::failure("No sketch named '" + wanted + "'.");
    Result<Footprint> footprint =
        footprintFromSketch((*sketch)->entities, (*sketch)->constraints,
                            std::string(trimmed(*name)), *description, splitList(*only));
    KORVEL_CHECK(footprint);
    Result<std::string> saved = FootprintLibrary().save(*footprint, *replace);
    KORVEL_CHECK(saved);
    return ToolAnswer::success("Saved the footprint '" + footprint->name + "' (" +
                               counted(footprint->entities.size(), "entity", "entities") + ", " +
                               counted(footprint->constraints.size(), "constraint", "constraints") +
                               ").");
}

ToolAnswer deleteFootprintTool(McpHost&, const ToolArguments& arguments) {
    KORVEL_CHECK(arguments.allow({"name"}));
    Result<std::string> name = ArgReader(arguments.record()).string("name");
    KORVEL_CHECK(name);
    Result<std::string> removed = FootprintLibrary().remove(*name);
    KORVEL_CHECK(removed);
    return ToolAnswer::success(*removed);
}

} // namespace cad::mcp

// The result of one tool call as the agent reads it: a sentence or JSON text, or
// an image, and whether the call failed.
#pragma once

#include <string>
#include <utility>

namespace cad::mcp {

struct ToolAnswer {
    std::string text;
    bool isError = false;
    std::string png; // set for image answers (screenshot)

    static ToolAnswer success(std::string text) { return {std::move(text), false, {}}; }
    static ToolAnswer failure(std::string text) { return {std::move(text), true, {}}; }
    static ToolAnswer image(std::string pngBytes) { return {{}, false, std::move(pngBytes)}; }
};

} // namespace cad::mcp

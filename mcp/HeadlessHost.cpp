// The windowless host: project files go straight to and from the owned document.
#include "mcp/HeadlessHost.h"

#include "core/ProjectFile.h"
#include "mcp/AllCommands.h"
#include "mcp/QueryTools.h"

#include <filesystem>
#include <system_error>

namespace cad::mcp {

namespace {

// Absolute, so that the answer names the file wherever the agent runs from.
std::string absolutePath(const std::string& path) {
    std::error_code ec;
    std::filesystem::path absolute = std::filesystem::absolute(path, ec);
    return ec ? path : absolute.lexically_normal().string();
}

} // namespace

HeadlessHost::HeadlessHost(std::string generator)
    : stack_(document_, registry_), generator_(std::move(generator)) {
    registerAllCommands(registry_);
}

Result<void> HeadlessHost::newDocument() {
    document_.replaceWith(Document());
    stack_.clear();
    path_.clear();
    return {};
}

Result<void> HeadlessHost::openProject(const std::string& path) {
    if (path.empty()) return fail("Give the path of the project to open.");
    const std::string absolute = absolutePath(path);
    Result<std::unique_ptr<Document>> read = readProject(absolute, allObjectTypes());
    if (!read) return Error(read);
    document_.replaceWith(std::move(**read));
    stack_.clear();
    path_ = absolute;
    return {};
}

Result<void> HeadlessHost::saveProject(const std::string& path) {
    if (path.empty() && path_.empty())
        return fail("The document has never been saved: give a path.");
    const std::string target = path.empty() ? path_ : absolutePath(path);
    if (Result<void> written = writeProject(document_, target, generator_, allObjectTypes());
        !written)
        return written;
    path_ = target;
    return {};
}

Result<std::string> HeadlessHost::screenshot() { return fail("Couldn't capture the view."); }

Result<void> HeadlessHost::setView(const std::string& name) {
    if (Result<void> known = checkViewName(name); !known) return known;
    return fail("There is no view to turn: this Korvel Studio agent server runs without a window.");
}

} // namespace cad::mcp

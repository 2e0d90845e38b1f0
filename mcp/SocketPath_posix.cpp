// The socket path on Linux and other POSIX systems: the runtime folder of the
// user named by the effective user ID, and file modes through chmod.
#include "mcp/SocketPath.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace cad::mcp {

std::string pathSafeUserName(std::string_view name) {
    if (name.empty()) return "user";
    std::string out(name);
    for (char& c : out)
        if (c == '\\' || c == '/' || c == ' ') c = '_';
    return out;
}

std::string currentUserName() {
    const passwd* entry = getpwuid(geteuid());
    return pathSafeUserName(entry && entry->pw_name ? entry->pw_name : "");
}

std::string defaultMcpSocketPath() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string folder = runtime && *runtime ? runtime : "/tmp";
    return folder + "/korvel-mcp-" + currentUserName();
}

std::string mcpSocketPath() {
    const char* overridden = std::getenv("KORVEL_MCP_PIPE");
    if (overridden) {
        std::size_t length = std::strlen(overridden);
        if (length >= 1 && length <= 255) return overridden;
    }
    return defaultMcpSocketPath();
}

PathKind pathKind(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return PathKind::Missing;
    return S_ISSOCK(info.st_mode) ? PathKind::Socket : PathKind::Other;
}

Result<void> restrictToOwner(const std::string& path) {
    if (::chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0)
        return fail("Couldn't make " + path + " private (" + std::strerror(errno) + ").");
    return {};
}

} // namespace cad::mcp

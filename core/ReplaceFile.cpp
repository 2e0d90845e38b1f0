// Temporary-then-rename writing of exported files.
#include "core/ReplaceFile.h"

#include <filesystem>
#include <system_error>

namespace cad {

Result<void> replaceFile(const std::string& path,
                         const std::function<bool(const std::string& temporary)>& write) {
    namespace fs = std::filesystem;
    const Error failed = fail("Couldn't write " + path);
    if (path.empty()) return failed;
    const fs::path target(path);
    std::error_code ec;
    if (fs::is_directory(target, ec)) return failed;
    const fs::path temporary =
        target.parent_path() / ("." + target.filename().string() + ".writing");
    bool written = false;
    try {
        written = write(temporary.string());
    } catch (...) {
        written = false;
    }
    if (written && fs::exists(temporary, ec) && fs::file_size(temporary, ec) > 0 && !ec) {
        fs::rename(temporary, target, ec);
        if (!ec) return {};
    }
    fs::remove(temporary, ec);
    return failed;
}

} // namespace cad

// Writing a file so that a failure never destroys what was there: the writer fills
// a temporary file beside the target, which then replaces the target in one rename.
#pragma once

#include "core/Result.h"

#include <functional>
#include <string>

namespace cad {

// Calls `write` with the temporary path; when it returns true the temporary file
// becomes `path`. On any failure the temporary file is removed, `path` is left as it
// was, and the answer is "Couldn't write <path>".
Result<void> replaceFile(const std::string& path,
                         const std::function<bool(const std::string& temporary)>& write);

} // namespace cad

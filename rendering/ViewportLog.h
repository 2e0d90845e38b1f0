// The logging category of the 3D view ("korvel.viewport"): binding, frame and
// latency statistics, OpenCASCADE's own messages.
#pragma once

#include <QLoggingCategory>

namespace cad::rendering {
Q_DECLARE_LOGGING_CATEGORY(viewportLog)
} // namespace cad::rendering

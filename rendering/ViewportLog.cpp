// The "korvel.viewport" logging category; debug lines (statistics) only when enabled.
#include "rendering/ViewportLog.h"

namespace cad::rendering {
Q_LOGGING_CATEGORY(viewportLog, "korvel.viewport", QtInfoMsg)
} // namespace cad::rendering

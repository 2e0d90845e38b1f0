// The per-user folders, resolved from the environment each time they are asked for,
// so a test or a portable install can point them elsewhere.
#include "ui/DataPaths.h"

#include <QDir>
#include <QStandardPaths>

#include <cstdlib>
#include <system_error>

namespace cad::ui {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

} // namespace

QString dataDirectory() {
    const QString chosen = qEnvironmentVariable("KORVEL_DATA_DIR");
    if (!chosen.isEmpty()) return chosen;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/KorvelStudio";
}

std::unique_ptr<QSettings> appSettings() {
    return std::make_unique<QSettings>(dataDirectory() + "/settings.ini", QSettings::IniFormat);
}

std::filesystem::path crashDirectory() {
    std::filesystem::path state;
    if (std::string xdg = environment("XDG_STATE_HOME"); !xdg.empty())
        state = xdg;
    else if (std::string home = environment("HOME"); !home.empty())
        state = std::filesystem::path(home) / ".local" / "state";
    if (state.empty()) {
        std::error_code ec;
        state = std::filesystem::temp_directory_path(ec);
    }
    return state / "KorvelStudio" / "crashes";
}

} // namespace cad::ui

// Where the application keeps its per-user files: the data folder (settings.ini,
// screenshots, libraries), the settings file, and the folder for crash reports.
#pragma once

#include <QSettings>
#include <QString>

#include <filesystem>
#include <memory>

namespace cad::ui {

// KORVEL_DATA_DIR when set, else the generic data location + "/KorvelStudio".
// No trailing separator; the folder is not created.
QString dataDirectory();
// The application settings in INI format at dataDirectory() + "/settings.ini".
std::unique_ptr<QSettings> appSettings();
// $XDG_STATE_HOME (else ~/.local/state) + "/KorvelStudio/crashes", else the temp folder
// + "/KorvelStudio/crashes".
std::filesystem::path crashDirectory();

} // namespace cad::ui

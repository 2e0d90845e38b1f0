// Carrying over OstrovanCAD's data on the first start of Korvel Studio: the files of
// its data folder and its settings, never overwriting what Korvel Studio already has.
#pragma once

#include "app/MessagePrompt.h"

#include <QString>

class QWidget;

namespace cad::app {

// Runs on every start and does its work once: files are copied while the marker
// "carried-over-from-ostrovancad" is missing from the data folder, settings while
// "rebrand/settingsCarriedOver" is not set. Does nothing when KORVEL_DATA_DIR is set.
// True when any file or setting came across in this run.
bool migrateFormerData();

// Copies a file, or every file below a folder, to target without replacing any file
// that exists there; missing folders are created. Returns the number of files copied.
int copyTreeNoOverwrite(const QString& source, const QString& target);

// The one-time notice after a migration, modal on the main window.
void showRenameNotice(QWidget* parent, MessagePrompt& prompt = messageBoxPrompt());

} // namespace cad::app

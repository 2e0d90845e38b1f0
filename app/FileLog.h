// Logging to a file named by KORVEL_LOG: one line per message, with the time and the
// category, and the debug output of the application's own categories switched on.
#pragma once

#include <QString>
#include <QTime>

namespace cad::app {

// Opens the file (write-only, truncated). Only when that succeeds does it switch on
// "korvel.*.debug" and route every message to the file; otherwise nothing changes
// and it returns false.
bool startFileLogging(const QString& path);

// Puts back Qt's own message handler and filter rules and closes the file.
void stopFileLogging();

// "hh:mm:ss.zzz category: message"; a message without a category shows "default".
QString logLine(const QTime& time, const char* category, const QString& message);

} // namespace cad::app

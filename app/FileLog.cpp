// The file message handler behind KORVEL_LOG. Every line is flushed at once, so the
// file is complete up to the last message even when the process then crashes.
#include "app/FileLog.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTextStream>

#include <cstring>
#include <memory>

namespace cad::app {

namespace {

// The file stays open until the process ends; messages from any thread write to it
// without a lock, as the rest of the logging does.
QFile* logFile = nullptr;
QTextStream* logStream = nullptr;

void writeToFile(QtMsgType, const QMessageLogContext& context, const QString& message) {
    if (!logStream) return;
    *logStream << logLine(QTime::currentTime(), context.category, message) << '\n';
    logStream->flush();
}

} // namespace

QString logLine(const QTime& time, const char* category, const QString& message) {
    const QString name = category && std::strlen(category) > 0 ? QString::fromUtf8(category)
                                                               : QStringLiteral("default");
    return time.toString(QStringLiteral("hh:mm:ss.zzz")) + ' ' + name + QStringLiteral(": ") +
           message;
}

bool startFileLogging(const QString& path) {
    if (path.isEmpty()) return false;
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) return false;
    stopFileLogging();
    logFile = file.release();
    logStream = new QTextStream(logFile);
    QLoggingCategory::setFilterRules(QStringLiteral("korvel.*.debug=true"));
    qInstallMessageHandler(writeToFile);
    return true;
}

void stopFileLogging() {
    if (!logFile) return;
    qInstallMessageHandler(nullptr);
    QLoggingCategory::setFilterRules(QString());
    delete logStream;
    logStream = nullptr;
    delete logFile;
    logFile = nullptr;
}

} // namespace cad::app

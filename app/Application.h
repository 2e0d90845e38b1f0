// The application object: QApplication that turns a standard exception escaping an
// event handler into a logged line and one report file per distinct exception.
#pragma once

#include <QApplication>
#include <QString>

#include <filesystem>

namespace cad::app {

class Application : public QApplication {
public:
    Application(int& argc, char** argv);

    // Delivers the event; a std::exception thrown on the way is logged, reported
    // once per distinct type and message, and the event counts as not handled.
    bool notify(QObject* receiver, QEvent* event) override;
};

// What notify does with an escaped exception, apart from catching it: logs the
// "korvel.crash" line and, the first time this type name + message is seen in the
// process, writes "exception-yyyyMMdd-HHmmss.txt" into the folder. Returns true when
// a report was written.
bool reportEscapedException(const QString& typeName, const QString& message,
                            const QString& receiverClass, int eventType,
                            const std::filesystem::path& folder);

// The readable run-time type name of an exception ("std::runtime_error").
QString exceptionTypeName(const std::exception& exception);

} // namespace cad::app

// The application object's event delivery with its safety net for exceptions that
// escape an event handler: the program logs them, reports each kind once, and runs on.
#include "app/Application.h"

#include "ui/DataPaths.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTextStream>

#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <set>
#include <typeinfo>

Q_LOGGING_CATEGORY(korvelCrash, "korvel.crash")

namespace cad::app {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& exception) {
        const QString receiverClass = receiver
                                          ? QString::fromLatin1(receiver->metaObject()->className())
                                          : QStringLiteral("?");
        const int eventType = event ? static_cast<int>(event->type()) : -1;
        reportEscapedException(exceptionTypeName(exception), QString::fromUtf8(exception.what()),
                               receiverClass, eventType, cad::ui::crashDirectory());
        return false;
    }
}

QString exceptionTypeName(const std::exception& exception) {
    const char* mangled = typeid(exception).name();
    int status = 0;
    char* demangled = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    QString name = QString::fromLatin1(status == 0 && demangled ? demangled : mangled);
    std::free(demangled);
    return name;
}

bool reportEscapedException(const QString& typeName, const QString& message,
                            const QString& receiverClass, int eventType,
                            const std::filesystem::path& folder) {
    qCCritical(korvelCrash, "Unhandled %s in %s (event type %d): %s", qUtf8Printable(typeName),
               qUtf8Printable(receiverClass), eventType, qUtf8Printable(message));

    // One report per kind of failure and run: an exception in a paint or timer
    // handler would otherwise write a file for every event.
    static std::set<QString> reported;
    if (!reported.insert(typeName + message).second) return false;

    // Two different exceptions within one second each keep their own file.
    const QString folderText = QString::fromStdString(folder.string());
    QDir().mkpath(folderText);
    const QString stem = folderText + "/exception-" +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QFile file(stem + ".txt");
    for (int n = 2; !file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Text); ++n) {
        if (!file.exists() || n > 100) return false;
        file.setFileName(stem + "-" + QString::number(n) + ".txt");
    }
    QTextStream out(&file);
    out << "Korvel Studio caught an exception that escaped an event handler.\n"
        << "type:     " << typeName << '\n'
        << "message:  " << message << '\n'
        << "receiver: " << receiverClass << '\n'
        << "event:    " << eventType << '\n';
    out.flush();
    return out.status() == QTextStream::Ok;
}

} // namespace cad::app

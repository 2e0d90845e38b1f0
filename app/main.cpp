// korvel: the desktop program. Sets up the process (crash reports, logging, OpenGL,
// look, carried-over data), opens the main window and runs until it closes.
#include "app/Application.h"
#include "app/CrashHandler.h"
#include "app/FileLog.h"
#include "app/MessagePrompt.h"
#include "app/Migration.h"
#include "app/TerminationSignals.h"
#include "app/Theme.h"
#include "app/WindowPlacement.h"
#include "ui/MainWindow.h"

#include <QStringList>
#include <QSurfaceFormat>

#include <memory>

int main(int argc, char** argv) {
    // First, so that a crash during start-up is reported too.
    cad::app::installCrashHandler();

    if (const QString logPath = qEnvironmentVariable("KORVEL_LOG"); !logPath.isEmpty())
        cad::app::startFileLogging(logPath);

    // Debian's OpenCASCADE draws through GLX only: unless told otherwise, run on X11
    // (XWayland under a Wayland desktop) with Qt's GLX integration.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");

    // The OpenGL format must be the default before the application object exists.
    QSurfaceFormat format;
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);

    cad::app::Application application(argc, argv);
    cad::app::Application::setOrganizationName(QStringLiteral("KorvelStudio"));
    cad::app::Application::setApplicationName(QStringLiteral("KorvelStudio"));
    cad::app::Application::setApplicationVersion(QStringLiteral(KORVEL_VERSION));

    cad::ui::theme::applyTheme(application);
    const bool migrated = cad::app::migrateFormerData();

    auto window = std::make_unique<cad::ui::MainWindow>();
    cad::app::restoreWindowGeometry(*window);
    window->show();
    // From here on a logout or Ctrl+C closes the window as the user would.
    auto termination = std::make_unique<cad::app::TerminationSignals>(*window);

    if (migrated) cad::app::showRenameNotice(window.get());
    // A crashed instance's unsaved work is offered before anything else opens.
    window->offerRecovery();

    const QStringList arguments = cad::app::Application::arguments();
    if (arguments.size() >= 2) {
        if (const cad::Result<void> opened = window->openProject(arguments.at(1)); !opened)
            cad::app::messageBoxPrompt().warning(window.get(), QStringLiteral("Open Project"),
                                                 QString::fromStdString(opened.error()));
    }

    // Reports kept while offline go out now; the first update check follows later.
    window->startUpdateChecks();

    const int exitCode = termination->windowClosed() ? 0 : cad::app::Application::exec();
    termination.reset();
    window.reset();
    return exitCode;
}

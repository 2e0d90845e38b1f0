// korvel: the desktop program. Reads the command line, sets up the process (crash
// reports, logging, OpenGL, look, carried-over data), opens the main window and runs.
#include "app/Application.h"
#include "app/CrashHandler.h"
#include "app/FileLog.h"
#include "app/MessagePrompt.h"
#include "app/Migration.h"
#include "app/TerminationSignals.h"
#include "app/Theme.h"
#include "app/WindowPlacement.h"
#include "rendering/Viewport.h"
#include "ui/MainWindow.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QIcon>
#include <QLoggingCategory>
#include <QStringList>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <optional>

// Its debug lines show with KORVEL_LOG (or QT_LOGGING_RULES="korvel.startup.debug=true").
Q_LOGGING_CATEGORY(startupLog, "korvel.startup", QtInfoMsg)

namespace {

// The name the desktop entry, icon, MIME type and metainfo are installed under.
constexpr const char* kDesktopId = "io.korvel.Studio";

constexpr const char* kEnvironmentHelp =
    "\nEnvironment:\n"
    "  KORVEL_LOG=<file>       write the log, with debug messages, to a file\n"
    "  KORVEL_DATA_DIR=<dir>   keep settings and per-user data in this folder\n"
    "  KORVEL_MCP=0            do not serve agents on the local socket\n"
    "  KORVEL_MCP_PIPE=<path>  the agents' socket (korvel-mcp --connect reaches it)\n";

// What the command line asked for: a project to open (or none), or to stop with an
// exit code after answering on the terminal.
struct CommandLine {
    QString project;
    bool openDialog = false; // --open: ask for the project once the window is up
    QString platform;        // -platform, when given
    std::optional<int> exitCode;
};

// The options QApplication takes for itself; they pass through unchanged.
void addToolkitOptions(QCommandLineParser& parser) {
    for (const char* name :
         {"platform", "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry",
          "qwindowtitle", "qwindowicon", "session", "display", "name", "title", "geometry",
          "visual", "icon", "style", "stylesheet", "qmljsdebugger"}) {
        QCommandLineOption option(QString::fromLatin1(name), QString(), QStringLiteral("value"));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
    for (const char* name : {"reverse", "nograb", "dograb", "widgetcount", "testability"}) {
        QCommandLineOption option(QString::fromLatin1(name));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
}

// The option called `name` as it was written on the command line ("-x", "--frob").
QString asTyped(const QStringList& arguments, const QString& name) {
    for (const QString& argument : arguments.mid(1)) {
        const QString bare =
            argument.startsWith(QStringLiteral("--")) ? argument.mid(2) : argument.mid(1);
        if (argument.startsWith(u'-') && (bare == name || bare.startsWith(name + u'=')))
            return argument.left(argument.size() - bare.size() + name.size());
    }
    return QStringLiteral("--") + name;
}

// Read before any application object exists, so that --help and --version answer
// without a display.
CommandLine readCommandLine(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);

    QCommandLineParser parser;
    // Qt's own options are written with one dash ("-platform offscreen").
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(QStringLiteral("Korvel Studio: parametric CAD for makers."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help and exit."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version and exit."));
    const QCommandLineOption open(QStringLiteral("open"),
                                  QStringLiteral("Show the Open Project dialog at start."));
    parser.addOptions({open, help, version});
    addToolkitOptions(parser);
    parser.addPositionalArgument(QStringLiteral("project"),
                                 QStringLiteral("A project (.kv3, or the former .osv) to open."),
                                 QStringLiteral("[project]"));

    if (!parser.parse(arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        const QString problem =
            unknown.isEmpty()
                ? parser.errorText()
                : QStringLiteral("unknown option %1; korvel --help lists the options.")
                      .arg(asTyped(arguments, unknown.front()));
        std::fprintf(stderr, "korvel: %s\n", qUtf8Printable(problem));
        return {{}, false, {}, 2};
    }
    if (parser.isSet(help)) {
        QString text = parser.helpText();
        text.replace(QStringLiteral("<executable_name>"), QStringLiteral("korvel"));
        std::fputs(qUtf8Printable(text + QString::fromLatin1(kEnvironmentHelp)), stdout);
        return {{}, false, {}, 0};
    }
    if (parser.isSet(version)) {
        std::printf("korvel %s\n", KORVEL_VERSION);
        return {{}, false, {}, 0};
    }
    const QStringList positional = parser.positionalArguments();
    return {positional.isEmpty() ? QString() : positional.front(), parser.isSet(open),
            parser.value(QStringLiteral("platform")), std::nullopt};
}

} // namespace

int main(int argc, char** argv) {
    QElapsedTimer sinceStart;
    sinceStart.start();
    const CommandLine commandLine = readCommandLine(argc, argv);
    if (commandLine.exitCode) return *commandLine.exitCode;

    // Debian's OpenCASCADE draws through GLX only: unless told otherwise, run on X11
    // (XWayland under a Wayland desktop) with Qt's GLX integration.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
    // Without an X display Qt would abort, and leave a crash report behind.
    const QString platform = commandLine.platform.isEmpty()
                                 ? qEnvironmentVariable("QT_QPA_PLATFORM")
                                 : commandLine.platform;
    if (platform.section(u':', 0, 0) == QStringLiteral("xcb") &&
        qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fputs("korvel: there is no display to open the window on (DISPLAY is not set); "
                   "korvel-mcp serves agents without one.\n",
                   stderr);
        return 1;
    }

    // Before anything else that could fail, so that a crash during start-up is reported.
    cad::app::installCrashHandler();

    if (const QString logPath = qEnvironmentVariable("KORVEL_LOG"); !logPath.isEmpty())
        cad::app::startFileLogging(logPath);

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
    // The desktop matches the window to its installed entry and icon by this name.
    cad::app::Application::setDesktopFileName(QString::fromLatin1(kDesktopId));
    cad::app::Application::setWindowIcon(QIcon::fromTheme(QString::fromLatin1(kDesktopId)));

    cad::ui::theme::applyTheme(application);
    const bool migrated = cad::app::migrateFormerData();

    auto window = std::make_unique<cad::ui::MainWindow>();
    QObject::connect(&window->viewport(), &cad::rendering::Viewport::firstFramePainted,
                     window.get(), [&sinceStart] {
                         qCDebug(startupLog, "first frame painted %lld ms after start",
                                 static_cast<long long>(sinceStart.elapsed()));
                     });
    cad::app::restoreWindowGeometry(*window);
    window->show();
    // From here on a logout or Ctrl+C closes the window as the user would.
    auto termination = std::make_unique<cad::app::TerminationSignals>(*window);

    if (migrated) cad::app::showRenameNotice(window.get());
    // A crashed instance's unsaved work is offered before anything else opens, and
    // restored work wins over a project named on the command line.
    const bool restored = window->offerRecovery();

    if (!restored && !commandLine.project.isEmpty()) {
        if (const cad::Result<void> opened = window->openProject(commandLine.project); !opened)
            cad::app::messageBoxPrompt().warning(window.get(), QStringLiteral("Open Project"),
                                                 QString::fromStdString(opened.error()));
    } else if (!restored && commandLine.openDialog) {
        // Asked once the event loop runs, as if the user had chosen Open.
        cad::ui::MainWindow* shown = window.get();
        QTimer::singleShot(0, shown, [shown] { shown->openFromUser(); });
    }

    // Reports kept while offline go out now; the first update check follows later.
    window->startUpdateChecks();

    const int exitCode = termination->windowClosed() ? 0 : cad::app::Application::exec();
    termination.reset();
    window.reset();
    return exitCode;
}

// The main window's actions and where they live: the menu, the top bar with its
// tool strip, units and selection filter, the sidebar and the buttons around the
// view cube; and Box, which runs its command straight away.
#include "ui/MainWindow.h"

#include "core/Version.h"
#include "core/units/Length.h"
#include "rendering/Viewport.h"
#include "ui/DataPaths.h"
#include "ui/forms/BoxForm.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/RecentFiles.h"
#include "ui/widgets/Sidebar.h"
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolStrip.h"
#include "ui/widgets/WindowTexts.h"


#include <QAction>
#include <QActionGroup>
#include <QButtonGroup>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QToolButton>
#include <QUrl>

#include <algorithm>
#include <array>
#include <filesystem>

namespace cad::ui {

namespace {

// The documentation site; the tutorials live at a fixed path below it.
constexpr const char* kDocumentationSite = "https://docs.korvelstudio.com";

void setShortcuts(QAction* action, const QList<QKeySequence>& keys, const QString& shown,
                  const QString& description = {}) {
    action->setShortcuts(keys);
    const QString label = action->text();
    action->setToolTip(actionTooltip(label, shown, description));
}

QString wordmarkText() {
    return QStringLiteral(
               "<span style='color:#f1eee6;font-weight:800;font-size:11pt;letter-spacing:1px'>"
               "KORVEL</span><span style='color:#d08045;font-weight:700;font-size:8pt;"
               "letter-spacing:3px'>%1</span>%2")
        .arg(QStringLiteral("&nbsp;&nbsp;STUDIO"), QString());
}

} // namespace

QAction* MainWindow::makeWindowAction(const QString& iconName, const QString& label,
                                      const QString& objectName, const QString& description) {
    auto* action = new QAction(label, this);
    if (!iconName.isEmpty()) action->setIcon(icon(iconName));
    action->setObjectName(objectName);
    action->setToolTip(actionTooltip(label, {}, description));
    // Added to the window so that its shortcut works wherever the focus is.
    addAction(action);
    return action;
}

void MainWindow::buildActions() {
    Actions& a = actions_;
    a.undo =
        makeWindowAction(QStringLiteral("undo"), QStringLiteral("Undo"), QStringLiteral("undo"));
    a.undo->setShortcuts(QKeySequence::Undo);
    connect(a.undo, &QAction::triggered, this, [this] { stack_.undo(); });

    a.redo =
        makeWindowAction(QStringLiteral("redo"), QStringLiteral("Redo"), QStringLiteral("redo"));
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    if (!redoKeys.contains(QKeySequence(QStringLiteral("Ctrl+Shift+Z"))))
        redoKeys.append(QKeySequence(QStringLiteral("Ctrl+Shift+Z")));
    a.redo->setShortcuts(redoKeys);
    connect(a.redo, &QAction::triggered, this, [this] { stack_.redo(); });

    a.box = makeWindowAction(QStringLiteral("box"), QStringLiteral("Box"), QStringLiteral("box"));
    connect(a.box, &QAction::triggered, this, &MainWindow::addBox);
    // The same box with its sizes and corner to set first, in its form.
    a.boxForm = makeWindowAction(QStringLiteral("box"), QStringLiteral("Box..."),
                                 QStringLiteral("boxForm"),
                                 QStringLiteral("Set the sizes and the corner first"));
    connect(a.boxForm, &QAction::triggered, this, [this] {
        if (editingSketch()) finishSketch();
        endPlanePick();
        forms_->openFeatureForm(QStringLiteral("Box"));
    });

    a.remove = makeWindowAction(QStringLiteral("trash"), QStringLiteral("Delete"),
                          QStringLiteral("delete"));
    setShortcuts(a.remove, QKeySequence::keyBindings(QKeySequence::Delete), QStringLiteral("Del"));
    connect(a.remove, &QAction::triggered, this, &MainWindow::deleteSelection);

    a.fit = makeWindowAction(QStringLiteral("fit"), QStringLiteral("Fit"), QStringLiteral("fit"));
    setShortcuts(a.fit, {QKeySequence(Qt::Key_F), QKeySequence(Qt::Key_Home)}, QStringLiteral("F"),
                 QStringLiteral("Fit to view"));
    connect(a.fit, &QAction::triggered, this, [this] { viewport_->fitAllAnimated(); });

    a.clearSelection = makeWindowAction(QStringLiteral("menu"), QStringLiteral("Clear Selection"),
                                  QStringLiteral("clearSelection"));
    setShortcuts(a.clearSelection, {QKeySequence(Qt::Key_Escape)}, QStringLiteral("Esc"));
    a.clearSelection->setIcon(QIcon());
    // Esc backs out of whatever is going on; with nothing going on it clears the selection.
    connect(a.clearSelection, &QAction::triggered, this, &MainWindow::escape);

    // The selection filter: what a plain click in the view picks on a body. Bodies
    // take the whole body, so they exclude the body's faces, edges and vertices.
    const std::array<std::tuple<QAction**, QString, QString, bool>, 4> filters{{
        {&a.bodies, QStringLiteral("Bodies"), QStringLiteral("body"),
         presenter_->bodiesSelectable()},
        {&a.faces, QStringLiteral("Faces"), QStringLiteral("face"), presenter_->facesSelectable()},
        {&a.edges, QStringLiteral("Edges"), QStringLiteral("edge"), presenter_->edgesSelectable()},
        {&a.vertices, QStringLiteral("Vertices"), QStringLiteral("vertex"),
         presenter_->verticesSelectable()},
    }};
    for (const auto& [slot, label, iconName, on] : filters) {
        QAction* action = makeWindowAction(iconName, label, label.toLower() + "Filter",
                                     QStringLiteral("Select %1").arg(label.toLower()));
        action->setCheckable(true);
        action->setChecked(on);
        *slot = action;
    }
    const auto applyFilter = [this] {
        presenter_->setSelectionFilter(actions_.faces->isChecked(), actions_.edges->isChecked(),
                                       actions_.vertices->isChecked(), actions_.bodies->isChecked());
        viewport_->requestRedraw();
    };
    connect(a.bodies, &QAction::toggled, this, [this, applyFilter](bool on) {
        if (on)
            for (QAction* part : {actions_.faces, actions_.edges, actions_.vertices})
                part->setChecked(false);
        applyFilter();
    });
    for (QAction* part : {a.faces, a.edges, a.vertices})
        connect(part, &QAction::toggled, this, [this, applyFilter](bool on) {
            if (on) actions_.bodies->setChecked(false);
            applyFilter();
        });

    a.origin = makeWindowAction(QStringLiteral("origin"), QStringLiteral("Origin"),
                          QStringLiteral("showOrigin"));
    a.origin->setCheckable(true);
    a.origin->setChecked(QSettings().value(QStringLiteral("view/origin"), true).toBool());
    connect(a.origin, &QAction::toggled, this, [this](bool shown) {
        presenter_->setOriginVisible(shown);
        viewport_->requestRedraw();
        QSettings().setValue(QStringLiteral("view/origin"), shown);
    });

    a.commandLog = makeWindowAction(QStringLiteral("terminal"), QStringLiteral("Command Log"),
                              QStringLiteral("commandLogToggle"));
    setShortcuts(a.commandLog, {QKeySequence(QStringLiteral("Ctrl+L"))}, QStringLiteral("Ctrl+L"),
                 QStringLiteral("Command log"));
    a.commandLog->setCheckable(true);

    a.newDocument = makeWindowAction({}, QStringLiteral("New"), QStringLiteral("newDocument"));
    a.newDocument->setShortcuts(QKeySequence::New);
    connect(a.newDocument, &QAction::triggered, this, &MainWindow::newFromUser);

    a.open = makeWindowAction({}, QStringLiteral("Open…"), QStringLiteral("openProject"));
    a.open->setShortcuts(QKeySequence::Open);
    connect(a.open, &QAction::triggered, this, &MainWindow::openFromUser);

    a.save = makeWindowAction({}, QStringLiteral("Save"), QStringLiteral("saveProject"));
    a.save->setShortcuts(QKeySequence::Save);
    connect(a.save, &QAction::triggered, this, [this] { save(); });

    a.saveAs = makeWindowAction({}, QStringLiteral("Save As…"), QStringLiteral("saveProjectAs"));
    QList<QKeySequence> saveAsKeys = QKeySequence::keyBindings(QKeySequence::SaveAs);
    if (!saveAsKeys.contains(QKeySequence(QStringLiteral("Ctrl+Shift+S"))))
        saveAsKeys.append(QKeySequence(QStringLiteral("Ctrl+Shift+S")));
    a.saveAs->setShortcuts(saveAsKeys);
    connect(a.saveAs, &QAction::triggered, this, [this] { saveAs(); });

    a.importModel = makeWindowAction(QStringLiteral("import"), QStringLiteral("Import 3D Model..."),
                                     QStringLiteral("importModel"));
    connect(a.importModel, &QAction::triggered, this, &MainWindow::importModelFromUser);
    a.exportStep =
        makeWindowAction({}, QStringLiteral("Export STEP..."), QStringLiteral("exportStep"));
    connect(a.exportStep, &QAction::triggered, this,
            [this] { exportModelFromUser(ModelFormat::Step); });
    a.exportStl = makeWindowAction({}, QStringLiteral("Export STL..."), QStringLiteral("exportStl"));
    connect(a.exportStl, &QAction::triggered, this,
            [this] { exportModelFromUser(ModelFormat::Stl); });

    a.homeView = makeWindowAction(QStringLiteral("home"), QStringLiteral("Home View"),
                            QStringLiteral("homeView"));
    connect(a.homeView, &QAction::triggered, this, [this] { viewport_->goHome(true); });

    // Front looks along +Y, top along -Z, right along -X, isometric from +X -Y +Z.
    const std::array<std::tuple<QAction**, QString, V3d_TypeOfOrientation>, 4> views{
        {{&a.front, QStringLiteral("Front"), V3d_Yneg},
         {&a.top, QStringLiteral("Top"), V3d_Zpos},
         {&a.right, QStringLiteral("Right"), V3d_Xpos},
         {&a.isometric, QStringLiteral("Isometric"), V3d_XposYnegZpos}}};
    for (const auto& [slot, label, orientation] : views) {
        QAction* action = makeWindowAction({}, label, label.toLower() + "View");
        const V3d_TypeOfOrientation turn = orientation;
        connect(action, &QAction::triggered, this,
                [this, turn] { viewport_->setStandardView(turn, true); });
        *slot = action;
    }

    a.capture = makeWindowAction(QStringLiteral("document"), QStringLiteral("Capture Window"),
                           QStringLiteral("captureWindow"));
    setShortcuts(a.capture, {QKeySequence(QStringLiteral("Ctrl+F12"))}, QStringLiteral("Ctrl+F12"));
    connect(a.capture, &QAction::triggered, this, [this] { captureWindow(); });

    a.checkUpdates = makeWindowAction({}, QStringLiteral("Check for Updates..."),
                                      QStringLiteral("checkForUpdates"));
    connect(a.checkUpdates, &QAction::triggered, this, [this] { showUpdates(true); });
    a.autoUpdates = makeWindowAction({}, QStringLiteral("Check for Updates Automatically"),
                                     QStringLiteral("autoUpdates"));
    a.autoUpdates->setCheckable(true);
    a.autoUpdates->setChecked(autoUpdates());
    connect(a.autoUpdates, &QAction::toggled, this, [this](bool on) { setAutoUpdates(on); });
    a.releaseNotes = makeWindowAction({}, QStringLiteral("Release Notes"),
                                      QStringLiteral("releaseNotes"));
    connect(a.releaseNotes, &QAction::triggered, this, [] {
        QDesktopServices::openUrl(
            QUrl(QString::fromLatin1(kDocumentationSite) + QStringLiteral("/release-notes/")));
    });
    a.reportIssue = makeWindowAction(QStringLiteral("bug"), QStringLiteral("Report an Issue..."),
                                     QStringLiteral("reportIssueAction"));
    connect(a.reportIssue, &QAction::triggered, this, [this] { showReportPanel(); });

    a.crashReports =
        makeWindowAction(QStringLiteral("folder"), QStringLiteral("Open Crash Reports Folder"),
                   QStringLiteral("crashReports"));
    connect(a.crashReports, &QAction::triggered, this, [] {
        const std::filesystem::path folder = crashDirectory();
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(folder.string())));
    });

    a.design = makeWindowAction(QStringLiteral("box"), QStringLiteral("Design"),
                          QStringLiteral("designWorkspaceAction"));
    setShortcuts(a.design, {QKeySequence(QStringLiteral("Ctrl+1"))}, QStringLiteral("Ctrl+1"));
    a.design->setCheckable(true);
    a.design->setChecked(true);

    a.extrude = makeWindowAction(QStringLiteral("extrude"), QStringLiteral("Extrude"),
                                 QStringLiteral("extrudeAction"));
    setShortcuts(a.extrude, {QKeySequence(QStringLiteral("E"))}, QStringLiteral("E"));
    connect(a.extrude, &QAction::triggered, this, &MainWindow::startExtrude);

    a.parameters = makeWindowAction(QStringLiteral("parameters"), QStringLiteral("Parameters"),
                                    QStringLiteral("parametersAction"));
    connect(a.parameters, &QAction::triggered, this, &MainWindow::showParameters);

    a.search = makeWindowAction(QStringLiteral("search"), QStringLiteral("Search Commands"),
                                QStringLiteral("searchCommands"));
    setShortcuts(a.search, {QKeySequence(QStringLiteral("Ctrl+K"))}, QStringLiteral("Ctrl+K"),
                 QStringLiteral("Search commands"));
    connect(a.search, &QAction::triggered, this, &MainWindow::showPalette);

    a.browser = makeWindowAction(QStringLiteral("layers"), QStringLiteral("Browser"),
                                 QStringLiteral("browserToggle"));
    setShortcuts(a.browser, {QKeySequence(QStringLiteral("Ctrl+B"))}, QStringLiteral("Ctrl+B"));
    a.browser->setCheckable(true);
    a.browser->setChecked(true);

    buildSketchActions();
    buildFeatureActions();
    buildSheetMetalActions();
    buildLooksActions();
}

QMenu* MainWindow::buildMenu() {
    Actions& a = actions_;
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mainMenu"));

    QMenu* file = menu->addMenu(QStringLiteral("File"));
    file->addAction(a.newDocument);
    file->addAction(a.open);
    recentMenu_ = file->addMenu(QStringLiteral("Open Recent"));
    recentMenu_->setObjectName(QStringLiteral("recentMenu"));
    connect(recentMenu_, &QMenu::aboutToShow, this, [this] {
        fillRecentMenu(
            recentMenu_, recentFiles(), [this](const QString& path) { openRecent(path); },
            [this] { writeRecentFiles({}); });
    });
    file->addSeparator();
    file->addAction(a.save);
    file->addAction(a.saveAs);
    file->addSeparator();
    file->addAction(a.importModel);
    file->addAction(a.exportStep);
    file->addAction(a.exportStl);
    file->addSeparator();
    QAction* backups = file->addAction(QStringLiteral("Show Backups Folder"));
    backups->setObjectName(QStringLiteral("showBackups"));
    connect(backups, &QAction::triggered, this, &MainWindow::showBackupsFolder);

    QMenu* edit = menu->addMenu(QStringLiteral("Edit"));
    edit->addAction(a.undo);
    edit->addAction(a.redo);
    edit->addSeparator();
    edit->addAction(a.remove);
    edit->addAction(a.clearSelection);

    QMenu* create = menu->addMenu(QStringLiteral("Create"));
    create->addAction(a.box);
    create->addAction(a.boxForm);

    QMenu* view = menu->addMenu(QStringLiteral("View"));
    view->addAction(a.homeView);
    view->addAction(a.fit);
    view->addSeparator();
    for (QAction* action : {a.front, a.top, a.right, a.isometric}) view->addAction(action);
    view->addSeparator();
    view->addAction(a.origin);
    view->addAction(a.browser);
    view->addAction(a.commandLog);

    QMenu* help = menu->addMenu(QStringLiteral("Help"));
    help->addAction(a.checkUpdates);
    help->addAction(a.autoUpdates);
    help->addAction(a.releaseNotes);
    help->addAction(a.reportIssue);
    help->addSeparator();
    help->addAction(a.capture);
    help->addAction(a.crashReports);
    return menu;
}

QWidget* MainWindow::buildTopBar() {
    auto* bar = new QFrame(this);
    bar->setObjectName(QStringLiteral("topBar"));
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(6);

    auto* menuButton = new QToolButton(bar);
    menuButton->setObjectName(QStringLiteral("menuButton"));
    menuButton->setIcon(icon(QStringLiteral("menu")));
    menuButton->setToolTip(QStringLiteral("Menu"));
    menuButton->setPopupMode(QToolButton::InstantPopup);
    menuButton->setMenu(buildMenu());
    menuButton->setAutoRaise(true);
    row->addWidget(menuButton);

    auto* wordmark = new QLabel(wordmarkText(), bar);
    wordmark->setObjectName(QStringLiteral("wordmark"));
    wordmark->setTextFormat(Qt::RichText);
    row->addWidget(wordmark);

    auto* divider = new QFrame(bar);
    divider->setObjectName(QStringLiteral("topBarDivider"));
    divider->setFrameShape(QFrame::VLine);
    row->addWidget(divider);

    saveButton_ = new QToolButton(bar);
    saveButton_->setObjectName(QStringLiteral("saveButton"));
    saveButton_->setIcon(icon(QStringLiteral("save")));
    saveButton_->setAutoRaise(true);
    saveButton_->setToolTip(
        actionTooltip(QStringLiteral("Save"),
                      QKeySequence(QKeySequence::Save).toString(QKeySequence::NativeText)));
    connect(saveButton_, &QToolButton::clicked, this, [this] { save(); });
    row->addWidget(saveButton_);

    documentLabel_ = new QLabel(bar);
    documentLabel_->setObjectName(QStringLiteral("docTitle"));
    documentLabel_->setMaximumWidth(260);
    row->addWidget(documentLabel_);

    auto* tabs = new QWidget(bar);
    tabs->setObjectName(QStringLiteral("designTabs"));
    auto* tabRow = new QHBoxLayout(tabs);
    tabRow->setContentsMargins(0, 0, 0, 0);
    auto* solidTab = new QToolButton(tabs);
    solidTab->setObjectName(QStringLiteral("solidTab"));
    solidTab->setText(QStringLiteral("SOLID"));
    solidTab->setCheckable(true);
    solidTab->setChecked(true);
    auto* tabGroup = new QButtonGroup(tabs);
    tabGroup->setExclusive(true);
    tabGroup->addButton(solidTab);
    tabRow->addWidget(solidTab);
    sheetTab_ = new QToolButton(tabs);
    sheetTab_->setObjectName(QStringLiteral("sheetTab"));
    sheetTab_->setText(QStringLiteral("SHEET METAL"));
    sheetTab_->setCheckable(true);
    tabGroup->addButton(sheetTab_);
    tabRow->addWidget(sheetTab_);
    row->addWidget(tabs);
    // The tabs choose the strip; while a sketch is edited its own strip stays.
    connect(sheetTab_, &QToolButton::toggled, this, [this] {
        if (editingSketch()) return;
        modelingTools_->setVisible(designStrip() == modelingTools_);
        sheetTools_->setVisible(designStrip() == sheetTools_);
    });

    // Only what exists: each group holds and pins the tools it has so far.
    modelingTools_ = new ToolStrip(QStringLiteral("modelingTools"), bar);
    modelingTools_->addGroup(new ToolGroup(
        QStringLiteral("model.create"), QStringLiteral("CREATE"),
        {actions_.sketch, actions_.extrude, actions_.revolve, actions_.sweep, actions_.loft,
         actions_.hole, actions_.thread, actions_.box, actions_.referencePlane},
        {QStringLiteral("Sketch"), QStringLiteral("Extrude"), QStringLiteral("Revolve"),
         QStringLiteral("Hole")}));
    modelingTools_->addGroup(new ToolGroup(
        QStringLiteral("model.modify"), QStringLiteral("MODIFY"),
        {actions_.fillet, actions_.chamfer, actions_.shell, actions_.combine, actions_.split,
         actions_.mirror, actions_.patternRect, actions_.patternCirc, actions_.patternPath,
         actions_.appearance, actions_.material, actions_.deleteFaces, actions_.remove,
         actions_.parameters},
        {QStringLiteral("Fillet"), QStringLiteral("Chamfer"), QStringLiteral("Shell"),
         QStringLiteral("Rectangular Pattern")}));
    modelingTools_->addGroup(new ToolGroup(
        QStringLiteral("model.make"), QStringLiteral("MAKE"), {actions_.exportFlat, actions_.nestParts},
        {QStringLiteral("Export Flat"), QStringLiteral("Nest Parts")}));
    modelingTools_->addGroup(new ToolGroup(QStringLiteral("model.inspect"),
                                           QStringLiteral("INSPECT"), {actions_.section},
                                           {QStringLiteral("Section Analysis")}));
    row->addWidget(modelingTools_, 1);
    sheetTools_ = buildSheetStrip(bar);
    row->addWidget(sheetTools_, 1);
    sketchTools_ = buildSketchStrip(bar);
    row->addWidget(sketchTools_, 1);

    finishSketchButton_ = new QToolButton(bar);
    finishSketchButton_->setObjectName(QStringLiteral("finishSketch"));
    finishSketchButton_->setDefaultAction(actions_.finishSketch);
    finishSketchButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    finishSketchButton_->hide();
    row->addWidget(finishSketchButton_);

    unitButton_ = new QToolButton(bar);
    unitButton_->setObjectName(QStringLiteral("unitButton"));
    unitButton_->setToolTip(QStringLiteral("Units"));
    unitButton_->setPopupMode(QToolButton::InstantPopup);
    auto* unitMenu = new QMenu(unitButton_);
    for (units::Length unit : {units::Length::Millimeters, units::Length::Centimeters,
                               units::Length::Meters, units::Length::Inches, units::Length::Feet}) {
        const std::string_view name = units::unitName(unit);
        const std::string abbreviation(units::unitAbbreviation(unit));
        QAction* choice = unitMenu->addAction(
            QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
        connect(choice, &QAction::triggered, this, [this, abbreviation] {
            runCommand(CommandRecord("set_units").set("length", abbreviation.c_str()));
        });
    }
    unitButton_->setMenu(unitMenu);
    row->addWidget(unitButton_);

    auto* selectLabel = new QLabel(QStringLiteral("SELECT"), bar);
    selectLabel->setObjectName(QStringLiteral("groupLabel"));
    row->addWidget(selectLabel);
    auto* segmented = new QFrame(bar);
    segmented->setObjectName(QStringLiteral("segmented"));
    segmented->setProperty("segmented", true);
    auto* segmentRow = new QHBoxLayout(segmented);
    segmentRow->setContentsMargins(2, 2, 2, 2);
    segmentRow->setSpacing(2);
    for (QAction* filter : {actions_.bodies, actions_.faces, actions_.edges, actions_.vertices}) {
        auto* button = new QToolButton(segmented);
        button->setDefaultAction(filter);
        button->setAutoRaise(true);
        segmentRow->addWidget(button);
    }
    row->addWidget(segmented);
    return bar;
}

void MainWindow::buildSidebar() {
    sidebar_ = new Sidebar(this);
    sidebar_->addWorkspaceButton(actions_.design, QStringLiteral("designWorkspace"));
    const QString site = QString::fromLatin1(kDocumentationSite);
    sidebar_->addLinkButton(QStringLiteral("documentation"), QStringLiteral("book"),
                            QStringLiteral("Documentation"),
                            [site] { QDesktopServices::openUrl(QUrl(site + "/")); });
    sidebar_->addLinkButton(
        QStringLiteral("tutorials"), QStringLiteral("tutorial"), QStringLiteral("Tutorials"),
        [site] { QDesktopServices::openUrl(QUrl(site + "/getting-started/install/")); });
    sidebar_->addLinkButton(QStringLiteral("reportIssue"), QStringLiteral("bug"),
                            QStringLiteral("Report an Issue"), [this] { showReportPanel(); });
    // Shown once a newer release is known.
    updateButton_ = sidebar_->addLinkButton(QStringLiteral("updateButton"), QStringLiteral("import"),
                                            QStringLiteral("Update Available"),
                                            [this] { showUpdates(false); });
    updateButton_->setProperty("highlight", true);
    updateButton_->setVisible(false);
    sidebar_->setVersionButton(QStringLiteral("v") + QString::fromLatin1(kApplicationVersion),
                               [this] { showUpdates(true); });
}

void MainWindow::buildViewCubeControls() {
    struct Control {
        const char* label;
        const char* iconName;
        const char* name;
        int step; // -1: home
    };
    static constexpr std::array<Control, 7> controls{{
        {"Home View", "home", "cubeHome", -1},
        {"Roll Left", "roll-left", "cubeRollLeft", 4},
        {"Roll Right", "roll-right", "cubeRollRight", 5},
        {"Turn Up", "caret-up", "cubeUp", 2},
        {"Turn Down", "caret-down", "cubeDown", 3},
        {"Turn Left", "caret-left", "cubeLeft", 0},
        {"Turn Right", "caret-right", "cubeRight", 1},
    }};
    for (const Control& control : controls) {
        auto* button = new QToolButton(viewport_);
        button->setObjectName(QStringLiteral("cubeControl"));
        button->setProperty("cubeRole", QString::fromLatin1(control.name));
        button->setIcon(icon(QString::fromLatin1(control.iconName)));
        button->setToolTip(actionTooltip(QString::fromLatin1(control.label)));
        button->setAutoRaise(true);
        button->setFixedSize(22, 22);
        button->setIconSize(QSize(14, 14));
        button->setFocusPolicy(Qt::NoFocus);
        const int step = control.step;
        connect(button, &QToolButton::clicked, this, [this, step] {
            if (step < 0)
                viewport_->goHome(true);
            else
                viewport_->nudgeView(step);
        });
        cubeControls_.append(button);
    }
}

void MainWindow::layoutCubeControls() {
    if (cubeControls_.size() != 7) return;
    // The cube fills the top-right square; its controls sit just outside it: home,
    // up and down in a column on its left, the four turns and rolls in a row below.
    const int corner = static_cast<int>(viewport_->cubeCornerSize() /
                                        std::max(1.0, viewport_->devicePixelRatioF()));
    const int width = viewport_->width();
    const int size = 22;
    const int gap = 4;
    const int columnX = width - corner - size - gap;
    QToolButton* home = cubeControls_[0];
    QToolButton* up = cubeControls_[3];
    QToolButton* down = cubeControls_[4];
    home->move(columnX, gap);
    up->move(columnX, gap + size + 2);
    down->move(columnX, gap + 2 * (size + 2));
    const std::array<QToolButton*, 4> row{cubeControls_[5], cubeControls_[1], cubeControls_[2],
                                          cubeControls_[6]};
    const int rowWidth = 4 * size + 3 * 2;
    int x = std::min(width - corner + (corner - rowWidth) / 2, width - rowWidth - gap);
    for (QToolButton* button : row) {
        button->move(x, corner + 2);
        x += size + 2;
    }
    for (QToolButton* button : cubeControls_) button->raise();
}

void MainWindow::addBox() {
    CommandRecord record("create_box");
    record.set("width", 100.0).set("depth", 50.0).set("height", 25.0);
    if (const std::optional<double> x = boxPlacementX(document_))
        record.set("x", *x).set("y", 0.0).set("z", 0.0);
    // The command event fits the view when this is the first body.
    runCommand(record);
}

} // namespace cad::ui

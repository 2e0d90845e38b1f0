// The main window's construction and layout, and the state it shows after every
// command: title, document label, save button, undo and redo, units.
#include "ui/MainWindow.h"

#include "core/Version.h"
#include "core/units/Length.h"
#include "core/units/NameLookup.h"
#include "mcp/AllCommands.h"
#include "rendering/Viewport.h"
#include "ui/MainWindowMcpHost.h"
#include "ui/AutosaveStore.h"
#include "ui/McpBridge.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/CommandPalette.h"
#include "ui/panels/HistoryPanel.h"
#include "ui/panels/LooksPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/sketch/SketchSession.h"
#include "ui/sketch/ViewportSketchView.h"
#include "ui/updates/ReportPanel.h"
#include "ui/updates/ReportSender.h"
#include "ui/widgets/CommandLog.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/OverlayPanel.h"
#include "ui/widgets/Sidebar.h"
#include "ui/widgets/WindowTexts.h"

#include <QAction>
#include <QDir>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QSettings>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace cad::ui {

namespace {

// The window whose document names in expressions resolve against when no command
// is running (fields of forms, hints); the newest window built.
const MainWindow* resolvingWindow = nullptr;

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), stack_(document_, registry_), prompt_(dialogPrompt()) {
    setObjectName(QStringLiteral("mainWindow"));

    // 1. The model, its commands and the view that shows it. Names typed outside
    // commands resolve against this window's document: the member stays the same
    // object when New or Open replaces its contents, so it follows them.
    mcp::registerAllCommands(registry_);
    units::installDefaultResolver(
        [this](std::string_view name) { return document_.parameterLookup()(name); },
        [this] { return document_.lengthUnit(); });
    resolvingWindow = this;
    viewport_ = new rendering::Viewport(this);
    viewport_->setObjectName(QStringLiteral("viewport"));
    presenter_ = std::make_unique<DocumentPresenter>(*viewport_);
    presenter_->setDocument(&document_);
    picker_ = std::make_unique<ReferencePicker>(*viewport_, *presenter_);
    picker_->setDocument(&document_);
    sketchSession_ =
        std::make_unique<SketchSession>(viewport_, std::make_unique<ViewportSketchView>(*viewport_));

    // 2. Actions and the controls around the cube; the panels the actions show.
    buildActions();
    buildViewCubeControls();
    buildPanels();
    connectSketchSession();

    // 3. The first fit and the origin wait until the event loop runs (and the view exists).
    QTimer::singleShot(0, this, [this] { viewport_->fitAll(); });
    QTimer::singleShot(0, this, [this] {
        presenter_->setOriginVisible(actions_.origin->isChecked());
        viewport_->requestRedraw();
    });

    // 4. Top bar above; sidebar and view side by side below.
    auto* central = new QWidget(this);
    central->setObjectName(QStringLiteral("centralHost"));
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(buildTopBar());
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    buildSidebar();
    row->addWidget(sidebar_);
    row->addWidget(history_);
    row->addWidget(viewport_, 1);
    column->addLayout(row, 1);
    setCentralWidget(central);
    connectFlatPattern();

    // 5. Everything that floats over the view.
    buildOverlays();

    // 6. Autosave: this instance's own recovery folder and the timer.
    startAutosave();

    // 6b. The update checker and the report sender.
    startUpdates();

    // 7. Every command event, whoever ran it (the window, an agent, undo).
    stack_.addListener([this](const CommandEvent& event) { onCommandEvent(event); });
    connect(viewport_, &rendering::Viewport::toastRequested, this, &MainWindow::showToast);

    // 8.
    updateWindowTitle();
    updateUndoRedo();
    refreshUnits();

    // 9. The agent interface, unless it was switched off.
    if (qEnvironmentVariable("KORVEL_MCP") != QStringLiteral("0")) startAgents();

    // 10. Drops and keys on the view, and overlay layout on its resizes.
    setAcceptDrops(true);
    viewport_->setAcceptDrops(true);
    viewport_->installEventFilter(this);
    resize(1280, 800);
}

MainWindow::~MainWindow() {
    // The agents stop before anything they could reach goes away.
    bridge_.reset();
    host_.reset();
    endAutosave();
    // The panels observe the document, which goes before the window's child widgets.
    forms_.reset();
    sketchSession_.reset();
    // The report panel sends through the sender, which goes before the child widgets.
    delete reportPanel_;
    reportPanel_ = nullptr;
    delete browserPanel_;
    delete history_;
    delete looks_;
    looks_ = nullptr;
    if (resolvingWindow == this) {
        units::installDefaultResolver({}, {});
        resolvingWindow = nullptr;
    }
}

void MainWindow::startAgents() {
    host_ = std::make_unique<MainWindowMcpHost>(*this);
    // The same version the headless server gives agents.
    bridge_ = std::make_unique<McpBridge>(*host_, QString::fromLatin1(kApplicationVersion));
}

CommandResult MainWindow::runCommand(const CommandRecord& record) {
    // The command event shows a failure as a toast and a red log line.
    return stack_.execute(record);
}

bool MainWindow::isModified() const { return stack_.position() != savedPosition_; }

void MainWindow::onCommandEvent(const CommandEvent& event) {
    commandLog_->addEvent(event);
    updateWindowTitle();
    updateAutosaveTimer();
    if (event.kind == CommandEvent::Failed) showToast(QString::fromStdString(event.message));
    if (forms_) forms_->refresh();
    if (event.record.name == "set_units") refreshUnits();
    // The session shows what any command did to its sketch, or ends with the sketch.
    if (editingSketch()) {
        if (document_.find(sketchSession_->sketchId()))
            sketchSession_->refresh();
        else
            sketchSession_->end();
    }
    const bool hasBodies = !presenter_->shownBodiesBox().IsVoid();
    if (hasBodies && !viewHadBodies_) viewport_->fitAll();
    viewHadBodies_ = hasBodies;
    updateUndoRedo();
}

void MainWindow::updateWindowTitle() {
    const bool modified = isModified();
    setWindowTitle(windowTitleText(documentPath_, modified));

    const QString name = documentDisplayName(documentPath_);
    if (browser_) browser_->setDocumentName(name);
    const int maximum = documentLabel_->maximumWidth();
    const int room = maximum >= QWIDGETSIZE_MAX ? 248 : maximum - 12;
    documentLabel_->setText(documentLabel_->fontMetrics().elidedText(name, Qt::ElideRight, room));
    documentLabel_->setToolTip(documentPath_.isEmpty() ? QStringLiteral("Not saved yet")
                                                       : QDir::toNativeSeparators(documentPath_));

    if (saveButton_->property("modified").toBool() != modified ||
        !saveButton_->property("modified").isValid()) {
        saveButton_->setProperty("modified", modified);
        saveButton_->setIcon(
            icon(modified ? QStringLiteral("save-modified") : QStringLiteral("save")));
        saveButton_->style()->unpolish(saveButton_);
        saveButton_->style()->polish(saveButton_);
    }
}

void MainWindow::updateUndoRedo() {
    actions_.undo->setEnabled(stack_.canUndo());
    const CommandRecord* undo = stack_.undoRecord();
    actions_.undo->setToolTip(actionTooltip(QStringLiteral("Undo"), QStringLiteral("Ctrl+Z"),
                                            undo ? QString::fromStdString(undo->name)
                                                 : QStringLiteral("Nothing to undo")));

    // What only works inside a sketch.
    const bool sketching = editingSketch();
    for (const auto& [action, tool] : sketchToolActions_) action->setEnabled(sketching);
    for (const auto& [action, kind] : constraintActions_) action->setEnabled(sketching);
    for (QAction* action : {actions_.dimension, actions_.construction, actions_.finishSketch})
        action->setEnabled(sketching);
    updateSketchActions();
    updateFlatPatternActions();

    actions_.redo->setEnabled(stack_.canRedo());
    const CommandRecord* redo = stack_.redoRecord();
    actions_.redo->setToolTip(actionTooltip(QStringLiteral("Redo"), QStringLiteral("Ctrl+Y"),
                                            redo ? QString::fromStdString(redo->name)
                                                 : QStringLiteral("Nothing to redo")));
}

void MainWindow::refreshUnits() {
    const std::string_view unit = units::unitAbbreviation(document_.lengthUnit());
    unitButton_->setText(QString::fromUtf8(unit.data(), static_cast<qsizetype>(unit.size())));
}

void MainWindow::beforeDocumentReplaced() {
    // Nothing may still stand on the old document: a form's trial edit is taken back
    // while its command can still find what it changed.
    endPlanePick();
    closeLooks();
    if (forms_) forms_->cancel();
    if (editingSketch()) sketchSession_->end();
    leaveFlatPatternMode();
}

void MainWindow::afterDocumentReplaced() {
    presenter_->documentReset();
    presenter_->setOriginVisible(actions_.origin->isChecked());
    viewport_->fitAll();
    viewport_->requestRedraw();
    viewHadBodies_ = !presenter_->shownBodiesBox().IsVoid();
    refreshPanels();
    updateWindowTitle();
    updateUndoRedo();
    refreshUnits();
    updateAutosaveTimer();
}

} // namespace cad::ui

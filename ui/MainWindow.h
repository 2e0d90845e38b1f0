// The application's one top-level window: it owns the document and the command
// machinery, the 3D view with its presenter, the actions, menus and top bar, the
// overlays over the view, the file operations and the agents' way in.
#pragma once

// moc needs none of the model's headers (and cannot parse C++20 concepts).
#ifndef Q_MOC_RUN
#include "core/Command.h"
#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/Result.h"
#include "geometry/sheet/flat/FlatPattern.h"
#include "sketch/drawing/Drawing.h"
#endif
#include "ui/WindowPrompt.h"

#include <QMainWindow>
#include <QPointF>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QAction;
class QFrame;
class QLabel;
class QMenu;
class QTimer;
class QPushButton;
class QToolButton;

namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

class CommandLog;
class CommandPalette;
struct PanelHooks;
class DocumentPresenter;
class FootprintPanel;
class FootprintTool;
class FormController;
class HistoryPanel;
class LooksPanel;
enum class LooksMode;
// The 3D model formats the window exports.
enum class ModelFormat { Step, Stl };
class AutosaveStore;
class ObjectBrowser;
struct RecoveryEntry;
class SketchSession;
class TextPanel;
class McpBridge;
class MainWindowMcpHost;
class OverlayPanel;
class ReportPanel;
class ReportSender;
class ReferencePicker;
class Sidebar;
class ToolStrip;
class UpdateChecker;
class UpdatePanel;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // ---- The model and its views.
    Document& document() { return document_; }
    CommandStack& commandStack() { return stack_; }
    CommandRegistry& registry() { return registry_; }
    rendering::Viewport& viewport() { return *viewport_; }
    DocumentPresenter& presenter() { return *presenter_; }
    ReferencePicker& picker() { return *picker_; }
    SketchSession& sketchSession() { return *sketchSession_; }
    FormController& forms() { return *forms_; }

    // Runs one change through the command stack; failures show as a toast.
    CommandResult runCommand(const CommandRecord& record);

    // ---- Files. Modified exactly while the history stands elsewhere than at the last save.
    QString documentPath() const { return documentPath_; }
    bool isModified() const;
    // Reads the project and replaces the document; "path: reason" on failure, the
    // document untouched.
    Result<void> openProject(const QString& path);
    // Writes the project there, records the saved position and makes it the current file.
    Result<void> saveProject(const QString& path);
    // A fresh document without asking.
    void newDocument();
    // Asks to save unsaved changes: false when the user cancelled (or the save failed).
    bool maybeSave();
    // The recent-projects list, newest first.
    QStringList recentFiles() const;
    void addRecentFile(const QString& path);

    // ---- Autosave and recovery. The start-up sequence offers a crashed instance's
    // autosave once, after the window shows; true when one was restored.
    bool offerRecovery();
    bool restoreAutosave(const RecoveryEntry& entry);
    // The timer's slot: writes the recovery copy of unsaved work now.
    void autosaveNow();
    // Stops after a command, save, open or New; starts at the first unsaved change.
    void updateAutosaveTimer();
    AutosaveStore* autosaveStore() const { return autosave_.get(); }
    void showBackupsFolder();

    // ---- Update checks and issue reports. The start-up sequence sends the reports
    // kept while offline and, when automatic checks are on, schedules the first check.
    void startUpdateChecks();
    UpdateChecker* updateChecker() const { return updates_; }
    ReportSender* reportSender() const { return reports_.get(); }
    bool autoUpdates() const;
    void setAutoUpdates(bool on);
    // The "Software Update" panel; checkNow starts a check unless one is under way
    // or a newer release is already known.
    void showUpdates(bool checkNow);
    void showReportPanel();
    // The report panel, made on first use; it keeps its fields until sent or cancelled.
    ReportPanel& reportPanel();

    // ---- Feedback.
    void showToast(const QString& text);
    CommandLog& commandLog() { return *commandLog_; }
    QLabel& toastLabel() { return *toast_; }

    void setPrompt(std::unique_ptr<WindowPrompt> prompt);
    WindowPrompt& prompt() { return *prompt_; }

    // Null when the agent interface is off (KORVEL_MCP is "0") or the window closed.
    McpBridge* mcpBridge() const { return bridge_.get(); }

    // ---- User actions, also reachable for tests and the agents' host.
    void newFromUser();
    void openFromUser();
    bool save();
    bool saveAs();
    void openRecent(const QString& path);
    // Import 3D Model: a chosen STEP or STL file becomes bodies in one undo step; a
    // failure is the command's toast and adds nothing. True when bodies came in.
    void importModelFromUser();
    bool importModel(const QString& path);
    // Export STEP / Export STL of the listed bodies (every visible body when none),
    // asking where; a refusal or a failed write is a warning and writes nothing.
    void exportModelFromUser(ModelFormat format, const std::vector<std::string>& bodies = {});
    static bool isModelFile(const QString& path);
    // A sketch as a DXF or SVG drawing ("dxf" or "svg"), in the document's unit.
    void exportSketchFromUser(const QString& id, const QString& format);
    // Import Drawing: a chosen (or dropped) SVG, DXF, Illustrator or PDF file read and
    // its form opened, into the edited sketch or a new one on a plane the form asks
    // for; `dropped` is where on the view it fell. False when the file can't be read
    // (the warning says why).
    void importDrawingFromUser();
    bool importDrawingFile(const QString& path, std::optional<QPointF> dropped = {});
    static bool isDrawingFile(const QString& path);
    void addBox();
    // Deletes what is selected in the view: whole objects (a body picked with the
    // body filter or by a double-click), or a toast for faces, edges and vertices,
    // which can't go on their own.
    void deleteSelection();
    // Deletes the objects, asking first when objects outside the list use them.
    void deleteObjects(const std::vector<std::string>& ids);
    void clearSelection();

    // ---- Sketching. The Sketch action: on the selected flat face, else a plane pick.
    void startSketch();
    // Opens a sketch for editing: the sketch strip, banner and finish button show,
    // the view faces it and the session becomes the view's tool.
    void editSketch(const std::string& id);
    void finishSketch();
    bool editingSketch() const;
    // The sketch being edited; empty when none.
    std::string editedSketch() const;
    bool pickingPlane() const { return pickingPlane_; }
    // The sketch strip's commands on the edited sketch's selection: group or ungroup
    // it, turn the selected text into outlines.
    void groupSketchSelection(bool group);
    void convertToOutlines();
    // Esc: the current mode backs out (a pick or tool step, a form, the sketch, the
    // selection, in that order).
    void escape();

    // ---- Forms and panels.
    // The Extrude action: its form on the selected profile, or a pick for one.
    void startExtrude();
    // A feature's form ("Fillet", "Chamfer", "Shell", "Hole", "Thread") on what is
    // selected; from a sketch being edited, the sketch is finished and selected first.
    void startFeature(const QString& featureName);
    void showParameters();
    void showPalette();
    // The looks panel in appearance or material mode on these targets (faces, bodies,
    // components); while it shows, clicks on faces add them. Closing ends the clicks.
    void openLooks(LooksMode mode, const std::vector<std::string>& targets);
    void closeLooks();
    LooksPanel* looksPanel() const { return looks_; }
    // The footprint panel over the view, on the sketch being edited (Insert Footprint);
    // null until first opened.
    void openFootprintPanel();
    void closeFootprintPanel();
    FootprintPanel* footprintPanel() const { return footprintPanel_; }
    // Save as Footprint: asks a name and saves the sketch (the edited one when none is
    // named, as from the sketch strip) to the library; the answer shows as a toast.
    // True when it was saved.
    bool saveSketchAsFootprint(const std::string& sketchId = {});
    // Asks the footprint's name; none when the user cancelled (tests answer it).
    using FootprintNameAsker = std::function<std::optional<QString>(QWidget* parent)>;
    void setFootprintNameAsker(FootprintNameAsker asker) { askFootprintName_ = std::move(asker); }
    // Opens an object for editing the way its kind is edited: a sketch in the sketch
    // session, a feature in its form.
    void editObject(const std::string& id);
    // The whole window as a PNG in the data folder's "screenshots"; the file or empty.
    QString captureWindow();

    // ---- Flat patterns (MainWindowFlatPattern.cpp). Edit Flat Pattern: the selected
    // sheet metal part (or the face of it to keep fixed) unfolds in its history, or
    // goes back to the Unfold that left it flat, and is worked on flat (banner, finish
    // button) until Finish Flat Pattern folds it back up. Undoing the Unfold ends it.
    void editFlatPattern();
    void editFlatPatternOf(const std::string& body, const std::string& face = {});
    void finishFlatPattern();
    bool editingFlatPattern() const { return !flatBody_.empty(); }
    // The part being worked on flat; empty when none.
    std::string flatPatternBody() const { return flatBody_; }
    // Export Flat Pattern: its form on the selected part (the flat one when none is).
    void openFlatPatternForm();
    // A part's flat pattern as a DXF or SVG drawing ("dxf" or "svg"), asking where.
    void exportFlatFromUser(const QString& body, const QString& format);
    // Export Flat: the selected body laid flat (seen square to the flat face selected,
    // else its largest), as a DXF or SVG drawing, asking where.
    void exportFlatFromSelection();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Construction, in this order (MainWindow.cpp and its companions).
    void buildActions();
    // A window action with its icon, label, object name and rich tooltip; its
    // shortcut works wherever the focus is.
    QAction* makeWindowAction(const QString& iconName, const QString& label,
                              const QString& objectName, const QString& description = {});
    void buildSketchActions();
    // Fillet, Chamfer, Shell, Hole and Thread, which open their forms.
    void buildFeatureActions();
    // Appearance and Physical Material, which open the looks panel.
    void buildLooksActions();
    void buildLooksPanel();
    // Insert Footprint and Save as Footprint (MainWindowFootprints.cpp).
    void buildFootprintActions();
    void placeFootprintPanel();
    // While on, the view's next click places the panel's footprint there.
    void setFootprintClicking(bool on);
    bool footprintClicking() const;
    void placeLooksPanel();
    void stopLooksPicking();
    ToolStrip* buildSketchStrip(QWidget* parent);
    // The SHEET METAL tab's strip, its Nest Parts action, and the Nest Parts form.
    ToolStrip* buildSheetStrip(QWidget* parent);
    void buildSheetMetalActions();
    // Export Flat Pattern, Edit Flat Pattern and Finish Flat Pattern.
    void buildFlatPatternActions();
    // Once the top bar and the browser exist: the finish button beside the sketch's,
    // and the browser's flat pattern rows, menus and double-clicks.
    void connectFlatPattern();
    void openFlatPatternFormOn(const std::vector<std::string>& selection);
    void enterFlatPatternMode(const std::string& body);
    // Ends the mode as it stands, folding nothing.
    void leaveFlatPatternMode();
    // Finish Flat Pattern works only in its mode, which ends once the part isn't flat.
    void updateFlatPatternActions();
    void openNestForm();
    // Writes a flat pattern where the user says, or says why it can't.
    void writeFlatFromUser(const QString& name, const Result<flat::FlatPattern>& pattern,
                           const QString& format);
    // A body laid flat for cutting, in millimetres: its flat pattern.
    Result<drawing::Drawing> flatDrawingOf(const std::string& body) const;
    // The strip of the design tab chosen (SOLID or SHEET METAL), shown when no sketch
    // is edited.
    ToolStrip* designStrip() const;
    void connectSketchSession();
    void beginPlanePick();
    void endPlanePick();
    void createSketchOn(const std::string& reference);
    void leaveSketchMode();
    void toggleConstruction(bool checked);
    // Enables what works only while a sketch is edited.
    void updateSketchActions();
    // The text panel: new text at a sketch point, or the edit of a text entity.
    void openTextPanel(QPointF at);
    void editText(const std::string& entity);
    void closeTextPanel();
    void placeTextPanel();
    void deleteSketchSelection();
    void showBanner(const QString& text);
    // The browser, history, palette and forms, and the hooks they change the model through.
    void buildPanels();
    PanelHooks panelHooks();
    void refreshPanels();
    // The references selected in the view (whole objects, then faces), for forms.
    std::vector<std::string> selectedReferences() const;
    QMenu* buildMenu();
    void buildViewCubeControls();
    QWidget* buildTopBar();
    void buildSidebar();
    void buildOverlays();
    void startAgents();

    // State shown after every change.
    void onCommandEvent(const CommandEvent& event);
    void updateWindowTitle();
    void updateUndoRedo();
    void refreshUnits();
    void startAutosave();
    void endAutosave();
    void startUpdates();
    void refreshUpdateButton();
    void backupBeforeSave(const QString& path);
    void beforeDocumentReplaced();
    void afterDocumentReplaced();
    void layoutOverlays();
    void layoutCubeControls();
    void writeRecentFiles(const QStringList& files);
    bool handleDrop(QEvent* event);
    // Selects, as a whole, the body under this view point; false when there is none.
    bool selectBodyAt(QPointF position);

    Document document_;
    CommandRegistry registry_;
    CommandStack stack_;
    std::uint64_t savedPosition_ = 0;
    // Where a double-click in the view asks for its whole body, until the button is up.
    std::optional<QPointF> pendingBodyPick_;
    // Whether the view showed a body after the last command: the first body to
    // appear, whoever made it, is fitted into view.
    bool viewHadBodies_ = false;
    QString documentPath_;
    std::unique_ptr<WindowPrompt> prompt_;

    rendering::Viewport* viewport_ = nullptr;
    std::unique_ptr<DocumentPresenter> presenter_;
    std::unique_ptr<ReferencePicker> picker_;
    std::unique_ptr<SketchSession> sketchSession_;
    std::unique_ptr<FormController> forms_;
    std::unique_ptr<AutosaveStore> autosave_;
    QTimer* autosaveTimer_ = nullptr;
    bool autosaveFailureReported_ = false;
    UpdateChecker* updates_ = nullptr;
    std::unique_ptr<ReportSender> reports_;
    UpdatePanel* updatePanel_ = nullptr;
    ReportPanel* reportPanel_ = nullptr;
    QPushButton* updateButton_ = nullptr;
    // The installer has started: the window closes without asking again.
    bool closingForUpdate_ = false;

    struct Actions {
        QAction* undo = nullptr;
        QAction* redo = nullptr;
        QAction* box = nullptr;
        QAction* boxForm = nullptr;
        QAction* remove = nullptr;
        QAction* fit = nullptr;
        QAction* clearSelection = nullptr;
        QAction* bodies = nullptr;
        QAction* faces = nullptr;
        QAction* edges = nullptr;
        QAction* vertices = nullptr;
        QAction* origin = nullptr;
        QAction* commandLog = nullptr;
        QAction* newDocument = nullptr;
        QAction* open = nullptr;
        QAction* save = nullptr;
        QAction* saveAs = nullptr;
        QAction* importModel = nullptr;
        QAction* exportStep = nullptr;
        QAction* exportStl = nullptr;
        QAction* homeView = nullptr;
        QAction* front = nullptr;
        QAction* top = nullptr;
        QAction* right = nullptr;
        QAction* isometric = nullptr;
        QAction* capture = nullptr;
        QAction* crashReports = nullptr;
        QAction* checkUpdates = nullptr;
        QAction* autoUpdates = nullptr;
        QAction* releaseNotes = nullptr;
        QAction* reportIssue = nullptr;
        QAction* design = nullptr;
        QAction* sketch = nullptr;
        QAction* finishSketch = nullptr;
        QAction* dimension = nullptr;
        QAction* construction = nullptr;
        QAction* chainSelection = nullptr;
        QAction* groupSketch = nullptr;
        QAction* ungroupSketch = nullptr;
        QAction* convertToOutlines = nullptr;
        QAction* sketchRectPattern = nullptr;
        QAction* sketchCircPattern = nullptr;
        QAction* sketchPathPattern = nullptr;
        QAction* projectGeometry = nullptr;
        QAction* importDrawing = nullptr;
        QAction* insertFootprint = nullptr;
        QAction* saveFootprint = nullptr;
        QAction* extrude = nullptr;
        QAction* fillet = nullptr;
        QAction* chamfer = nullptr;
        QAction* shell = nullptr;
        QAction* hole = nullptr;
        QAction* thread = nullptr;
        QAction* revolve = nullptr;
        QAction* sweep = nullptr;
        QAction* loft = nullptr;
        QAction* patternRect = nullptr;
        QAction* patternCirc = nullptr;
        QAction* patternPath = nullptr;
        QAction* mirror = nullptr;
        QAction* combine = nullptr;
        QAction* split = nullptr;
        QAction* deleteFaces = nullptr;
        QAction* appearance = nullptr;
        QAction* material = nullptr;
        QAction* referencePlane = nullptr;
        QAction* section = nullptr;
        QAction* sheetFlange = nullptr;
        QAction* edgeFlange = nullptr;
        QAction* sheetRules = nullptr;
        QAction* hem = nullptr;
        QAction* nestParts = nullptr;
        QAction* exportFlat = nullptr;
        QAction* flatPattern = nullptr;
        QAction* editFlatPattern = nullptr;
        QAction* finishFlatPattern = nullptr;
        QAction* parameters = nullptr;
        QAction* search = nullptr;
        QAction* browser = nullptr;
    } actions_;
    // The sketch tools with the session's tool index, and the constraint tools with
    // the kind they set.
    std::vector<std::pair<QAction*, int>> sketchToolActions_;
    std::vector<std::pair<QAction*, int>> constraintActions_;
    bool pickingPlane_ = false;

    QMenu* recentMenu_ = nullptr;
    QList<QToolButton*> cubeControls_;
    QLabel* documentLabel_ = nullptr;
    QToolButton* saveButton_ = nullptr;
    QToolButton* unitButton_ = nullptr;
    ToolStrip* modelingTools_ = nullptr;
    ToolStrip* sketchTools_ = nullptr;
    ToolStrip* sheetTools_ = nullptr;
    QToolButton* sheetTab_ = nullptr;
    QToolButton* finishSketchButton_ = nullptr;
    QToolButton* finishFlatPatternButton_ = nullptr;
    // The part worked on flat; empty when none is.
    std::string flatBody_;
    QLabel* modeBanner_ = nullptr;
    OverlayPanel* textCard_ = nullptr;
    TextPanel* textPanel_ = nullptr;
    Sidebar* sidebar_ = nullptr;

    CommandLog* commandLog_ = nullptr;
    OverlayPanel* commandLogPanel_ = nullptr;
    ObjectBrowser* browser_ = nullptr;
    OverlayPanel* browserPanel_ = nullptr;
    HistoryPanel* history_ = nullptr;
    LooksPanel* looks_ = nullptr;
    // The picker works for the looks panel.
    bool looksPicking_ = false;
    CommandPalette* palette_ = nullptr;
    OverlayPanel* footprintCard_ = nullptr;
    FootprintPanel* footprintPanel_ = nullptr;
    // Shared, so the window's destructor needs no complete type.
    std::shared_ptr<FootprintTool> footprintTool_;
    FootprintNameAsker askFootprintName_;
    QLabel* hud_ = nullptr;
    QLabel* hint_ = nullptr;
    QLabel* toast_ = nullptr;

    // Last: the agents go before the document they drive.
    std::unique_ptr<MainWindowMcpHost> host_;
    std::unique_ptr<McpBridge> bridge_;
};

} // namespace cad::ui

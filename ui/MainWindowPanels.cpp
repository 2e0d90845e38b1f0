// The panels around the view and what they start: the browser (over the view), the
// history (in the left rail), the parameters dialog, the command palette, and the
// feature forms with the actions that open them (Extrude, Fillet, Chamfer, Shell,
// Hole, Thread); the looks panel has its own file.
#include "ui/MainWindow.h"

#include "core/GeometryObject.h"
#include "geometry/ExtrudeFeature.h"
#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/CommandPalette.h"
#include "ui/panels/HistoryPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/panels/PanelHooks.h"
#include "ui/panels/ParametersDialog.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/OverlayPanel.h"
#include "ui/widgets/WindowTexts.h"

#include <StdSelect_BRepOwner.hxx>

#include <QAction>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>

#include <array>

namespace cad::ui {

PanelHooks MainWindow::panelHooks() {
    PanelHooks hooks;
    hooks.run = [this](const CommandRecord& record) { return runCommand(record).ok; };
    hooks.beginGroup = [this] { stack_.beginGroup(); };
    hooks.endGroup = [this] { stack_.endGroup(); };
    hooks.deleteObjects = [this](const std::vector<std::string>& ids) { deleteObjects(ids); };
    return hooks;
}

void MainWindow::buildPanels() {
    browser_ = new ObjectBrowser(document_, panelHooks());
    browserPanel_ =
        new OverlayPanel(QStringLiteral("layers"), QStringLiteral("Browser"), browser_, viewport_);
    browserPanel_->setObjectName(QStringLiteral("browserPanel"));
    connect(actions_.browser, &QAction::toggled, this, [this](bool shown) {
        browserPanel_->setVisible(shown);
        layoutOverlays();
    });
    connect(browserPanel_, &OverlayPanel::collapsedChanged, this, [this] { layoutOverlays(); });
    connect(browser_, &ObjectBrowser::objectsSelected, this, [this](const QStringList& ids) {
        if (editingSketch()) return;
        std::vector<std::string> objects;
        for (const QString& id : ids) objects.push_back(id.toStdString());
        presenter_->selectObjects(objects);
        updateUndoRedo();
    });
    connect(browser_, &ObjectBrowser::editSketchRequested, this,
            [this](const QString& id) { editSketch(id.toStdString()); });
    connect(browser_, &ObjectBrowser::editFeatureRequested, this,
            [this](const QString& id) { editObject(id.toStdString()); });

    history_ = new HistoryPanel(document_, panelHooks());
    connect(history_, &HistoryPanel::editSketchRequested, this,
            [this](const QString& id) { editSketch(id.toStdString()); });
    connect(history_, &HistoryPanel::editFeatureRequested, this,
            [this](const QString& id) { editObject(id.toStdString()); });

    palette_ = new CommandPalette(
        [this] {
            QList<QAction*> shown;
            for (QAction* action : actions())
                if (action->isEnabled() && !action->text().isEmpty() && !action->menu())
                    shown.append(action);
            return shown;
        },
        this);
    palette_->hide();

    forms_ = std::make_unique<FormController>(
        viewport_, viewport_, *picker_, stack_,
        [this](const CommandRecord& record) { return runCommand(record); });
    forms_->setSelectionProvider([this] { return selectedReferences(); });
    // The card takes the right of the view, below the cube and its controls.
    forms_->setAnchor([this](const QSize& card) {
        const int corner = static_cast<int>(viewport_->cubeCornerSize() /
                                            std::max(1.0, viewport_->devicePixelRatioF()));
        const int x = std::max(12, viewport_->width() - card.width() - 12);
        const int y = std::min(corner + 40, std::max(12, viewport_->height() - card.height() - 12));
        return QPoint(x, y);
    });
    connect(forms_.get(), &FormController::opened, this, [this] { layoutOverlays(); });
    connect(forms_.get(), &FormController::finished, this,
            [this](const QString& text) { showToast(text); });
    buildLooksPanel();
    connect(browser_, &ObjectBrowser::exportRequested, this,
            [this](const QString& id, const QString& format) {
                if (format == QLatin1String("footprint")) {
                    saveSketchAsFootprint(id.toStdString());
                    return;
                }
                if (format == QLatin1String("dxf") || format == QLatin1String("svg")) {
                    exportSketchFromUser(id, format);
                    return;
                }
                exportModelFromUser(format == QLatin1String("step") ? ModelFormat::Step
                                                                    : ModelFormat::Stl,
                                    {id.toStdString()});
            });
}

std::vector<std::string> MainWindow::selectedReferences() const {
    // Whole objects first (a sketch or body picked in the browser), then faces.
    std::vector<std::string> references = presenter_->selectedObjects();
    const Handle(AIS_InteractiveContext)& context = viewport_->context();
    if (context.IsNull()) return references;
    for (context->InitSelected(); context->MoreSelected(); context->NextSelected()) {
        const auto owner = Handle(StdSelect_BRepOwner)::DownCast(context->SelectedOwner());
        if (owner.IsNull() || !owner->ComesFromDecomposition() || !owner->HasShape()) continue;
        const std::string id = presenter_->objectOf(context->SelectedOwner());
        const auto* body = dynamic_cast<const GeometryObject*>(document_.find(id));
        const std::string name = body ? body->shape.nameOf(owner->Shape()) : std::string();
        if (!name.empty()) references.push_back(id + "/" + name);
    }
    return references;
}

void MainWindow::buildFeatureActions() {
    struct FeatureAction {
        QAction* Actions::*slot;
        const char* iconName;
        const char* label;
        const char* objectName;
        const char* shortcut;
        const char* description;
        const char* feature;
    };
    static constexpr std::array<FeatureAction, 21> features{{
        {&Actions::fillet, "fillet", "Fillet", "edgeFillet", "", "Round edges of a body", "Fillet"},
        {&Actions::chamfer, "chamfer", "Chamfer", "edgeChamfer", "", "Bevel edges of a body",
         "Chamfer"},
        {&Actions::shell, "shell", "Shell", "shellAction", "",
         "Hollow a body, open at the faces you pick", "Shell"},
        {&Actions::hole, "hole", "Hole", "holeAction", "H",
         "Click a face, or select a sketch with points first", "Hole"},
        {&Actions::thread, "thread", "Thread", "threadAction", "",
         "On a cylindrical face: a bolt, boss or hole", "Thread"},
        {&Actions::revolve, "revolve", "Revolve", "revolveFeature", "", "", "Revolve"},
        {&Actions::sweep, "sweep", "Sweep", "sweepFeature", "", "", "Sweep"},
        {&Actions::loft, "loft", "Loft", "loftFeature", "", "", "Loft"},
        {&Actions::patternRect, "pattern-rect", "Rectangular Pattern", "rectangularpatternFeature",
         "", "", "RectangularPattern"},
        {&Actions::patternCirc, "pattern-circ", "Circular Pattern", "circularpatternFeature", "",
         "", "CircularPattern"},
        {&Actions::patternPath, "pattern-path", "Path Pattern", "pathpatternFeature", "", "",
         "PathPattern"},
        {&Actions::mirror, "mirror3d", "Mirror", "mirrorFeature", "", "", "Mirror"},
        {&Actions::combine, "combine", "Combine", "combineFeature", "", "", "Combine"},
        {&Actions::split, "split", "Split Body", "splitbodyFeature", "", "", "SplitBody"},
        {&Actions::deleteFaces, "delete-face", "Delete Faces", "deletefacesFeature", "",
         "Take faces off a body, its other faces closing the gap", "DeleteFaces"},
        {&Actions::referencePlane, "plane", "Reference Plane", "referencePlane", "", "",
         "ReferencePlane"},
        {&Actions::section, "section", "Section Analysis", "sectionAnalysis", "", "",
         "SectionAnalysis"},
        {&Actions::sheetFlange, "sheet-flange", "Flange", "sheetflangeFeature", "",
         "A sheet metal part from a sketch: a plate, or a bent profile of lines", "SheetFlange"},
        {&Actions::edgeFlange, "edge-flange", "Edge Flange", "edgeflangeFeature", "",
         "Bend a wall up from a straight edge of the sheet", "EdgeFlange"},
        {&Actions::sheetRules, "sheet-rules", "Convert to Sheet Metal", "sheetrulesFeature", "",
         "Give a body sheet metal rules: thickness, bend radius, K-factor", "SheetRules"},
        {&Actions::hem, "hem", "Hem", "hemFeature", "", "Fold an edge right back over the sheet",
         "Hem"},
    }};
    for (const FeatureAction& f : features) {
        const QString description = QString::fromLatin1(f.description);
        QAction* action =
            makeWindowAction(QString::fromLatin1(f.iconName), QString::fromLatin1(f.label),
                             QString::fromLatin1(f.objectName), description);
        if (const QString shortcut = QString::fromLatin1(f.shortcut); !shortcut.isEmpty()) {
            action->setShortcut(QKeySequence(shortcut));
            action->setToolTip(actionTooltip(action->text(), shortcut, description));
        }
        const QString feature = QString::fromLatin1(f.feature);
        connect(action, &QAction::triggered, this, [this, feature] { startFeature(feature); });
        actions_.*f.slot = action;
    }
}

void MainWindow::startFeature(const QString& featureName) {
    // A sketch being drawn is finished, and its points are where holes go.
    const std::string sketch = editedSketch();
    if (!sketch.empty()) {
        finishSketch();
        presenter_->selectObjects({sketch});
    }
    endPlanePick();
    if (featureName.endsWith(QStringLiteral("Pattern")))
        forms_->openPatternForm(featureName.chopped(7).toLower());
    else if (featureName == QStringLiteral("Mirror"))
        forms_->openMirrorForm();
    else if (featureName == QStringLiteral("ReferencePlane"))
        forms_->openPlaneForm();
    else if (featureName == QStringLiteral("SectionAnalysis"))
        forms_->openSectionForm();
    else
        forms_->openFeatureForm(featureName);
}

void MainWindow::startExtrude() {
    // From a sketch being edited, Extrude finishes it and extrudes it.
    std::string sketch = editedSketch();
    if (!sketch.empty()) finishSketch();
    if (!sketch.empty()) presenter_->selectObjects({sketch});
    endPlanePick();
    forms_->openFeatureForm(QStringLiteral("Extrude"));
}

void MainWindow::editObject(const std::string& id) {
    const DocumentObject* object = document_.find(id);
    if (!object) return;
    if (dynamic_cast<const SketchObject*>(object)) {
        editSketch(id);
        return;
    }
    if (editingSketch()) finishSketch();
    endPlanePick();
    if (!forms_->openEditForm(id))
        showToast(QStringLiteral("%1 has no form to edit it with yet.")
                      .arg(QString::fromStdString(object->displayName())));
}

void MainWindow::showParameters() {
    ParametersDialog dialog(
        document_, [this](const CommandRecord& record) { return runCommand(record); }, this);
    dialog.setAsk(
        [this](const QString& question) { return prompt_->askDeleteDependents(this, question); });
    dialog.exec();
}

void MainWindow::showPalette() {
    palette_->open();
    const QPoint centre = viewport_->mapTo(this, QPoint(viewport_->width() / 2, 0));
    palette_->move(std::max(0, centre.x() - palette_->width() / 2), centre.y() + 60);
    palette_->raise();
}

void MainWindow::refreshPanels() {
    // The document's name follows with the title (updateWindowTitle).
    browser_->refresh();
    history_->refresh();
}

} // namespace cad::ui

// Appearance and Physical Material: the actions, the looks panel over the view with
// the face clicks it takes, and where it sits.
#include "ui/MainWindow.h"

#include "geometry/materials/LookTargets.h"
#include "rendering/Viewport.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/LooksPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/ReferencePicker.h"

#include <QAction>

#include <algorithm>

namespace cad::ui {

namespace {

constexpr int kMargin = 12;
constexpr int kLooksHeight = 540;

} // namespace

void MainWindow::buildLooksActions() {
    actions_.appearance = makeWindowAction(QStringLiteral("appearance"),
                                           QStringLiteral("Appearance"),
                                           QStringLiteral("appearanceAction"));
    connect(actions_.appearance, &QAction::triggered, this,
            [this] { openLooks(LooksMode::Appearance, selectedReferences()); });
    actions_.material = makeWindowAction(QStringLiteral("material"),
                                         QStringLiteral("Physical Material"),
                                         QStringLiteral("physicalMaterial"));
    connect(actions_.material, &QAction::triggered, this,
            [this] { openLooks(LooksMode::Material, selectedReferences()); });
}

void MainWindow::buildLooksPanel() {
    looks_ = new LooksPanel(
        document_, [this](const CommandRecord& record) { return runCommand(record); }, viewport_);
    connect(looks_, &LooksPanel::closed, this, [this] { stopLooksPicking(); });
    connect(browser_, &ObjectBrowser::materialRequested, this, [this](const QString& id) {
        openLooks(LooksMode::Material, {id.toStdString()});
    });
    connect(browser_, &ObjectBrowser::appearanceRequested, this, [this](const QString& id) {
        openLooks(LooksMode::Appearance, {id.toStdString()});
    });
    // Bodies chosen in the browser while the panel shows become its targets.
    connect(browser_, &ObjectBrowser::objectsSelected, this, [this](const QStringList& ids) {
        if (!looks_->isVisible()) return;
        std::vector<std::string> objects;
        for (const QString& id : ids)
            if (const DocumentObject* object = document_.find(id.toStdString()))
                if (isBodyOrComponent(*object)) objects.push_back(object->id);
        if (!objects.empty()) looks_->setTargets(objects);
    });
    // A form takes the view's clicks for itself: the panel makes way.
    connect(forms_.get(), &FormController::opened, this, [this] {
        looksPicking_ = false;
        looks_->dismiss();
    });
}

void MainWindow::openLooks(LooksMode mode, const std::vector<std::string>& targets) {
    if (editingSketch()) finishSketch();
    endPlanePick();
    if (forms_->isOpen()) forms_->cancel();
    looks_->open(mode, targets);
    // The targets are the panel's now; the view shows their looks without the highlight.
    clearSelection();
    looksPicking_ = true;
    picker_->activate(PickFace, [this](const std::vector<std::string>& faces) {
        if (looks_->isVisible()) looks_->picked(faces);
    });
    placeLooksPanel();
}

void MainWindow::closeLooks() {
    if (looks_) looks_->dismiss();
    stopLooksPicking();
}

void MainWindow::stopLooksPicking() {
    if (!looksPicking_) return;
    looksPicking_ = false;
    if (picker_->isActive()) picker_->deactivate();
}

void MainWindow::placeLooksPanel() {
    if (!looks_ || !looks_->isVisible()) return;
    // Where the forms go: the right of the view, below the cube and its controls.
    const int corner = static_cast<int>(viewport_->cubeCornerSize() /
                                        std::max(1.0, viewport_->devicePixelRatioF()));
    const int height = viewport_->height();
    const int y = std::min(corner + 40, std::max(kMargin, height / 4));
    looks_->setFixedHeight(std::max(220, std::min(kLooksHeight, height - y - kMargin)));
    looks_->move(std::max(kMargin, viewport_->width() - looks_->width() - kMargin), y);
    looks_->raise();
}

} // namespace cad::ui

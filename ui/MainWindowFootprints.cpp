// Insert Footprint and Save as Footprint: the footprint panel over the view while a
// sketch is edited, its place-by-click tool, and saving the edited sketch to the library.
#include "ui/MainWindow.h"

#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "sketch/footprints/FootprintLibrary.h"
#include "ui/panels/FootprintPanel.h"
#include "ui/sketch/FootprintTool.h"
#include "ui/sketch/SketchSession.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/OverlayPanel.h"

#include <QAction>
#include <QInputDialog>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace cad::ui {

namespace {

constexpr int kMargin = 12;

std::optional<QString> askNameInDialog(QWidget* parent) {
    bool ok = false;
    const QString name =
        QInputDialog::getText(parent, QStringLiteral("Save as Footprint"),
                              QStringLiteral("Footprint name:"), QLineEdit::Normal, {}, &ok);
    if (!ok) return std::nullopt;
    return name;
}

} // namespace

void MainWindow::buildFootprintActions() {
    Actions& a = actions_;
    a.insertFootprint =
        makeWindowAction(QStringLiteral("footprint"), QStringLiteral("Insert Footprint"),
                         QStringLiteral("insertFootprint"),
                         QStringLiteral("Place a saved footprint in this sketch"));
    a.insertFootprint->setEnabled(false);
    connect(a.insertFootprint, &QAction::triggered, this, &MainWindow::openFootprintPanel);
    a.saveFootprint =
        makeWindowAction({}, QStringLiteral("Save as Footprint"), QStringLiteral("saveFootprint"),
                         QStringLiteral("Save this sketch to the footprint library"));
    a.saveFootprint->setEnabled(false);
    connect(a.saveFootprint, &QAction::triggered, this, [this] { saveSketchAsFootprint(); });
    if (!askFootprintName_) askFootprintName_ = askNameInDialog;
}

void MainWindow::openFootprintPanel() {
    if (!editingSketch()) return;
    if (!footprintCard_) {
        footprintPanel_ =
            new FootprintPanel([this](const CommandRecord& record) { return runCommand(record); });
        footprintCard_ = new OverlayPanel(QStringLiteral("footprint"), QStringLiteral("Footprint"),
                                          footprintPanel_, viewport_);
        footprintCard_->setObjectName(QStringLiteral("footprintCard"));
        auto* close = new QToolButton(footprintCard_);
        close->setIcon(icon(QStringLiteral("close")));
        close->setToolTip(QStringLiteral("Close (Esc)"));
        footprintCard_->addHeaderButton(close);
        connect(close, &QToolButton::clicked, this, &MainWindow::closeFootprintPanel);
        connect(footprintPanel_, &FootprintPanel::placed, this,
                [this](const QString& message) { showToast(message); });
        connect(footprintPanel_, &FootprintPanel::clickPlacementToggled, this,
                &MainWindow::setFootprintClicking);
        footprintTool_ = std::make_shared<FootprintTool>(
            [this](QPointF pixel) { return sketchSession_->view().toSketch(pixel); },
            [this](Point2 at) {
                footprintPanel_->placeAt(at);
                footprintPanel_->clickButton()->setChecked(false);
            },
            [this] { footprintPanel_->clickButton()->setChecked(false); });
    }
    footprintPanel_->setSketch(editedSketch());
    footprintCard_->show(); // showing reads the library again
    footprintPanel_->refresh();
    placeFootprintPanel();
}

void MainWindow::closeFootprintPanel() {
    if (!footprintCard_) return;
    footprintPanel_->clickButton()->setChecked(false);
    footprintCard_->hide();
}

void MainWindow::setFootprintClicking(bool on) {
    if (!footprintTool_) return;
    if (on && editingSketch()) {
        viewport_->setTool(footprintTool_.get());
        showToast(
            QStringLiteral("Click where the footprint's reference point goes (Esc to stop)."));
    } else if (footprintClicking()) {
        viewport_->setTool(editingSketch() ? sketchSession_.get() : nullptr);
    }
}

bool MainWindow::footprintClicking() const {
    return footprintTool_ && viewport_->tool() == footprintTool_.get();
}

void MainWindow::placeFootprintPanel() {
    if (!footprintCard_ || footprintCard_->isHidden()) return;
    // The bottom right of the view, below where the forms and the text card go.
    footprintCard_->setFixedWidth(std::min(300, std::max(220, viewport_->width() - 2 * kMargin)));
    footprintCard_->adjustSize();
    footprintCard_->move(
        std::max(kMargin, viewport_->width() - footprintCard_->width() - kMargin),
        std::max(kMargin, viewport_->height() - footprintCard_->height() - kMargin));
    footprintCard_->raise();
}

bool MainWindow::saveSketchAsFootprint(const std::string& sketchId) {
    const auto* sketch =
        document_.findAs<SketchObject>(sketchId.empty() ? editedSketch() : sketchId);
    if (!sketch) return false;
    const std::optional<QString> name = askFootprintName_ ? askFootprintName_(this) : std::nullopt;
    if (!name) return false;
    Result<Footprint> footprint = footprintFromSketch(sketch->entities, sketch->constraints,
                                                      name->trimmed().toStdString(), {});
    Result<std::string> saved = footprint ? FootprintLibrary().save(*footprint, false)
                                          : Result<std::string>(Error(footprint));
    showToast(QString::fromStdString(saved ? *saved : saved.error()));
    if (saved && footprintCard_ && footprintCard_->isVisible()) footprintPanel_->refresh();
    return saved.ok();
}

} // namespace cad::ui

// What floats over the 3D view (command log panel, hud, hint, toast) and how it is
// laid out, plus the view's keys and drops that the window handles.
#include "ui/MainWindow.h"

#include "rendering/Viewport.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/widgets/CommandLog.h"
#include "ui/widgets/OverlayPanel.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace cad::ui {

namespace {

constexpr int kMargin = 12;
constexpr int kToastMilliseconds = 5000;

QLabel* overlayLabel(const QString& objectName, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

} // namespace

void MainWindow::buildOverlays() {
    commandLog_ = new CommandLog;
    commandLogPanel_ = new OverlayPanel(QStringLiteral("terminal"), QStringLiteral("Command Log"),
                                        commandLog_, viewport_);
    commandLogPanel_->setObjectName(QStringLiteral("commandLogPanel"));
    commandLogPanel_->hide();
    connect(actions_.commandLog, &QAction::toggled, this, [this](bool shown) {
        commandLogPanel_->setVisible(shown);
        layoutOverlays();
    });
    connect(commandLogPanel_, &OverlayPanel::collapsedChanged, this, [this] { layoutOverlays(); });

    hud_ = overlayLabel(QStringLiteral("hud"), viewport_);
    hud_->hide();

    hint_ = overlayLabel(QStringLiteral("hint"), viewport_);
    hint_->setText(QStringLiteral("Middle-drag pan  ·  Right-drag orbit  ·  Wheel zoom  ·  F fit"));

    modeBanner_ = overlayLabel(QStringLiteral("modeBanner"), viewport_);
    modeBanner_->setTextFormat(Qt::RichText);
    modeBanner_->hide();

    toast_ = new QLabel(viewport_);
    toast_->setObjectName(QStringLiteral("toast"));
    toast_->setWordWrap(true);
    toast_->setAlignment(Qt::AlignCenter);
    toast_->hide();

    layoutOverlays();
}

void MainWindow::layoutOverlays() {
    if (!viewport_ || !toast_) return;
    const int width = viewport_->width();
    const int height = viewport_->height();
    // The cube and its controls take the top-right corner; nothing else goes there.
    const int corner = static_cast<int>(viewport_->cubeCornerSize() /
                                        std::max(1.0, viewport_->devicePixelRatioF()));
    const int cubeArea = corner + 30;

    // The navigation hint only shows where it fits whole.
    hint_->adjustSize();
    hint_->setVisible(hint_->width() <= width - 2 * kMargin);
    hint_->move(std::max(kMargin, width - hint_->width() - kMargin),
                height - hint_->height() - kMargin);

    // The browser heads the left side of the view; an open form takes the right,
    // below the cube.
    int browserBottom = kMargin;
    if (browserPanel_ && browserPanel_->isVisible()) {
        const int panelWidth = std::clamp(width / 4, 200, 280);
        const int room = std::max(80, height / 2 - kMargin);
        const int panelHeight = browserPanel_->isCollapsed()
                                    ? browserPanel_->sizeHint().height()
                                    : std::min(room, std::max(160, browser_->sizeHint().height()));
        browserPanel_->setGeometry(kMargin, kMargin, panelWidth, panelHeight);
        browserPanel_->raise();
        browserBottom = kMargin + panelHeight;
    }
    if (forms_ && forms_->isOpen()) {
        forms_->placeForm();
        forms_->form()->raise();
    }
    placeLooksPanel();
    placeFootprintPanel();

    if (commandLogPanel_->isVisible()) {
        const int panelWidth = std::clamp(width / 2, 220, 460);
        const int panelHeight = commandLogPanel_->isCollapsed()
                                    ? commandLogPanel_->sizeHint().height()
                                    : std::clamp(height / 3, 120, 260);
        commandLogPanel_->setGeometry(kMargin,
                                      std::max(browserBottom + 8, height - panelHeight - kMargin),
                                      std::min(panelWidth, std::max(120, width - 2 * kMargin)),
                                      std::min(panelHeight, std::max(60, height - 2 * kMargin)));
        commandLogPanel_->raise();
    }

    // The mode banner heads the view; the hud and the toast go below it while it shows.
    int top = kMargin;
    if (modeBanner_->isVisible()) {
        modeBanner_->adjustSize();
        modeBanner_->move(std::max(kMargin, (width - modeBanner_->width()) / 2), top);
        modeBanner_->raise();
        top += modeBanner_->height() + 8;
    }
    hud_->adjustSize();
    hud_->move(std::max(kMargin, (width - hud_->width()) / 2), top);

    // The toast is centred at the top, on one line when it fits, never reaching the cube.
    const int room = std::min(560, std::max(160, width - 2 * cubeArea));
    toast_->ensurePolished();
    const QMargins margins = toast_->contentsMargins();
    const int padding = margins.left() + margins.right() + 2 * toast_->margin() + 30;
    const int natural = toast_->fontMetrics().horizontalAdvance(toast_->text()) + padding;
    const int toastWidth = std::min(natural, room);
    toast_->resize(toastWidth, toast_->heightForWidth(toastWidth));
    toast_->move(std::max(kMargin, (width - toastWidth) / 2), top);
    toast_->raise();

    layoutCubeControls();
}

void MainWindow::showToast(const QString& text) {
    toast_->setText(text);
    toast_->show();
    layoutOverlays();
    // A newer toast changes the text, and with it which timer gets to hide it.
    QTimer::singleShot(kToastMilliseconds, toast_, [label = toast_, text] {
        if (label->text() == text) label->hide();
    });
}

void MainWindow::setPrompt(std::unique_ptr<WindowPrompt> prompt) {
    if (prompt) prompt_ = std::move(prompt);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == viewport_) {
        switch (event->type()) {
        case QEvent::Resize:
            layoutOverlays();
            break;
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                escape();
                return true;
            }
            break;
        case QEvent::MouseButtonDblClick: {
            // Without a tool, a double-click on a body's face selects the whole body:
            // once the button is up, so the second click can't select the face again.
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton && !viewport_->tool()) {
                pendingBodyPick_ = mouse->position();
                return true;
            }
            break;
        }
        case QEvent::MouseButtonRelease:
            if (pendingBodyPick_ && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
                const QPointF position = *pendingBodyPick_;
                pendingBodyPick_.reset();
                QTimer::singleShot(0, this, [this, position] { selectBodyAt(position); });
            }
            break;
        case QEvent::DragEnter:
        case QEvent::Drop:
            if (handleDrop(event)) return true;
            break;
        default:
            break;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace cad::ui

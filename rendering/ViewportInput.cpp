// The 3D view's input: Qt mouse, wheel and key events mapped to the active tool, the
// view controller (hover, pan, zoom, picking) and the turntable orbit; the cube's
// right-click menu; SpaceMouse motion.
#include "rendering/Viewport.h"

#include "rendering/SpaceMouse.h"
#include "rendering/ViewportLog.h"

#include <QActionGroup>
#include <QDateTime>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QWheelEvent>

#include <AIS_ViewCube.hxx>
#include <SelectMgr_EntityOwner.hxx>
#include <StdSelect_ViewerSelector3d.hxx>

#include <cmath>

namespace cad::rendering {

namespace {

constexpr qint64 spaceMouseWheelQuietMs = 300;

Aspect_VKeyMouse mouseButtons(Qt::MouseButtons buttons) {
    Aspect_VKeyMouse keys = Aspect_VKeyMouse_NONE;
    if (buttons & Qt::LeftButton) keys |= Aspect_VKeyMouse_LeftButton;
    if (buttons & Qt::MiddleButton) keys |= Aspect_VKeyMouse_MiddleButton;
    if (buttons & Qt::RightButton) keys |= Aspect_VKeyMouse_RightButton;
    return keys;
}

Aspect_VKeyFlags keyFlags(Qt::KeyboardModifiers modifiers) {
    Aspect_VKeyFlags flags = Aspect_VKeyFlags_NONE;
    if (modifiers & Qt::ShiftModifier) flags |= Aspect_VKeyFlags_SHIFT;
    if (modifiers & Qt::ControlModifier) flags |= Aspect_VKeyFlags_CTRL;
    if (modifiers & Qt::AltModifier) flags |= Aspect_VKeyFlags_ALT;
    return flags;
}

} // namespace

Graphic3d_Vec2i Viewport::toDevice(QPointF point) const {
    const double ratio = devicePixelRatioF();
    return Graphic3d_Vec2i(static_cast<int>(std::lround(point.x() * ratio)),
                           static_cast<int>(std::lround(point.y() * ratio)));
}

bool Viewport::isOnCube(const Graphic3d_Vec2i& devicePoint) const {
    if (!ready_) return false;
    const Handle(StdSelect_ViewerSelector3d)& selector = context_->MainSelector();
    selector->Pick(devicePoint.x(), devicePoint.y(), view_);
    for (int rank = 1; rank <= selector->NbPicked(); ++rank) {
        const Handle(SelectMgr_EntityOwner) owner = selector->Picked(rank);
        if (!owner.IsNull() && owner->Selectable() == cube_) return true;
    }
    return false;
}

void Viewport::setMsaa(int samples) {
    if (view_->RenderingParams().NbMsaaSamples == samples) return;
    view_->ChangeRenderingParams().NbMsaaSamples = samples;
    requestRedraw();
}

void Viewport::dropPendingClick() {
    myUI.Selection.Points.Clear();
    myUI.Selection.ToApplyTool = false;
}

void Viewport::setTool(ViewportTool* tool) {
    tool_ = tool;
    toolPressOnCube_ = false;
    context_->ClearDetected(false);
    ResetPreviousMoveTo();
    if (!orbiting_) applyCursor();
    requestRedraw();
}

ViewportTool* Viewport::tool() const { return tool_; }

void Viewport::setToolCursor(Qt::CursorShape shape) {
    toolCursor_ = shape;
    if (tool_ && !orbiting_) setCursor(shape);
}

void Viewport::applyCursor() {
    if (tool_)
        setCursor(toolCursor_);
    else
        unsetCursor();
}

void Viewport::mousePressEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    const Graphic3d_Vec2i point = toDevice(position);
    const Qt::MouseButton button = event->button();
    const Qt::KeyboardModifiers modifiers = event->modifiers();

    if (button == Qt::RightButton && isOnCube(point)) {
        cubeRightPress_ = true;
        return;
    }
    if (button == Qt::LeftButton && tool_ && !orbiting_) {
        toolPressOnCube_ = isOnCube(point);
        if (!toolPressOnCube_ && tool_->mousePress(position, modifiers)) return;
    }
    setMsaa(0);
    if (button == Qt::MiddleButton || button == Qt::RightButton) {
        myUI.Selection.Points.Clear();
        myUI.Selection.ToApplyTool = false;
    }
    if (orbiting_) return;
    const bool rightAlone = button == Qt::RightButton && event->buttons() == Qt::RightButton;
    const bool shiftMiddle = button == Qt::MiddleButton && (modifiers & Qt::ShiftModifier);
    if (rightAlone || shiftMiddle) {
        startOrbit(position, button);
        return;
    }
    if (UpdateMouseButtons(point, mouseButtons(event->buttons()), keyFlags(modifiers), false)) {
        markInput();
        update();
    }
}

void Viewport::mouseMoveEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    if (orbiting_) {
        orbitTo(position);
        return;
    }
    if (tool_ && !(event->buttons() & (Qt::MiddleButton | Qt::RightButton))) {
        tool_->mouseMove(position, event->modifiers());
        return;
    }
    if (UpdateMousePosition(toDevice(position), mouseButtons(event->buttons()),
                            keyFlags(event->modifiers()), false)) {
        markInput();
        update();
    }
}

void Viewport::mouseReleaseEvent(QMouseEvent* event) {
    const QPointF position = event->position();
    const Qt::MouseButton button = event->button();
    if (button == Qt::RightButton && cubeRightPress_) {
        cubeRightPress_ = false;
        openCubeMenu(event->globalPosition().toPoint());
        return;
    }
    if (event->buttons() == Qt::NoButton) setMsaa(4);
    if (orbiting_) {
        if (button == orbitButton_) endOrbit();
        return;
    }
    if (button == Qt::LeftButton) {
        const bool onCube = toolPressOnCube_;
        toolPressOnCube_ = false;
        if (tool_ && !onCube) tool_->mouseRelease(position, event->modifiers());
    }
    if (UpdateMouseButtons(toDevice(position), mouseButtons(event->buttons()),
                           keyFlags(event->modifiers()), false)) {
        markInput();
        update();
    }
}

void Viewport::mouseDoubleClickEvent(QMouseEvent* event) {
    if (tool_ && event->button() == Qt::LeftButton) {
        tool_->mouseDoubleClick(event->position(), event->modifiers());
        return;
    }
    QOpenGLWidget::mouseDoubleClickEvent(event);
}

void Viewport::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (QDateTime::currentMSecsSinceEpoch() - lastSpaceMouseMs_ < spaceMouseWheelQuietMs) return;
    AbortViewAnimation();
    const double delta = event->angleDelta().y() * 0.125;
    if (UpdateZoom(Aspect_ScrollDelta(toDevice(event->position()), delta))) {
        markInput();
        update();
    }
}

void Viewport::keyPressEvent(QKeyEvent* event) {
    if (tool_ && tool_->keyPress(event)) return;
    QOpenGLWidget::keyPressEvent(event);
}

void Viewport::leaveEvent(QEvent* event) {
    if (tool_) tool_->leave();
    context_->ClearDetected(false);
    ResetPreviousMoveTo();
    requestRedraw();
    QOpenGLWidget::leaveEvent(event);
}

void Viewport::startOrbit(QPointF position, Qt::MouseButton button) {
    AbortViewAnimation();
    orbitStart_ = new Graphic3d_Camera();
    orbitStart_->Copy(view_->Camera());
    orbitPivot_ = displayedCentre();
    yawSign_ = orbitStart_->Up().Z() >= 0 ? 1.0 : -1.0;
    yaw_ = pitch_ = 0.0;
    orbiting_ = true;
    orbitButton_ = button;
    orbitPressPosition_ = position;
    lastPosition_ = position.toPoint();
    warpPending_ = false;
    setCursor(Qt::BlankCursor);
}

void Viewport::orbitTo(QPointF position) {
    const QPoint point = position.toPoint();
    if (warpPending_) {
        ++warpMoves_;
        if (camera::warpEnded(point, warpTarget_, warpTimer_.elapsed(), warpMoves_)) {
            warpPending_ = false;
            lastPosition_ = point;
        }
        return;
    }
    const QPoint delta = point - lastPosition_;
    lastPosition_ = point;
    if (camera::isDiscontinuousDelta(delta)) {
        qCDebug(viewportLog, "orbit: ignored discontinuous mouse delta %d, %d", delta.x(),
                delta.y());
        return;
    }
    yaw_ -= delta.x() * camera::orbitRadiansPerPixel * yawSign_;
    pitch_ += delta.y() * camera::orbitRadiansPerPixel;

    if (camera::needsWarp(point, rect())) {
        const QPoint centre = rect().center();
        QCursor::setPos(mapToGlobal(centre));
        lastPosition_ = warpTarget_ = centre;
        warpPending_ = true;
        warpMoves_ = 0;
        warpTimer_.start();
    }

    const camera::Pose start{orbitStart_->Direction(), orbitStart_->Up()};
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    camera->CopyOrientationData(orbitStart_);
    camera->Transform(camera::orbitTransform(orbitPivot_, start, yaw_, pitch_));
    markInput();
    requestRedraw();
}

void Viewport::endOrbit() {
    orbiting_ = false;
    orbitButton_ = Qt::NoButton;
    orbitStart_.Nullify();
    warpPending_ = false;
    QCursor::setPos(mapToGlobal(orbitPressPosition_.toPoint()));
    applyCursor();
    requestRedraw();
}

void Viewport::openCubeMenu(QPoint globalPosition) {
    auto* menu = new QMenu(this);
    menu->setObjectName("viewCubeMenu");
    menu->setAttribute(Qt::WA_TranslucentBackground);
    menu->setAttribute(Qt::WA_DeleteOnClose);

    auto* projection = new QActionGroup(menu);
    projection->setExclusive(true);
    QAction* orthographic = menu->addAction(QStringLiteral("Orthographic"));
    orthographic->setObjectName("orthographic");
    QAction* perspective = menu->addAction(QStringLiteral("Perspective"));
    perspective->setObjectName("perspective");
    for (QAction* action : {orthographic, perspective}) {
        action->setCheckable(true);
        projection->addAction(action);
    }
    (isPerspective() ? perspective : orthographic)->setChecked(true);
    connect(orthographic, &QAction::triggered, this, [this] { setPerspective(false); });
    connect(perspective, &QAction::triggered, this, [this] { setPerspective(true); });
    menu->addSeparator();

    const struct {
        const char* label;
        const char* name;
        void (Viewport::*slot)();
    } entries[] = {
        {"Set Current View as Home", "setHome", &Viewport::setHomeFromCurrent},
        {"Reset Home", "resetHome", &Viewport::resetHome},
        {"Set Current View as Front", "setFront", &Viewport::setFrontFromCurrent},
        {"Reset Front", "resetFront", &Viewport::resetFront},
    };
    for (const auto& entry : entries) {
        QAction* action = menu->addAction(QString::fromLatin1(entry.label));
        action->setObjectName(QString::fromLatin1(entry.name));
        connect(action, &QAction::triggered, this, entry.slot);
    }
    menu->popup(globalPosition);
}

void Viewport::applySpaceMotion(const spacemouse::Motion& motion) {
    lastSpaceMouseMs_ = QDateTime::currentMSecsSinceEpoch();
    AbortViewAnimation();
    // Gains per 8 ms step at full deflection and speed 1.
    constexpr double panGain = 0.015;  // of the view's height
    constexpr double zoomGain = 0.03;  // natural log of the scale
    constexpr double turnGain = 0.025; // radians
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    const gp_Dir direction = camera->Direction();
    const gp_Dir up = camera::orthogonalUp(direction, camera->Up());
    const gp_Dir side = direction.Crossed(up);

    const double height = camera->ViewDimensions().Y();
    const gp_Vec shift = gp_Vec(side) * (-motion.panX * panGain * height) +
                         gp_Vec(up) * (-motion.panY * panGain * height);
    camera->SetEyeAndCenter(camera->Eye().Translated(shift), camera->Center().Translated(shift));
    if (motion.zoom != 0) camera->SetScale(camera->Scale() * std::exp(-motion.zoom * zoomGain));

    gp_Trsf turn = camera::orbitTransform(displayedCentre(), {direction, up},
                                          motion.turn * turnGain, motion.tilt * turnGain);
    if (motion.roll != 0) {
        gp_Trsf roll;
        roll.SetRotation(gp_Ax1(camera->Center(), direction), motion.roll * turnGain);
        turn.Multiply(roll);
    }
    camera->Transform(turn);
    repairCamera();
    markInput();
    requestRedraw();
}

} // namespace cad::rendering

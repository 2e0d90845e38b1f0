// The 3D view: OpenCASCADE's V3d view drawing into Qt's OpenGL widget, with the
// application's lights, highlight styles, navigation cube and camera conventions
// (home, a user-defined front, standard views, turntable orbit, animation).
#pragma once

// Qt's OpenGL headers come before OpenCASCADE's.
#include <QElapsedTimer>
#include <QOpenGLWidget>

#include "rendering/CameraMath.h"
#include "rendering/NavigationCube.h"
#include "rendering/QtFrameBuffer.h"
#include "rendering/SpaceMouseInput.h"
#include "rendering/ViewportTool.h"

#include <AIS_AnimationCamera.hxx>
#include <AIS_InteractiveContext.hxx>
#include <AIS_ViewController.hxx>
#include <Aspect_NeutralWindow.hxx>
#include <Graphic3d_Camera.hxx>
#include <OpenGl_GraphicDriver.hxx>
#include <V3d_TypeOfOrientation.hxx>
#include <V3d_View.hxx>
#include <V3d_Viewer.hxx>
#include <gp_Ax3.hxx>
#include <gp_Lin.hxx>
#include <gp_Pln.hxx>
#include <gp_Pnt.hxx>

#include <optional>

namespace cad::rendering {

class SpaceMouse;

class Viewport : public QOpenGLWidget, public AIS_ViewController {
    Q_OBJECT
public:
    explicit Viewport(QWidget* parent = nullptr);
    ~Viewport() override;

    // The interactive context every presentation lives in, and the view.
    const Handle(AIS_InteractiveContext) & context() const;
    const Handle(V3d_View) & view() const;
    // False until the view is bound to Qt's OpenGL context (and forever when that failed).
    bool isReady() const;

    // Makes a tool current (or none): clears hover detection, applies its cursor, repaints.
    void setTool(ViewportTool* tool);
    ViewportTool* tool() const;
    // The cursor to show while a tool is active; applied at once unless an orbit runs.
    void setToolCursor(Qt::CursorShape shape);

    void fitAll();
    void fitAllAnimated();
    void goHome(bool animate);
    // An OpenCASCADE standard orientation seen through the user's front.
    void setStandardView(V3d_TypeOfOrientation orientation, bool animate);
    // The six cube buttons: 0 turn left, 1 turn right, 2 turn up, 3 turn down,
    // 4 roll left, 5 roll right.
    void nudgeView(int step);
    void setPerspective(bool perspective);
    bool isPerspective() const;
    void setHomeFromCurrent();
    void resetHome();
    void setFrontFromCurrent();
    void resetFront();

    // Faces a plane: eye on its normal through its centre, up along its y axis,
    // scaled to 1.4 times the content size.
    void lookAtPlane(const gp_Ax3& plane, double contentSize);
    // The point on a plane under a widget point; none when the ray runs parallel.
    std::optional<gp_Pnt> unprojectToPlane(QPointF point, const gp_Pln& plane) const;
    // The eye ray through a widget point.
    gp_Lin pickRay(QPointF point) const;

    void showGrid(const gp_Ax3& plane, double step, double extent);
    void hideGrid();

    // The square the cube occupies in the top-right corner, in device pixels.
    int cubeCornerSize() const;

    // Presentations changed: draw again on the next turn of the event loop.
    void requestRedraw();
    // Forgets a click the view has taken but not yet turned into a selection (it does
    // that when it next draws): the window has decided what that click selects.
    void dropPendingClick();

signals:
    // A short confirmation for the window to show ("Home is this view").
    void toastRequested(const QString& text);
    // The first frame was painted (start-up measurement, tests).
    void firstFramePainted();

protected:
    void initializeGL() override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    // Keeps asking Qt for frames while a camera animation runs.
    void handleViewRedraw(const Handle(AIS_InteractiveContext) & context,
                          const Handle(V3d_View) & view) override;

private:
    // Rolling sum, worst and count of a timing, logged every 60 samples.
    struct Statistics {
        double sum = 0;
        double worst = 0;
        int count = 0;
        bool add(double milliseconds);
    };

    // Binding to Qt's OpenGL context and its native window.
    bool bindWindow();
    void releaseGl();
    void onFrameSwapped();
    void markInput();
    // Replaces an up vector parallel to the view direction; true when it did.
    bool repairCamera();

    // Camera changes: a copy of the current camera that fn edits with the view's
    // helpers (SetProj, FitAll), and the transition to such a camera.
    template <typename Edit> Handle(Graphic3d_Camera) editedCamera(Edit edit);
    void transitionTo(const Handle(Graphic3d_Camera) & end, double seconds);
    camera::Pose currentPose() const;
    camera::Pose standardPose(V3d_TypeOfOrientation orientation);
    static void applyPose(const Handle(Graphic3d_Camera) & camera, const camera::Pose& pose);
    void loadSettings();
    void orientCube();
    gp_Pnt displayedCentre() const;

    // Mouse mapping and the turntable orbit.
    Graphic3d_Vec2i toDevice(QPointF point) const;
    bool isOnCube(const Graphic3d_Vec2i& devicePoint) const;
    void setMsaa(int samples);
    void startOrbit(QPointF position, Qt::MouseButton button);
    void orbitTo(QPointF position);
    void endOrbit();
    void applyCursor();
    void openCubeMenu(QPoint globalPosition);
    void applySpaceMotion(const spacemouse::Motion& motion);

    Handle(Aspect_DisplayConnection) displayConnection_;
    Handle(OpenGl_GraphicDriver) driver_;
    Handle(V3d_Viewer) viewer_;
    Handle(AIS_InteractiveContext) context_;
    Handle(V3d_View) view_;
    Handle(Aspect_NeutralWindow) window_;
    Handle(QtFrameBuffer) frameBuffer_;
    Handle(NavigationCube) cube_;
    Handle(AIS_AnimationCamera) animation_;
    Aspect_Drawable boundHandle_ = 0;
    bool ready_ = false;
    bool glFailed_ = false;
    bool everBound_ = false;
    bool needsInvalidate_ = false;
    bool firstFrameDone_ = false;
    bool firstFrameSignalled_ = false;

    ViewportTool* tool_ = nullptr;
    Qt::CursorShape toolCursor_ = Qt::ArrowCursor;
    bool toolPressOnCube_ = false;
    bool cubeRightPress_ = false;

    bool orbiting_ = false;
    Qt::MouseButton orbitButton_ = Qt::NoButton;
    Handle(Graphic3d_Camera) orbitStart_;
    gp_Pnt orbitPivot_;
    double yaw_ = 0;
    double pitch_ = 0;
    double yawSign_ = 1;
    QPoint lastPosition_;
    QPointF orbitPressPosition_;
    bool warpPending_ = false;
    QPoint warpTarget_;
    int warpMoves_ = 0;
    QElapsedTimer warpTimer_;

    QElapsedTimer inputTimer_;
    QElapsedTimer paintTimer_;
    Statistics latency_;
    Statistics paintTime_;
    qint64 lastSpaceMouseMs_ = 0;
    SpaceMouse* spaceMouse_ = nullptr;
    gp_Mat front_;
};

} // namespace cad::rendering

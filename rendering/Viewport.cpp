// The 3D view's life: building the viewer, lights and styles, binding OpenCASCADE to
// Qt's OpenGL context and framebuffer, painting each frame and its statistics.
#include "rendering/Viewport.h"

#include "rendering/CameraAnimation.h"
#include "rendering/QtMessagePrinter.h"
#include "rendering/SpaceMouse.h"
#include "rendering/ViewportLog.h"

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QSettings>

#include <Aspect_DisplayConnection.hxx>
#include <Aspect_Grid.hxx>
#include <OpenGl_Context.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <Standard_Failure.hxx>
#include <V3d_AmbientLight.hxx>
#include <V3d_DirectionalLight.hxx>

#include <GL/glx.h>

#include <exception>
#include <typeinfo>

namespace cad::rendering {

namespace {

Quantity_Color rgb(int r, int g, int b) {
    return Quantity_Color(r / 255.0, g / 255.0, b / 255.0, Quantity_TOC_sRGB);
}

// Qt's own X11 connection, so OpenCASCADE and Qt talk to the same display.
Handle(Aspect_DisplayConnection) qtDisplayConnection() {
    if (auto* x11 =
            qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr)
        if (Display* display = x11->display())
            return new Aspect_DisplayConnection(reinterpret_cast<Aspect_XDisplay*>(display));
    return Handle(Aspect_DisplayConnection)();
}

void setHighlight(const Handle(AIS_InteractiveContext) & context, Prs3d_TypeOfHighlight type,
                  const Quantity_Color& colour, std::optional<float> shadedTransparency) {
    const Handle(Prs3d_Drawer)& style = context->HighlightStyle(type);
    style->SetColor(colour);
    if (shadedTransparency) {
        style->SetDisplayMode(AIS_Shaded);
        style->SetTransparency(*shadedTransparency);
    }
}

} // namespace

bool Viewport::Statistics::add(double milliseconds) {
    sum += milliseconds;
    worst = std::max(worst, milliseconds);
    if (++count < 60) return false;
    return true;
}

Viewport::Viewport(QWidget* parent) : QOpenGLWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setUpdateBehavior(QOpenGLWidget::NoPartialUpdate);
    setMouseTracking(true);
    setMinimumSize(200, 200);
    connect(this, &QOpenGLWidget::frameSwapped, this, &Viewport::onFrameSwapped);

    QtMessagePrinter::installOnce();

    displayConnection_ = qtDisplayConnection();
    driver_ = new OpenGl_GraphicDriver(displayConnection_, false);
    driver_->ChangeOptions().buffersNoSwap = true;
    driver_->ChangeOptions().buffersOpaqueAlpha = true;
    driver_->ChangeOptions().sRGBDisable = true;
    viewer_ = new V3d_Viewer(driver_);

    Handle(V3d_AmbientLight) ambient =
        new V3d_AmbientLight(Quantity_Color(0.27, 0.28, 0.31, Quantity_TOC_sRGB));
    Handle(V3d_DirectionalLight) key = new V3d_DirectionalLight(
        gp_Dir(0.45, -0.55, -1.0), Quantity_Color(Quantity_NOC_WHITE), true);
    key->SetIntensity(1.05f);
    Handle(V3d_DirectionalLight) fill = new V3d_DirectionalLight(
        gp_Dir(-0.6, 0.25, -1.0), Quantity_Color(Quantity_NOC_WHITE), true);
    fill->SetIntensity(0.38f);
    for (const Handle(V3d_Light) & light :
         {Handle(V3d_Light)(ambient), Handle(V3d_Light)(key), Handle(V3d_Light)(fill)}) {
        viewer_->AddLight(light);
        viewer_->SetLightOn(light);
    }

    context_ = new AIS_InteractiveContext(viewer_);
    context_->SetDisplayMode(AIS_Shaded, false);
    context_->SetPixelTolerance(4);
    const Handle(Prs3d_Drawer)& drawer = context_->DefaultDrawer();
    drawer->SetFaceBoundaryDraw(true);
    drawer->SetFaceBoundaryAspect(new Prs3d_LineAspect(rgb(30, 27, 24), Aspect_TOL_SOLID, 1.0));
    const Quantity_Color hover = rgb(150, 186, 226);
    const Quantity_Color selected = rgb(72, 134, 210);
    setHighlight(context_, Prs3d_TypeOfHighlight_Dynamic, hover, std::nullopt);
    setHighlight(context_, Prs3d_TypeOfHighlight_LocalDynamic, hover, 0.55f);
    setHighlight(context_, Prs3d_TypeOfHighlight_Selected, selected, std::nullopt);
    setHighlight(context_, Prs3d_TypeOfHighlight_LocalSelected, selected, 0.35f);

    view_ = viewer_->CreateView();
    view_->SetImmediateUpdate(false);
    view_->View()->SetImmediateModeDrawToFront(false);
    view_->SetBgGradientColors(rgb(16, 14, 13), rgb(50, 45, 40), Aspect_GradientFillMethod_Vertical,
                               false);
    view_->SetProj(V3d_XposYnegZpos);
    Graphic3d_RenderingParams& params = view_->ChangeRenderingParams();
    params.NbMsaaSamples = 4;
    params.IsAntialiasingEnabled = true;

    // Only the middle button drags (pan); orbit is ours, left clicks select.
    ChangeMouseGestureMap().Clear();
    ChangeMouseGestureMap().Bind(Aspect_VKeyMouse_MiddleButton, AIS_MouseGesture_Pan);
    animation_ = new CameraAnimation(view_);
    SetViewAnimation(animation_);

    cube_ = new NavigationCube();
    cube_->SetBoxColor(rgb(58, 52, 46));
    cube_->SetTextColor(rgb(241, 238, 230));
    cube_->setClickHandler(
        [this](V3d_TypeOfOrientation orientation) { setStandardView(orientation, true); });

    front_ = gp_Mat(gp_XYZ(1, 0, 0), gp_XYZ(0, 1, 0), gp_XYZ(0, 0, 1));
    loadSettings();

    spaceMouse_ = new SpaceMouse(this);
    connect(spaceMouse_, &SpaceMouse::motion, this, &Viewport::applySpaceMotion);
    connect(spaceMouse_, &SpaceMouse::fitRequested, this, &Viewport::fitAllAnimated);
    connect(spaceMouse_, &SpaceMouse::homeRequested, this, [this] { goHome(true); });
}

Viewport::~Viewport() {
    if (QOpenGLContext* glContext = QOpenGLWidget::context())
        disconnect(glContext, nullptr, this, nullptr);
    makeCurrent();
    releaseGl();
    context_->RemoveAll(false);
    view_->Remove();
    doneCurrent();
}

const Handle(AIS_InteractiveContext) & Viewport::context() const { return context_; }
const Handle(V3d_View) & Viewport::view() const { return view_; }
bool Viewport::isReady() const { return ready_; }

int Viewport::cubeCornerSize() const { return qRound(80 * devicePixelRatioF()); }

void Viewport::requestRedraw() {
    needsInvalidate_ = true;
    update();
}

void Viewport::initializeGL() {
    if (QOpenGLContext* glContext = QOpenGLWidget::context())
        connect(glContext, &QOpenGLContext::aboutToBeDestroyed, this, &Viewport::releaseGl,
                Qt::UniqueConnection);
    if (!bindWindow()) {
        glFailed_ = true;
        return;
    }
    ready_ = true;
    cube_->placeInCorner(cubeCornerSize());
    context_->Display(cube_, 0, 0, false);
    orientCube();
    // A later context (the widget moved to another window) keeps the user's camera.
    if (!everBound_) goHome(false);
    everBound_ = true;
    int width = 0, height = 0;
    window_->Size(width, height);
    qCDebug(viewportLog, "view attached to Qt OpenGL context %dx%d", width, height);
}

bool Viewport::bindWindow() {
    const double ratio = devicePixelRatioF();
    const Graphic3d_Vec2i size(qRound(width() * ratio), qRound(height() * ratio));

    Handle(OpenGl_Context) glContext = new OpenGl_Context();
    if (!glContext->Init(false)) {
        qCCritical(viewportLog, "OCCT could not wrap Qt's OpenGL context");
        return false;
    }
    // The top-level window's handle: the widget's own X window would black out the
    // rest of the window, and Qt's offscreen surface is refused.
    const Aspect_Drawable handle = static_cast<Aspect_Drawable>(window()->winId());
    if (window_.IsNull()) {
        window_ = new Aspect_NeutralWindow();
        window_->SetVirtual(true);
    }
    window_->SetNativeHandle(handle);
    window_->SetSize(size.x(), size.y());
    view_->SetWindow(window_, glContext->RenderingContext());
    boundHandle_ = handle;
    return true;
}

void Viewport::releaseGl() {
    if (!frameBuffer_.IsNull()) {
        if (Handle(OpenGl_Context) glContext = driver_->GetSharedContext(); !glContext.IsNull())
            frameBuffer_->Release(glContext.get());
        frameBuffer_.Nullify();
    }
    ready_ = false;
}

void Viewport::paintGL() {
    if (!ready_) {
        // Qt made a new context (e.g. the widget moved to another window): bind again.
        if (glFailed_ || !bindWindow()) return;
        ready_ = true;
    }
    paintTimer_.start();
    if (static_cast<Aspect_Drawable>(window()->winId()) != boundHandle_) {
        qCWarning(viewportLog, "native window changed; re-initialising the OCCT view");
        if (!bindWindow()) return;
    }

    const Handle(OpenGl_Context)& glContext = driver_->GetSharedContext();
    if (frameBuffer_.IsNull()) frameBuffer_ = new QtFrameBuffer();
    if (glContext.IsNull() || !frameBuffer_->InitWrapper(glContext)) {
        qCCritical(viewportLog, "could not wrap Qt's framebuffer");
        return;
    }
    glContext->SetDefaultFrameBuffer(frameBuffer_);

    try {
        const Graphic3d_Vec2i size = frameBuffer_->GetVPSize();
        int width = 0, height = 0;
        window_->Size(width, height);
        if (size != Graphic3d_Vec2i(width, height)) {
            window_->SetSize(size.x(), size.y());
            view_->MustBeResized();
            view_->Invalidate();
        }
        if (needsInvalidate_) {
            view_->Invalidate();
            needsInvalidate_ = false;
        }
        if (repairCamera()) view_->Invalidate();
        view_->InvalidateImmediate();
        FlushViewEvents(context_, view_, true);
    } catch (const Standard_Failure& failure) {
        qCWarning(viewportLog, "OCCT error while rendering (recovered): %s %s",
                  failure.DynamicType()->Name(), failure.GetMessageString());
        repairCamera();
        return;
    } catch (const std::exception& error) {
        qCWarning(viewportLog, "OCCT error while rendering (recovered): %s %s",
                  typeid(error).name(), error.what());
        repairCamera();
        return;
    }
    firstFrameDone_ = true;

    if (paintTime_.add(static_cast<double>(paintTimer_.nsecsElapsed()) / 1e6)) {
        if (viewportLog().isDebugEnabled())
            qCDebug(viewportLog, "frames: 60, avg %.2f ms, worst %.2f ms (paintGL CPU time)",
                    paintTime_.sum / 60.0, paintTime_.worst);
        paintTime_ = {};
    }
}

void Viewport::handleViewRedraw(const Handle(AIS_InteractiveContext) & context,
                                const Handle(V3d_View) & view) {
    AIS_ViewController::handleViewRedraw(context, view);
    if (toAskNextFrame()) update();
}

bool Viewport::repairCamera() {
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    const std::optional<gp_Dir> up = camera::repairedUp(camera->Direction(), camera->Up());
    if (!up) return false;
    camera->SetUp(*up);
    qCDebug(viewportLog, "repaired degenerate camera up vector");
    return true;
}

void Viewport::markInput() {
    if (!inputTimer_.isValid()) inputTimer_.start();
}

void Viewport::onFrameSwapped() {
    if (firstFrameDone_ && !firstFrameSignalled_) {
        firstFrameSignalled_ = true;
        emit firstFramePainted();
    }
    if (!inputTimer_.isValid()) return;
    const double elapsed = static_cast<double>(inputTimer_.nsecsElapsed()) / 1e6;
    inputTimer_.invalidate();
    if (latency_.add(elapsed)) {
        if (viewportLog().isDebugEnabled())
            qCDebug(viewportLog,
                    "latency: 60 frames, avg %.2f ms, worst %.2f ms (input -> presented)",
                    latency_.sum / 60.0, latency_.worst);
        latency_ = {};
    }
}

void Viewport::showGrid(const gp_Ax3& plane, double step, double extent) {
    viewer_->SetPrivilegedPlane(plane);
    viewer_->SetRectangularGridValues(0.0, 0.0, step, step, 0.0);
    viewer_->SetRectangularGridGraphicValues(extent, extent, 0.0);
    viewer_->ActivateGrid(Aspect_GT_Rectangular, Aspect_GDM_Lines);
    viewer_->Grid()->SetColors(rgb(78, 70, 62), rgb(52, 47, 42));
    requestRedraw();
}

void Viewport::hideGrid() {
    viewer_->DeactivateGrid();
    requestRedraw();
}

} // namespace cad::rendering

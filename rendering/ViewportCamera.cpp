// The 3D view's camera conventions: home, the user's front, standard views, nudges,
// fits, projection, animated transitions, facing a sketch plane and unprojection.
#include "rendering/Viewport.h"

#include "rendering/ViewportLog.h"

#include <QSettings>

#include <Bnd_Box.hxx>
#include <gp_Quaternion.hxx>

#include <algorithm>

namespace cad::rendering {

namespace {

constexpr double fitMargin = 0.1;
constexpr double homeSeconds = 0.35;
constexpr double nudgeSeconds = 0.3;
constexpr double standardViewSeconds = 0.35;

QVariantList toVariantList(const std::vector<double>& values) {
    QVariantList list;
    for (double value : values) list.append(value);
    return list;
}

} // namespace

template <typename Edit> Handle(Graphic3d_Camera) Viewport::editedCamera(Edit edit) {
    Handle(Graphic3d_Camera) current = view_->Camera();
    Handle(Graphic3d_Camera) edited = new Graphic3d_Camera();
    edited->Copy(current);
    // The view's helpers (SetProj, FitAll) work on its own camera: lend it the copy.
    const bool immediate = view_->SetImmediateUpdate(false);
    view_->SetCamera(edited);
    edit();
    view_->SetCamera(current);
    view_->SetImmediateUpdate(immediate);
    return edited;
}

void Viewport::transitionTo(const Handle(Graphic3d_Camera) & end, double seconds) {
    AbortViewAnimation();
    if (seconds <= 0 || !ready_) {
        view_->Camera()->Copy(end);
        requestRedraw();
        return;
    }
    Handle(Graphic3d_Camera) start = new Graphic3d_Camera();
    start->Copy(view_->Camera());
    animation_->SetView(view_);
    animation_->SetCameraStart(start);
    animation_->SetCameraEnd(end);
    animation_->SetOwnDuration(seconds);
    animation_->StartTimer(0.0, 1.0, true, false);
    markInput();
    requestRedraw();
}

camera::Pose Viewport::currentPose() const {
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    return {camera->Direction(), camera::orthogonalUp(camera->Direction(), camera->Up())};
}

camera::Pose Viewport::standardPose(V3d_TypeOfOrientation orientation) {
    camera::Pose pose = camera::defaultFront();
    editedCamera([&] {
        view_->SetProj(orientation);
        pose = currentPose();
    });
    return camera::rotated(pose, front_);
}

void Viewport::applyPose(const Handle(Graphic3d_Camera) & camera, const camera::Pose& pose) {
    camera->SetDirection(pose.direction);
    camera->SetUp(camera::orthogonalUp(pose.direction, pose.up));
}

gp_Pnt Viewport::displayedCentre() const {
    const Bnd_Box box = view_->View()->MinMaxValues();
    if (box.IsVoid()) return view_->Camera()->Center();
    double xMin, yMin, zMin, xMax, yMax, zMax;
    box.Get(xMin, yMin, zMin, xMax, yMax, zMax);
    return gp_Pnt((xMin + xMax) / 2, (yMin + yMax) / 2, (zMin + zMax) / 2);
}

void Viewport::loadSettings() {
    QSettings settings;
    front_ = gp_Mat(gp_XYZ(1, 0, 0), gp_XYZ(0, 1, 0), gp_XYZ(0, 0, 1));
    if (auto numbers = camera::numbersOf(settings.value("view/front")))
        if (auto front = camera::frontFromValues(*numbers)) front_ = *front;
    view_->Camera()->SetProjectionType(settings.value("view/perspective", false).toBool()
                                           ? Graphic3d_Camera::Projection_Perspective
                                           : Graphic3d_Camera::Projection_Orthographic);
}

void Viewport::orientCube() {
    gp_Trsf rotation;
    rotation.SetRotation(gp_Quaternion(front_));
    cube_->SetLocalTransformation(rotation);
    if (ready_) context_->Redisplay(cube_, false);
    requestRedraw();
}

void Viewport::fitAll() {
    AbortViewAnimation();
    view_->FitAll(fitMargin, false);
    requestRedraw();
}

void Viewport::fitAllAnimated() {
    transitionTo(editedCamera([&] { view_->FitAll(fitMargin, false); }), standardViewSeconds);
}

void Viewport::goHome(bool animate) {
    camera::Pose pose = standardPose(V3d_XposYnegZpos);
    if (auto numbers = camera::numbersOf(QSettings().value("view/home")))
        if (auto home = camera::homeFromValues(*numbers)) pose = *home;
    const Handle(Graphic3d_Camera) end = editedCamera([&] {
        applyPose(view_->Camera(), pose);
        view_->FitAll(fitMargin, false);
    });
    transitionTo(end, animate ? homeSeconds : 0.0);
}

void Viewport::setStandardView(V3d_TypeOfOrientation orientation, bool animate) {
    const camera::Pose pose = standardPose(orientation);
    const Handle(Graphic3d_Camera) end = editedCamera([&] {
        applyPose(view_->Camera(), pose);
        view_->FitAll(fitMargin, false);
    });
    transitionTo(end, animate ? standardViewSeconds : 0.0);
}

void Viewport::nudgeView(int step) {
    if (step < 0 || step > 5) return;
    const camera::Pose pose = camera::nudged(currentPose(), step);
    Handle(Graphic3d_Camera) end = new Graphic3d_Camera();
    end->Copy(view_->Camera());
    applyPose(end, pose);
    transitionTo(end, nudgeSeconds);
}

void Viewport::setPerspective(bool perspective) {
    view_->Camera()->SetProjectionType(perspective ? Graphic3d_Camera::Projection_Perspective
                                                   : Graphic3d_Camera::Projection_Orthographic);
    QSettings().setValue("view/perspective", perspective);
    requestRedraw();
}

bool Viewport::isPerspective() const {
    return view_->Camera()->ProjectionType() == Graphic3d_Camera::Projection_Perspective;
}

void Viewport::setHomeFromCurrent() {
    QSettings().setValue("view/home", toVariantList(camera::homeValues(currentPose())));
    emit toastRequested(QStringLiteral("Home is this view"));
}

void Viewport::resetHome() { QSettings().remove("view/home"); }

void Viewport::setFrontFromCurrent() {
    front_ = camera::rotationFromDefaultFront(camera::snappedToAxes(currentPose()));
    QSettings().setValue("view/front", toVariantList(camera::frontValues(front_)));
    orientCube();
    emit toastRequested(QStringLiteral("Front is this view"));
}

void Viewport::resetFront() {
    QSettings().remove("view/front");
    front_ = gp_Mat(gp_XYZ(1, 0, 0), gp_XYZ(0, 1, 0), gp_XYZ(0, 0, 1));
    orientCube();
}

void Viewport::lookAtPlane(const gp_Ax3& plane, double contentSize) {
    AbortViewAnimation();
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    const gp_Pnt centre = plane.Location();
    const gp_Vec normal(plane.Direction());
    const double distance = std::max(camera->Distance(), 1.0);
    camera->SetEyeAndCenter(centre.Translated(normal * distance), centre);
    camera->SetUp(camera::orthogonalUp(plane.Direction().Reversed(), plane.YDirection()));
    camera->SetScale(std::max(1.4 * contentSize, 0.001));
    requestRedraw();
}

gp_Lin Viewport::pickRay(QPointF point) const {
    const Handle(Graphic3d_Camera)& camera = view_->Camera();
    const double w = std::max(width(), 1);
    const double h = std::max(height(), 1);
    const double x = 2.0 * point.x() / w - 1.0;
    const double y = 1.0 - 2.0 * point.y() / h;
    const gp_Pnt nearPoint = camera->UnProject(gp_Pnt(x, y, -1.0));
    const gp_Pnt farPoint = camera->UnProject(gp_Pnt(x, y, 1.0));
    if (nearPoint.Distance(farPoint) < 1e-12) return gp_Lin(nearPoint, camera->Direction());
    return gp_Lin(nearPoint, gp_Dir(gp_Vec(nearPoint, farPoint)));
}

std::optional<gp_Pnt> Viewport::unprojectToPlane(QPointF point, const gp_Pln& plane) const {
    return camera::intersect(pickRay(point), plane);
}

} // namespace cad::rendering

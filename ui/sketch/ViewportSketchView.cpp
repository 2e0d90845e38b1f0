// Projection between the sketch plane and the viewport's pixels through the
// OpenCASCADE camera (normalised device coordinates to logical widget pixels).
#include "ui/sketch/ViewportSketchView.h"

#include "rendering/Viewport.h"

#include <gp_Ax3.hxx>
#include <gp_Dir.hxx>
#include <gp_Pln.hxx>

#include <algorithm>

namespace cad::ui {

namespace {

gp_Pnt point(const Vec3& v) { return {v[0], v[1], v[2]}; }
gp_Vec vector(const Vec3& v) { return {v[0], v[1], v[2]}; }

} // namespace

ViewportSketchView::ViewportSketchView(rendering::Viewport& viewport) : viewport_(viewport) {
    // Repainting the see-through overlay makes the view draw a frame too, so only a
    // frame that moved the plane on screen repaints it: anything else would never end.
    frames_ = QObject::connect(&viewport, &QOpenGLWidget::frameSwapped, [this] {
        const std::array<QPointF, 3> now{toScreen({0, 0}), toScreen({1, 0}), toScreen({0, 1})};
        if (now == shown_) return;
        shown_ = now;
        repaintOverlay();
    });
}

ViewportSketchView::~ViewportSketchView() { QObject::disconnect(frames_); }

QPointF ViewportSketchView::toScreen(Point2 p) const {
    const gp_Pnt model =
        point(plane_.origin)
            .Translated(vector(plane_.xDirection) * p.x + vector(plane_.yDirection()) * p.y);
    const Handle(V3d_View)& view = viewport_.view();
    if (view.IsNull()) return {};
    const gp_Pnt ndc = view->Camera()->Project(model);
    const double w = std::max(viewport_.width(), 1);
    const double h = std::max(viewport_.height(), 1);
    return {(ndc.X() + 1.0) * 0.5 * w, (1.0 - ndc.Y()) * 0.5 * h};
}

std::optional<Point2> ViewportSketchView::toSketch(QPointF pixel) const {
    if (viewport_.view().IsNull()) return std::nullopt;
    const gp_Pln plane(gp_Ax3(point(plane_.origin), gp_Dir(vector(plane_.normal)),
                              gp_Dir(vector(plane_.xDirection))));
    const std::optional<gp_Pnt> hit = viewport_.unprojectToPlane(pixel, plane);
    if (!hit) return std::nullopt;
    const gp_Vec offset(point(plane_.origin), *hit);
    return Point2{offset.Dot(vector(plane_.xDirection)), offset.Dot(vector(plane_.yDirection()))};
}

} // namespace cad::ui

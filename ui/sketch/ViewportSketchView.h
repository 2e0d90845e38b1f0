// The sketch session's view of the 3D viewport: sketch points projected through the
// camera, pixels brought back onto the sketch plane, and the overlay repainted when a
// new frame shows the plane elsewhere (the camera moved).
#pragma once

#include "ui/sketch/SketchView.h"

#include <QMetaObject>

#include <array>

namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

class ViewportSketchView : public SketchView {
public:
    explicit ViewportSketchView(rendering::Viewport& viewport);
    ~ViewportSketchView() override;
    ViewportSketchView(const ViewportSketchView&) = delete;
    ViewportSketchView& operator=(const ViewportSketchView&) = delete;

    QPointF toScreen(Point2 p) const override;
    std::optional<Point2> toSketch(QPointF pixel) const override;
    void update() override { repaintOverlay(); }
    void setPlane(const PlaneFrame& plane) override { plane_ = plane; }

private:
    rendering::Viewport& viewport_;
    PlaneFrame plane_;
    QMetaObject::Connection frames_;
    std::array<QPointF, 3> shown_; // where the plane's origin and axis ends were drawn
};

} // namespace cad::ui

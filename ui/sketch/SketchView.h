// How the sketch session sees the screen: sketch-plane points to widget pixels and
// back. The 3D view implements it through its camera; a flat, scaled view serves tests.
#pragma once

#include "core/OriginPlanes.h"
#include "sketch/SketchEntity.h"

#include <QPointF>
#include <QPointer>
#include <QWidget>

#include <optional>

namespace cad::ui {

class SketchView {
public:
    virtual ~SketchView() = default;
    // Widget logical pixels of a sketch point.
    virtual QPointF toScreen(Point2 p) const = 0;
    // The sketch point under a pixel; none when the eye ray misses the plane.
    virtual std::optional<Point2> toSketch(QPointF pixel) const = 0;
    // The overlay must repaint.
    virtual void update() = 0;
    // The plane the sketch lies on; a view that shows no space ignores it.
    virtual void setPlane(const PlaneFrame& /*plane*/) {}

    // The widget the session draws on, repainted by update().
    void setOverlay(QWidget* overlay) { overlay_ = overlay; }

protected:
    void repaintOverlay() {
        if (overlay_) overlay_->update();
    }

private:
    QPointer<QWidget> overlay_;
};

// The sketch seen straight on: sketch (x, y) at origin + scale · (x, −y) pixels, so
// sketch y points up the screen.
class AffineSketchView : public SketchView {
public:
    explicit AffineSketchView(QPointF origin = {}, double pixelsPerMillimeter = 1)
        : origin_(origin), scale_(pixelsPerMillimeter) {}

    QPointF toScreen(Point2 p) const override {
        return {origin_.x() + p.x * scale_, origin_.y() - p.y * scale_};
    }
    std::optional<Point2> toSketch(QPointF pixel) const override {
        return Point2{(pixel.x() - origin_.x()) / scale_, (origin_.y() - pixel.y()) / scale_};
    }
    void update() override {
        ++updates_;
        repaintOverlay();
    }

    int updates() const { return updates_; }

private:
    QPointF origin_;
    double scale_;
    int updates_ = 0;
};

} // namespace cad::ui

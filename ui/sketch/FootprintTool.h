// The view's tool while a footprint waits to be placed by a click: the click's
// sketch point goes to the panel, Esc gives the view back. Navigation keeps working.
#pragma once

#include "rendering/ViewportTool.h"
#include "sketch/SketchEntity.h"

#include <functional>
#include <optional>

namespace cad::ui {

class FootprintTool : public rendering::ViewportTool {
public:
    // The sketch point under a pixel (none when the eye ray misses the plane).
    using ToSketch = std::function<std::optional<Point2>(QPointF pixel)>;

    FootprintTool(ToSketch toSketch, std::function<void(Point2)> placed,
                  std::function<void()> cancelled)
        : toSketch_(std::move(toSketch)), placed_(std::move(placed)),
          cancelled_(std::move(cancelled)) {}

    bool mousePress(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void mouseMove(QPointF, Qt::KeyboardModifiers) override {}
    void leave() override {}
    bool keyPress(QKeyEvent* event) override;

    // Where a click at that pixel puts the reference point: the sketch point rounded
    // to hundredths of a millimetre, so the command reads as typed values do.
    std::optional<Point2> pointAt(QPointF pixel) const;

private:
    ToSketch toSketch_;
    std::function<void(Point2)> placed_;
    std::function<void()> cancelled_;
};

} // namespace cad::ui

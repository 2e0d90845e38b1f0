// The transparent layer the sketch session draws on: it covers its parent (the view),
// lets every mouse event through, never takes the focus, and paints with QPainter
// through a function the session gives it.
#pragma once

#include <QWidget>

#include <functional>

class QPainter;

namespace cad::ui {

class SketchOverlay : public QWidget {
public:
    SketchOverlay(QWidget* parent, std::function<void(QPainter&)> paint);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void(QPainter&)> paint_;
};

} // namespace cad::ui

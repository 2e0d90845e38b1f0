// What the 3D view asks of the tool that is active in it (sketching, picking,
// measuring): the view hands it presses, moves and keys before navigating.
// Positions are widget coordinates in logical pixels.
#pragma once

#include <QPointF>
#include <Qt>

class QKeyEvent;

namespace cad::rendering {

class ViewportTool {
public:
    virtual ~ViewportTool() = default;
    // True when the tool consumed the press (the view then does not navigate).
    virtual bool mousePress(QPointF position, Qt::KeyboardModifiers modifiers) = 0;
    virtual void mouseMove(QPointF position, Qt::KeyboardModifiers modifiers) = 0;
    virtual void mouseRelease(QPointF /*position*/, Qt::KeyboardModifiers /*modifiers*/) {}
    virtual void mouseDoubleClick(QPointF /*position*/, Qt::KeyboardModifiers /*modifiers*/) {}
    // The pointer left the view.
    virtual void leave() = 0;
    virtual bool keyPress(QKeyEvent* /*event*/) { return false; }
};

} // namespace cad::rendering

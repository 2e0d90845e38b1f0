// A tool button that stands for several variants of one tool (Rectangle and Center
// Rectangle, say): a drop-down lists them and the last one used becomes its face.
#pragma once

#include <QToolButton>

class QAction;

namespace cad::ui {

class ToolMenuButton : public QToolButton {
    Q_OBJECT
public:
    // The width of the drop-down part, beside the face.
    static constexpr int kMenuPartWidth = 12;

    // holder carries a menu whose actions are the variants; the face it shows is
    // remembered on the holder, so a rebuilt button keeps it.
    explicit ToolMenuButton(QAction* holder, QWidget* parent = nullptr);

    QAction* holder() const { return holder_; }
    // The variant on the button's face.
    QAction* face() const { return defaultAction(); }

protected:
    // The theme hides Qt's menu arrow; a small caret marks the drop-down part instead.
    void paintEvent(QPaintEvent* event) override;

private:
    void showVariant(QAction* variant);

    QAction* holder_;
};

} // namespace cad::ui

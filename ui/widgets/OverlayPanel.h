// A titled card that floats over the 3D view (browser, command log, tool panels):
// icon, title, a collapse button and the content below.
#pragma once

#include <QFrame>
#include <QString>

class QHBoxLayout;
class QLabel;
class QToolButton;

namespace cad::ui {

// Paints a floating card's glass and border over the 3D view's picture: the look
// of every panel and form that floats over the view.
void paintGlassCard(QWidget& card);

class OverlayPanel : public QFrame {
    Q_OBJECT
public:
    // The panel takes ownership of content.
    OverlayPanel(const QString& iconName, const QString& title, QWidget* content,
                 QWidget* parent = nullptr);

    QWidget* content() const { return content_; }
    QLabel* titleLabel() const { return title_; }
    QToolButton* collapseButton() const { return collapse_; }
    // Puts an extra button (a close button, say) in the header, left of the collapse button.
    void addHeaderButton(QToolButton* button);

    bool isCollapsed() const { return collapsed_; }
    void setCollapsed(bool collapsed);

signals:
    void collapsedChanged(bool collapsed);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* content_;
    QLabel* title_;
    QToolButton* collapse_;
    QHBoxLayout* header_;
    bool collapsed_ = false;
};

} // namespace cad::ui

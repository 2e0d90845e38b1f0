// A row of tool groups in the top bar, separated by thin dividers; groups that do
// not fit move, from the right, into the "More tools" overflow menu.
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QFrame;
class QHBoxLayout;
class QMenu;
class QToolButton;

namespace cad::ui {

class ToolGroup;

class ToolStrip : public QWidget {
    Q_OBJECT
public:
    explicit ToolStrip(const QString& objectName, QWidget* parent = nullptr);

    // Appends a group; the strip takes ownership.
    void addGroup(ToolGroup* group);
    QList<ToolGroup*> groups() const { return groups_; }
    ToolGroup* group(const QString& key) const;
    // The groups that did not fit and are reached through the overflow button.
    QList<ToolGroup*> overflowGroups() const;
    QToolButton* overflowButton() const { return overflow_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void relayout();
    void fillOverflowMenu();

    QHBoxLayout* layout_;
    QList<ToolGroup*> groups_;
    QList<QFrame*> dividers_; // dividers_[i] sits before groups_[i + 1]
    QToolButton* overflow_;
    QMenu* overflowMenu_;
    bool relaying_ = false;
};

} // namespace cad::ui

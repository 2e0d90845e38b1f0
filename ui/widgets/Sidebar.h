// The column on the left of the window: workspace buttons, links to help pages and
// the version; it collapses from labelled buttons to a narrow row of icons.
#pragma once

#include <QFrame>
#include <QList>
#include <QString>

#include <functional>

class QAction;
class QButtonGroup;
class QIcon;
class QPushButton;
class QVBoxLayout;

namespace cad::ui {

class Sidebar : public QFrame {
    Q_OBJECT
public:
    static constexpr int kExpandedWidth = 184;
    static constexpr int kCollapsedWidth = 48;

    // Reads "ui/sidebarExpanded" (expanded when absent).
    explicit Sidebar(QWidget* parent = nullptr);

    // A checkable workspace button, exclusive with the others, mirroring the action:
    // clicking triggers it, and triggering it (its shortcut) checks the button.
    QPushButton* addWorkspaceButton(QAction* action, const QString& objectName);
    // A link below the workspaces; onClick runs when it is clicked.
    QPushButton* addLinkButton(const QString& objectName, const QString& iconName,
                               const QString& label, std::function<void()> onClick);
    // The small version button at the bottom (tooltip "Check for Updates").
    QPushButton* setVersionButton(const QString& text, std::function<void()> onClick);

    QPushButton* toggleButton() const { return toggle_; }
    QPushButton* versionButton() const { return version_; }
    bool isExpanded() const { return expanded_; }
    // Changes the width and labels and remembers the state in "ui/sidebarExpanded".
    void setExpanded(bool expanded);

signals:
    void expandedChanged(bool expanded);

private:
    QPushButton* makeButton(const QString& objectName, const QIcon& icon, const QString& label);
    void applyExpanded();

    QVBoxLayout* workspaces_;
    QVBoxLayout* links_;
    QButtonGroup* workspaceGroup_;
    QList<QPushButton*> labelled_; // buttons whose label hides when collapsed
    QPushButton* toggle_;
    QPushButton* version_ = nullptr;
    bool expanded_ = true;
};

} // namespace cad::ui

// One titled group of tools in a tool strip (CREATE, MODIFY, ...): a title button
// with a menu of every action, and a row of buttons for the pinned or the last used.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class QAction;
class QActionGroup;
class QHBoxLayout;
class QMenu;
class QToolButton;

namespace cad::ui {

// An action's key in the settings: its label without "&" and "...", trimmed.
QString actionKey(const QString& label);
QString actionKey(const QAction* action);

class ToolGroup : public QWidget {
    Q_OBJECT
public:
    static constexpr int kRecentCount = 4;

    // Settings live under "toolbar/" + key + "/" ("mode", "pinned", "used").
    // defaultPinned names actions by key (or label); null actions are left out.
    ToolGroup(const QString& key, const QString& title, const QList<QAction*>& allActions,
              const QStringList& defaultPinned, QWidget* parent = nullptr);

    QString key() const { return key_; }
    QString title() const { return title_; }
    QList<QAction*> allActions() const { return actions_; }
    // The actions that have buttons now, in the order shown.
    QList<QAction*> shownActions() const;
    QList<QToolButton*> buttons() const { return buttons_; }
    QToolButton* titleButton() const { return titleButton_; }
    QMenu* menu() const { return menu_; }

    bool recentMode() const { return recent_; }
    void setRecentMode(bool recent);
    QStringList pinnedKeys() const { return pinned_; }
    void setPinned(const QString& actionKey, bool pinned);
    QStringList usedKeys() const { return used_; }

    // Rebuilds the buttons now (normally this happens on the next event-loop turn).
    void rebuild();

signals:
    void rebuilt();

private:
    QAction* actionFor(const QString& key) const;
    void noteUsed(QAction* action);
    void save() const;
    void scheduleRebuild();
    void fillMenu();

    QString key_;
    QString title_;
    QList<QAction*> actions_;
    QStringList defaultPinned_;
    QStringList pinned_;
    QStringList used_;
    bool recent_ = false;
    bool rebuildPending_ = false;
    QToolButton* titleButton_;
    QMenu* menu_;
    QHBoxLayout* row_;
    QList<QToolButton*> buttons_;
};

} // namespace cad::ui

// The command palette: a popup with a search line over the window's enabled
// actions. Typing filters them by label, Up and Down choose, Enter runs the chosen
// action and closes, Esc closes.
#pragma once

#include <QAction>
#include <QFrame>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>

class QLineEdit;
class QListWidget;

namespace cad::ui {

// The labels' order for a query, as indexes into `labels`: labels that contain the
// query come first (earlier match first, then in the given order), then labels that
// hold the query's characters in order with others between them. Letter case is
// ignored; an empty query keeps every label in the given order.
QList<int> paletteMatches(const QStringList& labels, const QString& query);

class CommandPalette : public QFrame {
    Q_OBJECT
public:
    // The actions to offer, asked again each time the palette opens.
    using ActionSource = std::function<QList<QAction*>()>;

    explicit CommandPalette(ActionSource actions, QWidget* parent = nullptr);

    // Shows the palette near the top of the parent window with an empty search line.
    void open();

    QLineEdit* searchLine() const { return search_; }
    QListWidget* list() const { return list_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void filter(const QString& query);
    void runCurrent();

    ActionSource source_;
    QLineEdit* search_;
    QListWidget* list_;
    QList<QPointer<QAction>> actions_; // enabled actions when the palette opened
    QStringList labels_;               // their labels, without mnemonics
    QList<QPointer<QAction>> shown_;   // the action of each row of the list
};

} // namespace cad::ui

// The design history beside the view: the steps in build order with the roll
// marker among them; dragging the marker rolls the history back or forward,
// dragging a step moves it, and each step's menu edits, renames, suppresses,
// builds up to it or deletes it. The panel folds to a narrow strip.
#pragma once

#include "ui/panels/PanelHooks.h"

#include <QFrame>
#include <QHash>
#include <QSet>
#include <QTimer>

#include <cstdint>
#include <string>
#include <string_view>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QToolButton;

namespace cad {
class Document;
class DocumentObject;
}

namespace cad::ui {

class PendingChanges;

class HistoryList;

class HistoryPanel : public QFrame {
    Q_OBJECT
public:
    static constexpr int kExpandedWidth = 200;
    static constexpr int kCollapsedWidth = 40;

    // Observes the document until destroyed, so it must go before the document.
    // Reads "ui/historyExpanded" (expanded when absent).
    HistoryPanel(Document& document, PanelHooks hooks, QWidget* parent = nullptr);
    ~HistoryPanel() override;

    // Brings the list up to date at once; changes are otherwise gathered and applied
    // when control returns to the event loop.
    void refresh();

    QListWidget* list() const;
    QListWidgetItem* marker() const { return marker_; }
    QListWidgetItem* itemFor(std::string_view id) const;
    QToolButton* toggleButton() const { return toggle_; }
    QLabel* titleLabel() const { return title_; }

    bool isExpanded() const { return expanded_; }
    // Folds or unfolds the panel and remembers it in "ui/historyExpanded".
    void setExpanded(bool expanded);

    // The context menu of a row (null when the row has none); the caller owns it.
    QMenu* contextMenuFor(QListWidgetItem* item, QWidget* parent = nullptr);


signals:
    void expandedChanged(bool expanded);
    void editSketchRequested(const QString& id);
    void editFeatureRequested(const QString& id);

private:
    friend struct HistoryRows;

    void applyExpanded();
    QListWidgetItem* makeItem(std::uint64_t serial);
    void updateRow(QListWidgetItem* item, const DocumentObject& object, int state);
    // A row dropped before `row`: the marker rolls the history there, a step moves there.
    void dropped(std::uint64_t serial, int row);
    void rollBackTo(const std::string& step);
    void edit(const DocumentObject& object);
    // The ID of the history step after this one, empty when it is the last.
    std::string stepAfter(const DocumentObject& object) const;

    Document& document_;
    PanelHooks hooks_;
    QLabel* title_;
    QToolButton* toggle_;
    HistoryList* list_;
    QListWidgetItem* marker_;
    QHash<std::uint64_t, QListWidgetItem*> rows_; // by serial; the marker is 0
    // What the document changed since the last refresh, which runs once they stop.
    PendingChanges* changes_;
    bool expanded_ = true;
};

} // namespace cad::ui

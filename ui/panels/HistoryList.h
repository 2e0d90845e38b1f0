// The history's list and how its rows are drawn: steps in build order with the roll
// marker among them; a row dragged elsewhere is handed to the panel as "this row
// dropped before that one", and the panel turns that into a command.
#pragma once

#include "ui/panels/RenameDelegate.h"

#include <QListWidget>

#include <cstdint>
#include <functional>
#include <optional>

namespace cad::ui {

// How a step row is shown (bits of the row's kStateRole).
enum HistoryRowState { kRolledBack = 1, kSuppressed = 2, kFailed = 4 };
inline constexpr int kStateRole = Qt::UserRole + 3;

// Steps that are rolled back are italic and dim, suppressed ones struck through and
// dim, failing ones red; the roll marker (serial 0) is an accent bar with a grip.
class HistoryDelegate : public RenameDelegate {
public:
    using RenameDelegate::RenameDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

class HistoryList : public QListWidget {
public:
    // The serial of the dragged row (0 for the marker) and the row it was dropped
    // before (count() for the end).
    using DropHandler = std::function<void(std::uint64_t serial, int row)>;

    explicit HistoryList(QWidget* parent = nullptr);
    void setDropHandler(DropHandler handler) { drop_ = std::move(handler); }
    // The row a drop at this viewport point lands before.
    int dropRow(const QPoint& position) const;

protected:
    // The rows' usual data plus which list and row the drag comes from.
    QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QByteArray dragToken() const;
    // The serial of the dragged row when the drag comes from this list.
    std::optional<std::uint64_t> draggedSerial(const QMimeData* mime) const;

    DropHandler drop_;
};

} // namespace cad::ui

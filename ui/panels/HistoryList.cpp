// Drawing the history's rows and the marker, and dragging them: the list never
// reorders itself; the command a drop runs changes the document, and the panel
// shows the new order.
#include "ui/panels/HistoryList.h"

#include "ui/panels/ObjectRows.h"

#include <QCoreApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>

#include <optional>

namespace cad::ui {

namespace {

const QColor kAccent(0xd0, 0x80, 0x45);
constexpr int kMarkerHeight = 12;

bool isMarker(const QModelIndex& index) { return index.data(kSerialRole).toULongLong() == 0; }

// A drag names this list (process and list) and the dragged row's serial, so a
// drop from another list or another running copy of the program is refused.
const QString kRowFormat = QStringLiteral("application/x-korvel-history-row");

} // namespace

QByteArray HistoryList::dragToken() const {
    return QByteArray::number(QCoreApplication::applicationPid()) + ':' +
           QByteArray::number(reinterpret_cast<quintptr>(this));
}

std::optional<std::uint64_t> HistoryList::draggedSerial(const QMimeData* mime) const {
    if (!mime || !mime->hasFormat(kRowFormat)) return std::nullopt;
    const QList<QByteArray> parts = mime->data(kRowFormat).split(' ');
    bool ok = false;
    const std::uint64_t serial = parts.size() == 2 ? parts[1].toULongLong(&ok) : 0;
    if (!ok || parts[0] != dragToken()) return std::nullopt;
    return serial;
}

QMimeData* HistoryList::mimeData(const QList<QListWidgetItem*>& items) const {
    QMimeData* mime = QListWidget::mimeData(items);
    if (mime && items.size() == 1)
        mime->setData(kRowFormat,
                      dragToken() + ' ' +
                          QByteArray::number(items[0]->data(kSerialRole).toULongLong()));
    return mime;
}

void HistoryDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    if (isMarker(index)) {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRect rect = option.rect;
        const int y = rect.center().y();
        painter->setPen(QPen(kAccent, 2.0));
        painter->drawLine(rect.left() + 12, y, rect.right() - 4, y);
        painter->setPen(Qt::NoPen);
        painter->setBrush(kAccent);
        painter->drawEllipse(QPointF(rect.left() + 7.0, y + 0.5), 4.0, 4.0);
        painter->restore();
        return;
    }
    QStyleOptionViewItem styled(option);
    const int state = index.data(kStateRole).toInt();
    if (state & (kRolledBack | kSuppressed)) styled.palette.setColor(QPalette::Text, kDimColour);
    if (state & kRolledBack) styled.font.setItalic(true);
    if (state & kSuppressed) styled.font.setStrikeOut(true);
    if (state & kFailed) styled.palette.setColor(QPalette::Text, kProblemColour);
    RenameDelegate::paint(painter, styled, index);
}

QSize HistoryDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    if (isMarker(index)) return {option.rect.width(), kMarkerHeight};
    return RenameDelegate::sizeHint(option, index);
}

HistoryList::HistoryList(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
}

int HistoryList::dropRow(const QPoint& position) const {
    const QModelIndex index = indexAt(position);
    if (!index.isValid()) return count();
    return index.row() + (position.y() >= visualRect(index).center().y() ? 1 : 0);
}

void HistoryList::startDrag(Qt::DropActions /*supportedActions*/) {
    const QModelIndexList indexes = selectedIndexes();
    if (indexes.isEmpty()) return;
    QMimeData* mime = model()->mimeData(indexes);
    if (!mime) return;
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    const QRect rect = visualRect(indexes.first());
    drag->setPixmap(viewport()->grab(rect));
    drag->setHotSpot(viewport()->mapFromGlobal(QCursor::pos()) - rect.topLeft());
    // Whatever the drop does, the rows follow the document, not the drag.
    drag->exec(Qt::MoveAction);
}

void HistoryList::dragEnterEvent(QDragEnterEvent* event) {
    if (!draggedSerial(event->mimeData())) {
        event->ignore();
        return;
    }
    QListWidget::dragEnterEvent(event); // dragging state and scrolling
    event->setDropAction(Qt::MoveAction);
    event->accept();
}

void HistoryList::dragMoveEvent(QDragMoveEvent* event) {
    if (!draggedSerial(event->mimeData())) {
        event->ignore();
        return;
    }
    QListWidget::dragMoveEvent(event); // the drop indicator
    event->setDropAction(Qt::MoveAction);
    event->accept();
}

void HistoryList::dropEvent(QDropEvent* event) {
    const std::optional<std::uint64_t> serial = draggedSerial(event->mimeData());
    stopAutoScroll();
    setState(QAbstractItemView::NoState);
    viewport()->update();
    if (!serial) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    if (drop_) drop_(*serial, dropRow(event->position().toPoint()));
}

} // namespace cad::ui

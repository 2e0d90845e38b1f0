// Finding an action by typing: the matching rule, the popup and its keys.
#include "ui/panels/CommandPalette.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>

namespace cad::ui {

namespace {

constexpr int kWidth = 460;
constexpr int kVisibleRows = 10;

// "&Save As..." reads "Save As..."; "&&" stays one ampersand.
QString plainLabel(QString text) {
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1Char('\x01'), QLatin1Char('&'));
    return text;
}

bool isSubsequence(const QString& query, const QString& label) {
    qsizetype at = 0;
    for (const QChar c : query) {
        at = label.indexOf(c, at, Qt::CaseInsensitive);
        if (at < 0) return false;
        ++at;
    }
    return true;
}

} // namespace

QList<int> paletteMatches(const QStringList& labels, const QString& query) {
    const QString wanted = query.trimmed();
    QList<std::pair<qsizetype, int>> containing; // (where the match starts, index)
    QList<int> scattered;
    for (int i = 0; i < labels.size(); ++i) {
        const qsizetype at = labels[i].indexOf(wanted, 0, Qt::CaseInsensitive);
        if (at >= 0)
            containing.append({at, i});
        else if (isSubsequence(wanted, labels[i]))
            scattered.append(i);
    }
    std::stable_sort(containing.begin(), containing.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    QList<int> order;
    for (const auto& [at, index] : containing) order.append(index);
    order.append(scattered);
    return order;
}

CommandPalette::CommandPalette(ActionSource actions, QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint), source_(std::move(actions)) {
    setObjectName(QStringLiteral("commandPalette"));
    setAttribute(Qt::WA_StyledBackground);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 8, 8, 8);
    column->setSpacing(6);

    search_ = new QLineEdit(this);
    search_->setObjectName(QStringLiteral("commandSearch"));
    search_->setPlaceholderText(QStringLiteral("Search tools and commands"));
    search_->setToolTip(QStringLiteral("Search commands"));
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    connect(search_, &QLineEdit::textChanged, this, &CommandPalette::filter);

    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("commandList"));
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setUniformItemSizes(true);
    list_->setIconSize(QSize(16, 16));
    connect(list_, &QListWidget::itemClicked, this, [this] { runCurrent(); });

    column->addWidget(search_);
    column->addWidget(list_, 1);
    setFixedWidth(kWidth);
}

void CommandPalette::open() {
    actions_.clear();
    labels_.clear();
    const QList<QAction*> offered = source_ ? source_() : QList<QAction*>();
    for (QAction* action : offered) {
        // Only what can run now; submenus (Recent Files...) are not commands.
        if (!action || action->isSeparator() || !action->isEnabled() || action->menu()) continue;
        const QString label = plainLabel(action->text()).trimmed();
        if (label.isEmpty() || actions_.contains(action)) continue;
        actions_.append(action);
        labels_.append(label);
    }
    search_->clear();
    filter({});

    const int rowHeight = std::max(list_->sizeHintForRow(0), 24);
    list_->setFixedHeight(
        rowHeight * std::min<int>(kVisibleRows, std::max<int>(3, list_->count())) + 4);
    adjustSize();
    if (QWidget* window = parentWidget() ? parentWidget()->window() : nullptr) {
        const QRect frame = window->geometry();
        move(frame.x() + (frame.width() - width()) / 2, frame.y() + 80);
    }
    show();
    raise();
    activateWindow();
    search_->setFocus();
}

void CommandPalette::filter(const QString& query) {
    list_->clear();
    shown_.clear();
    for (const int index : paletteMatches(labels_, query)) {
        QAction* action = actions_[index];
        if (!action) continue;
        auto* item = new QListWidgetItem(action->icon(), labels_[index], list_);
        if (!action->shortcut().isEmpty())
            item->setToolTip(action->shortcut().toString(QKeySequence::NativeText));
        shown_.append(action);
    }
    if (list_->count() > 0) list_->setCurrentRow(0);
}

void CommandPalette::runCurrent() {
    const int row = list_->currentRow();
    QPointer<QAction> action;
    if (row >= 0 && row < shown_.size()) action = shown_[row];
    // Closed first: the action may open a dialog of its own.
    hide();
    if (action && action->isEnabled()) action->trigger();
}

bool CommandPalette::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const int row = list_->currentRow();
        switch (key->key()) {
        case Qt::Key_Down:
            if (row + 1 < list_->count()) list_->setCurrentRow(row + 1);
            return true;
        case Qt::Key_Up:
            if (row > 0) list_->setCurrentRow(row - 1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            runCurrent();
            return true;
        case Qt::Key_Escape:
            hide();
            return true;
        default:
            break;
        }
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace cad::ui

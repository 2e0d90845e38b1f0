// The history panel: the list follows the document the way the browser does (one
// pass per turn of the event loop, few rows moved), and every gesture on it is a
// roll_back, move_step, suppress_feature or rename_object command.
#include "ui/panels/HistoryPanel.h"

#include "ui/panels/PendingChanges.h"

#include "core/CommandRecord.h"
#include "core/Document.h"
#include "ui/panels/HistoryList.h"
#include "ui/panels/ObjectRows.h"
#include "ui/panels/SequencePatch.h"
#include "ui/widgets/Icons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace cad::ui {

namespace {

const QString kExpandedKey = QStringLiteral("ui/historyExpanded");
const QString kListStyle = QStringLiteral(
    "QListWidget { background: transparent; border: none; outline: 0; font-size: 9pt; }"
    "QListWidget::item { border-radius: 5px; padding-left: 6px; }"
    "QListWidget::item:hover { background: #27231f; }"
    "QListWidget::item:selected { background: #27231f; color: #f1eee6; }");
const QString kTitleStyle =
    QStringLiteral("color: #a0978c; font-size: 7pt; font-weight: 600; letter-spacing: 1px;");

std::uint64_t serialOf(const QListWidgetItem* item) {
    return item->data(kSerialRole).toULongLong();
}

} // namespace

// The list's rows as patchSequence sees them; rows that leave wait in `loose`.
struct HistoryRows {
    HistoryPanel& panel;
    std::vector<QListWidgetItem*>& loose;

    int count() const { return panel.list_->count(); }
    std::uint64_t keyAt(int i) const { return serialOf(panel.list_->item(i)); }
    void takeAt(int i) { loose.push_back(panel.list_->takeItem(i)); }
    void insertAt(int i, std::uint64_t serial) {
        QListWidgetItem* item = panel.rows_.value(serial);
        if (!item)
            item = panel.makeItem(serial);
        else if (item->listWidget())
            panel.list_->takeItem(panel.list_->row(item));
        panel.list_->insertItem(i, item);
    }
};

HistoryPanel::HistoryPanel(Document& document, PanelHooks hooks, QWidget* parent)
    : QFrame(parent), document_(document), hooks_(std::move(hooks)),
      changes_(new PendingChanges(document, [this] { refresh(); }, this)) {
    setObjectName(QStringLiteral("historyPanel"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(6, 8, 6, 8);
    column->setSpacing(4);
    auto* header = new QHBoxLayout;
    header->setContentsMargins(4, 0, 0, 0);
    title_ = new QLabel(QStringLiteral("HISTORY"), this);
    title_->setObjectName(QStringLiteral("historyTitle"));
    title_->setStyleSheet(kTitleStyle);
    toggle_ = new QToolButton(this);
    toggle_->setObjectName(QStringLiteral("historyToggle"));
    toggle_->setAutoRaise(true);
    toggle_->setIconSize(QSize(16, 16));
    connect(toggle_, &QToolButton::clicked, this, [this] { setExpanded(!expanded_); });
    header->addWidget(title_, 1);
    header->addWidget(toggle_);
    column->addLayout(header);

    list_ = new HistoryList(this);
    list_->setObjectName(QStringLiteral("historyList"));
    list_->setStyleSheet(kListStyle);
    list_->setIconSize(QSize(16, 16));
    list_->setItemDelegate(new HistoryDelegate(
        QStringLiteral("historyRenameEdit"),
        [this](const QString& id, const QString& name) {
            if (!hooks_.run) return;
            hooks_.run(CommandRecord("rename_object")
                           .set("object", id.toStdString())
                           .set("name", name.toStdString()));
        },
        list_));
    list_->setDropHandler([this](std::uint64_t serial, int row) { dropped(serial, row); });
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list_, &QListWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu* menu = contextMenuFor(list_->itemAt(at), this);
        if (!menu) return;
        menu->exec(list_->viewport()->mapToGlobal(at));
        delete menu;
    });
    connect(list_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        if (const DocumentObject* object = document_.findBySerial(serialOf(item))) edit(*object);
    });
    column->addWidget(list_, 1);

    marker_ = new QListWidgetItem;
    marker_->setData(kSerialRole, QVariant::fromValue<quint64>(0));
    marker_->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
    marker_->setToolTip(QStringLiteral("Drag to roll the history back or forward"));
    rows_.insert(0, marker_);

    expanded_ = QSettings().value(kExpandedKey, true).toBool();
    applyExpanded();

    refresh();
}

HistoryPanel::~HistoryPanel() {
    // The marker is kept even while out of the list; the list deletes what it holds.
    if (!marker_->listWidget()) delete marker_;
}

QListWidget* HistoryPanel::list() const { return list_; }

QListWidgetItem* HistoryPanel::itemFor(std::string_view id) const {
    const DocumentObject* object = document_.find(id);
    return object ? rows_.value(object->serial) : nullptr;
}

// ---------------------------------------------------------------- folding

void HistoryPanel::setExpanded(bool expanded) {
    if (expanded == expanded_) return;
    expanded_ = expanded;
    QSettings().setValue(kExpandedKey, expanded_);
    applyExpanded();
    emit expandedChanged(expanded_);
}

void HistoryPanel::applyExpanded() {
    title_->setVisible(expanded_);
    list_->setVisible(expanded_);
    setFixedWidth(expanded_ ? kExpandedWidth : kCollapsedWidth);
    toggle_->setIcon(
        icon(expanded_ ? QStringLiteral("collapse-left") : QStringLiteral("expand-right")));
    toggle_->setToolTip(expanded_ ? QStringLiteral("Collapse History")
                                  : QStringLiteral("Expand History"));
}

// ---------------------------------------------------------------- following the document

QListWidgetItem* HistoryPanel::makeItem(std::uint64_t serial) {
    auto* item = new QListWidgetItem;
    item->setData(kSerialRole, QVariant::fromValue<quint64>(serial));
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled |
                   Qt::ItemIsEditable);
    rows_.insert(serial, item);
    changes_->add(serial);
    return item;
}

void HistoryPanel::refresh() {
    changes_->settle();
    const QSignalBlocker quiet(list_);

    // The steps in document order, the marker before the first rolled-back one.
    const DocumentObject* rollback =
        document_.rollback().empty() ? nullptr : document_.find(document_.rollback());
    std::vector<std::uint64_t> wanted;
    std::unordered_map<std::uint64_t, const DocumentObject*> steps;
    for (const auto& object : document_.objects()) {
        if (!document_.isHistoryStep(*object)) continue;
        if (object.get() == rollback) wanted.push_back(0);
        wanted.push_back(object->serial);
        steps.emplace(object->serial, object.get());
    }
    if (std::find(wanted.begin(), wanted.end(), 0) == wanted.end()) wanted.push_back(0);

    std::vector<QListWidgetItem*> loose;
    HistoryRows rows{*this, loose};
    patchSequence(wanted, rows);
    for (QListWidgetItem* item : loose) {
        if (item->listWidget()) continue;
        rows_.remove(serialOf(item));
        delete item;
    }

    // Rolling back changes the state of every row after the marker, even rows
    // whose objects did not change themselves.
    bool rolledBack = false;
    for (const std::uint64_t serial : wanted) {
        if (serial == 0) {
            rolledBack = true;
            continue;
        }
        const DocumentObject& object = *steps.at(serial);
        const auto* feature = dynamic_cast<const FeatureObject*>(&object);
        const int state = (rolledBack ? kRolledBack : 0) |
                          (feature && feature->suppressed ? kSuppressed : 0) |
                          (feature && !feature->error.empty() ? kFailed : 0);
        QListWidgetItem* item = rows_.value(serial);
        if (changes_->serials().contains(serial) || item->data(kStateRole).toInt() != state)
            updateRow(item, object, state);
    }
    changes_->clear();
}

void HistoryPanel::updateRow(QListWidgetItem* item, const DocumentObject& object, int state) {
    const QString name = fromStd(object.displayName());
    item->setText(name);
    item->setIcon(objectIcon(object));
    item->setData(kIdRole, fromStd(object.id));
    item->setData(kNameRole, name);
    item->setData(kStateRole, state);
    QString tip = QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped());
    if (state & kRolledBack)
        tip += QStringLiteral("<br>Rolled back");
    else if (state & kSuppressed)
        tip += QStringLiteral("<br>Suppressed");
    if (const QString problem = objectProblem(document_, object); !problem.isEmpty())
        tip += QStringLiteral("<br>") + problem.toHtmlEscaped();
    item->setToolTip(tip);
}

// ---------------------------------------------------------------- commands

std::string HistoryPanel::stepAfter(const DocumentObject& object) const {
    bool passed = false;
    for (const auto& other : document_.objects()) {
        if (passed && document_.isHistoryStep(*other)) return other->id;
        if (other.get() == &object) passed = true;
    }
    return {};
}

void HistoryPanel::rollBackTo(const std::string& step) {
    if (hooks_.run) hooks_.run(CommandRecord("roll_back").set("to", step));
}

void HistoryPanel::dropped(std::uint64_t serial, int row) {
    const auto stepAt = [this](int i) -> const DocumentObject* {
        return document_.findBySerial(serialOf(list_->item(i)));
    };
    // The step the drop lies before, passing over the marker and the dragged row.
    std::string before;
    for (int i = row; i < list_->count() && before.empty(); ++i) {
        const std::uint64_t at = serialOf(list_->item(i));
        if (at == 0 || at == serial) continue;
        if (const DocumentObject* step = stepAt(i)) before = step->id;
    }
    if (serial == 0) {
        if (before != document_.rollback()) rollBackTo(before);
        return;
    }
    const DocumentObject* step = document_.findBySerial(serial);
    if (!step || !hooks_.run) return;
    const std::string next = stepAfter(*step);
    if (before == next) return; // dropped where it already is
    CommandRecord record("move_step");
    record.set("step", step->id);
    if (!before.empty()) record.set("before", before);
    hooks_.run(record);
}

void HistoryPanel::edit(const DocumentObject& object) {
    if (object.typeName() == "Sketch")
        emit editSketchRequested(fromStd(object.id));
    else if (dynamic_cast<const FeatureObject*>(&object))
        emit editFeatureRequested(fromStd(object.id));
}

QMenu* HistoryPanel::contextMenuFor(QListWidgetItem* item, QWidget* parent) {
    const bool rolledBack = !document_.rollback().empty();
    const DocumentObject* object = item ? document_.findBySerial(serialOf(item)) : nullptr;
    if (!object && !rolledBack) return nullptr;

    auto* menu = new QMenu(parent);
    const auto add = [&](const QString& text, const char* name, auto&& action) {
        QAction* entry = menu->addAction(text);
        entry->setObjectName(QString::fromLatin1(name));
        connect(entry, &QAction::triggered, this, action);
        return entry;
    };
    // Entries act on the step's ID: rows may be rebuilt while the menu is open.
    const std::string id = object ? object->id : std::string();
    const auto find = [this, id] { return document_.find(id); };
    if (object) {
        const auto* feature = dynamic_cast<const FeatureObject*>(object);
        if (feature || object->typeName() == "Sketch")
            add(QStringLiteral("Edit"), "historyEdit", [this, find] {
                if (const DocumentObject* step = find()) edit(*step);
            });
        add(QStringLiteral("Rename"), "historyRename", [this, id] {
            if (QListWidgetItem* row = itemFor(id)) list_->editItem(row);
        });
        if (feature)
            add(feature->suppressed ? QStringLiteral("Unsuppress") : QStringLiteral("Suppress"),
                "historySuppress", [this, id, suppress = !feature->suppressed] {
                    if (hooks_.run)
                        hooks_.run(CommandRecord("suppress_feature")
                                       .set("feature", id)
                                       .set("suppressed", suppress));
                });
        menu->addSeparator();
        if (const std::string after = stepAfter(*object); after != document_.rollback())
            add(QStringLiteral("Build Up to Here"), "historyBuildTo",
                [this, after] { rollBackTo(after); });
    }
    if (rolledBack)
        add(QStringLiteral("Build Everything"), "historyBuildAll", [this] { rollBackTo({}); });
    if (object) {
        menu->addSeparator();
        QAction* remove = add(QStringLiteral("Delete"), "historyDelete", [this, id] {
            if (hooks_.deleteObjects) hooks_.deleteObjects({id});
        });
        remove->setIcon(icon(QStringLiteral("trash")));
    }
    return menu;
}

} // namespace cad::ui

// The browser's rows follow the document: observer calls only note what changed,
// and one pass, when control returns to the event loop, puts rows where they belong
// (moving as few as it can) and rewrites the rows of the objects that changed. A
// sheet metal body's "Flat Pattern" row is no object: it stays its body's last row.
#include "ui/panels/ObjectBrowser.h"

#include "ui/panels/PendingChanges.h"

#include "core/CommandRecord.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/materials/LookTargets.h"
#include "ui/panels/ObjectRows.h"
#include "ui/panels/RenameDelegate.h"
#include "ui/panels/SequencePatch.h"
#include "ui/widgets/Icons.h"

#include <QBrush>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalBlocker>

#include <algorithm>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace cad::ui {

namespace {

constexpr int kEyeWidth = 26;
// A "Flat Pattern" row holds its body's ID here; other rows hold nothing.
constexpr int kFlatPatternRole = Qt::UserRole + 8;

std::uint64_t serialOf(const QTreeWidgetItem* item) {
    return item->data(0, kSerialRole).toULongLong();
}

QString flatPatternBody(const QTreeWidgetItem* item) {
    return item ? item->data(0, kFlatPatternRole).toString() : QString();
}

QTreeWidgetItem* flatPatternRowUnder(const QTreeWidgetItem* parent) {
    const int count = parent ? parent->childCount() : 0;
    QTreeWidgetItem* last = count > 0 ? parent->child(count - 1) : nullptr;
    return flatPatternBody(last).isEmpty() ? nullptr : last;
}

bool isEditable(const DocumentObject& object) {
    return object.typeName() == "Sketch" || dynamic_cast<const FeatureObject*>(&object);
}

} // namespace

// The children of one row as patchSequence sees them. Rows that leave are kept
// in `loose` until the pass ends: they may be wanted under another row.
struct BrowserRows {
    ObjectBrowser& browser;
    QTreeWidgetItem* parent;
    std::vector<QTreeWidgetItem*>& loose;
    std::vector<QTreeWidgetItem*>& placed;

    // The object rows: a body's flat pattern row after them takes no part.
    int count() const { return parent->childCount() - (flatPatternRowUnder(parent) ? 1 : 0); }
    std::uint64_t keyAt(int i) const { return serialOf(parent->child(i)); }
    void takeAt(int i) { loose.push_back(parent->takeChild(i)); }
    void insertAt(int i, std::uint64_t serial) {
        QTreeWidgetItem* item = browser.rows_.value(serial);
        if (!item)
            item = browser.makeItem(serial);
        else if (QTreeWidgetItem* old = item->parent())
            old->removeChild(item);
        parent->insertChild(i, item);
        placed.push_back(item);
    }
};

ObjectBrowser::ObjectBrowser(Document& document, PanelHooks hooks, QWidget* parent)
    : QTreeWidget(parent), document_(document), hooks_(std::move(hooks)),
      changes_(new PendingChanges(
          document, [this] { refresh(); }, this)) {
    setObjectName(QStringLiteral("browserTree"));
    setColumnCount(2);
    setHeaderHidden(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(kEyeColumn, QHeaderView::Fixed);
    header()->resizeSection(kEyeColumn, kEyeWidth);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setUniformRowHeights(true);
    setIconSize(QSize(16, 16));
    setContextMenuPolicy(Qt::DefaultContextMenu);

    renamer_ = new RenameDelegate(
        QStringLiteral("browserRenameEdit"),
        [this](const QString& id, const QString& name) {
            if (!hooks_.run) return;
            hooks_.run(CommandRecord("rename_object")
                           .set("object", id.toStdString())
                           .set("name", name.toStdString()));
        },
        this);
    setItemDelegateForColumn(0, renamer_);

    root_ = new QTreeWidgetItem(this);
    root_->setIcon(0, icon(QStringLiteral("document")));
    root_->setFlags(Qt::ItemIsEnabled);
    setDocumentName({});
    for (const QString& name : browserFolders()) {
        auto* folder = new QTreeWidgetItem(root_, {name});
        folder->setIcon(0, icon(QStringLiteral("folder")));
        folder->setFlags(Qt::ItemIsEnabled);
        folder->setHidden(true);
        folder->setExpanded(true);
        folders_.insert(name, folder);
    }
    root_->setExpanded(true);

    connect(this, &QTreeWidget::itemSelectionChanged, this,
            [this] { emit objectsSelected(selectedObjects()); });
    connect(this, &QTreeWidget::itemDoubleClicked, this, &ObjectBrowser::onDoubleClicked);
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* item) { expanded_.insert(serialOf(item)); });
    connect(this, &QTreeWidget::itemCollapsed, this,
            [this](QTreeWidgetItem* item) { expanded_.remove(serialOf(item)); });

    refresh();
}

ObjectBrowser::~ObjectBrowser() = default;

void ObjectBrowser::setDocumentName(const QString& name) {
    root_->setText(0, name.isEmpty() ? QStringLiteral("Untitled") : name);
}

QTreeWidgetItem* ObjectBrowser::folderItem(const QString& folder) const {
    return folders_.value(folder);
}

QTreeWidgetItem* ObjectBrowser::itemFor(std::string_view id) const {
    const DocumentObject* object = document_.find(id);
    return object ? rows_.value(object->serial) : nullptr;
}

QTreeWidgetItem* ObjectBrowser::flatPatternItem(std::string_view body) const {
    return flatPatternRowUnder(itemFor(body));
}

void ObjectBrowser::setFlatPatternState(std::function<FlatPattern(const DocumentObject&)> state) {
    flatPatternState_ = std::move(state);
    refresh();
}

DocumentObject* ObjectBrowser::objectOf(const QTreeWidgetItem* item) const {
    const std::uint64_t serial = item ? serialOf(item) : 0;
    return serial ? document_.findBySerial(serial) : nullptr;
}

// ---------------------------------------------------------------- following the document

QTreeWidgetItem* ObjectBrowser::makeItem(std::uint64_t serial) {
    auto* item = new QTreeWidgetItem;
    item->setData(0, kSerialRole, QVariant::fromValue<quint64>(serial));
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable);
    rows_.insert(serial, item);
    changes_->add(serial);
    return item;
}

void ObjectBrowser::refresh() {
    changes_->settle();
    const QSignalBlocker quiet(this);

    // Where every object belongs: folders in document order, features under their
    // body in build order (a feature no body lists goes with the bodies).
    std::unordered_map<std::uint64_t, const DocumentObject*> bySerial;
    std::unordered_map<std::string_view, const DocumentObject*> byId;
    for (const auto& object : document_.objects()) {
        bySerial.emplace(object->serial, object.get());
        byId.emplace(object->id, object.get());
    }
    std::unordered_set<const DocumentObject*> owned;
    std::vector<std::pair<std::uint64_t, std::vector<std::uint64_t>>> bodies;
    for (const auto& object : document_.objects()) {
        const auto* body = dynamic_cast<const GeometryObject*>(object.get());
        if (!body) continue;
        std::vector<std::uint64_t> features;
        for (const std::string& id : body->features) {
            const auto found = byId.find(id);
            if (found == byId.end() || !dynamic_cast<const FeatureObject*>(found->second) ||
                !owned.insert(found->second).second)
                continue;
            features.push_back(found->second->serial);
        }
        bodies.emplace_back(body->serial, std::move(features));
    }
    QHash<QString, std::vector<std::uint64_t>> inFolder;
    for (const auto& object : document_.objects()) {
        QString folder = browserFolderOf(*object);
        if (folder.isEmpty() && owned.contains(object.get())) continue;
        if (folder.isEmpty()) folder = QStringLiteral("Bodies");
        inFolder[folder].push_back(object->serial);
    }

    QSet<std::uint64_t> selected;
    for (const QTreeWidgetItem* item : selectedItems()) selected.insert(serialOf(item));

    std::vector<QTreeWidgetItem*> loose, placed;
    for (const QString& name : browserFolders()) {
        BrowserRows rows{*this, folders_.value(name), loose, placed};
        patchSequence(inFolder.value(name), rows);
    }
    for (const auto& [body, features] : bodies) {
        BrowserRows rows{*this, rows_.value(body), loose, placed};
        patchSequence(features, rows);
    }

    // Rows nobody wants any more go, with whatever rows are still under them.
    std::vector<QTreeWidgetItem*> gone;
    for (QTreeWidgetItem* item : loose)
        if (!item->parent() && !item->treeWidget()) gone.push_back(item);
    const std::size_t outermost = gone.size();
    for (std::size_t i = 0; i < gone.size(); ++i) {
        for (int c = 0; c < gone[i]->childCount(); ++c) gone.push_back(gone[i]->child(c));
        const std::uint64_t serial = serialOf(gone[i]);
        if (rows_.value(serial) == gone[i]) rows_.remove(serial);
    }
    for (std::size_t i = 0; i < outermost; ++i) delete gone[i];

    // Whether a body is sheet metal, or worked on flat, may change with any command
    // or without one: every body's flat pattern row is checked.
    for (const auto& [body, features] : bodies)
        if (QTreeWidgetItem* row = rows_.value(body)) updateFlatPatternRow(row, *bySerial[body]);

    // A row that moved comes back as open or closed as it was; bodies start closed.
    for (QTreeWidgetItem* item : placed) {
        item->setExpanded(expanded_.contains(serialOf(item)));
        if (selected.contains(serialOf(item))) item->setSelected(true);
    }

    for (const std::uint64_t serial : std::as_const(changes_->serials())) {
        QTreeWidgetItem* item = rows_.value(serial);
        const auto object = bySerial.find(serial);
        if (item && object != bySerial.end()) updateRow(item, *object->second);
    }
    changes_->clear();

    for (QTreeWidgetItem* folder : std::as_const(folders_)) {
        folder->setHidden(folder->childCount() == 0);
        bool anyVisible = false;
        for (int i = 0; i < folder->childCount() && !anyVisible; ++i) {
            const auto object = bySerial.find(serialOf(folder->child(i)));
            anyVisible = object != bySerial.end() && object->second->visible;
        }
        updateFolderEye(folder, anyVisible);
    }
}

void ObjectBrowser::updateRow(QTreeWidgetItem* item, const DocumentObject& object) {
    item->setText(0, rowText(object));
    item->setData(0, kIdRole, fromStd(object.id));
    item->setData(0, kNameRole, fromStd(object.displayName()));
    item->setIcon(0, objectIcon(object));

    const QString problem = objectProblem(document_, object);
    QString tip = object.label.empty() ? QString() : fromStd(object.id);
    if (!problem.isEmpty()) tip += (tip.isEmpty() ? QString() : QStringLiteral("\n")) + problem;
    item->setToolTip(0, tip);

    const auto* feature = dynamic_cast<const FeatureObject*>(&object);
    const bool dim = !object.visible || (feature && !document_.isActive(*feature));
    if (!problem.isEmpty())
        item->setForeground(0, kProblemColour);
    else if (dim)
        item->setForeground(0, kDimColour);
    else
        item->setData(0, Qt::ForegroundRole, QVariant());

    // Features show through their body: only whole objects have an eye.
    if (feature) return;
    item->setIcon(kEyeColumn,
                  icon(object.visible ? QStringLiteral("eye") : QStringLiteral("eye-off")));
    item->setToolTip(kEyeColumn, object.visible ? QStringLiteral("Hide") : QStringLiteral("Show"));
}

void ObjectBrowser::updateFlatPatternRow(QTreeWidgetItem* bodyRow, const DocumentObject& body) {
    const FlatPattern state = flatPatternState_ ? flatPatternState_(body) : FlatPattern::None;
    QTreeWidgetItem* row = flatPatternRowUnder(bodyRow);
    if (state == FlatPattern::None) {
        delete row;
        return;
    }
    if (!row) {
        row = new QTreeWidgetItem;
        row->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        row->setIcon(0, icon(QStringLiteral("flat-pattern")));
        bodyRow->addChild(row);
    }
    row->setData(0, kFlatPatternRole, fromStd(body.id));
    const bool editing = state == FlatPattern::Editing;
    row->setText(0, editing ? QStringLiteral("Flat Pattern  (editing)")
                            : QStringLiteral("Flat Pattern"));
    row->setToolTip(0, editing ? QStringLiteral("Double-click to fold it back up")
                               : QStringLiteral("Double-click to work on it flat"));
}

void ObjectBrowser::updateFolderEye(QTreeWidgetItem* folder, bool anyVisible) {
    folder->setIcon(kEyeColumn,
                    icon(anyVisible ? QStringLiteral("eye") : QStringLiteral("eye-off")));
    folder->setToolTip(kEyeColumn,
                       anyVisible ? QStringLiteral("Hide all") : QStringLiteral("Show all"));
}

// ---------------------------------------------------------------- selection

QStringList ObjectBrowser::selectedObjects() const {
    QSet<std::uint64_t> selected;
    for (const QTreeWidgetItem* item : selectedItems()) {
        // A flat pattern row stands for its body.
        const QTreeWidgetItem* row = flatPatternBody(item).isEmpty() ? item : item->parent();
        if (const std::uint64_t serial = row ? serialOf(row) : 0) selected.insert(serial);
    }
    QStringList ids;
    for (const auto& object : document_.objects())
        if (selected.contains(object->serial)) ids.append(fromStd(object->id));
    return ids;
}

void ObjectBrowser::setSelectedObjects(const QStringList& ids) {
    const QSignalBlocker quiet(this);
    clearSelection();
    for (const QString& id : ids)
        if (QTreeWidgetItem* item = itemFor(id.toStdString())) item->setSelected(true);
}

// ---------------------------------------------------------------- actions

void ObjectBrowser::toggleVisibility(QTreeWidgetItem* item) {
    if (!item) return;
    std::vector<std::string> targets;
    bool show = false;
    if (folders_.key(item).isEmpty()) {
        const DocumentObject* object = objectOf(item);
        if (!object || dynamic_cast<const FeatureObject*>(object)) return;
        show = !object->visible;
        targets.push_back(object->id);
    } else {
        std::vector<const DocumentObject*> children;
        for (int i = 0; i < item->childCount(); ++i)
            if (const DocumentObject* object = objectOf(item->child(i))) children.push_back(object);
        show = std::none_of(children.begin(), children.end(),
                            [](const DocumentObject* o) { return o->visible; });
        for (const DocumentObject* object : children)
            if (object->visible != show) targets.push_back(object->id);
    }
    if (targets.empty() || !hooks_.run) return;

    const bool grouped = targets.size() > 1 && hooks_.beginGroup && hooks_.endGroup;
    if (grouped) hooks_.beginGroup();
    for (const std::string& id : targets)
        if (!hooks_.run(CommandRecord("set_visibility").set("object", id).set("visible", show)))
            break;
    if (grouped) hooks_.endGroup();
}

QMenu* ObjectBrowser::contextMenuFor(QTreeWidgetItem* item, QWidget* parent) {
    if (const QString body = flatPatternBody(item); !body.isEmpty()) {
        const DocumentObject* object = document_.find(body.toStdString());
        if (!object || !flatPatternState_) return nullptr;
        auto* menu = new QMenu(parent);
        addFlatPatternEntries(menu, body, flatPatternState_(*object));
        return menu;
    }
    const DocumentObject* object = objectOf(item);
    if (!object) return nullptr;
    const QString id = fromStd(object->id);
    auto* menu = new QMenu(parent);
    if (isEditable(*object)) {
        QAction* edit = menu->addAction(QStringLiteral("Edit"));
        edit->setObjectName(QStringLiteral("editObject"));
        connect(edit, &QAction::triggered, this,
                [this, id] { editRow(itemFor(id.toStdString())); });
    }
    QAction* rename = menu->addAction(QStringLiteral("Rename"));
    rename->setObjectName(QStringLiteral("renameObject"));
    connect(rename, &QAction::triggered, this, [this, id] {
        if (QTreeWidgetItem* row = itemFor(id.toStdString())) editItem(row, 0);
    });
    if (isBodyOrComponent(*object)) {
        QAction* material = menu->addAction(QStringLiteral("Physical Material..."));
        material->setObjectName(QStringLiteral("objectMaterial"));
        connect(material, &QAction::triggered, this, [this, id] { emit materialRequested(id); });
        QAction* appearance = menu->addAction(QStringLiteral("Appearance..."));
        appearance->setObjectName(QStringLiteral("objectAppearance"));
        connect(appearance, &QAction::triggered, this,
                [this, id] { emit appearanceRequested(id); });
    }
    if (flatPatternState_ && dynamic_cast<const GeometryObject*>(object))
        if (const FlatPattern state = flatPatternState_(*object); state != FlatPattern::None)
            addFlatPatternEntries(menu, id, state);
    // A body with a shape can go out on its own to other software.
    if (const auto* body = dynamic_cast<const GeometryObject*>(object);
        body && !body->shape.shape().IsNull()) {
        for (const auto& [text, name, format] :
             {std::tuple{"Export as STEP...", "exportBodyStep", "step"},
              std::tuple{"Export as STL...", "exportBodyStl", "stl"}}) {
            QAction* exportBody = menu->addAction(QString::fromLatin1(text));
            exportBody->setObjectName(QString::fromLatin1(name));
            connect(exportBody, &QAction::triggered, this,
                    [this, id, f = QString::fromLatin1(format)] { emit exportRequested(id, f); });
        }
    }
    // A sketch goes into the footprint library, or out as a flat drawing for laser
    // and CNC software.
    if (object->typeName() == "Sketch") {
        for (const auto& [text, name, format] :
             {std::tuple{"Save as Footprint...", "saveSketchFootprint", "footprint"},
              std::tuple{"Export as DXF...", "exportSketchDxf", "dxf"},
              std::tuple{"Export as SVG...", "exportSketchSvg", "svg"}}) {
            QAction* exportSketch = menu->addAction(QString::fromLatin1(text));
            exportSketch->setObjectName(QString::fromLatin1(name));
            connect(exportSketch, &QAction::triggered, this,
                    [this, id, f = QString::fromLatin1(format)] { emit exportRequested(id, f); });
        }
    }
    menu->addSeparator();
    QAction* remove = menu->addAction(icon(QStringLiteral("trash")), QStringLiteral("Delete"));
    remove->setObjectName(QStringLiteral("deleteObject"));
    connect(remove, &QAction::triggered, this,
            [this, id] { deleteRows(itemFor(id.toStdString())); });
    return menu;
}

void ObjectBrowser::addFlatPatternEntries(QMenu* menu, const QString& body, FlatPattern state) {
    const bool editing = state == FlatPattern::Editing;
    QAction* mode = menu->addAction(
        icon(editing ? QStringLiteral("check") : QStringLiteral("flat-pattern")),
        editing ? QStringLiteral("Finish Flat Pattern") : QStringLiteral("Edit Flat Pattern"));
    mode->setObjectName(editing ? QStringLiteral("finishFlatPatternRow")
                                : QStringLiteral("editFlatPatternRow"));
    connect(mode, &QAction::triggered, this,
            [this, body, editing] { emit flatPatternEditRequested(body, !editing); });
    for (const auto& [text, name, format] :
         {std::tuple{"Export Flat Pattern...", "exportFlatPatternRow", "form"},
          std::tuple{"Export Flat as DXF...", "exportFlatDxf", "dxf"},
          std::tuple{"Export Flat as SVG...", "exportFlatSvg", "svg"}}) {
        QAction* exportFlat = menu->addAction(QString::fromLatin1(text));
        exportFlat->setObjectName(QString::fromLatin1(name));
        connect(
            exportFlat, &QAction::triggered, this,
            [this, body, f = QString::fromLatin1(format)] { emit flatExportRequested(body, f); });
    }
}

void ObjectBrowser::editRow(QTreeWidgetItem* item) {
    const DocumentObject* object = objectOf(item);
    if (!object) return;
    if (object->typeName() == "Sketch")
        emit editSketchRequested(fromStd(object->id));
    else if (dynamic_cast<const FeatureObject*>(object))
        emit editFeatureRequested(fromStd(object->id));
}

// The row under the mouse with the rest of the selection when it is part of it.
void ObjectBrowser::deleteRows(QTreeWidgetItem* item) {
    const DocumentObject* object = objectOf(item);
    if (!object || !hooks_.deleteObjects) return;
    std::vector<std::string> ids;
    if (item->isSelected())
        for (const QString& id : selectedObjects()) ids.push_back(id.toStdString());
    else
        ids.push_back(object->id);
    hooks_.deleteObjects(ids);
}

void ObjectBrowser::onDoubleClicked(QTreeWidgetItem* item, int column) {
    if (column == kEyeColumn) return;
    if (const QString body = flatPatternBody(item); !body.isEmpty()) {
        emit flatPatternToggled(body);
        return;
    }
    const DocumentObject* object = objectOf(item);
    if (object && isEditable(*object)) editRow(item);
}

// ---------------------------------------------------------------- events

void ObjectBrowser::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    QTreeWidgetItem* item = itemAt(at);
    if (event->button() == Qt::LeftButton && item && columnAt(at.x()) == kEyeColumn &&
        !item->toolTip(kEyeColumn).isEmpty()) {
        // The eye acts at once and leaves the selection alone.
        toggleVisibility(item);
        event->accept();
        return;
    }
    QTreeWidget::mousePressEvent(event);
}

void ObjectBrowser::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    QTreeWidgetItem* item = itemAt(at);
    if (item && columnAt(at.x()) == kEyeColumn && !item->toolTip(kEyeColumn).isEmpty()) {
        // Two quick clicks on the eye are two toggles, not an edit.
        toggleVisibility(item);
        event->accept();
        return;
    }
    QTreeWidget::mouseDoubleClickEvent(event);
}

void ObjectBrowser::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = contextMenuFor(itemAt(event->pos()), this);
    if (!menu) return;
    menu->exec(event->globalPos());
    delete menu;
}

} // namespace cad::ui

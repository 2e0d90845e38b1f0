// The browser: every object of the document in folders under the document's row,
// with an eye to show or hide each object (or a whole folder), selection that
// follows into the view, a "Flat Pattern" row under each sheet metal body, and a
// context menu to edit, rename, give a material or an appearance, work on a part
// flat or export its flat pattern, export a body, and delete.
#pragma once

#include "ui/panels/PanelHooks.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QTreeWidget>

#include <cstdint>
#include <functional>
#include <string_view>

class QMenu;

namespace cad {
class Document;
class DocumentObject;
}

namespace cad::ui {

class PendingChanges;

class RenameDelegate;

class ObjectBrowser : public QTreeWidget {
    Q_OBJECT
public:
    static constexpr int kEyeColumn = 1;

    // Observes the document until destroyed, so it must go before the document.
    ObjectBrowser(Document& document, PanelHooks hooks, QWidget* parent = nullptr);
    ~ObjectBrowser() override;

    // The root row: the project's file name, or "Untitled" when empty.
    void setDocumentName(const QString& name);

    // Brings the rows up to date at once; changes are otherwise gathered and applied
    // when control returns to the event loop.
    void refresh();

    QTreeWidgetItem* rootItem() const { return root_; }
    QTreeWidgetItem* folderItem(const QString& folder) const;
    QTreeWidgetItem* itemFor(std::string_view id) const;

    // The IDs of the selected object rows, top to bottom.
    QStringList selectedObjects() const;
    // Selects these objects' rows (the view's selection shown here), without
    // announcing it back.
    void setSelectedObjects(const QStringList& ids);

    // The eye of an object row or a folder ("Hide all" / "Show all"): one
    // set_visibility per object whose visibility changes, as one undo step.
    void toggleVisibility(QTreeWidgetItem* item);
    // The context menu of a row (null when the row has none); the caller owns it.
    QMenu* contextMenuFor(QTreeWidgetItem* item, QWidget* parent = nullptr);

    // What a body's "Flat Pattern" row shows: none (it isn't sheet metal), the row, or
    // the row of the part being worked on flat. Without this no body has the row.
    enum class FlatPattern { None, Folded, Editing };
    void setFlatPatternState(std::function<FlatPattern(const DocumentObject& body)> state);
    // The "Flat Pattern" row under a body; null when it has none.
    QTreeWidgetItem* flatPatternItem(std::string_view body) const;

signals:
    // The selected object rows changed (IDs, top to bottom).
    void objectsSelected(const QStringList& ids);
    void editSketchRequested(const QString& id);
    void editFeatureRequested(const QString& id);
    // "Physical Material..." and "Appearance..." on a body or component row.
    void materialRequested(const QString& id);
    void appearanceRequested(const QString& id);
    // "Export as STEP..." ("step") and "Export as STL..." ("stl") on a body row,
    // "Save as Footprint..." ("footprint"), "Export as DXF..." ("dxf") and "Export as
    // SVG..." ("svg") on a sketch row.
    void exportRequested(const QString& id, const QString& format);
    // A double-click on a body's "Flat Pattern" row: work on it flat, or fold it back up.
    void flatPatternToggled(const QString& body);
    // "Edit Flat Pattern" (true) and "Finish Flat Pattern" (false) on a body or its row.
    void flatPatternEditRequested(const QString& body, bool edit);
    // "Export Flat Pattern..." ("form"), "Export Flat as DXF..." ("dxf") and "Export
    // Flat as SVG..." ("svg").
    void flatExportRequested(const QString& body, const QString& format);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    friend struct BrowserRows;

    QTreeWidgetItem* makeItem(std::uint64_t serial);
    void updateRow(QTreeWidgetItem* item, const DocumentObject& object);
    void updateFolderEye(QTreeWidgetItem* folder, bool anyVisible);
    // Adds, rewrites or removes the body row's "Flat Pattern" row, always its last child.
    void updateFlatPatternRow(QTreeWidgetItem* bodyRow, const DocumentObject& body);
    void addFlatPatternEntries(QMenu* menu, const QString& body, FlatPattern state);
    void editRow(QTreeWidgetItem* item);
    void deleteRows(QTreeWidgetItem* item);
    void onDoubleClicked(QTreeWidgetItem* item, int column);
    DocumentObject* objectOf(const QTreeWidgetItem* item) const;

    Document& document_;
    PanelHooks hooks_;
    RenameDelegate* renamer_;
    QTreeWidgetItem* root_;
    QHash<QString, QTreeWidgetItem*> folders_;
    QHash<std::uint64_t, QTreeWidgetItem*> rows_; // by serial
    QSet<std::uint64_t> expanded_;                // rows the user opened
    std::function<FlatPattern(const DocumentObject&)> flatPatternState_;
    // What the document changed since the last refresh, which runs once they stop.
    PendingChanges* changes_;
};

} // namespace cad::ui

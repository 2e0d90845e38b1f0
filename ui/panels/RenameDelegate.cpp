// Inline renaming: a line edit named for the panel, committed through a callback.
#include "ui/panels/RenameDelegate.h"

#include "ui/panels/ObjectRows.h"

#include <QLineEdit>

namespace cad::ui {

RenameDelegate::RenameDelegate(QString editorName, Commit commit, QObject* parent)
    : QStyledItemDelegate(parent), editorName_(std::move(editorName)), commit_(std::move(commit)) {}

QWidget* RenameDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                      const QModelIndex& /*index*/) const {
    auto* editor = new QLineEdit(parent);
    editor->setObjectName(editorName_);
    return editor;
}

void RenameDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        line->setText(index.data(kNameRole).toString());
        line->selectAll();
    }
}

void RenameDelegate::setModelData(QWidget* editor, QAbstractItemModel* /*model*/,
                                  const QModelIndex& index) const {
    const auto* line = qobject_cast<QLineEdit*>(editor);
    if (!line || !commit_) return;
    const QString name = line->text().trimmed();
    if (name == index.data(kNameRole).toString()) return;
    commit_(index.data(kIdRole).toString(), name);
}

} // namespace cad::ui

// The inline editor for renaming a row's object: it starts from the object's name
// and hands the typed name on as a command instead of writing it into the view,
// which shows the new name once the document has it.
#pragma once

#include <QString>
#include <QStyledItemDelegate>

#include <functional>

namespace cad::ui {

class RenameDelegate : public QStyledItemDelegate {
public:
    // commit(id, name) runs when the editor closes with a changed name.
    using Commit = std::function<void(const QString& id, const QString& name)>;

    RenameDelegate(QString editorName, Commit commit, QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;

private:
    QString editorName_;
    Commit commit_;
};

} // namespace cad::ui

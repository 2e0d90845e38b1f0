// The parameters table: the last row makes a parameter, edits become parameter
// commands, a refused one is put back with its sentence in the message line, and
// Delete asks first when values use the parameter.
#include "PanelsFixture.h"

#include "ui/panels/ParametersDialog.h"

#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

namespace cad::ui::testing {

namespace {

class ParametersDialogTest : public PanelsFixture {
protected:
    ParametersDialog::Runner runner() {
        return [this](const CommandRecord& record) {
            ran.push_back(record);
            return stack.execute(record);
        };
    }
    static QString text(const ParametersDialog& dialog, int row, int column) {
        const QTableWidgetItem* item = dialog.table()->item(row, column);
        return item ? item->text() : QString();
    }
    // What a user's edit of a cell does: the text changes and the table reports it.
    static void type(ParametersDialog& dialog, int row, int column, const QString& text) {
        dialog.table()->item(row, column)->setText(text);
    }
};

} // namespace

TEST_F(ParametersDialogTest, EditsRunCommandsAndARefusedOneIsPutBack) {
    ok(CommandRecord("set_units").set("length", "cm"));
    ParametersDialog dialog(document, runner());
    EXPECT_EQ(dialog.table()->rowCount(), 1); // only the row for a new parameter
    EXPECT_EQ(dialog.table()->horizontalHeaderItem(2)->text(), "Value");

    // The new row waits for both name and expression.
    type(dialog, 0, ParametersDialog::NameColumn, "w");
    EXPECT_TRUE(ran.empty());
    type(dialog, 0, ParametersDialog::ExpressionColumn, "25mm");
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(ran[0].toCall(), "set_parameter(name=\"w\", expression=\"25mm\")");
    EXPECT_EQ(dialog.table()->rowCount(), 2);
    EXPECT_EQ(text(dialog, 0, ParametersDialog::ValueColumn), "2.5 cm");
    EXPECT_EQ(text(dialog, 1, ParametersDialog::NameColumn), "");

    // A refused expression: the cell shows the old text and the line the reason.
    type(dialog, 0, ParametersDialog::ExpressionColumn, "w2 * 2");
    EXPECT_EQ(ran.size(), 2u);
    EXPECT_EQ(document.parameters()[0].expression, "25mm");
    EXPECT_EQ(text(dialog, 0, ParametersDialog::ExpressionColumn), "25mm");
    EXPECT_EQ(dialog.table()->item(0, ParametersDialog::ExpressionColumn)->toolTip(),
              "Not changed: see the message at the top of the window.");
    EXPECT_TRUE(dialog.messageLabel()->property("error").toBool());
    EXPECT_NE(dialog.messageLabel()->text().indexOf("w2"), -1)
        << dialog.messageLabel()->text().toStdString();

    // Names and comments: rename_parameter, and set_parameter keeping the expression.
    type(dialog, 0, ParametersDialog::NameColumn, "in");
    EXPECT_EQ(text(dialog, 0, ParametersDialog::NameColumn), "w");
    EXPECT_EQ(dialog.messageLabel()->text(), "'in' is a unit; pick another name.");
    type(dialog, 0, ParametersDialog::NameColumn, "width");
    EXPECT_EQ(ran.back().toCall(), "rename_parameter(name=\"w\", to=\"width\")");
    type(dialog, 0, ParametersDialog::CommentColumn, "outside");
    EXPECT_EQ(ran.back().toCall(),
              "set_parameter(name=\"width\", expression=\"25mm\", comment=\"outside\")");
    EXPECT_FALSE(dialog.messageLabel()->property("error").toBool());
    EXPECT_EQ(document.parameters()[0].comment, "outside");

    // After an undo elsewhere the window refreshes the dialog.
    ASSERT_TRUE(stack.undo());
    dialog.refresh();
    EXPECT_EQ(text(dialog, 0, ParametersDialog::CommentColumn), "");
}

TEST_F(ParametersDialogTest, DeleteAsksFirstWhenOtherValuesUseTheParameter) {
    ok(CommandRecord("set_parameter").set("name", "a").set("expression", "10"));
    ok(CommandRecord("set_parameter").set("name", "b").set("expression", "a * 2"));
    ParametersDialog dialog(document, runner());
    QStringList asked;
    bool answer = false;
    dialog.setAsk([&](const QString& question) {
        asked << question;
        return answer;
    });

    dialog.table()->setCurrentCell(0, 0);
    dialog.deleteButton()->click();
    EXPECT_EQ(asked, QStringList{"a is used by b."});
    EXPECT_TRUE(ran.empty());
    answer = true;
    dialog.deleteButton()->click();
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_EQ(dialog.messageLabel()->text(), "a is used by b; change those first.");
    EXPECT_EQ(document.parameters().size(), 2u);

    asked.clear();
    dialog.table()->setCurrentCell(1, 0);
    dialog.deleteButton()->click();
    EXPECT_TRUE(asked.isEmpty());
    EXPECT_EQ(ran.back().toCall(), "delete_parameter(name=\"b\")");
    EXPECT_EQ(dialog.table()->rowCount(), 2);
    dialog.table()->setCurrentCell(1, 0); // the new-parameter row has nothing to delete
    EXPECT_FALSE(dialog.deleteButton()->isEnabled());
}

} // namespace cad::ui::testing

// Editing parameters in a table: each edited cell becomes one parameter command;
// the table is rewritten in place from the document afterwards, so values that
// follow the change show their new results.
#include "ui/panels/ParametersDialog.h"

#include "core/Document.h"
#include "core/Parameters.h"
#include "core/units/Format.h"
#include "ui/panels/ObjectRows.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

namespace cad::ui {

namespace {

const QString kNotChanged =
    QStringLiteral("Not changed: see the message at the top of the window.");

// The item of a cell, made when the cell has none yet.
QTableWidgetItem* cell(QTableWidget* table, int row, int column) {
    QTableWidgetItem* item = table->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        if (column == ParametersDialog::ValueColumn)
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        table->setItem(row, column, item);
    }
    return item;
}

void setCell(QTableWidget* table, int row, int column, const QString& text,
             const QString& tip = {}) {
    QTableWidgetItem* item = cell(table, row, column);
    item->setText(text);
    item->setToolTip(tip);
}

} // namespace

ParametersDialog::ParametersDialog(Document& document, Runner run, QWidget* parent)
    : QDialog(parent), document_(document), run_(std::move(run)), pendingRow_(3, QString()) {
    setObjectName(QStringLiteral("parametersDialog"));
    setWindowTitle(QStringLiteral("Parameters"));
    resize(640, 380);

    auto* column = new QVBoxLayout(this);
    auto* subtitle = new QLabel(
        QStringLiteral("Use a name in any dimension or feature value, e.g. panel_width - 2 * "
                       "margin. Bare numbers are in the document's unit."),
        this);
    subtitle->setObjectName(QStringLiteral("panelSubtitle"));
    subtitle->setWordWrap(true);
    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("panelMessage"));
    message_->setWordWrap(true);
    message_->setTextFormat(Qt::PlainText);

    table_ = new QTableWidget(0, 4, this);
    table_->setObjectName(QStringLiteral("parametersTable"));
    table_->setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Expression"),
                                       QStringLiteral("Value"), QStringLiteral("Comment")});
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    connect(table_, &QTableWidget::itemChanged, this, &ParametersDialog::onEdited);
    connect(table_, &QTableWidget::currentCellChanged, this, [this] { updateButtons(); });

    delete_ = new QPushButton(QStringLiteral("Delete"), this);
    delete_->setObjectName(QStringLiteral("secondaryButton"));
    delete_->setAutoDefault(false);
    connect(delete_, &QPushButton::clicked, this, &ParametersDialog::deleteCurrent);
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("primaryButton"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(delete_);
    buttons->addStretch(1);
    buttons->addWidget(close);

    column->addWidget(subtitle);
    column->addWidget(message_);
    column->addWidget(table_, 1);
    column->addLayout(buttons);

    ask_ = [this](const QString& question) {
        return QMessageBox::question(this, QStringLiteral("Parameters"), question,
                                     QMessageBox::Yes | QMessageBox::Cancel) == QMessageBox::Yes;
    };
    refresh();
}

void ParametersDialog::showEvent(QShowEvent* event) {
    refresh();
    QDialog::showEvent(event);
}

void ParametersDialog::refresh() {
    // Cells are rewritten in place: a refresh may come while a cell's edit is being
    // committed, and that cell must stay alive.
    updating_ = true;
    const std::vector<Parameter>& parameters = document_.parameters();
    const int rows = static_cast<int>(parameters.size());
    table_->setRowCount(rows + 1);
    names_.clear();
    const units::NameLookup lookup = document_.parameterLookup();
    for (int row = 0; row < rows; ++row) {
        const Parameter& parameter = parameters[static_cast<std::size_t>(row)];
        const QString name = fromStd(parameter.name);
        names_.append(name);
        setCell(table_, row, NameColumn, name);
        setCell(table_, row, ExpressionColumn, fromStd(parameter.expression));
        setCell(table_, row, CommentColumn, fromStd(parameter.comment));
        const Result<units::Quantity> value = lookup(parameter.name);
        if (!value)
            setCell(table_, row, ValueColumn, QStringLiteral("?"), fromStd(value.error()));
        else if (value->isLength)
            setCell(table_, row, ValueColumn,
                    fromStd(units::formatLength(value->value, document_.lengthUnit())));
        else
            setCell(table_, row, ValueColumn,
                    fromStd(units::formatNumber(value->value, units::Length::Millimeters)));
    }
    // The last row makes a new parameter once it has a name and an expression.
    setCell(table_, rows, NameColumn, pendingRow_[0]);
    setCell(table_, rows, ExpressionColumn, pendingRow_[1]);
    setCell(table_, rows, ValueColumn, {});
    setCell(table_, rows, CommentColumn, pendingRow_[2]);
    updating_ = false;
    updateButtons();
}

void ParametersDialog::onEdited(QTableWidgetItem* item) {
    if (updating_ || item->column() == ValueColumn) return;
    const int row = item->row();
    const int column = item->column();
    const QString text = item->text().trimmed();

    if (row >= names_.size()) {
        pendingRow_[column == CommentColumn ? 2 : column] = item->text();
        const QString name = pendingRow_[0].trimmed();
        const QString expression = pendingRow_[1].trimmed();
        if (name.isEmpty() || expression.isEmpty()) return;
        CommandRecord record("set_parameter");
        record.set("name", name.toStdString()).set("expression", expression.toStdString());
        if (!pendingRow_[2].trimmed().isEmpty())
            record.set("comment", pendingRow_[2].trimmed().toStdString());
        // A refused new row keeps what was typed, so it can be put right.
        if (runChange(record)) {
            pendingRow_ = QStringList(3, QString());
            refresh();
        }
        return;
    }

    const std::string name = names_[row].toStdString();
    const Parameter* parameter = document_.findParameter(name);
    if (!parameter) {
        refresh();
        return;
    }
    CommandRecord record;
    QString previous;
    if (column == NameColumn) {
        previous = names_[row];
        record = CommandRecord("rename_parameter");
        record.set("name", name).set("to", text.toStdString());
    } else if (column == ExpressionColumn) {
        previous = fromStd(parameter->expression);
        record = CommandRecord("set_parameter");
        record.set("name", name).set("expression", text.toStdString());
    } else {
        previous = fromStd(parameter->comment);
        record = CommandRecord("set_parameter");
        record.set("name", name)
            .set("expression", parameter->expression)
            .set("comment", text.toStdString());
    }
    if (text == previous) return;
    if (runChange(record))
        refresh();
    else
        revert(item, previous);
}

bool ParametersDialog::runChange(const CommandRecord& record) {
    if (!run_) return false;
    const CommandResult result = run_(record);
    showMessage(fromStd(result.message), !result.ok);
    return result.ok;
}

void ParametersDialog::revert(QTableWidgetItem* item, const QString& text) {
    updating_ = true;
    item->setText(text);
    item->setToolTip(kNotChanged);
    updating_ = false;
}

void ParametersDialog::showMessage(const QString& text, bool error) {
    message_->setText(text);
    if (message_->property("error").toBool() == error) return;
    message_->setProperty("error", error);
    message_->style()->unpolish(message_);
    message_->style()->polish(message_);
}

void ParametersDialog::updateButtons() {
    const int row = table_->currentRow();
    delete_->setEnabled(row >= 0 && row < names_.size());
}

void ParametersDialog::deleteCurrent() {
    const int row = table_->currentRow();
    if (row < 0 || row >= names_.size()) return;
    const QString name = names_[row];
    const std::vector<std::string> users = parameterUsers(document_, name.toStdString());
    if (!users.empty()) {
        QStringList list;
        for (const std::string& user : users) list.append(fromStd(user));
        const QString question =
            QStringLiteral("%1 is used by %2.").arg(name, list.join(QStringLiteral(", ")));
        if (ask_ && !ask_(question)) return;
    }
    if (runChange(CommandRecord("delete_parameter").set("name", name.toStdString()))) refresh();
}

} // namespace cad::ui

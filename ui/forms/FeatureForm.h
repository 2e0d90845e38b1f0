// The card a feature is created or edited in: a title, typed rows (lengths typed as
// expressions, choices, flags, picks in the view...), a message line and OK/Cancel.
// It only holds and shows values; FormController decides what they do.
#pragma once

#ifndef Q_MOC_RUN
#include "core/Result.h"
#include "ui/forms/FormFields.h"
#endif

#include <QFrame>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class QSpinBox;
class QToolButton;

namespace cad {
class Document;
}

namespace cad::ui {

class LengthEdit;

class FeatureForm : public QFrame {
    Q_OBJECT
public:
    // Pick rows name their references through the document's labels.
    explicit FeatureForm(const Document* document, QWidget* parent = nullptr);
    ~FeatureForm() override;

    void setTitle(const QString& iconName, const QString& title);
    QString title() const;

    // ---- Rows. Keys are the command arguments the rows fill, unique in a form.
    void addSection(const QString& key, const QString& label);
    LengthEdit* addLength(const QString& key, const QString& label, const QString& tooltip,
                          const QString& value);
    LengthEdit* addNumber(const QString& key, const QString& label, const QString& tooltip,
                          const QString& value);
    QSpinBox* addInteger(const QString& key, const QString& label, const QString& tooltip,
                         int value, int minimum = 1, int maximum = 1000);
    QComboBox* addChoice(const QString& key, const QString& label, const QString& tooltip,
                         const std::vector<FieldChoice>& choices, const QString& value);
    // A choice shown as a row of buttons, one of them pressed ("Fillet | Chamfer");
    // without a label it takes the card's whole width.
    QFrame* addSegmented(const QString& key, const QString& label, const QString& tooltip,
                         const std::vector<FieldChoice>& choices, const QString& value);
    QLineEdit* addText(const QString& key, const QString& label, const QString& tooltip,
                       const QString& value);
    QToolButton* addFlag(const QString& key, const QString& label, const QString& tooltip,
                         bool value);
    QPushButton* addPick(const QString& key, const QString& label, const QString& tooltip,
                         const PickRule& rule);
    QLabel* addMessage(const QString& key, const QString& text);
    // The row shows only while `other` holds one of `values` (a flag reads "true" or
    // "false", a choice its value); with several such conditions, while all hold.
    void showWhen(const QString& key, const QString& other, const QStringList& values);

    bool has(const QString& key) const;
    FieldKind kind(const QString& key) const;
    bool isShown(const QString& key) const;
    QWidget* editor(const QString& key) const;

    // ---- Values.
    QString text(const QString& key) const;
    // Evaluated in the unit and with the parameters in force: millimetres for a
    // length. Errors are the evaluator's sentence after the row's label.
    Result<double> length(const QString& key) const;
    Result<double> number(const QString& key) const;
    int integer(const QString& key) const;
    bool flag(const QString& key) const;
    const std::vector<std::string>& references(const QString& key) const;
    void setText(const QString& key, const QString& value);
    void setFlag(const QString& key, bool value);
    void setReferences(const QString& key, std::vector<std::string> references);
    void setReadOnly(const QString& key, bool readOnly);
    // Lengths and numbers evaluate again (the unit or the parameters changed).
    void revalidate();

    // ---- Picking. At most one pick row is active; its clicks arrive through picked().
    void activatePick(const QString& key); // empty: none
    QString activePick() const { return activePick_; }
    const PickRule* pickRule(const QString& key) const;
    // Activates the first shown, editable pick row without references; false when none.
    bool activateNextEmptyPick();
    // Puts the keyboard in the first shown, editable length or number, all of it
    // selected, so a typed value replaces it; false when there is none.
    bool focusFirstValue();
    // References clicked for the active row: added, or dropped when all of them were
    // there already (a second click undoes the first). A single row takes the first
    // and moves on to the next empty row. `at` is the model point the click hit, when
    // known.
    void picked(const std::vector<std::string>& references,
                const std::optional<std::array<double, 3>>& at = std::nullopt);
    // The prompt of the first shown, required pick row that is empty; empty when none.
    QString missingPrompt() const;
    // Pick rows show their references' current labels again.
    void refreshPickTexts();

    // ---- Message line and buttons.
    void showMessage(const QString& text, bool error = false);
    QString message() const;
    bool messageIsError() const;
    void setPrimaryText(const QString& text);
    void setAcceptEnabled(bool enabled);
    bool acceptEnabled() const;
    QPushButton* primaryButton() const { return primary_; }
    QPushButton* cancelButton() const { return cancel_; }
    // Caps the rows' scroll area so the card never covers the whole view.
    void setMaximumRowsHeight(int height);

signals:
    // A row's value changed (typing, choosing, picking, clearing).
    void changed(const QString& key);
    // The active pick row changed; empty when none is active.
    void activePickChanged(const QString& key);
    // OK, or Enter while OK is enabled.
    void acceptRequested();
    // Cancel or Esc.
    void cancelRequested();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Field;
    Field* find(const QString& key);
    const Field* find(const QString& key) const;
    Field& addRow(const QString& key, FieldKind kind, const QString& label, const QString& tooltip,
                  QWidget* editor, QWidget* cell = nullptr);
    void valueChanged(const QString& key);
    void applyVisibility();
    void updatePickText(Field& field);
    void updateRowsHeight();
    void requestAccept();

    const Document* document_;
    std::vector<std::unique_ptr<Field>> fields_;
    int nextRow_ = 0;
    QString activePick_;
    QLabel* icon_;
    QLabel* title_;
    QScrollArea* scroll_;
    QWidget* rows_;
    QGridLayout* grid_;
    QLabel* message_;
    QPushButton* cancel_;
    QPushButton* primary_;
    int maxRowsHeight_ = 420;
};

} // namespace cad::ui

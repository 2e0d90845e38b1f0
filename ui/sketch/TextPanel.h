// The panel sketch text is written and edited in: the words, the font, the height (a
// length or a size in points, "12pt") and the main options (alignment, bold, italic,
// angle). It makes the add_text command for new text, or edit_sketch_entity with what
// changed for text that exists; the window runs it.
#pragma once

#ifndef Q_MOC_RUN
#include "core/CommandRecord.h"
#include "core/Result.h"
#include "core/units/Length.h"
#include "sketch/SketchEntity.h"
#endif

#include <QFrame>
#include <QString>

#include <map>
#include <string>

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace cad::ui {

class LengthEdit;

// What the panel starts an edit from: the text entity's values as the command
// arguments name them, its height in the unit the text shows its size in (the
// document's unit when that is not known); nothing for other kinds.
std::map<std::string, QString> textPanelValues(const SketchEntity& text, units::Length unit);

class TextPanel : public QFrame {
    Q_OBJECT
public:
    explicit TextPanel(QWidget* parent = nullptr);

    // New text at `at` (sketch millimetres). The font, height and options stay as they
    // were last used; the words start empty.
    void startNew(const std::string& sketch, Point2 at);
    // Changes to existing text, starting from its values as the command arguments
    // name them ("text", "font", "height", "align", "bold", "italic", "angle").
    void startEdit(const std::string& sketch, const std::string& entity,
                   const std::map<std::string, QString>& values);
    bool isEditing() const { return !entity_.empty(); }

    // add_text, or edit_sketch_entity carrying only what differs; a sentence when the
    // words are empty or an edit changes nothing.
    Result<CommandRecord> record() const;

    QPlainTextEdit* entry() const { return entry_; }
    QComboBox* font() const { return font_; }
    QLineEdit* height() const { return height_; }
    LengthEdit* angle() const { return angle_; }
    QToolButton* alignButton(const QString& align) const;
    QToolButton* bold() const { return bold_; }
    QToolButton* italic() const { return italic_; }
    QPushButton* primaryButton() const { return primary_; }

signals:
    // The primary button (or Ctrl+Enter) while the record is good; Cancel or Esc.
    void accepted();
    void cancelled();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The fields as the command arguments name them.
    std::map<std::string, QString> values() const;
    void setValues(const std::map<std::string, QString>& values);
    void updateButton();
    void requestAccept();

    std::string sketch_, entity_;
    Point2 at_;
    std::map<std::string, QString> opening_; // what an edit started from
    QPlainTextEdit* entry_;
    QComboBox* font_;
    QLineEdit* height_;
    LengthEdit* angle_;
    std::map<QString, QToolButton*> aligns_;
    QToolButton* bold_;
    QToolButton* italic_;
    QPushButton* cancel_;
    QPushButton* primary_;
};

} // namespace cad::ui

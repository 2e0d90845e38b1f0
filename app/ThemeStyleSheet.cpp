// The application style sheet: one rule per styled widget kind or object name, with
// colour tokens ("@accent") that are replaced by the palette's colours.
#include "app/Theme.h"

#include <QColor>
#include <QLocale>

#include <utility>

namespace cad::ui::theme {

namespace {

// The rules, one a line; widgets pick theirs up by class, object name or property.
const char* const rules = R"(
QWidget { color: @text; }
QMainWindow, #centralHost { background: @bg; }
#topBar { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #1a1715, stop:1 @bg); border-bottom: 1px solid @border; }
#docTitle { color: @text; font-size: 10pt; font-weight: 500; padding: 0 6px; }
#docSubtitle { color: @muted; font-size: 8.5pt; }
QLabel#groupLabel { color: @muted; font-size: 7pt; font-weight: 600; letter-spacing: 1px; padding: 0 2px 0 8px; }
QFrame#topBarDivider { background: @border; max-width: 1px; min-width: 1px; margin: 10px 6px; }
QToolButton { background: transparent; border: 1px solid transparent; border-radius: 6px; padding: 4px; color: @text; }
QToolButton:hover { background: @panel2; }
QToolButton:pressed { background: #2f2a25; }
QToolButton:checked { background: @panel2; border-color: transparent; }
QToolButton:checked:hover { background: #2f2a25; }
QToolButton:disabled { color: @disabled; }
QToolButton#labeledTool { padding: 4px 8px; font-size: 8.5pt; }
QToolButton::menu-indicator { image: none; width: 0; }
QToolButton#panelLabel { color: @muted; font-size: 7pt; font-weight: 600; letter-spacing: 1px; padding: 2px 4px 2px 6px; }
QToolButton#panelLabel:hover { color: @text; background: @panel2; }
QToolButton#designTab { color: @muted; font-size: 7pt; font-weight: 600; letter-spacing: 1px; padding: 2px 10px 3px 10px; border: none; border-bottom: 2px solid transparent; border-radius: 0; background: transparent; }
QToolButton#designTab:hover { color: @text; background: transparent; }
QToolButton#designTab:checked { color: @text; border-bottom-color: @accent; background: transparent; }
QToolButton#toolMenuButton { padding-right: 12px; }
QToolButton#toolMenuButton::menu-button { width: 12px; border: none; background: transparent; }
QToolButton#toolMenuButton::menu-arrow { image: none; }
#commandPalette { background: @panel; border: 1px solid @border; border-radius: 10px; }
#commandPalette QLineEdit { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 6px 8px; color: @text; font-size: 10pt; }
#commandPalette QLineEdit:focus { border-color: @accent; }
#commandPalette QListWidget { background: transparent; border: none; color: @text; outline: none; }
#commandPalette QListWidget::item { padding: 5px 6px; border-radius: 5px; }
#commandPalette QListWidget::item:selected { background: @panel2; color: @accent; }
*[segmented="true"] { background: @panel2; border: 1px solid @border; border-radius: 7px; }
*[segmented="true"] QToolButton { border-radius: 5px; padding: 3px 6px; }
*[segmented="true"] QToolButton:checked { background: @panel; border-color: @border; }
QLabel#panelTitle { color: @muted; font-size: 7.5pt; font-weight: 600; letter-spacing: 1px; }
#overlayPanel QToolButton { padding: 2px; border-radius: 5px; }
QTreeWidget#browserTree { background: transparent; border: none; outline: 0; font-size: 9pt; show-decoration-selected: 0; }
QTreeWidget#browserTree::item { padding: 3px 4px; border-radius: 5px; }
QTreeWidget#browserTree::item:hover { background: @panel2; }
QTreeWidget#browserTree::item:selected { background: @accentDim; color: @text; }
QPlainTextEdit#commandLog { background: transparent; border: none; color: #d9d4c9; selection-background-color: @accentDim; }
QLabel#fieldLabel { color: @muted; font-size: 8.5pt; }
QHeaderView::section { background: @panel2; color: @muted; font-weight: 600; border: none; border-right: 1px solid @border; border-bottom: 1px solid @border; padding: 4px 8px; }
QPushButton#formSection { color: @text; background: transparent; font-size: 8.5pt; font-weight: 600; text-align: left; border: none; border-bottom: 1px solid @border; border-radius: 0; padding: 6px 0 3px 0; margin-top: 2px; }
QPushButton#formSection:hover { color: @accent; }
#sidebar { background: @bg; border-right: 1px solid @border; }
QPushButton[sidebar="true"] { color: @muted; background: transparent; border: none; border-radius: 6px; text-align: left; padding: 0 0 0 9px; font-size: 9pt; }
QPushButton[sidebar="true"]:hover { background: @panel2; color: @text; }
QPushButton[sidebar="true"][highlight="true"] { color: @accent; }
QPushButton[sidebar="true"]:checked { background: @panel2; color: @text; border-left: 3px solid @accent; border-top-left-radius: 0; border-bottom-left-radius: 0; padding-left: 6px; }
QLabel#panelSubtitle { color: @text; font-size: 9pt; font-weight: 500; }
QLabel#panelMessage { color: @muted; font-size: 8.5pt; }
QLabel#panelMessage[error="true"] { color: #e06a6a; }
QLabel#measurePick { color: @text; font-size: 9pt; font-weight: 500; padding-top: 2px; }
QLabel#measureName { color: @muted; font-size: 8.5pt; padding-left: 16px; }
QLabel#measureValue { color: @text; font-size: 9pt; }
QLabel#measureValueStrong { color: @text; font-size: 10pt; font-weight: 600; }
QLabel#measureHint { color: @muted; font-size: 8pt; padding-top: 4px; }
QFrame#measureRule { background: @border; }
QDoubleSpinBox { background: @panel2; border: 1px solid @border; border-radius: 5px; padding: 4px 6px; color: @text; selection-background-color: @accentDim; }
QDoubleSpinBox:focus { border-color: @accent; }
QPushButton { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 5px 16px; color: @text; }
QPushButton:hover { border-color: @accent; color: @accent; }
QPushButton:pressed { background: #2f2a25; }
QPushButton#primaryButton { background: @accent; border-color: @accent; color: #24120a; font-weight: 600; }
QPushButton#primaryButton:hover { background: #e0935a; border-color: #e0935a; color: #24120a; }
QPushButton#primaryButton:disabled { background: #3a2516; border-color: #3a2516; color: #9a8676; }
#extrudePanel *[segmented="true"] QToolButton { padding: 3px 8px; font-size: 8.5pt; }
#extrudePanel *[segmented="true"] QToolButton:checked { color: @accent; }
#filletPanel *[segmented="true"] QToolButton { padding: 3px 8px; font-size: 8.5pt; }
#filletPanel *[segmented="true"] QToolButton:checked { color: @accent; }
#holePanel *[segmented="true"] QToolButton { padding: 3px 6px; font-size: 8.5pt; }
#holePanel *[segmented="true"] QToolButton:checked { color: @accent; }
#featureForm *[segmented="true"] QToolButton { padding: 3px 6px; font-size: 8.5pt; }
#featureForm *[segmented="true"] QToolButton:checked { color: @accent; }
QPushButton#pickField { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 4px 8px; color: @text; text-align: left; }
QPushButton#pickField:checked { border-color: @accent; color: @accent; }
QToolButton#pickClear { color: @muted; padding: 2px; }
QToolButton#flagField { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 4px 8px; color: @muted; }
QToolButton#flagField:checked { border-color: @accent; color: @accent; }
#textPanel *[segmented="true"] QToolButton { padding: 3px 6px; font-size: 8.5pt; }
#textPanel *[segmented="true"] QToolButton:checked { color: @accent; }
QPlainTextEdit#textEntry { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 4px; color: @text; }
QPlainTextEdit#textEntry:focus { border-color: @accent; }
QListWidget#footprintList { background: @panel2; border: 1px solid @border; border-radius: 6px; padding: 2px; }
QListWidget#footprintList::item { padding: 5px 6px; border-radius: 4px; }
QListWidget#footprintList::item:selected { background: @panel; color: @accent; }
#extrudePanel *[segmented="true"] QToolButton:disabled { color: @disabled; }
QLineEdit#lengthEdit { background: @panel2; border: 1px solid @border; border-radius: 5px; padding: 4px 6px; color: @text; selection-background-color: @accentDim; }
QLineEdit#lengthEdit:focus { border-color: @accent; }
QLineEdit#lengthEdit[error="true"] { border-color: #d2413a; }
QToolButton#unitButton { padding: 4px 10px; font-size: 8.5pt; color: @text; border: 1px solid @border; background: @panel2; border-radius: 6px; }
QToolButton#unitButton:hover { border-color: @accent; }
#dimensionBar { background: @panelGlass; border: 1px solid @accentBorder; border-radius: 9px; }
QToolButton#finishSketch { background: @accent; color: #24120a; font-weight: 600; padding: 4px 12px 4px 8px; border-radius: 6px; font-size: 8.5pt; }
QToolButton#finishSketch:hover { background: #e0935a; }
QToolButton#finishComponentButton { background: @accent; color: #24120a; font-weight: 600; padding: 4px 12px 4px 8px; border-radius: 6px; }
QToolButton#finishComponentButton:hover { background: #e0935a; }
QLabel#modeBanner { background: @panelGlass; border: 1px solid @accentBorder; border-radius: 13px; padding: 5px 14px; color: @text; font-size: 8.5pt; }
QLabel#hud { background: @panelGlass; border: 1px solid @border; border-radius: 13px; padding: 5px 14px; color: @text; font-size: 9pt; }
QLabel#hint { color: @muted; font-size: 8pt; background: transparent; }
QLabel#toast { background: #2a1717; border: 1px solid #5a3a3a; border-radius: 8px; padding: 7px 14px; color: #f0c4c4; font-size: 9pt; }
QMenu { background: @panel; border: 1px solid @border; border-radius: 8px; padding: 5px; }
QMenu::item { padding: 6px 28px 6px 12px; border-radius: 5px; color: @text; }
QMenu::item:selected { background: @panel2; }
QMenu::item:disabled { color: @disabled; }
QMenu::separator { height: 1px; background: @border; margin: 5px 8px; }
QMenu::right-arrow { width: 8px; height: 8px; }
QToolTip { background: @panel2; color: @text; border: 1px solid @border; border-radius: 5px; padding: 4px 8px; }
QScrollBar:vertical { background: transparent; width: 9px; margin: 2px; }
QScrollBar:horizontal { background: transparent; height: 9px; margin: 2px; }
QScrollBar::handle { background: #5c544b; border-radius: 3px; min-height: 24px; min-width: 24px; }
QScrollBar::handle:hover { background: #736a5f; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
)";

QString rgba(int red, int green, int blue, double alpha) {
    return QStringLiteral("rgba(%1,%2,%3,%4)")
        .arg(red)
        .arg(green)
        .arg(blue)
        .arg(QString::number(alpha, 'g', QLocale::FloatingPointShortest));
}

} // namespace

QString themeStyleSheet() {
    // Longer tokens come before the tokens that begin them: "@panelGlass" must be
    // replaced before "@panel" would eat its first six letters.
    const std::pair<const char*, QString> tokens[] = {
        {"@panelGlass", rgba(30, 27, 24, 0.92)},     {"@accentDim", rgba(208, 128, 69, 0.2)},
        {"@accentBorder", rgba(208, 128, 69, 0.55)}, {"@accent", QColor("#d08045").name()},
        {"@disabled", QColor("#766d62").name()},     {"@panel2", QColor("#27231f").name()},
        {"@panel", QColor("#1e1b18").name()},        {"@border", QColor("#3a342e").name()},
        {"@muted", QColor("#a0978c").name()},        {"@text", QColor("#f1eee6").name()},
        {"@bg", QColor("#141210").name()},
    };
    QString sheet = QString::fromUtf8(rules).trimmed() + '\n';
    for (const auto& [token, colour] : tokens)
        sheet.replace(QLatin1String(token), colour, Qt::CaseSensitive);
    return sheet;
}

} // namespace cad::ui::theme

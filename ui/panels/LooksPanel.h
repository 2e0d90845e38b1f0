// The looks panel: a card over the view that paints faces, bodies and components
// with an appearance preset or a custom colour, or says what bodies are made of and
// what they weigh. It works on the targets it was opened with and the clicks it takes.
#pragma once

// moc needs none of the model's headers (and cannot parse C++20 concepts).
#ifndef Q_MOC_RUN
#include "core/Command.h"
#include "core/CommandRecord.h"
#endif

#include <QColor>
#include <QFrame>
#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace cad {
class Document;
}

namespace cad::ui {

class PendingChanges;

enum class LooksMode { Appearance, Material };

class LooksPanel : public QFrame {
    Q_OBJECT
public:
    // The window's way of running a command (log line, toast on failure).
    using Runner = std::function<CommandResult(const CommandRecord&)>;
    // Asks for a colour starting from `initial`; none when the user cancelled.
    using ColorChooser = std::function<std::optional<QColor>(const QColor& initial)>;
    // The id a list row stands for (a preset, a material; empty text for "None").
    static constexpr int kIdRole = Qt::UserRole + 1;

    // Observes the document until destroyed, so it must go before the document.
    LooksPanel(Document& document, Runner run, QWidget* parent = nullptr);
    ~LooksPanel() override;

    // Shows the panel in that mode on these targets (faces "Body1/Extrude1.end",
    // bodies or components; anything else is left out).
    void open(LooksMode mode, const std::vector<std::string>& targets);
    // Hides the panel and says so.
    void dismiss();
    LooksMode mode() const { return mode_; }

    void setTargets(const std::vector<std::string>& targets);
    const std::vector<std::string>& targets() const { return targets_; }
    // A click in the view: the faces are added, or dropped when all were there. In
    // material mode a face stands for its body.
    void picked(const std::vector<std::string>& references);

    // Runs set_appearance on the targets ("" takes appearances off), or set_material
    // ("" takes the material off); the result or the failure shows in the message line.
    bool applyAppearance(const QString& text);
    bool applyMaterial(const QString& id);
    // Asks for a colour and paints it with the chosen finish.
    bool chooseCustomColor();
    // Replaces the colour dialog (tests answer it themselves).
    void setColorChooser(ColorChooser chooser) { chooseColor_ = std::move(chooser); }

    QTreeWidget* appearanceList() const { return appearances_; }
    QTreeWidget* materialList() const { return materials_; }
    QComboBox* finishChoice() const { return finish_; }
    QPushButton* customButton() const { return custom_; }
    QToolButton* closeButton() const { return close_; }
    QString title() const;
    // What the targets are, or the prompt to pick some.
    QString targetText() const;
    // What the targets look like or are made of now (material mode: with their mass).
    QString summary() const;
    QString message() const;
    bool messageIsError() const;

    // Brings the targets, the summary and the current row up to date with the document.
    void refresh();

signals:
    void closed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildAppearanceList();
    void buildMaterialList();
    void rowChosen(QTreeWidgetItem* item);
    bool run(const CommandRecord& record);
    void showMessage(const QString& text, bool error);
    // The targets as set_material takes them: faces stand for their bodies.
    std::vector<std::string> materialTargets() const;
    QString describeTargets() const;
    QString describeLooks() const;
    void markCurrentRow();
    QColor currentColor() const;

    Document& document_;
    Runner run_;
    ColorChooser chooseColor_;
    LooksMode mode_ = LooksMode::Appearance;
    std::vector<std::string> targets_;
    PendingChanges* changes_;

    QLabel* icon_;
    QLabel* title_;
    QToolButton* close_;
    QLabel* targetsLabel_;
    QLabel* summary_;
    QStackedWidget* pages_;
    QTreeWidget* appearances_;
    QTreeWidget* materials_;
    QPushButton* custom_;
    QComboBox* finish_;
    QLabel* message_;
};

} // namespace cad::ui

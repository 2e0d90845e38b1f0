// The footprint panel: the per-user footprint library as a list, placing the chosen
// footprint into the sketch being edited (at its origin, or where the view is
// clicked next) and removing footprints from the library.
#pragma once

// moc needs none of the model's headers (and cannot parse C++20 concepts).
#ifndef Q_MOC_RUN
#include "core/Command.h"
#include "core/CommandRecord.h"
#include "sketch/SketchEntity.h"
#endif

#include <QString>
#include <QWidget>

#include <functional>
#include <string>

class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace cad::ui {

class FootprintPanel : public QWidget {
    Q_OBJECT
public:
    // The window's way of running a command (log line, toast on failure).
    using Runner = std::function<CommandResult(const CommandRecord&)>;
    // The footprint's name a list row stands for.
    static constexpr int kNameRole = Qt::UserRole + 1;

    explicit FootprintPanel(Runner run, QWidget* parent = nullptr);

    // The sketch placements go into.
    void setSketch(const std::string& sketch) { sketch_ = sketch; }
    const std::string& sketch() const { return sketch_; }

    // Reads the library again, keeping the chosen footprint when it is still there.
    void refresh();
    // The chosen footprint's name; empty when none is chosen.
    QString chosen() const;
    bool choose(const QString& name);

    // Runs place_footprint with the chosen footprint at this sketch point and the
    // panel's angle; the answer shows in the panel. True when it was placed.
    bool placeAt(Point2 at);
    // Removes the chosen footprint from the library (the library only: no undo).
    bool removeChosen();

    QListWidget* list() const { return list_; }
    QSpinBox* angle() const { return angle_; }
    QPushButton* placeButton() const { return place_; }
    QPushButton* clickButton() const { return click_; }
    QPushButton* removeButton() const { return remove_; }
    QString message() const;
    bool messageIsError() const;

signals:
    // Place by Click toggled: the window hands the view's next click to the panel.
    void clickPlacementToggled(bool on);
    // A footprint went into the sketch; the sentence is the command's.
    void placed(const QString& message);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showMessage(const QString& text, bool error);
    void updateButtons();

    Runner run_;
    std::string sketch_;
    QListWidget* list_;
    QSpinBox* angle_;
    QPushButton* place_;
    QPushButton* click_;
    QPushButton* remove_;
    QLabel* message_;
};

} // namespace cad::ui

// The viewport's tool while a sketch is edited. Clicks, drags, typed values and keys
// become sketch commands run through the window (so everything drawn by hand is
// undoable and logged like an agent's call); on a transparent layer over the view it
// draws the live preview with its caption, snaps, dimensions and highlights. It never
// changes the sketch itself.
#pragma once

#ifndef Q_MOC_RUN
#include "core/CommandRecord.h"
#include "core/units/Length.h"
#include "ui/sketch/DrawingTools.h"
#include "ui/sketch/SketchDimensions.h"
#include "ui/sketch/SketchScene.h"
#include "ui/sketch/SketchView.h"
#endif
#include "rendering/ViewportTool.h"
#include "ui/sketch/InlineFields.h"
#include "ui/sketch/SketchOverlay.h"
#include "ui/widgets/LengthEdit.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QPainter;

namespace cad {
class Document;
class SketchObject;
} // namespace cad

namespace cad::ui {

class SketchSession : public QObject, public rendering::ViewportTool {
    Q_OBJECT
public:
    // The tools, numbered as the window's actions number them.
    enum Tool {
        Select = 0,
        Line = 1,
        Rectangle = 2,
        Circle = 3,
        Point = 4,
        Arc = 5,
        CenterArc = 6,
        Polygon = 7,
        Spline = 8,
        Slot = 9,
        Dimension = 10,
        Constraint = 11,
        Fillet = 12,
        Chamfer = 13,
        Trim = 14,
        Extend = 15,
        Offset = 16,
        Mirror = 17,
        Text = 18,
        CenterRectangle = 19
    };

    // What a form picking in this sketch takes from a click: whole entities (any of
    // them, or only curves) or named points ("Circle1.center", "Origin").
    enum class FormPick { Entities, Curves, Points };

    // overlayParent: the widget the session draws over (the viewport). The session
    // takes no Qt parent: its owner deletes it, and it takes its widgets along.
    SketchSession(QWidget* overlayParent, std::unique_ptr<SketchView> view);
    ~SketchSession() override;

    void setDocument(Document* document);
    // Runs one command through the window (toast and log on failure); returns success.
    void setCommandRunner(std::function<bool(const CommandRecord&)> run);
    // Opens and closes one undo step around the several commands of one drawing action.
    void setGroupHooks(std::function<void()> begin, std::function<void()> end);

    // Starts editing (tool Select); a session already running ends first.
    void begin(const std::string& sketchId);
    void end();
    bool isActive() const { return active_; }
    const std::string& sketchId() const { return sketchId_; }

    // constraintKind: the constraint type 0..11 for the Constraint tool. Unknown
    // numbers are ignored. Mirror and Offset start from the selected entities.
    void setTool(int tool, int constraintKind = -1);
    int tool() const { return tool_; }
    int constraintKind() const { return constraintKind_; }
    // How many clicks the current tool has taken.
    int step() const { return step_; }
    void setConstruction(bool on);
    bool construction() const { return construction_; }
    // Chain selection: a click on a line or arc selects the curves joined to it end to end.
    void setChainSelection(bool on) { chain_ = on; }
    bool chainSelection() const { return chain_; }
    // The entities Mirror or Offset has picked so far.
    const std::vector<std::string>& chosen() const { return chosen_; }

    // A form's pick row takes its clicks from this sketch: each click on what `what`
    // allows hands a reference to `picked`; `marked` lists what the row holds, drawn
    // highlighted. The tool goes back to Select; stopFormPick() ends it.
    void startFormPick(FormPick what, std::function<void(const std::string&)> picked,
                       std::function<std::vector<std::string>()> marked = {});
    void stopFormPick();
    bool formPicking() const { return formPick_.on; }

    // Esc: leaves the current step; with nothing picked ends the tool. False when the
    // session was in the select state with nothing to drop (the sketch is finished then).
    bool cancel();
    // Re-reads the sketch after any command (an agent's, undo, redo): drops picks that
    // are gone and repaints; ends the session when the sketch itself is gone.
    void refresh();

    std::vector<std::string> selectedEntities() const { return selectedEntities_; }
    std::vector<std::string> selectedConstraints() const { return selectedConstraints_; }
    const QString& status() const { return status_; }
    const QString& caption() const { return caption_; }

    // Opens the in-view value editor of a dimension, as double-clicking its label does.
    bool editDimension(const QString& constraint);

    SketchView& view() { return *view_; }

    bool mousePress(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void mouseMove(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void mouseRelease(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void mouseDoubleClick(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void leave() override;
    bool keyPress(QKeyEvent* event) override;

signals:
    void activeChanged(bool active);
    void toolChanged(int tool);
    void constructionModeChanged(bool on);
    void statusChanged(const QString& text);
    void stepChanged(int step);
    void liveValues(const QMap<QString, double>& values);
    void typingRequested(const QString& first);
    void selectionChanged(const QString& entity);
    void constraintSelectionChanged(const QString& constraint);
    void editDimensionRequested(const QString& constraint);
    void hoverTextChanged(const QString& text);
    // The Text tool's click: new text goes at this sketch point (millimetres).
    void textPlacementRequested(const QPointF& at);
    // A double-click on text, or on a copy a sketch pattern made.
    void editTextRequested(const QString& entity);
    void editPatternRequested(const QString& pattern);

private:
    struct RecordedSnap {
        Point2 position;
        std::string reference;
    };
    // A press in the select state: on a point or a label it may become a drag.
    struct Drag {
        enum Kind { None, Point, Label, Entities };
        bool pressed = false;
        Hit hit; // what the press was on
        Kind kind = None;
        std::string reference; // the point, or the dimension's ID
        QPointF press;
        bool moving = false;
        Point2 grab;   // a label: its position minus the cursor at the press
        Point2 target; // where the point or the label goes
        std::optional<std::vector<SketchEntity>> solved; // a point drag's re-solved sketch
        Point2 start;                                    // entities: the press in the sketch
        std::vector<std::string> entities;               // entities: what moves
        std::vector<SketchEntity> moved;                 // entities: where they would go
    };
    struct FormPickState {
        bool on = false;
        FormPick what = FormPick::Entities;
        std::function<void(const std::string&)> picked;
        std::function<std::vector<std::string>()> marked;
    };
    // A dimension as drawn: its constraint, where its label is and the label's box.
    struct DimensionView {
        const SketchConstraint* constraint = nullptr;
        DimensionShape shape;
        QString text;
        QRectF box; // the label's box in pixels
    };

    // Lifecycle and state (SketchSession.cpp).
    const SketchObject* sketch() const;
    bool isDrawingTool() const;
    bool isModifyTool() const;
    DrawKind drawKind() const;
    void resetTool();
    void setStep(int step);
    void updateStatus();
    QString prompt() const;
    // Puts a sentence in front of the prompt until the next step: by default "That
    // can't be used here".
    void refuse(const char* why = nullptr);
    bool locate(QPointF pixel);
    double pixelAt(Point2 p) const;
    void updateHover();
    void setHoverText(const QString& text);
    void setSelection(std::vector<std::string> entities, std::vector<std::string> constraints);
    bool run(const CommandRecord& record);
    void beginGroup();
    void endGroup();

    // Drawing tools (SketchSessionDrawing.cpp).
    void snapCursor();
    DrawStep currentStep() const;
    void updatePreview();
    void trackArc();
    void clickDrawing();
    void completeStep();
    void finishSpline(bool closed);
    void startFields();
    void typedChanged();
    std::optional<std::vector<std::string>> commitDrawing(const DrawStep& step,
                                                          const std::vector<RecordedSnap>& snaps);
    bool addAutomatic(ConstraintType type, std::vector<SketchRef> refs,
                      const TypedValue* value = nullptr, std::optional<Point2> label = {});
    CommandRecord entityRecord(const SketchEntity& entity) const;

    // Fillet, chamfer, trim, extend, offset, mirror and text (SketchSessionModify.cpp).
    QString modifyPrompt() const;
    void clickModify(const Hit& hit, Qt::KeyboardModifiers modifiers);
    void clickCorner(const Hit& hit);
    void clickOffset(const Hit& hit, Qt::KeyboardModifiers modifiers);
    void clickMirror(const Hit& hit);
    // The copies an offset would make now, and the distance it would use.
    void updateOffsetPreview();
    void placeOffset(bool typed);
    void setChosen(std::vector<std::string> ids);
    std::string chosenList() const;
    // The lines and arcs joined end to end with this one (itself for other kinds).
    std::vector<std::string> chainOf(int entity) const;
    // What a click on this entity selects: it, or with chain selection its chain, and
    // the rest of its group.
    std::vector<std::string> selectionUnit(int entity) const;
    void clickFormPick();
    unsigned formPickKinds() const;

    // Dimension and constraint tools (SketchSessionPicks.cpp).
    unsigned acceptedKinds() const;
    bool acceptable(const Hit& hit) const;
    void clickPicking();
    void clickDimension(const Hit& hit);
    void clickConstraint(const Hit& hit);
    std::optional<ConstraintType> placedDimensionType(Point2 label) const;
    void placeDimension();
    QString pickPrompt() const;

    // The select state: hover, selection, drags and the dimension editor
    // (SketchSessionSelect.cpp).
    const std::vector<DimensionView>& dimensionViews() const;
    const SketchConstraint* labelAt(QPointF pixel) const;
    QString hoverText(const Hit& hit) const;
    QRectF labelBox(const QString& text, Point2 at) const;
    void pressSelect(Qt::KeyboardModifiers modifiers);
    void moveDrag(QPointF position);
    void releaseSelect(Qt::KeyboardModifiers modifiers);
    void submitEditor();
    void closeEditor();
    // Enter and Esc in the dimension editor.
    bool eventFilter(QObject* watched, QEvent* event) override;

    // The overlay (SketchSessionPaint.cpp).
    void paint(QPainter& painter) const;
    void repaint();

    QWidget* parent_;
    std::unique_ptr<SketchView> view_;
    QPointer<SketchOverlay> overlay_;
    QPointer<InlineFields> fields_;
    QPointer<LengthEdit> editor_;
    Document* document_ = nullptr;
    std::function<bool(const CommandRecord&)> run_;
    std::function<void()> groupBegin_, groupEnd_;

    bool active_ = false;
    std::string sketchId_;
    int tool_ = Select;
    int constraintKind_ = -1;
    bool construction_ = false;
    int step_ = 0;
    QString refusal_; // why the last click could not be used; empty when it could
    QString status_, caption_, hoverText_;
    units::Length unit_ = units::Length::Millimeters;

    SketchScene scene_;
    std::vector<SketchConstraint> constraints_;

    // The cursor: its pixel, its sketch point, the model length of a pixel there, and
    // the position the tools use (snapped onto geometry or rounded to the grid).
    bool hasCursor_ = false;
    QPointF cursorPixel_;
    Point2 cursor_;
    double pixel_ = 0.1;
    Hit snap_;
    Point2 snapped_;
    bool closing_ = false; // the spline cursor is on the spline's first point

    // Drawing: the points clicked, the snaps recorded with them, typed values.
    std::vector<Point2> points_;
    std::vector<RecordedSnap> snaps_;
    TypedValues typed_;
    bool typedValid_ = true;
    double arcSweep_ = 0, arcLastAngle_ = 0;
    std::optional<Point2> chainStart_; // where a chain of lines began
    DrawStep preview_;

    // Picks of the dimension and constraint tools; `placing_` once a dimension only
    // waits for its label.
    std::vector<Hit> picks_;
    bool placing_ = false;

    // Mirror and Offset: the entities picked; the offset's copies as they would be made
    // now, with their distance. The corner tools' last values.
    std::vector<std::string> chosen_;
    std::vector<SketchEntity> offsetPreview_;
    double offsetDistance_ = 0;
    double lastFillet_ = 0, lastChamfer_ = 0;
    bool chain_ = false;
    FormPickState formPick_;

    Hit hover_;
    std::string hoverDimension_;
    std::vector<std::string> selectedEntities_, selectedConstraints_;
    Drag drag_;
    std::string editing_; // the dimension in the editor

    // The dimensions as last laid out, kept while the sketch and the view stay put.
    mutable std::vector<DimensionView> dimensions_;
    mutable bool dimensionsValid_ = false;
    mutable std::array<QPointF, 3> dimensionsView_;
};

} // namespace cad::ui

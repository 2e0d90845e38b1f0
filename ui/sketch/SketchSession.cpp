// The sketch session's life and state: starting and ending, tools and steps, prompts,
// the cursor, Esc, re-reading the sketch after commands, and the mouse and keys
// handed on to the tool that is active.
#include "ui/sketch/SketchSession.h"

#include "core/Document.h"
#include "sketch/SketchObject.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace cad::ui {

namespace {

const char* const kRefusal = "That can't be used here   ·   ";

} // namespace

SketchSession::SketchSession(QWidget* overlayParent, std::unique_ptr<SketchView> view)
    : parent_(overlayParent), view_(std::move(view)) {
    overlay_ = new SketchOverlay(parent_, [this](QPainter& painter) { paint(painter); });
    overlay_->hide();
    view_->setOverlay(overlay_);
    fields_ = new InlineFields(parent_);
    connect(fields_, &InlineFields::edited, this, [this] { typedChanged(); });
    connect(fields_, &InlineFields::submitted, this, [this] { completeStep(); });
    connect(fields_, &InlineFields::cancelled, this, [this] {
        fields_->clear();
        typedChanged();
    });
    editor_ = new LengthEdit(parent_);
    editor_->setObjectName(QStringLiteral("dimensionEditor"));
    editor_->setAccessibleName(QStringLiteral("Dimension value"));
    // The in-view editor carries its own look: the application's sheet styles the
    // fields of forms and panels by their names, and this one floats over the view.
    editor_->setStyleSheet(QStringLiteral(
        "QLineEdit { background: #27231f; border: 1px solid #d08045; border-radius: 5px; "
        "padding: 3px 6px; color: #f1eee6; selection-background-color: rgba(208,128,69,0.35); }"
        "QLineEdit[error=\"true\"] { border-color: #d2413a; }"));
    editor_->setFixedWidth(110);
    editor_->installEventFilter(this);
    editor_->hide();
}

SketchSession::~SketchSession() {
    // The editor tells its filter about its own destruction; by then it is no longer
    // a LengthEdit, so the session stops listening first.
    if (editor_) editor_->removeEventFilter(this);
    delete editor_.data();
    delete fields_.data();
    delete overlay_.data();
}

void SketchSession::setDocument(Document* document) {
    if (active_) end();
    document_ = document;
}

void SketchSession::setCommandRunner(std::function<bool(const CommandRecord&)> run) {
    run_ = std::move(run);
}

void SketchSession::setGroupHooks(std::function<void()> begin, std::function<void()> end) {
    groupBegin_ = std::move(begin);
    groupEnd_ = std::move(end);
}

const SketchObject* SketchSession::sketch() const {
    if (!document_ || sketchId_.empty()) return nullptr;
    return dynamic_cast<const SketchObject*>(document_->find(sketchId_));
}

void SketchSession::begin(const std::string& sketchId) {
    if (active_) end();
    if (!document_ || !dynamic_cast<const SketchObject*>(document_->find(sketchId))) return;
    active_ = true;
    sketchId_ = sketchId;
    tool_ = Select;
    constraintKind_ = -1;
    resetTool();
    overlay_->setGeometry(parent_->rect());
    overlay_->show();
    overlay_->raise();
    refresh();
    emit activeChanged(true);
    emit toolChanged(tool_);
    updateStatus();
    emit stepChanged(step_);
}

void SketchSession::end() {
    if (!active_) return;
    formPick_ = {};
    resetTool();
    closeEditor();
    setSelection({}, {});
    hover_ = {};
    hoverDimension_.clear();
    setHoverText({});
    active_ = false;
    sketchId_.clear();
    overlay_->hide();
    caption_.clear();
    emit activeChanged(false);
}

bool SketchSession::isDrawingTool() const {
    return (tool_ >= Line && tool_ <= Slot) || tool_ == CenterRectangle;
}

bool SketchSession::isModifyTool() const { return tool_ >= Fillet && tool_ <= Text; }

DrawKind SketchSession::drawKind() const {
    switch (tool_) {
    case Rectangle:
        return DrawKind::Rectangle;
    case CenterRectangle:
        return DrawKind::CenterRectangle;
    case Circle:
        return DrawKind::Circle;
    case Point:
        return DrawKind::Point;
    case Arc:
        return DrawKind::Arc;
    case CenterArc:
        return DrawKind::CenterArc;
    case Polygon:
        return DrawKind::Polygon;
    case Spline:
        return DrawKind::Spline;
    case Slot:
        return DrawKind::Slot;
    default:
        return DrawKind::Line;
    }
}

void SketchSession::resetTool() {
    points_.clear();
    snaps_.clear();
    picks_.clear();
    placing_ = false;
    chosen_.clear();
    offsetPreview_.clear();
    offsetDistance_ = 0;
    chainStart_.reset();
    arcSweep_ = arcLastAngle_ = 0;
    closing_ = false;
    drag_ = {};
    hover_ = {};
    hoverDimension_.clear();
    refusal_.clear();
    preview_ = {};
    typed_.clear();
    typedValid_ = true;
    if (fields_) fields_->setFields({});
    step_ = 0;
}

void SketchSession::setTool(int tool, int constraintKind) {
    const bool known = tool >= Select && tool <= CenterRectangle;
    if (!known) return;
    if (tool == Constraint && (constraintKind < 0 || constraintKind > 11)) return;
    const bool changed = tool != tool_ || (tool == Constraint && constraintKind != constraintKind_);
    const int oldStep = step_;
    // Mirror and Offset work on what is selected when they start.
    std::vector<std::string> carried;
    if (tool == Mirror || tool == Offset) carried = selectedEntities_;
    resetTool();
    closeEditor();
    tool_ = tool;
    constraintKind_ = tool == Constraint ? constraintKind : -1;
    if (tool_ != Select) setSelection({}, {});
    if (changed) emit toolChanged(tool_);
    if (!carried.empty()) {
        setChosen(std::move(carried));
    } else if (oldStep != step_) {
        emit stepChanged(step_);
    }
    if (isDrawingTool()) fields_->setFields(inlineFields(drawKind(), 0));
    updateStatus();
    updateHover();
    repaint();
}

void SketchSession::setConstruction(bool on) {
    if (on == construction_) return;
    construction_ = on;
    emit constructionModeChanged(on);
    updateHover();
    repaint();
}

void SketchSession::setStep(int step) {
    refusal_.clear();
    if (step != step_) {
        step_ = step;
        emit stepChanged(step_);
    }
    if (isDrawingTool() || tool_ == Offset) {
        // The offset takes its distance typed once its curves are picked.
        static const std::vector<InlineField> distance{{"distance", "Distance", true}};
        fields_->setFields(isDrawingTool() ? inlineFields(drawKind(), step_)
                           : step_ == 1    ? distance
                                           : std::vector<InlineField>{});
        typed_.clear();
        typedValid_ = true;
    }
    updateStatus();
}

QString SketchSession::prompt() const {
    switch (tool_) {
    case Select:
        return QStringLiteral("Click a curve to see its dimensions · drag points · double-click "
                              "a dimension to edit · Esc to finish");
    case Line:
        return QStringLiteral("Line · click to start");
    case Rectangle:
        return QStringLiteral("Rectangle · click the first corner");
    case CenterRectangle:
        return QStringLiteral("Center rectangle · click the center");
    case Circle:
        return QStringLiteral("Circle · click the center");
    case Point:
        return QStringLiteral("Point · click to place");
    case Polygon:
        return QStringLiteral("Polygon · click the center");
    case Arc: {
        static const char* const steps[] = {"Arc · click the start", "Arc · click the end",
                                            "Arc · click a point on the arc"};
        return QString::fromUtf8(steps[std::clamp(step_, 0, 2)]);
    }
    case CenterArc: {
        static const char* const steps[] = {"Center arc · click the center",
                                            "Center arc · click the start (sets the radius)",
                                            "Center arc · move around to the end and click"};
        return QString::fromUtf8(steps[std::clamp(step_, 0, 2)]);
    }
    case Spline:
        return step_ == 0 ? QStringLiteral("Spline · click points")
                          : QStringLiteral("Spline · click points · Enter to finish · click the "
                                           "first point to close");
    case Slot: {
        static const char* const steps[] = {"Slot · click the first center",
                                            "Slot · click the second center",
                                            "Slot · set the width"};
        return QString::fromUtf8(steps[std::clamp(step_, 0, 2)]);
    }
    default:
        return isModifyTool() ? modifyPrompt() : pickPrompt();
    }
}

void SketchSession::updateStatus() {
    const QString text = refusal_ + prompt();
    if (text == status_) return;
    status_ = text;
    emit statusChanged(status_);
}

void SketchSession::refuse(const char* why) {
    refusal_ = QString::fromUtf8(why ? why : kRefusal);
    updateStatus();
}

bool SketchSession::cancel() {
    if (!active_) return false;
    if (!editing_.empty()) {
        closeEditor();
        return true;
    }
    if (drag_.kind != Drag::None) {
        drag_ = {};
        repaint();
        return true;
    }
    if (fields_->isTyping()) {
        fields_->clear();
        typedChanged();
        return true;
    }
    const bool picked = !points_.empty() || !picks_.empty() || placing_ || !chosen_.empty();
    if (tool_ != Select) {
        if (picked) {
            points_.clear();
            snaps_.clear();
            picks_.clear();
            chosen_.clear();
            offsetPreview_.clear();
            placing_ = false;
            chainStart_.reset();
            setStep(0);
        } else {
            setTool(Select);
        }
        updateHover();
        repaint();
        return true;
    }
    if (selectedEntities_.empty() && selectedConstraints_.empty()) return false;
    setSelection({}, {});
    repaint();
    return true;
}

void SketchSession::refresh() {
    if (!active_) return;
    const SketchObject* current = sketch();
    if (!current) {
        end();
        return;
    }
    unit_ = document_->lengthUnit();
    view_->setPlane(current->frame());
    scene_.rebuild(current->entities, pixel_);
    constraints_ = current->constraints;
    dimensionsValid_ = false;

    // Picks, snaps and selections that name what no longer exists are dropped.
    auto exists = [&](const std::string& reference) {
        const std::optional<SketchRef> ref = parseReference(reference);
        return ref && resolveReference(*ref, current->entities).ok();
    };
    if (std::any_of(picks_.begin(), picks_.end(),
                    [&](const Hit& h) { return !exists(h.reference); })) {
        picks_.clear();
        placing_ = false;
        setStep(0);
    }
    std::erase_if(snaps_, [&](const RecordedSnap& s) { return !exists(s.reference); });
    if (std::erase_if(chosen_, [&](const std::string& id) { return !current->findEntity(id); }) &&
        chosen_.empty())
        setStep(0);
    std::vector<std::string> entities = selectedEntities_, constraints = selectedConstraints_;
    std::erase_if(entities, [&](const std::string& id) { return !current->findEntity(id); });
    std::erase_if(constraints, [&](const std::string& id) { return !current->findConstraint(id); });
    setSelection(std::move(entities), std::move(constraints));
    if (!editing_.empty() && !current->findConstraint(editing_)) closeEditor();
    if (drag_.kind == Drag::Point && !exists(drag_.reference)) drag_ = {};
    if (drag_.kind == Drag::Label && !current->findConstraint(drag_.reference)) drag_ = {};
    if (drag_.kind == Drag::Entities &&
        std::any_of(drag_.entities.begin(), drag_.entities.end(),
                    [&](const std::string& id) { return !current->findEntity(id); }))
        drag_ = {};
    if (!hoverDimension_.empty() && !current->findConstraint(hoverDimension_))
        hoverDimension_.clear();
    updateHover();
    repaint();
}

bool SketchSession::locate(QPointF pixel) {
    cursorPixel_ = pixel;
    const std::optional<Point2> at = view_->toSketch(pixel);
    if (!at) {
        hasCursor_ = false;
        return false;
    }
    // The model length of one pixel, measured here: the views may be in perspective.
    if (const std::optional<Point2> beside = view_->toSketch(pixel + QPointF(1, 0)))
        pixel_ = std::max(std::hypot(beside->x - at->x, beside->y - at->y), 1e-6);
    cursor_ = *at;
    hasCursor_ = true;
    scene_.resample(pixel_);
    return true;
}

void SketchSession::updateHover() {
    if (!active_) return;
    if (isDrawingTool()) {
        updatePreview();
        return;
    }
    caption_.clear();
    if (tool_ == Offset && step_ == 1) updateOffsetPreview();
    Hit hit;
    std::string dimension;
    if (hasCursor_ && drag_.kind == Drag::None) {
        if (tool_ == Select && !formPick_.on) {
            if (const SketchConstraint* label = labelAt(cursorPixel_)) dimension = label->id;
        }
        const unsigned kinds = formPick_.on       ? formPickKinds()
                               : tool_ == Select ? static_cast<unsigned>(PickAll)
                                                 : acceptedKinds();
        if (dimension.empty() && kinds) hit = scene_.pick(cursor_, pixel_, kinds);
        if (formPick_.on && hit.entity < 0 && formPick_.what != FormPick::Points) hit = {};
    }
    hover_ = hit;
    hoverDimension_ = dimension;
    if (!dimension.empty()) {
        const SketchConstraint* c = nullptr;
        for (const SketchConstraint& candidate : constraints_)
            if (candidate.id == dimension) c = &candidate;
        if (c)
            setHoverText(
                QStringLiteral("%1 %2  ·  %3  ·  double-click to edit")
                    .arg(QString::fromStdString(c->id),
                         QString::fromStdString(dimensionValueText(c->type, c->value, unit_)),
                         QString::fromStdString(measuredText(c->refs))));
    } else {
        setHoverText(hoverText(hit));
    }
}

void SketchSession::setHoverText(const QString& text) {
    if (text == hoverText_) return;
    hoverText_ = text;
    emit hoverTextChanged(hoverText_);
}

void SketchSession::setSelection(std::vector<std::string> entities,
                                 std::vector<std::string> constraints) {
    const bool entitiesChanged = entities != selectedEntities_;
    const bool constraintsChanged = constraints != selectedConstraints_;
    selectedEntities_ = std::move(entities);
    selectedConstraints_ = std::move(constraints);
    if (entitiesChanged)
        emit selectionChanged(selectedEntities_.empty()
                                  ? QString()
                                  : QString::fromStdString(selectedEntities_.back()));
    if (constraintsChanged)
        emit constraintSelectionChanged(selectedConstraints_.empty()
                                            ? QString()
                                            : QString::fromStdString(selectedConstraints_.back()));
}

bool SketchSession::run(const CommandRecord& record) {
    if (!run_) return false;
    const bool ok = run_(record);
    refresh();
    return ok;
}

void SketchSession::beginGroup() {
    if (groupBegin_) groupBegin_();
}

void SketchSession::endGroup() {
    if (groupEnd_) groupEnd_();
}

bool SketchSession::mousePress(QPointF position, Qt::KeyboardModifiers modifiers) {
    if (!active_) return false;
    if (!editing_.empty()) closeEditor();
    if (!locate(position)) return true;
    if (formPick_.on) {
        clickFormPick();
    } else if (tool_ == Select) {
        pressSelect(modifiers);
    } else if (isDrawingTool()) {
        snapCursor();
        trackArc();
        clickDrawing();
    } else if (isModifyTool()) {
        const unsigned kinds = acceptedKinds();
        clickModify(kinds ? scene_.pick(cursor_, pixel_, kinds) : Hit{}, modifiers);
    } else {
        clickPicking();
    }
    repaint();
    return true;
}

void SketchSession::mouseMove(QPointF position, Qt::KeyboardModifiers /*modifiers*/) {
    if (!active_) return;
    if (!locate(position)) {
        leave();
        return;
    }
    // Every repaint of the see-through layer redraws the view beneath it, so a move
    // over nothing, with nothing following the cursor, paints nothing.
    auto idle = [this] {
        return !isDrawingTool() && tool_ != Offset && drag_.kind == Drag::None && picks_.empty() &&
               !placing_ && !hover_ && hoverDimension_.empty();
    };
    const bool wasIdle = idle();
    if (drag_.kind != Drag::None) {
        moveDrag(position);
    } else {
        if (isDrawingTool()) trackArc();
        updateHover();
    }
    if (!(wasIdle && idle())) repaint();
}

void SketchSession::mouseRelease(QPointF position, Qt::KeyboardModifiers modifiers) {
    if (!active_ || tool_ != Select || formPick_.on) return;
    if (locate(position) && drag_.kind != Drag::None) moveDrag(position);
    releaseSelect(modifiers);
    repaint();
}

void SketchSession::mouseDoubleClick(QPointF position, Qt::KeyboardModifiers /*modifiers*/) {
    if (!active_ || formPick_.on || (tool_ != Select && tool_ != Text)) return;
    if (tool_ == Select)
        if (const SketchConstraint* label = labelAt(position)) {
            editDimension(QString::fromStdString(label->id));
            return;
        }
    if (!locate(position)) return;
    const Hit hit = scene_.pick(cursor_, pixel_, PickAll);
    const SketchObject* current = sketch();
    if (!hit || hit.entity < 0 || !current) return;
    const SketchEntity& entity = scene_.entities()[static_cast<std::size_t>(hit.entity)];
    if (entity.kind() == EntityKind::Text) {
        emit editTextRequested(QString::fromStdString(entity.id));
        return;
    }
    // A copy a pattern made opens its pattern.
    for (const SketchPattern& pattern : current->patterns)
        if (std::find(pattern.copies.begin(), pattern.copies.end(), entity.id) !=
            pattern.copies.end()) {
            emit editPatternRequested(QString::fromStdString(pattern.id));
            return;
        }
}

void SketchSession::leave() {
    hasCursor_ = false;
    if (drag_.kind == Drag::None) {
        hover_ = {};
        hoverDimension_.clear();
        setHoverText({});
        snap_ = {};
        caption_.clear();
    }
    repaint();
}

bool SketchSession::keyPress(QKeyEvent* event) {
    if (!active_) return false;
    const int key = event->key();
    if (key == Qt::Key_Escape) return cancel();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (tool_ == Mirror && step_ == 1) {
            setStep(2);
            updateHover();
            repaint();
            return true;
        }
        if (!isDrawingTool()) return false;
        if (tool_ == Spline) {
            if (points_.size() >= 2) finishSpline(false);
            return true;
        }
        completeStep();
        return true;
    }
    const QString text = event->text();
    // A digit starts typing a size; the offset's distance may also start negative.
    const bool starts = text.size() == 1 &&
                        (text[0].isDigit() || (tool_ == Offset && text[0] == QLatin1Char('-')));
    if ((isDrawingTool() || tool_ == Offset) && starts && fields_->hasFields()) {
        emit typingRequested(text);
        startFields();
        fields_->startTyping(text);
        return true;
    }
    return false;
}

} // namespace cad::ui

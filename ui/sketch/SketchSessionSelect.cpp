// The sketch session's select state: what the cursor is over, selecting entities and
// dimensions, dragging points (re-solved live) and dimension labels, and the in-view
// editor of a dimension's value.
#include "ui/sketch/SketchSession.h"

#include "core/units/ExpressionNames.h"
#include "core/units/Format.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchSolver.h"
#include "sketch/patterns/EntityMotion.h"
#include "ui/presentation/ReferencePicker.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLineF>

#include <algorithm>
#include <cmath>

namespace cad::ui {

namespace {

constexpr double kDragPixels = 3; // how far a press moves before it is a drag

template <typename List> void toggle(List& list, const std::string& id) {
    const auto it = std::find(list.begin(), list.end(), id);
    if (it == list.end())
        list.push_back(id);
    else
        list.erase(it);
}

} // namespace

double SketchSession::pixelAt(Point2 p) const {
    const std::optional<Point2> beside = view_->toSketch(view_->toScreen(p) + QPointF(1, 0));
    return beside ? std::max(std::hypot(beside->x - p.x, beside->y - p.y), 1e-6) : pixel_;
}

QRectF SketchSession::labelBox(const QString& text, Point2 at) const {
    const QFontMetricsF metrics(overlay_->font());
    const QSizeF size(metrics.horizontalAdvance(text) + 12, metrics.height() + 6);
    const QPointF centre = view_->toScreen(at);
    return {centre - QPointF(size.width() / 2, size.height() / 2), size};
}

const std::vector<SketchSession::DimensionView>& SketchSession::dimensionViews() const {
    // Laid out again only when the sketch, the view or a drag changed them.
    const bool dragging = drag_.solved || (drag_.kind == Drag::Label && drag_.moving);
    const std::array<QPointF, 3> where{view_->toScreen({0, 0}), view_->toScreen({1, 0}),
                                       view_->toScreen({0, 1})};
    if (dimensionsValid_ && !dragging && where == dimensionsView_) return dimensions_;
    dimensionsValid_ = !dragging;
    dimensionsView_ = where;
    std::vector<DimensionView>& out = dimensions_;
    out.clear();
    const std::vector<SketchEntity>& entities = drag_.solved ? *drag_.solved : scene_.entities();
    for (const SketchConstraint& c : constraints_) {
        if (!isDimension(c.type)) continue;
        std::optional<Point2> label;
        if (c.label) label = Point2{c.label->first, c.label->second};
        const std::optional<Point2> anchor = dimensionAnchor(c.type, c.refs, entities);
        if (!anchor) continue;
        if (drag_.kind == Drag::Label && drag_.moving && drag_.reference == c.id)
            label = Point2{drag_.target.x - anchor->x, drag_.target.y - anchor->y};
        std::optional<DimensionShape> shape =
            dimensionShape(c.type, c.refs, entities, label, pixelAt(*anchor));
        if (!shape) continue;
        const QString text = QString::fromStdString(dimensionValueText(c.type, c.value, unit_));
        out.push_back({&c, *shape, text, labelBox(text, shape->label)});
    }
    return out;
}

const SketchConstraint* SketchSession::labelAt(QPointF pixel) const {
    const std::vector<DimensionView>& views = dimensionViews();
    for (auto it = views.rbegin(); it != views.rend(); ++it)
        if (it->box.contains(pixel)) return it->constraint;
    return nullptr;
}

QString SketchSession::hoverText(const Hit& hit) const {
    if (!hit) return {};
    if (hit.kind == Hit::Axis) return QString::fromStdString(hit.reference);
    const SketchEntity* e =
        hit.entity >= 0 ? &scene_.entities()[static_cast<std::size_t>(hit.entity)] : nullptr;
    const QString construction =
        e && e->construction ? QStringLiteral(" (construction)") : QString();
    const QString reference = QString::fromStdString(hit.reference);
    auto length = [&](double mm) { return QString::fromStdString(units::formatLength(mm, unit_)); };
    if (hit.kind == Hit::Point) {
        const auto corner = hit.reference.find(".corner");
        if (corner != std::string::npos)
            return QStringLiteral("%1  ·  %2")
                .arg(QString::fromStdString(hit.reference.substr(0, corner)),
                     QStringLiteral("Corner %1")
                         .arg(QString::fromStdString(hit.reference.substr(corner + 7))));
        const QString at =
            QStringLiteral("(%1, %2)")
                .arg(QString::fromStdString(units::formatLength(hit.position.x, unit_, false)),
                     QString::fromStdString(units::formatLength(hit.position.y, unit_, false)));
        return QStringLiteral("%1  ·  %2%3").arg(reference, at, construction);
    }
    QString size;
    const std::optional<SketchRef> ref = parseReference(hit.reference);
    const std::optional<RefShape> shape = ref ? refShape(*ref, scene_.entities()) : std::nullopt;
    if (shape && shape->kind == ResolvedRef::Line)
        size = length(std::hypot(shape->b.x - shape->a.x, shape->b.y - shape->a.y));
    else if (shape && shape->kind == ResolvedRef::Circle)
        size = e && e->kind() == EntityKind::Arc ? QStringLiteral("R ") + length(shape->r)
                                                 : QStringLiteral("Ø ") + length(2 * shape->r);
    else if (e)
        size = QString::fromUtf8(entityKindName(*e).data(),
                                 static_cast<qsizetype>(entityKindName(*e).size()));
    return QStringLiteral("%1  ·  %2%3").arg(reference, size, construction);
}

void SketchSession::pressSelect(Qt::KeyboardModifiers /*modifiers*/) {
    drag_ = {};
    drag_.pressed = true;
    drag_.press = cursorPixel_;
    for (const DimensionView& view : dimensionViews()) {
        if (!view.box.contains(cursorPixel_)) continue;
        drag_.kind = Drag::Label;
        drag_.reference = view.constraint->id;
        drag_.grab = {view.shape.label.x - cursor_.x, view.shape.label.y - cursor_.y};
        drag_.target = view.shape.label;
    }
    if (drag_.kind == Drag::Label) return;
    drag_.hit = scene_.pick(cursor_, pixel_, PickAll);
    if (drag_.hit.kind == Hit::Point && drag_.hit.entity >= 0) {
        drag_.kind = Drag::Point;
        drag_.reference = drag_.hit.reference;
        drag_.target = drag_.hit.position;
    } else if (drag_.hit.kind == Hit::Curve && drag_.hit.entity >= 0) {
        // A curve moves with the rest of the selection when it is part of it, else
        // with what a click on it would select.
        drag_.kind = Drag::Entities;
        drag_.start = cursor_;
        const std::string& id = scene_.entities()[static_cast<std::size_t>(drag_.hit.entity)].id;
        const bool selected = std::find(selectedEntities_.begin(), selectedEntities_.end(), id) !=
                              selectedEntities_.end();
        drag_.entities = selected ? selectedEntities_ : selectionUnit(drag_.hit.entity);
    }
}

std::vector<std::string> SketchSession::chainOf(int entity) const {
    const SketchEntity& clicked = scene_.entities()[static_cast<std::size_t>(entity)];
    std::vector<std::string> chain;
    if (document_ && (clicked.kind() == EntityKind::Line || clicked.kind() == EntityKind::Arc)) {
        const std::string prefix = sketchId_ + "/";
        for (const std::string& reference : expandReference(*document_, prefix + clicked.id))
            if (reference.rfind(prefix, 0) == 0) chain.push_back(reference.substr(prefix.size()));
    }
    if (chain.empty()) chain.push_back(clicked.id);
    return chain;
}

std::vector<std::string> SketchSession::selectionUnit(int entity) const {
    std::vector<std::string> unit =
        chain_ ? chainOf(entity)
               : std::vector<std::string>{scene_.entities()[static_cast<std::size_t>(entity)].id};
    // Grouped entities select together.
    for (std::size_t i = 0, n = unit.size(); i < n; ++i) {
        const int index = scene_.entityIndex(unit[i]);
        const std::string& group =
            index >= 0 ? scene_.entities()[static_cast<std::size_t>(index)].group : std::string();
        if (group.empty()) continue;
        for (const SketchEntity& e : scene_.entities())
            if (e.group == group && std::find(unit.begin(), unit.end(), e.id) == unit.end())
                unit.push_back(e.id);
    }
    return unit;
}

void SketchSession::moveDrag(QPointF position) {
    if (!drag_.moving) {
        if (QLineF(drag_.press, position).length() < kDragPixels) return;
        drag_.moving = true;
    }
    if (drag_.kind == Drag::Label) {
        drag_.target = {cursor_.x + drag_.grab.x, cursor_.y + drag_.grab.y};
        return;
    }
    if (drag_.kind == Drag::Entities) {
        // The entities slide by whole grid steps; drawn where they would go.
        drag_.target = roundToGrid({cursor_.x - drag_.start.x, cursor_.y - drag_.start.y},
                                   gridStep(unit_));
        drag_.moved.clear();
        const RigidMotion motion{{0, 0}, 0, drag_.target};
        for (const std::string& id : drag_.entities) {
            const int index = scene_.entityIndex(id);
            if (index < 0) continue;
            SketchEntity moved = scene_.entities()[static_cast<std::size_t>(index)];
            Result<SketchGeometry> geometry = moveGeometry(moved.geometry, motion);
            if (!geometry) continue;
            moved.geometry = std::move(geometry).value();
            drag_.moved.push_back(std::move(moved));
        }
        return;
    }
    // The point follows the cursor in whole grid steps; the preview re-solves the
    // sketch with the point pulled there, as the command will.
    drag_.target = roundToGrid(cursor_, gridStep(unit_));
    const SketchObject* current = sketch();
    const std::optional<SketchRef> point = parseReference(drag_.reference);
    if (!current || !point) return;
    Result<std::vector<SketchEntity>> solved =
        solveSketch(current->entities, current->constraints, {}, SketchDrag{*point, drag_.target});
    if (solved)
        drag_.solved = std::move(*solved);
    else
        drag_.solved.reset();
}

void SketchSession::releaseSelect(Qt::KeyboardModifiers modifiers) {
    if (!drag_.pressed) return;
    const Drag drag = drag_;
    drag_ = {};
    if (drag.moving && drag.kind == Drag::Point) {
        CommandRecord record("move_sketch_point");
        record.set("sketch", sketchId_).set("point", drag.reference);
        record.set("x", drag.target.x).set("y", drag.target.y);
        run(record);
        return;
    }
    if (drag.moving && drag.kind == Drag::Entities) {
        if (drag.target == Point2{0, 0}) return;
        std::string list;
        for (const std::string& id : drag.entities) list += (list.empty() ? "" : "; ") + id;
        CommandRecord record("move_entities");
        record.set("sketch", sketchId_).set("entities", list);
        record.set("x", drag.target.x).set("y", drag.target.y);
        // What moved stays selected, to be moved again.
        if (run(record)) setSelection(drag.entities, {});
        return;
    }
    if (drag.moving && drag.kind == Drag::Label) {
        const SketchConstraint* c = nullptr;
        for (const SketchConstraint& candidate : constraints_)
            if (candidate.id == drag.reference) c = &candidate;
        const std::optional<Point2> anchor =
            c ? dimensionAnchor(c->type, c->refs, scene_.entities()) : std::nullopt;
        if (!anchor) return;
        CommandRecord record("move_dimension");
        record.set("sketch", sketchId_).set("constraint", drag.reference);
        record.set("x", std::round((drag.target.x - anchor->x) * 1e9) / 1e9);
        record.set("y", std::round((drag.target.y - anchor->y) * 1e9) / 1e9);
        run(record);
        return;
    }
    // A click: a label selects its dimension, geometry its entity, empty space nothing.
    const bool adding = modifiers.testFlag(Qt::ControlModifier);
    std::vector<std::string> entities = adding ? selectedEntities_ : std::vector<std::string>{};
    std::vector<std::string> constraints =
        adding ? selectedConstraints_ : std::vector<std::string>{};
    if (drag.kind == Drag::Label) {
        toggle(constraints, drag.reference);
    } else if (drag.hit && drag.hit.entity >= 0) {
        // A chain or group goes in or out as one.
        const std::vector<std::string> unit = selectionUnit(drag.hit.entity);
        const bool all = std::all_of(unit.begin(), unit.end(), [&](const std::string& id) {
            return std::find(entities.begin(), entities.end(), id) != entities.end();
        });
        for (const std::string& id : unit) {
            const bool in = std::find(entities.begin(), entities.end(), id) != entities.end();
            if (in == all) toggle(entities, id);
        }
    } else if (adding) {
        return;
    }
    setSelection(std::move(entities), std::move(constraints));
}

bool SketchSession::editDimension(const QString& constraint) {
    if (!active_) return false;
    const std::string id = constraint.toStdString();
    const SketchConstraint* c = nullptr;
    for (const SketchConstraint& candidate : constraints_)
        if (candidate.id == id) c = &candidate;
    if (!c || !isDimension(c->type)) return false;
    editing_ = id;
    editor_->setKind(c->type == ConstraintType::Angle ? LengthEdit::Kind::Number
                                                      : LengthEdit::Kind::Length);
    if (c->expression)
        editor_->setText(QString::fromStdString(c->expression->text));
    else
        editor_->setValue(c->value);
    QPointF at(parent_->width() / 2.0, parent_->height() / 2.0);
    for (const DimensionView& view : dimensionViews())
        if (view.constraint->id == id) at = view.box.center();
    editor_->adjustSize();
    editor_->move((at - QPointF(editor_->width() / 2.0, editor_->height() / 2.0)).toPoint());
    editor_->show();
    editor_->raise();
    editor_->setFocus(Qt::OtherFocusReason);
    editor_->selectAll();
    setSelection({}, {id});
    emit editDimensionRequested(constraint);
    repaint();
    return true;
}

void SketchSession::submitEditor() {
    if (editing_.empty()) return;
    const Result<double> value = editor_->value();
    if (!value) return; // the field shows why
    const std::string text = editor_->text().trimmed().toStdString();
    CommandRecord record("edit_constraint");
    record.set("sketch", sketchId_).set("constraint", editing_);
    // Text with parameter names is kept so the dimension follows them.
    if (units::usesNames(text))
        record.set("value", text);
    else
        record.set("value", *value);
    if (run(record)) closeEditor();
}

void SketchSession::closeEditor() {
    if (!editor_) return;
    const bool hadFocus = editor_->hasFocus();
    editing_.clear();
    editor_->hide();
    if (hadFocus) parent_->setFocus(Qt::OtherFocusReason);
}

bool SketchSession::eventFilter(QObject* watched, QEvent* event) {
    if (watched == editor_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            submitEditor();
            return true;
        }
        if (key == Qt::Key_Escape) {
            closeEditor();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace cad::ui

// The drawing tools of the sketch session: snapping the cursor, the live preview and
// its caption, clicks and typed values, and turning a finished shape into its add
// commands with the constraints that hold it, as one undo step.
#include "ui/sketch/SketchSession.h"

#include "core/units/ExpressionNames.h"
#include "core/units/Format.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchSolver.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::ui {

namespace {

// How far outside its line a typed length's value is drawn.
constexpr double kLabelOffsetPixels = 22;

constexpr double kSame = 1e-7; // how close a new point must be to a snapped position

double distance(Point2 a, Point2 b) { return std::hypot(a.x - b.x, a.y - b.y); }
double degreesOf(Point2 d) { return std::atan2(d.y, d.x) * 180 / std::numbers::pi; }

// Coordinates as the command log shows them: cleaned of the last bits of rounding.
double tidy(double v) { return std::round(v * 1e9) / 1e9; }

std::string pointList(const std::vector<Point2>& points) {
    std::string out;
    for (const Point2& p : points) {
        if (!out.empty()) out += "; ";
        out += formatShortest(tidy(p.x)) + "," + formatShortest(tidy(p.y));
    }
    return out;
}

QString coordinate(double mm, units::Length unit) {
    return QString::fromStdString(units::formatLength(mm, unit, false));
}

} // namespace

void SketchSession::snapCursor() {
    closing_ = false;
    snap_ = {};
    if (!hasCursor_) return;
    // A spline closes when its first point is clicked again.
    if (tool_ == Spline && points_.size() >= 3 &&
        distance(points_.front(), cursor_) <= kSnapPixels * pixel_) {
        closing_ = true;
        snapped_ = points_.front();
        return;
    }
    snap_ = scene_.snap(cursor_, pixel_);
    snapped_ = snap_ ? snap_.position : roundToGrid(cursor_, gridStep(unit_));
}

DrawStep SketchSession::currentStep() const {
    DrawOptions options;
    options.unit = unit_;
    options.construction = construction_;
    options.arcSweep = arcSweep_;
    return drawStep(drawKind(), points_, snapped_, typed_, options);
}

void SketchSession::updatePreview() {
    if (!hasCursor_) {
        preview_ = {};
        caption_.clear();
        return;
    }
    snapCursor();
    preview_ = currentStep();
    QString caption = QString::fromStdString(preview_.caption);
    if (!inlineFields(drawKind(), step_).empty()) caption += QStringLiteral("   ·   type a value");
    if (!caption.isEmpty()) caption += QStringLiteral("   ");
    caption += QStringLiteral("(%1, %2)")
                   .arg(coordinate(preview_.point.x, unit_), coordinate(preview_.point.y, unit_));
    if (snap_ || closing_) caption += QStringLiteral("   ·   snap");
    if (construction_) caption += QStringLiteral("   ·   CONSTRUCTION");
    caption_ = caption;
    setHoverText(hoverText(snap_));
    if (!preview_.live.empty()) {
        QMap<QString, double> values;
        for (const auto& [key, value] : preview_.live)
            values.insert(QString::fromStdString(key), value);
        emit liveValues(values);
    }
}

void SketchSession::trackArc() {
    if (tool_ != CenterArc || points_.size() != 2 || !hasCursor_) return;
    snapCursor();
    // The sweep follows the cursor around the centre, so the way it went round decides
    // between the arc and its complement.
    const double angle = degreesOf({snapped_.x - points_[0].x, snapped_.y - points_[0].y});
    double delta = std::fmod(angle - arcLastAngle_, 360.0);
    if (delta > 180) delta -= 360;
    if (delta <= -180) delta += 360;
    arcSweep_ = std::clamp(arcSweep_ + delta, -359.9999, 359.9999);
    arcLastAngle_ = angle;
}

void SketchSession::clickDrawing() {
    if (!typedValid_) return; // a typed value that does not evaluate runs nothing
    if (closing_) {
        finishSpline(true);
        return;
    }
    const DrawStep step = currentStep();
    if (!step.valid) return;
    std::optional<RecordedSnap> snap;
    if (snap_ && distance(step.point, snap_.position) <= kSame)
        snap = RecordedSnap{snap_.position, snap_.reference};

    const int needed = clicksNeeded(drawKind());
    if (needed > 0 && static_cast<int>(points_.size()) + 1 >= needed) {
        std::vector<RecordedSnap> snaps = snaps_;
        if (snap) snaps.push_back(*snap);
        const std::optional<std::vector<std::string>> made = commitDrawing(step, snaps);
        if (!made || !active_) return; // refused: the tool stays at this step
        if (tool_ == Line && !made->empty() &&
            !(chainStart_ && distance(step.point, *chainStart_) <= kSame)) {
            // Lines chain: the next one starts where this one ended, tied to its end.
            points_ = {step.point};
            snaps_ = {{step.point, made->front() + ".end"}};
            setStep(1);
        } else {
            points_.clear();
            snaps_.clear();
            chainStart_.reset();
            setStep(0);
        }
        updatePreview();
        return;
    }
    if (tool_ == Spline && !points_.empty() && distance(points_.back(), step.point) <= kSame)
        return;
    points_.push_back(step.point);
    if (snap) snaps_.push_back(*snap);
    if (tool_ == Line && points_.size() == 1) chainStart_ = step.point;
    if (tool_ == CenterArc && points_.size() == 2) {
        arcSweep_ = 0;
        arcLastAngle_ = degreesOf({points_[1].x - points_[0].x, points_[1].y - points_[0].y});
    }
    setStep(static_cast<int>(points_.size()));
    updatePreview();
}

void SketchSession::completeStep() {
    if (active_ && tool_ == Offset) {
        placeOffset(true);
        return;
    }
    if (!active_ || !isDrawingTool() || inlineFields(drawKind(), step_).empty()) return;
    typed_.clear();
    typedValid_ = fields_->typedValues(typed_);
    if (!typedValid_) return;
    if (hasCursor_) snapCursor();
    clickDrawing();
    repaint();
}

void SketchSession::finishSpline(bool closed) {
    DrawStep step;
    SketchEntity spline;
    spline.geometry = SketchSpline{points_, closed};
    spline.construction = construction_;
    step.entities.push_back(std::move(spline));
    const std::vector<RecordedSnap> snaps = snaps_; // refreshing while it runs may prune them
    if (!commitDrawing(step, snaps) || !active_) return;
    points_.clear();
    snaps_.clear();
    setStep(0);
    updatePreview();
}

void SketchSession::startFields() {
    // The card opens below the caption beside the cursor, kept inside the view.
    QPointF at = hasCursor_ ? cursorPixel_ + QPointF(16, 48) : QPointF(24, 24);
    fields_->adjustSize();
    at.setX(std::clamp(at.x(), 4.0, std::max(4.0, parent_->width() - fields_->width() - 4.0)));
    at.setY(std::clamp(at.y(), 4.0, std::max(4.0, parent_->height() - fields_->height() - 4.0)));
    fields_->move(at.toPoint());
}

void SketchSession::typedChanged() {
    typed_.clear();
    typedValid_ = fields_->typedValues(typed_);
    updateHover();
    repaint();
}

std::optional<std::vector<std::string>>
SketchSession::commitDrawing(const DrawStep& step, const std::vector<RecordedSnap>& snaps) {
    if (step.entities.empty()) return std::nullopt;
    // A shape that can't be made is reported by its own command, before anything runs,
    // so that a refusal never leaves half a rectangle behind.
    for (const SketchEntity& e : step.entities)
        if (!validateEntity(e)) {
            run(entityRecord(e));
            return std::nullopt;
        }

    beginGroup();
    std::vector<std::string> ids;
    for (const SketchEntity& e : step.entities) {
        const SketchObject* before = sketch();
        if (!before) break;
        std::vector<std::string> old;
        for (const SketchEntity& existing : before->entities) old.push_back(existing.id);
        if (!run(entityRecord(e))) break;
        const SketchObject* after = sketch();
        if (!after) break;
        for (const SketchEntity& candidate : after->entities)
            if (std::find(old.begin(), old.end(), candidate.id) == old.end()) {
                ids.push_back(candidate.id);
                break;
            }
    }
    if (ids.empty()) {
        endGroup();
        return std::nullopt;
    }
    auto refOf = [&](const NewRef& r) -> std::optional<SketchRef> {
        if (r.entity < 0 || r.entity >= static_cast<int>(ids.size())) return std::nullopt;
        return SketchRef{ids[static_cast<std::size_t>(r.entity)], r.part};
    };

    // The constraints that make the pieces one shape.
    for (const PlannedConstraint& planned : step.constraints) {
        std::vector<SketchRef> refs;
        for (const NewRef& r : planned.refs)
            if (std::optional<SketchRef> ref = refOf(r)) refs.push_back(*ref);
        if (refs.size() == planned.refs.size()) addAutomatic(planned.type, refs);
    }
    // Snapped clicks: the new point at each snapped position joins what was snapped to.
    for (const RecordedSnap& snap : snaps) {
        const SketchObject* current = sketch();
        if (!current) break;
        for (const NamedPoint& p : namedPoints(current->entities)) {
            const std::string owner = p.reference.substr(0, p.reference.find('.'));
            if (std::find(ids.begin(), ids.end(), owner) == ids.end()) continue;
            if (distance(p.position, snap.position) > kSame) continue;
            const std::optional<SketchRef> a = parseReference(p.reference);
            const std::optional<SketchRef> b = parseReference(snap.reference);
            if (a && b) addAutomatic(ConstraintType::Coincident, {*a, *b});
            break;
        }
    }
    // Lines drawn level or upright stay so.
    if (tool_ == Line)
        for (const std::string& id : ids) {
            const SketchObject* current = sketch();
            const SketchEntity* e = current ? current->findEntity(id) : nullptr;
            const auto* line = e ? std::get_if<SketchLine>(&e->geometry) : nullptr;
            if (!line) continue;
            const double dx = line->end.x - line->start.x, dy = line->end.y - line->start.y;
            const double bound = 1e-9 * std::max(1.0, std::hypot(dx, dy));
            if (std::abs(dy) <= bound)
                addAutomatic(ConstraintType::Horizontal, {{id, ""}});
            else if (std::abs(dx) <= bound)
                addAutomatic(ConstraintType::Vertical, {{id, ""}});
        }
    // Typed sizes stay as dimensions, a line's value drawn just outside the shape.
    Point2 centre{0, 0};
    int corners = 0;
    for (const SketchEntity& e : step.entities)
        if (const auto* line = std::get_if<SketchLine>(&e.geometry)) {
            centre = {centre.x + line->start.x, centre.y + line->start.y};
            ++corners;
        }
    if (corners > 0) centre = {centre.x / corners, centre.y / corners};
    for (const PlannedDimension& d : step.dimensions) {
        const std::optional<SketchRef> ref = refOf(d.ref);
        if (!ref) continue;
        std::optional<Point2> label;
        const SketchObject* current = sketch();
        const SketchEntity* e = current ? current->findEntity(ref->entity) : nullptr;
        if (const auto* line = e ? std::get_if<SketchLine>(&e->geometry) : nullptr;
            line && d.type == ConstraintType::Length) {
            const Point2 middle{(line->start.x + line->end.x) / 2, (line->start.y + line->end.y) / 2};
            const double dx = line->end.x - line->start.x, dy = line->end.y - line->start.y;
            const double length = std::hypot(dx, dy);
            if (length > 1e-9) {
                Point2 normal{-dy / length, dx / length};
                // Away from the shape's middle (a lone line: to its left).
                if (corners > 1 && (middle.x - centre.x) * normal.x + (middle.y - centre.y) * normal.y < 0)
                    normal = {-normal.x, -normal.y};
                const double out = kLabelOffsetPixels * pixelAt(middle);
                label = Point2{normal.x * out, normal.y * out};
            }
        }
        addAutomatic(d.type, {*ref}, &d.value, label);
    }
    endGroup();
    return ids;
}

bool SketchSession::addAutomatic(ConstraintType type, std::vector<SketchRef> refs,
                                 const TypedValue* value, std::optional<Point2> label) {
    const SketchObject* current = sketch();
    if (!current) return false;
    // Checked first against the sketch as it is: a constraint the solver would refuse
    // as redundant or conflicting is left out quietly, never shown as a failure.
    SketchConstraint constraint;
    constraint.type = type;
    constraint.refs = refs;
    if (value) constraint.value = value->value;
    Result<SketchConstraint> prepared =
        prepareConstraint(current->entities, constraint, value != nullptr);
    if (!prepared) return false;
    if (!addConstraint(current->entities, current->constraints, *prepared)) return false;

    CommandRecord record("add_constraint");
    record.set("sketch", sketchId_);
    record.set("type", std::string(constraintKeyword(type)));
    static const char* const keys[] = {"a", "b", "c"};
    for (std::size_t i = 0; i < refs.size() && i < 3; ++i) record.set(keys[i], refs[i].text());
    if (value) {
        // Text with parameter names is kept so the dimension follows them; anything
        // else goes as the millimetres it came to.
        if (units::usesNames(value->text))
            record.set("value", value->text);
        else
            record.set("value", value->value);
    }
    if (label) record.set("label_x", label->x).set("label_y", label->y);
    return run(record);
}

CommandRecord SketchSession::entityRecord(const SketchEntity& e) const {
    CommandRecord r;
    auto start = [&](const char* name) {
        r = CommandRecord(name);
        r.set("sketch", sketchId_);
    };
    if (const auto* line = std::get_if<SketchLine>(&e.geometry)) {
        start("add_line");
        r.set("x1", tidy(line->start.x)).set("y1", tidy(line->start.y));
        r.set("x2", tidy(line->end.x)).set("y2", tidy(line->end.y));
    } else if (const auto* circle = std::get_if<SketchCircle>(&e.geometry)) {
        start("add_circle");
        r.set("cx", tidy(circle->center.x)).set("cy", tidy(circle->center.y));
        r.set("radius", tidy(circle->radius));
    } else if (const auto* point = std::get_if<SketchPoint>(&e.geometry)) {
        start("add_point");
        r.set("x", tidy(point->position.x)).set("y", tidy(point->position.y));
    } else if (const auto* arc = std::get_if<SketchArc>(&e.geometry)) {
        start("add_arc");
        r.set("cx", tidy(arc->center.x)).set("cy", tidy(arc->center.y));
        r.set("radius", tidy(arc->radius));
        r.set("start_angle", tidy(arc->startAngle)).set("sweep_angle", tidy(arc->sweepAngle));
    } else if (const auto* polygon = std::get_if<SketchPolygon>(&e.geometry)) {
        start("add_polygon");
        r.set("cx", tidy(polygon->center.x)).set("cy", tidy(polygon->center.y));
        r.set("sides", polygon->sides).set("radius", tidy(polygon->radius));
        r.set("rotation", tidy(polygon->rotation));
    } else if (const auto* spline = std::get_if<SketchSpline>(&e.geometry)) {
        start("add_spline");
        r.set("points", pointList(spline->points));
        if (spline->closed) r.set("closed", true);
    } else if (const auto* slot = std::get_if<SketchSlot>(&e.geometry)) {
        start("add_slot");
        r.set("x1", tidy(slot->start.x)).set("y1", tidy(slot->start.y));
        r.set("x2", tidy(slot->end.x)).set("y2", tidy(slot->end.y));
        r.set("width", tidy(slot->width));
    } else if (const auto* rectangle = std::get_if<SketchRectangle>(&e.geometry)) {
        start("add_rectangle");
        r.set("x1", tidy(rectangle->corner.x)).set("y1", tidy(rectangle->corner.y));
        r.set("x2", tidy(rectangle->corner.x + rectangle->width));
        r.set("y2", tidy(rectangle->corner.y + rectangle->height));
    }
    if (e.construction) r.set("construction", true);
    return r;
}

} // namespace cad::ui

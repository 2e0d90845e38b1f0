// The sketch session's tools that rework what is drawn: corner fillets and chamfers
// (the value chosen to fit, its dimension offered for typing), trim, extend, offset
// (a chain by default, placed by a click or a typed distance), mirror, the Text
// tool's placement, and the picks a form makes in the sketch.
#include "ui/sketch/SketchSession.h"

#include "core/units/ExpressionNames.h"
#include "core/units/Format.h"
#include "sketch/SketchObject.h"
#include "ui/sketch/OffsetPreview.h"
#include "ui/sketch/SketchCorners.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace cad::ui {

namespace {

const char* const kNotACorner = "That isn't a corner where two lines meet   ·   ";

// Coordinates and sizes as the command log shows them: cleaned of the last bits.
double tidy(double v) { return std::round(v * 1e9) / 1e9; }

} // namespace

QString SketchSession::modifyPrompt() const {
    switch (tool_) {
    case Fillet:
        return QStringLiteral("Fillet · click a corner where two lines meet");
    case Chamfer:
        return QStringLiteral("Chamfer · click a corner where two lines meet");
    case Text:
        return QStringLiteral("Text · click where it goes (double-click text to edit it)");
    case Trim:
        return QStringLiteral("Trim · click the piece of a curve to cut away");
    case Extend:
        return QStringLiteral("Extend · click near the end of a line or arc");
    case Offset:
        return step_ == 0
                   ? QStringLiteral("Offset · click a curve (Shift: just that one, not its chain)")
                   : QStringLiteral("Offset · click where the copy goes, or type the distance "
                                    "(negative: the other side) · Ctrl+click: add or remove "
                                    "curves · Esc: pick again");
    case Mirror:
        if (step_ == 0) return QStringLiteral("Mirror · click what to mirror");
        if (step_ == 1)
            return QStringLiteral("Mirror · %1 picked; click more, or Enter for the mirror line")
                .arg(static_cast<qulonglong>(chosen_.size()));
        return QStringLiteral("Mirror · click the mirror line or an axis");
    default:
        return {};
    }
}

void SketchSession::clickModify(const Hit& hit, Qt::KeyboardModifiers modifiers) {
    const bool onEntity = hit && hit.entity >= 0;
    const SketchEntity* entity =
        onEntity ? &scene_.entities()[static_cast<std::size_t>(hit.entity)] : nullptr;
    switch (tool_) {
    case Fillet:
    case Chamfer:
        clickCorner(hit);
        break;
    case Trim:
    case Extend: {
        const bool extend = tool_ == Extend;
        if (!entity || (extend && entity->kind() != EntityKind::Line &&
                        entity->kind() != EntityKind::Arc)) {
            refuse();
            break;
        }
        // Trim cuts the piece the click is on; extend lengthens the end nearer the click.
        const Point2 at = extend ? cursor_ : hit.position;
        CommandRecord record(extend ? "extend" : "trim");
        record.set("sketch", sketchId_).set("entity", entity->id);
        record.set("x", tidy(at.x)).set("y", tidy(at.y));
        if (run(record))
            setStep(0);
        else
            updateStatus(); // refused: its message shows; the tool stays as it was
        break;
    }
    case Offset:
        clickOffset(hit, modifiers);
        break;
    case Mirror:
        clickMirror(hit);
        break;
    case Text:
        // New text goes where a drawing click would put a point.
        snapCursor();
        setStep(0);
        emit textPlacementRequested(QPointF(snapped_.x, snapped_.y));
        break;
    default:
        break;
    }
    if (active_) updateHover();
}

void SketchSession::clickCorner(const Hit& hit) {
    const bool fillet = tool_ == Fillet;
    const std::optional<LineCorner> corner =
        hit.kind == Hit::Point ? lineCornerAt(scene_.entities(), hit.position) : std::nullopt;
    if (!corner) {
        refuse(kNotACorner);
        return;
    }
    double& last = fillet ? lastFillet_ : lastChamfer_;
    const double value = tidy(cornerValue(*corner, fillet, last, gridStep(unit_)));
    std::set<std::string> before;
    for (const SketchConstraint& c : constraints_) before.insert(c.id);

    CommandRecord record(fillet ? "sketch_fillet" : "sketch_chamfer");
    record.set("sketch", sketchId_).set("corner", corner->end);
    record.set(fillet ? "radius" : "distance", value);
    if (!run(record)) {
        updateStatus();
        return;
    }
    last = value;
    setStep(0);
    // The new radius, or the chamfer's distance along the named line, is offered for
    // typing the exact size next.
    const ConstraintType wanted = fillet ? ConstraintType::Radius : ConstraintType::Distance;
    std::string offered;
    for (const SketchConstraint& c : constraints_) {
        if (before.count(c.id) || c.type != wanted) continue;
        const bool alongFirst = c.refs.size() == 2 && c.refs[1].text() == corner->end;
        if (offered.empty() || alongFirst) offered = c.id;
        if (fillet || alongFirst) break;
    }
    if (!offered.empty()) editDimension(QString::fromStdString(offered));
}

void SketchSession::setChosen(std::vector<std::string> ids) {
    chosen_ = std::move(ids);
    if (chosen_.empty())
        setStep(0);
    else
        setStep(tool_ == Mirror && step_ == 2 ? 2 : 1);
}

std::string SketchSession::chosenList() const {
    std::string list;
    for (const std::string& id : chosen_) list += (list.empty() ? "" : "; ") + id;
    return list;
}

void SketchSession::clickOffset(const Hit& hit, Qt::KeyboardModifiers modifiers) {
    const bool onEntity = hit && hit.entity >= 0;
    if (step_ == 0) {
        if (!onEntity) {
            refuse();
            return;
        }
        const std::string& id = scene_.entities()[static_cast<std::size_t>(hit.entity)].id;
        setChosen(modifiers.testFlag(Qt::ShiftModifier) ? std::vector<std::string>{id}
                                                        : chainOf(hit.entity));
        return;
    }
    if (modifiers.testFlag(Qt::ControlModifier)) {
        if (!onEntity) {
            refuse();
            return;
        }
        std::vector<std::string> ids = chosen_;
        const std::string& id = scene_.entities()[static_cast<std::size_t>(hit.entity)].id;
        if (const auto at = std::find(ids.begin(), ids.end(), id); at != ids.end())
            ids.erase(at);
        else
            ids.push_back(id);
        setChosen(std::move(ids));
        return;
    }
    placeOffset(false);
}

void SketchSession::updateOffsetPreview() {
    offsetPreview_.clear();
    offsetDistance_ = 0;
    if (!hasCursor_ || chosen_.empty()) return;
    std::vector<SketchEntity> picked;
    for (const std::string& id : chosen_)
        if (const int index = scene_.entityIndex(id); index >= 0)
            picked.push_back(scene_.entities()[static_cast<std::size_t>(index)]);
    const auto typed = typed_.find("distance");
    if (typed != typed_.end()) {
        offsetDistance_ = typed->second.value;
    } else {
        // The copy goes through the cursor, at a whole number of grid steps.
        const std::optional<double> near = distanceToCurves(picked, cursor_);
        if (!near) return;
        const double step = gridStep(unit_);
        offsetDistance_ = tidy(std::max(1.0, std::round(*near / step)) * step);
    }
    offsetPreview_ = offsetCopies(picked, offsetDistance_, cursor_);
    emit liveValues({{QStringLiteral("distance"), offsetDistance_}});
    caption_ = QStringLiteral("Offset · %1   ·   click to place   ·   type a value   (%2, %3)")
                   .arg(QString::fromStdString(units::formatLength(offsetDistance_, unit_)),
                        QString::fromStdString(units::formatLength(cursor_.x, unit_, false)),
                        QString::fromStdString(units::formatLength(cursor_.y, unit_, false)));
}

void SketchSession::placeOffset(bool typed) {
    if (tool_ != Offset || chosen_.empty()) return;
    CommandRecord record("offset");
    record.set("sketch", sketchId_).set("entities", chosenList());
    if (typed) {
        typed_.clear();
        typedValid_ = fields_->typedValues(typed_);
        const auto distance = typed_.find("distance");
        if (!typedValid_ || distance == typed_.end()) return; // the field shows why
        // Text with parameter names is kept so the dimension follows them.
        if (units::usesNames(distance->second.text))
            record.set("distance", distance->second.text);
        else
            record.set("distance", distance->second.value);
    } else {
        updateOffsetPreview();
        if (offsetDistance_ == 0) {
            refuse();
            return;
        }
        record.set("distance", offsetDistance_);
    }
    // The side is the cursor's (a typed negative distance: the other side).
    if (hasCursor_) record.set("x", tidy(cursor_.x)).set("y", tidy(cursor_.y));
    if (!run(record)) {
        updateStatus();
        return;
    }
    fields_->clear();
    typed_.clear();
    chosen_.clear();
    offsetPreview_.clear();
    setStep(0);
}

void SketchSession::clickMirror(const Hit& hit) {
    if (step_ < 2) {
        if (!hit || hit.entity < 0) {
            refuse();
            return;
        }
        // Another click on a picked entity drops it.
        std::vector<std::string> ids = chosen_;
        const std::string& id = scene_.entities()[static_cast<std::size_t>(hit.entity)].id;
        if (const auto at = std::find(ids.begin(), ids.end(), id); at != ids.end())
            ids.erase(at);
        else
            ids.push_back(id);
        setChosen(std::move(ids));
        return;
    }
    if (!hit || hit.refKind != ResolvedRef::Line) {
        refuse();
        return;
    }
    CommandRecord record("mirror");
    record.set("sketch", sketchId_).set("entities", chosenList()).set("line", hit.reference);
    if (!run(record)) {
        updateStatus();
        return;
    }
    chosen_.clear();
    setStep(0);
}

void SketchSession::startFormPick(FormPick what, std::function<void(const std::string&)> picked,
                                  std::function<std::vector<std::string>()> marked) {
    if (!active_) return;
    if (tool_ != Select) setTool(Select);
    closeEditor();
    setSelection({}, {});
    formPick_.on = true;
    formPick_.what = what;
    formPick_.picked = std::move(picked);
    formPick_.marked = std::move(marked);
    updateHover();
    repaint();
}

void SketchSession::stopFormPick() {
    if (!formPick_.on) return;
    formPick_ = {};
    updateHover();
    repaint();
}

unsigned SketchSession::formPickKinds() const {
    switch (formPick_.what) {
    case FormPick::Points:
        return PickPoints;
    case FormPick::Curves:
        return PickLines | PickCircles | PickShapes;
    default:
        return PickAll;
    }
}

void SketchSession::clickFormPick() {
    const Hit hit = scene_.pick(cursor_, pixel_, formPickKinds());
    std::string reference;
    if (formPick_.what == FormPick::Points) {
        if (hit.kind == Hit::Point) reference = hit.reference;
    } else if (hit && hit.entity >= 0) {
        reference = scene_.entities()[static_cast<std::size_t>(hit.entity)].id;
    }
    if (reference.empty()) return;
    // The form may stop picking from inside the call.
    const auto picked = formPick_.picked;
    if (picked) picked(reference);
    if (active_) updateHover();
}

} // namespace cad::ui

// The sketch session's tools that pick existing geometry: the dimension tool (its
// type from what was picked and where the label goes) and the twelve constraint tools
// with their prompts and what each step accepts.
#include "ui/sketch/SketchSession.h"

#include "sketch/SketchObject.h"
#include "sketch/SketchSolver.h"

#include <cmath>

namespace cad::ui {

namespace {

using K = ResolvedRef::Kind;

// The constraint tool's name as its prompts begin.
const char* constraintName(ConstraintType type) {
    switch (type) {
    case ConstraintType::Fix:
        return "Fix";
    case ConstraintType::Coincident:
        return "Coincident";
    case ConstraintType::Horizontal:
        return "Horizontal";
    case ConstraintType::Vertical:
        return "Vertical";
    case ConstraintType::Parallel:
        return "Parallel";
    case ConstraintType::Perpendicular:
        return "Perpendicular";
    case ConstraintType::Collinear:
        return "Collinear";
    case ConstraintType::Equal:
        return "Equal";
    case ConstraintType::Concentric:
        return "Concentric";
    case ConstraintType::Midpoint:
        return "Midpoint";
    case ConstraintType::Tangent:
        return "Tangent";
    case ConstraintType::Symmetric:
        return "Symmetric";
    default:
        return "";
    }
}

} // namespace

unsigned SketchSession::acceptedKinds() const {
    switch (tool_) {
    case Fillet:
    case Chamfer:
        return PickPoints;
    case Trim:
    case Offset:
        return PickLines | PickCircles | PickShapes;
    case Extend:
        return PickLines | PickCircles;
    case Mirror:
        return step_ < 2 ? static_cast<unsigned>(PickAll) : static_cast<unsigned>(PickLines);
    case Text:
        return 0;
    default:
        break;
    }
    const std::size_t n = picks_.size();
    const K first = n > 0 ? picks_[0].refKind : K::Point;
    if (tool_ == Dimension) {
        if (placing_) return 0;
        return n == 0 ? PickPoints | PickLines | PickCircles : PickPoints | PickLines;
    }
    switch (static_cast<ConstraintType>(constraintKind_)) {
    case ConstraintType::Fix:
        return PickAll;
    case ConstraintType::Coincident:
        return n == 0 ? PickPoints : PickPoints | PickLines | PickCircles;
    case ConstraintType::Horizontal:
    case ConstraintType::Vertical:
        return n == 0 ? PickPoints | PickLines : PickPoints;
    case ConstraintType::Parallel:
    case ConstraintType::Perpendicular:
    case ConstraintType::Collinear:
        return PickLines;
    case ConstraintType::Equal:
        return n == 0 ? PickLines | PickCircles : first == K::Line ? PickLines : PickCircles;
    case ConstraintType::Concentric:
        return PickCircles;
    case ConstraintType::Midpoint:
        return n == 0 ? PickPoints | PickLines : first == K::Point ? PickLines : PickPoints;
    case ConstraintType::Tangent:
        return n == 0             ? PickLines | PickCircles
               : first == K::Line ? PickCircles
                                  : PickCircles | PickLines;
    case ConstraintType::Symmetric:
        return n < 2 ? PickPoints : PickLines;
    default:
        return 0;
    }
}

bool SketchSession::acceptable(const Hit& hit) const {
    if (!hit) return false;
    // The origin and the axes are fixed already.
    if (tool_ == Constraint && constraintKind_ == static_cast<int>(ConstraintType::Fix))
        return hit.entity >= 0;
    return true;
}

QString SketchSession::pickPrompt() const {
    const std::size_t n = picks_.size();
    if (tool_ == Dimension) {
        if (placing_) return QStringLiteral("Dimension · click to place it");
        if (n == 0) return QStringLiteral("Dimension · click a line, circle, arc or point");
        return picks_[0].refKind == K::Line
                   ? QStringLiteral("Dimension · click another line or a point, or empty space "
                                    "for the length")
                   : QStringLiteral("Dimension · click another point or a line");
    }
    const auto type = static_cast<ConstraintType>(constraintKind_);
    const QString name = QString::fromUtf8(constraintName(type));
    auto steps = [&](const char* first, const char* second) {
        return name + QStringLiteral(" · ") + QString::fromUtf8(n == 0 ? first : second);
    };
    switch (type) {
    case ConstraintType::Fix:
        return steps("click a point or a curve to lock it in place",
                     "click a point or a curve to lock it in place");
    case ConstraintType::Coincident:
        return steps("click a point", "click a point or a curve");
    case ConstraintType::Horizontal:
    case ConstraintType::Vertical:
        return steps("click a line, or two points", "click a line, or two points");
    case ConstraintType::Parallel:
    case ConstraintType::Perpendicular:
    case ConstraintType::Collinear:
        return steps("click a line", "click the other line");
    case ConstraintType::Equal:
        return steps("click a line, circle or arc", "click another of the same kind");
    case ConstraintType::Concentric:
        return steps("click a circle or arc", "click another circle or arc");
    case ConstraintType::Midpoint:
        return steps("click a point or a line", "click the other one");
    case ConstraintType::Tangent:
        return steps("click a line, circle or arc", "click a circle or arc (or a line)");
    case ConstraintType::Symmetric:
        return name + QStringLiteral(" · ") +
               (n < 2 ? QStringLiteral("click two points")
                      : QStringLiteral("click the line to mirror about"));
    default:
        return {};
    }
}

void SketchSession::clickPicking() {
    const unsigned kinds = acceptedKinds();
    const Hit hit = kinds ? scene_.pick(cursor_, pixel_, kinds) : Hit{};
    if (tool_ == Dimension)
        clickDimension(hit);
    else
        clickConstraint(hit);
    if (active_) updateHover();
}

std::optional<ConstraintType> SketchSession::placedDimensionType(Point2 label) const {
    if (picks_.size() == 1) {
        const Hit& only = picks_[0];
        if (only.refKind == K::Line) return ConstraintType::Length;
        if (only.refKind != K::Circle || only.entity < 0) return std::nullopt;
        const SketchEntity& e = scene_.entities()[static_cast<std::size_t>(only.entity)];
        return e.kind() == EntityKind::Arc ? ConstraintType::Radius : ConstraintType::Diameter;
    }
    if (picks_.size() != 2) return std::nullopt;
    const K a = picks_[0].refKind, b = picks_[1].refKind;
    if (a == K::Line && b == K::Line) return ConstraintType::Angle;
    if (a == K::Point && b == K::Point) {
        const std::optional<SketchRef> p = parseReference(picks_[0].reference);
        const std::optional<SketchRef> q = parseReference(picks_[1].reference);
        const std::optional<RefShape> ps = p ? refShape(*p, scene_.entities()) : std::nullopt;
        const std::optional<RefShape> qs = q ? refShape(*q, scene_.entities()) : std::nullopt;
        if (!ps || !qs) return std::nullopt;
        return pointPairType(ps->a, qs->a, label);
    }
    return ConstraintType::Distance;
}

void SketchSession::placeDimension() {
    const std::optional<ConstraintType> type = placedDimensionType(cursor_);
    std::vector<SketchRef> refs;
    for (const Hit& pick : picks_)
        if (std::optional<SketchRef> ref = parseReference(pick.reference)) refs.push_back(*ref);
    const std::optional<Point2> anchor =
        type ? dimensionAnchor(*type, refs, scene_.entities()) : std::nullopt;
    if (!anchor) {
        refuse();
        return;
    }
    // The label goes where this click is, kept as its offset from the anchor.
    CommandRecord record("add_constraint");
    record.set("sketch", sketchId_);
    record.set("type", std::string(constraintKeyword(*type)));
    static const char* const keys[] = {"a", "b"};
    for (std::size_t i = 0; i < refs.size() && i < 2; ++i) record.set(keys[i], refs[i].text());
    record.set("label_x", std::round((cursor_.x - anchor->x) * 1e9) / 1e9);
    record.set("label_y", std::round((cursor_.y - anchor->y) * 1e9) / 1e9);
    if (!run(record)) {
        updateStatus(); // refused: the tool stays at this step
        return;
    }
    picks_.clear();
    placing_ = false;
    setStep(0);
}

void SketchSession::clickDimension(const Hit& hit) {
    if (placing_) {
        placeDimension();
        return;
    }
    // A line and then empty space: the line's length, labelled where that click was.
    if (picks_.size() == 1 && picks_[0].refKind == K::Line && !hit) {
        if (scene_.pick(cursor_, pixel_, PickAll)) {
            refuse();
            return;
        }
        placeDimension();
        return;
    }
    if (!acceptable(hit)) {
        refuse();
        return;
    }
    picks_.push_back(hit);
    placing_ = hit.refKind == K::Circle || picks_.size() == 2;
    setStep(static_cast<int>(picks_.size()));
}

void SketchSession::clickConstraint(const Hit& hit) {
    if (!acceptable(hit)) {
        refuse();
        return;
    }
    const auto type = static_cast<ConstraintType>(constraintKind_);
    picks_.push_back(hit);
    std::size_t needed = 2;
    if (type == ConstraintType::Fix) needed = 1;
    if ((type == ConstraintType::Horizontal || type == ConstraintType::Vertical) &&
        picks_[0].refKind == K::Line)
        needed = 1;
    if (type == ConstraintType::Symmetric) needed = 3;
    if (picks_.size() < needed) {
        setStep(static_cast<int>(picks_.size()));
        return;
    }

    CommandRecord record("add_constraint");
    record.set("sketch", sketchId_);
    record.set("type", std::string(constraintKeyword(type)));
    static const char* const keys[] = {"a", "b", "c"};
    for (std::size_t i = 0; i < picks_.size() && i < 3; ++i) {
        const Hit& pick = picks_[i];
        // Fix locks a whole shape, whichever of its edges was clicked.
        const std::string reference =
            type == ConstraintType::Fix && pick.kind == Hit::Curve
                ? scene_.entities()[static_cast<std::size_t>(pick.entity)].id
                : pick.reference;
        record.set(keys[i], reference);
    }
    if (!run(record)) {
        // Refused: the tool stays where it was before this click.
        if (!picks_.empty()) picks_.pop_back();
        updateStatus();
        return;
    }
    picks_.clear();
    setStep(0);
}

} // namespace cad::ui

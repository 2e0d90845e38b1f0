// What the sketch session paints over the view: every dimension with its value label,
// the preview of the active tool with its caption, the snap marker, picks, hover and
// selection highlights, and a point drag's re-solved geometry. The sketch's own
// curves are drawn by the 3D view underneath. Colours follow the window's theme.
#include "ui/sketch/SketchSession.h"

#include "sketch/SketchObject.h"
#include "sketch/SketchSolver.h"
#include "ui/sketch/InlineFields.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace cad::ui {

namespace {

const QColor kAccent(0xd0, 0x80, 0x45);
const QColor kAccentLight(0xe0, 0x93, 0x5a);
const QColor kText(0xf1, 0xee, 0xe6);
const QColor kMuted(0xa0, 0x97, 0x8c);
const QColor kPanel(30, 27, 24, 235);
const QColor kBorder(0x3a, 0x34, 0x2e);

QPen pen(const QColor& colour, double width, bool dashed = false) {
    QPen p(colour, width);
    p.setCapStyle(Qt::RoundCap);
    p.setJoinStyle(Qt::RoundJoin);
    if (dashed) p.setStyle(Qt::DashLine);
    return p;
}

// A box of text on the theme's glass panel, its top-left corner at `at` but kept
// inside the view (to the left of `at` when it would run off the right edge).
void drawPanelText(QPainter& painter, const QString& text, QPointF at, const QColor& border,
                   const QColor& colour) {
    const QFontMetricsF metrics(painter.font());
    const QSizeF size(metrics.horizontalAdvance(text) + 16, metrics.height() + 8);
    const double width = painter.device()->width(), height = painter.device()->height();
    if (at.x() + size.width() > width - 4) at.setX(at.x() - size.width() - 32);
    at.setX(std::clamp(at.x(), 4.0, std::max(4.0, width - size.width() - 4)));
    at.setY(std::clamp(at.y(), 4.0, std::max(4.0, height - size.height() - 4)));
    const QRectF box(at, size);
    painter.setPen(pen(border, 1));
    painter.setBrush(kPanel);
    painter.drawRoundedRect(box, 6, 6);
    painter.setPen(colour);
    painter.drawText(box, Qt::AlignCenter, text);
    painter.setBrush(Qt::NoBrush);
}

} // namespace

void SketchSession::repaint() { view_->update(); }

void SketchSession::paint(QPainter& painter) const {
    if (!active_) return;
    painter.setFont(overlay_->font());
    const SketchView& view = *view_;
    const double deflection = pixel_ / 2;

    auto polyline = [&](const std::vector<Point2>& points) {
        QPolygonF screen;
        screen.reserve(static_cast<qsizetype>(points.size()));
        for (const Point2& p : points) screen << view.toScreen(p);
        painter.drawPolyline(screen);
    };
    auto drawEntity = [&](const SketchEntity& e, const QPen& stroke) {
        painter.setPen(stroke);
        if (const auto* point = std::get_if<SketchPoint>(&e.geometry)) {
            painter.setBrush(stroke.color());
            painter.drawEllipse(view.toScreen(point->position), 3, 3);
            painter.setBrush(Qt::NoBrush);
            return;
        }
        for (const CurvePiece& piece : entityPieces(e, -1, deflection, &scene_.entities()))
            polyline(pieceOutline(piece, deflection));
    };
    auto ring = [&](Point2 p, const QColor& colour, double radius) {
        painter.setPen(pen(colour, 2));
        painter.drawEllipse(view.toScreen(p), radius, radius);
    };
    auto highlight = [&](const Hit& hit, const QColor& colour, double width) {
        if (!hit) return;
        if (hit.kind == Hit::Point) {
            ring(hit.position, colour, 5);
        } else if (hit.kind == Hit::Axis) {
            painter.setPen(pen(colour, width));
            const Point2 far = hit.reference == "XAxis" ? Point2{1e4, 0} : Point2{0, 1e4};
            painter.drawLine(view.toScreen({-far.x, -far.y}), view.toScreen(far));
        } else {
            painter.setPen(pen(colour, width));
            for (const CurvePiece& piece : scene_.pieces())
                if (piece.reference == hit.reference) polyline(pieceOutline(piece, deflection));
        }
    };

    // A point drag: the geometry as the re-solve leaves it.
    const std::vector<SketchEntity>& entities = scene_.entities();
    if (drag_.solved)
        for (std::size_t i = 0; i < drag_.solved->size() && i < entities.size(); ++i)
            if (entityParameters((*drag_.solved)[i]) != entityParameters(entities[i]))
                drawEntity((*drag_.solved)[i], pen(kAccent, 2, (*drag_.solved)[i].construction));

    for (const std::string& id : selectedEntities_)
        if (const int index = scene_.entityIndex(id); index >= 0)
            drawEntity(entities[static_cast<std::size_t>(index)], pen(kAccent, 3));
    // What Mirror or Offset picked, the offset's copies, entities being dragged.
    for (const std::string& id : chosen_)
        if (const int index = scene_.entityIndex(id); index >= 0)
            drawEntity(entities[static_cast<std::size_t>(index)], pen(kAccent, 3));
    if (hasCursor_)
        for (const SketchEntity& copy : offsetPreview_) drawEntity(copy, pen(kAccent, 1.8, true));
    if (drag_.kind == Drag::Entities && drag_.moving)
        for (const SketchEntity& moved : drag_.moved) drawEntity(moved, pen(kAccent, 2, true));
    // What a form's pick row holds: entities, or named points.
    if (formPick_.on && formPick_.marked)
        for (const std::string& reference : formPick_.marked()) {
            if (const int index = scene_.entityIndex(reference); index >= 0) {
                drawEntity(entities[static_cast<std::size_t>(index)], pen(kAccent, 3));
                continue;
            }
            const std::optional<SketchRef> ref = parseReference(reference);
            const std::optional<RefShape> shape = ref ? refShape(*ref, entities) : std::nullopt;
            if (shape && shape->kind == ResolvedRef::Point) ring(shape->a, kAccent, 5);
        }
    for (const Hit& pick : picks_) highlight(pick, kAccent, 3);
    if (drag_.kind == Drag::None) highlight(hover_, kAccentLight, 2.5);

    // Dimensions: lines in the muted colour, values on small panels; those of the
    // selected entities and the one under the cursor in the accent colour.
    for (const DimensionView& dim : dimensionViews()) {
        const SketchConstraint& c = *dim.constraint;
        const bool marked = c.id == hoverDimension_ ||
                            std::find(selectedConstraints_.begin(), selectedConstraints_.end(),
                                      c.id) != selectedConstraints_.end() ||
                            std::any_of(c.refs.begin(), c.refs.end(), [&](const SketchRef& ref) {
                                return std::find(selectedEntities_.begin(), selectedEntities_.end(),
                                                 ref.entity) != selectedEntities_.end();
                            });
        painter.setPen(pen(marked ? kAccent : kMuted, 1));
        for (const auto& [a, b] : dim.shape.lines)
            painter.drawLine(view.toScreen(a), view.toScreen(b));
        if (!dim.shape.arc.empty()) polyline(dim.shape.arc);
        if (c.id == editing_) continue;
        painter.setPen(pen(marked ? kAccent : kBorder, 1));
        painter.setBrush(kPanel);
        painter.drawRoundedRect(dim.box, 5, 5);
        painter.setPen(marked ? kAccentLight : kText);
        painter.drawText(dim.box, Qt::AlignCenter, dim.text);
        painter.setBrush(Qt::NoBrush);
    }

    // The dimension tool's label waiting to be placed.
    if (tool_ == Dimension && hasCursor_ && (placing_ || picks_.size() == 1)) {
        std::vector<SketchRef> refs;
        for (const Hit& pick : picks_)
            if (std::optional<SketchRef> ref = parseReference(pick.reference)) refs.push_back(*ref);
        const std::optional<ConstraintType> type = placedDimensionType(cursor_);
        const std::optional<Point2> anchor =
            type ? dimensionAnchor(*type, refs, entities) : std::nullopt;
        if (type && anchor && (placing_ || !hover_)) {
            const Point2 offset{cursor_.x - anchor->x, cursor_.y - anchor->y};
            if (std::optional<DimensionShape> shape =
                    dimensionShape(*type, refs, entities, offset, pixel_)) {
                painter.setPen(pen(kAccent, 1, true));
                for (const auto& [a, b] : shape->lines)
                    painter.drawLine(view.toScreen(a), view.toScreen(b));
                if (!shape->arc.empty()) polyline(shape->arc);
                const Result<double> value = measureDimension(*type, refs, entities);
                if (value) {
                    const QString text =
                        QString::fromStdString(dimensionValueText(*type, *value, unit_));
                    const QRectF box = labelBox(text, shape->label);
                    drawPanelText(painter, text, box.topLeft() - QPointF(2, 1), kAccent, kText);
                }
            }
        }
    }

    // The drawing tool: picked points, the preview (helper lines dashed), the snap.
    if (isDrawingTool()) {
        painter.setPen(pen(kAccent, 1));
        painter.setBrush(kAccent);
        for (const Point2& p : points_) painter.drawEllipse(view.toScreen(p), 2.5, 2.5);
        painter.setBrush(Qt::NoBrush);
        if (hasCursor_)
            for (const SketchEntity& e : preview_.entities)
                drawEntity(e, pen(preview_.valid ? kAccent : kMuted, 1.8, e.construction));
        if (hasCursor_ && (snap_ || closing_)) {
            const QPointF at = view.toScreen(snapped_);
            painter.setPen(pen(kAccentLight, 1.5));
            if (snap_.kind == Hit::Curve)
                painter.drawPolygon(QPolygonF({at + QPointF(0, -5), at + QPointF(5, 0),
                                               at + QPointF(0, 5), at + QPointF(-5, 0)}));
            else
                painter.drawRect(QRectF(at - QPointF(4, 4), QSizeF(8, 8)));
        }
    }

    // The caption (drawing) or what the cursor is over (other tools), beside the cursor.
    if (hasCursor_ && drag_.kind == Drag::None) {
        const QString& text = isDrawingTool() || !caption_.isEmpty() ? caption_ : hoverText_;
        // While values are typed the caption heads their card, which stays put.
        QPointF at = cursorPixel_ + QPointF(16, 16);
        if (fields_->isVisible()) {
            const double above = QFontMetricsF(painter.font()).height() + 8 + 4;
            at = QPointF(fields_->x(), fields_->y() - above);
        }
        if (!text.isEmpty())
            drawPanelText(painter, text, at,
                          construction_ && isDrawingTool() ? kMuted : kBorder, kText);
    }
}

} // namespace cad::ui

// Path construction shared by the PDF content interpreter and the Illustrator
// PostScript reader.
#include "sketch/drawingimport/pdf/PathRecorder.h"

#include <cmath>

namespace cad::drawingimport::pdf {

namespace {

constexpr std::size_t kMostPieces = 2'000'000;
constexpr double kFarthest = 1e12; // mm

bool reasonable(Vec2 p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::abs(p.x) <= kFarthest &&
           std::abs(p.y) <= kFarthest;
}

} // namespace

PathRecorder::PathRecorder(const ReadLimits& limits) : mostPieces_(limits.of(kMostPieces)) {}

std::optional<Vec2> PathRecorder::place(Vec2 p) const {
    const Vec2 q = transform_.apply(p);
    const Vec2 mm{q.x * kMillimetresPerPoint, q.y * kMillimetresPerPoint};
    if (!reasonable(mm)) return std::nullopt;
    return mm;
}

void PathRecorder::endSubpath() {
    if (!subpath_.pieces.empty()) pending_.push_back(std::move(subpath_));
    subpath_ = {};
}

void PathRecorder::moveTo(Vec2 p) {
    const std::optional<Vec2> at = place(p);
    if (!at) return;
    endSubpath();
    start_ = current_ = at;
}

void PathRecorder::lineTo(Vec2 p) {
    const std::optional<Vec2> to = place(p);
    if (!to) return;
    if (!current_) return moveTo(p);
    Piece piece;
    piece.points = {*current_, *to};
    subpath_.pieces.push_back(std::move(piece));
    current_ = to;
}

void PathRecorder::curveTo(Vec2 c1, Vec2 c2, Vec2 p) {
    const std::optional<Vec2> a = place(c1);
    const std::optional<Vec2> b = place(c2);
    const std::optional<Vec2> to = place(p);
    if (!a || !b || !to) return;
    if (!current_) return moveTo(p);
    Piece piece;
    piece.kind = PieceKind::Cubic;
    piece.points = {*current_, *a, *b, *to};
    subpath_.pieces.push_back(std::move(piece));
    current_ = to;
}

void PathRecorder::curveFromCurrent(Vec2 c2, Vec2 p) {
    const std::optional<Vec2> b = place(c2);
    const std::optional<Vec2> to = place(p);
    if (!b || !to) return;
    if (!current_) return moveTo(p);
    Piece piece;
    piece.kind = PieceKind::Cubic;
    piece.points = {*current_, *current_, *b, *to};
    subpath_.pieces.push_back(std::move(piece));
    current_ = to;
}

void PathRecorder::rectangle(double x, double y, double w, double h) {
    moveTo({x, y});
    lineTo({x + w, y});
    lineTo({x + w, y + h});
    lineTo({x, y + h});
    closeSubpath();
}

void PathRecorder::closeSubpath() {
    if (!current_ || !start_) return;
    if (subpath_.pieces.empty()) return;
    if (current_->x != start_->x || current_->y != start_->y) {
        Piece piece;
        piece.points = {*current_, *start_};
        subpath_.pieces.push_back(std::move(piece));
    }
    subpath_.closed = true;
    endSubpath();
    current_ = start_; // what follows starts a new subpath here
}

void PathRecorder::paint(bool closeFirst) {
    if (closeFirst) closeSubpath();
    endSubpath();
    for (DrawingPath& path : pending_) {
        pieces_ += path.pieces.size();
        if (pieces_ > mostPieces_) {
            tooLarge_ = true;
            break;
        }
        paths_.push_back(std::move(path));
    }
    pending_.clear();
    start_ = current_ = std::nullopt;
}

void PathRecorder::discard() {
    subpath_ = {};
    pending_.clear();
    start_ = current_ = std::nullopt;
}

} // namespace cad::drawingimport::pdf

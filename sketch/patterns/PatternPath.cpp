// Joining path curves end to end and finding places along them by arc length.
#include "sketch/patterns/PatternPath.h"

#include "sketch/SketchCurves.h"

#include <GCPnts_AbscissaPoint.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Standard_Failure.hxx>
#include <gp_Pnt2d.hxx>
#include <gp_Vec2d.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad {

namespace {

// How far apart two curve ends may be and still count as joined, in mm.
constexpr double kJoin = 1e-6;

gp_Pnt2d startOf(const Handle(Geom2d_Curve) & c, bool reversed) {
    return c->Value(reversed ? c->LastParameter() : c->FirstParameter());
}
gp_Pnt2d endOf(const Handle(Geom2d_Curve) & c, bool reversed) { return startOf(c, !reversed); }

} // namespace

Result<PatternPath> PatternPath::build(const std::vector<SketchEntity>& entities,
                                       const std::vector<std::string>& ids) {
    PatternPath path;
    try {
        for (const std::string& id : ids) {
            const SketchEntity* entity = findEntity(entities, id);
            if (!entity) return fail("No entity named '" + id + "'.");
            std::vector<SketchCurve> curves = entityCurves(*entity);
            if (curves.empty()) return fail(id + " isn't a curve a path can follow.");
            for (SketchCurve& c : curves) {
                if (c.curve.IsNull()) return fail(id + " isn't a curve a path can follow.");
                Geom2dAdaptor_Curve adaptor(c.curve);
                Piece piece{c.curve, false, GCPnts_AbscissaPoint::Length(adaptor)};
                path.pieces_.push_back(piece);
            }
        }
        std::vector<Piece>& pieces = path.pieces_;
        // The first curve runs towards the second; each next one starts where the
        // path so far ends.
        if (pieces.size() > 1) {
            const gp_Pnt2d a = startOf(pieces[1].curve, false), b = endOf(pieces[1].curve, false);
            const gp_Pnt2d end = endOf(pieces[0].curve, false),
                           start = startOf(pieces[0].curve, false);
            const double asIs = std::min(end.Distance(a), end.Distance(b));
            const double turned = std::min(start.Distance(a), start.Distance(b));
            pieces[0].reversed = turned < asIs;
        }
        for (std::size_t i = 1; i < pieces.size(); ++i) {
            const gp_Pnt2d end = endOf(pieces[i - 1].curve, pieces[i - 1].reversed);
            const double asIs = end.Distance(startOf(pieces[i].curve, false));
            const double turned = end.Distance(endOf(pieces[i].curve, false));
            if (std::min(asIs, turned) > kJoin)
                return fail("The path's curves don't join end to end.");
            pieces[i].reversed = turned < asIs;
        }
        for (const Piece& p : pieces) path.length_ += p.length;
        if (!(path.length_ > 1e-7)) return fail("The path has no length.");
        path.closed_ = startOf(pieces.front().curve, pieces.front().reversed)
                           .Distance(endOf(pieces.back().curve, pieces.back().reversed)) <= kJoin;
    } catch (const Standard_Failure&) {
        return fail("The path's curves can't be measured.");
    }
    return path;
}

PatternPath::Place PatternPath::at(double s) const {
    s = std::clamp(s, 0.0, length_);
    std::size_t i = 0;
    // The piece that holds s; a place where two pieces meet belongs to the later one.
    while (i + 1 < pieces_.size() && s >= pieces_[i].length) s -= pieces_[i++].length;
    const Piece& piece = pieces_[i];
    const double from =
        piece.reversed ? piece.curve->LastParameter() : piece.curve->FirstParameter();
    double u = from;
    try {
        Geom2dAdaptor_Curve adaptor(piece.curve);
        const double along = std::min(s, piece.length);
        GCPnts_AbscissaPoint walk(adaptor, piece.reversed ? -along : along, from);
        if (walk.IsDone()) u = walk.Parameter();
    } catch (const Standard_Failure&) {
        // The piece's start stands in for a place the kernel can't find.
    }
    gp_Pnt2d p;
    gp_Vec2d d;
    piece.curve->D1(u, p, d);
    if (piece.reversed) d.Reverse();
    Place place;
    place.point = {p.X(), p.Y()};
    place.direction = d.Magnitude() > 0 ? std::atan2(d.Y(), d.X()) * 180.0 / std::numbers::pi : 0.0;
    return place;
}

} // namespace cad

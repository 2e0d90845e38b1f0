// Glyph outlines: reading them out of the font builder's shapes, moving them through
// their control points (exact for lines and Béziers under any affine map), their
// tight bounds and lengths, and OpenCASCADE curves for profiles and display.
#include "sketch/text/GlyphOutline.h"

#include <BRepTools_WireExplorer.hxx>
#include <BRep_Tool.hxx>
#include <GCE2d_MakeSegment.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Geom2dConvert.hxx>
#include <Geom2dConvert_BSplineCurveToBezierCurve.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_BezierCurve.hxx>
#include <Geom2d_Line.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Geom_Surface.hxx>
#include <Standard_Failure.hxx>
#include <TColGeom2d_Array1OfBezierCurve.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cad::text {

namespace {

constexpr double kShortest = 1e-9;

double distance(Point2 a, Point2 b) { return std::hypot(b.x - a.x, b.y - a.y); }

// The parameters in (0, 1) where one coordinate of a Bézier piece turns.
std::vector<double> turningPoints(const std::vector<double>& p) {
    std::vector<double> roots;
    auto keep = [&](double t) {
        if (t > 0 && t < 1) roots.push_back(t);
    };
    if (p.size() == 3) {
        const double denominator = p[0] - 2 * p[1] + p[2];
        if (std::fabs(denominator) > 1e-15) keep((p[0] - p[1]) / denominator);
    } else if (p.size() == 4) {
        // The derivative over 3: a t^2 + b t + c.
        const double a = -p[0] + 3 * p[1] - 3 * p[2] + p[3];
        const double b = 2 * (p[0] - 2 * p[1] + p[2]);
        const double c = p[1] - p[0];
        if (std::fabs(a) < 1e-15) {
            if (std::fabs(b) > 1e-15) keep(-c / b);
        } else {
            const double disc = b * b - 4 * a * c;
            if (disc >= 0) {
                const double root = std::sqrt(disc);
                keep((-b + root) / (2 * a));
                keep((-b - root) / (2 * a));
            }
        }
    }
    return roots;
}

OutlinePiece bezierPiece(const Handle(Geom2d_BezierCurve) & bezier) {
    OutlinePiece piece;
    for (int i = 1; i <= bezier->NbPoles(); ++i) {
        const gp_Pnt2d p = bezier->Pole(i);
        piece.poles.push_back({p.X(), p.Y()});
    }
    return piece;
}

// A curve the builder made, between two parameters, as straight and Bézier pieces.
void appendPieces(const Handle(Geom2d_Curve) & curve, double first, double last,
                  std::vector<OutlinePiece>& out) {
    Handle(Geom2d_Curve) basis = curve;
    while (auto trimmed = Handle(Geom2d_TrimmedCurve)::DownCast(basis))
        basis = trimmed->BasisCurve();
    if (Handle(Geom2d_Line)::DownCast(basis)) {
        const gp_Pnt2d a = curve->Value(first), b = curve->Value(last);
        out.push_back({{{a.X(), a.Y()}, {b.X(), b.Y()}}});
        return;
    }
    if (auto bezier = Handle(Geom2d_BezierCurve)::DownCast(basis)) {
        Handle(Geom2d_BezierCurve) copy = Handle(Geom2d_BezierCurve)::DownCast(bezier->Copy());
        if (first != 0 || last != 1) copy->Segment(first, last);
        if (copy->Degree() <= 3) {
            out.push_back(bezierPiece(copy));
            return;
        }
    }
    // Anything else becomes a B-spline cut into Bézier arcs of degree at most three.
    Handle(Geom2d_BSplineCurve) spline = Geom2dConvert::CurveToBSplineCurve(
        new Geom2d_TrimmedCurve(curve, first, last), Convert_QuasiAngular);
    Geom2dConvert_BSplineCurveToBezierCurve convert(spline);
    TColGeom2d_Array1OfBezierCurve arcs(1, convert.NbArcs());
    convert.Arcs(arcs);
    for (int i = arcs.Lower(); i <= arcs.Upper(); ++i) {
        const Handle(Geom2d_BezierCurve)& arc = arcs(i);
        if (arc->Degree() <= 3) {
            out.push_back(bezierPiece(arc));
        } else {
            // Rare (fonts are quadratic or cubic): a straight chord through samples.
            const int samples = 8 * arc->Degree();
            for (int k = 0; k < samples; ++k) {
                const gp_Pnt2d a = arc->Value(static_cast<double>(k) / samples);
                const gp_Pnt2d b = arc->Value(static_cast<double>(k + 1) / samples);
                out.push_back({{{a.X(), a.Y()}, {b.X(), b.Y()}}});
            }
        }
    }
}

} // namespace

Affine Affine::then(const Affine& n) const {
    return {n.a * a + n.b * c, n.a * b + n.b * d,       n.c * a + n.d * c,
            n.c * b + n.d * d, n.a * e + n.b * f + n.e, n.c * e + n.d * f + n.f};
}

Affine Affine::rotation(double degrees) {
    const double t = degrees * std::numbers::pi / 180.0;
    const double c = std::cos(t), s = std::sin(t);
    return {c, -s, s, c, 0, 0};
}

Contour transformed(const Contour& contour, const Affine& map) {
    Contour out;
    out.letter = contour.letter;
    out.pieces.reserve(contour.pieces.size());
    for (const OutlinePiece& piece : contour.pieces) {
        OutlinePiece moved;
        moved.poles.reserve(piece.poles.size());
        for (Point2 p : piece.poles) moved.poles.push_back(map.apply(p));
        out.pieces.push_back(std::move(moved));
    }
    return out;
}

void Bounds::add(Point2 p) {
    xmin = std::min(xmin, p.x);
    ymin = std::min(ymin, p.y);
    xmax = std::max(xmax, p.x);
    ymax = std::max(ymax, p.y);
}

void addToBounds(Bounds& box, const OutlinePiece& piece) {
    box.add(piece.start());
    box.add(piece.end());
    if (piece.straight()) return;
    std::vector<double> xs, ys;
    for (Point2 p : piece.poles) xs.push_back(p.x), ys.push_back(p.y);
    for (const std::vector<double>* coordinate : {&xs, &ys})
        for (double t : turningPoints(*coordinate)) box.add(pieceValue(piece, t));
}

Bounds contoursBounds(const std::vector<Contour>& contours) {
    Bounds box;
    for (const Contour& c : contours)
        for (const OutlinePiece& p : c.pieces) addToBounds(box, p);
    return box;
}

Point2 pieceValue(const OutlinePiece& piece, double t) {
    // de Casteljau: exact for any degree.
    std::vector<Point2> p = piece.poles;
    for (std::size_t level = p.size(); level > 1; --level)
        for (std::size_t i = 0; i + 1 < level; ++i)
            p[i] = {p[i].x + t * (p[i + 1].x - p[i].x), p[i].y + t * (p[i + 1].y - p[i].y)};
    return p.front();
}

double pieceLength(const OutlinePiece& piece) {
    if (piece.straight()) return distance(piece.start(), piece.end());
    Handle(Geom2d_Curve) curve = pieceCurve(piece);
    if (curve.IsNull()) return 0;
    Geom2dAdaptor_Curve adaptor(curve);
    return GCPnts_AbscissaPoint::Length(adaptor);
}

Handle(Geom2d_Curve) pieceCurve(const OutlinePiece& piece) {
    if (piece.poles.size() < 2) return {};
    try {
        if (piece.straight()) {
            if (distance(piece.start(), piece.end()) <= kShortest) return {};
            GCE2d_MakeSegment make(gp_Pnt2d(piece.start().x, piece.start().y),
                                   gp_Pnt2d(piece.end().x, piece.end().y));
            return make.IsDone() ? Handle(Geom2d_Curve)(make.Value()) : Handle(Geom2d_Curve)();
        }
        TColgp_Array1OfPnt2d poles(1, static_cast<int>(piece.poles.size()));
        for (std::size_t i = 0; i < piece.poles.size(); ++i)
            poles.SetValue(static_cast<int>(i) + 1, gp_Pnt2d(piece.poles[i].x, piece.poles[i].y));
        return new Geom2d_BezierCurve(poles);
    } catch (const Standard_Failure&) {
        return {};
    }
}

std::vector<Contour> glyphContours(const TopoDS_Shape& glyph) {
    std::vector<Contour> out;
    if (glyph.IsNull()) return out;
    for (TopExp_Explorer w(glyph, TopAbs_WIRE); w.More(); w.Next()) {
        Contour contour;
        for (BRepTools_WireExplorer e(TopoDS::Wire(w.Current())); e.More(); e.Next()) {
            const TopoDS_Edge& edge = e.Current();
            Handle(Geom2d_Curve) curve;
            Handle(Geom_Surface) surface;
            TopLoc_Location location;
            double first = 0, last = 0;
            BRep_Tool::CurveOnSurface(edge, curve, surface, location, first, last);
            if (curve.IsNull()) continue;
            std::vector<OutlinePiece> pieces;
            try {
                appendPieces(curve, first, last, pieces);
            } catch (const Standard_Failure&) {
                continue;
            }
            if (edge.Orientation() == TopAbs_REVERSED) {
                std::reverse(pieces.begin(), pieces.end());
                for (OutlinePiece& p : pieces) std::reverse(p.poles.begin(), p.poles.end());
            }
            for (OutlinePiece& p : pieces) {
                const bool hasExtent = std::any_of(p.poles.begin(), p.poles.end(), [&](Point2 q) {
                    return distance(p.start(), q) > kShortest;
                });
                if (hasExtent) contour.pieces.push_back(std::move(p));
            }
        }
        if (!contour.pieces.empty()) out.push_back(std::move(contour));
    }
    return out;
}

} // namespace cad::text

// Shared by the sketch text tests: a document with the sketch, operation and geometry
// commands, text laid out on its own, and measurements of glyph contours made without
// the layout code (fine polylines, regions, and FreeType reading the font file itself).
#pragma once

#include "tests/geometry/GeometryTestModel.h"

#include "geometry/SketchRegions.h"
#include "sketch/SketchObject.h"
#include "sketch/ops/SketchOperationCommands.h"
#include "sketch/text/TextLayout.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <GeomAPI.hxx>
#include <gp_Pln.hxx>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <string>
#include <vector>

namespace cad::testing {

using text::Contour;
using text::OutlinePiece;

// A sketch on XY and whatever text the test adds to it.
class TextModel : public GeometryModel {
protected:
    TextModel() {
        registerSketchOperationCommands(registry);
        ok("create_sketch", {{"plane", "XY"}});
    }
    SketchObject& sketch() { return *document.findAs<SketchObject>("Sketch1"); }
    const SketchText& textOf(const std::string& id) {
        return std::get<SketchText>(sketch().findEntity(id)->geometry);
    }
    // The text's contours as the sketch shows them.
    std::vector<Contour> outlines(const std::string& id) {
        auto layout = text::layoutTextForSketch(textOf(id), &sketch().entities);
        EXPECT_TRUE(layout.ok()) << layout.error();
        return layout ? (*layout)->contours : std::vector<Contour>{};
    }
};

// A text of the default options with these words, laid out strictly.
inline std::vector<Contour> laidOut(const SketchText& t) {
    auto layout = text::layoutText(t, nullptr, text::FontChoice::Strict);
    EXPECT_TRUE(layout.ok()) << layout.error();
    return layout ? (*layout)->contours : std::vector<Contour>{};
}
inline SketchText words(std::string text, double height = 10) {
    SketchText t;
    t.text = std::move(text);
    t.height = height;
    return t;
}

// Points along a piece, from its control points alone (de Casteljau), ends included.
inline std::vector<Point2> polyline(const OutlinePiece& piece, int steps = 200) {
    if (piece.straight()) return {piece.start(), piece.end()};
    std::vector<Point2> out;
    for (int k = 0; k <= steps; ++k) {
        std::vector<Point2> p = piece.poles;
        const double t = static_cast<double>(k) / steps;
        for (std::size_t level = p.size(); level > 1; --level)
            for (std::size_t i = 0; i + 1 < level; ++i)
                p[i] = {p[i].x + t * (p[i + 1].x - p[i].x), p[i].y + t * (p[i + 1].y - p[i].y)};
        out.push_back(p[0]);
    }
    return out;
}

// Shoelace over a fine polyline: counter-clockwise positive.
inline double signedArea(const Contour& contour) {
    double twice = 0;
    for (const OutlinePiece& piece : contour.pieces) {
        const std::vector<Point2> p = polyline(piece);
        for (std::size_t i = 1; i < p.size(); ++i)
            twice += p[i - 1].x * p[i].y - p[i].x * p[i - 1].y;
    }
    return twice / 2;
}

struct Box {
    double xmin = 1e300, ymin = 1e300, xmax = -1e300, ymax = -1e300;
    double width() const { return xmax - xmin; }
    double height() const { return ymax - ymin; }
    Point2 middle() const { return {(xmin + xmax) / 2, (ymin + ymax) / 2}; }
};
// The box of the contours (of one letter, when `letter` is not -1), from polylines.
inline Box boxOf(const std::vector<Contour>& contours, int letter = -1) {
    Box b;
    for (const Contour& c : contours) {
        if (letter >= 0 && c.letter != letter) continue;
        for (const OutlinePiece& piece : c.pieces)
            for (Point2 p : polyline(piece)) {
                b.xmin = std::min(b.xmin, p.x), b.xmax = std::max(b.xmax, p.x);
                b.ymin = std::min(b.ymin, p.y), b.ymax = std::max(b.ymax, p.y);
            }
    }
    return b;
}

inline std::vector<geometry::NamedEdge> edgesOf(const std::vector<Contour>& contours) {
    std::vector<geometry::NamedEdge> out;
    for (const Contour& c : contours)
        for (const OutlinePiece& piece : c.pieces)
            out.push_back(
                {BRepBuilderAPI_MakeEdge(GeomAPI::To3d(text::pieceCurve(piece), gp_Pln())).Edge(),
                 "Text1"});
    return out;
}

inline double faceArea(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::SurfaceProperties(shape, props);
    return props.Mass();
}

// The area FreeType's own outline of a character encloses, in its outline units
// squared, with those units per em: straight and Bézier segments integrated finely.
struct FreeTypeArea {
    double area = 0;
    double unitsPerEm = 0;
};
inline FreeTypeArea freeTypeArea(const std::string& file, char32_t c) {
    FreeTypeArea out;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0) return out;
    // One pixel per font unit, so the outline is in 1/64 font units: the midpoints
    // FreeType implies between two control points stay exact.
    if (FT_New_Face(library, file.c_str(), 0, &face) == 0 &&
        FT_Set_Pixel_Sizes(face, 0, face->units_per_EM) == 0 &&
        FT_Load_Char(face, c, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) == 0) {
        out.unitsPerEm = face->units_per_EM * 64.0;
        // Every segment, straight or not, as a fine polyline into one shoelace sum.
        struct Walk {
            Point2 at;
            double twice = 0;
            static Point2 p(const FT_Vector* v) {
                return {static_cast<double>(v->x), static_cast<double>(v->y)};
            }
            static int add(void* user, std::vector<Point2> poles) {
                auto* w = static_cast<Walk*>(user);
                poles.insert(poles.begin(), w->at);
                const std::vector<Point2> line = polyline(OutlinePiece{poles}, 400);
                for (std::size_t i = 1; i < line.size(); ++i)
                    w->twice += line[i - 1].x * line[i].y - line[i].x * line[i - 1].y;
                w->at = poles.back();
                return 0;
            }
        } walk;
        FT_Outline_Funcs funcs{};
        funcs.move_to = [](const FT_Vector* to, void* w) {
            static_cast<Walk*>(w)->at = Walk::p(to);
            return 0;
        };
        funcs.line_to = [](const FT_Vector* to, void* w) { return Walk::add(w, {Walk::p(to)}); };
        funcs.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* w) {
            return Walk::add(w, {Walk::p(control), Walk::p(to)});
        };
        funcs.cubic_to = [](const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to,
                            void* w) {
            return Walk::add(w, {Walk::p(c1), Walk::p(c2), Walk::p(to)});
        };
        // Decomposing closes every contour back to its start, and the outer contours
        // run against the holes, so the signed sum is the glyph's area.
        FT_Outline_Decompose(&face->glyph->outline, &funcs, &walk);
        out.area = std::fabs(walk.twice / 2);
    }
    if (face) FT_Done_Face(face);
    FT_Done_FreeType(library);
    return out;
}

} // namespace cad::testing

// Edge flanges and hems: a bend of the inner radius tangent to the sheet's face at
// the edge, turning toward that face's side (flip: the other), a flat wall past it
// over the edge less its offsets, relief slots where an end is pulled in, all joined
// to the body with the shape boolean.
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/materials/BodyMaterial.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/metal/SectionOutline.h"
#include "geometry/sheet/metal/SheetEdge.h"
#include "geometry/sheet/metal/SheetMetalFeatures.h"
#include "geometry/sheet/metal/SheetRules.h"

#include <BRepCheck_Analyzer.hxx>
#include <Standard_Failure.hxx>
#include <gp_Vec2d.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace cad::sheet {

using geometry::BooleanKind;
using geometry::NamedShape;

namespace {

// What is folded onto the edge.
struct Fold {
    double angle = 90;  // degrees
    double radius = 0;  // inner; 0: the part's
    double length = 20; // the flat wall past the bend
    const char* invalid = "";
};

// Where a fold is drawn: (s, u, v) is s along the edge, u out of the face of the
// thickness and v toward the side the fold turns to. The sheet lies at u <= 0,
// -T <= v <= 0; the bend's inner face starts at the origin.
struct Frame {
    gp_Pnt origin;
    gp_Dir along, out, up;

    // The cross-section plane at s, its (x, y) being (u, v).
    gp_Ax3 section(double s) const {
        return gp_Ax3(origin.Translated(gp_Vec(along) * s), out.Crossed(up), out);
    }
    // The plane at height v, its (x, y) being (s, u).
    gp_Ax3 level(double v) const {
        return gp_Ax3(origin.Translated(gp_Vec(up) * v), along.Crossed(out), along);
    }
};

// The bend and the wall past it, from s = from to s = to. The face that lands on the
// body's edge face goes unnamed: the join takes it away.
Result<NamedShape> foldTool(const Frame& frame, double t, double r, const Fold& fold, double from,
                            double to, const std::string& f) {
    const double a = fold.angle * std::numbers::pi / 180;
    auto onBend = [&](double radius, double angle) {
        return gp_Pnt2d(radius * std::sin(angle), r - radius * std::cos(angle));
    };
    const gp_Vec2d wall(std::cos(a), std::sin(a));
    const gp_Pnt2d innerEnd = onBend(r, a), outerEnd = onBend(r + t, a);
    SectionOutline outline(frame.section(from));
    outline.start(gp_Pnt2d(0, -t));
    outline.lineTo(gp_Pnt2d(0, 0), "");
    outline.arcTo(onBend(r, a / 2), innerEnd, f + ".inner_bend");
    if (fold.length > 0) {
        outline.lineTo(innerEnd.Translated(wall * fold.length), f + ".inner");
        outline.lineTo(outerEnd.Translated(wall * fold.length), f + ".wall");
        outline.lineTo(outerEnd, f + ".outer");
    } else {
        outline.lineTo(outerEnd, f + ".wall");
    }
    outline.arcTo(onBend(r + t, a / 2), gp_Pnt2d(0, -t), f + ".outer_bend");
    // The wall's end faces follow its tip in the naming: F.wall, F.wall[2], F.wall[3].
    return sweepOutline(outline, gp_Vec(frame.along) * (to - from),
                        {f + ".wall", "2", f + ".wall", "3"},
                        "The geometry kernel could not make the fold.");
}

// A slot from s0 to s1 going `depth` into the sheet from the edge, through the
// thickness; its inner end rounded with `round`.
Result<NamedShape> reliefTool(const Frame& frame, double t, double s0, double s1, double depth,
                              bool round, const std::string& name) {
    const double margin = 0.1 * t; // past the sheet's faces and edge, so no skin is left
    SectionOutline outline(frame.level(-t - margin));
    if (round) {
        const double centre = -depth + (s1 - s0) / 2;
        const double top = std::max(margin, centre + margin);
        outline.start(gp_Pnt2d(s0, top));
        outline.lineTo(gp_Pnt2d(s0, centre), name);
        outline.arcTo(gp_Pnt2d((s0 + s1) / 2, -depth), gp_Pnt2d(s1, centre), name);
        outline.lineTo(gp_Pnt2d(s1, top), name);
    } else {
        outline.start(gp_Pnt2d(s0, margin));
        outline.lineTo(gp_Pnt2d(s0, -depth), name);
        outline.lineTo(gp_Pnt2d(s1, -depth), name);
        outline.lineTo(gp_Pnt2d(s1, margin), name);
    }
    outline.close(name);
    return sweepOutline(outline, gp_Vec(frame.up) * (t + 2 * margin), {name, "", name, ""},
                        "The geometry kernel could not make the relief.");
}

std::optional<double> givenNumber(const nlohmann::json& parameters, const char* key) {
    auto it = parameters.find(key);
    if (it == parameters.end() || !it->is_number()) return std::nullopt;
    return it->get<double>();
}

Result<NamedShape> foldOnEdge(const Document& document, const nlohmann::json& parameters,
                              const NamedShape& body, const std::string& f, const Fold& fold) {
    const double offsetStart = parameterNumber(parameters, "offset_start", 0);
    const double offsetEnd = parameterNumber(parameters, "offset_end", 0);
    if (!(offsetStart >= 0) || !(offsetEnd >= 0)) return fail("The offsets can't be negative.");
    const double given = parameterNumber(parameters, "thickness", 0);
    if (!(given >= 0)) return fail("The thickness can't be negative.");

    const geometry::ReferenceContext context = featureContext(document, f);
    const auto* owner = dynamic_cast<const GeometryObject*>(document.find(context.bodyId));
    const std::optional<SheetRules> rules =
        owner ? sheetRulesOf(document, *owner) : std::optional<SheetRules>();
    Result<SheetEdge> edge = findSheetEdge(document, parameterText(parameters, "edge"), body,
                                           context, rules ? rules->thickness : given);
    if (!edge) return Error(edge);
    const double from = offsetStart, to = edge->length - offsetEnd;
    if (to - from < 1e-6) return fail("The offsets leave nothing of the edge for the flange.");

    const double t = edge->thickness;
    const double r = fold.radius > 0 ? fold.radius : rules ? rules->bendRadius : t;
    const bool flip = parameterFlag(parameters, "flip", false);
    Frame frame;
    frame.along = edge->along;
    frame.out = edge->outward;
    frame.up = flip ? edge->sheetNormal.Reversed() : edge->sheetNormal;
    frame.origin = flip ? edge->start.Translated(gp_Vec(edge->sheetNormal) * -t) : edge->start;

    try {
        NamedShape result = body;
        const std::string relief = parameterText(parameters, "relief");
        if (relief != "none" && (offsetStart > 0 || offsetEnd > 0)) {
            const double factor = reliefWidthFactor(owner ? materialIdOf(document, *owner) : "");
            const double width = givenNumber(parameters, "relief_width").value_or(factor * t);
            if (!(width > 0)) return fail("The relief's width must be greater than zero.");
            const double depth =
                givenNumber(parameters, "relief_depth").value_or(r + t + width / 2);
            if (!(depth > 0)) return fail("The relief's depth must be greater than zero.");
            const bool round = relief == "round";
            struct Slot {
                double s0, s1;
                const char* name;
            };
            std::vector<Slot> slots;
            if (offsetStart > 0) slots.push_back({from - width, from, ".relief1"});
            if (offsetEnd > 0) slots.push_back({to, to + width, ".relief2"});
            for (const Slot& slot : slots) {
                Result<NamedShape> tool =
                    reliefTool(frame, t, slot.s0, slot.s1, depth, round, f + slot.name);
                if (!tool) return Error(tool);
                Result<NamedShape> cut = geometry::shapeBoolean(result, *tool, BooleanKind::Cut);
                if (!cut) return Error(cut);
                result = std::move(cut).value();
            }
        }
        Result<NamedShape> tool = foldTool(frame, t, r, fold, from, to, f);
        if (!tool) return Error(tool);
        Result<NamedShape> joined = geometry::shapeBoolean(result, *tool, BooleanKind::Join);
        if (!joined) return joined;
        if (!BRepCheck_Analyzer(joined->shape()).IsValid()) return fail(fold.invalid);
        return joined;
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not make the fold.");
    }
}

} // namespace

Result<NamedShape> computeEdgeFlange(const Document& document, const nlohmann::json& parameters,
                                     const NamedShape& body, const std::string& featureName) {
    if (body.isNull()) return fail("An edge flange needs a sheet to go on.");
    Fold fold;
    fold.length = parameterNumber(parameters, "length", 20);
    if (!(fold.length >= 0)) return fail("The flange's length can't be negative.");
    fold.angle = parameterNumber(parameters, "angle", 90);
    if (!(fold.angle > 0 && fold.angle <= 180))
        return fail("The flange's angle is between 0 and 180 degrees.");
    fold.radius = parameterNumber(parameters, "bend_radius", 0);
    if (!(fold.radius >= 0)) return fail("The bend radius can't be negative.");
    fold.invalid = "The flange doesn't make a valid solid: does it run into the part?";
    return foldOnEdge(document, parameters, body, featureName, fold);
}

Result<NamedShape> computeHem(const Document& document, const nlohmann::json& parameters,
                              const NamedShape& body, const std::string& featureName) {
    if (body.isNull()) return fail("An edge flange needs a sheet to go on.");
    Fold fold;
    fold.length = parameterNumber(parameters, "length", 10);
    if (!(fold.length >= 0)) return fail("The flange's length can't be negative.");
    const double gap = parameterNumber(parameters, "gap", 0);
    if (!(gap >= 0)) return fail("The hem's gap can't be negative.");
    // A closed hem still keeps a hair's gap, so it folds at radius 0.01.
    fold.angle = 180;
    fold.radius = std::max(gap, 0.02) / 2;
    fold.invalid = "The hem doesn't make a valid solid: does it run into the part?";
    return foldOnEdge(document, parameters, body, featureName, fold);
}

} // namespace cad::sheet

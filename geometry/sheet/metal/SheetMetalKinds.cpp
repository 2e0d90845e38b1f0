// The table entries of the sheet metal kinds: names, descriptions, argument tables
// and the compute function each one runs.
#include "geometry/sheet/metal/SheetMetalKinds.h"

#include "geometry/param/ParamFeatureType.h"
#include "geometry/sheet/metal/SheetMetalFeatures.h"
#include "geometry/sheet/metal/SheetRules.h"

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

FeatureArgument bendRadius(const char* description) {
    return {"Bend radius", description, "bend_radius", Kind::Length, false, {}, 0.0, ""};
}

FeatureArgument bendTable() {
    return {"Bend table",
            "Optional: the shop's bend figures, a row each: \"angle, inside radius, value\" (or "
            "\"angle, value\" for any radius), in degrees and mm, rows on lines or between "
            "semicolons (\"90, 2, 3.4; 45, 2, 1.1\"); '#' starts a comment. Between angles it "
            "interpolates; bends it doesn't cover use the K-factor.",
            "bend_table",
            Kind::Text,
            false,
            {},
            {},
            ""};
}

FeatureArgument bendTableKind() {
    return {"Bend table kind",
            "What the bend table's values are: deductions (default) or allowances.",
            "bend_table_kind",
            Kind::Choice,
            false,
            {"deduction", "allowance"},
            "deduction",
            ""};
}

FeatureArgument flipArgument(const char* description) {
    return {"Flip", description, "flip", Kind::Bool, false, {}, false, ""};
}

FeatureArgument edgeArgument(const char* description) {
    FeatureArgument edge{"Edge", description, "edge", Kind::References, false, {}, {}, "", 0};
    edge.picks = FeatureArgument::Edges;
    return edge;
}

FeatureArgument lengthArgument(const char* label, const char* description, const char* key,
                               nlohmann::json fallback) {
    return {label, description, key, Kind::Length, false, {}, std::move(fallback), ""};
}

// The end offsets, reliefs and thickness edge flanges and hems share.
void addEdgeEnds(FeatureArguments& table, const char* offsetStart, const char* offsetEnd,
                 const char* relief, const char* reliefWidth, const char* reliefDepth) {
    table.push_back(lengthArgument("Offset at start", offsetStart, "offset_start", 0.0));
    table.push_back(lengthArgument("Offset at end", offsetEnd, "offset_end", 0.0));
    table.push_back({"Relief",
                     relief,
                     "relief",
                     Kind::Choice,
                     false,
                     {"rectangular", "round", "none"},
                     "rectangular",
                     ""});
    table.push_back(lengthArgument("Relief width", reliefWidth, "relief_width", {}));
    table.push_back(lengthArgument("Relief depth", reliefDepth, "relief_depth", {}));
    table.push_back(lengthArgument(
        "Thickness",
        "Only for a part that isn't sheet metal yet: the sheet's thickness (0: measured).",
        "thickness", {}));
}

ParamFeatureType sheetFlangeType() {
    ParamFeatureType type = paramFeatureKind(
        "SheetFlange", "Flange", "sheet_flange", "Flange", "sheet-flange",
        "Start a sheet metal part, setting its rules (thickness, bend radius, K-factor): a closed "
        "sketch makes a flat plate the thickness; an open profile of lines (an L, a U, a hat) "
        "makes a bent part, each corner a bend, the lines one face of the sheet and the "
        "thickness to their left or right, `width` along the sketch's normal.");
    type.makesNewSolid = true;
    type.arguments = {
        {"Profile",
         "The profile, separated by ';': sketches (all their closed regions), single regions "
         "(\"Sketch1/Region(Arc1+Line1+Line2)\", named by the curves round them) or flat faces "
         "(\"Body1/Extrude1.end\"). An open profile: the sketch, picked whole.",
         "sketch",
         Kind::References,
         false,
         {},
         {},
         "sketch",
         FeatureArgument::Sketches | FeatureArgument::Regions | FeatureArgument::Faces},
        lengthArgument("Thickness", "The sheet's thickness (default 1.5 mm).", "thickness",
                       sheet::kDefaultThickness),
        bendRadius("Inner bend radius (0: the thickness)."),
        {"K-factor",
         "Where the neutral layer is, as a share of the thickness from the inside: sets how long "
         "bends are when flat. Leave it out to use the body's material's (0.44 without one).",
         "k_factor",
         Kind::Number,
         false,
         {},
         {},
         ""},
        lengthArgument("Width", "Open profiles: how far the flange runs along the sketch's normal.",
                       "width", {}),
        bendTable(),
        bendTableKind(),
        {"Side",
         "Open profiles: the thickness to the left (default) or right of the lines, walking them.",
         "side",
         Kind::Choice,
         false,
         {"left", "right"},
         "left",
         ""},
        {"Symmetric",
         "Open profiles: half the width each way from the sketch.",
         "symmetric",
         Kind::Bool,
         false,
         {},
         false,
         ""},
        flipArgument("The thickness (plates) or width (profiles) the other way."),
    };
    type.compute = sheet::computeSheetFlange;
    return type;
}

ParamFeatureType edgeFlangeType() {
    ParamFeatureType type = paramFeatureKind(
        "EdgeFlange", "EdgeFlange", "edge_flange", "Edge Flange", "edge-flange",
        "Add a flange on a straight edge of a sheet metal part: a bend (the part's radius) "
        "and a flat wall `length` past it, the edge's full length, bent toward the side of "
        "the face the edge is on (flip: the other way).");
    type.arguments = {
        edgeArgument("A straight edge along the sheet's outside, e.g. \"Body1/Edge(Flange1.end, "
                     "Flange1.side.Line3)\"."),
        {"Angle", "How far it bends (default 90).", "angle", Kind::Angle, false, {}, 90.0, ""},
        lengthArgument("Length", "The flat wall past the bend (default 20 mm).", "length", 20.0),
        bendRadius("Inner bend radius (0: the part's)."),
        flipArgument("Bend the other way."),
    };
    addEdgeEnds(type.arguments, "Pull the flange in from the edge's start (as the edge runs).",
                "Pull the flange in from the edge's end.",
                "At an end pulled in: a slot cut into the sheet beside the bend so it doesn't "
                "tear.",
                "The relief's width. Leave out for the material's: 1 to 2 thicknesses, wider for "
                "harder metals.",
                "How far the relief goes into the sheet. Leave out for bend radius + thickness + "
                "half its width.");
    type.compute = sheet::computeEdgeFlange;
    type.noBody = "Pick the edge the flange goes on.";
    return type;
}

ParamFeatureType sheetRulesType() {
    ParamFeatureType type = paramFeatureKind(
        "SheetRules", "SheetMetal", "sheet_rules", "Sheet Metal", "sheet-rules",
        "Make a body sheet metal without changing its shape (a plate made by extruding, an "
        "imported part): give it rules for edge flanges and its flat pattern. Thickness 0 is "
        "measured; bend radius 0 is the thickness; leave out k_factor to use the body's "
        "material's.");
    type.arguments = {
        lengthArgument("Thickness", "The sheet's thickness (0: measured).", "thickness", 0.0),
        bendRadius("Inner bend radius (0: the thickness)."),
        {"K-factor",
         "Leave out to use the material's (0.44 without one).",
         "k_factor",
         Kind::Number,
         false,
         {},
         {},
         ""},
        bendTable(),
        bendTableKind(),
    };
    type.compute = sheet::computeSheetRules;
    type.noBody = "Pick the body to make sheet metal.";
    return type;
}

ParamFeatureType hemType() {
    ParamFeatureType type = paramFeatureKind(
        "Hem", "Hem", "hem", "Hem", "hem",
        "Fold a straight edge of a sheet metal part right back over the sheet: a hem, "
        "`length` long, `gap` off the sheet (0: closed, as tight as it folds). Flip folds it "
        "under instead.");
    type.arguments = {
        edgeArgument("A straight edge along the sheet's outside."),
        lengthArgument("Length", "The folded-back part, past the fold (default 10 mm).", "length",
                       10.0),
        lengthArgument("Gap", "Between the hem and the sheet (0: closed).", "gap", 0.0),
        flipArgument("Fold it under instead of over."),
    };
    addEdgeEnds(type.arguments, "Pull the hem in from the edge's start.",
                "Pull the hem in from the edge's end.",
                "At an end pulled in: a slot so the fold doesn't tear the sheet.",
                "The relief's width. Leave out for the material's.",
                "How far the relief goes into the sheet. Leave out for the fold's radius + "
                "thickness + half its width.");
    type.compute = sheet::computeHem;
    type.noBody = "Pick the edge the flange goes on.";
    return type;
}

} // namespace

void addSheetMetalKinds() {
    ParamFeatureTypes& types = paramFeatureTypes();
    if (types.find("SheetFlange")) return;
    types.add(sheetFlangeType());
    types.add(edgeFlangeType());
    types.add(sheetRulesType());
    types.add(hemType());
}

} // namespace cad

// The table entries of the feature patterns, the feature mirror and the body
// pattern: names, descriptions, argument tables and compute functions.
#include "geometry/patterns/PatternKinds.h"

#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/BodyPattern.h"
#include "geometry/patterns/FeaturePatterns.h"

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

FeatureArgument featuresArgument() {
    return {"Features",
            "The features to repeat, separated by ';' (extrudes, revolves, sweeps, lofts, "
            "holes), e.g. \"Extrude2; Hole1\". None: the whole body.",
            "features",
            Kind::References,
            false,
            {},
            {},
            "", FeatureArgument::Features};
}

FeatureArgument countArgument(const char* description) {
    return {"Count", description, "count", Kind::Integer, false, {}, 2, ""};
}

ParamFeatureType patternType(const char* typeId, const char* command, const char* label,
                             const char* formId, const char* description) {
    ParamFeatureType type;
    type.typeId = typeId;
    type.nameBase = "Pattern";
    type.command = command;
    type.label = label;
    type.formId = formId;
    type.description = description;
    return type;
}

ParamFeatureType rectangularType() {
    ParamFeatureType type = patternType(
        "RectangularPattern", "pattern_rectangular", "Rectangular Pattern", "pattern-rect",
        "Repeat features (or the whole body) in a row, or a grid with a second direction.");
    type.arguments = {
        featuresArgument(),
        {"Direction",
         "Along a line: an edge, a sketch line or X/Y/Z.",
         "direction",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        countArgument("Copies along it, the original included (default 2)."),
        {"Spacing",
         "Between copies (negative: the other way).",
         "spacing",
         Kind::Length,
         true,
         {},
         {},
         ""},
        {"Second direction",
         "A second direction, for a grid.",
         "direction2",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Second count",
         "Copies along the second direction (default 1).",
         "count2",
         Kind::Integer,
         false,
         {},
         1,
         ""},
        {"Second spacing",
         "Between copies along the second direction.",
         "spacing2",
         Kind::Length,
         false,
         {},
         {},
         ""},
    };
    type.compute = computeRectangularPattern;
    return type;
}

ParamFeatureType circularType() {
    ParamFeatureType type =
        patternType("CircularPattern", "pattern_circular", "Circular Pattern", "pattern-circ",
                    "Repeat features (or the whole body) around an axis.");
    type.arguments = {
        featuresArgument(),
        {"Axis",
         "The axis: an edge, a cylinder's axis edge, a sketch line or X/Y/Z.",
         "axis",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        countArgument("Copies, the original included (default 2)."),
        {"Angle",
         "Spread over this many degrees (default 360, evenly all the way round).",
         "angle",
         Kind::Angle,
         false,
         {},
         360.0,
         ""},
    };
    type.compute = computeCircularPattern;
    return type;
}

ParamFeatureType pathType() {
    ParamFeatureType type =
        patternType("PathPattern", "pattern_path", "Path Pattern", "pattern-path",
                    "Repeat features (or the whole body) along a path of connected curves.");
    type.arguments = {
        featuresArgument(),
        {"Path",
         "The path's curves, separated by ';'.",
         "path",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::SketchCurves | FeatureArgument::Edges},
        countArgument("Copies, the original included (default 2)."),
        {"Spacing",
         "Between copies along the path (0: spread over the whole path).",
         "spacing",
         Kind::Length,
         false,
         {},
         0.0,
         ""},
        {"Follow path",
         "Copies turn with the path (default true).",
         "follow",
         Kind::Bool,
         false,
         {},
         true,
         ""},
    };
    type.compute = computePathPattern;
    return type;
}

ParamFeatureType mirrorType() {
    ParamFeatureType type;
    type.typeId = "Mirror";
    type.nameBase = "Mirror";
    type.command = "mirror_features";
    type.label = "Mirror";
    type.formId = "mirror3d";
    type.description = "Mirror features (or the whole body) across a plane or flat face (sketch "
                       "geometry: use mirror).";
    type.arguments = {
        featuresArgument(),
        {"Plane",
         "The mirror plane: XY/XZ/YZ, a reference plane or a flat face.",
         "plane",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Planes | FeatureArgument::Faces},
    };
    type.compute = computeMirror;
    return type;
}

// Made by pattern_bodies (one per copy, bound to its pattern set), never by a
// command of its own.
ParamFeatureType bodyPatternType() {
    ParamFeatureType type;
    type.typeId = "PatternBody";
    type.nameBase = "Pattern";
    type.label = "Body Pattern";
    type.description = "Copies of bodies laid out as a pattern.";
    type.makesNewSolid = true;
    type.arguments = {
        {"Bodies", "The bodies, separated by ';'.", "bodies", Kind::References, true, {}, {}, "", FeatureArgument::Bodies}};
    for (FeatureArgument& key : bodyPatternKeys()) type.arguments.push_back(std::move(key));
    type.arguments.push_back({"Pattern set",
                              "The pattern set the copy belongs to.",
                              "set",
                              Kind::References,
                              false,
                              {},
                              {},
                              ""});
    type.arguments.push_back({"Copy",
                              "Which copy this is (the original is 1); none: all.",
                              "copy",
                              Kind::Integer,
                              false,
                              {},
                              {},
                              ""});
    type.targetDescription = "The body it changes (default: the body of what it patterns).";
    type.compute = computePatternBody;
    return type;
}

} // namespace

FeatureArguments bodyPatternKeys() {
    return {
        {"Pattern",
         "How the copies are laid out.",
         "pattern",
         Kind::Choice,
         false,
         {"rectangular", "circular", "path"},
         {},
         ""},
        {"Direction",
         "rectangular: the direction (an axis, straight edge or sketch line), e.g. \"X\".",
         "direction",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Count",
         "How many, the original included (default 2).",
         "count",
         Kind::Integer,
         false,
         {},
         2,
         ""},
        {"Spacing",
         "rectangular: the distance between copies; path: along the path (0: spread over it).",
         "spacing",
         Kind::Length,
         false,
         {},
         {},
         ""},
        {"Second direction",
         "rectangular: a second direction, for a grid.",
         "direction2",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Second count",
         "rectangular: how many along the second direction.",
         "count2",
         Kind::Integer,
         false,
         {},
         1,
         ""},
        {"Second spacing",
         "rectangular: spacing along the second direction.",
         "spacing2",
         Kind::Length,
         false,
         {},
         {},
         ""},
        {"Axis", "circular: the axis to turn about.", "axis", Kind::References, false, {}, {}, "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Angle",
         "circular: degrees spread over (default 360: evenly all round).",
         "angle",
         Kind::Angle,
         false,
         {},
         360.0,
         ""},
        {"Path",
         "path: the edges or sketch curves, separated by ';'.",
         "path",
         Kind::References,
         false,
         {},
         {},
         "", FeatureArgument::SketchCurves | FeatureArgument::Edges},
        {"Follow path",
         "path: copies turn with the path (default true).",
         "follow",
         Kind::Bool,
         false,
         {},
         true,
         ""},
    };
}

void addFeaturePatternKinds(ParamFeatureTypes& types) {
    types.add(rectangularType());
    types.add(circularType());
    types.add(pathType());
    types.add(mirrorType());
    types.add(bodyPatternType());
}

void addPatternKinds() {
    ParamFeatureTypes& types = paramFeatureTypes();
    if (types.find("RectangularPattern")) return;
    addFeaturePatternKinds(types);
    addBodyChangeKinds(types);
}

} // namespace cad

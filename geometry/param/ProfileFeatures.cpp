// The table entries of revolve, sweep and loft: their names, descriptions and
// argument tables, and the compute function each one runs.
#include "geometry/param/ProfileFeatures.h"

#include "geometry/param/ParamFeatureType.h"

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

FeatureArgument profileArgument() {
    return {"Profile",
            "The profile, separated by ';': sketches (all their closed regions), single regions "
            "(\"Sketch1/Region(Arc1+Line1+Line2)\", named by the curves round them) or flat faces "
            "(\"Body1/Extrude1.end\").",
            "sketch",
            Kind::References,
            true,
            {},
            {},
            "sketch", FeatureArgument::Sketches | FeatureArgument::Regions | FeatureArgument::Faces};
}

ParamFeatureType revolveType() {
    ParamFeatureType type;
    type.typeId = "Revolve";
    type.nameBase = "Revolve";
    type.command = "revolve";
    type.label = "Revolve";
    type.formId = "revolve";
    type.description =
        "Turn a sketch's closed regions about an axis (a sketch line, an edge, or X/Y/Z) into a "
        "solid: a new body, or join / cut / intersect a body. 360 degrees makes a full turn.";
    type.makesNewSolid = true;
    type.arguments = {
        profileArgument(),
        {"Axis",
         "The axis: \"Sketch1/Line3\" (e.g. a construction centerline), an edge "
         "(\"Body1/Edge(...)\") or X, Y, Z.",
         "axis",
         Kind::References,
         true,
         {},
         {},
         "", FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Angle",
         "Degrees (default 360); negative turns the other way.",
         "angle",
         Kind::Angle,
         false,
         {},
         360.0,
         ""},
        {"Both sides",
         "Split the angle evenly on both sides of the sketch.",
         "symmetric",
         Kind::Bool,
         false,
         {},
         false,
         ""},
    };
    type.compute = computeRevolve;
    return type;
}

ParamFeatureType sweepType() {
    ParamFeatureType type;
    type.typeId = "Sweep";
    type.nameBase = "Sweep";
    type.command = "sweep";
    type.label = "Sweep";
    type.formId = "sweep";
    type.description = "Sweep a sketch's closed regions along a path (connected edges or sketch "
                       "curves) into a solid. Put the profile at the path's start, across it.";
    type.makesNewSolid = true;
    type.arguments = {
        profileArgument(),
        {"Path",
         "The path's curves, separated by ';' (in any order), e.g. \"Sketch2/Line1; "
         "Sketch2/Arc1\".",
         "path",
         Kind::References,
         true,
         {},
         {},
         "", FeatureArgument::SketchCurves | FeatureArgument::Edges},
        {"Turn with the path",
         "The profile turns with the path (default true); false keeps its orientation.",
         "follow",
         Kind::Bool,
         false,
         {},
         true,
         ""},
    };
    type.compute = computeSweep;
    return type;
}

ParamFeatureType loftType() {
    ParamFeatureType type;
    type.typeId = "Loft";
    type.nameBase = "Loft";
    type.command = "loft";
    type.label = "Loft";
    type.formId = "loft";
    type.description =
        "A solid blending through sections in order: sketches with one closed region each, "
        "single regions (\"Sketch1/Region(...)\"), faces, or a point at either end. Holes are "
        "carried through when every section has the same number.";
    type.makesNewSolid = true;
    type.arguments = {
        {"Sections",
         "The sections, separated by ';', e.g. \"Sketch1; Sketch2; Sketch3\".",
         "sections",
         Kind::References,
         true,
         {},
         {},
         "", FeatureArgument::Sketches | FeatureArgument::Regions | FeatureArgument::Faces | FeatureArgument::Vertices},
        {"Straight sides",
         "Straight between sections instead of smooth.",
         "ruled",
         Kind::Bool,
         false,
         {},
         false,
         ""},
    };
    type.compute = computeLoft;
    return type;
}

} // namespace

void registerProfileFeatureTypes(ParamFeatureTypes& types) {
    types.add(revolveType());
    types.add(sweepType());
    types.add(loftType());
}

} // namespace cad

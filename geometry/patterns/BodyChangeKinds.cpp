// The table entries of split, split piece, combine, delete faces, the frozen shapes
// and the mirrored body: names, descriptions, argument tables and compute functions.
#include "geometry/patterns/PatternKinds.h"

#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/Combine.h"
#include "geometry/patterns/DeleteFaces.h"
#include "geometry/patterns/FrozenShape.h"
#include "geometry/patterns/MirrorBody.h"
#include "geometry/patterns/Split.h"

namespace cad {

namespace {

using Kind = FeatureArgument::Kind;

ParamFeatureType splitType() {
    ParamFeatureType type = paramFeatureKind(
        "SplitBody", "Split", "split_body", "Split", "split",
        "Split a body with a plane or a face, keeping the piece nearest `keep` (default: the "
        "largest). The others can become bodies of their own with split_piece. extend (default "
        "true) grows the tool to cut right through.");
    type.arguments = {
        {"Tool",
         "A plane (\"Plane1\", \"XY\") or a face (\"Body2/Extrude3.end\").",
         "tool",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Planes | FeatureArgument::Faces},
        {"Extend",
         "Grow the tool face over its whole surface first (default true).",
         "extend",
         Kind::Bool,
         false,
         {},
         true,
         ""},
        {"Extend by",
         "Instead, grow it only this far past its edges (0: all the way).",
         "extend_by",
         Kind::Length,
         false,
         {},
         {},
         ""},
        {"Keep",
         "\"x,y,z\" (mm): keep the piece whose centre is nearest.",
         "keep",
         Kind::Text,
         false,
         {},
         {},
         ""},
        {"Pieces",
         "Optional: \"x,y,z; x,y,z; ...\" (mm), where each wanted piece is, the kept one first. "
         "Every piece of the cut goes to the place it's nearest (pieces of one place are "
         "joined), so the split comes out as intended even when the grown tool crosses the body "
         "again.",
         "pieces",
         Kind::Text,
         false,
         {},
         {},
         ""},
    };
    type.compute = computeSplitBody;
    return type;
}

ParamFeatureType splitPieceType() {
    ParamFeatureType type = paramFeatureKind(
        "SplitPiece", "Piece", "split_piece", "Split Piece", "split",
        "Make another piece of a split (split_body) into a body of its own: the piece "
        "whose centre is nearest `at`.");
    type.makesNewSolid = true;
    type.arguments = {
        {"Split",
         "The split feature's ID, e.g. \"Split1\".",
         "source",
         Kind::Text,
         true,
         {},
         {},
         "feature"},
        {"Split body",
         "The body that split is in.",
         "source_body",
         Kind::References,
         true,
         {},
         {},
         "",
         FeatureArgument::Bodies},
        {"At",
         "\"x,y,z\" (mm): the piece whose centre is nearest.",
         "at",
         Kind::Text,
         true,
         {},
         {},
         ""},
    };
    type.compute = computeSplitPiece;
    return type;
}

ParamFeatureType combineType() {
    ParamFeatureType type = paramFeatureKind(
        "Combine", "Combine", "combine", "Combine", "combine",
        "Join, cut or intersect a body (target) with other bodies (the tools). A cut can "
        "leave a clearance round the tools. Without keep, hide the tools afterwards: "
        "they're used up.");
    type.bodyKey = "target";
    type.arguments = {
        {"Target",
         "The body that changes.",
         "target",
         Kind::Text,
         true,
         {},
         {},
         "body",
         FeatureArgument::Bodies},
        {"Tools",
         "The other bodies, separated by ';'.",
         "tools",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Bodies},
        {"Operation",
         "join (default), cut or intersect.",
         "operation",
         Kind::Choice,
         false,
         {"join", "cut", "intersect"},
         "join",
         ""},
        {"Clearance",
         "Cut: room left round the tools' sides (radial: a pin's hole this much bigger all "
         "round).",
         "clearance",
         Kind::Length,
         false,
         {},
         {},
         ""},
        {"Axial clearance",
         "Cut: room left at the tools' ends, along their axis (default: the radial clearance).",
         "axial_clearance",
         Kind::Length,
         false,
         {},
         {},
         ""},
        {"Axis",
         "Cut: the direction 'axial' means (default: the tool's own, e.g. a pin's cylinder; else "
         "Z).",
         "axis",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Axes | FeatureArgument::Edges | FeatureArgument::SketchCurves},
        {"Keep tools", "Keep the tool bodies.", "keep", Kind::Bool, false, {}, false, ""},
    };
    type.compute = computeCombine;
    return type;
}

ParamFeatureType deleteFacesType() {
    ParamFeatureType type = paramFeatureKind(
        "DeleteFaces", "DeleteFaces", "delete_faces", "Delete Faces", "delete-face",
        "Delete faces from a body, the faces around them growing or shrinking to close the "
        "gap (taking a fillet, a boss or a pocket back off).");
    type.arguments = {{"Faces",
                       "Faces of the body, separated by ';'.",
                       "faces",
                       Kind::References,
                       false,
                       {},
                       {},
                       "",
                       FeatureArgument::Faces}};
    type.compute = computeDeleteFaces;
    type.dependencies = deleteFacesDependencies;
    return type;
}

FeatureArguments frozenArguments() {
    return {{"Shape", "The shape, as BRep text.", "brep", Kind::Text, false, {}, {}, ""},
            {"Note", "Where it came from.", "note", Kind::Text, false, {}, {}, ""}};
}

ParamFeatureType frozenType() {
    ParamFeatureType type = paramFeatureKind(
        "Frozen", "Frozen", "frozen", "Frozen", "",
        "Replace a body's shape with a fixed one (OCCT BRep text): a step brought in from "
        "another program that couldn't be rebuilt here, as that program made it. Changes "
        "earlier in the history don't reach past it.");
    type.arguments = frozenArguments();
    type.compute = computeFrozen;
    return type;
}

ParamFeatureType frozenBodyType() {
    ParamFeatureType type =
        paramFeatureKind("FrozenBody", "Frozen", "frozen_body", "Frozen Body", "",
                         "A new body with a fixed shape (OCCT BRep text), as frozen but new.");
    type.makesNewSolid = true;
    type.arguments = frozenArguments();
    type.compute = computeFrozen;
    return type;
}

ParamFeatureType mirrorBodyType() {
    ParamFeatureType type = paramFeatureKind(
        "MirrorBody", "Mirror", "mirror_body", "Mirror Body", "mirror3d",
        "A body mirrored across a plane, as a new body that follows the original (or "
        "joined/cut into a target). The source can be a body or a placed component "
        "(\"Component1:1\"), for an opposite-hand copy.");
    type.makesNewSolid = true;
    type.arguments = {
        {"Source",
         "The body (\"Body1\") or component instance (\"Component1:1\") to mirror.",
         "source",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Bodies},
        {"Plane",
         "The mirror plane: XY/XZ/YZ, a reference plane or a flat face.",
         "plane",
         Kind::References,
         false,
         {},
         {},
         "",
         FeatureArgument::Planes | FeatureArgument::Faces},
    };
    type.compute = computeMirrorBody;
    return type;
}

} // namespace

void addBodyChangeKinds(ParamFeatureTypes& types) {
    types.add(splitType());
    types.add(splitPieceType());
    types.add(combineType());
    types.add(deleteFacesType());
    types.add(frozenType());
    types.add(frozenBodyType());
    types.add(mirrorBodyType());
}

} // namespace cad

// The parametric kinds of this folder: feature patterns and mirrors, body patterns,
// split, combine, delete faces and frozen shapes, added to the kinds' registry.
#pragma once

#include "geometry/param/FeatureArgument.h"

namespace cad {

class ParamFeatureTypes;

// Adds RectangularPattern, CircularPattern, PathPattern, Mirror, PatternBody,
// SplitBody, SplitPiece, Combine, DeleteFaces, Frozen, FrozenBody and MirrorBody,
// in that order, to paramFeatureTypes(). Call it before registering the parametric
// commands and project-file types; calling it again adds nothing.
void addPatternKinds();

// The keys that lay out a pattern of bodies: pattern, direction, count, spacing,
// direction2, count2, spacing2, axis, angle, path and follow.
FeatureArguments bodyPatternKeys();

// The two halves of addPatternKinds, each in its own file.
void addFeaturePatternKinds(ParamFeatureTypes& types);
void addBodyChangeKinds(ParamFeatureTypes& types);

} // namespace cad

// The parametric kinds that lay a sheet metal body flat in its history and fold it
// back up: Unfold and Fold, added to the kinds' registry.
#pragma once

namespace cad {

// Adds Unfold (command unfold, made in the "flat-pattern" form) and Fold (fold, in
// the "fold" form), in that order, to paramFeatureTypes(). Call it before
// registering the parametric commands and project-file types; calling it again
// adds nothing.
void addFlatKinds();

} // namespace cad

// The parametric kinds of sheet metal parts: the sheet flange that starts one, the
// rules that make a body sheet metal, edge flanges and hems.
#pragma once

namespace cad {

// Adds SheetFlange, EdgeFlange, SheetRules and Hem, in that order, to
// paramFeatureTypes(). Call it after the pattern kinds and before registering the
// parametric commands and project-file types; calling it again adds nothing.
void addSheetMetalKinds();

} // namespace cad

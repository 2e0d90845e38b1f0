// The size rows the hole and thread forms share: a standard to size by (ISO metric,
// UNC, UNF, or the form's own alternative: a plain diameter, the face's match) and a
// list of that standard's sizes from the thread table.
#pragma once

#include "ui/forms/FormFields.h"

#include <QString>

namespace cad::ui {

class FeatureForm;

// Adds "standard" with `other` as its first choice, and one size row per standard
// ("size_iso", "size_unc", "size_unf"), shown while its standard is chosen. `size`
// (a name the thread table knows) picks the standard and size to start with; an
// unknown or empty one starts on `other`.
void addThreadSizeRows(FeatureForm& form, const FieldChoice& other, const QString& size,
                       const QString& tooltip);
// The size name chosen ("M6", "1/4-20 UNC"); empty while `other` is chosen.
QString chosenThreadSize(const FeatureForm& form);

} // namespace cad::ui

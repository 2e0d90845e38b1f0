// The form of any parametric kind, made from its argument table: revolve, sweep,
// loft, combine, split, delete faces and whatever kinds come later, new or edited.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"
#include "ui/forms/FormDefinition.h"

#include <string>
#include <vector>

namespace cad {
class Document;
class ParamFeature;
struct FeatureArgument;
struct ParamFeatureType;
} // namespace cad

namespace cad::ui {

class FeatureForm;

// A new feature of this kind: a row for each argument a person fills in (not the
// feature's or the new body's name), then operation and target for kinds that make a
// solid. Picks start from what fits in the selection; the feature is tried live on
// the model while the form is open.
FormDefinition paramFeatureForm(const Document& document, const ParamFeatureType& type,
                                const std::vector<std::string>& selection);
// "Edit Revolve1": the rows hold the feature's values (the expression a value follows
// when it has one); the edit carries only what changed and is tried live.
FormDefinition editParamFeatureForm(const Document& document, const ParamFeature& feature);

// The row of one argument, by its kind, starting from its fallback.
void addArgumentRow(FeatureForm& form, const Document& document, const FeatureArgument& argument);
// The value of an argument's row into the record: references joined, numbers as
// typed once they evaluate. With `skipDefaults` a value equal to the argument's
// fallback, or an empty optional row, is left for the command's default.
Result<void> putArgument(CommandRecord& record, const FeatureForm& form,
                         const FeatureArgument& argument, bool skipDefaults);

} // namespace cad::ui

// The Rectangular, Circular and Path Pattern forms: features repeated inside their
// body (pattern_rectangular, pattern_circular, pattern_path) or whole bodies, a body
// per copy (pattern_bodies); and their edits, of a pattern feature or a pattern set.
#pragma once

#include "ui/forms/FormDefinition.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace cad {
class Document;
class ParamFeature;
class PatternSetObject;
} // namespace cad

namespace cad::ui {

// `kind` is "rectangular", "circular" or "path"; none for any other word. Selected
// whole bodies start it on bodies, selected faces on the features that made them.
std::optional<FormDefinition> patternForm(const Document& document, const QString& kind,
                                          const std::vector<std::string>& selection);
// Whether the feature is a feature pattern this form edits.
bool isFeaturePattern(const ParamFeature& feature);
// "Edit Pattern1": a feature pattern's layout and features; edit_pattern_<kind>.
FormDefinition editFeaturePatternForm(const Document& document, const ParamFeature& feature);
// "Edit PatternSet1": the layout of a pattern of bodies; edit_pattern.
FormDefinition editPatternSetForm(const Document& document, const PatternSetObject& set);

} // namespace cad::ui

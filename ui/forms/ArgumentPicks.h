// What a click in the view, or something already selected, gives a reference row of
// a form: a face kept as a face, or turned into the feature that made it, the body it
// belongs to or the sketch it lies in, as the row's argument takes it.
#pragma once

#include "core/Result.h"
#include "ui/forms/FormFields.h"

#include <QString>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace cad {
class Document;
struct FeatureArgument;
} // namespace cad

namespace cad::ui {

// The picker's PickKind flags for an argument's FeatureArgument::Pick flags.
std::uint32_t pickKindsFor(std::uint32_t picks);

// A reference as a row taking `picks` keeps it: `asIs` when it is the thing clicked
// (a face for faces), not what it stands for (the feature that made the face).
struct TakenReference {
    std::string reference;
    bool asIs = true;
};
// Or a sentence naming what was clicked and what the row (`what`, "axis") takes.
Result<TakenReference> takeReference(const Document& document, const std::string& reference,
                                     std::uint32_t picks, const QString& what);

// The pick rule of a row taking `picks`.
PickRule pickRuleFor(const Document& document, std::uint32_t picks, const QString& what,
                     bool multiple, bool required, const QString& prompt = {});
// The same for an argument of a kind's table: lists take several references, a
// required one must be filled, the row's label names it in refusals.
PickRule argumentPickRule(const Document& document, const FeatureArgument& argument);
// Whether the argument takes a list ("separated by ';'") rather than one reference.
bool takesSeveral(const FeatureArgument& argument);

// A pick row waiting to be filled from the selection.
struct PickSlot {
    QString key;
    std::uint32_t picks = 0;
    bool multiple = true;
};
// The selected references each row takes, by key. A reference goes to the first row
// that takes it as it is, else to the first that takes what it stands for; a row of
// one reference takes the first only.
std::map<QString, std::vector<std::string>>
fillFromSelection(const Document& document, const std::vector<PickSlot>& pickSlots,
                  const std::vector<std::string>& selection);

} // namespace cad::ui

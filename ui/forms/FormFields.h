// The kinds of rows a feature form holds and what a pick row accepts: the plain
// data the form widget and the form definitions share.
#pragma once

#include "core/Result.h"

#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace cad::ui {

enum class FieldKind { Section, Length, Number, Integer, Choice, Text, Flag, Pick, Message };

// One entry of a choice row: the value the command takes and the text people read.
struct FieldChoice {
    QString value;
    QString text;
    QString tooltip;
};

// What a pick row takes from the sketch being edited, when it picks there (through the
// sketch session) rather than in the 3D view: whole entities, only curves, or named
// points ("Circle1.center", "Origin").
enum class SketchPick { None, Entities, Curves, Points };

// What a pick row takes from clicks in the view.
struct PickRule {
    std::uint32_t kinds = 0xffu; // PickKind flags the picker accepts
    SketchPick sketch = SketchPick::None; // set: the row picks in the edited sketch instead
    bool multiple = true;        // several references, a second click drops one
    bool required = true;        // the form can't be accepted while it is empty
    QString prompt;              // shown in the message line while it is empty
    // Turns a clicked reference into the one the row keeps (a sketch curve into its
    // whole sketch, say), or a sentence saying why it can't be used. Kept as is when unset.
    std::function<Result<std::string>(const std::string&)> accept;
    // The same for a click that comes with the model point it hit (a face clicked
    // where a hole goes); used instead of `accept` when set and the point is known.
    std::function<Result<std::string>(const std::string&, const std::array<double, 3>&)> acceptAt;
    // What a kept reference reads as in the row; the reference's usual label when unset.
    std::function<QString(const std::string&)> label;
};

} // namespace cad::ui

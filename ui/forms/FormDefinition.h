// What a form is made of besides its rows: the title, and the small functions that
// fill it, turn it into a command, preview it and start a live edit.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"
#include "ui/forms/FormSession.h"

#include <QString>

#include <functional>
#include <optional>

namespace cad::ui {

class FeatureForm;

struct FormDefinition {
    QString icon;
    QString title;
    QString primaryText = QStringLiteral("OK");

    // Adds the rows, fills the defaults, takes what fits from the selection.
    std::function<void(FeatureForm&)> setup;
    // Reacts to a change before the form is checked (show or hide rows, re-pick).
    std::function<void(FeatureForm&)> changed;
    // Whether the form may be accepted; unset: every required pick row has something.
    std::function<bool(FeatureForm&)> complete;
    // The command the form runs; an error disables OK and shows in the message line.
    std::function<Result<CommandRecord>(FeatureForm&)> build;
    // A new feature's shape while the form is filled in (none when unset).
    std::function<Result<FormPreview>(FeatureForm&)> preview;
    // A live edit of an existing feature, tried on the model as the form changes.
    std::function<std::optional<FormSession::Handle>(FeatureForm&)> session;
};

} // namespace cad::ui

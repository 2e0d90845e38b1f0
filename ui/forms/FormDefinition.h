// What a form is made of besides its rows: the title, and the small functions that
// fill it, turn it into a command, preview it and start a live edit.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"
#include "ui/forms/FormSession.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cad::ui {

class FeatureForm;

struct FormDefinition {
    QString icon;
    QString title;
    QString primaryText = QStringLiteral("OK");
    // The card's object name, for panels styled on their own ("filletPanel").
    QString objectName = QStringLiteral("featureForm");

    // Adds the rows, fills the defaults, takes what fits from the selection.
    std::function<void(FeatureForm&)> setup;
    // Reacts to a change before the form is checked (show or hide rows, re-pick).
    std::function<void(FeatureForm&)> changed;
    // Whether the form may be accepted; unset: every required pick row has something.
    std::function<bool(FeatureForm&)> complete;
    // The command the form runs; an error disables OK and shows in the message line.
    std::function<Result<CommandRecord>(FeatureForm&)> build;
    // A form that leaves the model alone (it writes a file): OK runs this instead of a
    // command. Its answer is the toast when the form closes; a failure shows in the
    // message line, and an empty answer (a dialog cancelled) keeps the form open.
    std::function<Result<QString>(FeatureForm&)> finish;
    // Commands OK runs before the built one, in the same step to undo (the sketch that
    // holes clicked on a face go on); made when OK is pressed.
    std::function<Result<std::vector<CommandRecord>>(FeatureForm&)> before;
    // A new feature's shape while the form is filled in (none when unset).
    std::function<Result<FormPreview>(FeatureForm&)> preview;
    // A live trial on the model as the form changes: the edit of an existing feature,
    // or a new feature tried on its body.
    std::function<std::optional<FormSession::Handle>(FeatureForm&)> session;
};

// What an edit form's rows change, as the edit command: with `check` the values are
// evaluated (a bad one comes back as its sentence); without, it only lists what differs.
using EditChanges = std::function<Result<CommandRecord>(const FeatureForm&, bool check)>;
// An edit form's last callbacks: it may be accepted once something differs from the
// object and nothing it needs is unpicked; its command is the change, tried live on the
// object as the rows change.
void finishEditForm(FormDefinition& form, EditChanges changes, const std::string& objectId);

// One check of the form, as every change makes it: the rows evaluate again, `changed`
// runs, then `complete` and `build`. An incomplete form shows what is missing, a build
// error shows in red; either disables OK. Returns the command when there is one.
Result<CommandRecord> checkForm(const FormDefinition& definition, FeatureForm& form);

} // namespace cad::ui

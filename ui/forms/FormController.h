// Opens the feature forms over the 3D view, one at a time, and runs their life: each
// change is checked, built and previewed (or tried live on an edited feature); OK runs
// the command through the window's command path; Cancel or Esc leaves the model as
// it was.
#pragma once

#ifndef Q_MOC_RUN
#include "core/Command.h"
#include "core/CommandRecord.h"
#include "ui/forms/FormDefinition.h"
#include "ui/forms/FormSession.h"
#include "ui/forms/SketchForms.h"
#endif

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace cad {
class CommandStack;
class ParamFeature;
} // namespace cad
namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

class FeatureForm;
class ReferencePicker;

class FormController : public QObject {
    Q_OBJECT
public:
    // The window's way of running a command (log line, toast on failure).
    using Runner = std::function<CommandResult(const CommandRecord&)>;
    // The references selected in the view, which a new form may start from.
    using SelectionProvider = std::function<std::vector<std::string>()>;

    // The card floats over `host` (the view's widget); `view` may be null (no preview).
    FormController(QWidget* host, rendering::Viewport* view, ReferencePicker& picker,
                   CommandStack& stack, Runner run, QObject* parent = nullptr);
    ~FormController() override;

    void setSelectionProvider(SelectionProvider provider);
    // The sketch being edited, for the forms that work inside it.
    void setSketchHost(SketchFormHost host);

    // "Extrude", "Box", "Fillet", "Chamfer", "Shell", "Hole", "Thread", or the type of
    // any parametric kind that has a form ("Revolve", "Sweep", "Loft", "Combine",
    // "SplitBody", "DeleteFaces", ...), starting from what is selected; false for a
    // feature that has no form.
    bool openFeatureForm(const QString& featureName);
    // The Reference Plane and Section Analysis forms.
    bool openPlaneForm();
    bool openSectionForm();
    // The Mirror form; false while the mirror kinds aren't registered.
    bool openMirrorForm();
    // "rectangular", "circular" or "path"; false for any other word.
    bool openPatternForm(const QString& kind);
    // While a sketch is edited: its pattern form (kind 0 rectangular, 1 circular, 2
    // path) on the selected entities, the edit of one of its patterns ("Pattern1"), or
    // the Project form. False when no sketch is edited (or no such kind or pattern).
    bool openSketchPatternForm(int kind);
    bool openSketchPatternEditForm(const std::string& pattern);
    bool openProjectForm();
    // The edit form of an existing extrude, fillet, chamfer, shell, hole, thread,
    // parametric feature whose kind has a form, reference plane, section or pattern
    // set; false when there is none.
    bool openEditForm(const std::string& featureId);
    // Any form; an open one is cancelled first.
    void open(FormDefinition definition);

    // Cancel or Esc: the preview goes, a trial edit is withdrawn, the form closes.
    void cancel();
    // OK: runs the command; true when it ran and the form closed. A failed command
    // keeps the form open with its sentence in the message line.
    bool accept();
    // After any command event: the form's picks are labelled again and its preview or
    // trial edit rebuilt against the model as it now is.
    void refresh();
    // Puts the card where the anchor says (by default the host's top-left corner), its
    // rows capped to the host's height.
    void placeForm();
    // Where the card goes for its size, in the host's coordinates.
    void setAnchor(std::function<QPoint(const QSize& card)> anchor) { anchor_ = std::move(anchor); }

    bool isOpen() const { return form_ != nullptr; }
    FeatureForm* form() const { return form_; }
    FormSession* session() const { return session_.get(); }

signals:
    void opened();
    void closed();
    void messageChanged(const QString& text, bool error);
    // A form that writes a file finished; `text` says what it wrote.
    void finished(const QString& text);
    // A live trial went onto the model or was withdrawn (trials announce no command).
    void trialChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The form a parametric kind is made in: its own table's, or the mirror or pattern form.
    bool openParamFeatureForm(const std::string& typeId, const std::vector<std::string>& selection);
    // A feature pattern in its pattern form, a copy of a pattern set with the set, any
    // other kind with a form in the rows of its table.
    bool openParamEditForm(const ParamFeature& feature);
    // changed, then complete and build, then the preview or the trial edit.
    void update();
    // OK on a form that writes a file.
    bool finish();
    // The form's commands: those it needs first, then its own, as one step.
    CommandResult runSteps(const std::vector<CommandRecord>& before, const CommandRecord& record);
    void close();
    void pickRowChanged(const QString& key);
    // Ends the view's or the sketch's picking; the view gets its resting tool back.
    void stopPicking();
    void showMessage(const QString& text, bool error);

    QWidget* host_;
    rendering::Viewport* view_;
    ReferencePicker& picker_;
    CommandStack& stack_;
    Runner run_;
    SelectionProvider selection_;
    std::function<QPoint(const QSize&)> anchor_;
    FormDefinition definition_;
    QPointer<FeatureForm> form_;
    std::unique_ptr<FormSession> session_;
    bool busy_ = false;          // updating or accepting: command events don't refresh
    bool picking_ = false;       // the picker works for the form
    bool sketchPicking_ = false; // the sketch session picks for the form
    SketchFormHost sketchHost_;
};

} // namespace cad::ui

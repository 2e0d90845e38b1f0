// The life of an open form: opening (closing any other), checking and previewing on
// every change, accepting through the window's command path, cancelling, and keeping
// the card placed over the view.
#include "ui/forms/FormController.h"

#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/units/NameLookup.h"
#include "geometry/DressUpFeatures.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/ThreadFeature.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "geometry/patterns/PatternSetObject.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionObject.h"
#include "rendering/Viewport.h"
#include "ui/forms/BoxForm.h"
#include "ui/forms/DressUpForms.h"
#include "ui/forms/ExtrudeForm.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/HoleForm.h"
#include "ui/forms/MirrorForm.h"
#include "ui/forms/ParamFeatureForm.h"
#include "ui/forms/PatternForms.h"
#include "ui/forms/PlaneForm.h"
#include "ui/forms/SectionForm.h"
#include "ui/forms/ThreadForm.h"
#include "ui/presentation/ReferencePicker.h"

#include <QEvent>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

namespace cad::ui {

namespace {

constexpr int kMargin = 12;
constexpr int kCardWidth = 320;

// Lengths are read in the document's unit and may use its parameters.
units::ScopedParameterLookup documentUnits(const Document& document) {
    return units::ScopedParameterLookup(document.parameterLookup(), document.lengthUnit());
}

// An accepted edit that leaves the feature failing says so after "Now failing: ".
QString failureNote(const std::string& message) {
    const auto at = message.find("Now failing: ");
    return at == std::string::npos ? QString() : QString::fromStdString(message.substr(at));
}

// The pattern form a feature pattern's kind is made in ("pattern-rect": rectangular).
QString patternWord(const std::string& formId) {
    if (formId == "pattern-rect") return QStringLiteral("rectangular");
    if (formId == "pattern-circ") return QStringLiteral("circular");
    if (formId == "pattern-path") return QStringLiteral("path");
    return {};
}

} // namespace

void finishEditForm(FormDefinition& form, EditChanges changes, const std::string& objectId) {
    form.complete = [changes](FeatureForm& f) {
        Result<CommandRecord> record = changes(f, false);
        return f.missingPrompt().isEmpty() && (!record || record->arguments.size() > 1);
    };
    form.build = [changes](FeatureForm& f) { return changes(f, true); };
    form.session = [objectId](FeatureForm&) {
        return std::optional(FormSession::Handle{objectId});
    };
}

Result<CommandRecord> checkForm(const FormDefinition& definition, FeatureForm& form) {
    form.revalidate();
    form.showMessage({});
    if (definition.changed) definition.changed(form);
    const bool complete =
        definition.complete ? definition.complete(form) : form.missingPrompt().isEmpty();
    Result<CommandRecord> record = fail(form.missingPrompt().toStdString());
    if (complete && definition.build)
        record = definition.build(form);
    else if (complete && definition.finish)
        record = CommandRecord(""); // it runs no command: complete is all it needs
    form.setAcceptEnabled(complete && record.ok());
    if (!complete) {
        // The prompt says what's missing; it is no error.
        if (form.message().isEmpty()) form.showMessage(form.missingPrompt());
    } else if (!record) {
        form.showMessage(QString::fromStdString(record.error()), true);
    }
    return record;
}

FormController::FormController(QWidget* host, rendering::Viewport* view, ReferencePicker& picker,
                               CommandStack& stack, Runner run, QObject* parent)
    : QObject(parent), host_(host), view_(view), picker_(picker), stack_(stack),
      run_(std::move(run)) {
    if (host_) host_->installEventFilter(this);
}

FormController::~FormController() {
    if (host_) host_->removeEventFilter(this);
    close();
}

void FormController::setSelectionProvider(SelectionProvider provider) {
    selection_ = std::move(provider);
}

void FormController::setSketchHost(SketchFormHost host) { sketchHost_ = std::move(host); }

bool FormController::openFeatureForm(const QString& featureName) {
    const Document& document = stack_.document();
    const std::vector<std::string> selection =
        selection_ ? selection_() : std::vector<std::string>();
    if (featureName == QStringLiteral("Extrude"))
        open(extrudeForm(document, selection));
    else if (featureName == QStringLiteral("Box"))
        open(boxForm(document));
    else if (featureName == QStringLiteral("Fillet") || featureName == QStringLiteral("Chamfer"))
        open(filletForm(document, selection, featureName == QStringLiteral("Chamfer")));
    else if (featureName == QStringLiteral("Shell"))
        open(shellForm(document, selection));
    else if (featureName == QStringLiteral("Hole"))
        open(holeForm(document, selection));
    else if (featureName == QStringLiteral("Thread"))
        open(threadForm(document, selection));
    else
        return openParamFeatureForm(featureName.toStdString(), selection);
    return true;
}

bool FormController::openParamFeatureForm(const std::string& typeId,
                                          const std::vector<std::string>& selection) {
    const ParamFeatureType* type = paramFeatureTypes().find(typeId);
    if (!type || type->formId.empty() || type->command.empty()) return false;
    if (type->formId == "mirror3d") return openMirrorForm();
    if (const QString word = patternWord(type->formId); !word.isEmpty())
        return openPatternForm(word);
    open(paramFeatureForm(stack_.document(), *type, selection));
    return true;
}

bool FormController::openPlaneForm() {
    open(planeForm(stack_.document(), selection_ ? selection_() : std::vector<std::string>()));
    return true;
}

bool FormController::openSectionForm() {
    open(sectionForm(stack_.document(), selection_ ? selection_() : std::vector<std::string>()));
    return true;
}

bool FormController::openMirrorForm() {
    if (!paramFeatureTypes().find("Mirror") || !paramFeatureTypes().find("MirrorBody"))
        return false;
    open(mirrorForm(stack_.document(), selection_ ? selection_() : std::vector<std::string>()));
    return true;
}

bool FormController::openPatternForm(const QString& kind) {
    if (!paramFeatureTypes().find("RectangularPattern")) return false;
    std::optional<FormDefinition> form = patternForm(
        stack_.document(), kind, selection_ ? selection_() : std::vector<std::string>());
    if (!form) return false;
    open(std::move(*form));
    return true;
}

bool FormController::openSketchPatternForm(int kind) {
    const std::string sketch = sketchHost_.sketch ? sketchHost_.sketch() : std::string();
    std::optional<FormDefinition> form = sketchPatternForm(
        stack_.document(), sketch, kind,
        sketchHost_.selection ? sketchHost_.selection() : std::vector<std::string>());
    if (!form) return false;
    open(std::move(*form));
    return true;
}

bool FormController::openSketchPatternEditForm(const std::string& pattern) {
    const std::string sketch = sketchHost_.sketch ? sketchHost_.sketch() : std::string();
    std::optional<FormDefinition> form = editSketchPatternForm(stack_.document(), sketch, pattern);
    if (!form) return false;
    open(std::move(*form));
    return true;
}

bool FormController::openProjectForm() {
    const std::string sketch = sketchHost_.sketch ? sketchHost_.sketch() : std::string();
    if (sketch.empty()) return false;
    open(projectForm(sketch));
    return true;
}

bool FormController::openParamEditForm(const ParamFeature& feature) {
    const Document& document = stack_.document();
    if (isFeaturePattern(feature)) {
        open(editFeaturePatternForm(document, feature));
        return true;
    }
    // A copy of a pattern of bodies is edited with its whole pattern.
    if (const std::string set = parameterText(feature.parameters, "set"); !set.empty()) {
        const auto* patternSet = document.findAs<PatternSetObject>(set);
        if (!patternSet) return false;
        open(editPatternSetForm(document, *patternSet));
        return true;
    }
    const ParamFeatureType* type = paramFeatureTypes().find(feature.typeId);
    if (!type || type->formId.empty() || type->command.empty()) return false;
    open(editParamFeatureForm(document, feature));
    return true;
}

bool FormController::openEditForm(const std::string& featureId) {
    const Document& document = stack_.document();
    if (const auto* extrude = document.findAs<ExtrudeFeature>(featureId))
        open(editExtrudeForm(document, *extrude));
    else if (const auto* dressUp = document.findAs<DressUpFeature>(featureId))
        open(editDressUpForm(document, *dressUp));
    else if (const auto* hole = document.findAs<HoleFeature>(featureId))
        open(editHoleForm(document, *hole));
    else if (const auto* thread = document.findAs<ThreadFeature>(featureId))
        open(editThreadForm(document, *thread));
    else if (const auto* param = document.findAs<ParamFeature>(featureId))
        return openParamEditForm(*param);
    else if (const auto* plane = document.findAs<PlaneObject>(featureId))
        open(editPlaneForm(document, *plane));
    else if (const auto* section = document.findAs<SectionObject>(featureId))
        open(editSectionForm(document, *section));
    else if (const auto* set = document.findAs<PatternSetObject>(featureId))
        open(editPatternSetForm(document, *set));
    else
        return false;
    return true;
}

void FormController::open(FormDefinition definition) {
    close();
    const Document& document = stack_.document();
    auto scope = documentUnits(document);
    definition_ = std::move(definition);
    form_ = new FeatureForm(&document, host_);
    form_->setObjectName(definition_.objectName);
    form_->setTitle(definition_.icon, definition_.title);
    form_->setPrimaryText(definition_.primaryText);
    if (definition_.setup) definition_.setup(*form_);
    std::optional<FormSession::Handle> handle;
    if (definition_.session) handle = definition_.session(*form_);
    session_ = std::make_unique<FormSession>(view_, stack_, std::move(handle));

    connect(form_, &FeatureForm::changed, this, [this] { update(); });
    connect(form_, &FeatureForm::activePickChanged, this, &FormController::pickRowChanged);
    connect(form_, &FeatureForm::acceptRequested, this, [this] { accept(); });
    connect(form_, &FeatureForm::cancelRequested, this, &FormController::cancel);
    placeForm();
    form_->show();
    form_->raise();
    update();
    // With nothing left to pick, the value is what the user types next.
    if (!form_->activateNextEmptyPick()) form_->focusFirstValue();
    emit opened();
}

void FormController::cancel() {
    if (busy_) return;
    close();
}

bool FormController::accept() {
    if (!form_ || busy_ || !form_->acceptEnabled()) return false;
    if (definition_.finish) return finish();
    if (!definition_.build) return false;
    Result<CommandRecord> record = [&] {
        auto scope = documentUnits(stack_.document());
        return definition_.build(*form_);
    }();
    if (!record) {
        showMessage(QString::fromStdString(record.error()), true);
        form_->setAcceptEnabled(false);
        return false;
    }
    Result<std::vector<CommandRecord>> before = std::vector<CommandRecord>();
    if (definition_.before) {
        auto scope = documentUnits(stack_.document());
        before = definition_.before(*form_);
    }
    if (!before) {
        showMessage(QString::fromStdString(before.error()), true);
        form_->setAcceptEnabled(false);
        return false;
    }
    // The real command runs on the model as it was, never on top of the trial.
    busy_ = true;
    session_->withdraw();
    const CommandResult result = runSteps(*before, *record);
    busy_ = false;
    if (!form_) return result.ok;
    if (result.ok) {
        close();
        return true;
    }
    update();
    showMessage(QString::fromStdString(result.message), true);
    return false;
}

bool FormController::finish() {
    busy_ = true;
    Result<QString> done = [&] {
        auto scope = documentUnits(stack_.document());
        return definition_.finish(*form_);
    }();
    busy_ = false;
    if (!form_) return false;
    if (!done) {
        showMessage(QString::fromStdString(done.error()), true);
        return false;
    }
    if (done->isEmpty()) return false;
    close();
    emit finished(*done);
    return true;
}

CommandResult FormController::runSteps(const std::vector<CommandRecord>& before,
                                       const CommandRecord& record) {
    const auto run = [this](const CommandRecord& r) { return run_ ? run_(r) : stack_.execute(r); };
    if (before.empty()) return run(record);
    // One step to undo; when a later command fails, what ran before it is taken back.
    const std::size_t steps = stack_.undoCount();
    stack_.beginGroup();
    CommandResult result = CommandResult::success();
    for (const CommandRecord& step : before)
        if (result = run(step); !result.ok) break;
    if (result.ok) result = run(record);
    stack_.endGroup();
    if (!result.ok && stack_.undoCount() > steps) stack_.undo();
    return result;
}

void FormController::refresh() {
    if (!form_ || busy_) return;
    // An edit whose feature went (undone, deleted) has nothing left to edit.
    if (session_->isEditing() && !session_->handle()->featureId.empty() &&
        !stack_.document().find(session_->handle()->featureId)) {
        close();
        return;
    }
    form_->refreshPickTexts();
    update();
}

void FormController::update() {
    if (!form_ || busy_) return;
    busy_ = true;
    auto scope = documentUnits(stack_.document());
    FeatureForm& form = *form_;
    const QString before = form.message();
    const bool beforeError = form.messageIsError();
    Result<CommandRecord> record = checkForm(definition_, form);
    if (!record) {
        // Nothing to show: the model stays as it is, the message says why.
        const bool tried = session_->isTrying();
        session_->withdraw();
        if (tried) emit trialChanged();
    } else if (session_->isEditing()) {
        const CommandResult tried = session_->tryEdit(*record);
        emit trialChanged();
        if (!tried.ok) form.setAcceptEnabled(false);
        const QString problem =
            tried.ok ? failureNote(tried.message) : QString::fromStdString(tried.message);
        // A command asking for a pick ("Pick the mirror plane.") prompts; it is no error.
        const bool prompt = !tried.ok && problem.startsWith(QStringLiteral("Pick "));
        if (!problem.isEmpty()) form.showMessage(problem, !prompt);
    } else if (definition_.preview) {
        Result<FormPreview> preview = definition_.preview(form);
        session_->showPreview(preview ? *preview : FormPreview{});
        if (!preview) {
            // The command would compute the same shape and fail the same way.
            form.setAcceptEnabled(false);
            form.showMessage(QString::fromStdString(preview.error()), true);
        }
    }
    busy_ = false;
    if (form.message() != before || form.messageIsError() != beforeError)
        emit messageChanged(form.message(), form.messageIsError());
}

void FormController::close() {
    if (!form_) return;
    stopPicking();
    const bool tried = session_ && session_->isTrying();
    session_.reset(); // the preview goes, the trial is withdrawn
    if (tried) emit trialChanged();
    FeatureForm* form = form_;
    form_ = nullptr;
    definition_ = {};
    form->disconnect(this);
    form->hide();
    form->deleteLater();
    emit closed();
}

void FormController::stopPicking() {
    if (picking_) {
        picking_ = false;
        picker_.deactivate();
    }
    if (sketchPicking_) {
        sketchPicking_ = false;
        if (sketchHost_.stopPick) sketchHost_.stopPick();
    }
    if (view_ && !view_->tool() && sketchHost_.restingTool)
        if (rendering::ViewportTool* resting = sketchHost_.restingTool()) view_->setTool(resting);
}

void FormController::pickRowChanged(const QString& key) {
    const PickRule* rule = form_ && !key.isEmpty() ? form_->pickRule(key) : nullptr;
    if (!rule) {
        stopPicking();
        return;
    }
    if (rule->sketch != SketchPick::None) {
        // The sketch session picks the sketch's own geometry.
        stopPicking();
        if (!sketchHost_.startPick) return;
        sketchPicking_ = true;
        sketchHost_.startPick(
            rule->sketch,
            [this](const std::string& reference) {
                if (form_) form_->picked({reference});
            },
            [this, key]() -> std::vector<std::string> {
                return form_ ? form_->references(key) : std::vector<std::string>();
            });
        return;
    }
    if (sketchPicking_) {
        sketchPicking_ = false;
        if (sketchHost_.stopPick) sketchHost_.stopPick();
    }
    picking_ = true;
    picker_.activate(rule->kinds, [this](const std::vector<std::string>& references) {
        if (form_) form_->picked(references, picker_.lastPressPoint());
    });
}

void FormController::showMessage(const QString& text, bool error) {
    if (!form_) return;
    const bool changed = form_->message() != text || form_->messageIsError() != error;
    form_->showMessage(text, error);
    if (changed) emit messageChanged(text, error);
}

void FormController::placeForm() {
    if (!form_ || !host_) return;
    const int width = std::min(kCardWidth, std::max(200, host_->width() - 2 * kMargin));
    form_->setFixedWidth(width);
    // The rows scroll before the card would cover most of the view.
    form_->setMaximumRowsHeight(std::min(host_->height() * 3 / 5, host_->height() - 180));
    form_->adjustSize();
    form_->move(anchor_ ? anchor_(form_->size()) : QPoint(kMargin, kMargin));
}

bool FormController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == host_ && form_) {
        switch (event->type()) {
        case QEvent::Resize:
            placeForm();
            break;
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress:
            // Esc in the view cancels the form before the window's own Esc.
            if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                event->accept();
                if (event->type() == QEvent::KeyPress) cancel();
                return true;
            }
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace cad::ui

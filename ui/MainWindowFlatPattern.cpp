// Working on a sheet metal part flat: Edit Flat Pattern unfolds the part in its
// history (or goes back to the Unfold that left it flat) and shows the mode's banner
// and finish button until Finish Flat Pattern folds it back up; the Export Flat
// Pattern form, and the browser's flat pattern rows with their exports.
#include "ui/MainWindow.h"

#include "core/GeometryObject.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/flat/UnfoldFeature.h"
#include "rendering/Viewport.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FlatPatternForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/sketch/SketchSession.h"
#include "ui/widgets/CommandLog.h"

#include <QAction>
#include <QBoxLayout>
#include <QDir>
#include <QFileInfo>
#include <QToolButton>

#include <algorithm>

namespace cad::ui {

namespace {

const QString kSelectPart = QStringLiteral(
    "Select the sheet metal body (or the face to keep fixed), then Edit Flat Pattern.");

QString flatBanner(const QString& part) {
    return QStringLiteral("<span style='color:#d08045;font-weight:700'>FLAT PATTERN</span>&nbsp; "
                          "%1 &nbsp;·&nbsp; <span style='color:#a0978c'>work on it flat · Finish "
                          "Flat Pattern to fold it back up</span>")
        .arg(part.toHtmlEscaped());
}

// The Fold after `unfold` that leaves the part open, if any.
const ParamFeature* openFoldAfter(const Document& document, const GeometryObject& body,
                                  const ParamFeature& unfold) {
    const auto from = std::find(body.features.begin(), body.features.end(), unfold.id);
    for (auto it = from; it != body.features.end(); ++it)
        if (const auto* feature = document.findAs<ParamFeature>(*it);
            feature && feature->typeId == "Fold" && document.isActive(*feature))
            return feature;
    return nullptr;
}

} // namespace

void MainWindow::buildFlatPatternActions() {
    Actions& a = actions_;
    a.editFlatPattern =
        makeWindowAction(QStringLiteral("flat-pattern"), QStringLiteral("Edit Flat Pattern"),
                         QStringLiteral("editFlatPattern"),
                         QStringLiteral("Work on the selected sheet metal part laid flat"));
    connect(a.editFlatPattern, &QAction::triggered, this, &MainWindow::editFlatPattern);
    a.flatPattern = makeWindowAction(
        QStringLiteral("export"), QStringLiteral("Export Flat Pattern"),
        QStringLiteral("flatPattern"),
        QStringLiteral("Save a sheet metal part laid flat as a drawing for cutting"));
    connect(a.flatPattern, &QAction::triggered, this, &MainWindow::openFlatPatternForm);
    a.finishFlatPattern = makeWindowAction(
        QStringLiteral("check"), QStringLiteral("Finish Flat Pattern"),
        QStringLiteral("finishFlatPattern"), QStringLiteral("Fold the part back up"));
    a.finishFlatPattern->setVisible(false);
    a.finishFlatPattern->setEnabled(false);
    connect(a.finishFlatPattern, &QAction::triggered, this, &MainWindow::finishFlatPattern);
}

void MainWindow::connectFlatPattern() {
    QWidget* bar = finishSketchButton_->parentWidget();
    finishFlatPatternButton_ = new QToolButton(bar);
    finishFlatPatternButton_->setObjectName(QStringLiteral("finishFlatPatternButton"));
    finishFlatPatternButton_->setDefaultAction(actions_.finishFlatPattern);
    finishFlatPatternButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    finishFlatPatternButton_->hide();
    if (auto* row = qobject_cast<QBoxLayout*>(bar->layout()))
        row->insertWidget(row->indexOf(finishSketchButton_) + 1, finishFlatPatternButton_);

    browser_->setFlatPatternState([this](const DocumentObject& object) {
        const auto* body = dynamic_cast<const GeometryObject*>(&object);
        if (!body || !isSheetMetal(document_, *body)) return ObjectBrowser::FlatPattern::None;
        return body->id == flatBody_ ? ObjectBrowser::FlatPattern::Editing
                                     : ObjectBrowser::FlatPattern::Folded;
    });
    connect(browser_, &ObjectBrowser::flatPatternToggled, this, [this](const QString& body) {
        if (body.toStdString() == flatBody_)
            finishFlatPattern();
        else
            editFlatPatternOf(body.toStdString());
    });
    connect(browser_, &ObjectBrowser::flatPatternEditRequested, this,
            [this](const QString& body, bool edit) {
                if (edit)
                    editFlatPatternOf(body.toStdString());
                else if (body.toStdString() == flatBody_)
                    finishFlatPattern();
            });
    connect(browser_, &ObjectBrowser::flatExportRequested, this,
            [this](const QString& body, const QString& format) {
                if (format == QLatin1String("form"))
                    openFlatPatternFormOn({body.toStdString()});
                else
                    exportFlatFromUser(body, format);
            });
    // A sketch drawn on the flat part takes the top bar and banner while it is edited;
    // the mode's come back when it ends.
    connect(sketchSession_.get(), &SketchSession::activeChanged, this, [this](bool active) {
        if (!editingFlatPattern()) return;
        finishFlatPatternButton_->setVisible(!active);
        if (active) return;
        const auto* body = document_.findAs<GeometryObject>(flatBody_);
        showBanner(flatBanner(QString::fromStdString(body ? body->displayName() : flatBody_)));
    });
}

void MainWindow::editFlatPattern() {
    const std::optional<FlatSelection> chosen = flatSelection(document_, selectedReferences());
    const auto* part = chosen ? document_.findAs<GeometryObject>(chosen->body) : nullptr;
    if (!part || !isSheetMetal(document_, *part)) {
        showToast(kSelectPart);
        return;
    }
    editFlatPatternOf(chosen->body, chosen->face);
}

void MainWindow::editFlatPatternOf(const std::string& body, const std::string& face) {
    const auto* part = document_.findAs<GeometryObject>(body);
    if (!part || !isSheetMetal(document_, *part)) {
        showToast(kSelectPart);
        return;
    }
    const std::string id = part->id;
    if (flatBody_ == id) return;
    if (editingSketch()) finishSketch();
    endPlanePick();
    if (forms_->isOpen()) forms_->cancel();
    if (editingFlatPattern()) {
        finishFlatPattern();
        if (editingFlatPattern()) return; // the other part didn't fold: the toast says why
    }
    // A part its last Unfold left flat is worked on as it is.
    if (!flat::openUnfold(document_, *part)) {
        CommandRecord unfold("unfold");
        unfold.set("body", id.c_str());
        if (!face.empty()) unfold.set("face", face.c_str());
        if (!runCommand(unfold).ok) return; // the toast says why
    }
    enterFlatPatternMode(id);
}

void MainWindow::finishFlatPattern() {
    if (!editingFlatPattern()) return;
    if (editingSketch()) finishSketch();
    if (forms_->isOpen()) forms_->cancel();
    const std::string body = flatBody_;
    const auto* part = document_.findAs<GeometryObject>(body);
    if (const ParamFeature* unfold = part ? flat::openUnfold(document_, *part) : nullptr) {
        // A Fold left open closes; otherwise a new one carries the flat work back.
        CommandRecord fold("fold");
        if (const ParamFeature* open = openFoldAfter(document_, *part, *unfold)) {
            fold = CommandRecord("edit_fold");
            fold.set("feature", open->id.c_str()).set("open", false);
        } else {
            fold.set("body", body.c_str());
        }
        if (!runCommand(fold).ok) return; // still flat; the toast says why
    }
    leaveFlatPatternMode();
}

void MainWindow::enterFlatPatternMode(const std::string& body) {
    flatBody_ = body;
    // The sheet metal tools stay at hand while it is flat.
    sheetTab_->setChecked(true);
    actions_.finishFlatPattern->setVisible(true);
    finishFlatPatternButton_->setVisible(!editingSketch());
    const auto* part = document_.findAs<GeometryObject>(body);
    showBanner(flatBanner(QString::fromStdString(part ? part->displayName() : body)));
    browser_->refresh();
    viewport_->fitAll();
    updateUndoRedo();
}

void MainWindow::leaveFlatPatternMode() {
    if (!editingFlatPattern()) return;
    flatBody_.clear();
    actions_.finishFlatPattern->setVisible(false);
    if (finishFlatPatternButton_) finishFlatPatternButton_->hide();
    if (!editingSketch() && !pickingPlane_) showBanner({});
    if (browser_) browser_->refresh();
    updateUndoRedo();
}

void MainWindow::updateFlatPatternActions() {
    if (editingFlatPattern()) {
        // Undone, deleted or folded some other way: the part isn't flat any more.
        const auto* part = document_.findAs<GeometryObject>(flatBody_);
        if (!part || !flat::openUnfold(document_, *part)) {
            leaveFlatPatternMode(); // comes back here
            return;
        }
    }
    actions_.finishFlatPattern->setEnabled(editingFlatPattern());
}

void MainWindow::openFlatPatternForm() {
    std::vector<std::string> selection = selectedReferences();
    if (!flatSelection(document_, selection) && editingFlatPattern()) selection = {flatBody_};
    openFlatPatternFormOn(selection);
}

void MainWindow::openFlatPatternFormOn(const std::vector<std::string>& selection) {
    if (editingSketch()) finishSketch();
    endPlanePick();
    forms_->open(flatPatternForm(
        document_,
        [this](const QString& title, const QString& proposed, const QString& filter) {
            return prompt_->saveFileName(this, title, proposed, filter);
        },
        selection));
}

void MainWindow::exportFlatFromUser(const QString& body, const QString& format) {
    const auto* part = document_.findAs<GeometryObject>(body.toStdString());
    const QString name = part ? QString::fromStdString(part->displayName()) : body;
    writeFlatFromUser(name, sheetFlatPattern(document_, body.toStdString(), {}), format);
}

void MainWindow::exportFlatFromSelection() {
    const std::optional<FlatSelection> chosen = flatSelection(document_, selectedReferences());
    const auto* part = chosen ? document_.findAs<GeometryObject>(chosen->body) : nullptr;
    if (!part) {
        showToast(QStringLiteral("Select a body (or the face to look at), then Export Flat."));
        return;
    }
    flat::FlatOptions options;
    options.face = chosen->face;
    writeFlatFromUser(QString::fromStdString(part->displayName()),
                      flat::flatPattern(document_, *part, options), QStringLiteral("dxf"));
}

void MainWindow::writeFlatFromUser(const QString& name, const Result<flat::FlatPattern>& pattern,
                                   const QString& format) {
    const QString title = QStringLiteral("Export %1 flat").arg(name);
    Result<QString> saved =
        pattern ? saveFlatPattern(document_, *pattern, name, format, title,
                                  [this](const QString& caption, const QString& proposed,
                                         const QString& filter) {
                                      return prompt_->saveFileName(this, caption, proposed, filter);
                                  })
                : Result<QString>(Error(pattern));
    if (!saved) {
        prompt_->warning(this, title, QString::fromStdString(saved.error()));
        return;
    }
    if (saved->isEmpty()) return;
    showToast(
        QStringLiteral("Exported %1  ·  %2")
            .arg(QFileInfo(*saved).fileName(), flatSizeText(*pattern, document_.lengthUnit())));
    commandLog_->addNote(QStringLiteral("Exported %1").arg(QDir::toNativeSeparators(*saved)));
}

} // namespace cad::ui

// 3D models in and out of the window: Import 3D Model (STEP or STL as bodies, also
// by dropping the file on the view), Export STEP and Export STL of the visible
// bodies or of one body from the browser, each dialog remembering its folder.
#include "ui/MainWindow.h"

#include "geometry/exchange/ExportBodies.h"
#include "geometry/exchange/StepWriter.h"
#include "geometry/exchange/StlWriter.h"
#include "rendering/Viewport.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/WindowPrompt.h"
#include "ui/widgets/CommandLog.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace cad::ui {

namespace {

const QString kModelsFolderKey = QStringLiteral("folders/models");
const QString kExportsFolderKey = QStringLiteral("folders/exports");

// The folder a dialog last used, else the user's documents.
QString rememberedFolder(const QString& key) {
    const QString folder = QSettings().value(key).toString();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

void rememberFolder(const QString& key, const QString& file) {
    QSettings().setValue(key, QFileInfo(file).absolutePath());
}

struct ExportKind {
    QString title;
    QString filter;
    QString suffix;
};

ExportKind exportKind(ModelFormat format) {
    if (format == ModelFormat::Step)
        return {QStringLiteral("Export STEP"), QStringLiteral("STEP model (*.step *.stp)"),
                QStringLiteral("step")};
    return {QStringLiteral("Export STL"), QStringLiteral("STL mesh (*.stl)"),
            QStringLiteral("stl")};
}

// The chosen name with the format's extension when it has none of its own.
QString withModelSuffix(const QString& chosen, ModelFormat format) {
    const QString suffix = QFileInfo(chosen).suffix().toLower();
    const bool known = format == ModelFormat::Step
                           ? suffix == QLatin1String("step") || suffix == QLatin1String("stp")
                           : suffix == QLatin1String("stl");
    return known ? chosen : chosen + "." + exportKind(format).suffix;
}

} // namespace

bool MainWindow::isModelFile(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("step") || suffix == QLatin1String("stp") ||
           suffix == QLatin1String("stl");
}

void MainWindow::importModelFromUser() {
    const QString chosen = prompt_->openFileName(
        this, QStringLiteral("Import 3D Model"), rememberedFolder(kModelsFolderKey),
        QStringLiteral("3D models (*.step *.stp *.stl);;STEP (*.step *.stp);;STL (*.stl)"));
    if (chosen.isEmpty()) return;
    rememberFolder(kModelsFolderKey, chosen);
    importModel(chosen);
}

bool MainWindow::importModel(const QString& path) {
    if (editingSketch()) finishSketch();
    endPlanePick();
    if (forms_ && forms_->isOpen()) forms_->cancel();
    CommandRecord record("import_model");
    record.set("path", QFileInfo(path).absoluteFilePath().toStdString());
    // A failure shows as a toast through the command event; nothing is added.
    const CommandResult result = runCommand(record);
    if (!result.ok) return false;
    QString note = QString::fromStdString(result.message);
    // STL files carry no unit: say how its numbers were taken.
    if (QFileInfo(path).suffix().compare(QLatin1String("stl"), Qt::CaseInsensitive) == 0)
        note = QStringLiteral("%1  ·  read as millimeters").arg(note);
    showToast(note);
    viewport_->fitAllAnimated();
    return true;
}

void MainWindow::exportModelFromUser(ModelFormat format, const std::vector<std::string>& bodies) {
    const ExportKind kind = exportKind(format);
    const Result<std::vector<exchange::ExportBody>> collected =
        exchange::collectBodies(document_, bodies);
    if (!collected) {
        prompt_->warning(this, kind.title, QString::fromStdString(collected.error()));
        return;
    }
    // One body from the browser proposes its own name; the whole model "Model".
    const QString name = bodies.size() == 1 && collected->size() == 1
                             ? QString::fromStdString(collected->front().name)
                             : QStringLiteral("Model");
    const QString proposed = rememberedFolder(kExportsFolderKey) + "/" + name + "." + kind.suffix;
    const QString chosen = prompt_->saveFileName(this, kind.title, proposed, kind.filter);
    if (chosen.isEmpty()) return;
    const QString path = QFileInfo(withModelSuffix(chosen, format)).absoluteFilePath();
    rememberFolder(kExportsFolderKey, path);
    const Result<void> written =
        format == ModelFormat::Step
            ? exchange::writeStep(*collected, path.toStdString())
            : exchange::writeStl(*collected, path.toStdString(), exchange::StlExportOptions());
    if (!written) {
        prompt_->warning(this, kind.title, QString::fromStdString(written.error()));
        return;
    }
    const QString file = QFileInfo(path).fileName();
    showToast(collected->size() == 1
                  ? QStringLiteral("Exported %1").arg(file)
                  : QStringLiteral("Exported %1  ·  %2 bodies").arg(file).arg(collected->size()));
    commandLog_->addNote(QStringLiteral("Exported %1").arg(QDir::toNativeSeparators(path)));
}

} // namespace cad::ui

// Flat drawings in and out of the window: a sketch exported from the browser as DXF
// or SVG for laser and CNC software, in the document's unit; SVG, DXF, Illustrator
// and PDF artwork chosen or dropped brought into a sketch through the Import Drawing
// form. Both dialogs remember one folder.
#include "ui/MainWindow.h"

#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "sketch/drawing/SketchExport.h"
#include "sketch/drawingimport/DrawingReaders.h"
#include "ui/WindowPrompt.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/forms/ImportDrawingForm.h"
#include "ui/widgets/CommandLog.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <gp_Ax3.hxx>
#include <gp_Pln.hxx>

namespace cad::ui {

namespace {

const QString kDrawingsFolderKey = QStringLiteral("folders/drawings");

QString drawingsFolder() {
    const QString folder = QSettings().value(kDrawingsFolderKey).toString();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

void rememberDrawingsFolder(const QString& file) {
    QSettings().setValue(kDrawingsFolderKey, QFileInfo(file).absolutePath());
}

gp_Pnt point(const Vec3& v) { return gp_Pnt(v[0], v[1], v[2]); }
gp_Vec vector(const Vec3& v) { return gp_Vec(v[0], v[1], v[2]); }

} // namespace

bool MainWindow::isDrawingFile(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("svg") || suffix == QLatin1String("dxf") ||
           suffix == QLatin1String("ai") || suffix == QLatin1String("pdf");
}

void MainWindow::importDrawingFromUser() {
    const QString chosen = prompt_->openFileName(
        this, QStringLiteral("Import Drawing"), drawingsFolder(),
        QStringLiteral("Drawings (*.svg *.dxf *.ai *.pdf);;SVG (*.svg);;DXF (*.dxf);;"
                       "Illustrator (*.ai);;PDF (*.pdf)"));
    if (chosen.isEmpty()) return;
    rememberDrawingsFolder(chosen);
    importDrawingFile(chosen);
}

bool MainWindow::importDrawingFile(const QString& path, std::optional<QPointF> dropped) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    // Read once here, so that a file that can't be imported says so before any form
    // opens, and the form knows the drawing's size.
    Result<drawingimport::DrawingFile> file =
        drawingimport::readDrawingFile(absolute.toStdString());
    if (file && !drawingimport::drawingExtent(file->drawing))
        file = fail(absolute.toStdString() + " has no geometry I can import.");
    if (!file) {
        prompt_->warning(this, QStringLiteral("Import Drawing"),
                         QString::fromStdString(file.error()));
        return false;
    }
    DrawingImportSource source;
    source.path = absolute.toStdString();
    source.file = std::move(*file);
    source.sketch = editingSketch() ? editedSketch() : std::string();
    if (dropped) {
        rendering::Viewport* view = viewport_;
        const QPointF pixel = *dropped;
        source.droppedAt =
            [view, pixel](const PlaneFrame& frame) -> std::optional<std::array<double, 2>> {
            const gp_Pln plane(gp_Ax3(point(frame.origin), gp_Dir(vector(frame.normal)),
                                      gp_Dir(vector(frame.xDirection))));
            const std::optional<gp_Pnt> hit = view->unprojectToPlane(pixel, plane);
            if (!hit) return std::nullopt;
            const gp_Vec offset(point(frame.origin), *hit);
            return std::array<double, 2>{offset.Dot(vector(frame.xDirection)),
                                         offset.Dot(vector(frame.yDirection()))};
        };
    }
    forms_->open(importDrawingForm(document_, std::move(source)));
    return true;
}

void MainWindow::exportSketchFromUser(const QString& id, const QString& format) {
    const bool dxf = format == QLatin1String("dxf");
    const auto* sketch = document_.findAs<SketchObject>(id.toStdString());
    if (!sketch) {
        prompt_->warning(this, QStringLiteral("Export %1").arg(id),
                         QStringLiteral("There's no sketch named %1.").arg(id));
        return;
    }
    const QString name = QString::fromStdString(sketch->label.empty() ? sketch->id : sketch->label);
    const QString title = QStringLiteral("Export %1").arg(name);
    const QString proposed = drawingsFolder() + "/" + name + "." + format;
    const QString filter =
        dxf ? QStringLiteral("DXF drawing (*.dxf)") : QStringLiteral("SVG drawing (*.svg)");
    QString chosen = prompt_->saveFileName(this, title, proposed, filter);
    if (chosen.isEmpty()) return;
    if (!drawing::isDrawingPath(chosen.toStdString())) chosen += "." + format;
    const QString path = QFileInfo(chosen).absoluteFilePath();
    rememberDrawingsFolder(path);
    const Result<std::string> written =
        drawing::exportSketch(*sketch, path.toStdString(), document_.lengthUnit(), false);
    if (!written) {
        prompt_->warning(this, title, QString::fromStdString(written.error()));
        return;
    }
    showToast(QStringLiteral("Exported %1").arg(QFileInfo(path).fileName()));
    commandLog_->addNote(QStringLiteral("Exported %1").arg(QDir::toNativeSeparators(path)));
}

} // namespace cad::ui

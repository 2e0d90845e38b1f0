// Flat drawings out of the window: a sketch exported from the browser as DXF or SVG
// for laser and CNC software, in the document's unit, the dialog remembering its
// folder.
#include "ui/MainWindow.h"

#include "sketch/SketchObject.h"
#include "sketch/drawing/SketchExport.h"
#include "ui/WindowPrompt.h"
#include "ui/widgets/CommandLog.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace cad::ui {

namespace {

const QString kDrawingsFolderKey = QStringLiteral("folders/drawings");

QString drawingsFolder() {
    const QString folder = QSettings().value(kDrawingsFolderKey).toString();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

} // namespace

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
    QSettings().setValue(kDrawingsFolderKey, QFileInfo(path).absolutePath());
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

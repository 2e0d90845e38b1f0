// The Nest Parts form's rows, what they remember, and Save...: every chosen body laid
// flat, nested, and the sheets written side by side in the document's unit.
#include "ui/forms/NestForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/sheet/nest/Nesting.h"
#include "sketch/drawing/SketchExport.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <memory>

namespace cad::ui {

namespace {

const QString kBodies = QStringLiteral("bodies");
const QString kQuantity = QStringLiteral("quantity");
const QString kFormat = QStringLiteral("format");
const QString kTurning = QStringLiteral("turning");

struct LengthRow {
    const char* key;
    const char* label;
    const char* setting;
    double fallback; // mm
};
constexpr LengthRow kLengths[] = {
    {"sheet_width", "Sheet width", "nest/width", 1000},
    {"sheet_height", "Sheet height", "nest/height", 500},
    {"spacing", "Spacing", "nest/spacing", 3},
    {"margin", "Margin", "nest/margin", 5},
};

double remembered(const char* setting, double fallback) {
    bool ok = false;
    const double value = QSettings().value(QString::fromLatin1(setting)).toDouble(&ok);
    return ok && std::isfinite(value) ? value : fallback;
}

QString exportsFolder() {
    const QString folder = QSettings().value(QStringLiteral("folders/exports")).toString();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

// "12.5" per cent with one decimal, as the nest tool reports it.
QString percent(double usage) { return QString::number(std::round(usage * 1000) / 10, 'f', 1); }

} // namespace

FormDefinition nestForm(const Document& document, NestFormHost host,
                        const std::vector<std::string>& selection) {
    auto shared = std::make_shared<const NestFormHost>(std::move(host));
    FormDefinition form;
    form.icon = QStringLiteral("nest");
    form.title = QStringLiteral("Nest Parts");
    form.primaryText = QStringLiteral("Save...");
    form.setup = [&document, selection](FeatureForm& f) {
        f.addPick(kBodies, QStringLiteral("Parts"),
                  QStringLiteral("The bodies to cut; click again to drop one"),
                  pickRuleFor(document, FeatureArgument::Bodies, QStringLiteral("bodies"), true,
                              true, QStringLiteral("Click the bodies to cut.")));
        // A face or edge selected stands for its body.
        std::vector<std::string> bodies;
        for (const std::string& reference : selection) {
            const std::string id = reference.substr(0, reference.find('/'));
            if (document.findAs<GeometryObject>(id) &&
                std::find(bodies.begin(), bodies.end(), id) == bodies.end())
                bodies.push_back(id);
        }
        f.setReferences(kBodies, bodies);
        f.addInteger(kQuantity, QStringLiteral("Of each"), {}, 1, 1, 10000);
        for (const LengthRow& row : kLengths)
            f.addLength(QString::fromLatin1(row.key), QString::fromLatin1(row.label), {},
                        lengthText(remembered(row.setting, row.fallback), document));
        f.addFlag(kTurning, QStringLiteral("Turn parts to fit"), {},
                  QSettings().value(QStringLiteral("nest/turning"), true).toBool());
        f.addSegmented(
            kFormat, QStringLiteral("File"), {},
            {{QStringLiteral("dxf"), QStringLiteral("DXF"), {}},
             {QStringLiteral("svg"), QStringLiteral("SVG"), {}}},
            QSettings().value(QStringLiteral("nest/format"), QStringLiteral("dxf")).toString() ==
                    QLatin1String("svg")
                ? QStringLiteral("svg")
                : QStringLiteral("dxf"));
    };
    form.finish = [&document, shared](FeatureForm& f) -> Result<QString> {
        nest::NestRequest request;
        double* lengths[] = {&request.sheetWidth, &request.sheetHeight, &request.spacing,
                             &request.margin};
        for (std::size_t i = 0; i < std::size(kLengths); ++i) {
            Result<double> value = f.length(QString::fromLatin1(kLengths[i].key));
            if (!value) return Error(value);
            *lengths[i] = *value;
        }
        request.allowTurning = f.flag(kTurning);
        for (const std::string& id : f.references(kBodies)) {
            Result<drawing::Drawing> flat = shared->flatDrawing(id);
            if (!flat) return Error(flat);
            const auto* body = document.findAs<GeometryObject>(id);
            request.parts.push_back(
                {body ? body->displayName() : id, std::move(*flat), f.integer(kQuantity)});
        }
        Result<nest::NestResult> nested = nest::nest(request);
        if (!nested) return Error(nested);

        QSettings settings;
        for (std::size_t i = 0; i < std::size(kLengths); ++i)
            settings.setValue(QString::fromLatin1(kLengths[i].setting), *lengths[i]);
        settings.setValue(QStringLiteral("nest/turning"), request.allowTurning);
        const QString format = f.text(kFormat);
        settings.setValue(QStringLiteral("nest/format"), format);

        const bool dxf = format == QLatin1String("dxf");
        QString path = shared->askPath(exportsFolder() + QStringLiteral("/Nest.") + format,
                                       dxf ? QStringLiteral("DXF drawing (*.dxf)")
                                           : QStringLiteral("SVG drawing (*.svg)"));
        if (path.isEmpty()) return QString();
        if (!drawing::isDrawingPath(path.toStdString())) path += QStringLiteral(".") + format;
        settings.setValue(QStringLiteral("folders/exports"), QFileInfo(path).absolutePath());
        Result<void> written = drawing::writeDrawing(
            drawing::inUnit(nested->drawing, document.lengthUnit()), path.toStdString());
        if (!written) return Error(written);
        return QStringLiteral("Saved %1  ·  %2 parts on %3 sheet(s), %4% used")
            .arg(QFileInfo(path).fileName())
            .arg(nested->placements.size())
            .arg(nested->sheetCount)
            .arg(percent(nested->usage));
    };
    return form;
}

} // namespace cad::ui

// The Flat Pattern form's rows and summary, Save..., and the pieces the window's flat
// exports share with it: which part a selection means, its pattern refused for a body
// that isn't sheet metal, the blank's size as text, and the file written.
#include "ui/forms/FlatPatternForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/Format.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/sheet/flat/SheetFaces.h"
#include "geometry/sheet/metal/SheetRules.h"
#include "sketch/drawing/SketchExport.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"

#include <BRepAdaptor_Surface.hxx>
#include <TopoDS.hxx>

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <memory>

namespace cad::ui {

namespace {

const QString kBody = QStringLiteral("body");
const QString kFace = QStringLiteral("face");
const QString kKFactor = QStringLiteral("k_factor");
const QString kThickness = QStringLiteral("thickness");
const QString kFormat = QStringLiteral("format");
const QString kSummary = QStringLiteral("summary");
const QString kFormatSetting = QStringLiteral("flat/format");
// Flat patterns go where the sketches' drawings go.
const QString kFolderSetting = QStringLiteral("folders/drawings");

const std::string kFlatFacePrompt = "Pick a flat face of the part.";
// How far a sheet's two sides may be from its thickness apart, in mm.
constexpr double kThicknessTolerance = 0.01;

QString drawingsFolder() {
    const QString folder = QSettings().value(kFolderSetting).toString();
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

std::string headOf(const std::string& reference) {
    return reference.substr(0, reference.find('/'));
}

// The body a selected reference lies on: a body, a piece of one, or one of its features.
const GeometryObject* bodyOf(const Document& document, const std::string& reference) {
    const std::string head = headOf(reference);
    if (const auto* body = document.findAs<GeometryObject>(head)) return body;
    if (const auto* feature = document.findAs<FeatureObject>(head))
        return document.bodyOfFeature(feature->id);
    return nullptr;
}

// Whether the reference ("Body1/Flange1.Line2") is a flat face of this sheet metal
// body's sheet: planar, with the sheet's other side its thickness across (not the
// sheet's edge, nor the end of a bent part).
bool isSheetFaceOf(const Document& document, const GeometryObject& body,
                   const std::string& reference) {
    const std::size_t slash = reference.find('/');
    if (slash == std::string::npos || reference.substr(0, slash) != body.id) return false;
    const std::optional<TopoDS_Shape> face = body.shape.findByName(reference.substr(slash + 1));
    if (!face || face->IsNull() || face->ShapeType() != TopAbs_FACE ||
        BRepAdaptor_Surface(TopoDS::Face(*face)).GetType() != GeomAbs_Plane)
        return false;
    const std::optional<sheet::SheetRules> rules = sheet::sheetRulesOf(document, body);
    const std::optional<flat::FaceAcross> across =
        rules ? flat::faceAcross(body.shape.shape(), TopoDS::Face(*face)) : std::nullopt;
    return across && std::abs(across->distance - rules->thickness) < kThicknessTolerance;
}

// What the Flat Pattern form works out as its rows change.
struct FlatFormState {
    AskFlatPath askPath;
    // The part whose rules the K-factor and thickness rows were filled from.
    std::string filledFrom;
    // The pattern as the rows stand, when it works out.
    std::optional<flat::FlatPattern> pattern;
};

Result<flat::FlatOptions> optionsOf(const FeatureForm& form) {
    flat::FlatOptions options;
    if (const auto& faces = form.references(kFace); !faces.empty()) options.face = faces.front();
    Result<double> k = form.number(kKFactor);
    if (!k) return Error(k);
    options.kFactor = *k;
    Result<double> thickness = form.length(kThickness);
    if (!thickness) return Error(thickness);
    options.thickness = *thickness;
    return options;
}

// The rows change; the pattern and the summary follow, or the message says why not.
void rework(const Document& document, FlatFormState& state, FeatureForm& form) {
    state.pattern.reset();
    const std::vector<std::string>& bodies = form.references(kBody);
    const std::string body = bodies.empty() ? std::string() : bodies.front();
    if (body != state.filledFrom) {
        // Another part: the rows start from its own rules, and a face of the last
        // part no longer applies.
        state.filledFrom = body;
        const auto* object = document.findAs<GeometryObject>(body);
        if (const auto rules = object ? sheet::sheetRulesOf(document, *object) : std::nullopt) {
            form.setText(kKFactor, plainNumberText(rules->kFactor));
            form.setText(kThickness, lengthText(rules->thickness, document));
        }
        if (const auto& faces = form.references(kFace);
            !faces.empty() && headOf(faces.front()) != body)
            form.setReferences(kFace, {});
    }
    form.setText(kSummary, {});
    if (body.empty()) return;
    Result<flat::FlatOptions> options = optionsOf(form);
    Result<flat::FlatPattern> pattern = options ? sheetFlatPattern(document, body, *options)
                                                : Result<flat::FlatPattern>(Error(options));
    if (!pattern) {
        form.showMessage(QString::fromStdString(pattern.error()), true);
        return;
    }
    form.setText(kSummary, flatSummary(*pattern, document.lengthUnit()));
    state.pattern = std::move(*pattern);
}

} // namespace

std::optional<FlatSelection> flatSelection(const Document& document,
                                           const std::vector<std::string>& selection) {
    const GeometryObject* chosen = nullptr;
    for (const std::string& reference : selection) {
        const GeometryObject* body = bodyOf(document, reference);
        if (!body) continue;
        if (!chosen) chosen = body;
        if (isSheetMetal(document, *body)) {
            chosen = body;
            break;
        }
    }
    if (!chosen) return std::nullopt;
    FlatSelection found{chosen->id, {}};
    for (const std::string& reference : selection)
        if (isSheetFaceOf(document, *chosen, reference)) {
            found.face = reference;
            break;
        }
    return found;
}

bool isSheetMetal(const Document& document, const GeometryObject& body) {
    return std::any_of(body.features.begin(), body.features.end(), [&](const std::string& id) {
        const auto* feature = document.findAs<ParamFeature>(id);
        return feature && !feature->suppressed &&
               (feature->typeId == "SheetFlange" || feature->typeId == "SheetRules");
    });
}

Result<flat::FlatPattern> sheetFlatPattern(const Document& document, const std::string& body,
                                           const flat::FlatOptions& options) {
    const auto* object = document.findAs<GeometryObject>(body);
    if (!object) return fail("There's no body named " + body + ".");
    if (!sheet::sheetRulesOf(document, *object))
        return fail(object->displayName() +
                    " isn't sheet metal: SHEET METAL › Convert to Sheet Metal first.");
    if (!options.face.empty() && !isSheetFaceOf(document, *object, options.face))
        return fail(kFlatFacePrompt);
    return flat::flatPattern(document, *object, options);
}

QString flatSizeText(const flat::FlatPattern& pattern, units::Length unit) {
    return QStringLiteral("%1 x %2").arg(
        QString::fromStdString(units::formatLength(pattern.width, unit, false)),
        QString::fromStdString(units::formatLength(pattern.height, unit)));
}

QString flatSummary(const flat::FlatPattern& pattern, units::Length unit) {
    const qsizetype bends = static_cast<qsizetype>(pattern.bends.size());
    const QString bendText =
        bends == 1 ? QStringLiteral("1 bend") : QStringLiteral("%1 bends").arg(bends);
    return QStringLiteral("%1  ·  %2  ·  %3 thick")
        .arg(flatSizeText(pattern, unit), bendText,
             QString::fromStdString(units::formatLength(pattern.thickness, unit)));
}

Result<QString> saveFlatPattern(const Document& document, const flat::FlatPattern& pattern,
                                const QString& partName, const QString& format,
                                const QString& title, const AskFlatPath& askPath) {
    const bool dxf = format == QLatin1String("dxf");
    QString chosen = askPath(title, drawingsFolder() + "/" + partName + " flat." + format,
                             dxf ? QStringLiteral("DXF drawing (*.dxf)")
                                 : QStringLiteral("SVG drawing (*.svg)"));
    if (chosen.isEmpty()) return QString();
    if (!drawing::isDrawingPath(chosen.toStdString())) chosen += "." + format;
    const QString path = QFileInfo(chosen).absoluteFilePath();
    Result<void> written = drawing::writeDrawing(
        drawing::inUnit(pattern.drawing, document.lengthUnit()), path.toStdString());
    if (!written) return Error(written);
    QSettings().setValue(kFolderSetting, QFileInfo(path).absolutePath());
    return path;
}

FormDefinition flatPatternForm(const Document& document, AskFlatPath askPath,
                               const std::vector<std::string>& selection) {
    auto state = std::make_shared<FlatFormState>();
    state->askPath = std::move(askPath);
    FormDefinition form;
    form.icon = QStringLiteral("flat-pattern");
    form.title = QStringLiteral("Flat Pattern");
    form.primaryText = QStringLiteral("Save...");
    form.setup = [&document, selection](FeatureForm& f) {
        f.addPick(kBody, QStringLiteral("Part"), {},
                  pickRuleFor(document, FeatureArgument::Bodies, QStringLiteral("part"), false,
                              true, QStringLiteral("Click the part to unfold.")));
        PickRule face = pickRuleFor(document, FeatureArgument::Faces, QStringLiteral("fixed face"),
                                    false, false, QString::fromStdString(kFlatFacePrompt));
        face.accept = [&document, taken = face.accept](const std::string& reference) {
            Result<std::string> kept = taken(reference);
            if (!kept) return kept;
            const GeometryObject* body = bodyOf(document, *kept);
            if (!body || !isSheetFaceOf(document, *body, *kept))
                return Result<std::string>(fail(kFlatFacePrompt));
            return kept;
        };
        f.addPick(kFace, QStringLiteral("Fixed face"),
                  QStringLiteral("The flat face that stays put (default: the largest)"), face);
        f.addNumber(kKFactor, QStringLiteral("K-factor"),
                    QStringLiteral("Where the neutral layer is, as a share of the thickness from "
                                   "the inside"),
                    plainNumberText(sheet::SheetRules{}.kFactor));
        f.addLength(kThickness, QStringLiteral("Thickness"),
                    QStringLiteral("0: measured from the part"), lengthText(0, document));
        f.addSegmented(kFormat, QStringLiteral("File"), {},
                       {{QStringLiteral("dxf"), QStringLiteral("DXF"), {}},
                        {QStringLiteral("svg"), QStringLiteral("SVG"), {}}},
                       QSettings().value(kFormatSetting).toString() == QLatin1String("svg")
                           ? QStringLiteral("svg")
                           : QStringLiteral("dxf"));
        f.addMessage(kSummary, {});
        if (const std::optional<FlatSelection> chosen = flatSelection(document, selection)) {
            f.setReferences(kBody, {chosen->body});
            if (!chosen->face.empty()) f.setReferences(kFace, {chosen->face});
        }
    };
    form.changed = [&document, state](FeatureForm& f) { rework(document, *state, f); };
    form.complete = [state](FeatureForm& f) {
        return f.missingPrompt().isEmpty() && state->pattern.has_value();
    };
    form.finish = [&document, state](FeatureForm& f) -> Result<QString> {
        if (!state->pattern || f.references(kBody).empty())
            return fail("Click the part to unfold.");
        const auto* body = document.findAs<GeometryObject>(f.references(kBody).front());
        const QString name = QString::fromStdString(body ? body->displayName() : state->filledFrom);
        const QString format = f.text(kFormat);
        QSettings().setValue(kFormatSetting, format);
        Result<QString> saved =
            saveFlatPattern(document, *state->pattern, name, format,
                            QStringLiteral("Save %1 flat").arg(name), state->askPath);
        if (!saved) return Error(saved);
        if (saved->isEmpty()) return QString();
        return QStringLiteral("Saved %1").arg(QFileInfo(*saved).fileName());
    };
    return form;
}

} // namespace cad::ui

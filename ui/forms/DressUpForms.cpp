// The fillet panel, the shell form and the dress-up edit form: their rows, the
// fillet, chamfer, shell and edit_feature commands they run, and their live trials.
#include "ui/forms/DressUpForms.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/DressUpFeatures.h"
#include "geometry/References.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/presentation/ReferencePicker.h"

#include <TopAbs_ShapeEnum.hxx>

#include <algorithm>
#include <memory>

namespace cad::ui {

namespace {

const QString kFilletTip = QStringLiteral("Round the edges");
const QString kChamferTip = QStringLiteral("Bevel the edges by the same distance on both faces");
const QString kTangentTip =
    QStringLiteral("Also take the edges continuing these smoothly; off: only these edges, "
                   "ending square where they end");

// Whether the reference names a piece of a body of this kind (an edge, a face).
bool isBodyPiece(const Document& document, const std::string& reference, TopAbs_ShapeEnum type) {
    if (!document.findAs<GeometryObject>(geometry::objectPart(reference)) ||
        reference.find('/') == std::string::npos)
        return false;
    Result<geometry::ResolvedReference> resolved = geometry::resolveReference(document, reference);
    return resolved && !resolved->shape.IsNull() && resolved->shape.ShapeType() == type;
}

PickRule pieceRule(const Document& document, TopAbs_ShapeEnum type, const QString& prompt) {
    PickRule rule;
    rule.kinds = type == TopAbs_EDGE ? PickEdge : PickFace;
    rule.prompt = prompt;
    const std::string word =
        type == TopAbs_EDGE ? " isn't an edge of a body." : " isn't a face of a body.";
    rule.accept = [&document, type, word](const std::string& reference) -> Result<std::string> {
        if (isBodyPiece(document, reference, type)) return reference;
        return fail(referenceLabel(document, reference).toStdString() + word);
    };
    return rule;
}

// The selected pieces of this kind, in selection order.
std::vector<std::string> selectedPieces(const Document& document,
                                        const std::vector<std::string>& selection,
                                        TopAbs_ShapeEnum type) {
    std::vector<std::string> pieces;
    for (const std::string& reference : selection)
        if (isBodyPiece(document, reference, type) &&
            std::find(pieces.begin(), pieces.end(), reference) == pieces.end())
            pieces.push_back(reference);
    return pieces;
}

std::vector<FieldChoice> directionChoices() {
    return {{QStringLiteral("inside"), QStringLiteral("Inside"),
             QStringLiteral("The walls grow into the body")},
            {QStringLiteral("outside"), QStringLiteral("Outside"),
             QStringLiteral("The walls grow out of the body")}};
}

// New features are tried on the body their picks lie on, whichever that turns out to be.
std::optional<FormSession::Handle> trialOnBody(FeatureForm&) { return FormSession::Handle{}; }

} // namespace

FormDefinition filletForm(const Document& document, const std::vector<std::string>& selection,
                          bool chamfer) {
    const std::vector<std::string> selected = selectedPieces(document, selection, TopAbs_EDGE);
    const QString start = lengthText(2, document);

    FormDefinition form;
    form.icon = QStringLiteral("fillet");
    form.title = QStringLiteral("Fillet");
    form.objectName = QStringLiteral("filletPanel");
    form.setup = [&document, selected, start, chamfer](FeatureForm& f) {
        f.addSegmented(QStringLiteral("mode"), QStringLiteral("Type"), {},
                       {{QStringLiteral("fillet"), QStringLiteral("Fillet"), kFilletTip},
                        {QStringLiteral("chamfer"), QStringLiteral("Chamfer"), kChamferTip}},
                       chamfer ? QStringLiteral("chamfer") : QStringLiteral("fillet"));
        f.addPick(QStringLiteral("edges"), QStringLiteral("Edges"),
                  QStringLiteral("Edges of one body; a click takes those continuing it smoothly "
                                 "too (Shift: just the one), a second click drops them"),
                  pieceRule(document, TopAbs_EDGE, QStringLiteral("Pick the edges in the view.")));
        f.setReferences(QStringLiteral("edges"), selected);
        f.addLength(QStringLiteral("radius"), QStringLiteral("Radius"),
                    QStringLiteral("The fillet's radius"), start);
        f.addLength(QStringLiteral("distance"), QStringLiteral("Distance"),
                    QStringLiteral("How far the bevel runs along each face"), start);
        f.showWhen(QStringLiteral("radius"), QStringLiteral("mode"), {QStringLiteral("fillet")});
        f.showWhen(QStringLiteral("distance"), QStringLiteral("mode"), {QStringLiteral("chamfer")});
        f.addFlag(QStringLiteral("tangent_chain"), QStringLiteral("Tangent chain"), kTangentTip,
                  true);
    };
    form.build = [&document](FeatureForm& f) -> Result<CommandRecord> {
        const bool bevel = f.text(QStringLiteral("mode")) == QStringLiteral("chamfer");
        const std::vector<std::string>& edges = f.references(QStringLiteral("edges"));
        Result<std::string> body = bodyOfReferences(document, edges, "edges");
        if (!body) return Error(body);
        CommandRecord record(bevel ? "chamfer" : "fillet");
        record.set("body", body->c_str());
        record.set("edges", joinReferences(edges).c_str());
        const QString value = bevel ? QStringLiteral("distance") : QStringLiteral("radius");
        if (auto ok = putLength(record, f, value); !ok) return Error(ok);
        if (!f.flag(QStringLiteral("tangent_chain"))) record.set("tangent_chain", false);
        return record;
    };
    form.session = trialOnBody;
    return form;
}

FormDefinition shellForm(const Document& document, const std::vector<std::string>& selection) {
    const std::vector<std::string> selected = selectedPieces(document, selection, TopAbs_FACE);
    const QString thickness = lengthText(2, document);

    FormDefinition form;
    form.icon = QStringLiteral("shell");
    form.title = QStringLiteral("Shell");
    form.setup = [&document, selected, thickness](FeatureForm& f) {
        f.addPick(QStringLiteral("faces"), QStringLiteral("Open faces"),
                  QStringLiteral("The faces to remove, where the shell is open; a second click "
                                 "drops one"),
                  pieceRule(document, TopAbs_FACE,
                            QStringLiteral("Pick the faces to remove (where the shell is open).")));
        f.setReferences(QStringLiteral("faces"), selected);
        f.addLength(QStringLiteral("thickness"), QStringLiteral("Thickness"),
                    QStringLiteral("How thick the walls are"), thickness);
        f.addChoice(QStringLiteral("direction"), QStringLiteral("Walls"),
                    QStringLiteral("Which way the walls grow from the body's faces"),
                    directionChoices(), QStringLiteral("inside"));
    };
    form.build = [&document](FeatureForm& f) -> Result<CommandRecord> {
        const std::vector<std::string>& faces = f.references(QStringLiteral("faces"));
        Result<std::string> body = bodyOfReferences(document, faces, "faces");
        if (!body) return Error(body);
        CommandRecord record("shell");
        record.set("body", body->c_str());
        record.set("faces", joinReferences(faces).c_str());
        if (auto ok = putLength(record, f, QStringLiteral("thickness")); !ok) return Error(ok);
        if (f.text(QStringLiteral("direction")) == QStringLiteral("outside"))
            record.set("direction", "outside");
        return record;
    };
    form.session = trialOnBody;
    return form;
}

FormDefinition editDressUpForm(const Document& document, const DressUpFeature& feature) {
    const auto* fillet = dynamic_cast<const FilletFeature*>(&feature);
    const auto* chamfer = dynamic_cast<const ChamferFeature*>(&feature);
    const auto* shell = dynamic_cast<const ShellFeature*>(&feature);
    const GeometryObject* owner = document.bodyOfFeature(feature.id);
    const std::string prefix = owner ? owner->id + "/" : std::string();
    std::vector<std::string> pieces = fillet    ? fillet->edges
                                      : chamfer ? chamfer->edges
                                      : shell   ? shell->faces
                                                : std::vector<std::string>();
    for (std::string& piece : pieces) piece = prefix + piece;
    const bool flag = fillet ? fillet->tangentChain : chamfer ? chamfer->tangentChain : false;
    const QString direction =
        shell && shell->outward ? QStringLiteral("outside") : QStringLiteral("inside");
    const std::string key(feature.valueKey());
    const QString valueKey = QString::fromStdString(key);
    const QString value = valueText(feature.expressions, key, feature.value(), document);
    const std::string id = feature.id;
    auto opening = std::make_shared<OpeningValues>();

    FormDefinition form;
    form.icon = shell     ? QStringLiteral("shell")
                : chamfer ? QStringLiteral("chamfer")
                          : QStringLiteral("fillet");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(feature.displayName()));
    if (!shell) form.objectName = QStringLiteral("filletPanel");
    const bool isShell = shell != nullptr;
    const bool isChamfer = chamfer != nullptr;
    form.setup = [pieces, flag, direction, valueKey, value, isShell, isChamfer,
                  opening](FeatureForm& f) {
        const QString piecesKey = isShell ? QStringLiteral("faces") : QStringLiteral("edges");
        f.addPick(piecesKey, isShell ? QStringLiteral("Open faces") : QStringLiteral("Edges"),
                  QStringLiteral("Chosen when it was made"), PickRule{});
        f.setReferences(piecesKey, pieces);
        f.setReadOnly(piecesKey, true);
        f.addLength(valueKey,
                    isShell     ? QStringLiteral("Thickness")
                    : isChamfer ? QStringLiteral("Distance")
                                : QStringLiteral("Radius"),
                    {}, value);
        if (isShell)
            f.addChoice(QStringLiteral("direction"), QStringLiteral("Walls"),
                        QStringLiteral("Which way the walls grow from the body's faces"),
                        directionChoices(), direction);
        else
            f.addFlag(QStringLiteral("tangent_chain"), QStringLiteral("Tangent chain"), kTangentTip,
                      flag);
        opening->take(f, {valueKey, QStringLiteral("direction"), QStringLiteral("tangent_chain")});
    };
    // The edit as far as the rows differ from the feature.
    auto changes = [id, valueKey, isShell, opening](const FeatureForm& f,
                                                    bool check) -> Result<CommandRecord> {
        CommandRecord record("edit_feature");
        record.set("feature", id.c_str());
        if (opening->differs(f, valueKey)) {
            if (check)
                if (Result<double> v = f.length(valueKey); !v) return Error(v);
            record.set(valueKey.toStdString(), f.text(valueKey).toStdString());
        }
        if (isShell && opening->differs(f, QStringLiteral("direction")))
            record.set("direction", f.text(QStringLiteral("direction")).toStdString());
        if (!isShell && opening->differs(f, QStringLiteral("tangent_chain")))
            record.set("tangent_chain", f.flag(QStringLiteral("tangent_chain")));
        return record;
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

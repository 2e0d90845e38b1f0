// The thread form's rows, its thread and edit_thread commands, and the size row
// that names the standard size matching the picked face.
#include "ui/forms/ThreadForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/holes/ThreadFeature.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/forms/ThreadSizeRows.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/LengthEdit.h"

#include <BRepAdaptor_Surface.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>

#include <QComboBox>

#include <algorithm>
#include <memory>

namespace cad::ui {

namespace {

const QString kFace = QStringLiteral("face");
const QString kMatch = QStringLiteral("Match the face");
const QString kSizeTip = QStringLiteral("A thread standard's size, or the one matching the face's "
                                        "diameter");

// A cylindrical face of a body as it is, or the sentence the thread command would give.
Result<std::string> roundFace(const Document& document, const std::string& reference) {
    const std::string head = geometry::objectPart(reference);
    if (!document.findAs<GeometryObject>(head) || reference.find('/') == std::string::npos)
        return fail(referenceLabel(document, reference).toStdString() +
                    " isn't part of a body: click a round face of one.");
    Result<geometry::ResolvedReference> resolved = geometry::resolveReference(document, reference);
    if (!resolved || resolved->shape.IsNull() || resolved->shape.ShapeType() != TopAbs_FACE)
        return fail(referenceLabel(document, reference).toStdString() + " isn't a face.");
    try {
        BRepAdaptor_Surface surface(TopoDS::Face(resolved->shape));
        if (surface.GetType() == GeomAbs_Cylinder) return reference;
    } catch (const Standard_Failure&) {}
    return fail(referenceLabel(document, reference).toStdString() +
                " isn't cylindrical; threads go on round faces.");
}

// "Match the face (M6)" once the face shows which size fits, on the body as the
// thread meets it (`before`; the body as it is when null).
void showMatch(FeatureForm& f, const Document& document, const geometry::NamedShape* before) {
    auto* standard = qobject_cast<QComboBox*>(f.editor(QStringLiteral("standard")));
    const std::vector<std::string>& face = f.references(kFace);
    QString text = kMatch;
    if (standard && !face.empty()) {
        const std::string head = geometry::objectPart(face.front());
        const auto* body = document.findAs<GeometryObject>(head);
        const geometry::NamedShape* shape = before ? before : body ? &body->shape : nullptr;
        try {
            if (shape && !shape->isNull())
                if (Result<ThreadLayout> layout =
                        layOutThread(*shape, face.front().substr(head.size() + 1), "", 0))
                    text = QStringLiteral("%1 (%2)").arg(
                        kMatch, QString::fromStdString(layout->size->name));
        } catch (const Standard_Failure&) {}
    }
    if (standard && standard->itemText(0) != text) standard->setItemText(0, text);
}

void addRows(FeatureForm& f, const PickRule& face, const QString& size, const QString& length,
             bool modeled) {
    f.addPick(kFace, QStringLiteral("Face"),
              QStringLiteral("The round face: a bolt or boss outside, a hole inside"), face);
    addThreadSizeRows(f, {QStringLiteral("match"), kMatch, kSizeTip}, size, kSizeTip);
    f.addLength(QStringLiteral("length"), QStringLiteral("Length"),
                QStringLiteral("From the free end"), length)
        ->setPlaceholderText(QStringLiteral("Whole face"));
    f.addFlag(QStringLiteral("modeled"), QStringLiteral("Modeled"),
              QStringLiteral("Cut a real helical thread instead of marking the face"), modeled);
}

} // namespace

FormDefinition threadForm(const Document& document, const std::vector<std::string>& selection) {
    std::vector<std::string> faces;
    for (const std::string& reference : selection)
        if (Result<std::string> kept = roundFace(document, reference); kept && faces.empty())
            faces.push_back(*kept);

    FormDefinition form;
    form.icon = QStringLiteral("thread");
    form.title = QStringLiteral("Thread");
    form.setup = [&document, faces](FeatureForm& f) {
        PickRule face;
        face.kinds = PickFace;
        face.multiple = false;
        face.prompt = QStringLiteral("Pick the round face to thread.");
        face.accept = [&document](const std::string& r) { return roundFace(document, r); };
        addRows(f, face, {}, {}, false);
        f.setReferences(kFace, faces);
    };
    form.changed = [&document](FeatureForm& f) { showMatch(f, document, nullptr); };
    form.build = [&document](FeatureForm& f) -> Result<CommandRecord> {
        const std::vector<std::string>& face = f.references(kFace);
        Result<std::string> body = bodyOfReferences(document, face, "a round face");
        if (!body) return Error(body);
        CommandRecord record("thread");
        record.set("body", body->c_str()).set("face", face.front().c_str());
        if (const QString size = chosenThreadSize(f); !size.isEmpty())
            record.set("size", size.toStdString());
        if (auto ok = putOptionalLength(record, f, QStringLiteral("length")); !ok) return Error(ok);
        if (f.flag(QStringLiteral("modeled"))) record.set("modeled", true);
        return record;
    };
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

FormDefinition editThreadForm(const Document& document, const ThreadFeature& feature) {
    const GeometryObject* body = document.bodyOfFeature(feature.id);
    const std::string face = (body ? body->id + "/" : std::string()) + feature.face;
    const QString size = QString::fromStdString(feature.size);
    const QString length = feature.length > 0 ? lengthText(feature.length, document) : QString();
    const bool modeled = feature.modeled;
    const std::string id = feature.id;
    auto opening = std::make_shared<OpeningValues>();
    const QStringList sizeRows{QStringLiteral("standard"), QStringLiteral("size_iso"),
                               QStringLiteral("size_unc"), QStringLiteral("size_unf")};

    FormDefinition form;
    form.icon = QStringLiteral("thread");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(feature.displayName()));
    form.setup = [face, size, length, modeled, opening, sizeRows](FeatureForm& f) {
        addRows(f, PickRule{}, size, length, modeled);
        f.setReferences(kFace, {face});
        f.setReadOnly(kFace, true);
        opening->take(f,
                      sizeRows + QStringList{QStringLiteral("length"), QStringLiteral("modeled")});
    };
    form.changed = [&document, id](FeatureForm& f) {
        showMatch(f, document, document.shapeBefore(id));
    };
    auto changes = [id, opening, sizeRows](const FeatureForm& f,
                                           bool check) -> Result<CommandRecord> {
        CommandRecord record("edit_thread");
        record.set("feature", id.c_str());
        if (std::any_of(sizeRows.begin(), sizeRows.end(), [&](const QString& row) {
                return f.isShown(row) && opening->differs(f, row);
            }))
            record.set("size", chosenThreadSize(f).toStdString());
        if (opening->differs(f, QStringLiteral("length"))) {
            if (f.text(QStringLiteral("length")).isEmpty())
                record.set("length", 0.0);
            else if (Result<double> v = f.length(QStringLiteral("length")); !v && check)
                return Error(v);
            else
                record.set("length", f.text(QStringLiteral("length")).toStdString());
        }
        if (opening->differs(f, QStringLiteral("modeled")))
            record.set("modeled", f.flag(QStringLiteral("modeled")));
        return record;
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

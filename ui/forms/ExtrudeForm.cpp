// The Extrude forms' rows, commands and previews. Lengths go into the command as
// typed, so an expression with parameter names keeps following the parameters.
#include "ui/forms/ExtrudeForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/ExtrudeFeature.h"
#include "geometry/References.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/presentation/ReferencePicker.h"

#include <BRepAdaptor_Surface.hxx>
#include <Standard_Failure.hxx>
#include <TopAbs_ShapeEnum.hxx>
#include <TopoDS.hxx>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

namespace cad::ui {

namespace {

const QString kProfilePrompt =
    QStringLiteral("Profile: click a closed region, a sketch or a flat face");

// The values the rows start with.
struct ExtrudeValues {
    std::vector<std::string> profile;
    QString distance, distance2, thickness;
    QString operation = QStringLiteral("new_body");
    QString extent = QStringLiteral("one_side");
    QString thinSide = QStringLiteral("inside");
    bool thin = false;
};

// The body a clicked face belongs to.
Result<std::string> bodyReference(const Document& document, const std::string& reference) {
    const std::string head = geometry::objectPart(reference);
    if (const auto* body = document.findAs<GeometryObject>(head)) return body->id;
    return fail(referenceLabel(document, reference).toStdString() +
                " isn't part of a body: click a face of the body to join or cut.");
}

void addRows(FeatureForm& form, const Document& document, const ExtrudeValues& values,
             const std::vector<FieldChoice>& operations, bool withTarget) {
    PickRule profile;
    profile.kinds = PickRegion | PickSketchEntity | PickFace;
    profile.prompt = kProfilePrompt;
    profile.accept = [&document](const std::string& r) { return profileReference(document, r); };
    form.addPick(QStringLiteral("sketch"), QStringLiteral("Profile"),
                 QStringLiteral("Closed regions, whole sketches or flat faces; click again to "
                                "drop one"),
                 profile);
    form.setReferences(QStringLiteral("sketch"), values.profile);
    form.addLength(QStringLiteral("distance"), QStringLiteral("Distance"),
                   QStringLiteral("How far to extrude; negative goes the other way"),
                   values.distance);
    form.addChoice(QStringLiteral("operation"), QStringLiteral("Operation"),
                   QStringLiteral("Make a new body, or join to or cut from a body"), operations,
                   values.operation);
    form.addChoice(QStringLiteral("extent"), QStringLiteral("Extent"),
                   QStringLiteral("Which way the extrusion goes from the profile"),
                   {{QStringLiteral("one_side"), QStringLiteral("One side"),
                     QStringLiteral("The distance from the profile")},
                    {QStringLiteral("two_sides"), QStringLiteral("Two sides"),
                     QStringLiteral("The distance one way, a second distance the other")},
                    {QStringLiteral("symmetric"), QStringLiteral("Symmetric"),
                     QStringLiteral("The distance in all, half each way")}},
                   values.extent);
    form.addLength(QStringLiteral("distance2"), QStringLiteral("Other side"),
                   QStringLiteral("Two sides: the distance the other way"), values.distance2);
    form.showWhen(QStringLiteral("distance2"), QStringLiteral("extent"),
                  {QStringLiteral("two_sides")});
    form.addFlag(QStringLiteral("thin"), QStringLiteral("Thin wall"),
                 QStringLiteral("A band along the profile's edges (open curves too) instead of "
                                "solid regions"),
                 values.thin);
    form.addLength(QStringLiteral("thickness"), QStringLiteral("Thickness"),
                   QStringLiteral("How thick the wall is"), values.thickness);
    form.addChoice(QStringLiteral("thin_side"), QStringLiteral("Wall side"),
                   QStringLiteral("Where the wall lies against the profile"),
                   {{QStringLiteral("inside"), QStringLiteral("Inside"),
                     QStringLiteral("Inside the regions (left of open curves)")},
                    {QStringLiteral("outside"), QStringLiteral("Outside"),
                     QStringLiteral("Outside the regions (right of open curves)")},
                    {QStringLiteral("center"), QStringLiteral("Centered"),
                     QStringLiteral("Centered on the curves")}},
                   values.thinSide);
    for (const char* key : {"thickness", "thin_side"})
        form.showWhen(QString::fromLatin1(key), QStringLiteral("thin"), {QStringLiteral("true")});
    if (!withTarget) return;
    PickRule target;
    target.kinds = PickFace;
    target.multiple = false;
    target.required = false;
    target.accept = [&document](const std::string& r) { return bodyReference(document, r); };
    form.addPick(QStringLiteral("target"), QStringLiteral("Body"),
                 QStringLiteral("The body to join or cut (default: the body the sketch sits on)"),
                 target);
    form.showWhen(QStringLiteral("target"), QStringLiteral("operation"),
                  {QStringLiteral("join"), QStringLiteral("cut")});
}

} // namespace

Result<std::string> profileReference(const Document& document, const std::string& reference) {
    const std::string head = geometry::objectPart(reference);
    const auto slash = reference.find('/');
    if (const auto* sketch = document.findAs<SketchObject>(head)) {
        // A region stays a region; a curve stands for all of its sketch's regions.
        if (reference.find("/Region(") != std::string::npos)
            return sketch->id + reference.substr(slash);
        return sketch->id;
    }
    if (document.findAs<GeometryObject>(head) && slash != std::string::npos) {
        Result<geometry::ResolvedReference> resolved =
            geometry::resolveReference(document, reference);
        if (resolved && !resolved->shape.IsNull() && resolved->shape.ShapeType() == TopAbs_FACE) {
            BRepAdaptor_Surface surface(TopoDS::Face(resolved->shape), false);
            if (surface.GetType() != GeomAbs_Plane) return fail("A face to extrude must be flat.");
            return reference;
        }
    }
    return fail("'" + reference +
                "' can't be a profile: use a sketch, a closed region of one, or a flat face.");
}

FormDefinition extrudeForm(const Document& document, const std::vector<std::string>& selection) {
    ExtrudeValues values;
    for (const std::string& reference : selection) {
        Result<std::string> profile = profileReference(document, reference);
        if (profile && std::find(values.profile.begin(), values.profile.end(), *profile) ==
                           values.profile.end())
            values.profile.push_back(*profile);
    }
    values.distance = lengthText(10, document);
    values.distance2 = lengthText(10, document);
    values.thickness = lengthText(2, document);

    FormDefinition form;
    form.icon = QStringLiteral("extrude");
    form.title = QStringLiteral("Extrude");
    form.setup = [&document, values](FeatureForm& f) {
        addRows(f, document, values,
                {{QStringLiteral("new_body"), QStringLiteral("New body"), {}},
                 {QStringLiteral("join"), QStringLiteral("Join"), {}},
                 {QStringLiteral("cut"), QStringLiteral("Cut"), {}}},
                true);
    };
    form.build = [](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record("extrude");
        const std::vector<std::string>& profile = f.references(QStringLiteral("sketch"));
        if (profile.empty()) return fail(kProfilePrompt.toStdString() + ".");
        record.set("sketch", joinReferences(profile));
        if (auto ok = putLength(record, f, QStringLiteral("distance")); !ok) return Error(ok);
        const QString operation = f.text(QStringLiteral("operation"));
        if (operation != QStringLiteral("new_body")) {
            record.set("operation", operation.toStdString());
            const std::vector<std::string>& target = f.references(QStringLiteral("target"));
            if (!target.empty()) record.set("target", target.front());
        }
        const QString extent = f.text(QStringLiteral("extent"));
        if (extent != QStringLiteral("one_side")) record.set("extent", extent.toStdString());
        if (extent == QStringLiteral("two_sides"))
            if (auto ok = putLength(record, f, QStringLiteral("distance2")); !ok) return Error(ok);
        if (f.flag(QStringLiteral("thin"))) {
            if (auto ok = putLength(record, f, QStringLiteral("thickness")); !ok) return Error(ok);
            record.set("thin_side", f.text(QStringLiteral("thin_side")).toStdString());
        }
        return record;
    };
    form.preview = [&document](FeatureForm& f) -> Result<FormPreview> {
        // The values are known to evaluate: build ran first.
        ExtrudeFeature feature;
        feature.id = document.nextId("Extrude");
        feature.profile = joinReferences(f.references(QStringLiteral("sketch")));
        feature.distance = f.length(QStringLiteral("distance")).value();
        feature.operation =
            *parseExtrudeOperation(f.text(QStringLiteral("operation")).toStdString());
        feature.extent = f.text(QStringLiteral("extent")).toStdString();
        if (feature.extent == "two_sides")
            feature.distance2 = f.length(QStringLiteral("distance2")).value();
        if (f.flag(QStringLiteral("thin"))) {
            feature.thickness = f.length(QStringLiteral("thickness")).value();
            feature.thinSide = f.text(QStringLiteral("thin_side")).toStdString();
        }
        try {
            Result<geometry::NamedShape> tool = feature.tool(document);
            if (!tool) return Error(tool);
            return FormPreview{tool->shape(), feature.operation == ExtrudeOperation::Cut};
        } catch (const Standard_Failure&) {
            return fail("The geometry kernel could not extrude a profile.");
        }
    };
    return form;
}

FormDefinition editExtrudeForm(const Document& document, const ExtrudeFeature& feature) {
    const auto textOf = [&](const char* key, double value) {
        return valueText(feature.expressions, key, value, document);
    };
    ExtrudeValues values;
    values.profile = geometry::splitReferenceList(feature.profile);
    values.distance = textOf("distance", feature.distance);
    values.distance2 =
        feature.distance2 > 0 ? textOf("distance2", feature.distance2) : lengthText(10, document);
    values.thin = feature.thickness > 0;
    values.thickness =
        values.thin ? textOf("thickness", feature.thickness) : lengthText(2, document);
    const std::string_view operation = extrudeOperationName(feature.operation);
    values.operation =
        QString::fromUtf8(operation.data(), static_cast<qsizetype>(operation.size()));
    values.extent = QString::fromStdString(feature.extent);
    values.thinSide = QString::fromStdString(feature.thinSide);

    // A new-body extrude stays one; join and cut can be swapped.
    std::vector<FieldChoice> operations;
    if (feature.operation == ExtrudeOperation::NewBody)
        operations = {{QStringLiteral("new_body"), QStringLiteral("New body"), {}}};
    else
        operations = {{QStringLiteral("join"), QStringLiteral("Join"), {}},
                      {QStringLiteral("cut"), QStringLiteral("Cut"), {}}};

    const std::string id = feature.id;
    // What the rows held when the form opened: only what differs goes into the edit.
    auto initial = std::make_shared<std::map<QString, QString>>();
    // The edit as far as the rows have changed; lengths are checked when `check` is set.
    auto changes = [id, initial](const FeatureForm& f, bool check) -> Result<CommandRecord> {
        const auto differs = [&](const char* key) {
            return f.text(QString::fromLatin1(key)) != initial->at(QString::fromLatin1(key));
        };
        CommandRecord record("edit_feature");
        record.set("feature", id);
        const auto length = [&](const char* key) -> Result<void> {
            if (check)
                if (Result<double> v = f.length(QString::fromLatin1(key)); !v) return Error(v);
            record.set(key, f.text(QString::fromLatin1(key)).toStdString());
            return {};
        };
        if (differs("distance"))
            if (auto ok = length("distance"); !ok) return Error(ok);
        if (differs("operation"))
            record.set("operation", f.text(QStringLiteral("operation")).toStdString());
        const bool twoSides = f.text(QStringLiteral("extent")) == QStringLiteral("two_sides");
        if (differs("extent")) record.set("extent", f.text(QStringLiteral("extent")).toStdString());
        if (twoSides && (differs("extent") || differs("distance2")))
            if (auto ok = length("distance2"); !ok) return Error(ok);
        const bool thin = f.flag(QStringLiteral("thin"));
        if (!thin && differs("thin")) record.set("thickness", 0.0);
        if (thin && (differs("thin") || differs("thickness")))
            if (auto ok = length("thickness"); !ok) return Error(ok);
        if (thin && (differs("thin") || differs("thin_side")))
            record.set("thin_side", f.text(QStringLiteral("thin_side")).toStdString());
        return record;
    };

    FormDefinition form;
    form.icon = QStringLiteral("extrude");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(feature.displayName()));
    form.setup = [&document, values, operations, initial](FeatureForm& f) {
        addRows(f, document, values, operations, false);
        // The profile can't be changed by an edit; it is shown for reference.
        f.setReadOnly(QStringLiteral("sketch"), true);
        if (operations.size() == 1) f.setReadOnly(QStringLiteral("operation"), true);
        for (const char* key :
             {"distance", "operation", "extent", "distance2", "thin", "thickness", "thin_side"})
            (*initial)[QString::fromLatin1(key)] = f.text(QString::fromLatin1(key));
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

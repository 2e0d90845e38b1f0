// The hole panel's rows, the hole and edit_hole commands they make, the sketch that
// clicked holes go on, and the preview of the solids the holes cut.
#include "ui/forms/HoleForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/HoleTool.h"
#include "geometry/holes/ThreadSizes.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/forms/HolePositions.h"
#include "ui/forms/ThreadSizeRows.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/LengthEdit.h"

#include <BRep_Builder.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS_Compound.hxx>

#include <algorithm>
#include <memory>

namespace cad::ui {

namespace {

const QString kPosition = QStringLiteral("position");
const QStringList kSized{QStringLiteral("iso"), QStringLiteral("unc"), QStringLiteral("unf")};

// The option rows, as their keys, for telling what an edit changed.
const QStringList kOptionRows =
    QStringLiteral("kind standard size_iso size_unc size_unf fit diameter through depth tip_angle "
                   "counterbore_diameter counterbore_depth countersink_diameter countersink_angle "
                   "modeled thread_length flip")
        .split(QLatin1Char(' '));

// What the option rows start with; empty optional rows take their value from the size.
struct HoleRows {
    QString kind = QStringLiteral("simple");
    QString size = QStringLiteral("M6"); // empty: a plain diameter
    QString fit = QStringLiteral("tapped");
    QString diameter, depth, tipAngle = QStringLiteral("118");
    bool through = false;
    QString counterboreDiameter, counterboreDepth, countersinkDiameter, countersinkAngle;
    QString threadLength;
    bool modeled = false, flip = false;
};

QString optionalLength(double millimetres, const Document& document) {
    return millimetres > 0 ? lengthText(millimetres, document) : QString();
}

QString numberText(double value) { return QString::fromStdString(formatGeneral(value)); }

void addOptional(FeatureForm& f, const QString& key, const QString& label, const QString& tooltip,
                 const QString& value, const QString& empty, bool number = false) {
    LengthEdit* edit =
        number ? f.addNumber(key, label, tooltip, value) : f.addLength(key, label, tooltip, value);
    edit->setPlaceholderText(empty);
}

void addKindRow(FeatureForm& f, const QString& kind) {
    f.addSegmented(QStringLiteral("kind"), {}, {},
                   {{QStringLiteral("simple"), QStringLiteral("Simple"),
                     QStringLiteral("A plain drilled hole")},
                    {QStringLiteral("counterbore"), QStringLiteral("Counterbore"),
                     QStringLiteral("A wider, flat-bottomed step for a screw head")},
                    {QStringLiteral("countersink"), QStringLiteral("Countersink"),
                     QStringLiteral("A cone for a flat screw head")}},
                   kind);
}

void addOptionRows(FeatureForm& f, const HoleRows& v) {
    addThreadSizeRows(f,
                      {QStringLiteral("diameter"), QStringLiteral("Diameter"),
                       QStringLiteral("A drill of the diameter given")},
                      v.size,
                      QStringLiteral("A thread standard sizes the hole, counterbore and "
                                     "countersink; or give a diameter"));
    f.addChoice(QStringLiteral("fit"), QStringLiteral("Fit"),
                QStringLiteral("Tapped: the tap drill, threaded; or a clearance hole for the size"),
                {{QStringLiteral("tapped"), QStringLiteral("Tapped"), {}},
                 {QStringLiteral("close"), QStringLiteral("Close clearance"), {}},
                 {QStringLiteral("normal"), QStringLiteral("Normal clearance"), {}},
                 {QStringLiteral("loose"), QStringLiteral("Loose clearance"), {}}},
                v.fit);
    f.showWhen(QStringLiteral("fit"), QStringLiteral("standard"), kSized);
    f.addLength(QStringLiteral("diameter"), QStringLiteral("Diameter"),
                QStringLiteral("The drill's diameter"), v.diameter);
    f.showWhen(QStringLiteral("diameter"), QStringLiteral("standard"),
               {QStringLiteral("diameter")});
    f.addFlag(QStringLiteral("through"), QStringLiteral("Through all"),
              QStringLiteral("Through everything along the axis"), v.through);
    f.addLength(QStringLiteral("depth"), QStringLiteral("Depth"),
                QStringLiteral("To the end of the full diameter"), v.depth);
    f.addNumber(QStringLiteral("tip_angle"), QStringLiteral("Drill point"),
                QStringLiteral("Included degrees; 0 gives a flat bottom"), v.tipAngle);
    for (const char* key : {"depth", "tip_angle"})
        f.showWhen(QString::fromLatin1(key), QStringLiteral("through"), {QStringLiteral("false")});
    const QString fromSize = QStringLiteral("From the size");
    addOptional(f, QStringLiteral("counterbore_diameter"), QStringLiteral("Bore diameter"), {},
                v.counterboreDiameter, fromSize);
    addOptional(f, QStringLiteral("counterbore_depth"), QStringLiteral("Bore depth"), {},
                v.counterboreDepth, fromSize);
    addOptional(f, QStringLiteral("countersink_diameter"), QStringLiteral("Sink diameter"), {},
                v.countersinkDiameter, fromSize);
    addOptional(f, QStringLiteral("countersink_angle"), QStringLiteral("Sink angle"),
                QStringLiteral("Included degrees"), v.countersinkAngle, fromSize, true);
    for (const char* key : {"counterbore_diameter", "counterbore_depth"})
        f.showWhen(QString::fromLatin1(key), QStringLiteral("kind"),
                   {QStringLiteral("counterbore")});
    for (const char* key : {"countersink_diameter", "countersink_angle"})
        f.showWhen(QString::fromLatin1(key), QStringLiteral("kind"),
                   {QStringLiteral("countersink")});
    f.addFlag(QStringLiteral("modeled"), QStringLiteral("Modeled thread"),
              QStringLiteral("Cut a real helical thread instead of a cosmetic one"), v.modeled);
    addOptional(f, QStringLiteral("thread_length"), QStringLiteral("Thread length"), {},
                v.threadLength, QStringLiteral("Full depth"));
    for (const char* key : {"modeled", "thread_length"}) {
        f.showWhen(QString::fromLatin1(key), QStringLiteral("standard"), kSized);
        f.showWhen(QString::fromLatin1(key), QStringLiteral("fit"), {QStringLiteral("tapped")});
    }
    f.addFlag(QStringLiteral("flip"), QStringLiteral("Flip"),
              QStringLiteral("Drill along the sketch's normal instead of into the face"), v.flip);
}

// Reads the option rows that apply into the command (as typed) and into the options
// they come to. A new hole leaves out what is at its default; an edit (`edit`) says
// everything, with 0 for an emptied "from the size" row.
Result<HoleOptions> readOptionRows(const FeatureForm& f, CommandRecord& record, bool edit) {
    HoleOptions o;
    const auto value = [&](const char* key, double& out, bool optional) -> Result<void> {
        const QString k = QString::fromLatin1(key);
        if (optional && f.text(k).isEmpty()) {
            out = 0;
            if (edit) record.set(key, 0.0);
            return {};
        }
        Result<double> v = f.length(k);
        if (!v) return Error(v);
        out = *v;
        record.set(key, f.text(k).toStdString());
        return {};
    };
    o.kind = f.text(QStringLiteral("kind")).toStdString();
    if (edit || o.kind != "simple") record.set("kind", o.kind.c_str());
    o.size = chosenThreadSize(f).toStdString();
    if (!o.size.empty()) {
        o.fit = f.text(QStringLiteral("fit")).toStdString();
        record.set("size", o.size.c_str()).set("fit", o.fit.c_str());
    } else if (auto ok = value("diameter", o.diameter, false); !ok) {
        return Error(ok);
    }
    o.through = f.flag(QStringLiteral("through"));
    if (o.through || edit) record.set("through", o.through);
    if (!o.through) {
        if (auto ok = value("depth", o.depth, false); !ok) return Error(ok);
        if (edit || f.text(QStringLiteral("tip_angle")) != QStringLiteral("118"))
            if (auto ok = value("tip_angle", o.tipAngle, false); !ok) return Error(ok);
    }
    if (o.kind == "counterbore")
        for (auto [key, out] : {std::pair{"counterbore_diameter", &o.counterboreDiameter},
                                std::pair{"counterbore_depth", &o.counterboreDepth}})
            if (auto ok = value(key, *out, true); !ok) return Error(ok);
    if (o.kind == "countersink")
        for (auto [key, out] : {std::pair{"countersink_diameter", &o.countersinkDiameter},
                                std::pair{"countersink_angle", &o.countersinkAngle}})
            if (auto ok = value(key, *out, true); !ok) return Error(ok);
    if (!o.size.empty() && o.fit == "tapped") {
        o.modeled = f.flag(QStringLiteral("modeled"));
        if (o.modeled || edit) record.set("modeled", o.modeled);
        if (auto ok = value("thread_length", o.threadLength, true); !ok) return Error(ok);
    }
    if (f.flag(QStringLiteral("flip")) || edit) record.set("flip", f.flag(QStringLiteral("flip")));
    return o;
}

// The body a hole panel drills: the target picked, the clicked face's, or the one
// the sketch sits on.
std::string drilledBody(const Document& document, const FeatureForm& f,
                        const HolePlacement& placement) {
    if (!placement.face.empty()) return geometry::objectPart(placement.face);
    const std::vector<std::string>& target = f.references(QStringLiteral("target"));
    if (!target.empty()) return target.front();
    const auto* sketch = document.findAs<SketchObject>(placement.sketch);
    const std::string support = sketch ? geometry::objectPart(sketch->support) : std::string();
    return document.findAs<GeometryObject>(support) ? support : std::string();
}

// The solids the holes would cut, without a modeled thread's ridge (too slow to
// follow typing; the edit's trial shows it).
Result<FormPreview> previewHoles(const Document& document, const FeatureForm& f) {
    Result<HolePlacement> placement = readHolePositions(document, f.references(kPosition));
    if (!placement) return Error(placement);
    CommandRecord ignored("hole");
    Result<HoleOptions> options = readOptionRows(f, ignored, false);
    if (!options) return Error(options);
    Result<ResolvedHole> drill = resolveHole(*options);
    if (!drill) return Error(drill);
    if (auto ok = checkResolvedHole(*drill); !ok) return Error(ok);
    Result<std::vector<gp_Ax1>> axes =
        holeAxes(document, *placement, f.flag(QStringLiteral("flip")));
    if (!axes) return Error(axes);
    const auto* body = document.findAs<GeometryObject>(drilledBody(document, f, *placement));
    try {
        BRep_Builder builder;
        TopoDS_Compound tools;
        builder.MakeCompound(tools);
        for (const gp_Ax1& axis : *axes) {
            const double depth = drill->through && body && !body->shape.isNull()
                                     ? throughDepth(body->shape.shape(), axis, *drill)
                                     : drill->depth;
            Result<geometry::NamedShape> tool = holeTool(*drill, axis, depth, "Hole");
            if (!tool) return Error(tool);
            builder.Add(tools, tool->shape());
        }
        return FormPreview{tools, true};
    } catch (const Standard_Failure&) {
        return fail("The hole's shape couldn't be built; check its sizes.");
    }
}

PickRule positionRule(const Document& document) {
    PickRule rule;
    rule.kinds = PickSketchEntity | PickFace;
    rule.prompt = QStringLiteral("Pick where the holes go: a sketch's points, or click a flat "
                                 "face.");
    rule.accept = [&document](const std::string& r) { return holePosition(document, r); };
    rule.acceptAt = [&document](const std::string& r, const std::array<double, 3>& at) {
        return holePositionAt(document, r, at);
    };
    rule.label = [&document](const std::string& r) { return holePositionLabel(document, r); };
    return rule;
}

} // namespace

FormDefinition holeForm(const Document& document, const std::vector<std::string>& selection) {
    std::vector<std::string> positions;
    for (const std::string& reference : selection)
        if (Result<std::string> kept = holePosition(document, reference);
            kept && std::find(positions.begin(), positions.end(), *kept) == positions.end())
            positions.push_back(*kept);
    HoleRows rows;
    rows.diameter = lengthText(6, document);
    rows.depth = lengthText(10, document);

    FormDefinition form;
    form.icon = QStringLiteral("hole");
    form.title = QStringLiteral("Hole");
    form.objectName = QStringLiteral("holePanel");
    form.setup = [&document, positions, rows](FeatureForm& f) {
        addKindRow(f, rows.kind);
        f.addPick(kPosition, QStringLiteral("Position"),
                  QStringLiteral("A sketch's points or circles (click them, or select the sketch "
                                 "first), or clicks on a flat face; a second click drops one"),
                  positionRule(document));
        f.setReferences(kPosition, positions);
        addOptionRows(f, rows);
        PickRule target;
        target.kinds = PickFace;
        target.multiple = false;
        target.required = false;
        target.accept = [&document](const std::string& r) {
            return bodyOfReferences(document, {r}, "a face");
        };
        f.addPick(QStringLiteral("target"), QStringLiteral("Body"),
                  QStringLiteral("The body to drill (default: the one the sketch is on)"), target);
    };
    form.build = [&document](FeatureForm& f) -> Result<CommandRecord> {
        Result<HolePlacement> placement = readHolePositions(document, f.references(kPosition));
        if (!placement) return Error(placement);
        CommandRecord record("hole");
        if (!placement->face.empty()) {
            std::string sketch;
            if (auto made = faceSketchCommands(document, *placement, sketch); !made)
                return Error(made);
            record.set("sketch", sketch.c_str());
        } else {
            record.set("sketch", placement->sketch.c_str());
            if (!placement->points.empty())
                record.set("points", joinReferences(placement->points).c_str());
            const std::vector<std::string>& target = f.references(QStringLiteral("target"));
            if (!target.empty())
                record.set("target", target.front().c_str());
            else if (drilledBody(document, f, *placement).empty())
                return fail("Holes need a body: give a target, or sketch on the body's face.");
        }
        if (Result<HoleOptions> options = readOptionRows(f, record, false); !options)
            return Error(options);
        return record;
    };
    form.before = [&document](FeatureForm& f) -> Result<std::vector<CommandRecord>> {
        Result<HolePlacement> placement = readHolePositions(document, f.references(kPosition));
        if (!placement) return Error(placement);
        if (placement->face.empty()) return std::vector<CommandRecord>();
        std::string sketch;
        return faceSketchCommands(document, *placement, sketch);
    };
    form.preview = [&document](FeatureForm& f) { return previewHoles(document, f); };
    return form;
}

FormDefinition editHoleForm(const Document& document, const HoleFeature& feature) {
    const HoleOptions& o = feature.options;
    HoleRows rows;
    rows.kind = QString::fromStdString(o.kind);
    const ThreadSize* size = o.size.empty() ? nullptr : findThreadSize(o.size);
    rows.size = size ? QString::fromStdString(size->name) : QString();
    rows.fit = QString::fromStdString(o.fit);
    rows.diameter = lengthText(o.diameter > 0 ? o.diameter : 6, document);
    rows.depth = lengthText(o.depth, document);
    rows.tipAngle = numberText(o.tipAngle);
    rows.through = o.through;
    rows.counterboreDiameter = optionalLength(o.counterboreDiameter, document);
    rows.counterboreDepth = optionalLength(o.counterboreDepth, document);
    rows.countersinkDiameter = optionalLength(o.countersinkDiameter, document);
    rows.countersinkAngle = o.countersinkAngle > 0 ? numberText(o.countersinkAngle) : QString();
    rows.threadLength = optionalLength(o.threadLength, document);
    rows.modeled = o.modeled;
    rows.flip = feature.flip;
    std::vector<std::string> positions;
    for (const std::string& point : feature.points)
        positions.push_back(feature.sketch + "/" + point);
    if (positions.empty()) positions.push_back(feature.sketch);

    const std::string id = feature.id;
    auto opening = std::make_shared<OpeningValues>();
    FormDefinition form;
    form.icon = QStringLiteral("hole");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(feature.displayName()));
    form.objectName = QStringLiteral("holePanel");
    form.setup = [&document, rows, positions, opening](FeatureForm& f) {
        addKindRow(f, rows.kind);
        f.addPick(kPosition, QStringLiteral("Position"), QStringLiteral("Chosen when it was made"),
                  positionRule(document));
        f.setReferences(kPosition, positions);
        f.setReadOnly(kPosition, true);
        addOptionRows(f, rows);
        opening->take(f, kOptionRows);
    };
    // Which rows stand behind each value of the command.
    const auto rowsOf = [](const std::string& key) -> QStringList {
        if (key == "size" || key == "fit")
            return {QStringLiteral("standard"), QStringLiteral("size_iso"),
                    QStringLiteral("size_unc"), QStringLiteral("size_unf"), QStringLiteral("fit")};
        if (key == "diameter") return {QStringLiteral("standard"), QStringLiteral("diameter")};
        return {QString::fromStdString(key)};
    };
    form.complete = [opening](FeatureForm& f) {
        for (const QString& key : kOptionRows)
            if (f.isShown(key) && opening->differs(f, key)) return true;
        return false;
    };
    form.build = [id, opening, rowsOf](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord all("edit_hole");
        if (Result<HoleOptions> options = readOptionRows(f, all, true); !options)
            return Error(options);
        CommandRecord record("edit_hole");
        record.set("feature", id.c_str());
        for (const auto& [key, value] : all.arguments) {
            const QStringList behind = rowsOf(key);
            if (std::any_of(behind.begin(), behind.end(),
                            [&](const QString& row) { return opening->differs(f, row); }))
                record.set(key, value);
        }
        if (record.arguments.size() == 1) return fail("edit_hole: nothing to change.");
        return record;
    };
    form.session = [id](FeatureForm&) { return std::optional(FormSession::Handle{id}); };
    return form;
}

} // namespace cad::ui

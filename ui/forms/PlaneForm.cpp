// The Reference Plane form's kinds and their pick rows, the add_plane and edit_plane
// commands it builds (references in the order the kind takes them), and the kind a
// selection starts it on.
#include "ui/forms/PlaneForm.h"

#include "core/Document.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/planes/PlaneObject.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/forms/ParamFeatureForm.h"

#include <functional>
#include <map>
#include <memory>
#include <string_view>

namespace cad::ui {

namespace {

using Pick = FeatureArgument::Pick;
using Kind = FeatureArgument::Kind;

constexpr std::uint32_t kPlanes = Pick::Planes | Pick::Faces;
constexpr std::uint32_t kLines = Pick::Edges | Pick::SketchCurves | Pick::Axes;
constexpr std::uint32_t kPoints = Pick::Vertices;

// A pick row of one kind; the kind takes the rows' references in this order.
struct PickRow {
    const char* key;
    const char* label;
    const char* tip;
    std::uint32_t picks;
    bool required;
    const char* prompt;
};

struct PlaneKind {
    const char* word;
    const char* text;
    std::vector<PickRow> rows;
};

const std::vector<PlaneKind>& planeKindRows() {
    static const std::vector<PlaneKind> kinds = {
        {"offset",
         "Offset",
         {{"off_ref", "From", "A plane or flat face", kPlanes, true,
           "Pick the plane or flat face to start from."}}},
        {"angle",
         "At an angle",
         {{"ang_line", "Hinge", "The line it turns about", kLines, true,
           "Pick the line it turns about."},
          {"ang_ref", "Measured from", "The plane the angle is measured from (optional)", kPlanes,
           false, ""}}},
        {"midplane",
         "Midway",
         {{"mid_a", "First", "A plane or flat face", kPlanes, true,
           "Pick the first plane or flat face."},
          {"mid_b", "Second", "A plane or flat face", kPlanes, true,
           "Pick the second plane or flat face."}}},
        {"three_points",
         "Three points",
         {{"point1", "Point 1", "A sketch point, a vertex or the origin", kPoints, true,
           "Pick the first point."},
          {"point2", "Point 2", "A sketch point, a vertex or the origin", kPoints, true,
           "Pick the second point."},
          {"point3", "Point 3", "A sketch point, a vertex or the origin", kPoints, true,
           "Pick the third point."}}},
        {"through",
         "Through a line",
         {{"thr_line", "Line", "The line the plane contains", kLines, true, "Pick the line."},
          {"thr_other", "Second", "A second line, or a point", kLines | kPoints, true,
           "Pick a second line, or a point."}}},
        {"tangent",
         "Tangent",
         {{"tan_face", "Face", "A cylinder or sphere face", Pick::Faces, true,
           "Pick the cylinder or sphere face."},
          {"tan_point", "Point", "Touch at this point (optional; else at the angle)", kPoints,
           false, ""}}},
        {"normal",
         "Normal to a curve",
         {{"nor_curve", "Curve", "An edge or sketch curve", Pick::Edges | Pick::SketchCurves, true,
           "Pick the curve."},
          {"nor_point", "Point", "At this point (optional; else at the position)", kPoints, false,
           ""}}},
    };
    return kinds;
}

const PlaneKind* findKind(const QString& word) {
    for (const PlaneKind& kind : planeKindRows())
        if (word == QLatin1String(kind.word)) return &kind;
    return nullptr;
}

// The value rows, as arguments, so they go into the commands as the feature rows do.
FeatureArgument distanceRow() {
    return {"Distance", "Along the reference's normal; negative: the other side",
            "distance", Kind::Length,
            false,      {},
            0.0,        ""};
}
FeatureArgument angleRow() {
    return {"Angle", "Degrees", "angle", Kind::Angle, false, {}, 0.0, ""};
}
FeatureArgument positionRow() {
    return {"Position", "0 at the curve's start, 1 at its end",
            "position", Kind::Number,
            false,      {},
            0.0,        ""};
}
FeatureArgument flipRow() {
    return {"Flip", "Reverse the normal", "flip", Kind::Bool, false, {}, false, ""};
}

// The kind whose rows the whole selection fills, every required one included.
struct Start {
    QString kind = QStringLiteral("offset");
    std::map<QString, std::vector<std::string>> picks;
};

Start startFrom(const Document& document, const std::vector<std::string>& selection) {
    Start start;
    for (const PlaneKind& kind : planeKindRows()) {
        std::vector<PickSlot> pickSlots;
        for (const PickRow& row : kind.rows)
            pickSlots.push_back({QString::fromLatin1(row.key), row.picks, false});
        auto picks = fillFromSelection(document, pickSlots, selection);
        if (kind.word == std::string_view("offset")) start.picks = picks;
        bool filled = picks.size() == selection.size();
        for (const PickRow& row : kind.rows)
            if (row.required && !picks.count(QString::fromLatin1(row.key))) filled = false;
        if (filled && !selection.empty()) {
            start.kind = QString::fromLatin1(kind.word);
            start.picks = std::move(picks);
            break;
        }
    }
    return start;
}

void addRows(FeatureForm& f, const Document& document) {
    std::vector<FieldChoice> kinds;
    for (const PlaneKind& kind : planeKindRows())
        kinds.push_back({QString::fromLatin1(kind.word), QString::fromLatin1(kind.text), {}});
    f.addChoice(QStringLiteral("kind"), QStringLiteral("Type"), {}, kinds,
                QStringLiteral("offset"));
    for (const PlaneKind& kind : planeKindRows())
        for (const PickRow& row : kind.rows) {
            const QString key = QString::fromLatin1(row.key);
            const QString label = QString::fromLatin1(row.label);
            f.addPick(key, label, QString::fromLatin1(row.tip),
                      pickRuleFor(document, row.picks, label.toLower(), false, row.required,
                                  QString::fromLatin1(row.prompt)));
            f.showWhen(key, QStringLiteral("kind"), {QString::fromLatin1(kind.word)});
        }
    for (const FeatureArgument& value : {distanceRow(), angleRow(), positionRow(), flipRow()})
        addArgumentRow(f, document, value);
    f.showWhen(QStringLiteral("distance"), QStringLiteral("kind"), {QStringLiteral("offset")});
    f.showWhen(QStringLiteral("angle"), QStringLiteral("kind"),
               {QStringLiteral("angle"), QStringLiteral("tangent")});
    f.showWhen(QStringLiteral("position"), QStringLiteral("kind"), {QStringLiteral("normal")});
}

// The references of the chosen kind, in its order; optional rows left empty are left out.
std::vector<std::string> kindReferences(const FeatureForm& f, const PlaneKind& kind) {
    std::vector<std::string> references;
    for (const PickRow& row : kind.rows) {
        const std::vector<std::string>& picked = f.references(QString::fromLatin1(row.key));
        references.insert(references.end(), picked.begin(), picked.end());
    }
    return references;
}

const QStringList kValueKeys{QStringLiteral("distance"), QStringLiteral("angle"),
                             QStringLiteral("position"), QStringLiteral("flip")};

// The value rows shown and wanted into the record; a new plane leaves out values at
// their defaults, except an offset's distance, which is the point of it.
Result<void> putValues(CommandRecord& record, const FeatureForm& f, bool isNew,
                       const std::function<bool(const QString&)>& wanted) {
    for (const FeatureArgument& value : {distanceRow(), angleRow(), positionRow(), flipRow()}) {
        const QString key = QString::fromStdString(value.key);
        if (!f.isShown(key) || !wanted(key)) continue;
        const bool skipDefault = isNew && value.key != "distance";
        if (Result<void> ok = putArgument(record, f, value, skipDefault); !ok) return ok;
    }
    return {};
}

} // namespace

FormDefinition planeForm(const Document& document, const std::vector<std::string>& selection) {
    const Start start = startFrom(document, selection);

    FormDefinition form;
    form.icon = QStringLiteral("plane");
    form.title = QStringLiteral("Reference Plane");
    form.setup = [&document, start](FeatureForm& f) {
        addRows(f, document);
        f.setText(QStringLiteral("distance"), lengthText(10, document));
        f.setText(QStringLiteral("kind"), start.kind);
        for (const auto& [key, references] : start.picks) f.setReferences(key, references);
    };
    form.build = [](FeatureForm& f) -> Result<CommandRecord> {
        const PlaneKind* kind = findKind(f.text(QStringLiteral("kind")));
        if (!kind) return fail("Pick the kind of plane.");
        CommandRecord record("add_plane");
        record.set("kind", kind->word);
        record.set("references", joinReferences(kindReferences(f, *kind)));
        const auto wanted = [](const QString&) { return true; };
        if (Result<void> ok = putValues(record, f, true, wanted); !ok) return Error(ok);
        return record;
    };
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

FormDefinition editPlaneForm(const Document& document, const PlaneObject& plane) {
    const PlaneDefinition definition = plane.definition;
    const std::string id = plane.id;
    auto opening = std::make_shared<OpeningValues>();
    QStringList pickKeys;
    for (const PlaneKind& kind : planeKindRows())
        for (const PickRow& row : kind.rows) pickKeys << QString::fromLatin1(row.key);

    FormDefinition form;
    form.icon = QStringLiteral("plane");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(plane.displayName()));
    form.setup = [&document, definition, opening, pickKeys](FeatureForm& f) {
        addRows(f, document);
        const QString word = QString::fromStdString(definition.kind);
        f.setText(QStringLiteral("kind"), word);
        // The references fill the kind's rows in the order it takes them.
        if (const PlaneKind* kind = findKind(word)) {
            std::size_t next = 0;
            for (const PickRow& row : kind->rows)
                if (next < definition.references.size())
                    f.setReferences(QString::fromLatin1(row.key), {definition.references[next++]});
        }
        f.setText(QStringLiteral("distance"), lengthText(definition.distance, document));
        f.setText(QStringLiteral("angle"), plainNumberText(definition.angle));
        f.setText(QStringLiteral("position"), plainNumberText(definition.position));
        f.setFlag(QStringLiteral("flip"), definition.flip);
        opening->take(f, QStringList{QStringLiteral("kind")} + pickKeys + kValueKeys);
    };
    auto changes = [id, opening, pickKeys](const FeatureForm& f,
                                           bool check) -> Result<CommandRecord> {
        CommandRecord record("edit_plane");
        record.set("plane", id);
        const PlaneKind* kind = findKind(f.text(QStringLiteral("kind")));
        if (!kind) return fail("Pick the kind of plane.");
        const bool newKind = opening->differs(f, QStringLiteral("kind"));
        if (newKind) record.set("kind", kind->word);
        bool moved = newKind;
        for (const PickRow& row : kind->rows)
            moved = moved || opening->differs(f, QString::fromLatin1(row.key));
        if (moved) record.set("references", joinReferences(kindReferences(f, *kind)));
        const auto wanted = [&](const QString& key) { return opening->differs(f, key); };
        if (!check) {
            for (const QString& key : kValueKeys)
                if (f.isShown(key) && wanted(key)) record.set(key.toStdString(), true);
            return record;
        }
        if (Result<void> ok = putValues(record, f, false, wanted); !ok) return Error(ok);
        return record;
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

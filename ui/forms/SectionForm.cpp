// The Section Analysis form's rows and the add_section and edit_section commands
// it builds from them.
#include "ui/forms/SectionForm.h"

#include "core/Document.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/planes/SectionObject.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/forms/ParamFeatureForm.h"

#include <memory>

namespace cad::ui {

namespace {

using Kind = FeatureArgument::Kind;

const QString kFrom = QStringLiteral("from");
constexpr std::uint32_t kPlanes = FeatureArgument::Planes | FeatureArgument::Faces;

// The value rows, as arguments, so they go into the commands as the feature rows do.
const FeatureArguments& valueRows() {
    static const FeatureArguments rows = {
        {"Distance",
         "Moves the cut along the plane's normal",
         "distance",
         Kind::Length,
         false,
         {},
         0.0,
         ""},
        {"Tilt",
         "Leans the cut about the plane's X direction",
         "tilt",
         Kind::Angle,
         false,
         {},
         0.0,
         ""},
        {"Turn",
         "Leans the cut about the plane's Y direction",
         "turn",
         Kind::Angle,
         false,
         {},
         0.0,
         ""},
        {"Flip", "Cut away the other side", "flip", Kind::Bool, false, {}, false, ""},
    };
    return rows;
}

void addRows(FeatureForm& f, const Document& document) {
    f.addPick(kFrom, QStringLiteral("Plane"), QStringLiteral("A plane or flat face to cut along"),
              pickRuleFor(document, kPlanes, QStringLiteral("plane"), false, true,
                          QStringLiteral("Pick the plane or flat face to cut along.")));
    for (const FeatureArgument& value : valueRows()) addArgumentRow(f, document, value);
}

} // namespace

FormDefinition sectionForm(const Document& document, const std::vector<std::string>& selection) {
    const auto start = fillFromSelection(document, {{kFrom, kPlanes, false}}, selection);

    FormDefinition form;
    form.icon = QStringLiteral("section");
    form.title = QStringLiteral("Section Analysis");
    form.setup = [&document, start](FeatureForm& f) {
        addRows(f, document);
        for (const auto& [key, references] : start) f.setReferences(key, references);
    };
    form.build = [](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record("add_section");
        record.set("references", joinReferences(f.references(kFrom)));
        for (const FeatureArgument& value : valueRows())
            if (Result<void> ok = putArgument(record, f, value, true); !ok) return Error(ok);
        return record;
    };
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

FormDefinition editSectionForm(const Document& document, const SectionObject& section) {
    const SectionDefinition definition = section.definition;
    const std::string id = section.id;
    auto opening = std::make_shared<OpeningValues>();
    QStringList keys{kFrom};
    for (const FeatureArgument& value : valueRows()) keys << QString::fromStdString(value.key);

    FormDefinition form;
    form.icon = QStringLiteral("section");
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(section.displayName()));
    form.setup = [&document, definition, opening, keys](FeatureForm& f) {
        addRows(f, document);
        f.setReferences(kFrom, definition.references);
        f.setText(QStringLiteral("distance"), lengthText(definition.distance, document));
        f.setText(QStringLiteral("tilt"), plainNumberText(definition.tilt));
        f.setText(QStringLiteral("turn"), plainNumberText(definition.turn));
        f.setFlag(QStringLiteral("flip"), definition.flip);
        opening->take(f, keys);
    };
    auto changes = [id, opening](const FeatureForm& f, bool check) -> Result<CommandRecord> {
        CommandRecord record("edit_section");
        record.set("section", id);
        if (opening->differs(f, kFrom))
            record.set("references", joinReferences(f.references(kFrom)));
        for (const FeatureArgument& value : valueRows()) {
            if (!opening->differs(f, QString::fromStdString(value.key))) continue;
            if (!check)
                record.set(value.key, true);
            else if (Result<void> ok = putArgument(record, f, value, false); !ok)
                return Error(ok);
        }
        return record;
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

// The pattern forms' rows for each layout, the commands they build for features or
// bodies, and the edits of an existing pattern feature or pattern set.
#include "ui/forms/PatternForms.h"

#include "core/Document.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/PatternSetObject.h"
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

using Kind = FeatureArgument::Kind;
using Pick = FeatureArgument::Pick;

const QString kWhat = QStringLiteral("what");
const QString kFeatures = QStringLiteral("features");
const QString kBodies = QStringLiteral("bodies");
constexpr std::uint32_t kLines = Pick::Axes | Pick::Edges | Pick::SketchCurves;

struct PatternKind {
    const char* word;    // the pattern word of pattern_bodies
    const char* typeId;  // the feature pattern's kind
    const char* command; // the feature pattern's command
    const char* title;
    const char* icon;
};

const PatternKind kKinds[] = {
    {"rectangular", "RectangularPattern", "pattern_rectangular", "Rectangular Pattern",
     "pattern-rect"},
    {"circular", "CircularPattern", "pattern_circular", "Circular Pattern", "pattern-circ"},
    {"path", "PathPattern", "pattern_path", "Path Pattern", "pattern-path"},
};

const PatternKind* kindWhere(const std::function<bool(const PatternKind&)>& test) {
    for (const PatternKind& kind : kKinds)
        if (test(kind)) return &kind;
    return nullptr;
}

// A layout row: the argument it fills, as both commands read it; a pick row of a
// path takes several curves, the others one reference.
struct LayoutRow {
    FeatureArgument argument;
    bool several = false;
};

FeatureArgument countRow(const char* tip) {
    return {"Count", tip, "count", Kind::Integer, false, {}, 2, ""};
}

std::vector<LayoutRow> layoutRows(std::string_view word) {
    if (word == "circular")
        return {
            {{"Axis",
              "The axis to turn about: X, Y, Z, an edge, a sketch line or an extracted axis",
              "axis",
              Kind::References,
              true,
              {},
              {},
              "",
              kLines}},
            {countRow("Copies, the original included")},
            {{"Angle",
              "Spread over this many degrees (360: evenly all round)",
              "angle",
              Kind::Angle,
              false,
              {},
              360.0,
              ""}},
        };
    if (word == "path")
        return {
            {{"Path",
              "Edges or sketch curves joined end to end",
              "path",
              Kind::References,
              true,
              {},
              {},
              "",
              Pick::SketchCurves | Pick::Edges},
             true},
            {countRow("Copies, the original included")},
            {{"Spacing",
              "Along the path; 0 spreads the copies over all of it",
              "spacing",
              Kind::Length,
              false,
              {},
              0.0,
              ""}},
            {{"Follow path",
              "Copies turn with the path",
              "follow",
              Kind::Bool,
              false,
              {},
              true,
              ""}},
        };
    return {
        {{"Direction",
          "An axis, straight edge or sketch line",
          "direction",
          Kind::References,
          true,
          {},
          {},
          "",
          kLines}},
        {countRow("Copies along it, the original included")},
        {{"Spacing",
          "Between copies; negative goes the other way",
          "spacing",
          Kind::Length,
          true,
          {},
          {},
          ""}},
        {{"Second direction",
          "For a grid: a second direction",
          "direction2",
          Kind::References,
          false,
          {},
          {},
          "",
          kLines}},
        {{"Second count",
          "Copies along the second direction",
          "count2",
          Kind::Integer,
          false,
          {},
          1,
          ""}},
        {{"Second spacing",
          "Between copies along the second direction",
          "spacing2",
          Kind::Length,
          false,
          {},
          {},
          ""}},
    };
}

QString keyOf(const LayoutRow& row) { return QString::fromStdString(row.argument.key); }

void addRows(FeatureForm& f, const Document& document, const PatternKind& kind, bool bodies) {
    f.addSegmented(
        kWhat, {}, QStringLiteral("Features: repeated within their body. Bodies: a body per copy."),
        {{kFeatures, QStringLiteral("Features"), QStringLiteral("Click a face a feature made")},
         {kBodies, QStringLiteral("Bodies"),
          QStringLiteral("Each copy becomes a body of its own")}},
        bodies ? kBodies : kFeatures);
    f.addPick(
        kFeatures, QStringLiteral("Features"),
        QStringLiteral("The features to repeat; click a face each made"),
        pickRuleFor(document, Pick::Features, QStringLiteral("features"), true, true,
                    QStringLiteral("Pick the features to pattern (click a face each made).")));
    f.showWhen(kFeatures, kWhat, {kFeatures});
    f.addPick(kBodies, QStringLiteral("Bodies"),
              QStringLiteral("The bodies to repeat; click again to drop one"),
              pickRuleFor(document, Pick::Bodies, QStringLiteral("bodies"), true, true,
                          QStringLiteral("Pick the bodies to pattern.")));
    f.showWhen(kBodies, kWhat, {kBodies});
    for (const LayoutRow& row : layoutRows(kind.word)) {
        const FeatureArgument& a = row.argument;
        if (a.kind != Kind::References) {
            addArgumentRow(f, document, a);
            continue;
        }
        const QString label = QString::fromStdString(a.label);
        f.addPick(keyOf(row), label, QString::fromStdString(a.description),
                  pickRuleFor(document, a.picks, label.toLower(), row.several, a.required));
    }
}

// The layout rows into the record. A grid's second count and spacing go only with
// its second direction.
Result<void> putLayout(CommandRecord& record, const FeatureForm& f, const PatternKind& kind,
                       bool skipDefaults, const std::function<bool(const QString&)>& wanted) {
    const bool grid = !f.references(QStringLiteral("direction2")).empty();
    for (const LayoutRow& row : layoutRows(kind.word)) {
        const QString key = keyOf(row);
        if (!grid && (key == QStringLiteral("count2") || key == QStringLiteral("spacing2")))
            continue;
        if (!wanted(key)) continue;
        if (Result<void> ok = putArgument(record, f, row.argument, skipDefaults); !ok) return ok;
    }
    return {};
}

// The edit of a pattern feature (`bodies` false) or a pattern set: the rows hold its
// values and `head` (the edit command naming it) gets what changed.
FormDefinition editPattern(const Document& document, const PatternKind& kind, bool bodies,
                           const nlohmann::json& parameters, const DocumentObject& object,
                           CommandRecord head) {
    std::map<std::string, units::Expression> expressions;
    for (const auto& [key, expression] : object.valueExpressions()) expressions[key] = expression;
    std::map<QString, QString> values;
    const auto stored = [&](const std::string& key) {
        auto it = parameters.is_object() ? parameters.find(key) : parameters.end();
        return it != parameters.end() ? *it : nlohmann::json();
    };
    for (const LayoutRow& row : layoutRows(kind.word))
        values[keyOf(row)] =
            argumentText(row.argument, stored(row.argument.key), expressions, document);
    const QString sourcesKey = bodies ? kBodies : kFeatures;
    const nlohmann::json sources = stored(sourcesKey.toStdString());
    values[sourcesKey] =
        sources.is_string() ? QString::fromStdString(sources.get<std::string>()) : QString();
    QStringList keys{kFeatures};
    for (const LayoutRow& row : layoutRows(kind.word)) keys << keyOf(row);
    auto opening = std::make_shared<OpeningValues>();

    FormDefinition form;
    form.icon = QString::fromLatin1(kind.icon);
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(object.displayName()));
    form.setup = [&document, &kind, bodies, values, keys, opening](FeatureForm& f) {
        addRows(f, document, kind, bodies);
        for (const auto& [key, text] : values) f.setText(key, text);
        if (f.text(QStringLiteral("spacing2")).isEmpty())
            f.setText(QStringLiteral("spacing2"), lengthText(10, document));
        // What is repeated is shown; a pattern of bodies keeps its bodies.
        f.setReadOnly(kWhat, true);
        f.setReadOnly(kBodies, true);
        opening->take(f, keys);
    };
    auto changes = [&kind, head, opening](const FeatureForm& f,
                                          bool check) -> Result<CommandRecord> {
        CommandRecord record = head;
        const auto wanted = [&](const QString& key) { return opening->differs(f, key); };
        if (f.isShown(kFeatures) && wanted(kFeatures))
            record.set("features", joinReferences(f.references(kFeatures)));
        if (!check) {
            for (const LayoutRow& row : layoutRows(kind.word))
                if (wanted(keyOf(row))) record.set(row.argument.key, true);
            return record;
        }
        if (Result<void> ok = putLayout(record, f, kind, false, wanted); !ok) return Error(ok);
        return record;
    };
    const std::string id = object.id;
    finishEditForm(form, changes, id);
    return form;
}

} // namespace

std::optional<FormDefinition> patternForm(const Document& document, const QString& word,
                                          const std::vector<std::string>& selection) {
    const PatternKind* kind =
        kindWhere([&](const PatternKind& k) { return word == QLatin1String(k.word); });
    if (!kind) return std::nullopt;
    bool bodies = false;
    for (const std::string& reference : selection) {
        Result<TakenReference> body = takeReference(document, reference, Pick::Bodies, {});
        if (body && body->asIs) bodies = true;
    }
    std::vector<PickSlot> pickSlots{
        {bodies ? kBodies : kFeatures, bodies ? Pick::Bodies : Pick::Features, true}};
    for (const LayoutRow& row : layoutRows(kind->word))
        if (row.argument.kind == Kind::References)
            pickSlots.push_back({keyOf(row), row.argument.picks, row.several});
    const auto start = fillFromSelection(document, pickSlots, selection);

    FormDefinition form;
    form.icon = QString::fromLatin1(kind->icon);
    form.title = QString::fromLatin1(kind->title);
    form.setup = [&document, kind, bodies, start](FeatureForm& f) {
        addRows(f, document, *kind, bodies);
        f.setText(QStringLiteral("spacing2"), lengthText(10, document));
        for (const auto& [key, references] : start) f.setReferences(key, references);
    };
    form.build = [kind](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record;
        if (f.text(kWhat) == kBodies) {
            record.name = "pattern_bodies";
            record.set("bodies", joinReferences(f.references(kBodies)));
            record.set("pattern", kind->word);
        } else {
            record.name = kind->command;
            record.set("features", joinReferences(f.references(kFeatures)));
        }
        const auto all = [](const QString&) { return true; };
        if (Result<void> ok = putLayout(record, f, *kind, true, all); !ok) return Error(ok);
        return record;
    };
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

bool isFeaturePattern(const ParamFeature& feature) {
    return kindWhere([&](const PatternKind& k) { return feature.typeId == k.typeId; });
}

FormDefinition editFeaturePatternForm(const Document& document, const ParamFeature& feature) {
    const PatternKind* kind =
        kindWhere([&](const PatternKind& k) { return feature.typeId == k.typeId; });
    if (!kind) kind = &kKinds[0];
    CommandRecord head(std::string("edit_") + kind->command);
    head.set("feature", feature.id);
    return editPattern(document, *kind, false, feature.parameters, feature, std::move(head));
}

FormDefinition editPatternSetForm(const Document& document, const PatternSetObject& set) {
    const std::string word = parameterText(set.parameters, "pattern");
    const PatternKind* kind = kindWhere([&](const PatternKind& k) { return word == k.word; });
    if (!kind) kind = &kKinds[0];
    CommandRecord head("edit_pattern");
    head.set("pattern_set", set.id);
    return editPattern(document, *kind, true, set.parameters, set, std::move(head));
}

} // namespace cad::ui

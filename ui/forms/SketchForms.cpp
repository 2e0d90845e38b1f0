// The sketch pattern forms' rows for each layout, their commands and edits, and the
// Project form. Values go into the commands as typed (lengths in the document's unit);
// rows left at nothing let the command's default apply.
#include "ui/forms/SketchForms.h"

#include "core/Document.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/presentation/ReferencePicker.h"

#include <QStringList>

#include <array>
#include <memory>

namespace cad::ui {

namespace {

enum class Row { Entities, Curves, Point, Integer, Length, Angle, Flag };

struct PatternRow {
    const char* key;
    const char* label;
    const char* tip;
    Row row;
    const char* fallback; // a length's in millimetres; empty: none
};

struct PatternKindInfo {
    const char* command;
    const char* title;
    const char* icon;
    std::vector<PatternRow> rows;
};

const PatternRow kGeometry{"entities", "Geometry",
                           "The sketch geometry to copy; click again to drop one", Row::Entities,
                           ""};

const std::array<PatternKindInfo, 3>& kinds() {
    static const std::array<PatternKindInfo, 3> table{{
        {"sketch_pattern_rectangular",
         "Rectangular Pattern",
         "pattern-rect",
         {kGeometry,
          {"count", "Count", "Copies along the first direction, the original included",
           Row::Integer, "2"},
          {"spacing", "Spacing", "Between copies; negative goes the other way", Row::Length,
           "10"},
          {"angle", "Direction", "The first direction, degrees from the sketch's x axis",
           Row::Angle, "0"},
          {"count2", "Count 2", "Copies along the second direction", Row::Integer, "1"},
          {"spacing2", "Spacing 2", "Between copies along the second direction", Row::Length,
           "10"},
          {"angle2", "Direction 2", "The second direction, degrees from the sketch's x axis",
           Row::Angle, "90"}}},
        {"sketch_pattern_circular",
         "Circular Pattern",
         "pattern-circ",
         {kGeometry,
          {"count", "Count", "Copies, the original included", Row::Integer, "2"},
          {"center", "Center", "A point to turn about (default the sketch origin)", Row::Point,
           ""},
          {"angle", "Angle", "Spread over this many degrees (360: evenly all the way)",
           Row::Angle, "360"}}},
        {"sketch_pattern_path",
         "Path Pattern",
         "pattern-path",
         {kGeometry,
          {"path", "Path", "The sketch curves the copies follow, joined end to end", Row::Curves,
           ""},
          {"count", "Count", "Copies, the original included", Row::Integer, "2"},
          {"spacing", "Spacing", "Between copies along the path; empty spreads them over all of it",
           Row::Length, ""},
          {"follow", "Follow path", "Turn with the path", Row::Flag, "true"}}},
    }};
    return table;
}

QString keyOf(const PatternRow& row) { return QString::fromLatin1(row.key); }

PickRule sketchRule(SketchPick what, bool multiple, bool required, const char* prompt) {
    PickRule rule;
    rule.kinds = 0; // nothing from the 3D view: the sketch session picks
    rule.sketch = what;
    rule.multiple = multiple;
    rule.required = required;
    rule.prompt = QString::fromUtf8(prompt);
    return rule;
}

void addRows(FeatureForm& f, const Document& document, const PatternKindInfo& kind) {
    for (const PatternRow& row : kind.rows) {
        const QString key = keyOf(row), label = QString::fromUtf8(row.label),
                      tip = QString::fromUtf8(row.tip), fallback = QString::fromUtf8(row.fallback);
        switch (row.row) {
        case Row::Entities:
            f.addPick(key, label, tip,
                      sketchRule(SketchPick::Entities, true, true, "Click the geometry to copy."));
            break;
        case Row::Curves:
            f.addPick(key, label, tip,
                      sketchRule(SketchPick::Curves, true, true, "Click the path's curves."));
            break;
        case Row::Point:
            f.addPick(key, label, tip, sketchRule(SketchPick::Points, false, false, ""));
            break;
        case Row::Integer:
            f.addInteger(key, label, tip, fallback.toInt(), 1, 1000);
            break;
        case Row::Length:
            f.addLength(key, label, tip,
                        fallback.isEmpty() ? QString() : lengthText(fallback.toDouble(), document));
            break;
        case Row::Angle:
            f.addNumber(key, label, tip, fallback);
            break;
        case Row::Flag:
            f.addFlag(key, label, tip, fallback == QStringLiteral("true"));
            break;
        }
    }
}

// One row into the command; an empty row is left out.
Result<void> putRow(CommandRecord& record, const FeatureForm& f, const PatternRow& row) {
    const QString key = keyOf(row);
    switch (row.row) {
    case Row::Entities:
    case Row::Curves:
    case Row::Point:
        if (!f.references(key).empty()) record.set(row.key, joinReferences(f.references(key)));
        return {};
    case Row::Integer:
        record.set(row.key, f.integer(key));
        return {};
    case Row::Length:
        return putOptionalLength(record, f, key);
    case Row::Angle: {
        if (f.text(key).trimmed().isEmpty()) return {};
        Result<double> degrees = f.number(key);
        if (!degrees) return Error(degrees);
        record.set(row.key, *degrees);
        return {};
    }
    case Row::Flag:
        record.set(row.key, f.flag(key));
        return {};
    }
    return {};
}

bool secondDirection(const PatternRow& row) {
    const std::string key = row.key;
    return key == "count2" || key == "spacing2" || key == "angle2";
}

// What a row of an edit form starts with: the value the pattern was made with.
QString storedText(const CommandRecord& made, const PatternRow& row, const Document& document) {
    const Value* value = made.find(row.key);
    if (!value) {
        if (row.row == Row::Length && *row.fallback)
            return lengthText(QString::fromLatin1(row.fallback).toDouble(), document);
        return QString::fromUtf8(row.fallback);
    }
    if (const auto* text = std::get_if<std::string>(value)) return QString::fromStdString(*text);
    if (const auto* flag = std::get_if<bool>(value))
        return *flag ? QStringLiteral("true") : QStringLiteral("false");
    const double number = std::holds_alternative<double>(*value)
                              ? std::get<double>(*value)
                              : static_cast<double>(std::get<std::int64_t>(*value));
    return row.row == Row::Length ? lengthText(number, document) : plainNumberText(number);
}

} // namespace

std::optional<FormDefinition> sketchPatternForm(const Document& document, const std::string& sketch,
                                                int kind, const std::vector<std::string>& selection) {
    if (kind < 0 || kind >= static_cast<int>(kinds().size()) || sketch.empty()) return std::nullopt;
    const PatternKindInfo& info = kinds()[static_cast<std::size_t>(kind)];
    FormDefinition form;
    form.icon = QString::fromLatin1(info.icon);
    form.title = QString::fromLatin1(info.title);
    form.setup = [&document, &info, selection](FeatureForm& f) {
        addRows(f, document, info);
        f.setReferences(QStringLiteral("entities"), selection);
    };
    form.build = [&info, sketch](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record(info.command);
        record.set("sketch", sketch);
        // A grid's second direction goes only with a second count.
        const bool grid = f.has(QStringLiteral("count2")) && f.integer(QStringLiteral("count2")) > 1;
        for (const PatternRow& row : info.rows) {
            if (secondDirection(row) && !grid) continue;
            if (Result<void> ok = putRow(record, f, row); !ok) return Error(ok);
        }
        return record;
    };
    // The copies come and go in the sketch as the rows change.
    form.session = [sketch](FeatureForm&) { return std::optional(FormSession::Handle{sketch}); };
    return form;
}

std::optional<FormDefinition> editSketchPatternForm(const Document& document,
                                                    const std::string& sketch,
                                                    const std::string& pattern) {
    const auto* object = document.findAs<SketchObject>(sketch);
    if (!object) return std::nullopt;
    const SketchPattern* found = nullptr;
    for (const SketchPattern& p : object->patterns)
        if (p.id == pattern) found = &p;
    if (!found) return std::nullopt;
    const PatternKindInfo* info = nullptr;
    for (const PatternKindInfo& k : kinds())
        if (found->record.name == k.command) info = &k;
    if (!info) return std::nullopt;

    std::map<QString, QString> values;
    QStringList keys;
    for (const PatternRow& row : info->rows) {
        values[keyOf(row)] = storedText(found->record, row, document);
        keys << keyOf(row);
    }
    auto opening = std::make_shared<OpeningValues>();

    FormDefinition form;
    form.icon = QString::fromLatin1(info->icon);
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(pattern));
    form.setup = [&document, info, values, keys, opening](FeatureForm& f) {
        addRows(f, document, *info);
        for (const auto& [key, text] : values) f.setText(key, text);
        opening->take(f, keys);
    };
    CommandRecord head("edit_sketch_pattern");
    head.set("sketch", sketch).set("pattern", pattern);
    auto changes = [info, head, opening](const FeatureForm& f,
                                         bool check) -> Result<CommandRecord> {
        CommandRecord record = head;
        for (const PatternRow& row : info->rows) {
            if (!opening->differs(f, keyOf(row))) continue;
            if (!check) {
                record.set(row.key, true);
                continue;
            }
            if (Result<void> ok = putRow(record, f, row); !ok) return Error(ok);
        }
        return record;
    };
    finishEditForm(form, changes, sketch);
    // The command names the sketch and the pattern: anything more is a change.
    form.complete = [changes](FeatureForm& f) {
        Result<CommandRecord> record = changes(f, false);
        return f.missingPrompt().isEmpty() && (!record || record->arguments.size() > 2);
    };
    return form;
}

FormDefinition projectForm(const std::string& sketch) {
    FormDefinition form;
    form.icon = QStringLiteral("project");
    form.title = QStringLiteral("Project");
    form.setup = [sketch](FeatureForm& f) {
        PickRule rule;
        rule.kinds = PickFace | PickEdge | PickVertex | PickSketchEntity;
        rule.prompt = QStringLiteral("Click what to project.");
        const std::string own = sketch + "/";
        rule.accept = [own](const std::string& reference) -> Result<std::string> {
            if (reference.rfind(own, 0) == 0) return fail("A sketch can't project its own geometry.");
            return reference;
        };
        f.addPick(QStringLiteral("refs"), QStringLiteral("Geometry"),
                  QStringLiteral("Edges, faces (their outline), points, or curves of other "
                                 "sketches; click again to drop one"),
                  rule);
        f.addFlag(QStringLiteral("construction"), QStringLiteral("As construction"), {}, false);
    };
    form.build = [sketch](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record("project");
        record.set("sketch", sketch);
        record.set("references", joinReferences(f.references(QStringLiteral("refs"))));
        record.set("construction", f.flag(QStringLiteral("construction")));
        return record;
    };
    form.session = [sketch](FeatureForm&) { return std::optional(FormSession::Handle{sketch}); };
    return form;
}

} // namespace cad::ui

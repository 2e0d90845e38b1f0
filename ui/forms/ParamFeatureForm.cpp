// Rows from a kind's argument table (lengths, angles, counts, flags, choices, text
// and picks), the kind's command or its edit_ command built from them, and the
// live trial of either on the model.
#include "ui/forms/ParamFeatureForm.h"

#include "core/Document.h"
#include "core/units/ExpressionNames.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/param/ParamFeatureType.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

namespace cad::ui {

namespace {

using Kind = FeatureArgument::Kind;

QString keyOf(const FeatureArgument& argument) { return QString::fromStdString(argument.key); }

bool isPickRow(const FeatureArgument& argument) {
    return argument.picks != 0 &&
           (argument.kind == Kind::References || argument.kind == Kind::Text);
}

// "new_body" reads "New body".
std::vector<FieldChoice> choicesOf(const FeatureArgument& argument) {
    std::vector<FieldChoice> choices;
    for (const std::string& word : argument.choices) {
        QString text = QString::fromStdString(word).replace(QLatin1Char('_'), QLatin1Char(' '));
        if (!text.isEmpty()) text[0] = text[0].toUpper();
        choices.push_back({QString::fromStdString(word), text, {}});
    }
    return choices;
}

bool sameNumber(double a, double b) {
    return std::fabs(a - b) <= 1e-12 * std::max(1.0, std::fabs(b));
}

// The rows a person fills in: not the feature's name, nor a new body's.
FeatureArguments formArguments(const ParamFeatureType& type) {
    FeatureArguments rows;
    for (const FeatureArgument& argument : commandArguments(type)) {
        if (argument.key == "name" || (type.makesNewSolid && argument.key == "body")) continue;
        rows.push_back(argument);
    }
    return rows;
}

const QStringList kMeetsBody{QStringLiteral("join"), QStringLiteral("cut"),
                             QStringLiteral("intersect")};

} // namespace

void addArgumentRow(FeatureForm& form, const Document& document, const FeatureArgument& argument) {
    const QString key = keyOf(argument);
    const QString label = QString::fromStdString(argument.label);
    const QString tip = QString::fromStdString(argument.description);
    const QString start = argumentText(argument, nlohmann::json(), {}, document);
    if (isPickRow(argument)) {
        form.addPick(key, label, tip, argumentPickRule(document, argument));
        return;
    }
    switch (argument.kind) {
    case Kind::Length:
        // A length the kind can't do without starts at something that makes a shape.
        form.addLength(key, label, tip,
                       start.isEmpty() && argument.required ? lengthText(10, document) : start);
        break;
    case Kind::Angle:
    case Kind::Number:
        form.addNumber(key, label, tip, start);
        break;
    case Kind::Integer: {
        const int value = argument.fallback.is_number_integer() ? argument.fallback.get<int>() : 1;
        form.addInteger(key, label, tip, value, std::min(1, value), std::max(1000, value));
        break;
    }
    case Kind::Bool:
        form.addFlag(key, label, tip, start == QStringLiteral("true"));
        break;
    case Kind::Choice:
        form.addChoice(key, label, tip, choicesOf(argument), start);
        break;
    case Kind::Text:
    case Kind::References:
        form.addText(key, label, tip, start);
        break;
    }
}

Result<void> putArgument(CommandRecord& record, const FeatureForm& form,
                         const FeatureArgument& argument, bool skipDefaults) {
    const QString key = keyOf(argument);
    const nlohmann::json& fallback = argument.fallback;
    switch (form.kind(key)) {
    case FieldKind::Pick: {
        const std::vector<std::string>& references = form.references(key);
        if (!references.empty() || !skipDefaults)
            record.set(argument.key, joinReferences(references));
        return {};
    }
    case FieldKind::Length:
    case FieldKind::Number: {
        const std::string text = form.text(key).toStdString();
        if (text.empty() && skipDefaults && !argument.required) return {};
        Result<double> value = form.length(key);
        if (!value) return Error(value);
        if (skipDefaults && fallback.is_number() && sameNumber(*value, fallback.get<double>()) &&
            !units::usesNames(text))
            return {};
        record.set(argument.key, text);
        return {};
    }
    case FieldKind::Integer: {
        const int value = form.integer(key);
        if (!skipDefaults || !fallback.is_number_integer() || fallback.get<int>() != value)
            record.set(argument.key, value);
        return {};
    }
    case FieldKind::Flag: {
        const bool value = form.flag(key);
        if (!skipDefaults || value != (fallback.is_boolean() && fallback.get<bool>()))
            record.set(argument.key, value);
        return {};
    }
    case FieldKind::Choice: {
        const std::string value = form.text(key).toStdString();
        if (!skipDefaults || !fallback.is_string() || fallback.get<std::string>() != value)
            record.set(argument.key, value);
        return {};
    }
    case FieldKind::Text: {
        const std::string value = form.text(key).toStdString();
        if (!value.empty() || !skipDefaults) record.set(argument.key, value);
        return {};
    }
    case FieldKind::Section:
    case FieldKind::Message:
        break;
    }
    return {};
}

FormDefinition paramFeatureForm(const Document& document, const ParamFeatureType& type,
                                const std::vector<std::string>& selection) {
    const FeatureArguments rows = formArguments(type);
    const bool solid = type.makesNewSolid;
    std::vector<PickSlot> pickSlots;
    for (const FeatureArgument& argument : rows)
        if (isPickRow(argument) && !(solid && argument.key == "target"))
            pickSlots.push_back({keyOf(argument), argument.picks, takesSeveral(argument)});
    const std::map<QString, std::vector<std::string>> filled =
        fillFromSelection(document, pickSlots, selection);
    const std::string command = type.command;

    FormDefinition form;
    form.icon = QString::fromStdString(type.formId);
    form.title = QString::fromStdString(type.label);
    form.setup = [&document, rows, filled, solid](FeatureForm& f) {
        for (const FeatureArgument& argument : rows) addArgumentRow(f, document, argument);
        // A new body needs no target; what it joins, cuts or intersects does.
        if (solid) f.showWhen(QStringLiteral("target"), QStringLiteral("operation"), kMeetsBody);
        for (const auto& [key, references] : filled) f.setReferences(key, references);
    };
    form.build = [rows, command](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record(command);
        for (const FeatureArgument& argument : rows) {
            if (!f.isShown(keyOf(argument))) continue;
            if (Result<void> ok = putArgument(record, f, argument, true); !ok) return Error(ok);
        }
        return record;
    };
    // Tried on the model as it is filled in; a new body comes and goes with the trial.
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

FormDefinition editParamFeatureForm(const Document& document, const ParamFeature& feature) {
    const ParamFeatureType* type = paramFeatureTypes().find(feature.typeId);
    const FeatureArguments rows = type ? type->arguments : FeatureArguments();
    const std::string command = type ? type->command : std::string();
    std::map<std::string, units::Expression> expressions;
    for (const auto& [key, expression] : feature.valueExpressions()) expressions[key] = expression;
    std::map<QString, QString> values;
    for (const FeatureArgument& argument : rows) {
        const auto stored = feature.parameters.is_object() ? feature.parameters.find(argument.key)
                                                           : feature.parameters.end();
        values[keyOf(argument)] =
            argumentText(argument, stored != feature.parameters.end() ? *stored : nlohmann::json(),
                         expressions, document);
    }
    // How a solid meets its body is shown; an edit can't change it.
    std::optional<FeatureArgument> operation;
    if (type && type->makesNewSolid)
        for (const FeatureArgument& argument : commandArguments(*type))
            if (argument.key == "operation") operation = argument;
    const QString operationValue = QString::fromStdString(feature.operation);
    const std::string id = feature.id;
    auto opening = std::make_shared<OpeningValues>();

    FormDefinition form;
    form.icon = type ? QString::fromStdString(type->formId) : QString();
    form.title = QStringLiteral("Edit %1").arg(QString::fromStdString(feature.displayName()));
    form.setup = [&document, rows, values, operation, operationValue, opening](FeatureForm& f) {
        QStringList keys;
        for (const FeatureArgument& argument : rows) {
            addArgumentRow(f, document, argument);
            keys << keyOf(argument);
        }
        for (const auto& [key, text] : values) f.setText(key, text);
        if (operation) {
            addArgumentRow(f, document, *operation);
            f.setText(QStringLiteral("operation"), operationValue);
            f.setReadOnly(QStringLiteral("operation"), true);
        }
        opening->take(f, keys);
    };
    // The edit as far as the rows differ from the feature; values are checked when
    // `check` is set.
    auto changes = [rows, command, id, opening](const FeatureForm& f,
                                                bool check) -> Result<CommandRecord> {
        if (command.empty()) return fail("Unknown feature type");
        CommandRecord record("edit_" + command);
        record.set("feature", id);
        for (const FeatureArgument& argument : rows) {
            if (!opening->differs(f, keyOf(argument))) continue;
            if (!check)
                record.set(argument.key, f.text(keyOf(argument)).toStdString());
            else if (Result<void> ok = putArgument(record, f, argument, false); !ok)
                return Error(ok);
        }
        return record;
    };
    finishEditForm(form, changes, id);
    return form;
}

} // namespace cad::ui

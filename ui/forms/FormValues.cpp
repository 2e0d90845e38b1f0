// The shared pieces of the form definitions: value texts, joined references, the
// body picks lie on, lengths into commands and an edit form's opening values.
#include "ui/forms/FormValues.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/Format.h"
#include "geometry/References.h"
#include "geometry/param/FeatureArgument.h"
#include "ui/forms/FeatureForm.h"
#include "ui/presentation/ReferencePicker.h"

namespace cad::ui {

QString lengthText(double millimetres, const Document& document) {
    return QString::fromStdString(units::formatLength(millimetres, document.lengthUnit(), false));
}

QString valueText(const std::map<std::string, units::Expression>& expressions,
                  const std::string& key, double value, const Document& document) {
    const auto it = expressions.find(key);
    return it != expressions.end() ? QString::fromStdString(it->second.text)
                                   : lengthText(value, document);
}

QString plainNumberText(double value) { return QString::number(value, 'g', 12); }

QString argumentText(const FeatureArgument& argument, const nlohmann::json& value,
                     const std::map<std::string, units::Expression>& expressions,
                     const Document& document) {
    using Kind = FeatureArgument::Kind;
    if (const auto it = expressions.find(argument.key); it != expressions.end())
        return QString::fromStdString(it->second.text);
    const nlohmann::json& v = value.is_null() ? argument.fallback : value;
    if (v.is_boolean()) return v.get<bool>() ? QStringLiteral("true") : QStringLiteral("false");
    if (v.is_number() && argument.kind == Kind::Length)
        return lengthText(v.get<double>(), document);
    if (v.is_number_integer()) return QString::number(v.get<std::int64_t>());
    if (v.is_number()) return plainNumberText(v.get<double>());
    if (v.is_string()) return QString::fromStdString(v.get<std::string>());
    return argument.kind == Kind::Bool ? QStringLiteral("false") : QString();
}

std::string joinReferences(const std::vector<std::string>& references) {
    std::string text;
    for (const std::string& reference : references) text += (text.empty() ? "" : ";") + reference;
    return text;
}

Result<std::string> bodyOfReferences(const Document& document,
                                     const std::vector<std::string>& references,
                                     const std::string& what) {
    std::string body;
    for (const std::string& reference : references) {
        const std::string head = geometry::objectPart(reference);
        if (!document.findAs<GeometryObject>(head) || reference.find('/') == std::string::npos)
            return fail(referenceLabel(document, reference).toStdString() +
                        " isn't part of a body: pick " + what + " of a body.");
        if (!body.empty() && head != body) return fail("Pick " + what + " of one body at a time.");
        body = head;
    }
    if (body.empty()) return fail("Pick the " + what + ".");
    return body;
}

Result<void> putLength(CommandRecord& record, const FeatureForm& form, const QString& key) {
    Result<double> value = form.length(key);
    if (!value) return Error(value);
    record.set(key.toStdString(), form.text(key).toStdString());
    return {};
}

Result<void> putOptionalLength(CommandRecord& record, const FeatureForm& form, const QString& key) {
    if (form.text(key).isEmpty()) return {};
    return putLength(record, form, key);
}

void OpeningValues::take(const FeatureForm& form, const QStringList& keys) {
    for (const QString& key : keys) texts_[key] = form.text(key);
}

bool OpeningValues::differs(const FeatureForm& form, const QString& key) const {
    const auto it = texts_.find(key);
    return it == texts_.end() || form.text(key) != it->second;
}

} // namespace cad::ui

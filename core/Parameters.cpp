// Parameter names, their users, renaming, and re-evaluating expression-driven values.
#include "core/Parameters.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/ExpressionNames.h"
#include "core/units/Length.h"

#include <algorithm>

namespace cad {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool uses(std::string_view expression, std::string_view name) {
    std::vector<std::string> names = units::referencedNames(expression);
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

Result<void> validateParameterName(std::string_view name) {
    if (name.empty()) return fail("A parameter needs a name.");
    if (!isLetter(name[0]) && name[0] != '_')
        return fail("A parameter's name starts with a letter or _ (e.g. panel_width).");
    if (!std::all_of(name.begin(), name.end(),
                     [](char c) { return isLetter(c) || isDigit(c) || c == '_'; }))
        return fail("A parameter's name has only letters, digits and _ (e.g. panel_width).");
    if (units::parseUnitName(name))
        return fail("'" + std::string(name) + "' is a unit; pick another name.");
    return {};
}

std::vector<std::string> parameterUsers(const Document& document, std::string_view name) {
    std::vector<std::string> users;
    for (const Parameter& p : document.parameters())
        if (p.name != name && uses(p.expression, name)) users.push_back(p.name);
    for (const auto& o : document.objects())
        for (const auto& [key, expression] : o->valueExpressions())
            if (uses(expression.text, name)) users.push_back(o->id + "." + key);
    return users;
}

bool ValueSnapshots::has(const DocumentObject& object) const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [&](const Entry& e) { return e.serial == object.serial; });
}

void ValueSnapshots::keep(const DocumentObject& object, std::any snapshot, bool valuesChange) {
    for (Entry& e : entries_)
        if (e.serial == object.serial) {
            e.valuesChange = e.valuesChange || valuesChange;
            return;
        }
    entries_.push_back({object.serial, std::move(snapshot), valuesChange});
}

void ValueSnapshots::restore(Document& document) const {
    std::vector<DocumentObject*> changed;
    for (const Entry& e : entries_) {
        DocumentObject* object = document.findBySerial(e.serial);
        if (!object) continue;
        object->restoreValues(e.values);
        if (e.valuesChange) changed.push_back(object);
    }
    // Unapplied changes never reached a body: the shapes are still those of these values.
    if (applied_ && !changed.empty()) document.notifyValuesChanged(changed);
}

void renameParameterEverywhere(Document& document, std::string_view from, std::string_view to,
                               ValueSnapshots* before) {
    std::vector<Parameter> parameters = document.parameters();
    for (Parameter& p : parameters) {
        if (p.name == from) p.name = std::string(to);
        p.expression = units::renameInExpression(p.expression, from, to);
    }
    document.setParameters(std::move(parameters));
    for (const auto& o : document.objects()) {
        if (before && !before->has(*o)) {
            std::vector<std::pair<std::string, units::Expression>> values = o->valueExpressions();
            if (std::any_of(values.begin(), values.end(),
                            [&](const auto& v) { return uses(v.second.text, from); }))
                before->keep(*o, o->valuesSnapshot(), false);
        }
        o->renameInExpressions(from, to);
    }
}

std::vector<std::string> recomputeExpressions(Document& document, ValueSnapshots* before) {
    units::ScopedParameterLookup scope(document.parameterLookup(), document.lengthUnit());
    std::vector<std::string> problems;
    std::vector<DocumentObject*> changed;
    for (const auto& o : document.objects()) {
        if (o->valueExpressions().empty()) continue;
        std::any was;
        if (before && !before->has(*o)) was = o->valuesSnapshot();
        if (!o->reevaluateExpressions(problems)) continue;
        changed.push_back(o.get());
        if (before) before->keep(*o, std::move(was), true);
    }
    if (changed.empty() || (before && !problems.empty())) return problems;

    // Each body is rebuilt once, from the first feature a changed value reaches.
    document.notifyValuesChanged(changed);
    if (before) before->markApplied();
    return problems;
}

} // namespace cad

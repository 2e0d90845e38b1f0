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

void renameParameterEverywhere(Document& document, std::string_view from, std::string_view to) {
    std::vector<Parameter> parameters = document.parameters();
    for (Parameter& p : parameters) {
        if (p.name == from) p.name = std::string(to);
        p.expression = units::renameInExpression(p.expression, from, to);
    }
    document.setParameters(std::move(parameters));
    for (const auto& o : document.objects()) o->renameInExpressions(from, to);
}

std::vector<std::string> recomputeExpressions(Document& document) {
    units::ScopedParameterLookup scope(document.parameterLookup(), document.lengthUnit());
    std::vector<std::string> problems;
    std::vector<DocumentObject*> changed;
    for (const auto& o : document.objects())
        if (o->reevaluateExpressions(problems)) changed.push_back(o.get());

    // A changed feature rebuilds its body; anything else reaches its users.
    for (DocumentObject* object : changed) {
        if (GeometryObject* body = document.bodyOfFeature(object->id)) {
            (void)document.rebuildBody(*body);
            document.notifyChanged(*body);
        }
        document.notifyChanged(*object);
    }
    return problems;
}

} // namespace cad

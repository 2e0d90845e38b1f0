// Readers for the plane and section commands' values, flags and reference lists.
#include "geometry/planes/PlaneArguments.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "core/units/ExpressionParser.h"
#include "geometry/CommandSupport.h"
#include "geometry/References.h"

#include <cmath>
#include <set>

namespace cad {

Result<std::optional<double>> optionalValue(const CommandRecord& record, std::string_view key,
                                            ValueKind kind) {
    const Value* value = record.find(key);
    if (!value) return std::optional<double>();
    if (auto* i = std::get_if<std::int64_t>(value)) return std::optional<double>(*i);
    if (auto* d = std::get_if<double>(value); d && std::isfinite(*d))
        return std::optional<double>(*d);
    if (auto* text = std::get_if<std::string>(value)) {
        Result<double> read =
            kind == ValueKind::Length ? units::readLengthText(*text) : units::readNumberText(*text);
        if (read && std::isfinite(*read)) return std::optional<double>(*read);
    }
    const auto* text = std::get_if<std::string>(value);
    return fail(record.name + ": '" + std::string(key) +
                "' must be a number: " + (text ? *text : renderValue(*value)));
}

Result<std::optional<bool>> optionalFlag(const CommandRecord& record, std::string_view key) {
    const Value* value = record.find(key);
    if (!value) return std::optional<bool>();
    if (auto* flag = std::get_if<bool>(value)) return std::optional<bool>(*flag);
    return fail(record.name + ": '" + std::string(key) + "' must be true or false.");
}

Result<std::optional<std::vector<std::string>>>
optionalReferences(const CommandRecord& record, std::string_view key, std::string_view missing) {
    const Value* value = record.find(key);
    if (!value) return std::optional<std::vector<std::string>>();
    const auto* text = std::get_if<std::string>(value);
    std::vector<std::string> items =
        text ? geometry::splitReferenceList(*text) : std::vector<std::string>();
    if (items.empty()) return fail(record.name + std::string(missing));
    return std::optional<std::vector<std::string>>(std::move(items));
}

std::string referenceById(const Document& document, std::string_view reference) {
    const std::string_view text = trimmed(reference);
    const std::string object = geometry::objectPart(text);
    if (object.empty()) return std::string(text);
    const DocumentObject* found = document.findByName(object);
    if (!found) return std::string(text);
    const std::size_t slash = text.find('/');
    return found->id + (slash == std::string_view::npos ? "" : std::string(text.substr(slash)));
}

std::string joinReferences(const std::vector<std::string>& references) {
    std::string out;
    for (const std::string& r : references) out += (out.empty() ? "" : "; ") + r;
    return out;
}

std::string circularProblem(const Document& document, const std::string& id,
                            const std::vector<std::string>& references) {
    for (const std::string& reference : references) {
        std::vector<const DocumentObject*> todo{document.find(geometry::objectPart(reference))};
        std::set<const DocumentObject*> seen;
        while (!todo.empty()) {
            const DocumentObject* object = todo.back();
            todo.pop_back();
            if (!object || !seen.insert(object).second) continue;
            if (object->id == id)
                return id + " can't be defined from '" + reference + "', which follows it.";
            if (dynamic_cast<const GeometryObject*>(object) ||
                dynamic_cast<const FeatureObject*>(object))
                continue;
            for (const std::string& used : object->dependencies())
                todo.push_back(document.find(used));
        }
    }
    return {};
}

std::string nameProblem(const Document& document, const std::string& name) {
    if (name.empty()) return {};
    if (nameTaken(document, name)) return "An object named '" + name + "' already exists.";
    if (badObjectName(name)) return "Names can't contain '/' or line breaks.";
    return {};
}

} // namespace cad

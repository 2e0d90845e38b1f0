// Shared pieces of the geometry commands.
#include "geometry/CommandSupport.h"

#include "core/Document.h"
#include "core/TextCase.h"
#include "core/units/ExpressionNames.h"

namespace cad {

bool nameTaken(const Document& document, std::string_view name) {
    for (const auto& object : document.objects())
        if (equalsIgnoringCase(object->id, name) ||
            (!object->label.empty() && equalsIgnoringCase(object->label, name)))
            return true;
    return false;
}

bool badObjectName(std::string_view name) {
    return name.find_first_of("/\n\r\t") != std::string_view::npos;
}

std::optional<units::Expression> boundExpression(const Value* value, const Document& document) {
    auto* text = value ? std::get_if<std::string>(value) : nullptr;
    if (!text || !units::usesNames(*text)) return std::nullopt;
    return units::Expression{*text, document.lengthUnit(), true, false};
}

Result<std::optional<std::string>> word(const CommandRecord& record, std::string_view arg,
                                        std::initializer_list<std::string_view> allowed,
                                        const char* error) {
    const Value* value = record.find(arg);
    if (!value) return std::optional<std::string>();
    const auto* text = std::get_if<std::string>(value);
    if (text)
        for (std::string_view a : allowed)
            if (*text == a) return std::optional<std::string>(*text);
    return fail(record.name + ": " + error);
}

} // namespace cad

// Reading appearance texts: preset ids and custom "#rrggbb[/finish]" colours.
#include "geometry/materials/Appearance.h"

#include "core/TextCase.h"

#include <charconv>

namespace cad {

namespace {

Error unknownAppearance(std::string_view text) {
    return fail("No appearance '" + std::string(text) +
                "': use one list_materials shows, or a color such as \"#3a7bd5\".");
}

// Two hex digits as a channel from 0 to 1; none when they are not hex digits.
std::optional<double> hexChannel(std::string_view digits) {
    unsigned value = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value / 255.0;
}

} // namespace

Result<Appearance> readAppearance(std::string_view given) {
    const std::string_view text = trimmed(given);
    if (const AppearancePreset* preset = findAppearancePreset(text)) {
        Appearance look;
        look.text = std::string(preset->id);
        look.name = std::string(preset->name);
        look.category = std::string(preset->category);
        look.color = preset->color;
        look.finish = preset->finish;
        look.opacity = preset->opacity;
        return look;
    }
    const std::size_t slash = text.find('/');
    const std::string_view hex = trimmed(text.substr(0, slash));
    if (hex.size() != 7 || hex[0] != '#') return unknownAppearance(text);
    std::optional<double> channels[3];
    for (int i = 0; i < 3; ++i) {
        // from_chars takes a sign, which a colour must not have.
        std::string_view digits = hex.substr(1 + 2 * static_cast<std::size_t>(i), 2);
        if (digits.find_first_of("+-") == std::string_view::npos) channels[i] = hexChannel(digits);
        if (!channels[i]) return unknownAppearance(text);
    }
    Appearance look;
    look.name = "Custom";
    look.category = "Other";
    look.color = {*channels[0], *channels[1], *channels[2]};
    look.text = toLowerAscii(hex);
    if (slash != std::string_view::npos) {
        std::optional<Finish> finish = parseFinish(trimmed(text.substr(slash + 1)));
        if (!finish) return unknownAppearance(text);
        look.finish = *finish;
        look.text += "/" + std::string(finishName(*finish));
    }
    return look;
}

} // namespace cad

// The per-user font folder of the XDG layout, and wide-character upper-casing through
// a UTF-8 character-type locale of its own (the process may run in the "C" locale,
// where only ASCII letters have capitals).
#include "sketch/text/TextPlatform.h"

#include <clocale>
#include <cstdlib>
#include <cwctype>
#include <locale.h>

namespace cad::text {

std::filesystem::path userFontFolder() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && dataHome[0] == '/') return std::filesystem::path(dataHome) / "fonts";
    const char* home = std::getenv("HOME");
    if (!home || !home[0]) return {};
    return std::filesystem::path(home) / ".local" / "share" / "fonts";
}

char32_t upperCase(char32_t c) {
    static locale_t unicode = [] {
        for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8"})
            if (locale_t made = newlocale(LC_CTYPE_MASK, name, locale_t(nullptr))) return made;
        return locale_t(nullptr);
    }();
    const auto wide = static_cast<wint_t>(c);
    const wint_t upper = unicode ? towupper_l(wide, unicode) : std::towupper(wide);
    return static_cast<char32_t>(upper);
}

} // namespace cad::text

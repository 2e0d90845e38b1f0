// What sketch text needs from the operating system: the per-user font folder and
// upper-casing of any character. One implementation file per platform.
#pragma once

#include <filesystem>

namespace cad::text {

// Where a person's own fonts are installed (~/.local/share/fonts here, or under
// XDG_DATA_HOME when that is set); empty when there is no home folder.
std::filesystem::path userFontFolder();

// The capital of a character by Unicode's rules, independent of the process locale;
// characters without one come back unchanged.
char32_t upperCase(char32_t c);

} // namespace cad::text

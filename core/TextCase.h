// ASCII letter-case helpers: IDs, labels and keywords compare byte by byte with
// ASCII tolower, independent of the user's locale.
#pragma once

#include <string>
#include <string_view>

namespace cad {

constexpr char asciiLower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    return true;
}

inline std::string toLowerAscii(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = asciiLower(c);
    return out;
}

} // namespace cad

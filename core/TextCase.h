// ASCII text helpers: IDs, labels and keywords compare byte by byte with ASCII
// tolower, independent of the user's locale; typed text is trimmed of white space.
#pragma once

#include <string>
#include <string_view>
#include <vector>

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

// The text without leading and trailing spaces, tabs and line breaks.
constexpr std::string_view trimmed(std::string_view text) {
    constexpr std::string_view spaces = " \t\r\n\v\f";
    std::size_t first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

// The items of a ';'-separated list ("Line1; Circle2"), each trimmed, empty ones
// left out.
inline std::vector<std::string> splitList(std::string_view text) {
    std::vector<std::string> items;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(';', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view item = trimmed(text.substr(start, end - start));
        if (!item.empty()) items.emplace_back(item);
        start = end + 1;
    }
    return items;
}

} // namespace cad

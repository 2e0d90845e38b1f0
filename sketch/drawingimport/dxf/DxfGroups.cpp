// Splits DXF text into group pairs and reads their numbers without the locale.
#include "sketch/drawingimport/dxf/DxfGroups.h"

#include <charconv>
#include <cmath>

namespace cad::drawingimport::dxf {

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
    while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
    return s;
}

// One line at a time; '\n', "\r\n" and a lone '\r' all end a line.
class Lines {
public:
    explicit Lines(std::string_view bytes) : bytes_(bytes) {}
    bool next(std::string_view& line) {
        if (at_ >= bytes_.size()) return false;
        std::size_t end = at_;
        while (end < bytes_.size() && bytes_[end] != '\n' && bytes_[end] != '\r') ++end;
        line = bytes_.substr(at_, end - at_);
        if (end < bytes_.size() && bytes_[end] == '\r') {
            ++end;
            if (end < bytes_.size() && bytes_[end] == '\n') ++end;
        } else if (end < bytes_.size()) {
            ++end;
        }
        at_ = end;
        return true;
    }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

} // namespace

Result<std::vector<Group>> splitGroups(std::string_view bytes) {
    // A UTF-8 byte order mark may open the file.
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    std::vector<Group> groups;
    Lines lines(bytes);
    std::string_view codeLine;
    while (lines.next(codeLine)) {
        codeLine = trimmed(codeLine);
        if (codeLine.empty() && groups.empty()) continue; // blank lines before the first group
        const std::optional<long long> code = groupInteger(codeLine);
        if (!code || *code < 0 || *code > 1071 || codeLine.find('.') != std::string_view::npos)
            return fail("This doesn't look like an ASCII DXF file.");
        std::string_view value;
        if (!lines.next(value)) break; // a last code without its value: the file was cut short
        Group g{static_cast<int>(*code), value};
        // Text values keep their leading spaces; everything else is trimmed.
        if (g.code == 1 || g.code == 3) {
            while (!g.value.empty() && isSpace(g.value.back())) g.value.remove_suffix(1);
        } else {
            g.value = trimmed(g.value);
        }
        if (g.code == 0 && g.value == "EOF") break;
        groups.push_back(g);
    }
    if (groups.empty()) return fail("This doesn't look like an ASCII DXF file.");
    return groups;
}

std::optional<double> groupNumber(std::string_view value) {
    value = trimmed(value);
    if (!value.empty() && value.front() == '+') value.remove_prefix(1);
    if (value.empty()) return std::nullopt;
    double out = 0;
    const char* end = value.data() + value.size();
    const auto [ptr, ec] = std::from_chars(value.data(), end, out);
    if (ec != std::errc() || ptr != end || !std::isfinite(out)) return std::nullopt;
    return out;
}

std::optional<long long> groupInteger(std::string_view value) {
    const std::optional<double> number = groupNumber(value);
    if (!number || std::abs(*number) > 9.0e15 || std::floor(*number) != *number)
        return std::nullopt;
    return static_cast<long long>(*number);
}

} // namespace cad::drawingimport::dxf

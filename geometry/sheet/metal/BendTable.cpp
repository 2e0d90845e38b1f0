// Reading bend tables and looking bends up in them.
#include "geometry/sheet/metal/BendTable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace cad::sheet {

namespace {

std::string rowFailure(std::size_t row, const char* what) {
    return "Bend table line " + std::to_string(row) + ": " + what;
}

// The numbers of one row, or none when a word in it isn't a number.
std::optional<std::vector<double>> numbersOf(std::string_view row) {
    std::vector<double> numbers;
    std::size_t i = 0;
    while (i < row.size()) {
        if (row[i] == ' ') {
            ++i;
            continue;
        }
        std::size_t end = row.find(' ', i);
        if (end == std::string_view::npos) end = row.size();
        const std::string_view word = row.substr(i, end - i);
        double value = 0;
        const char* first = word.data();
        if (!word.empty() && word.front() == '+') ++first;
        const auto [stop, error] = std::from_chars(first, word.data() + word.size(), value);
        if (error != std::errc() || stop != word.data() + word.size() || !std::isfinite(value))
            return std::nullopt;
        numbers.push_back(value);
        i = end;
    }
    return numbers;
}

} // namespace

Result<std::vector<BendTableRow>> parseBendTable(std::string_view text) {
    std::vector<BendTableRow> rows;
    std::size_t number = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find_first_of("\n;", start);
        if (end == std::string_view::npos) end = text.size();
        ++number;
        std::string row(text.substr(start, end - start));
        if (const std::size_t hash = row.find('#'); hash != std::string::npos) row.erase(hash);
        std::replace_if(
            row.begin(), row.end(), [](char c) { return c == ',' || c == '\t' || c == '\r'; }, ' ');
        const std::optional<std::vector<double>> numbers = numbersOf(row);
        if (!numbers || numbers->size() == 1 || numbers->size() > 3)
            return fail(rowFailure(number, "give angle, radius, value (or angle, value)."));
        if (!numbers->empty()) {
            const std::vector<double>& n = *numbers;
            if (!(n[0] > 0 && n[0] <= 180))
                return fail(rowFailure(number, "the angle is between 0 and 180."));
            BendTableRow parsed;
            parsed.angle = n[0];
            if (n.size() == 3) parsed.radius = n[1];
            parsed.value = n.back();
            rows.push_back(parsed);
        }
        start = end + 1;
    }
    return rows;
}

std::optional<BendTableKind> parseBendTableKind(std::string_view word) {
    if (word.empty() || word == "deduction") return BendTableKind::Deduction;
    if (word == "allowance") return BendTableKind::Allowance;
    return std::nullopt;
}

std::optional<double> bendTableValue(const std::vector<BendTableRow>& rows, double angle,
                                     double radius) {
    std::vector<BendTableRow> usable;
    for (const BendTableRow& row : rows)
        if (!row.radius || *row.radius == 0 || std::abs(*row.radius - radius) <= 0.01)
            usable.push_back(row);
    std::stable_sort(
        usable.begin(), usable.end(),
        [](const BendTableRow& a, const BendTableRow& b) { return a.angle < b.angle; });
    for (const BendTableRow& row : usable)
        if (std::abs(row.angle - angle) <= 1e-6) return row.value;
    for (std::size_t i = 0; i + 1 < usable.size(); ++i) {
        const BendTableRow& below = usable[i];
        const BendTableRow& above = usable[i + 1];
        if (below.angle < angle && angle < above.angle) {
            const double t = (angle - below.angle) / (above.angle - below.angle);
            return below.value + t * (above.value - below.value);
        }
    }
    return std::nullopt;
}

} // namespace cad::sheet

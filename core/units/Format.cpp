// Display formatting of lengths, areas and volumes. Digits come from std::to_chars,
// which gives the same text as printf's "%.*f" in any locale.
#include "core/units/Format.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace cad::units {

namespace {

// printf-style "%.*f" into a 64-character buffer: at most 63 characters are kept.
std::string printFixed(double value, int decimals) {
    // A double's exact decimal expansion has fewer than 1100 decimals, so more
    // decimals only add zeros, which the 63-character cut drops anyway.
    constexpr int maxDecimals = 1100;
    std::array<char, 1500> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed,
                      std::min(decimals, maxDecimals));
    if (error != std::errc()) return {};
    const auto length = std::min<std::size_t>(static_cast<std::size_t>(end - buffer.data()), 63);
    return std::string(buffer.data(), length);
}

} // namespace

std::string formatNumber(double value, Length unit, int decimals) {
    if (decimals >= 0) {
        std::string text = printFixed(value, decimals);
        const bool zero = text.find_first_not_of("-0.") == std::string::npos;
        if (zero && !text.empty() && text.front() == '-') text.erase(0, 1);
        return text;
    }
    std::string text = printFixed(value, automaticDecimals(unit));
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
    }
    if (text == "-0") text = "0";
    return text;
}

std::string formatLength(double millimeters, Length unit, bool withUnit, int decimals) {
    std::string text = formatNumber(millimeters / unitScale(unit), unit, decimals);
    if (withUnit) {
        text += ' ';
        text += unitAbbreviation(unit);
    }
    return text;
}

std::string formatArea(double squareMillimeters, Length unit, int decimals) {
    const double scale = unitScale(unit);
    std::string text = formatNumber(squareMillimeters / (scale * scale), unit, decimals);
    text += ' ';
    text += unitAbbreviation(unit);
    text += "\u00B2";
    return text;
}

std::string formatVolume(double cubicMillimeters, Length unit, int decimals) {
    const double scale = unitScale(unit);
    std::string text = formatNumber(cubicMillimeters / (scale * scale * scale), unit, decimals);
    text += ' ';
    text += unitAbbreviation(unit);
    text += "\u00B3";
    return text;
}

} // namespace cad::units

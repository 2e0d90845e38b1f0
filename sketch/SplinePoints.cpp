// Parses "x,y; x,y" lists of fit points; each coordinate goes through the length
// expression reader, so units and parameters work in them.
#include "sketch/SplinePoints.h"
#include "core/TextCase.h"

#include "core/units/ExpressionParser.h"

#include <string>

namespace cad {

Result<std::vector<Point2>> parseSplinePoints(std::string_view text) {
    std::vector<Point2> points;
    std::size_t at = 0;
    while (at <= text.size()) {
        std::size_t end = text.find(';', at);
        if (end == std::string_view::npos) end = text.size();
        std::string_view pair = trimmed(text.substr(at, end - at));
        const bool last = end == text.size();
        at = end + 1;
        if (pair.empty() && last && !points.empty()) break; // "0,0; 5,5;" ends with a separator

        auto bad = [&] {
            return fail("points: expected \"x,y; x,y; ...\" but found \"" + std::string(pair) +
                        "\"");
        };
        std::size_t comma = pair.find(',');
        if (comma == std::string_view::npos || pair.find(',', comma + 1) != std::string_view::npos)
            return bad();
        Result<double> x = units::readLengthText(trimmed(pair.substr(0, comma)));
        Result<double> y = units::readLengthText(trimmed(pair.substr(comma + 1)));
        if (!x || !y) return bad();
        points.push_back({*x, *y});
    }
    return points;
}

} // namespace cad

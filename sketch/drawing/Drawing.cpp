// Layer styles, bounds and the number format shared by the DXF and SVG writers.
#include "sketch/drawing/Drawing.h"

#include "core/ReplaceFile.h"
#include "sketch/drawing/DrawingWriters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>

namespace cad::drawing {

namespace {

struct KnownLayer {
    std::string_view name;
    LayerStyle style;
};

constexpr std::array<KnownLayer, 7> kLayers{{
    {"CUT", {1, "#ff0000"}},
    {"CUT_OUTSIDE", {1, "#ff0000"}},
    {"CUT_INSIDE", {3, "#00e000"}},
    {"ENGRAVE", {5, "#0000ff"}},
    {"CONSTRUCTION", {8, "#808080"}},
    {"SHEET", {8, "#808080"}},
    {"BEND", {6, "#c000c0"}},
}};

constexpr double kPi = 3.14159265358979323846;

class BoxBuilder {
public:
    void add(double x, double y) {
        if (!std::isfinite(x) || !std::isfinite(y)) return;
        box_.minX = any_ ? std::min(box_.minX, x) : x;
        box_.minY = any_ ? std::min(box_.minY, y) : y;
        box_.maxX = any_ ? std::max(box_.maxX, x) : x;
        box_.maxY = any_ ? std::max(box_.maxY, y) : y;
        any_ = true;
    }
    DrawingBounds box() const { return box_; }

private:
    DrawingBounds box_;
    bool any_ = false;
};

// Whether the counter-clockwise sweep from `start` to `end` (degrees) passes `angle`.
bool sweeps(double start, double end, double angle) {
    auto turn = [](double a) { return a - 360 * std::floor(a / 360); };
    const double span = turn(end - start);
    return span == 0 || turn(angle - start) <= span;
}

} // namespace

LayerStyle layerStyle(std::string_view layer) {
    for (const KnownLayer& known : kLayers)
        if (known.name == layer) return known.style;
    return {7, "#000000"};
}

std::vector<std::string> layersInUse(const Drawing& drawing) {
    std::vector<std::string> layers;
    for (const DrawingItem& item : drawing.items)
        if (std::find(layers.begin(), layers.end(), item.layer) == layers.end())
            layers.push_back(item.layer);
    return layers;
}

DrawingBounds drawingBounds(const Drawing& drawing) {
    BoxBuilder box;
    for (const DrawingItem& item : drawing.items) {
        if (item.points.empty()) continue;
        const DrawingPoint c = item.points.front();
        switch (item.kind) {
        case ItemKind::Circle:
            box.add(c.x - item.radius, c.y - item.radius);
            box.add(c.x + item.radius, c.y + item.radius);
            break;
        case ItemKind::Arc: {
            const double r = item.radius;
            for (double a : {item.startAngle, item.endAngle})
                box.add(c.x + r * std::cos(a * kPi / 180), c.y + r * std::sin(a * kPi / 180));
            for (int quarter = 0; quarter < 4; ++quarter)
                if (sweeps(item.startAngle, item.endAngle, 90.0 * quarter))
                    box.add(c.x + r * std::cos(quarter * kPi / 2),
                            c.y + r * std::sin(quarter * kPi / 2));
            break;
        }
        default:
            for (const DrawingPoint& p : item.points) box.add(p.x, p.y);
        }
    }
    return box.box();
}

std::string drawingNumber(double value) {
    if (!std::isfinite(value) || std::abs(value) < 5e-10) return "0";
    std::array<char, 64> text{};
    auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    if (error != std::errc()) return "0";
    std::string out(text.data(), end);
    if (out.find('.') != std::string::npos) {
        out.erase(out.find_last_not_of('0') + 1);
        if (out.back() == '.') out.pop_back();
    }
    return out == "-0" ? "0" : out; // a value that rounds to nothing has no sign
}

Result<void> writeDrawingFile(const std::string& path, const std::string& text) {
    Result<void> written = replaceFile(path, [&](const std::string& temporary) {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        out.close();
        return static_cast<bool>(out);
    });
    if (!written) return fail("Couldn't write " + path + ".");
    return {};
}

Drawing inUnit(const Drawing& drawing, units::Length unit) {
    Drawing out = drawing;
    out.unit = unit;
    const double scale = units::unitScale(drawing.unit) / units::unitScale(unit);
    if (scale == 1) return out;
    for (DrawingItem& item : out.items) {
        for (DrawingPoint& p : item.points) p = {p.x * scale, p.y * scale};
        item.radius *= scale;
    }
    return out;
}

} // namespace cad::drawing

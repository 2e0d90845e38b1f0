// SVG: a root sized in real units with a viewBox in the drawing's unit, y flipped
// so that up in the sketch is up on the page, and one stroked group per layer.
#include "sketch/drawing/DrawingWriters.h"

#include <algorithm>
#include <cmath>

namespace cad::drawing {

namespace {

constexpr double kPi = 3.14159265358979323846;

class Page {
public:
    explicit Page(const Drawing& drawing) : box_(drawingBounds(drawing)) {}
    double width() const { return std::max(1e-6, box_.maxX - box_.minX); }
    double height() const { return std::max(1e-6, box_.maxY - box_.minY); }
    // The point on the page: x from the left edge, y down from the top.
    std::string at(double x, double y) const {
        return drawingNumber(x - box_.minX) + " " + drawingNumber(box_.maxY - y);
    }
    std::string x(double value) const { return drawingNumber(value - box_.minX); }
    std::string y(double value) const { return drawingNumber(box_.maxY - value); }

private:
    DrawingBounds box_;
};

std::string attribute(std::string_view name, const std::string& value) {
    return " " + std::string(name) + "=\"" + value + "\"";
}

std::string element(const Page& page, const DrawingItem& item) {
    if (item.points.empty()) return {};
    const DrawingPoint& p = item.points.front();
    switch (item.kind) {
    case ItemKind::Circle:
        return "<circle" + attribute("cx", page.x(p.x)) + attribute("cy", page.y(p.y)) +
               attribute("r", drawingNumber(item.radius)) + "/>";
    case ItemKind::Line:
        if (item.points.size() < 2) return {};
        return "<line" + attribute("x1", page.x(p.x)) + attribute("y1", page.y(p.y)) +
               attribute("x2", page.x(item.points[1].x)) +
               attribute("y2", page.y(item.points[1].y)) + "/>";
    case ItemKind::Arc: {
        const double a0 = item.startAngle * kPi / 180, a1 = item.endAngle * kPi / 180;
        double span = item.endAngle - item.startAngle;
        span -= 360 * std::floor(span / 360);
        const std::string r = drawingNumber(item.radius);
        // The flip keeps the picture as drawn: counter-clockwise on the page is SVG's
        // negative sweep.
        return "<path" +
               attribute("d", "M" +
                                  page.at(p.x + item.radius * std::cos(a0),
                                          p.y + item.radius * std::sin(a0)) +
                                  " A " + r + " " + r + " 0 " + (span > 180 ? "1" : "0") + " 0 " +
                                  page.at(p.x + item.radius * std::cos(a1),
                                          p.y + item.radius * std::sin(a1))) +
               "/>";
    }
    case ItemKind::Polyline: {
        std::string d = "M" + page.at(p.x, p.y);
        for (std::size_t i = 1; i < item.points.size(); ++i)
            d += " L " + page.at(item.points[i].x, item.points[i].y);
        if (item.closed) d += " Z";
        return "<path" + attribute("d", d) + "/>";
    }
    case ItemKind::Point:
        // A point has no extent to stroke: a dot of the stroke's width marks it.
        return "<circle" + attribute("cx", page.x(p.x)) + attribute("cy", page.y(p.y)) +
               attribute("r", "0") + "/>";
    }
    return {};
}

} // namespace

std::string svgText(const Drawing& drawing) {
    const Page page(drawing);
    const bool feet = drawing.unit == units::Length::Feet;
    // SVG has no feet: a drawing in feet is sized in inches, its coordinates unchanged.
    const double sizeFactor = feet ? 12 : 1;
    const std::string sizeUnit(
        units::unitAbbreviation(feet ? units::Length::Inches : drawing.unit));

    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    text += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\"" +
            attribute("width", drawingNumber(page.width() * sizeFactor) + sizeUnit) +
            attribute("height", drawingNumber(page.height() * sizeFactor) + sizeUnit) +
            attribute("viewBox",
                      "0 0 " + drawingNumber(page.width()) + " " + drawingNumber(page.height())) +
            ">\n";
    for (const std::string& layer : layersInUse(drawing)) {
        text += " <g" + attribute("id", layer) + attribute("fill", "none") +
                attribute("stroke", std::string(layerStyle(layer).svgStroke)) +
                attribute("stroke-width", drawingNumber(0.1 / sizeFactor)) + ">\n";
        for (const DrawingItem& item : drawing.items)
            if (item.layer == layer)
                if (std::string line = element(page, item); !line.empty())
                    text += "  " + line + "\n";
        text += " </g>\n";
    }
    text += "</svg>\n";
    return text;
}

Result<void> writeSvg(const Drawing& drawing, const std::string& path) {
    return writeDrawingFile(path, svgText(drawing));
}

} // namespace cad::drawing

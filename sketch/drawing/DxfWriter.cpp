// DXF R12: a header with the unit and extents, the line type and layer tables,
// then one entity per item. Every group is its code and its value on two lines.
#include "sketch/drawing/DrawingWriters.h"


namespace cad::drawing {

namespace {

class Groups {
public:
    void add(int code, std::string_view value) {
        text_ += std::to_string(code);
        text_ += '\n';
        text_ += value;
        text_ += '\n';
    }
    void number(int code, double value) { add(code, drawingNumber(value)); }
    void integer(int code, int value) { add(code, std::to_string(value)); }
    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

int insUnits(units::Length unit) {
    switch (unit) {
    case units::Length::Inches:
        return 1;
    case units::Length::Feet:
        return 2;
    case units::Length::Centimeters:
        return 5;
    case units::Length::Meters:
        return 6;
    default:
        return 4;
    }
}

void header(Groups& g, const Drawing& drawing) {
    const DrawingBounds box = drawingBounds(drawing);
    const bool imperial =
        drawing.unit == units::Length::Inches || drawing.unit == units::Length::Feet;
    g.add(0, "SECTION");
    g.add(2, "HEADER");
    g.add(9, "$ACADVER");
    g.add(1, "AC1009");
    g.add(9, "$INSUNITS");
    g.integer(70, insUnits(drawing.unit));
    g.add(9, "$MEASUREMENT");
    g.integer(70, imperial ? 0 : 1);
    g.add(9, "$EXTMIN");
    g.number(10, box.minX);
    g.number(20, box.minY);
    g.add(9, "$EXTMAX");
    g.number(10, box.maxX);
    g.number(20, box.maxY);
    g.add(0, "ENDSEC");
}

void tables(Groups& g, const std::vector<std::string>& layers) {
    g.add(0, "SECTION");
    g.add(2, "TABLES");
    g.add(0, "TABLE");
    g.add(2, "LTYPE");
    g.integer(70, 1);
    g.add(0, "LTYPE");
    g.add(2, "CONTINUOUS");
    g.integer(70, 0);
    g.add(3, "Solid line");
    g.integer(72, 65);
    g.integer(73, 0);
    g.add(40, "0.0");
    g.add(0, "ENDTAB");
    g.add(0, "TABLE");
    g.add(2, "LAYER");
    g.integer(70, static_cast<int>(layers.size()));
    for (const std::string& layer : layers) {
        g.add(0, "LAYER");
        g.add(2, layer);
        g.integer(70, 0);
        g.integer(62, layerStyle(layer).dxfColour);
        g.add(6, "CONTINUOUS");
    }
    g.add(0, "ENDTAB");
    g.add(0, "ENDSEC");
}

void point(Groups& g, const DrawingPoint& p, int first = 10) {
    g.number(first, p.x);
    g.number(first + 10, p.y);
    g.integer(first + 20, 0);
}

void entity(Groups& g, const DrawingItem& item) {
    if (item.points.empty()) return;
    const DrawingPoint& p = item.points.front();
    switch (item.kind) {
    case ItemKind::Line:
        if (item.points.size() < 2) return;
        g.add(0, "LINE");
        g.add(8, item.layer);
        point(g, p);
        point(g, item.points[1], 11);
        break;
    case ItemKind::Circle:
        g.add(0, "CIRCLE");
        g.add(8, item.layer);
        point(g, p);
        g.number(40, item.radius);
        break;
    case ItemKind::Arc:
        g.add(0, "ARC");
        g.add(8, item.layer);
        point(g, p);
        g.number(40, item.radius);
        g.number(50, item.startAngle);
        g.number(51, item.endAngle);
        break;
    case ItemKind::Polyline:
        g.add(0, "POLYLINE");
        g.add(8, item.layer);
        g.integer(66, 1);
        point(g, DrawingPoint{});
        g.integer(70, item.closed ? 1 : 0);
        for (const DrawingPoint& vertex : item.points) {
            g.add(0, "VERTEX");
            g.add(8, item.layer);
            point(g, vertex);
        }
        g.add(0, "SEQEND");
        g.add(8, item.layer);
        break;
    case ItemKind::Point:
        g.add(0, "POINT");
        g.add(8, item.layer);
        point(g, p);
        break;
    }
}

} // namespace

std::string dxfText(const Drawing& drawing) {
    Groups g;
    header(g, drawing);
    tables(g, layersInUse(drawing));
    g.add(0, "SECTION");
    g.add(2, "ENTITIES");
    for (const DrawingItem& item : drawing.items) entity(g, item);
    g.add(0, "ENDSEC");
    g.add(0, "EOF");
    return g.take();
}

Result<void> writeDxf(const Drawing& drawing, const std::string& path) {
    return writeDrawingFile(path, dxfText(drawing));
}

} // namespace cad::drawing

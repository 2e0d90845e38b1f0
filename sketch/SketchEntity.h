// The geometry a sketch holds: one plain structure per entity, its kind a tagged
// union. Coordinates are millimetres in the sketch plane; entity angles are degrees.
#pragma once

#include "core/Result.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace cad {

struct Point2 {
    double x = 0;
    double y = 0;
    bool operator==(const Point2&) const = default;
};

struct SketchLine {
    Point2 start, end;
};
struct SketchCircle {
    Point2 center;
    double radius = 0;
};
// Axis-aligned in sketch coordinates, kept normalised (width and height positive).
struct SketchRectangle {
    Point2 corner; // bottom-left
    double width = 0, height = 0;
};
struct SketchPoint {
    Point2 position;
};
struct SketchArc {
    Point2 center;
    double radius = 0;
    double startAngle = 0; // degrees from the sketch x axis
    double sweepAngle = 0; // degrees, counter-clockwise positive
};
struct SketchPolygon {
    Point2 center;
    double radius = 0; // to the corners
    int sides = 0;
    double rotation = 0; // degrees; direction of corner 0
};
struct SketchSpline {
    std::vector<Point2> points; // fit points
    bool closed = false;        // periodic
};
// A straight slot: two end-arc centres and the full width.
struct SketchSlot {
    Point2 start, end;
    double width = 0;
};

enum class TextAlign { Left, Center, Right, Justify };
enum class TextVAlign { Baseline, Bottom, Middle, Top };
enum class TextSizeIs { CapHeight, FontSize };

// Lettering whose glyph outlines are its geometry (sketch/text lays it out). The
// solver sees only the position; everything else is the text's own setting.
struct SketchText {
    std::string text;           // '\n' starts a new line
    std::string font = "Arial"; // an installed font family
    double height = 5;          // mm: the cap height, or the em with sizeIs FontSize
    Point2 position;            // where the first line's baseline starts (by align, valign)
    double angle = 0;           // degrees, the whole text about the position
    TextAlign align = TextAlign::Left;
    TextVAlign valign = TextVAlign::Baseline;
    bool bold = false;
    bool italic = false;
    TextSizeIs sizeIs = TextSizeIs::CapHeight;
    double lineSpacing = 120; // baseline to baseline, percent of the font size
    double tracking = 0;      // extra space between letters, thousandths of an em
    bool kerning = true;      // the font's pair spacing
    double widthScale = 100;  // percent
    double heightScale = 100; // percent
    double baselineShift = 0; // mm; raises the letters
    double charRotation = 0;  // degrees, each letter about its own origin
    bool vertical = false;    // letters stacked top to bottom, columns left to right
    bool allCaps = false;
    std::string path;            // a curve of the same sketch the letters follow; empty: none
    double pathOffset = 0;       // mm along the path before the text starts
    bool pathFlip = false;       // run the other way along the path
    std::string sizeUnit = "mm"; // how the size is shown: pt, mm, cm, m, in or ft

    bool operator==(const SketchText&) const = default;
};

// The alternative index is the kind's tag value, stored in project files.
using SketchGeometry = std::variant<SketchLine, SketchCircle, SketchRectangle, SketchPoint,
                                    SketchArc, SketchPolygon, SketchSpline, SketchSlot, SketchText>;

enum class EntityKind { Line = 0, Circle, Rectangle, Point, Arc, Polygon, Spline, Slot, Text };

struct SketchEntity {
    std::string id; // kind word + number, unique within the sketch
    SketchGeometry geometry;
    bool construction = false; // reference geometry: dashed, not in profiles or exports
    std::string group;         // "Group" + number, or empty
    std::string source;        // for projected geometry: what it follows; the solver never moves it

    EntityKind kind() const { return static_cast<EntityKind>(geometry.index()); }
    bool isProjected() const { return !source.empty(); }
};

// The solver's parameters of an entity, in the documented order (angles in radians),
// and writing them back (radians to degrees).
std::vector<double> entityParameters(const SketchEntity& entity);
void setEntityParameters(SketchEntity& entity, const std::vector<double>& values);

// "Line", "Circle", ...: the ID prefix and the word used in messages.
std::string_view entityKindName(EntityKind kind);
inline std::string_view entityKindName(const SketchEntity& e) { return entityKindName(e.kind()); }

// The prefix followed by the smallest N >= 1 that no entity uses ("Line3"); the
// numbers of deleted entities come back into use.
std::string nextEntityId(const std::vector<SketchEntity>& entities, std::string_view prefix);
const SketchEntity* findEntity(const std::vector<SketchEntity>& entities, std::string_view id);

// Whether the entity's values make sense: ok, or the sentence saying what is wrong
// ("A line needs two distinct end points."). Zero means within 1e-7.
Result<void> validateEntity(const SketchEntity& entity);

} // namespace cad

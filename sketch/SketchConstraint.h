// Constraints and dimensions of a sketch. References are kept as text (entity ID
// and part) and resolved on every solve, so they survive edits to other entities.
#pragma once

#include "core/units/Expression.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

// The numeric value is the table order, stored in project files.
enum class ConstraintType {
    Fix = 0,
    Coincident,
    Horizontal,
    Vertical,
    Parallel,
    Perpendicular,
    Collinear,
    Equal,
    Concentric,
    Midpoint,
    Tangent,
    Symmetric,
    EqualDistance,
    EqualOffset,
    Inline,
    Distance,
    HorizontalDistance,
    VerticalDistance,
    Length,
    Radius,
    Diameter,
    Angle,
};

struct SketchRef {
    std::string entity; // entity ID, or Origin / XAxis / YAxis
    std::string part;   // "end", "top", "corner2"...; empty for the whole entity
    bool operator==(const SketchRef&) const = default;
    std::string text() const { return part.empty() ? entity : entity + "." + part; }
};

struct SketchConstraint {
    std::string id; // prefix + smallest unused number: "Coincident3", "Length1"
    ConstraintType type = ConstraintType::Fix;
    std::vector<SketchRef> refs;
    double value = 0;         // mm, or degrees for an angle; unused by geometric constraints
    std::vector<double> data; // orientation chosen when added; fix keeps its target here
    std::optional<std::pair<double, double>> label; // where a dimension's value is drawn
    std::optional<units::Expression> expression;    // what the value follows
};

// "fix", "horizontal_distance"...: the keyword of commands and files.
std::string_view constraintKeyword(ConstraintType type);
// "Fix", "HorizontalDistance"...: the ID prefix.
std::string_view constraintPrefix(ConstraintType type);
bool isDimension(ConstraintType type);
std::optional<ConstraintType> parseConstraintKeyword(std::string_view keyword);

} // namespace cad

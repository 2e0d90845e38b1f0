// Keywords, ID prefixes and kinds of the constraint types.
#include "sketch/SketchConstraint.h"

#include <array>

namespace cad {

namespace {

struct TypeInfo {
    std::string_view keyword;
    std::string_view prefix;
    bool dimension;
};

constexpr std::array<TypeInfo, 22> kTypes{{
    {"fix", "Fix", false},
    {"coincident", "Coincident", false},
    {"horizontal", "Horizontal", false},
    {"vertical", "Vertical", false},
    {"parallel", "Parallel", false},
    {"perpendicular", "Perpendicular", false},
    {"collinear", "Collinear", false},
    {"equal", "Equal", false},
    {"concentric", "Concentric", false},
    {"midpoint", "Midpoint", false},
    {"tangent", "Tangent", false},
    {"symmetric", "Symmetric", false},
    {"equal_distance", "EqualDistance", false},
    {"equal_offset", "EqualOffset", false},
    {"inline", "Inline", false},
    {"distance", "Distance", true},
    {"horizontal_distance", "HorizontalDistance", true},
    {"vertical_distance", "VerticalDistance", true},
    {"length", "Length", true},
    {"radius", "Radius", true},
    {"diameter", "Diameter", true},
    {"angle", "Angle", true},
}};

const TypeInfo& info(ConstraintType type) {
    auto i = static_cast<std::size_t>(type);
    return kTypes[i < kTypes.size() ? i : 0];
}

} // namespace

std::string_view constraintKeyword(ConstraintType type) { return info(type).keyword; }
std::string_view constraintPrefix(ConstraintType type) { return info(type).prefix; }
bool isDimension(ConstraintType type) { return info(type).dimension; }

std::optional<ConstraintType> parseConstraintKeyword(std::string_view keyword) {
    for (std::size_t i = 0; i < kTypes.size(); ++i)
        if (kTypes[i].keyword == keyword) return static_cast<ConstraintType>(i);
    return std::nullopt;
}

} // namespace cad

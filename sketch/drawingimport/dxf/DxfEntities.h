// The structure of a DXF file: its header's unit, its blocks and its entities, each
// entity a run of groups (a POLYLINE with its VERTEX records).
#pragma once

#include "core/Result.h"
#include "sketch/drawingimport/ImportedDrawing.h"
#include "sketch/drawingimport/dxf/DxfGroups.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace cad::drawingimport::dxf {

// The entity types the reader draws; everything else is Other and ignored.
enum class EntityKind {
    Other,
    Line,
    Circle,
    Arc,
    LwPolyline,
    Polyline,
    Spline,
    Ellipse,
    Point,
    Text,
    MText,
    Insert
};

struct Entity {
    std::string_view type;
    EntityKind kind = EntityKind::Other;
    std::size_t begin = 0; // groups [begin, end) after the entity's "0 / type" group
    std::size_t end = 0;
    std::vector<Entity> vertices; // POLYLINE: its VERTEX records up to SEQEND
};

struct Block {
    Vec2 base;
    std::vector<Entity> entities;
};

struct DxfFile {
    std::vector<Group> groups;
    double millimetresPerUnit = 1; // from $INSUNITS
    std::vector<Entity> entities;
    std::unordered_map<std::string, Block> blocks; // by upper-case name
};

Result<DxfFile> readDxfStructure(std::string_view bytes);

// Millimetres per drawing unit for a $INSUNITS code; 1 for unknown or unitless.
double insUnitsToMillimetres(long long code);

// Upper-case ASCII, for names that DXF compares without case.
std::string upperCase(std::string_view name);

// Reads the groups of one entity by code.
class Fields {
public:
    // One pass over the entity notes where each code first occurs.
    Fields(const std::vector<Group>& groups, const Entity& entity);

    // The first value of `code`, or `fallback` when absent; a value that is present
    // but not a finite number marks the entity as damaged.
    double number(int code, double fallback);
    long long integer(int code, long long fallback);
    std::string_view text(int code) const;
    Vec2 point(int xCode, double fallbackX = 0, double fallbackY = 0) {
        return {number(xCode, fallbackX), number(xCode + 10, fallbackY)};
    }
    std::size_t begin() const { return entity_.begin; }
    std::size_t end() const { return entity_.end; }
    bool damaged() const { return damaged_; }
    void markDamaged() { damaged_ = true; }

private:
    const Group* find(int code) const;

    static constexpr int kIndexedCodes = 240; // every code read by name is below this

    const std::vector<Group>& groups_;
    const Entity& entity_;
    std::array<std::uint32_t, kIndexedCodes> first_;
    bool damaged_ = false;
};

} // namespace cad::drawingimport::dxf

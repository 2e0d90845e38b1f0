// Where the copies of a pattern go: rows and grids, turns about an axis, steps along
// a path. Each copy is one rigid motion, numbered from 2 (the original is copy 1).
#pragma once

#include "core/Result.h"
#include "geometry/References.h"

#include <nlohmann/json.hpp>

#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>

#include <string>
#include <vector>

namespace cad {
class Document;
}

namespace cad::geometry {

enum class PatternKind { Rectangular, Circular, Path };

// "rectangular", "circular" or "path"; anything else is no kind.
std::optional<PatternKind> parsePatternKind(const std::string& word);
// "Rectangular", "Circular", "Path": how messages name the kind.
const char* patternKindTitle(PatternKind kind);

struct PatternCopy {
    int number = 2; // rectangular grids count along the first direction first
    gp_Trsf motion;
};

// No pattern may make more copies than this, so a slip of the keyboard can't tie
// the kernel up for minutes.
inline constexpr int kMaxPatternCopies = 10000;

// The copies the pattern keys describe ("direction", "count", "spacing", "axis",
// "angle", "path", "follow" ...), references resolved on behalf of `context`. A path
// pattern starts from the end of the path nearer `reference`.
Result<std::vector<PatternCopy>> patternCopies(const Document& document, PatternKind kind,
                                               const nlohmann::json& parameters,
                                               const ReferenceContext& context,
                                               const gp_Pnt& reference);

// The mirror across a plane reference: an origin or reference plane, a sketch's
// plane or a flat face.
Result<gp_Trsf> mirrorMotion(const Document& document, const std::string& plane,
                             const ReferenceContext& context);

} // namespace cad::geometry

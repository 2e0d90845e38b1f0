// A constraint with its references resolved into expressions over the solver's
// parameters: what one solve evaluates again and again. Compiling checks that the
// references are of the kinds the constraint type accepts and puts them in the
// order its residual formulas expect.
#pragma once

#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"
#include "sketch/SketchReference.h"
#include "sketch/solver/SolverGeometry.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace cad::solver {

// The most parameters one constraint's residuals depend on (symmetric between two
// arc ends about a polygon edge needs 14), fix on a whole entity aside.
constexpr int kMaxSlots = 16;

struct CompiledConstraint {
    enum class Shape : std::uint8_t {
        FixPoint,     // two points' worth: P − target (also a drag)
        FixEntity,    // one row per parameter of the entity
        PointPoint,   // P, Q
        PointLine,    // P, L
        PointCircle,  // P, C
        Line,         // L
        Circle,       // C
        LineLine,     // L1, L2
        CircleCircle, // C1, C2
        LineCircle,   // L, C (and an arc end in the third operand)
        PointPointLine,
        PointPointPoint,
        TwoPairs, // equal_offset: (1st, 2nd) and (3rd, 4th), each two lines or two circles
    };
    ConstraintType type = ConstraintType::Fix;
    Shape shape = Shape::FixPoint;
    bool arcEnd = false; // tangent: the line meets the arc square to its radius at an end
    int rows = 0;
    int source = -1; // index in the caller's constraint list; -1 for a drag
    std::array<Operand, 4> ops{};
    int slots = 0;
    std::array<int, kMaxSlots> params{}; // the global parameter behind each local slot
    double value = 0;
    double data0 = 1, data1 = 1;
    // Fix on a whole entity: its first parameter, how many, and where its targets and
    // weights sit in the system's pool (target, weight pairs).
    int fixOffset = 0, fixCount = 0, poolOffset = 0;
};

// The parameter layout compiling needs: where each entity's parameters start.
struct ParameterLayout {
    std::vector<int> offset; // per entity, and one past the last
    int count() const { return offset.empty() ? 0 : offset.back(); }
};

// Looks references up by entity ID in constant time; resolution of the part is the
// sketch model's own.
class ReferenceResolver {
public:
    explicit ReferenceResolver(const std::vector<SketchEntity>& entities);
    Result<ResolvedRef> resolve(const SketchRef& ref) const;

private:
    const std::vector<SketchEntity>& entities_;
    std::unordered_map<std::string_view, int> byId_;
    mutable std::vector<SketchEntity> one_; // the single entity a part is resolved against
};

// Local slots of one constraint: the global parameters its residuals depend on.
struct SlotTable {
    std::array<int, kMaxSlots> params{};
    int count = 0;
    std::int8_t slot(int global);
};

// The operand a resolved reference stands for, its parameters entered in `slots`.
Operand operandFor(const ResolvedRef& ref, const std::vector<SketchEntity>& entities,
                   const ParameterLayout& layout, SlotTable& slots);

// Checks the reference kinds of a constraint type and orders them as the residuals
// expect: the message of a mismatch is the type's own ("takes two lines.").
Result<std::vector<ResolvedRef>> orderReferences(ConstraintType type, std::vector<ResolvedRef> refs,
                                                 const std::vector<SketchRef>& texts);

// The full reference-kind message: keyword, ": " and the type's sentence.
std::string referenceMismatch(ConstraintType type);

// Compiles one constraint whose references are resolved and ordered. `fixPool`
// receives the fix targets of a whole entity (target, weight pairs) with `scale`
// as the weight of its angles.
CompiledConstraint compile(const SketchConstraint& constraint, const std::vector<ResolvedRef>& refs,
                           const std::vector<SketchEntity>& entities, const ParameterLayout& layout,
                           double scale, std::vector<double>& fixPool);

// A drag: the point's two residuals P − target.
CompiledConstraint compileDrag(const ResolvedRef& point, Point2 target,
                               const std::vector<SketchEntity>& entities,
                               const ParameterLayout& layout);

} // namespace cad::solver

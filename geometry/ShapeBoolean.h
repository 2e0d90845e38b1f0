// The one boolean every solid feature uses to join, cut or intersect its tool with
// a body: under the kernel time limit, retried once with a fuzzy value, names
// carried through, same-domain faces merged.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/Deadline.h"

#include <chrono>

namespace cad::geometry {

// The numbering differs from the extrude's operations on purpose: join 0, cut 1.
enum class BooleanKind { Join = 0, Cut = 1, Intersect = 2 };

// The fuzzy value of the second attempt.
inline constexpr double kRetryFuzzyValue = 1e-5;

// Whether faces the boolean split that lie on one surface are merged again afterwards.
// Helical threads leave hundreds of strips winding round many turns, which the
// merge would spend minutes on, outside any time limit: they keep them.
enum class MergeFaces { Yes, No };

// Joins, cuts or intersects; each attempt may run for attemptLimit (30 s in use;
// shorter only where a test needs a runaway operation stopped quickly).
Result<NamedShape> shapeBoolean(const NamedShape& body, const NamedShape& tool, BooleanKind kind,
                                std::chrono::nanoseconds attemptLimit = kKernelAttemptLimit,
                                MergeFaces merge = MergeFaces::Yes);

// Whether booleans spread their work over several threads (on by default).
void setParallelBooleans(bool parallel);
bool parallelBooleans();

} // namespace cad::geometry

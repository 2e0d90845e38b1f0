// Hole options to a resolved hole: the size table gives the diameter for the fit
// and the counterbore and countersink a size implies.
#include "geometry/holes/ResolvedHole.h"

#include "geometry/holes/ThreadSizes.h"

#include <cmath>
#include <numbers>

namespace cad {

namespace {

// The internal thread's minor diameter is the major less 5/8 of the fundamental
// triangle's height on each side: 1.082532 pitches.
constexpr double kInternalMinorFactor = 1.082532;

double halfAngleTan(double includedDegrees) {
    return std::tan(includedDegrees / 2 * std::numbers::pi / 180);
}

} // namespace

Result<ResolvedHole> resolveHole(const HoleOptions& o) {
    if (o.kind != "simple" && o.kind != "counterbore" && o.kind != "countersink")
        return fail("The hole type must be simple, counterbore or countersink.");

    ResolvedHole drill;
    drill.kind = o.kind;
    drill.depth = o.depth;
    drill.through = o.through;
    drill.tipAngle = o.tipAngle;
    drill.counterboreDiameter = o.counterboreDiameter;
    drill.counterboreDepth = o.counterboreDepth;
    drill.countersinkDiameter = o.countersinkDiameter;
    drill.countersinkAngle = o.countersinkAngle;
    drill.threadLength = o.threadLength;

    if (!o.size.empty()) {
        const ThreadSize* size = findThreadSize(o.size);
        if (!size)
            return fail(
                "'" + o.size +
                "' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC, #10-32 UNF).");
        if (o.fit == "tapped") {
            drill.tapped = true;
            drill.modeled = o.modeled;
            drill.threadMajor = size->major;
            drill.threadPitch = size->pitch;
            drill.diameter =
                o.modeled ? size->major - kInternalMinorFactor * size->pitch : size->tapDrill;
        } else if (o.fit == "close") {
            drill.diameter = size->close;
        } else if (o.fit == "normal") {
            drill.diameter = size->normal;
        } else if (o.fit == "loose") {
            drill.diameter = size->loose;
        } else {
            return fail("The fit must be tapped, close, normal or loose.");
        }
        if (drill.counterboreDiameter == 0) drill.counterboreDiameter = size->counterboreDiameter;
        if (drill.counterboreDepth == 0) drill.counterboreDepth = size->counterboreDepth;
        if (drill.countersinkDiameter == 0) drill.countersinkDiameter = size->countersinkDiameter;
        if (drill.countersinkAngle == 0) drill.countersinkAngle = size->countersinkAngle;
    } else {
        if (!(o.diameter > 0)) return fail("Give a hole diameter, or a thread size such as M6.");
        drill.diameter = o.diameter;
        // Without a size to take it from, a countersink is the common 90°.
        if (drill.countersinkAngle == 0) drill.countersinkAngle = 90;
    }

    if (o.kind == "counterbore" && !(drill.counterboreDiameter > 0 && drill.counterboreDepth > 0))
        return fail("Give the counterbore's diameter and depth (or a thread size to take them "
                    "from).");
    if (o.kind == "countersink" && !(drill.countersinkDiameter > 0))
        return fail("Give the countersink's diameter (or a thread size to take it from).");
    return drill;
}

Result<void> checkResolvedHole(const ResolvedHole& s) {
    if (!(s.diameter > 1e-7)) return fail("The hole diameter must be greater than zero.");
    if (!s.through && !(s.depth > 1e-7)) return fail("The hole depth must be greater than zero.");
    if (s.kind == "counterbore" && !(s.counterboreDiameter > s.diameter && s.counterboreDepth > 0))
        return fail("The counterbore must be wider than the hole and have a depth.");
    if (s.kind == "countersink" &&
        !(s.countersinkDiameter > s.diameter && s.countersinkAngle > 0 && s.countersinkAngle < 180))
        return fail("The countersink must be wider than the hole, with an angle between 0° and "
                    "180°.");
    return {};
}

double wallStart(const ResolvedHole& s) {
    if (s.kind == "counterbore") return s.counterboreDepth;
    if (s.kind == "countersink")
        return (s.countersinkDiameter / 2 - s.diameter / 2) / halfAngleTan(s.countersinkAngle);
    return 0;
}

} // namespace cad

// Hole options to a resolved hole: the size table gives the diameter for the fit
// and the counterbore and countersink a size implies.
#include "geometry/holes/HoleSpec.h"

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

Result<HoleSpec> resolveHoleSpec(const HoleOptions& o) {
    if (o.kind != "simple" && o.kind != "counterbore" && o.kind != "countersink")
        return fail("The hole type must be simple, counterbore or countersink.");

    HoleSpec spec;
    spec.kind = o.kind;
    spec.depth = o.depth;
    spec.through = o.through;
    spec.tipAngle = o.tipAngle;
    spec.counterboreDiameter = o.counterboreDiameter;
    spec.counterboreDepth = o.counterboreDepth;
    spec.countersinkDiameter = o.countersinkDiameter;
    spec.countersinkAngle = o.countersinkAngle;
    spec.threadLength = o.threadLength;

    if (!o.size.empty()) {
        const ThreadSize* size = findThreadSize(o.size);
        if (!size)
            return fail(
                "'" + o.size +
                "' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC, #10-32 UNF).");
        if (o.fit == "tapped") {
            spec.tapped = true;
            spec.modeled = o.modeled;
            spec.threadMajor = size->major;
            spec.threadPitch = size->pitch;
            spec.diameter =
                o.modeled ? size->major - kInternalMinorFactor * size->pitch : size->tapDrill;
        } else if (o.fit == "close") {
            spec.diameter = size->close;
        } else if (o.fit == "normal") {
            spec.diameter = size->normal;
        } else if (o.fit == "loose") {
            spec.diameter = size->loose;
        } else {
            return fail("The fit must be tapped, close, normal or loose.");
        }
        if (spec.counterboreDiameter == 0) spec.counterboreDiameter = size->counterboreDiameter;
        if (spec.counterboreDepth == 0) spec.counterboreDepth = size->counterboreDepth;
        if (spec.countersinkDiameter == 0) spec.countersinkDiameter = size->countersinkDiameter;
        if (spec.countersinkAngle == 0) spec.countersinkAngle = size->countersinkAngle;
    } else {
        if (!(o.diameter > 0)) return fail("Give a hole diameter, or a thread size such as M6.");
        spec.diameter = o.diameter;
        // Without a size to take it from, a countersink is the common 90°.
        if (spec.countersinkAngle == 0) spec.countersinkAngle = 90;
    }

    if (o.kind == "counterbore" && !(spec.counterboreDiameter > 0 && spec.counterboreDepth > 0))
        return fail("Give the counterbore's diameter and depth (or a thread size to take them "
                    "from).");
    if (o.kind == "countersink" && !(spec.countersinkDiameter > 0))
        return fail("Give the countersink's diameter (or a thread size to take it from).");
    return spec;
}

Result<void> checkHoleSpec(const HoleSpec& s) {
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

double wallStart(const HoleSpec& s) {
    if (s.kind == "counterbore") return s.counterboreDepth;
    if (s.kind == "countersink")
        return (s.countersinkDiameter / 2 - s.diameter / 2) / halfAngleTan(s.countersinkAngle);
    return 0;
}

} // namespace cad

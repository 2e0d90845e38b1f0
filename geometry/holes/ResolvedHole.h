// What a hole feature's options come to: the hole's kind and sizes with the thread
// size and fit looked up, the counterbore and countersink filled in from the size.
#pragma once

#include "core/Result.h"

#include <string>

namespace cad {

// The options as the user gave them; 0 means "from the size" where noted.
struct HoleOptions {
    std::string size;               // a thread size name, or empty for a plain diameter
    std::string fit = "tapped";     // "tapped", "close", "normal" or "loose"
    double diameter = 0;            // used when there is no size
    std::string kind = "simple";    // "simple", "counterbore" or "countersink"
    double depth = 10;              // to the end of the full diameter
    bool through = false;           // through everything along the axis
    double tipAngle = 118;          // included degrees; 0 = flat bottom
    double counterboreDiameter = 0; // 0 = from the size
    double counterboreDepth = 0;    // 0 = from the size
    double countersinkDiameter = 0; // 0 = from the size
    double countersinkAngle = 0;    // included degrees; 0 = from the size
    double threadLength = 0;        // tapped holes; 0 = the full depth
    bool modeled = false;           // tapped holes: a real helical thread

    bool operator==(const HoleOptions&) const = default;
};

struct ResolvedHole {
    std::string kind;
    double diameter = 0;
    double depth = 0;
    bool through = false;
    double tipAngle = 0;
    double counterboreDiameter = 0, counterboreDepth = 0;
    double countersinkDiameter = 0, countersinkAngle = 0;
    double threadLength = 0;
    bool tapped = false;
    double threadMajor = 0, threadPitch = 0; // the thread's, when tapped
    bool modeled = false;                    // a tapped hole with a modeled thread
};

// Looks the size up and picks the diameter by the fit; refuses what can't make a
// hole ("Give a hole diameter, or a thread size such as M6.").
Result<ResolvedHole> resolveHole(const HoleOptions& options);

// The checks a hole's shape needs: a diameter and depth, a counterbore or countersink
// wider than the hole.
Result<void> checkResolvedHole(const ResolvedHole& drill);

// How far below the face the full diameter starts: under the counterbore's floor or
// where the countersink meets the hole, else at the face.
double wallStart(const ResolvedHole& drill);

} // namespace cad

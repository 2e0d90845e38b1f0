// The table of standard thread sizes (ISO metric coarse and fine, UNC, UNF) with the
// tap drills, clearance holes, counterbores and countersinks derived from each.
#pragma once

#include "core/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace cad {

struct ThreadSize {
    std::string name;                        // "M6", "M10x1.25", "1/4-20 UNC", "#10-32 UNF"
    std::string standard;                    // "ISO metric", "UNC" or "UNF"
    double major = 0;                        // mm
    double pitch = 0;                        // mm
    double tapDrill = 0;                     // mm
    double close = 0, normal = 0, loose = 0; // clearance hole diameters, mm
    double counterboreDiameter = 0, counterboreDepth = 0;
    double countersinkDiameter = 0;
    double countersinkAngle = 0; // included degrees: 90 metric, 82 inch

    bool isMetric() const { return standard == "ISO metric"; }
    // Fine metric sizes carry their pitch in the name ("M10x1.25").
    bool isFine() const { return name.find('x') != std::string::npos; }
};

// Every size in lookup order; built once, on first use, and kept until exit.
const std::vector<ThreadSize>& threadSizes();

// The size a user typed: white space and letter case don't matter; "1/4-20" finds the
// UNC record, "#10-32" the UNF one, "M6x1" the coarse M6. Null when nothing matches.
const ThreadSize* findThreadSize(std::string_view text);

// The standard thread that best fits a diameter: a hole's drill (internal) or a
// cylinder's outside (external), within 3 %; fine and UNF sizes count slightly worse.
Result<const ThreadSize*> matchThreadSize(double diameter, bool internal);

// A number as printf's "%g" (or "%.<precision>g") writes it, in any locale.
std::string formatGeneral(double value, int precision = 6);

} // namespace cad

// Bend lengths against the bend formulas worked out here by hand, and bend tables as
// a shop writes them: comments, separators, interpolation, and the rows refused.
#include "geometry/sheet/metal/SheetRules.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cad::sheet {
namespace {

SheetRules rules(double thickness, double radius, double k, const char* table = "",
                 const char* kind = "") {
    nlohmann::json parameters{{"thickness", thickness},
                              {"bend_radius", radius},
                              {"k_factor", k},
                              {"bend_table", table},
                              {"bend_table_kind", kind}};
    Result<SheetRules> read = readSheetRules(parameters, 0.44);
    EXPECT_TRUE(read) << read.error();
    return read ? *read : SheetRules{};
}

TEST(BendLength, KFactorAndTablesFollowTheFormulas) {
    const double pi = 3.14159265358979323846;
    // 90 degrees, R 2, T 2, K 0.44: a quarter turn of radius 2 + 0.88.
    EXPECT_NEAR(bendLength(rules(2, 2, 0.44), 90, 2), pi / 2 * 2.88, 1e-12);
    EXPECT_NEAR(neutralRadius(rules(2, 2, 0.44), 90, 2), 2.88, 1e-12);

    // A deduction row: 2 (R + T) tan 45 - 3.4; an angle it doesn't cover falls back.
    const SheetRules deduction = rules(2, 2, 0.44, "90, 2, 3.4");
    EXPECT_NEAR(bendLength(deduction, 90, 2), 2 * 4 * 1.0 - 3.4, 1e-12);
    EXPECT_NEAR(bendLength(deduction, 60, 2), pi / 3 * 2.88, 1e-12);
    EXPECT_NEAR(bendLength(deduction, 90, 3), pi / 2 * (3 + 0.88), 1e-12); // another radius

    // Allowances interpolate between angles; "angle, value" rows fit any radius.
    const SheetRules allowance =
        rules(1, 0, 0.4, "# shop figures\n30, 1.0 ;90\t2.0 # right angle\r\n", "allowance");
    EXPECT_EQ(allowance.bendRadius, 1); // 0 means the thickness
    EXPECT_NEAR(bendLength(allowance, 60, 5), 1.5, 1e-12);
    EXPECT_NEAR(bendLength(allowance, 90, 1), 2.0, 1e-12);
    EXPECT_NEAR(bendLength(allowance, 120, 1), 2 * pi / 3 * 1.4, 1e-12); // past the rows

    // A deduction does not apply to a fold right back.
    EXPECT_NEAR(bendLength(rules(1, 1, 0.5, "180, 1, 0.5"), 180, 1), pi * 1.5, 1e-12);
}

TEST(BendTable, BadRowsAndRulesAreRefusedByLine) {
    EXPECT_TRUE(parseBendTable("90, 2"));
    EXPECT_TRUE(parseBendTable(""));
    EXPECT_EQ(parseBendTable("90").error(),
              "Bend table line 1: give angle, radius, value (or angle, value).");
    EXPECT_EQ(parseBendTable("90, 2, 3.4; 45, 2, 1.1, 7").error(),
              "Bend table line 2: give angle, radius, value (or angle, value).");
    EXPECT_EQ(parseBendTable("# header\n\n200, 1").error(),
              "Bend table line 3: the angle is between 0 and 180.");
    EXPECT_EQ(parseBendTable("90, two, 3").error(),
              "Bend table line 1: give angle, radius, value (or angle, value).");

    auto refusal = [](nlohmann::json parameters) {
        Result<SheetRules> read = readSheetRules(parameters, 0.44);
        return read ? std::string() : read.error();
    };
    EXPECT_EQ(refusal({{"thickness", 0}}), "The thickness must be greater than zero.");
    EXPECT_EQ(refusal({{"thickness", 2}, {"bend_radius", -1}}),
              "The bend radius can't be negative.");
    EXPECT_EQ(refusal({{"thickness", 2}, {"k_factor", 1.0}}), "The K-factor is between 0 and 1.");
    // Left out, the K-factor is the material's.
    EXPECT_NEAR(readSheetRules({{"thickness", 2}}, 0.45)->kFactor, 0.45, 0);
}

} // namespace
} // namespace cad::sheet

// The thread size table and what holes take from it: lookups by typed name, the
// derived drills and counterbores, matching a diameter, and what resolving a hole refuses.
#include "geometry/holes/ResolvedHole.h"
#include "geometry/holes/ThreadSizes.h"

#include <gtest/gtest.h>

#include <string>

namespace cad {

namespace {

std::string found(const char* text) {
    const ThreadSize* size = findThreadSize(text);
    return size ? size->name : "(none)";
}

HoleOptions sized(const char* size, const char* fit = "tapped") {
    HoleOptions o;
    o.size = size;
    o.fit = fit;
    return o;
}

} // namespace

TEST(ThreadSizes, TypedNamesFindTheirRecords) {
    EXPECT_EQ(found("m6"), "M6");
    EXPECT_EQ(found(" M6 "), "M6");
    EXPECT_EQ(found("M6x1"), "M6");
    EXPECT_EQ(found("m10 x 1.25"), "M10x1.25");
    EXPECT_EQ(found("1/4-20"), "1/4-20 UNC");
    EXPECT_EQ(found("1/4-28unf"), "1/4-28 UNF");
    EXPECT_EQ(found("#10-32"), "#10-32 UNF");
    EXPECT_EQ(found("1-1/8-7"), "1-1/8-7 UNC");
    EXPECT_EQ(found("M6x0.5"), "(none)");
    EXPECT_EQ(found(""), "(none)");
    EXPECT_EQ(threadSizes().size(), 33u + 36u + 25u + 24u);
}

TEST(ThreadSizes, DerivedValuesFollowTheTablesAndFormulas) {
    const ThreadSize& m6 = *findThreadSize("M6");
    EXPECT_EQ(m6.tapDrill, 5);
    EXPECT_EQ(m6.close, 6.4);
    EXPECT_EQ(m6.countersinkDiameter, 13.44);
    EXPECT_EQ(m6.countersinkAngle, 90);
    const ThreadSize& m5 = *findThreadSize("M5");
    EXPECT_EQ(m5.counterboreDiameter, 10);
    EXPECT_EQ(m5.counterboreDepth, 5.4);
    // Outside the counterbore table: 2 * 7 + 0.5 to the half millimetre, 7 + 0.6 deep.
    const ThreadSize& m7 = *findThreadSize("M7");
    EXPECT_EQ(m7.counterboreDiameter, 14.5);
    EXPECT_NEAR(m7.counterboreDepth, 7.6, 1e-12);
    EXPECT_EQ(findThreadSize("M20")->countersinkDiameter, 40.32);
    // Fine sizes: the drill is major less pitch to 0.05; clearances by the major.
    const ThreadSize& fine = *findThreadSize("M6x0.75");
    EXPECT_EQ(fine.tapDrill, 5.25);
    EXPECT_EQ(fine.close, 6.4);

    const ThreadSize& quarter = *findThreadSize("1/4-20 UNC");
    EXPECT_NEAR(quarter.major, 6.35, 1e-12);
    EXPECT_NEAR(quarter.pitch, 1.27, 1e-12);
    EXPECT_NEAR(quarter.tapDrill, 5.1126, 1e-4);
    EXPECT_EQ(quarter.countersinkAngle, 82);
    EXPECT_NEAR(quarter.counterboreDiameter, 25.4 * (0.375 + 0.0625), 1e-12);
    EXPECT_NEAR(findThreadSize("#10-32")->major, 4.826, 1e-12);
    EXPECT_NEAR(findThreadSize("1-1/2-6")->major, 38.1, 1e-12);
    EXPECT_EQ(findThreadSize("2-4.5")->name, "2-4.5 UNC");
}

TEST(ThreadSizes, DiametersMatchTheNearestStandardWithinThreePercent) {
    EXPECT_EQ((*matchThreadSize(6.02, false))->name, "M6");
    EXPECT_EQ((*matchThreadSize(6.5, false))->name, "1/4-20 UNC"); // 2.4 % off
    EXPECT_EQ((*matchThreadSize(5.0, true))->name, "M6");
    EXPECT_EQ((*matchThreadSize(6.8, true))->name, "M8");
    EXPECT_EQ(matchThreadSize(100, false).error(),
              "No standard thread fits a 100 mm cylinder; give a size.");
    EXPECT_EQ(matchThreadSize(0.123456, true).error(),
              "No standard thread fits a 0.123 mm hole; give a size.");
}

TEST(ResolvedHoles, SizesAndFitsPickTheDiameter) {
    EXPECT_EQ(resolveHole(sized("M6"))->diameter, 5);
    EXPECT_TRUE(resolveHole(sized("M6"))->tapped);
    EXPECT_EQ(resolveHole(sized("M6", "close"))->diameter, 6.4);
    EXPECT_FALSE(resolveHole(sized("M6", "close"))->tapped);
    HoleOptions modeled = sized("M6");
    modeled.modeled = true;
    EXPECT_NEAR(resolveHole(modeled)->diameter, 6 - 1.082532, 1e-12);

    HoleOptions counterbore = sized("M5", "normal");
    counterbore.kind = "counterbore";
    Result<ResolvedHole> bored = resolveHole(counterbore);
    EXPECT_EQ(bored->counterboreDiameter, 10);
    EXPECT_EQ(bored->counterboreDepth, 5.4);
    EXPECT_EQ(wallStart(*bored), 5.4);
    counterbore.counterboreDepth = 3;
    EXPECT_EQ(resolveHole(counterbore)->counterboreDepth, 3);

    HoleOptions plain;
    plain.diameter = 4;
    plain.kind = "countersink";
    plain.countersinkDiameter = 8;
    Result<ResolvedHole> sunk = resolveHole(plain);
    EXPECT_EQ(sunk->countersinkAngle, 90);
    EXPECT_NEAR(wallStart(*sunk), 2, 1e-12); // 90°: as deep as the radius grows
    sunk->countersinkDiameter = 4;
    EXPECT_EQ(checkResolvedHole(*sunk).error(),
              "The countersink must be wider than the hole, with an angle between 0° and 180°.");
}

TEST(ResolvedHoles, RefusalsSayWhatIsMissing) {
    HoleOptions o = sized("M6");
    o.kind = "slot";
    EXPECT_EQ(resolveHole(o).error(),
              "The hole type must be simple, counterbore or countersink.");
    EXPECT_EQ(resolveHole(sized("M6x0.5")).error(),
              "'M6x0.5' isn't a thread size I know (e.g. M6, M10x1.25, 1/4-20 UNC, #10-32 UNF).");
    EXPECT_EQ(resolveHole(sized("M6", "snug")).error(),
              "The fit must be tapped, close, normal or loose.");
    EXPECT_EQ(resolveHole(HoleOptions{}).error(),
              "Give a hole diameter, or a thread size such as M6.");
    HoleOptions bore;
    bore.diameter = 5;
    bore.kind = "counterbore";
    bore.counterboreDiameter = 9;
    EXPECT_EQ(resolveHole(bore).error(),
              "Give the counterbore's diameter and depth (or a thread size to take them from).");
    bore.kind = "countersink";
    EXPECT_EQ(resolveHole(bore).error(),
              "Give the countersink's diameter (or a thread size to take it from).");
    bore.kind = "simple";
    bore.depth = 0;
    EXPECT_EQ(checkResolvedHole(*resolveHole(bore)).error(),
              "The hole depth must be greater than zero.");
    bore.through = true;
    EXPECT_TRUE(checkResolvedHole(*resolveHole(bore)).ok());
}

} // namespace cad

// Constraint keywords and prefixes read back to the same type.
#include "sketch/SketchConstraint.h"

#include <gtest/gtest.h>

using namespace cad;

TEST(ConstraintTypes, KeywordsPrefixesAndDimensions) {
    for (int i = 0; i <= static_cast<int>(ConstraintType::Angle); ++i) {
        auto type = static_cast<ConstraintType>(i);
        EXPECT_EQ(parseConstraintKeyword(constraintKeyword(type)), type);
    }
    EXPECT_EQ(constraintPrefix(ConstraintType::EqualDistance), "EqualDistance");
    EXPECT_EQ(constraintKeyword(ConstraintType::HorizontalDistance), "horizontal_distance");
    EXPECT_FALSE(isDimension(ConstraintType::Tangent));
    EXPECT_TRUE(isDimension(ConstraintType::Distance));
    EXPECT_EQ(parseConstraintKeyword("Horizontal"), std::nullopt);
}

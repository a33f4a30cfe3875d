// The named wire scaling rules: which precision each multiplies in, truncation toward zero,
// and what happens outside the int range.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "qm_command.h"

namespace {

struct ScalingRow {
    const char* behaviour;
    int (*rule)(float);
    float value;
    int expected;
};

TEST(WireScaling, OutgoingRulesTruncateTowardZeroInTheirOwnPrecision) {
    const ScalingRow rows[] = {
        {"quaternion components in millionths", wire::millionths, 0.7071068f, 707106},
        {"per_six truncates after the division", wire::per_six, 100.0f, 16666},
        {"install angles go out whole: 90.9 is 90", wire::whole, 90.9f, 90},
        {"whole numbers truncate toward zero: -0.5 is 0", wire::whole, -0.5f, 0},
        {"beyond the int range saturates high", wire::micrometres, 1.0e6f, INT_MAX},
        {"beyond the int range saturates low", wire::thousandths, -1.0e10f, INT_MIN},
        {"NaN goes out as 0", wire::thousandths, std::numeric_limits<float>::quiet_NaN(), 0},
    };
    for (const ScalingRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        EXPECT_EQ(row.rule(row.value), row.expected);
    }
}

TEST(CopyText, KeepsAtMostTheGivenCharactersAndAlwaysTerminates) {
    char field[5];
    copy_text(field, "12345");
    EXPECT_STREQ(field, "1234");
    char wide[20];
    copy_text(wide, "1.4.2-beta.7", 8);
    EXPECT_STREQ(wide, "1.4.2-be");
    copy_text(wide, nullptr);
    EXPECT_STREQ(wide, "");
}

}  // namespace

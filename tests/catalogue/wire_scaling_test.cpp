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
        {"joint angle 10.0009 deg truncates, not rounds", wire::millidegrees, 10.0009f, 10000},
        {"a tiny negative joint angle goes out as 0", wire::millidegrees, -0.0005f, 0},
        {"joint angles multiply in double: 2.3f gives 2299", wire::millidegrees, 2.3f, 2299},
        {"thousandths multiply in single precision: 2.3f gives 2300", wire::thousandths, 2.3f, 2300},
        {"0.1234567 m is 123456 micrometres", wire::micrometres, 0.1234567f, 123456},
        {"-0.0000009 m truncates to 0", wire::micrometres, -0.0000009f, 0},
        {"quaternion components in millionths", wire::millionths, 0.7071068f, 707106},
        {"3.1415927 rad is 3141 milliradians", wire::milliradians, 3.1415927f, 3141},
        {"per_six: 180 deg/s goes out as 30000", wire::per_six, 180.0f, 30000},
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

TEST(WireScaling, IncomingValuesAreDividedBackByTheirFactor) {
    EXPECT_FLOAT_EQ(wire::from_thousandths(-178000), -178.0f);
    EXPECT_FLOAT_EQ(wire::from_micrometres(1000000), 1.0f);
    EXPECT_FLOAT_EQ(wire::from_per_six(30000), 180.0f);
    EXPECT_FLOAT_EQ(wire::from_per_six(60000), 360.0f);
}

TEST(WireScaling, PoseGoesOutAsMicrometresThenMilliradians) {
    qm_pose_t pose{};
    pose.position = {0.1f, -0.2f, 0.3f};
    pose.quaternion = {1.0f, 0.0f, 0.0f, 0.0f};
    pose.euler = {3.1415927f, -1.5f, 0.0005f};
    EXPECT_EQ(wire::pose6(pose), (std::array<int, 6>{100000, -200000, 300000, 3141, -1500, 0}));
    EXPECT_EQ(wire::pose_quat7(pose), (std::array<int, 7>{100000, -200000, 300000, 1000000, 0, 0, 0}));
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

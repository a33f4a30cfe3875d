// Decoding realtime state datagrams.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "log_capture.h"
#include "qm_realtime.h"

namespace {

using Record = qm_realtime_arm_joint_state_t;

// The three required sections of a minimal push.
constexpr const char* kMinimal =
    R"({"joint_status":{"joint_position":[1000,-2000,0,0,0,0],"joint_current":[1500,0,0,0,0,0],)"
    R"("joint_en_flag":[1,0,1,1,1,1],"joint_err_code":[0,7,0,0,0,0],"joint_temperature":[25000,0,0,0,0,0],)"
    R"("joint_voltage":[48000,0,0,0,0,0],"joint_speed":[1000,0,0,0,0,0]},)"
    R"("waypoint":{"quat":[1000000,0,0,0],"euler":[3142,0,-1571],"position":[100000,0,-250000]},)"
    R"("err":[0]})";

// kMinimal with `edit` applied to its tree.
std::string datagram(const std::function<void(cJSON*)>& edit) {
    cJSON* tree = cJSON_Parse(kMinimal);
    edit(tree);
    char* text = cJSON_PrintUnformatted(tree);
    std::string out(text);
    cJSON_free(text);
    cJSON_Delete(tree);
    return out;
}

void add(cJSON* tree, const char* key, const char* json) {
    cJSON_AddItemToObject(tree, key, cJSON_Parse(json));
}

Record parse(const std::string& text, int expected = 0) {
    Record record;
    EXPECT_EQ(parse_qm_realtime_arm_joint_state(text.c_str(), &record), expected) << text;
    return record;
}

TEST(RealtimeParse, MinimalPushFillsJointsPoseAndErrors) {
    Record r = parse(kMinimal);
    EXPECT_FLOAT_EQ(r.joint_status.joint_position[0], 1.0f);
    EXPECT_FLOAT_EQ(r.joint_status.joint_position[1], -2.0f);
    EXPECT_FLOAT_EQ(r.joint_status.joint_current[0], 1.5f);
    EXPECT_TRUE(r.joint_status.joint_en_flag[0]);
    EXPECT_FALSE(r.joint_status.joint_en_flag[1]);
    EXPECT_EQ(r.joint_status.joint_err_code[1], 7);
    EXPECT_FLOAT_EQ(r.joint_status.joint_temperature[0], 25.0f);
    EXPECT_FLOAT_EQ(r.joint_status.joint_voltage[0], 48.0f);
    EXPECT_FLOAT_EQ(r.joint_status.joint_speed[0], 6.0f) << "speed is scaled by 6 / 1000";
    EXPECT_FLOAT_EQ(r.waypoint.quaternion.w, 1.0f);
    EXPECT_FLOAT_EQ(r.waypoint.euler.rx, 3.142f);
    EXPECT_FLOAT_EQ(r.waypoint.euler.rz, -1.571f);
    EXPECT_FLOAT_EQ(r.waypoint.position.x, 0.1f);
    EXPECT_FLOAT_EQ(r.waypoint.position.z, -0.25f);
    EXPECT_EQ(r.err.err_len, 1);
    EXPECT_EQ(r.arm_current_status, QM_IDLE_E);
    EXPECT_EQ(r.qm_plus_state, 0);
}

TEST(RealtimeParse, OptionalSectionsAreDecoded) {
    Record r = parse(datagram([](cJSON* t) {
        add(t, "arm_current_status", R"("move_J")");
        add(t, "aloha_state", R"({"io1_state":1,"io2_state":0})");
        add(t, "hand",
            R"({"hand_pos":[1,2,3,4,5,6],"hand_angle":[6,5,4,3,2,1],"hand_force":[0,0,0,0,0,9],)"
            R"("hand_state":[1,1,1,1,1,1],"hand_err":3})");
        add(t, "lift_state", R"({"pos":1500,"height":200,"current":5,"err_flag":0,"en_flag":1})");
        add(t, "expand_state", R"({"joint_id":2,"mode":1,"pos":-500,"current":3,"err_flag":1,"en_flag":0})");
        add(t, "six_force_sensor",
            R"({"force":[1000,0,0,0,0,0],"zero_force":[0,2000,0,0,0,0],"coordinate":1})");
    }));
    EXPECT_EQ(r.arm_current_status, QM_MOVE_J_E);
    EXPECT_EQ(r.aloha_state.io1_state, 1);
    EXPECT_EQ(r.handState.hand_pos[5], 6);
    EXPECT_EQ(r.handState.hand_force[5], 9);
    EXPECT_EQ(r.handState.hand_err, 3);
    EXPECT_FLOAT_EQ(r.liftState.pos, 1.5f);
    EXPECT_EQ(r.liftState.height, 200);
    EXPECT_EQ(r.liftState.en_flag, 1);
    EXPECT_FLOAT_EQ(r.expandState.pos, -0.5f);
    EXPECT_EQ(r.expandState.joint_id, 2);
    EXPECT_FLOAT_EQ(r.force_sensor.force[0], 1.0f);
    EXPECT_FLOAT_EQ(r.force_sensor.zero_force[1], 2.0f);
    EXPECT_EQ(r.force_sensor.coordinate, 1);
}

TEST(RealtimeParse, OneAxisSensorWinsOverTheSixAxisOne) {
    Record r = parse(datagram([](cJSON* t) {
        add(t, "one_force_sensor", R"({"force":[7000],"zero_force":[],"coordinate":2})");
        add(t, "six_force_sensor", R"({"force":[1000,1000,1000,1000,1000,1000],"coordinate":1})");
    }));
    EXPECT_FLOAT_EQ(r.force_sensor.force[0], 7.0f);
    EXPECT_FLOAT_EQ(r.force_sensor.force[1], 1.0f) << "elements the one-axis section lacks stay";
    EXPECT_EQ(r.force_sensor.coordinate, 2);
}

TEST(RealtimeParse, EndEffectorSectionsAsObjects) {
    Record r = parse(datagram([](cJSON* t) {
        add(t, "qm_plus_state",
            R"({"sys_state":4,"pos":[1,2],"tsa":[4000000000],"normal_force":[1,2,3],)"
            R"("touch_data":[9]})");
        add(t, "qm_plus_base",
            R"({"manu":"maker-name-too-long","type":2,"hv":"1.0","force":true,)"
            R"("touch_num":5,"pos_up":[100,200]})");
    }));
    EXPECT_EQ(r.plus_state_info.sys_state, 4);
    EXPECT_EQ(r.plus_state_info.pos[1], 2);
    EXPECT_EQ(r.plus_state_info.normal_force[2], 3);
    EXPECT_EQ(r.plus_state_info.touch_data[0], 9);
    EXPECT_STREQ(r.plus_base_info.manu, "maker-nam");
    EXPECT_EQ(r.plus_base_info.type, 2);
    EXPECT_STREQ(r.plus_base_info.hv, "1.0");
    EXPECT_TRUE(r.plus_base_info.force);
    EXPECT_EQ(r.plus_base_info.touch_num, 5);
    EXPECT_EQ(r.plus_base_info.pos_up[1], 200);
    EXPECT_EQ(r.qm_plus_state, 0);
}

TEST(RealtimeParse, EndEffectorDisabledOrOffline) {
    EXPECT_EQ(parse(datagram([](cJSON* t) { add(t, "qm_plus_state", R"("disable")"); })).qm_plus_state, 1);
    EXPECT_EQ(parse(datagram([](cJSON* t) { add(t, "qm_plus_base", R"("offline")"); })).qm_plus_state, 2);
}

TEST(RealtimeParse, UnknownEndEffectorTextIsMalformedWithAWarning) {
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    parse(datagram([](cJSON* t) { add(t, "qm_plus_base", R"("broken")"); }), -3);
    EXPECT_TRUE(log.contains("[qm_realtime_arm_joint_state] parse qm_plus_state :broken\n"));
}

TEST(RealtimeParse, ArraysLongerThanTheRecordAreCut) {
    Record r = parse(datagram([](cJSON* t) {
        cJSON_ReplaceItemInObject(t, "err",
                                  cJSON_Parse("[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,"
                                              "23,24,25,26,27,28,29,30]"));
        cJSON* joints = cJSON_GetObjectItem(t, "joint_status");
        cJSON_ReplaceItemInObject(joints, "joint_position", cJSON_Parse("[1,2,3,4,5,6,7,8,9,10]"));
        add(t, "hand",
            R"({"hand_pos":[1,2,3,4,5,6,7,8],"hand_angle":[],"hand_force":[],"hand_state":[],"hand_err":0})");
        add(t, "qm_plus_state", R"({"pos":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20]})");
    }));
    EXPECT_EQ(r.err.err_len, 24);
    EXPECT_EQ(r.err.err[23], 24);
    EXPECT_FLOAT_EQ(r.joint_status.joint_position[6], 0.007f);
    EXPECT_EQ(r.handState.hand_pos[5], 6);
    EXPECT_EQ(r.plus_state_info.pos[11], 12);
    EXPECT_EQ(r.plus_state_info.dof_err[0], 0) << "the next field is untouched";
}

struct Malformed {
    const char* name;
    std::function<void(cJSON*)> edit;
};
// Names the case in test listings.
void PrintTo(const Malformed& c, std::ostream* os) {
    *os << c.name;
}

class RealtimeMalformed : public ::testing::TestWithParam<Malformed> {};

TEST_P(RealtimeMalformed, GivesMinusThree) {
    parse(datagram(GetParam().edit), -3);
}

INSTANTIATE_TEST_SUITE_P(
    Pushes, RealtimeMalformed,
    ::testing::Values(
        Malformed{"no_err", [](cJSON* t) { cJSON_DeleteItemFromObject(t, "err"); }},
        Malformed{"empty_err", [](cJSON* t) { cJSON_ReplaceItemInObject(t, "err", cJSON_CreateArray()); }},
        Malformed{"no_joint_status", [](cJSON* t) { cJSON_DeleteItemFromObject(t, "joint_status"); }},
        Malformed{"no_waypoint", [](cJSON* t) { cJSON_DeleteItemFromObject(t, "waypoint"); }},
        Malformed{"quat_of_three",
                  [](cJSON* t) {
                      cJSON_ReplaceItemInObject(cJSON_GetObjectItem(t, "waypoint"), "quat",
                                                cJSON_Parse("[1,0,0]"));
                  }},
        Malformed{"euler_not_an_array",
                  [](cJSON* t) {
                      cJSON_ReplaceItemInObject(cJSON_GetObjectItem(t, "waypoint"), "euler",
                                                cJSON_CreateNumber(1));
                  }},
        Malformed{
            "position_missing",
            [](cJSON* t) { cJSON_DeleteItemFromObject(cJSON_GetObjectItem(t, "waypoint"), "position"); }},
        Malformed{"aloha_member_missing", [](cJSON* t) { add(t, "aloha_state", R"({"io1_state":1})"); }},
        Malformed{"aloha_member_not_a_number",
                  [](cJSON* t) { add(t, "aloha_state", R"({"io1_state":1,"io2_state":"on"})"); }},
        Malformed{"hand_array_missing",
                  [](cJSON* t) {
                      add(t, "hand", R"({"hand_pos":[],"hand_angle":[],"hand_force":[],"hand_err":0})");
                  }},
        Malformed{"hand_err_missing",
                  [](cJSON* t) {
                      add(t, "hand", R"({"hand_pos":[],"hand_angle":[],"hand_force":[],"hand_state":[]})");
                  }},
        Malformed{"lift_member_missing",
                  [](cJSON* t) { add(t, "lift_state", R"({"pos":1,"height":2,"current":3,"err_flag":0})"); }},
        Malformed{"expand_member_missing",
                  [](cJSON* t) {
                      add(t, "expand_state", R"({"pos":1,"current":3,"err_flag":0,"en_flag":1,"mode":0})");
                  }},
        Malformed{"plus_state_unknown_text", [](cJSON* t) { add(t, "qm_plus_state", R"("gone")"); }}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RealtimeParse, UnparsableDatagramIsLogged) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    Record record;
    record.errCode = 5;
    EXPECT_EQ(parse_qm_realtime_arm_joint_state("{\"joint_status\":", &record), -3);
    EXPECT_TRUE(log.contains("[qm_realtime_arm_joint_state] parse err\n"));
}

struct StatusCase {
    const char* text;
    qm_udp_arm_current_status_e status;
};
// Names the case in test listings.
void PrintTo(const StatusCase& c, std::ostream* os) {
    *os << c.text;
}

class ArmStatusText : public ::testing::TestWithParam<StatusCase> {};

TEST_P(ArmStatusText, MapsToItsStatus) {
    EXPECT_EQ(get_arm_status_from_string(GetParam().text), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ArmStatusText,
    ::testing::Values(StatusCase{"idle", QM_IDLE_E}, StatusCase{"move_L", QM_MOVE_L_E},
                      StatusCase{"move_J", QM_MOVE_J_E}, StatusCase{"move_C", QM_MOVE_C_E},
                      StatusCase{"move_S", QM_MOVE_S_E},
                      StatusCase{"move_through_joint", QM_MOVE_THROUGH_JOINT_E},
                      StatusCase{"move_through_pose", QM_MOVE_THROUGH_POSE_E},
                      StatusCase{"move_through_force_pose", QM_MOVE_THROUGH_FORCE_POSE_E},
                      StatusCase{"move_through_current", QM_MOVE_THROUGH_CURRENT_E},
                      StatusCase{"stop", QM_STOP_E}, StatusCase{"slow_stop", QM_SLOW_STOP_E},
                      StatusCase{"pause", QM_PAUSE_E}, StatusCase{"current_drag", QM_CURRENT_DRAG_E},
                      StatusCase{"sensor_drag", QM_SENSOR_DRAG_E},
                      StatusCase{"tech_demonstration", QM_TECH_DEMONSTRATION_E},
                      StatusCase{"unknown", QM_IDLE_E}, StatusCase{"Move_J", QM_IDLE_E}));

}  // namespace

// Decoding realtime state datagrams.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

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

// Sets `key` of `section` ("" for the top level) to `json`; nullptr removes it.
struct Edit {
    const char* section;
    const char* key;
    const char* json;
};

// kMinimal with the edits applied.
std::string datagram(const std::vector<Edit>& edits) {
    cJSON* tree = cJSON_Parse(kMinimal);
    for (const Edit& e : edits) {
        cJSON* parent = *e.section ? cJSON_GetObjectItem(tree, e.section) : tree;
        cJSON_DeleteItemFromObject(parent, e.key);
        if (e.json) cJSON_AddItemToObject(parent, e.key, cJSON_Parse(e.json));
    }
    char* text = cJSON_PrintUnformatted(tree);
    std::string out(text);
    cJSON_free(text);
    cJSON_Delete(tree);
    return out;
}

Record parse(const std::string& text, int expected = 0) {
    Record record;
    EXPECT_EQ(parse_qm_realtime_arm_joint_state(text.c_str(), &record), expected) << text;
    return record;
}

// Fields side by side, compared with their expected values in one expectation.
template <class... T>
std::vector<long> ints(T... fields) {
    return {static_cast<long>(fields)...};
}
void expect_floats(const std::vector<float>& fields, const std::vector<float>& expected) {
    ASSERT_EQ(fields.size(), expected.size());
    for (size_t i = 0; i < fields.size(); ++i) EXPECT_FLOAT_EQ(fields[i], expected[i]) << "field " << i;
}

TEST(RealtimeParse, MinimalPushFillsJointsPoseAndErrors) {
    const Record r = parse(kMinimal);
    const auto& j = r.joint_status;
    // Thousandths, except the speed: scaled by 6 / 1000.
    expect_floats({j.joint_position[0], j.joint_position[1], j.joint_current[0], j.joint_temperature[0],
                   j.joint_voltage[0], j.joint_speed[0]},
                  {1, -2, 1.5, 25, 48, 6});
    const auto& w = r.waypoint;
    expect_floats({w.quaternion.w, w.euler.rx, w.euler.rz, w.position.x, w.position.z},
                  {1, 3.142, -1.571, 0.1, -0.25});
    EXPECT_EQ(ints(j.joint_en_flag[0], j.joint_en_flag[1], j.joint_err_code[1], r.err.err_len,
                   r.arm_current_status, r.qm_plus_state),
              ints(1, 0, 7, 1, QM_IDLE_E, 0));
}

TEST(RealtimeParse, OptionalSectionsAreDecoded) {
    Record r = parse(datagram({
        {"", "arm_current_status", R"("move_J")"},
        {"", "aloha_state", R"({"io1_state":1,"io2_state":0})"},
        {"", "hand",
         R"({"hand_pos":[1,2,3,4,5,6],"hand_angle":[6,5,4,3,2,1],"hand_force":[0,0,0,0,0,9],)"
         R"("hand_state":[1,1,1,1,1,1],"hand_err":3})"},
        {"", "lift_state", R"({"pos":1500,"height":200,"current":5,"err_flag":0,"en_flag":1})"},
        {"", "expand_state", R"({"joint_id":2,"mode":1,"pos":-500,"current":3,"err_flag":1,"en_flag":0})"},
        {"", "six_force_sensor",
         R"({"force":[1000,0,0,0,0,0],"zero_force":[0,2000,0,0,0,0],"coordinate":1})"},
        {"", "qm_plus_state",
         R"({"sys_state":4,"pos":[1,2],"tsa":[4000000000],"normal_force":[1,2,3],"touch_data":[9]})"},
        {"", "qm_plus_base",
         R"({"manu":"maker-name-too-long","type":2,"hv":"1.0","force":true,"touch_num":5,"pos_up":[100,200]})"},
    }));
    const auto& h = r.handState;
    EXPECT_EQ(
        ints(r.arm_current_status, r.aloha_state.io1_state, h.hand_pos[5], h.hand_force[5], h.hand_err,
             r.liftState.height, r.liftState.en_flag, r.expandState.joint_id, r.force_sensor.coordinate),
        ints(QM_MOVE_J_E, 1, 6, 9, 3, 200, 1, 2, 1));
    expect_floats({r.liftState.pos, r.expandState.pos, r.force_sensor.force[0], r.force_sensor.zero_force[1]},
                  {1.5, -0.5, 1, 2});
    const auto& ps = r.plus_state_info;
    const auto& pb = r.plus_base_info;
    EXPECT_EQ(ints(ps.sys_state, ps.pos[1], ps.normal_force[2], ps.touch_data[0], pb.type, pb.force,
                   pb.touch_num, pb.pos_up[1], r.qm_plus_state),
              ints(4, 2, 3, 9, 2, true, 5, 200, 0));
    EXPECT_STREQ(pb.manu, "maker-nam");
    EXPECT_STREQ(pb.hv, "1.0");
}

TEST(RealtimeParse, OneAxisSensorWinsOverTheSixAxisOne) {
    Record r = parse(datagram({
        {"", "one_force_sensor", R"({"force":[7000],"zero_force":[],"coordinate":2})"},
        {"", "six_force_sensor", R"({"force":[1000,1000,1000,1000,1000,1000],"coordinate":1})"},
    }));
    EXPECT_FLOAT_EQ(r.force_sensor.force[0], 7.0f);
    EXPECT_FLOAT_EQ(r.force_sensor.force[1], 1.0f) << "elements the one-axis section lacks stay";
    EXPECT_EQ(r.force_sensor.coordinate, 2);
}

TEST(RealtimeParse, EndEffectorDisabledOfflineOrUnknown) {
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    EXPECT_EQ(parse(datagram({{"", "qm_plus_state", R"("disable")"}})).qm_plus_state, 1);
    EXPECT_EQ(parse(datagram({{"", "qm_plus_base", R"("offline")"}})).qm_plus_state, 2);
    parse(datagram({{"", "qm_plus_base", R"("broken")"}}), -3);
    EXPECT_TRUE(log.contains("[qm_realtime_arm_joint_state] parse qm_plus_state :broken\n"));
}

TEST(RealtimeParse, ArraysLongerThanTheRecordAreCut) {
    Record r = parse(datagram({
        {"", "err", "[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30]"},
        {"joint_status", "joint_position", "[1,2,3,4,5,6,7,8,9,10]"},
        {"", "hand",
         R"({"hand_pos":[1,2,3,4,5,6,7,8],"hand_angle":[],"hand_force":[],"hand_state":[],"hand_err":0})"},
        {"", "qm_plus_state", R"({"pos":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20]})"},
    }));
    EXPECT_FLOAT_EQ(r.joint_status.joint_position[6], 0.007f);
    EXPECT_EQ(ints(r.err.err_len, r.err.err[23], r.handState.hand_pos[5], r.plus_state_info.pos[11]),
              ints(24, 24, 6, 12));
    EXPECT_EQ(r.plus_state_info.dof_err[0], 0) << "the next field is untouched";
}

TEST(RealtimeParse, MissingOrMalformedSectionGivesMinusThree) {
    const Edit rows[] = {
        {"", "err", nullptr},
        {"", "err", "[]"},
        {"", "joint_status", nullptr},
        {"", "waypoint", nullptr},
        {"waypoint", "quat", "[1,0,0]"},
        {"waypoint", "euler", "1"},
        {"waypoint", "position", nullptr},
        {"", "aloha_state", R"({"io1_state":1})"},
        {"", "aloha_state", R"({"io1_state":1,"io2_state":"on"})"},
        {"", "hand", R"({"hand_pos":[],"hand_angle":[],"hand_force":[],"hand_err":0})"},
        {"", "hand", R"({"hand_pos":[],"hand_angle":[],"hand_force":[],"hand_state":[]})"},
        {"", "lift_state", R"({"pos":1,"height":2,"current":3,"err_flag":0})"},
        {"", "expand_state", R"({"pos":1,"current":3,"err_flag":0,"en_flag":1,"mode":0})"},
        {"", "qm_plus_state", R"("gone")"},
    };
    for (const Edit& edit : rows) parse(datagram({edit}), -3);
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    parse("{\"joint_status\":", -3);
    EXPECT_TRUE(log.contains("[qm_realtime_arm_joint_state] parse err\n"));
}

TEST(RealtimeParse, ArmStatusTextMapsToItsWireValueIdleWhenUnknown) {
    std::istringstream texts(
        "idle move_L move_J move_C move_S move_through_joint move_through_pose move_through_force_pose "
        "move_through_current stop slow_stop pause current_drag sensor_drag tech_demonstration");
    int value = 0;
    for (std::string text; texts >> text; ++value)
        EXPECT_EQ(get_arm_status_from_string(text.c_str()), value) << text;
    EXPECT_EQ(value, QM_TECH_DEMONSTRATION_E + 1);
    EXPECT_EQ(get_arm_status_from_string("unknown"), QM_IDLE_E);
    EXPECT_EQ(get_arm_status_from_string("Move_J"), QM_IDLE_E);
}

}  // namespace

// Reading replies: the key-table parser, set replies and trajectory events.
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include "log_capture.h"
#include "qm_exchange.h"

namespace {

using qm_test::LogCapture;

// ---- key tables ----

TEST(KeyTableParse, FillsEveryTypeOfMember) {
    KeyValue table[] = {
        {JSON_INT, "i", 0, {}},  {JSON_STRING, "s", 0, {}}, {JSON_ARRAY, "a", 3, {}},
        {JSON_BOOL, "b", 0, {}}, {JSON_OBJECT, "o", 0, {}},
    };
    ASSERT_EQ(common_json_parse("t", R"({"i":-4,"s":"text","a":[1,2,3],"b":true,"o":{"x":[1]}})", table, 5),
              0);
    EXPECT_EQ(table[0].value.int_value, -4);
    EXPECT_STREQ(table[1].value.str_value, "text");
    EXPECT_EQ(table[2].value.array_value[2], 3);
    EXPECT_TRUE(table[3].value.bool_value);
    ASSERT_NE(table[4].value.sub_json, nullptr);
    EXPECT_NE(cJSON_GetObjectItem(table[4].value.sub_json, "x"), nullptr);
    cJSON_Delete(table[4].value.sub_json);
}

TEST(KeyTableParse, LooksInsideArmStateThenAllState) {
    KeyValue arm[] = {{JSON_INT, "v", 0, {}}};
    ASSERT_EQ(common_json_parse("t", R"({"v":1,"arm_state":{"v":2},"all_state":{"v":3}})", arm, 1), 0);
    EXPECT_EQ(arm[0].value.int_value, 2);
    KeyValue all[] = {{JSON_INT, "v", 0, {}}};
    ASSERT_EQ(common_json_parse("t", R"({"v":1,"all_state":{"v":3}})", all, 1), 0);
    EXPECT_EQ(all[0].value.int_value, 3);
}

TEST(KeyTableParse, LongTextIsCutToTheValueArea) {
    KeyValue table[] = {{JSON_STRING, "s", 0, {}}};
    const std::string text(100, 'z');
    ASSERT_EQ(common_json_parse("t", (R"({"s":")" + text + "\"}").c_str(), table, 1), 0);
    EXPECT_EQ(std::strlen(table[0].value.str_value), static_cast<size_t>(KEYVALUE_STR_MAX - 1));
}

TEST(KeyTableParse, BooleanOfAnotherTypeLeavesTheValue) {
    KeyValue table[] = {{JSON_BOOL, "b", 0, {}}};
    table[0].value.bool_value = true;
    EXPECT_EQ(common_json_parse("t", R"({"b":0})", table, 1), 0);
    EXPECT_TRUE(table[0].value.bool_value);
}

TEST(KeyTableParse, FailedParseHandsOutNoCopies) {
    KeyValue table[] = {{JSON_OBJECT, "o", 0, {}}, {JSON_INT, "missing", 0, {}}};
    EXPECT_EQ(common_json_parse("t", R"({"o":{"a":1}})", table, 2), -3);
    EXPECT_EQ(table[0].value.sub_json, nullptr);
}

struct TableFailure {
    const char* name;
    const char* reply;
    KeyValue entry;
    const char* message;
};
// Names the case in test listings.
void PrintTo(const TableFailure& c, std::ostream* os) {
    *os << c.name;
}

class KeyTableRefusal : public ::testing::TestWithParam<TableFailure> {};

TEST_P(KeyTableRefusal, IsMalformedWithItsMessage) {
    LogCapture log(LOG_LEVEL_ERROR);
    KeyValue entry = GetParam().entry;
    EXPECT_EQ(common_json_parse("qm_caller", GetParam().reply, &entry, 1), -3);
    EXPECT_TRUE(log.contains(GetParam().message)) << testing::PrintToString(log.messages());
}

INSTANTIATE_TEST_SUITE_P(
    Replies, KeyTableRefusal,
    ::testing::Values(
        TableFailure{"not_json", "{", {JSON_INT, "k", 0, {}}, "Error parsing JSON\n"},
        TableFailure{"missing", R"({"j":1})", {JSON_INT, "k", 0, {}}, "[qm_caller] k parsing error\n"},
        TableFailure{
            "not_a_string", R"({"k":1})", {JSON_STRING, "k", 0, {}}, "[qm_caller] k is not a string\n"},
        TableFailure{
            "not_an_array", R"({"k":1})", {JSON_ARRAY, "k", 2, {}}, "[qm_caller] k is not an array\n"},
        TableFailure{"array_size",
                     R"({"k":[1,2,3]})",
                     {JSON_ARRAY, "k", 2, {}},
                     "[qm_caller] Array size mismatch for key k\n"},
        TableFailure{"empty_array_inside_arm_state",
                     R"({"arm_state":{"k":[]}})",
                     {JSON_ARRAY, "k", 0, {}},
                     "[qm_caller] Array size mismatch for key k\n"},
        TableFailure{"array_beyond_the_value_area",
                     R"({"k":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25]})",
                     {JSON_ARRAY, "k", 25, {}},
                     "[qm_caller] Array size mismatch for key k\n"},
        TableFailure{"unsupported_type",
                     R"({"k":1})",
                     {static_cast<JsonValueType>(5), "k", 0, {}},
                     "[qm_caller] Unsupported JSON value type for key k\n"}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- set replies ----

TEST(SetReply, UnparsableReplyIsMalformed) {
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(parse_qm_set_command("qm_x", "{oops", "set_state"), -3);
    EXPECT_TRUE(log.contains("[qm_x] {oops parse err\n"));
}

TEST(SetReply, GivenStateTextIsNotLogged) {
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(parse_qm_set_command("qm_x", "given_state", "set_state"), -3);
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"a":1})", "given_state"), -3);
    EXPECT_TRUE(log.messages().empty());
}

TEST(SetReply, TrueIsSuccessFalseIsRefusal) {
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"receive_state":true})", "receive_state"), 0);
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"receive_state":false})", "receive_state"), 1);
}

// ---- trajectory events ----

struct MoveCase {
    const char* name;
    const char* line;
    int result;
    int device;
    int connect;
    const char* message;
};
// Names the case in test listings.
void PrintTo(const MoveCase& c, std::ostream* os) {
    *os << c.name;
}

class ArrivalEvent : public ::testing::TestWithParam<MoveCase> {};

TEST_P(ArrivalEvent, IsReadAsStateDeviceAndConnection) {
    LogCapture log(LOG_LEVEL_DEBUG);
    const MoveCase& c = GetParam();
    int device = -9, connect = -9;
    EXPECT_EQ(parse_qm_move_command(c.line, &device, &connect), c.result);
    if (c.result != -3) {
        EXPECT_EQ(device, c.device);
        EXPECT_EQ(connect, c.connect);
    }
    EXPECT_TRUE(log.contains(c.message)) << testing::PrintToString(log.messages());
}

INSTANTIATE_TEST_SUITE_P(
    Events, ArrivalEvent,
    ::testing::Values(
        MoveCase{"arrived", R"({"trajectory_state":true,"device":0,"trajectory_connect":0})", 1, 0, 0,
                 "Move command result is: true, current Device: 0, trajectory_connect: 0\n"},
        MoveCase{"failed", R"({"trajectory_state":false,"device":2,"trajectory_connect":1})", 0, 2, 1,
                 "Move command result is: false, current Device: 2, trajectory_connect: 1\n"},
        MoveCase{"state_missing_counts_as_true", R"({"device":1,"trajectory_connect":0})", -1, 1, 0,
                 "Move command result is: true, current Device: 1, trajectory_connect: 0\n"},
        MoveCase{"negative_device", R"({"trajectory_state":true,"device":-1,"trajectory_connect":0})", -3, 0,
                 0, "Move command parse err\n"},
        MoveCase{"missing_connect", R"({"trajectory_state":true,"device":0})", -3, 0, 0,
                 "Move command parse err\n"},
        MoveCase{"not_json", "{", -3, 0, 0, "Set command parse err\n"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace

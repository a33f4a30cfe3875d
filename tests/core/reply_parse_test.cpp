// Reading replies: the key-table parser, set replies and trajectory events.
#include <gtest/gtest.h>

#include <cstring>
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

TEST(KeyTableParse, LongTextIsCutAndABooleanOfAnotherTypeIsLeft) {
    KeyValue table[] = {{JSON_STRING, "s", 0, {}}, {JSON_BOOL, "b", 0, {}}};
    table[1].value.bool_value = true;
    ASSERT_EQ(common_json_parse("t", (R"({"b":0,"s":")" + std::string(100, 'z') + "\"}").c_str(), table, 2),
              0);
    EXPECT_EQ(std::strlen(table[0].value.str_value), static_cast<size_t>(KEYVALUE_STR_MAX - 1));
    EXPECT_TRUE(table[1].value.bool_value);
}

TEST(KeyTableParse, FailedParseHandsOutNoCopies) {
    KeyValue table[] = {{JSON_OBJECT, "o", 0, {}}, {JSON_INT, "missing", 0, {}}};
    EXPECT_EQ(common_json_parse("t", R"({"o":{"a":1}})", table, 2), -3);
    EXPECT_EQ(table[0].value.sub_json, nullptr);
}

TEST(KeyTableParse, RefusalIsMalformedWithItsMessage) {
    const struct {
        const char* reply;
        KeyValue entry;
        const char* message;
    } rows[] = {
        {"{", {JSON_INT, "k", 0, {}}, "Error parsing JSON\n"},
        {R"({"j":1})", {JSON_INT, "k", 0, {}}, "[c] k parsing error\n"},
        {R"({"k":1})", {JSON_STRING, "k", 0, {}}, "[c] k is not a string\n"},
        {R"({"k":1})", {JSON_ARRAY, "k", 2, {}}, "[c] k is not an array\n"},
        {R"({"k":[1,2,3]})", {JSON_ARRAY, "k", 2, {}}, "[c] Array size mismatch for key k\n"},
        {R"({"arm_state":{"k":[]}})", {JSON_ARRAY, "k", 0, {}}, "[c] Array size mismatch for key k\n"},
        // More elements than the value area holds.
        {R"({"k":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25]})",
         {JSON_ARRAY, "k", 25, {}},
         "[c] Array size mismatch for key k\n"},
        {R"({"k":1})",
         {static_cast<JsonValueType>(5), "k", 0, {}},
         "[c] Unsupported JSON value type for key k\n"},
    };
    for (const auto& row : rows) {
        LogCapture log(LOG_LEVEL_ERROR);
        KeyValue entry = row.entry;
        EXPECT_EQ(common_json_parse("c", row.reply, &entry, 1), -3) << row.reply;
        EXPECT_TRUE(log.contains(row.message)) << testing::PrintToString(log.messages());
    }
}

TEST(SetReply, TrueIsSuccessFalseIsRefusalOtherwiseMalformed) {
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"receive_state":true})", "receive_state"), 0);
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"receive_state":false})", "receive_state"), 1);
    log.clear();
    // Given-state texts are not logged.
    EXPECT_EQ(parse_qm_set_command("qm_x", "given_state", "set_state"), -3);
    EXPECT_EQ(parse_qm_set_command("qm_x", R"({"a":1})", "given_state"), -3);
    EXPECT_TRUE(log.messages().empty());
    EXPECT_EQ(parse_qm_set_command("qm_x", "{oops", "set_state"), -3);
    EXPECT_TRUE(log.contains("[qm_x] {oops parse err\n"));
}

// ---- trajectory events ----

TEST(ArrivalEvent, IsReadAsStateDeviceAndConnection) {
    const struct {
        const char* line;
        int result, device, connect;
        const char* message;
    } rows[] = {
        {R"({"trajectory_state":true,"device":0,"trajectory_connect":0})", 1, 0, 0,
         "Move command result is: true, current Device: 0, trajectory_connect: 0\n"},
        {R"({"trajectory_state":false,"device":2,"trajectory_connect":1})", 0, 2, 1,
         "Move command result is: false, current Device: 2, trajectory_connect: 1\n"},
        // A missing state counts as true.
        {R"({"device":1,"trajectory_connect":0})", -1, 1, 0,
         "Move command result is: true, current Device: 1, trajectory_connect: 0\n"},
        {R"({"trajectory_state":true,"device":-1,"trajectory_connect":0})", -3, -9, -9,
         "Move command parse err\n"},
        {R"({"trajectory_state":true,"device":0})", -3, -9, -9, "Move command parse err\n"},
        {"{", -3, -9, -9, "Set command parse err\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        LogCapture log(LOG_LEVEL_DEBUG);
        int device = -9, connect = -9;
        EXPECT_EQ(parse_qm_move_command(row.line, &device, &connect), row.result);
        if (row.result != -3) {
            EXPECT_EQ(device, row.device);
            EXPECT_EQ(connect, row.connect);
        }
        EXPECT_TRUE(log.contains(row.message)) << testing::PrintToString(log.messages());
    }
}

}  // namespace

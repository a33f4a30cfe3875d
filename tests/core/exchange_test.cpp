// The command exchange against a fake controller: request bytes, routing of replies,
// failure codes with their messages, and the receive thread's handling of the stream.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "connected_arm.h"
#include "log_capture.h"

namespace core_test {
namespace {

using qm_test::LogCapture;
using Exchange = ConnectedArm;

// ---- requests and the generic set/get ----

TEST_F(Exchange, RequestTableGoesOutAsOneCompactLine) {
    const int values[] = {1, -2, 3};
    cJSON* object = cJSON_CreateObject();
    cJSON_AddNumberToObject(object, "k", 1);
    const JsonValue request[] = {
        {JSON_STRING, "command", 0, {.str_value = "do_it"}},
        {JSON_INT, "i", 0, {.int_value = -7}},
        {JSON_ARRAY, "a", 3, {.array_value = values}},
        {JSON_BOOL, "b", 0, {.bool_value = true}},
        {JSON_BOOL, "f", 0, {.bool_value = false}},
        {JSON_STRING, "skipped_text", 0, {.str_value = nullptr}},
        {JSON_INT, nullptr, 0, {.int_value = 9}},
        {JSON_OBJECT, "o", 0, {.sub_json = object}},
    };
    EXPECT_EQ(qm_pack_lock_set("test", arm(), request, 8, nullptr, nullptr, 0, 0), 0);
    ASSERT_TRUE(controller.wait_line(0));
    EXPECT_EQ(controller.received(),
              "{\"command\":\"do_it\",\"i\":-7,\"a\":[1,-2,3],\"b\":true,\"f\":false,\"o\":{\"k\":1}}\r\n");
}

TEST_F(Exchange, GenericSetSendsItsIntegerAndJudgesSetState) {
    const struct {
        const char* reply;
        int result;
        const char* message;  // nullptr: nothing at error level
    } rows[] = {
        {R"({"command":"set_x","set_state":true})", 0, nullptr},
        {R"({"command":"set_x","set_state":false})", 1, "[qm_set_data_common] set_state: false\n"},
        {R"({"command":"set_x"})", -3, "[qm_set_data_common] set_state command parse err\n"},
        {R"({"command":"set_x","set_state":1})", -3, "[qm_set_data_common] set_state command parse err\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        LogCapture log(LOG_LEVEL_ERROR);
        controller.clear_received();
        controller.reply("set_x", row.reply);
        EXPECT_EQ(qm_set_data_common(arm(), 42, "set_x", "value"), row.result);
        EXPECT_EQ(controller.received(), "{\"command\":\"set_x\",\"value\":42}\r\n");
        EXPECT_TRUE(row.message ? log.contains(row.message) : log.messages().empty());
    }
}

TEST_F(Exchange, GenericGetStoresTheIntegerOrReportsItMissing) {
    controller.reply("get_x", R"({"command":"get_x","value":-5})");
    int value = 0;
    EXPECT_EQ(qm_get_data_common(arm(), &value, "get_x", "value"), 0);
    EXPECT_EQ(value, -5);
    EXPECT_EQ(controller.received(), "{\"command\":\"get_x\"}\r\n");

    LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_x", R"({"command":"get_x"})");
    EXPECT_EQ(qm_get_data_common(arm(), &value, "get_x", "value"), -3);
    EXPECT_EQ(value, -5);
    EXPECT_TRUE(log.contains("[qm_get_data_common] value parsing error\n"));
}

// ---- failure codes ----

TEST_F(Exchange, UnknownHandleFailsWithoutSending) {
    qm_robot_handle stranger{1};
    int value = 0;
    EXPECT_EQ(qm_get_data_common(&stranger, &value, "get_x", "value"), -1);
    EXPECT_FALSE(controller.wait_line(0, 50ms));
}

TEST_F(Exchange, WaitWithoutRequestTimesOutSilentlyExceptForPoints) {
    LogCapture log(LOG_LEVEL_DEBUG);
    EXPECT_EQ(await("nothing"), -2);
    EXPECT_FALSE(log.mentions("revice"));
    EXPECT_EQ(await("point"), -2);
    EXPECT_TRUE(log.contains("[test_await] point save_trajectory complete\n"));
}

TEST_F(Exchange, SendOnlyHoldsForItsTimeoutAndReturnsZero) {
    const JsonValue request[] = {{JSON_STRING, "command", 0, {.str_value = "stream"}}};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(qm_pack_lock_set("test", arm(), request, 1, nullptr, nullptr, 0, 30), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

TEST_F(Exchange, EmptyRequestTableIsASendError) {
    LogCapture log(LOG_LEVEL_ERROR);
    const JsonValue request[] = {{JSON_STRING, "command", 0, {.str_value = "x"}}};
    EXPECT_EQ(qm_pack_lock_set("test", arm(), request, 0, "x", nullptr, 0, 20), -1);
    EXPECT_TRUE(log.contains("Send command: Invalid input"));
    EXPECT_TRUE(log.contains("[test]  send error\n"));
}

TEST_F(Exchange, PeerCloseIsReportedAndLaterSendsFail) {
    LogCapture log(LOG_LEVEL_ERROR);
    controller.close_client();
    for (int i = 0; i < 200 && !log.contains("服务器已关闭!\n"); ++i) std::this_thread::sleep_for(5ms);
    EXPECT_TRUE(log.contains("服务器已关闭!\n"));
    EXPECT_EQ(exchange("get_x", "x"), -1);
    EXPECT_TRUE(log.contains("[test_exchange] get_x send error\n"));
    EXPECT_TRUE(log.mentions("send err: -2"));
}

// ---- routing ----

TEST_F(Exchange, LateReplyGoesToTheNextWaiterForItsKey) {
    const std::string line = R"({"command":"get_x","value":1})";
    EXPECT_EQ(exchange("get_x", "get_x"), -2);
    controller.push_line(line);
    std::string reply;
    EXPECT_EQ(await("get_x", &reply, 500), static_cast<int>(line.size())) << "the result is the length";
    EXPECT_EQ(reply, line);
}

TEST_F(Exchange, StreamOdditiesDoNotCostTheRepliesAroundThem) {
    LogCapture log(LOG_LEVEL_ERROR);
    controller.push("garbage without end");
    controller.push("}{ nonsense\r\n");
    controller.push("{\"pad\":\"" + std::string(30000, 'x') + "\"}\r\n");
    controller.push("{\"command\":\"first\"}\r\n{\"command\":\"second\"}\r\n");  // two in one write
    EXPECT_GT(await("second", nullptr, 1000), 0);
    EXPECT_GT(await("first"), 0);
    EXPECT_TRUE(log.mentions("refused"));
    controller.push(R"({"command":"bare"})");  // a complete object without line end
    EXPECT_GT(await("bare", nullptr, 500), 0);
}

TEST_F(Exchange, FloodOnOneConnectionDoesNotStallAnother) {
    qm_test::FakeController other;
    other.answer_sync_queries();
    qm_robot_handle* second = qm_create_robot_arm("127.0.0.1", other.port());
    ASSERT_NE(second, nullptr);
    other.reply("get_x", R"({"command":"get_x","value":7})");
    std::atomic<bool> flooding{true};
    std::thread flood([&] {
        const std::string junk = std::string(4096, '{') + "\r\n";
        while (flooding) controller.push(junk);
    });
    int value = 0;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(qm_get_data_common(second, &value, "get_x", "value"), 0);
        EXPECT_EQ(value, 7);
    }
    flooding = false;
    flood.join();
    qm_delete_robot_arm(second);
}

// ---- single-thread mode ----

using SingleThreadExchange = SingleThreadArm;

TEST_F(SingleThreadExchange, CommandReadsItsOwnReplyDroppingOtherLines) {
    controller.on("get_x", [](const std::string&) {
        return std::string("{\"command\":\"noise\"}\r\n{\"command\":\"get_x\",\"value\":2}\r\n");
    });
    int value = 0;
    EXPECT_EQ(qm_get_data_common(arm(), &value, "get_x", "value"), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(await("noise"), -2);
}

TEST_F(SingleThreadExchange, CommandKeyWinsOverState) {
    controller.reply("go", R"({"command":"go","state":"went"})");
    std::string reply;
    EXPECT_EQ(exchange("go", "went"), -2);
    EXPECT_GT(exchange("go", "go", &reply), 0);
    EXPECT_EQ(reply, "{\"command\":\"go\",\"state\":\"went\"}\r\n") << "copied with its line end";
}

// ---- either receive mode ----

class EitherMode : public ConnectedArm, public ::testing::WithParamInterface<qm_thread_mode_e> {
protected:
    EitherMode() : ConnectedArm(GetParam()) {}
};

TEST_P(EitherMode, ReplySplitOverSeveralWritesIsJoined) {
    controller.on("get_x", [&](const std::string&) {
        controller.push_split("{\"command\":\"get_x\",\"value\":{\"a\":1}}\r\n", 5, 3ms);
        return std::nullopt;
    });
    std::string reply;
    EXPECT_GT(exchange("get_x", "get_x", &reply, 1000), 0);
    EXPECT_EQ(reply.substr(0, reply.find('\r')), R"({"command":"get_x","value":{"a":1}})");
}

TEST_P(EitherMode, MissingReplyTimesOutWithRevice) {
    LogCapture log(LOG_LEVEL_ERROR);
    int value = 0;
    EXPECT_EQ(qm_get_data_common(arm(), &value, "get_x", "value"), -2);
    EXPECT_TRUE(log.contains("[qm_get_data_common] get_x revice error\n"));
}

INSTANTIATE_TEST_SUITE_P(Modes, EitherMode, ::testing::Values(QM_SINGLE_MODE_E, QM_DUAL_MODE_E),
                         [](const auto& info) { return info.param == QM_SINGLE_MODE_E ? "single" : "dual"; });

}  // namespace
}  // namespace core_test

// Tool and work frames and the tool envelope against a fake controller.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "arm_catalogue_fixture.h"
#include "log_capture.h"
#include "qm_frames.h"

namespace arm_catalogue_test {
namespace {

qm_pose_t sample_pose() {
    qm_pose_t pose{};
    pose.position = {0.1f, -0.2f, 0.0000009f};
    pose.euler = {3.1415927f, -1.5f, 0.0f};
    return pose;
}

qm_frame_t sample_tool() {
    qm_frame_t frame{};
    std::memcpy(frame.frame_name, "gripper12345", 12);  // a full field without terminator
    frame.pose = sample_pose();
    frame.payload = 1.5f;
    frame.x = 0.01f;
    frame.y = 0.0f;
    frame.z = 0.05f;
    return frame;
}

const std::vector<SetRow>& frame_setters() {
    static const std::vector<SetRow> rows = {
        {"a taught tool point", [](qm_robot_handle* h) { return qm_set_auto_tool_frame(h, 2); },
         R"({"command":"set_auto_tool_frame","point_num":2})", "set_auto_tool_frame", "auto_tool_frame"},
        {"generating a taught tool is answered as set_auto_tool_frame",
         [](qm_robot_handle* h) { return qm_generate_auto_tool_frame(h, "tip", 1.5f, 0.01f, 0.0f, 0.05f); },
         R"({"command":"generate_auto_tool_frame","tool_name":"tip","payload":1500,"position":[10000,0,50000]})",
         "set_auto_tool_frame", "auto_tool_frame"},
        {"a manual tool frame: name, pose, payload, centre of mass",
         [](qm_robot_handle* h) { return qm_set_manual_tool_frame(h, sample_tool()); },
         R"({"command":"set_manual_tool_frame","tool_name":"gripper12345","tool_pose":[100000,-200000,0,3141,-1500,0],)"
         R"("payload":1500,"position":[10000,0,50000]})",
         "set_manual_tool_frame", "manual_tool_frame"},
        {"updating a tool frame sends the same members",
         [](qm_robot_handle* h) { return qm_update_tool_frame(h, sample_tool()); },
         R"({"command":"update_tool_frame","tool_name":"gripper12345","tool_pose":[100000,-200000,0,3141,-1500,0],)"
         R"("payload":1500,"position":[10000,0,50000]})",
         "update_tool_frame", "update_state"},
        {"a taught work point", [](qm_robot_handle* h) { return qm_set_auto_work_frame(h, "table", 3); },
         R"({"command":"set_auto_work_frame","frame_name":"table","point_num":3})", "set_auto_work_frame",
         "auto_work_frame"},
        {"a manual work frame", [](qm_robot_handle* h) { return qm_set_manual_work_frame(h, "table", sample_pose()); },
         R"({"command":"set_manual_work_frame","frame_name":"table","frame_pose":[100000,-200000,0,3141,-1500,0]})",
         "set_manual_work_frame", "manual_work_frame"},
        {"updating a work frame", [](qm_robot_handle* h) { return qm_update_work_frame(h, "table", sample_pose()); },
         R"({"command":"update_work_frame","frame_name":"table","frame_pose":[100000,-200000,0,3141,-1500,0]})",
         "update_work_frame", "update_state"},
        {"selecting a tool frame", [](qm_robot_handle* h) { return qm_change_tool_frame(h, "tip"); },
         R"({"command":"set_change_tool_frame","tool_name":"tip"})", "set_change_tool_frame", "change_tool_frame"},
        {"deleting a tool frame", [](qm_robot_handle* h) { return qm_delete_tool_frame(h, "tip"); },
         R"({"command":"set_delete_tool_frame","tool_name":"tip"})", "set_delete_tool_frame", "delete_tool_frame"},
        {"selecting a work frame", [](qm_robot_handle* h) { return qm_change_work_frame(h, "table"); },
         R"({"command":"set_change_work_frame","frame_name":"table"})", "set_change_work_frame", "change_work_frame"},
        {"deleting a work frame", [](qm_robot_handle* h) { return qm_delete_work_frame(h, "table"); },
         R"({"command":"set_delete_work_frame","frame_name":"table"})", "set_delete_work_frame", "delete_work_frame"},
    };
    return rows;
}

class Frames : public CatalogueArm {};

TEST_F(Frames, SettersSendTheirMembersAndJudgeTheirOwnBoolean) { expect_each_accepted(frame_setters()); }

TEST_F(Frames, SettersReportARefusalWithOne) { expect_each_refused(frame_setters()); }

TEST_F(Frames, ARefusedManualToolFrameHintsAtADuplicateName) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("set_manual_tool_frame", judged("set_manual_tool_frame", "manual_tool_frame", false));
    EXPECT_EQ(qm_set_manual_tool_frame(arm(), sample_tool()), 1);
    EXPECT_TRUE(log.contains("[qm_set_manual_tool_frame] Failed to create the tool frame system, please check if "
                             "the name already exists"));
}

TEST_F(Frames, SelectingAToolFrameReadsTheCurrentOneAgain) {
    controller.reply("set_change_tool_frame", judged("set_change_tool_frame", "change_tool_frame"));
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"tip","pose":[0,0,100000,0,0,0],)"
                     R"("payload":500,"position":[0,0,20000]})");
    ASSERT_EQ(fresh([](qm_robot_handle* h) { return qm_change_tool_frame(h, "tip"); }), 0);
    EXPECT_EQ(controller.lines().back(), R"({"command":"get_current_tool_frame"})");
    record([](qm_handle_t& r) {
        EXPECT_STREQ(r.tool_frame.frame_name, "tip");
        EXPECT_FLOAT_EQ(r.tool_frame.pose.position.z, 0.1f);
        return 0;
    });
}

TEST_F(Frames, DeletingAWorkFrameReturnsTheRereadsResult) {
    controller.reply("set_delete_work_frame", judged("set_delete_work_frame", "delete_work_frame"));
    controller.reply("get_current_work_frame", R"({"command":"current_work_frame","frame_name":"World"})");
    EXPECT_EQ(qm_delete_work_frame(arm(), "table"), -1) << "the current frame's reply lacks its pose";
}

// ---- current frames ----

TEST_F(Frames, CurrentToolFrameIsDecodedCachedAndKeptAsTransform) {
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"gripper","pose":[100000,200000,300000,0,0,0],)"
                     R"("payload":1500,"position":[1000,0,50000]})");
    qm_frame_t frame{};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_current_tool_frame(h, &frame); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_current_tool_frame"})");
    EXPECT_STREQ(frame.frame_name, "gripper");
    EXPECT_FLOAT_EQ(frame.pose.position.x, 0.1f);
    EXPECT_FLOAT_EQ(frame.pose.position.z, 0.3f);
    EXPECT_FLOAT_EQ(frame.payload, 1.5f);
    EXPECT_FLOAT_EQ(frame.x, 0.001f);
    EXPECT_FLOAT_EQ(frame.z, 0.05f);
    record([](qm_handle_t& r) {
        EXPECT_STREQ(r.tool_frame.frame_name, "gripper");
        EXPECT_FLOAT_EQ(r.tool_frame.payload, 1.5f);
        return 0;
    });
    const qm_matrix_t matrix = qm_tool_matrix();
    EXPECT_NEAR(matrix.data[0][3], 0.1, 1e-6);
    EXPECT_NEAR(matrix.data[1][3], 0.2, 1e-6);
    EXPECT_NEAR(matrix.data[2][3], 0.3, 1e-6);
    EXPECT_NEAR(matrix.data[0][0], 1.0, 1e-6);
}

TEST_F(Frames, CurrentWorkFrameIsDecodedCachedAndKeptAsTransform) {
    controller.reply("get_current_work_frame",
                     R"({"command":"current_work_frame","frame_name":"table","pose":[-500000,0,250000,0,0,3142]})");
    qm_frame_t frame{};
    ASSERT_EQ(qm_get_current_work_frame(arm(), &frame), 0);
    EXPECT_STREQ(frame.frame_name, "table");
    EXPECT_FLOAT_EQ(frame.pose.euler.rz, 3.142f);
    record([](qm_handle_t& r) {
        EXPECT_STREQ(r.work_frame.frame_name, "table");
        EXPECT_FLOAT_EQ(r.work_frame.pose.position.x, -0.5f);
        return 0;
    });
    const qm_matrix_t matrix = qm_frame_matrix();
    EXPECT_NEAR(matrix.data[0][3], -0.5, 1e-6);
    EXPECT_NEAR(matrix.data[0][0], -1.0, 1e-5) << "half a turn about Z";
}

TEST_F(Frames, AnElevenCharacterToolNameIsStoredAsItsFirstTen) {
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"abcdefghijk","pose":[0,0,0,0,0,0],)"
                     R"("payload":0,"position":[0,0,0]})");
    qm_frame_t frame{};
    ASSERT_EQ(qm_get_current_tool_frame(arm(), &frame), 0);
    EXPECT_STREQ(frame.frame_name, "abcdefghij");
}

struct MalformedFrameRow {
    const char* behaviour;
    std::string reply;
    std::string message;
};

TEST_F(Frames, AMalformedCurrentToolFrameFailsWithItsMessageAndLeavesTheCacheAlone) {
    const std::string pose = R"("pose":[0,0,0,0,0,0])";
    const MalformedFrameRow rows[] = {
        {"no name", R"({"command":"current_tool_frame",)" + pose + R"(,"payload":0,"position":[0,0,0]})",
         "Tool frame Name parse err"},
        {"a short pose", R"({"command":"current_tool_frame","tool_name":"t","pose":[0,0,0],"payload":0,"position":[0,0,0]})",
         "Tool frame pose parse err"},
        {"a negative payload",
         R"({"command":"current_tool_frame","tool_name":"t",)" + pose + R"(,"payload":-1,"position":[0,0,0]})",
         "Tool frame payload parse err"},
        {"a negative centre of mass is refused on purpose",
         R"({"command":"current_tool_frame","tool_name":"t",)" + pose + R"(,"payload":0,"position":[0,-1,0]})",
         "Tool frame position parse err"},
        {"a centre of mass of two values",
         R"({"command":"current_tool_frame","tool_name":"t",)" + pose + R"(,"payload":0,"position":[0,1]})",
         "Tool frame position parse err"},
    };
    for (const MalformedFrameRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        controller.reply("get_current_tool_frame", row.reply);
        qm_frame_t frame{};
        EXPECT_EQ(qm_get_current_tool_frame(arm(), &frame), -1);
        EXPECT_TRUE(log.contains("[get_current_tool_frame] " + row.message + "\n"));
        record([](qm_handle_t& r) {
            EXPECT_STREQ(r.tool_frame.frame_name, "Arm_Tip") << "still the synchronised frame";
            return 0;
        });
    }
}

TEST_F(Frames, AWorkFrameWithoutPoseFailsWithItsMessage) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_current_work_frame", R"({"command":"current_work_frame","frame_name":"t","pose":"x"})");
    qm_frame_t frame{};
    EXPECT_EQ(qm_get_current_work_frame(arm(), &frame), -1);
    EXPECT_TRUE(log.contains("[get_current_work_frame] Work frame pose parse err\n"));
}

TEST_F(Frames, CurrentFrameTimesOutWithMinusTwo) {
    controller.forget("get_current_work_frame");
    qm_frame_t frame{};
    EXPECT_EQ(qm_get_current_work_frame(arm(), &frame), -2);
}

// ---- name lists ----

TEST_F(Frames, ANameListStopsAtTheFirstNullEntry) {
    controller.reply("get_total_tool_frame",
                     R"({"command":"total_tool_frame","tool_names":["Arm_Tip","NULL","ghost"]})");
    qm_frame_name_t names[4] = {};
    int len = -1;
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_total_tool_frame(h, names, &len); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_total_tool_frame"})");
    EXPECT_EQ(len, 1);
    EXPECT_STREQ(names[0].name, "Arm_Tip");
    EXPECT_STREQ(names[1].name, "");
}

TEST_F(Frames, ANameListPrefersFrameNamesAndKeepsFullFieldsTerminated) {
    controller.reply("get_total_work_frame",
                     R"({"command":"total_work_frame","frame_names":["World","table_long_name"],"tool_names":["x"]})");
    qm_frame_name_t names[4] = {};
    int len = -1;
    ASSERT_EQ(qm_get_total_work_frame(arm(), names, &len), 0);
    EXPECT_EQ(len, 2);
    EXPECT_STREQ(names[0].name, "World");
    EXPECT_STREQ(names[1].name, "table_long_");
}

TEST_F(Frames, AnEmptyNameListLeavesTheCountAlone) {
    controller.reply("get_total_work_frame", R"({"command":"total_work_frame","frame_names":[]})");
    qm_frame_name_t names[1];
    int len = 42;
    ASSERT_EQ(qm_get_total_work_frame(arm(), names, &len), 0);
    EXPECT_EQ(len, 42);
}

TEST_F(Frames, AReplyWithoutANameListIsMinusTwo) {
    controller.reply("get_total_work_frame", R"({"command":"total_work_frame","frame_names":"World"})");
    qm_frame_name_t names[1];
    int len = 0;
    EXPECT_EQ(qm_get_total_work_frame(arm(), names, &len), -2);
}

// ---- given frames ----

TEST_F(Frames, AGivenToolFrameIsDecodedLikeTheCurrentOne) {
    controller.reply("get_tool_frame",
                     R"({"command":"given_tool_frame","tool_name":"tip","pose":[0,0,100000,0,0,1000],)"
                     R"("payload":2000,"position":[0,0,-30000]})");
    qm_frame_t frame{};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_given_tool_frame(h, "tip", &frame); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_tool_frame","tool_name":"tip"})");
    EXPECT_STREQ(frame.frame_name, "tip");
    EXPECT_FLOAT_EQ(frame.pose.position.z, 0.1f);
    EXPECT_FLOAT_EQ(frame.pose.euler.rz, 1.0f);
    EXPECT_FLOAT_EQ(frame.payload, 2.0f);
    EXPECT_FLOAT_EQ(frame.z, -0.03f);
}

TEST_F(Frames, AGivenWorkFrameFillsThePose) {
    controller.reply("get_work_frame",
                     R"({"command":"given_work_frame","frame_name":"table","pose":[1000000,0,0,0,0,0]})");
    qm_pose_t pose{};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_given_work_frame(h, "table", &pose); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_work_frame","frame_name":"table"})");
    EXPECT_FLOAT_EQ(pose.position.x, 1.0f);
}

TEST_F(Frames, AnUnknownGivenFrameIsJudgedFromTheRefusalUnderTheCommandsOwnKey) {
    controller.reply("get_tool_frame", R"({"command":"get_tool_frame","get_state":false})");
    qm_frame_t frame{};
    EXPECT_EQ(qm_get_given_tool_frame(arm(), "ghost", &frame), 1);
    controller.reply("get_work_frame", R"({"command":"get_work_frame","get_state":true})");
    qm_pose_t pose{};
    EXPECT_EQ(qm_get_given_work_frame(arm(), "ghost", &pose), 0);
}

TEST_F(Frames, AGivenFrameWithoutAnyAnswerTimesOut) {
    qm_frame_t frame{};
    EXPECT_EQ(qm_get_given_tool_frame(arm(), "ghost", &frame), -2);
}

TEST_F(Frames, AGivenFrameThatDoesNotParseReturnsTheReplyLength) {
    const std::string reply = R"({"command":"given_tool_frame","tool_name":"tip"})";
    controller.reply("get_tool_frame", reply);
    qm_frame_t frame{};
    EXPECT_EQ(qm_get_given_tool_frame(arm(), "tip", &frame), static_cast<int>(reply.size()));
}

// ---- tool envelope ----

TEST_F(Frames, AToolEnvelopeGoesOutAsOneObjectPerSphereInThousandths) {
    qm_envelope_balls_list_t envelope{};
    std::strcpy(envelope.tool_name, "tip");
    envelope.size = 2;
    envelope.balls[0] = {"b1", 0.05f, 0.0f, 0.0f, 0.1f};
    envelope.balls[1] = {"b2", 0.0255f, -0.01f, 0.02f, 0.2f};
    envelope.balls[2] = {"unsent", 1.0f, 1.0f, 1.0f, 1.0f};
    controller.reply("set_tool_envelope", judged("set_tool_envelope", "set_state"));
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_set_tool_envelope(h, envelope); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"set_tool_envelope","tool_name":"tip","list":[)"
                            R"({"name":"b1","radius":50,"x":0,"y":0,"z":100},)"
                            R"({"name":"b2","radius":25,"x":-10,"y":20,"z":200}]})");
}

TEST_F(Frames, ARefusedToolEnvelopeHintsAtAMissingToolFrame) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("set_tool_envelope", judged("set_tool_envelope", "set_state", false));
    qm_envelope_balls_list_t envelope{};
    EXPECT_EQ(qm_set_tool_envelope(arm(), envelope), 1);
    EXPECT_TRUE(log.contains(
        "[qm_set_tool_envelope] Set tool envelope return false! You can check if the tool frame exists.\n"));
}

TEST_F(Frames, AToolEnvelopeIsReadBackSphereBySphere) {
    controller.reply("get_tool_envelope",
                     R"({"command":"get_tool_envelope","tool_name":"tip","list":[)"
                     R"({"name":"b1","radius":50,"x":0,"y":-10,"z":100},{"name":"b2","radius":25,"x":1,"y":2,"z":3}]})");
    qm_envelope_balls_list_t envelope{};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_tool_envelope(h, "tip", &envelope); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_tool_envelope","tool_name":"tip"})");
    EXPECT_STREQ(envelope.tool_name, "tip");
    EXPECT_EQ(envelope.size, 2);
    EXPECT_STREQ(envelope.balls[0].name, "b1");
    EXPECT_FLOAT_EQ(envelope.balls[0].radius, 0.05f);
    EXPECT_FLOAT_EQ(envelope.balls[0].y, -0.01f);
    EXPECT_STREQ(envelope.balls[1].name, "b2");
    EXPECT_FLOAT_EQ(envelope.balls[1].z, 0.003f);
}

TEST_F(Frames, AFalseEnvelopeAnswerIsARefusal) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_tool_envelope", R"({"command":"get_tool_envelope","get_state":false})");
    qm_envelope_balls_list_t envelope{};
    EXPECT_EQ(qm_get_tool_envelope(arm(), "ghost", &envelope), 1);
    EXPECT_TRUE(log.contains(
        "[qm_get_tool_envelope] Get tool envelope return false! You can check if the tool frame exists.\n"));
}

TEST_F(Frames, AnUnknownHandleSendsNothingAndLeaksNothing) {
    qm_robot_handle stranger{1};
    qm_envelope_balls_list_t envelope{};
    envelope.size = 1;
    EXPECT_EQ(qm_set_tool_envelope(&stranger, envelope), -1);
}

}  // namespace
}  // namespace arm_catalogue_test

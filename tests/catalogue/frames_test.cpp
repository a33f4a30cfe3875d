// Tool and work frames and the tool envelope against a fake controller.
#include <cstring>

#include "catalogue_fixture.h"
#include "qm_frames.h"

namespace catalogue_test {
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
    frame.z = 0.05f;
    return frame;
}

const std::string kToolMembers =
    R"("tool_name":"gripper12345","tool_pose":[100000,-200000,0,3141,-1500,0],"payload":1500,"position":[10000,0,50000]})";

class Frames : public CatalogueArm {};

TEST_F(Frames, SettersSendTheirMembersAndJudgeTheirOwnBoolean) {
    expect_each_judged({
        {"a taught tool point", ON_ARM(qm_set_auto_tool_frame(h, 2)),
         R"({"command":"set_auto_tool_frame","point_num":2})", "auto_tool_frame"},
        {"generating a taught tool is answered as set_auto_tool_frame",
         ON_ARM(qm_generate_auto_tool_frame(h, "tip", 1.5f, 0.01f, 0.0f, 0.05f)),
         R"({"command":"generate_auto_tool_frame","tool_name":"tip","payload":1500,"position":[10000,0,50000]})",
         "auto_tool_frame", "set_auto_tool_frame"},
        {"a manual tool frame: name, pose, payload, centre of mass",
         ON_ARM(qm_set_manual_tool_frame(h, sample_tool())),
         R"({"command":"set_manual_tool_frame",)" + kToolMembers, "manual_tool_frame"},
        {"updating a tool frame sends the same members", ON_ARM(qm_update_tool_frame(h, sample_tool())),
         R"({"command":"update_tool_frame",)" + kToolMembers, "update_state"},
        {"a taught work point", ON_ARM(qm_set_auto_work_frame(h, "table", 3)),
         R"({"command":"set_auto_work_frame","frame_name":"table","point_num":3})", "auto_work_frame"},
        {"a manual work frame", ON_ARM(qm_set_manual_work_frame(h, "table", sample_pose())),
         R"({"command":"set_manual_work_frame","frame_name":"table","frame_pose":[100000,-200000,0,3141,-1500,0]})",
         "manual_work_frame"},
        {"selecting a tool frame", ON_ARM(qm_change_tool_frame(h, "tip")),
         R"({"command":"set_change_tool_frame","tool_name":"tip"})", "change_tool_frame"},
        {"deleting a work frame", ON_ARM(qm_delete_work_frame(h, "table")),
         R"({"command":"set_delete_work_frame","frame_name":"table"})", "delete_work_frame"},
    });
}

TEST_F(Frames, SetterFailuresAreReturned) {
    expect_failures("set_change_work_frame", ON_ARM(qm_change_work_frame(h, "table")),
                    set_failures("set_change_work_frame", "change_work_frame"));
}

TEST_F(Frames, RefusalsLogTheirHint) {
    qm_envelope_balls_list_t envelope{};
    const std::tuple<Call, std::string, std::string> rows[] = {
        {ON_ARM(qm_set_manual_tool_frame(h, sample_tool())),
         judged("set_manual_tool_frame", "manual_tool_frame", false),
         "[qm_set_manual_tool_frame] Failed to create the tool frame system, please check if the name "
         "already exists"},
        {ON_ARM(qm_set_tool_envelope(h, envelope)), judged("set_tool_envelope", "set_state", false),
         "[qm_set_tool_envelope] Set tool envelope return false! You can check if the tool frame exists.\n"},
        {ON_ARM(qm_get_tool_envelope(h, "ghost", &envelope)), judged("get_tool_envelope", "get_state", false),
         "[qm_get_tool_envelope] Get tool envelope return false! You can check if the tool frame exists.\n"},
    };
    for (const auto& [call, reply, message] : rows) {
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        controller.reply(command_of(reply), reply);
        EXPECT_EQ(call(arm()), 1) << message;
        EXPECT_TRUE(log.contains(message));
    }
}

TEST_F(Frames, SelectingOrDeletingAFrameReadsTheCurrentOneAgain) {
    controller.reply("set_change_tool_frame", judged("set_change_tool_frame", "change_tool_frame"));
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"tip","pose":[0,0,100000,0,0,0],)"
                     R"("payload":500,"position":[0,0,20000]})");
    ASSERT_EQ(fresh(ON_ARM(qm_change_tool_frame(h, "tip"))), 0);
    EXPECT_EQ(controller.lines().back(), R"({"command":"get_current_tool_frame"})");
    record([](qm_handle_t& r) {
        EXPECT_STREQ(r.tool_frame.frame_name, "tip");
        EXPECT_FLOAT_EQ(r.tool_frame.pose.position.z, 0.1f);
    });
    controller.reply("set_delete_work_frame", judged("set_delete_work_frame", "delete_work_frame"));
    controller.reply("get_current_work_frame", R"({"command":"current_work_frame","frame_name":"World"})");
    EXPECT_EQ(qm_delete_work_frame(arm(), "table"), -1) << "the reread's result: the reply lacks its pose";
}

// ---- current frames ----

TEST_F(Frames, CurrentFramesAreDecodedCachedAndKeptAsTransforms) {
    controller.reply(
        "get_current_tool_frame",
        R"({"command":"current_tool_frame","tool_name":"gripper123x","pose":[100000,200000,300000,0,0,0],)"
        R"("payload":1500,"position":[1000,0,50000]})");
    qm_frame_t frame{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_current_tool_frame(h, &frame))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_current_tool_frame"})");
    EXPECT_STREQ(frame.frame_name, "gripper123") << "an eleven-character name keeps its first ten";
    EXPECT_FLOAT_EQ(frame.pose.position.z, 0.3f);
    EXPECT_FLOAT_EQ(frame.x, 0.001f);
    record([](qm_handle_t& r) { EXPECT_FLOAT_EQ(r.tool_frame.payload, 1.5f); });
    EXPECT_NEAR(qm_tool_matrix().data[1][3], 0.2, 1e-6);
    EXPECT_NEAR(qm_tool_matrix().data[0][0], 1.0, 1e-6);

    controller.reply(
        "get_current_work_frame",
        R"({"command":"current_work_frame","frame_name":"table","pose":[-500000,0,250000,0,0,3142]})");
    ASSERT_EQ(qm_get_current_work_frame(arm(), &frame), 0);
    EXPECT_STREQ(frame.frame_name, "table");
    EXPECT_FLOAT_EQ(frame.pose.euler.rz, 3.142f);
    record([](qm_handle_t& r) { EXPECT_FLOAT_EQ(r.work_frame.pose.position.x, -0.5f); });
    EXPECT_NEAR(qm_frame_matrix().data[0][3], -0.5, 1e-6);
    EXPECT_NEAR(qm_frame_matrix().data[0][0], -1.0, 1e-5) << "half a turn about Z";
}

TEST_F(Frames, AMalformedCurrentFrameFailsWithItsMessageAndLeavesTheCacheAlone) {
    const std::string tool = R"({"command":"current_tool_frame","tool_name":"t",)";
    const std::string pose = R"("pose":[0,0,0,0,0,0])";
    const std::pair<std::string, std::string> rows[] = {
        {R"({"command":"current_tool_frame",)" + pose + R"(,"payload":0,"position":[0,0,0]})",
         "[get_current_tool_frame] Tool frame Name parse err\n"},
        {tool + R"("pose":[0,0,0],"payload":0,"position":[0,0,0]})",
         "[get_current_tool_frame] Tool frame pose parse err\n"},
        {tool + pose + R"(,"payload":-1,"position":[0,0,0]})",
         "[get_current_tool_frame] Tool frame payload parse err\n"},
        // A negative centre of mass is refused on purpose.
        {tool + pose + R"(,"payload":0,"position":[0,-1,0]})",
         "[get_current_tool_frame] Tool frame position parse err\n"},
        {tool + pose + R"(,"payload":0,"position":[0,1]})",
         "[get_current_tool_frame] Tool frame position parse err\n"},
        {R"({"command":"current_work_frame","frame_name":"t","pose":"x"})",
         "[get_current_work_frame] Work frame pose parse err\n"},
    };
    for (const auto& [reply, message] : rows) {
        SCOPED_TRACE(reply);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        const bool work = reply.find("work") != std::string::npos;
        controller.reply(work ? "get_current_work_frame" : "get_current_tool_frame", reply);
        qm_frame_t frame{};
        EXPECT_EQ((work ? qm_get_current_work_frame : qm_get_current_tool_frame)(arm(), &frame), -1);
        EXPECT_TRUE(log.contains(message));
        record([](qm_handle_t& r) {
            EXPECT_STREQ(r.tool_frame.frame_name, "Arm_Tip") << "still the synchronised frame";
            EXPECT_STREQ(r.work_frame.frame_name, "World");
        });
    }
}

// ---- name lists ----

TEST_F(Frames, NameListsStopAtNullKeepFullFieldsTerminatedAndNeedAList) {
    std::string many_names = R"("f")";
    for (int i = 1; i < 130; ++i) many_names += R"(,"f")";
    // Tool or work list, the reply, the result, the count and the first two names read.
    const std::tuple<bool, std::string, int, int, std::string> rows[] = {
        {true, R"({"command":"total_tool_frame","tool_names":["Arm_Tip","NULL","ghost"]})", 0, 1, "Arm_Tip,"},
        // frame_names is preferred.
        {false,
         R"({"command":"total_work_frame","frame_names":["World","table_long_name"],"tool_names":["x"]})", 0,
         2, "World,table_long_"},
        {false, R"({"command":"total_work_frame","frame_names":[]})", 0, 42, ","},
        {false, R"({"command":"total_work_frame","frame_names":[)" + many_names + "]}", 0, 100, "f,f"},
        {false, R"({"command":"total_work_frame","frame_names":"World"})", -2, 42, ","},
    };
    for (const auto& [tool, reply, result, len, first_names] : rows) {
        SCOPED_TRACE(reply);
        const std::string command = tool ? "get_total_tool_frame" : "get_total_work_frame";
        controller.reply(command, reply);
        qm_frame_name_t names[100] = {};
        int count = 42;
        const auto list = tool ? qm_get_total_tool_frame : qm_get_total_work_frame;
        EXPECT_EQ(fresh(ON_ARM(list(h, names, &count))), result);
        EXPECT_EQ(first_line(), R"({"command":")" + command + R"("})");
        EXPECT_EQ(count, len);
        EXPECT_EQ(std::string(names[0].name) + "," + names[1].name, first_names);
    }
}

// ---- given frames ----

TEST_F(Frames, GivenFramesAreDecodedLikeTheCurrentOnes) {
    controller.reply("get_tool_frame",
                     R"({"command":"given_tool_frame","tool_name":"tip","pose":[0,0,100000,0,0,1000],)"
                     R"("payload":2000,"position":[0,0,-30000]})");
    qm_frame_t frame{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_given_tool_frame(h, "tip", &frame))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_tool_frame","tool_name":"tip"})");
    EXPECT_STREQ(frame.frame_name, "tip");
    EXPECT_FLOAT_EQ(frame.pose.euler.rz, 1.0f);
    EXPECT_FLOAT_EQ(frame.payload, 2.0f);
    EXPECT_FLOAT_EQ(frame.z, -0.03f);
    controller.reply("get_work_frame",
                     R"({"command":"given_work_frame","frame_name":"table","pose":[1000000,0,0,0,0,0]})");
    qm_pose_t pose{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_given_work_frame(h, "table", &pose))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_work_frame","frame_name":"table"})");
    EXPECT_FLOAT_EQ(pose.position.x, 1.0f);
}

TEST_F(Frames, AGivenFrameIsJudgedUnderTheCommandsOwnKeyAndFailsLikeTheOthers) {
    const std::string unparsable = R"({"command":"given_tool_frame","tool_name":"tip"})";
    qm_frame_t frame{};
    expect_failures("get_tool_frame", ON_ARM(qm_get_given_tool_frame(h, "tip", &frame)),
                    {{judged("get_tool_frame", "get_state", false), 1},
                     {std::nullopt, -2},
                     {unparsable, static_cast<int>(unparsable.size())}});  // the reply length: intended
    controller.reply("get_work_frame", judged("get_work_frame", "get_state", true));
    qm_pose_t pose{};
    EXPECT_EQ(qm_get_given_work_frame(arm(), "ghost", &pose), 0);
}

// ---- tool envelope ----

TEST_F(Frames, AToolEnvelopeGoesOutOneObjectPerSphereInThousandthsAndIsReadBack) {
    qm_envelope_balls_list_t envelope{};
    std::strcpy(envelope.tool_name, "tip");
    envelope.size = 2;
    envelope.balls[0] = {"b1", 0.05f, 0.0f, 0.0f, 0.1f};
    envelope.balls[1] = {"b2", 0.0255f, -0.01f, 0.02f, 0.2f};
    envelope.balls[2] = {"unsent", 1.0f, 1.0f, 1.0f, 1.0f};
    controller.reply("set_tool_envelope", judged("set_tool_envelope", "set_state"));
    ASSERT_EQ(fresh(ON_ARM(qm_set_tool_envelope(h, envelope))), 0);
    EXPECT_EQ(first_line(), R"({"command":"set_tool_envelope","tool_name":"tip","list":[)"
                            R"({"name":"b1","radius":50,"x":0,"y":0,"z":100},)"
                            R"({"name":"b2","radius":25,"x":-10,"y":20,"z":200}]})");
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_tool_envelope(&stranger, envelope), -1);

    controller.reply(
        "get_tool_envelope",
        R"({"command":"get_tool_envelope","tool_name":"tip","list":[)"
        R"({"name":"b1","radius":50,"x":0,"y":-10,"z":100},{"name":"b2","radius":25,"x":1,"y":2,"z":3}]})");
    envelope = {};
    ASSERT_EQ(fresh(ON_ARM(qm_get_tool_envelope(h, "tip", &envelope))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_tool_envelope","tool_name":"tip"})");
    EXPECT_STREQ(envelope.tool_name, "tip");
    EXPECT_EQ(envelope.size, 2);
    EXPECT_STREQ(envelope.balls[0].name, "b1");
    EXPECT_FLOAT_EQ(envelope.balls[0].radius, 0.05f);
    EXPECT_FLOAT_EQ(envelope.balls[0].y, -0.01f);
    EXPECT_FLOAT_EQ(envelope.balls[1].z, 0.003f);
}

}  // namespace
}  // namespace catalogue_test

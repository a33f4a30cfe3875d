// Projects, stored programs, trajectory files and global waypoints against a fake controller:
// requests, replies read into the records, the upload's pieces and wrapped file, the wait for
// a program's end and the trajectory save's file.
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "catalogue_fixture.h"
#include "test_io.h"

namespace catalogue_test {
namespace {

namespace fs = std::filesystem;

// A fresh directory, removed with its content at scope end.
struct TempDir {
    fs::path path = fs::temp_directory_path() / ("qm_programs_" + std::to_string(::getpid()) + "_" +
                                                 std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    TempDir() { fs::create_directories(path); }
    ~TempDir() { fs::remove_all(path); }
    std::string file(const std::string& name, const std::string& content) const {
        std::ofstream(path / name, std::ios::binary) << content;
        return (path / name).string();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(path))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }
};

std::string local_now() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

qm_send_project_t project_for(const std::string& path, int project_type = 0) {
    qm_send_project_t project{};
    std::snprintf(project.project_path, sizeof project.project_path, "%s", path.c_str());
    project.project_path_len = static_cast<int>(path.size());
    project.plan_speed = 20;
    project.only_save = 1;
    project.save_id = 7;
    project.project_type = project_type;
    return project;
}

std::string verdict(bool ok, int err_line = 0) {
    return R"({"command":"download_project","project_state":)" + std::string(ok ? "true" : "false") +
           R"(,"err_line":)" + std::to_string(err_line) + "}";
}

// The announcement is accepted and the controller's verdict follows at once; the mailbox keeps it.
void accept_upload(qm_test::FakeController& controller, const std::string& verdict_line) {
    controller.reply("run_project", judged("run_project", "project_state") + "\r\n" + verdict_line);
}

class Programs : public CatalogueArm {
protected:
    // What the controller received, once it has at least `n` bytes (or after 2 s).
    std::string received_at_least(size_t n) const {
        const auto deadline = std::chrono::steady_clock::now() + 2s;
        while (controller.received().size() < n && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(5ms);
        return controller.received();
    }
};

TEST_F(Programs, SetCommandsSendTheirMembersAndJudgeTheirBoolean) {
    qm_send_project_t project = project_for("demo");
    expect_each_judged({
        {"plan speed", ON_ARM(qm_set_plan_speed(h, 50)), R"({"command":"plan_speed","speed":50})",
         "plan_state"},
        {"announcement of an upload", ON_ARM(qm_run_project(h, project, 250)),
         R"({"command":"run_project","project_name":"demo","file_size":250,"plan_speed":20,"step_flag":0,)"
         R"("only_save":1,"save_id":7})",
         "project_state"},
        {"program deleted by id", ON_ARM(qm_delete_program_trajectory(h, 4)),
         R"({"command":"delete_program_trajectory","id":4})", "delete_state"},
        {"program renamed", ON_ARM(qm_update_program_trajectory(h, 3, 40, "weld")),
         R"({"command":"update_program_trajectory","id":3,"plan_speed":40,"project_name":"weld"})",
         "update_state"},
        {"default program", ON_ARM(qm_set_default_run_program(h, 2)),
         R"({"command":"set_default_run_program","id":2})", "set_state"},
        {"run by id without waiting", ON_ARM(qm_set_program_id_run(h, 2, 30, 0)),
         R"({"command":"set_program_id_start","id":2,"speed":30})", "start_state"},
        {"waypoint deleted", ON_ARM(qm_delete_global_waypoint(h, "p1")),
         R"({"command":"delete_global_waypoint","point_name":"p1"})", "delete_state"},
        {"trajectory file replayed", ON_ARM(qm_set_run_trajectory(h, "t1")),
         R"({"command":"set_run_trajectory_file","name":"t1"})", "run_state"},
        {"trajectory file deleted", ON_ARM(qm_delete_trajectory_file(h, "t1")),
         R"({"command":"delete_trajectory_file","name":"t1"})", "delete_state"},
        {"trajectory file saved", ON_ARM(qm_save_trajectory_file(h, "t1")),
         R"({"command":"save_trajectory_file","name":"t1"})", "save_state"},
    });
}

TEST_F(Programs, WaypointsGoOutInWireUnitsStampedWithTheLocalTime) {
    qm_waypoint_t point{};
    std::snprintf(point.point_name, sizeof point.point_name, "home");
    std::snprintf(point.work_frame, sizeof point.work_frame, "World");
    std::snprintf(point.tool_frame, sizeof point.tool_frame, "Arm_Tip");
    std::snprintf(point.time, sizeof point.time, "ignored");
    const float joints[ARM_DOF] = {1.5f, -0.0005f, 90.0f, 0, 0, 10.25f, 77.0f};
    std::copy(joints, joints + ARM_DOF, point.joint);
    point.pose.position = {0.1234567f, 0, -0.5f};
    point.pose.euler = {3.142f, 0, -1.5f};
    const std::regex stamped(
        R"re(\{"command":"(add|update)_global_waypoint","point_name":"home",)re"
        R"re("joint":\[1500,0,90000,0,0,10250\],"pose":\[123456,0,-500000,3142,0,-1500\],)re"
        R"re("work_frame":"World","tool_frame":"Arm_Tip","time":"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"\})re");
    const std::tuple<Call, std::string, std::string> rows[] = {
        {ON_ARM(qm_add_global_waypoint(h, point)), "add_global_waypoint", "add_state"},
        {ON_ARM(qm_update_global_waypoint(h, point)), "update_global_waypoint", "update_state"},
    };
    for (const auto& [call, command, member] : rows) {
        controller.reply(command, judged(command, member));
        const std::string before = local_now();
        ASSERT_EQ(fresh(call), 0);
        std::smatch match;
        const std::string line = first_line();
        ASSERT_TRUE(std::regex_match(line, match, stamped)) << line;
        EXPECT_GE(match[2].str(), before);
        EXPECT_LE(match[2].str(), local_now());
    }
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    record([](qm_handle_t& r) { r.arm_dof = 0; });
    EXPECT_EQ(fresh(ON_ARM(qm_add_global_waypoint(h, point))), -1);
    EXPECT_TRUE(log.contains("[qm_add_global_waypoint] The robotic arm has been disconnected\n"));
    EXPECT_TRUE(controller.lines().empty());
}

// ---- queries ----

TEST_F(Programs, ProgramListAndRunStatesAreReadIntoTheirRecords) {
    controller.reply(
        "get_program_trajectory_list",
        R"({"command":"get_program_trajectory_list","page_num":1,"page_size":10,"total_size":12,)"
        R"("vague_search":"we","list":[{"id":3,"trajectory_name":"weld","size":120,"speed":40},)"
        R"({"id":5,"trajectory_name":"wedge","size":8,"speed":100}]})");
    qm_program_trajectorys_t programs{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_program_trajectory_list(h, 1, 10, "we", &programs))), 0);
    EXPECT_EQ(first_line(),
              R"({"command":"get_program_trajectory_list","page_num":1,"page_size":10,"vague_search":"we"})");
    const qm_trajectory_data_t& second = programs.trajectory_list[1];
    EXPECT_EQ(std::vector<int>({programs.list_size, second.id, second.size, second.speed}),
              (std::vector<int>{12, 5, 8, 100}));
    EXPECT_STREQ(second.trajectory_name, "wedge");

    controller.reply("get_program_run_state",
                     R"({"command":"get_program_run_state","run_state":1,"id":3,"edit_id":4,"plan_num":5,)"
                     R"("step_mode":0,"plan_speed":50,"loop_num":[2,3],"loop_cont":[1,0]})");
    qm_program_run_state_t run{};
    ASSERT_EQ(qm_get_program_run_state(arm(), &run), 0);
    EXPECT_EQ(
        std::vector<int>({run.run_state, run.id, run.edit_id, run.plan_num, run.step_mode, run.plan_speed}),
        (std::vector<int>{1, 3, 4, 5, 0, 50}));
    EXPECT_EQ(std::vector<int>({run.total_loop, run.loop_num[1], run.loop_cont[0]}),
              (std::vector<int>{2, 3, 1}))
        << "the length of loop_num counts the loops";

    controller.reply(
        "get_flowchart_program_run_state",
        R"({"command":"get_flowchart_program_run_state","run_state":0,"id":9,"name":"palletise",)"
        R"("plan_speed":80,"step_mode":1,"modal_id":"m-17"})");
    qm_flowchart_run_state_t flow{};
    ASSERT_EQ(qm_get_flowchart_program_run_state(arm(), &flow), 0);
    EXPECT_EQ(std::vector<int>({flow.run_state, flow.id, flow.plan_speed, flow.step_mode}),
              (std::vector<int>{0, 9, 80, 1}));
    EXPECT_EQ(std::string(flow.name) + "/" + flow.modal_id, "palletise/m-17");

    controller.reply("get_default_run_program", R"({"command":"get_default_run_program","id":6})");
    int id = 0;
    ASSERT_EQ(qm_get_default_run_program(arm(), &id), 0);
    EXPECT_EQ(id, 6);
}

TEST_F(Programs, WaypointsAreReadIntoTheirRecords) {
    const std::string waypoint =
        R"({"point_name":"home","work_frame":"World","tool_frame":"Arm_Tip","time":"2024-05-06 10:00:00",)"
        R"("joint":[1500,-2000,90000,0,0,10250],"pose":[123456,0,-500000,3142,0,-1500]})";
    controller.reply("given_global_waypoint", R"({"command":"given_global_waypoint",)" + waypoint.substr(1));
    qm_waypoint_t point{};
    point.joint[6] = -1;
    ASSERT_EQ(fresh(ON_ARM(qm_get_given_global_waypoint(h, "home", &point))), 0);
    EXPECT_EQ(first_line(), R"({"command":"given_global_waypoint","point_name":"home"})");
    EXPECT_STREQ(point.time, "2024-05-06 10:00:00");
    EXPECT_STREQ(point.tool_frame, "Arm_Tip");
    EXPECT_FLOAT_EQ(point.joint[5], 10.25f);
    EXPECT_EQ(point.joint[6], 0.0f) << "a six-joint waypoint";
    EXPECT_FLOAT_EQ(point.pose.position.x, 0.123456f);
    EXPECT_FLOAT_EQ(point.pose.euler.rz, -1.5f);

    controller.reply("get_global_waypoints_list",
                     R"({"command":"get_global_waypoints_list","total_size":7,"list":[)" + waypoint + "," +
                         waypoint + "]}");
    qm_waypoint_list_t points{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_global_waypoints_list(h, 2, 5, "ho", &points))), 0);
    EXPECT_EQ(first_line(),
              R"({"command":"get_global_waypoints_list","page_num":2,"page_size":5,"vague_search":"ho"})");
    EXPECT_EQ(std::vector<int>({points.page_num, points.page_size, points.total_size, points.list_len}),
              (std::vector<int>{2, 5, 7, 2}))
        << "the page asked for, the reply's total and entries";
    EXPECT_STREQ(points.vague_search, "ho");
    EXPECT_STREQ(points.points_list[1].work_frame, "World");
}

TEST_F(Programs, ControllerTextsAndListsAreCutToTheirRecords) {
    std::string list;
    for (int i = 0; i < 130; ++i)
        list += std::string(i ? "," : "") + R"({"name":")" + (i ? "n" : "a_name_far_too_long_for_twenty") +
                R"(","create_time":"2024-05-06","point_num":)" + std::to_string(i) + "}";
    controller.reply("get_trajectory_file_list",
                     R"({"command":"get_trajectory_file_list","page_num":1,"page_size":130,"total_size":130,)"
                     R"("vague_search":"","list":[)" +
                         list + "]}");
    auto files = std::make_unique<qm_trajectory_list_t>();
    ASSERT_EQ(qm_get_trajectory_file_list(arm(), 1, 130, "", files.get()), 0);
    EXPECT_EQ(std::vector<int>({files->list_len, files->total_size, files->tra_list[99].point_num}),
              (std::vector<int>{100, 130, 99}));
    EXPECT_STREQ(files->tra_list[0].name, "a_name_far_too_long");
    EXPECT_STREQ(files->tra_list[1].create_time, "2024-05-06");

    std::string loops;
    for (int i = 0; i < 120; ++i) loops += std::string(i ? "," : "") + std::to_string(i);
    controller.reply("get_program_run_state",
                     R"({"command":"get_program_run_state","run_state":1,"id":3,"edit_id":4,"plan_num":5,)"
                     R"("step_mode":0,"plan_speed":50,"loop_num":[)" +
                         loops + R"(],"loop_cont":[)" + loops + "]}");
    qm_program_run_state_t run{};
    ASSERT_EQ(qm_get_program_run_state(arm(), &run), 0);
    EXPECT_EQ(run.total_loop, 100);
    EXPECT_EQ(run.loop_cont[99], 99);
}

TEST_F(Programs, RepliesLackingTheirMembersAreMalformed) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    qm_program_trajectorys_t programs{};
    programs.list_size = -7;
    expect_failures(
        "get_program_trajectory_list", ON_ARM(qm_get_program_trajectory_list(h, 1, 10, "", &programs)),
        {{std::nullopt, -2},
         {R"({"command":"get_program_trajectory_list","page_num":1,"page_size":10,"total_size":1,)"
          R"("vague_search":"","list":[{"id":3,"size":1,"speed":1}]})",
          -3}});
    EXPECT_EQ(programs.list_size, -7) << "nothing is written from a malformed reply";
    EXPECT_TRUE(log.contains("[qm_get_program_trajectory_list] get program trajectory list parser error!\n"));

    qm_program_run_state_t run{};
    controller.reply("get_program_run_state", R"({"command":"get_program_run_state","run_state":1})");
    EXPECT_EQ(qm_get_program_run_state(arm(), &run), -3);
    EXPECT_TRUE(log.contains("[qm_get_program_run_state] get program run state parser error!\n"));
    qm_flowchart_run_state_t flow{};
    controller.reply("get_flowchart_program_run_state",
                     R"({"command":"get_flowchart_program_run_state","id":"9"})");
    EXPECT_EQ(qm_get_flowchart_program_run_state(arm(), &flow), -3);
    EXPECT_TRUE(log.contains("[qm_get_flowchart_program_run_state] get flowchart run state parser error!\n"));
    qm_waypoint_t point{};
    controller.reply("given_global_waypoint",
                     R"({"command":"given_global_waypoint","point_name":"p","pose":[1,2]})");
    EXPECT_EQ(qm_get_given_global_waypoint(arm(), "p", &point), -3);
    EXPECT_TRUE(log.contains("[qm_get_given_global_waypoint] work_frame parsing error\n"));
}

// ---- project upload ----

TEST_F(Programs, AnUploadAnnouncesTheStemThenSendsHundredBytePiecesEachUpToItsFirstZeroByte) {
    TempDir dir;
    // A zero byte at 150 ends the second piece early: only the pieces' own texts arrive.
    std::string content(250, 'a');
    for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('a' + i / 100);
    content[150] = '\0';
    const std::string path = dir.file("cell.v2.prj", content);
    accept_upload(controller, verdict(true));
    int err_line = 0;
    ASSERT_EQ(fresh(ON_ARM(qm_send_project(h, project_for(path), &err_line))), 0);
    EXPECT_EQ(err_line, -1);
    const std::string announcement =
        R"({"command":"run_project","project_name":"cell.v2","file_size":250,"plan_speed":20,"step_flag":0,)"
        R"("only_save":1,"save_id":7})";
    const std::string expected = announcement + "\r\n" + content.substr(0, 150) + content.substr(200);
    EXPECT_EQ(received_at_least(expected.size()), expected);
    EXPECT_EQ(dir.names(), std::vector<std::string>{"cell.v2.prj"}) << "a plain upload writes nothing";
}

TEST_F(Programs, AWrappedUploadWritesTheFlowchartFileBesideTheSourceAndSendsIt) {
    TempDir dir;
    std::string source;
    for (int i = 1; i <= 12; ++i) source += "{\"line\":" + std::to_string(i) + "}\r\n";
    const std::string path = dir.file("weld.txt", source);
    accept_upload(controller, verdict(true));
    int err_line = 0;
    ASSERT_EQ(fresh(ON_ARM(qm_send_project(h, project_for(path, 1), &err_line))), 0);

    const std::vector<std::string> names = dir.names();
    ASSERT_EQ(names.size(), 2u);
    EXPECT_TRUE(std::regex_match(names[1], std::regex(R"(weld\d\d_\d\d_\d\d\.txt)"))) << names[1];
    const std::string wrapped = qm_test::read_file((dir.path / names[1]).string());
    EXPECT_EQ(wrapped,
              "{\"file\":6}\r\n{\"name\":\"Folder\",\"num\":1,\"type\":12,\"enabled\":true,\"parent_number\":"
              "0}\r\n" +
                  source);
    EXPECT_EQ(controller.lines().front(), R"({"command":"run_project","project_name":"weld","file_size":)" +
                                              std::to_string(wrapped.size()) +
                                              R"(,"plan_speed":20,"step_flag":0,"only_save":1,"save_id":7})");
    const size_t announced = controller.lines().front().size() + 2;
    EXPECT_EQ(received_at_least(announced + wrapped.size()).substr(announced), wrapped);
}

TEST_F(Programs, UploadRefusalsAndFailures) {
    TempDir dir;
    const std::string path = dir.file("p.txt", "{\"a\":1}\r\n");
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    int err_line = 0;
    // Nothing goes out for a file that cannot be read or named, nor to a fourth-generation controller.
    const std::tuple<qm_send_project_t, int, std::string> refused[] = {
        {project_for((dir.path / "missing.txt").string()), -5, "File open failed\n"},
        {project_for(dir.path.string()), -5, "Failed to get file size\n"},
        {project_for("p.txt", 1), -4, "File name check error!\n"},
    };
    for (const auto& [refused_project, expected, message] : refused) {
        SCOPED_TRACE(message);
        const qm_send_project_t project = refused_project;  // a lambda may not capture a binding
        EXPECT_EQ(fresh(ON_ARM(qm_send_project(h, project, &err_line))), expected);
        EXPECT_TRUE(log.contains(message));
    }
    record([](qm_handle_t& r) { r.robot_controller_version = 4; });
    EXPECT_EQ(qm_send_project(arm(), project_for(path), &err_line), -6);
    record([](qm_handle_t& r) { r.robot_controller_version = 3; });
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());

    controller.reply("run_project", judged("run_project", "project_state", false));
    EXPECT_EQ(fresh(ON_ARM(qm_send_project(h, project_for(path), &err_line))), 1);
    EXPECT_TRUE(log.contains("[qm_run_project] failed\n"));
    EXPECT_EQ(controller.lines().size(), 1u) << "no pieces after a refused announcement";

    accept_upload(controller, verdict(false, 17));
    EXPECT_EQ(qm_send_project(arm(), project_for(path), &err_line), 1);
    EXPECT_EQ(err_line, 17);
    EXPECT_EQ(dir.names(), std::vector<std::string>{"p.txt"});
}

TEST_F(Programs, AnUnreadableSourceOfAWrappedUploadEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string missing = "/qm_no_such_directory/gone.txt";
    EXPECT_EXIT(
        {
            int err_line = 0;
            qm_send_project(arm(), project_for(missing, 1), &err_line);
        },
        ::testing::ExitedWithCode(1), "打开文件失败");
}

TEST_F(Programs, TextUploadsGoInTenBytePiecesAndWaitForTheVerdict) {
    const std::string text = std::string("abcde\0ghij", 10) + "klmnopqrst" + "uv";
    controller.clear_received();
    controller.push_line(verdict(true));
    int err_line = 0;
    ASSERT_EQ(qm_send_project_lock(arm(), text.data(), static_cast<int>(text.size()), &err_line), 0);
    EXPECT_EQ(err_line, -1);
    EXPECT_EQ(received_at_least(17), "abcdeklmnopqrstuv");
    controller.push_line(verdict(false, 3));
    EXPECT_EQ(qm_send_project_lock(arm(), "x", 1, &err_line), 1);
    EXPECT_EQ(err_line, 3);
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_send_project_lock(&stranger, "x", 1, &err_line), -1);
}

// ---- running a program by id ----

std::string finished(int id) {
    return R"({"state":"program_run_finish","finish_id":)" + std::to_string(id) + "}";
}
std::string flowchart_state(int run_state) {
    return R"({"command":"get_flowchart_program_run_state","run_state":)" + std::to_string(run_state) +
           R"(,"id":2,"name":"n","plan_speed":1,"step_mode":0,"modal_id":"m"})";
}

struct RunRow {
    const char* behaviour;
    std::string states;              // answers to the flowchart polls in turn, the last repeats; "-" silent
    std::string program_state = "";  // answer to the program run state poll ("" silent)
    std::string after_last_poll;     // pushed with the answer to the last poll
    int expected;
    int polls;
};

TEST_F(Programs, RunningByIdWaitsForTheRunStateThenForThisProgramsEnd) {
    const RunRow rows[] = {
        {"runs, stops, ends after another program's end", "1 0", "", finished(8) + "\r\n" + finished(2), 0,
         2},
        {"never shows running: nine idle polls, then the end", "0", "", finished(2), 0, 9},
        {"no end report", "0", "", "", -4, 9},
        {"only another program's end", "1 0", "", finished(8), -4, 2},
        {"a failed flowchart poll turns to the program run state", "-",
         R"({"command":"get_program_run_state","run_state":0,"id":2,"edit_id":0,"plan_num":0,"step_mode":0,)"
         R"("plan_speed":0,"loop_num":[],"loop_cont":[]})",
         finished(2), 0, 1},
    };
    for (const RunRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        std::vector<std::string> states;
        std::istringstream in(row.states);
        for (std::string s; in >> s;) states.push_back(s);
        std::atomic<int> polls{0};
        const auto answer = [&](const std::string& state, bool last) -> std::optional<std::string> {
            if (state == "-") return std::nullopt;
            return state + "\r\n" + (last ? row.after_last_poll + "\r\n" : "");
        };
        controller.on("get_flowchart_program_run_state", [&](const std::string&) {
            const int n = ++polls;
            const std::string& s = states[std::min<size_t>(n - 1, states.size() - 1)];
            return answer(s == "-" ? s : flowchart_state(std::stoi(s)), n == row.polls);
        });
        if (row.program_state.empty())
            controller.forget("get_program_run_state");
        else
            controller.on("get_program_run_state",
                          [&](const std::string&) { return answer(row.program_state, true); });
        controller.reply("set_program_id_start", judged("set_program_id_start", "start_state"));
        EXPECT_EQ(fresh(ON_ARM(qm_set_program_id_run(h, 2, 30, 1))), row.expected);
        EXPECT_EQ(polls.load(), row.polls);
        EXPECT_EQ(first_line(), R"({"command":"set_program_id_start","id":2,"speed":30})");
    }
}

TEST_F(Programs, RepeatedlyFailedRunStatePollsReturnThePollsError) {
    controller.reply("set_program_id_start", judged("set_program_id_start", "start_state"));
    controller.reply("get_flowchart_program_run_state", R"({"command":"get_flowchart_program_run_state"})");
    controller.reply("get_program_run_state", R"({"command":"get_program_run_state"})");
    EXPECT_EQ(fresh(ON_ARM(qm_set_program_id_run(h, 2, 30, 1))), -3);
    EXPECT_EQ(controller.lines().size(), 1u + 6u) << "the start and six failed polls";
    controller.reply("set_program_id_start", judged("set_program_id_start", "start_state", false));
    EXPECT_EQ(fresh(ON_ARM(qm_set_program_id_run(h, 2, 30, 1))), 1);
    EXPECT_EQ(controller.lines().size(), 1u) << "a refused start is not waited for";
}

class SingleThreadPrograms : public CatalogueArm {
protected:
    SingleThreadPrograms() : CatalogueArm(QM_SINGLE_MODE_E) {}
};

// `block` seconds for the end report, which must name this program; the run state is not polled.
TEST_F(SingleThreadPrograms, RunningByIdWaitsBlockSecondsForThisProgramsEnd) {
    const std::pair<std::optional<int>, int> rows[] = {{2, 0}, {8, -4}, {std::nullopt, -4}};
    for (const auto& [finish_id, expected] : rows) {
        controller.reply("set_program_id_start", judged("set_program_id_start", "start_state"));
        std::optional<RepeatedPush> events;
        if (finish_id) events.emplace(controller, finished(*finish_id));
        EXPECT_EQ(fresh(ON_ARM(qm_set_program_id_run(h, 2, 30, 1))), expected);
        EXPECT_EQ(controller.lines().size(), 1u);
    }
}

// ---- saving a drag-taught trajectory ----

std::string point_line(int i) {
    return R"({"point":[)" + std::to_string(i) + R"(,0,0,0,0,0],"direction":"x"})";
}
std::string save_reply(int total) {
    return R"({"command":"save_trajectory","save_state":true,"total_num":)" + std::to_string(total) + "}";
}

TEST_F(Programs, ASaveWritesEveryPointMessageAsOneCrLfLine) {
    TempDir dir;
    const std::string path = (dir.path / "drag.traj").string();
    controller.reply("save_trajectory", save_reply(3) + "\r\n" + point_line(1) + "\r\n" + point_line(2) +
                                            "\r\n" + point_line(3));
    int num = 0;
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(fresh(ON_ARM(qm_save_trajectory(h, path.c_str(), &num))), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1500ms) << "ends with the last point";
    EXPECT_EQ(num, 3);
    EXPECT_EQ(only_line(), R"({"command":"save_trajectory","trajectory_name":"drag"})");
    EXPECT_EQ(qm_test::read_file(path),
              point_line(1) + "\r\n" + point_line(2) + "\r\n" + point_line(3) + "\r\n");
    controller.push_line(point_line(4));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(qm_test::read_file(path).size(), 3 * (point_line(1).size() + 2)) << "closed after the save";
}

TEST_F(Programs, SaveFailures) {
    TempDir dir;
    const std::string path = (dir.path / "drag.traj").string();
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    int num = -1;
    EXPECT_EQ(fresh(ON_ARM(qm_save_trajectory(h, (dir.path / "no" / "such.traj").c_str(), &num))), -4);
    EXPECT_TRUE(log.contains("[qm_save_trajectory] File open error!"));
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());

    const std::tuple<std::string, int, std::string> rows[] = {
        {R"({"command":"save_trajectory","save_state":false})", 1,
         "[qm_save_trajectory] Save state: false\n"},
        {R"({"command":"save_trajectory"})", -3, "[qm_save_trajectory] Save trajectory err\n"},
        {R"({"command":"save_trajectory","save_state":true,"total_num":-1})", -3,
         "[qm_save_trajectory] Trajectory total num parse err\n"},
        {save_reply(0), -6, ""},  // no point within 2 s
        {save_reply(2) + "\r\n" + R"({"point":7})", -6, "Error: 'point' is not an array. {\"point\":7}\n"},
        {save_reply(5) + "\r\n" + point_line(1) + "\r\n" + point_line(2), -6, ""},  // the rest never comes
    };
    for (const auto& [reply, expected, message] : rows) {
        SCOPED_TRACE(reply);
        controller.reply("save_trajectory", reply);
        EXPECT_EQ(qm_save_trajectory(arm(), path.c_str(), &num), expected);
        if (!message.empty()) {
            EXPECT_TRUE(log.contains(message));
        }
    }
    EXPECT_EQ(num, 5);
    EXPECT_EQ(qm_test::read_file(path), point_line(1) + "\r\n" + point_line(2) + "\r\n");
}

TEST_F(SingleThreadPrograms, ASaveReadsThePointsItselfUntilTheStreamFallsQuiet) {
    TempDir dir;
    const std::string path = (dir.path / "drag.traj").string();
    controller.reply("save_trajectory", save_reply(2));
    std::thread stream([&] {
        if (!controller.wait_command("save_trajectory")) return;
        std::this_thread::sleep_for(100ms);  // apart from the reply, whose read drops what follows it
        controller.push(point_line(1) + "\r\n" + point_line(2) + "\r\n");
    });
    int num = 0;
    EXPECT_EQ(qm_save_trajectory(arm(), path.c_str(), &num), 0);
    stream.join();
    EXPECT_EQ(num, 2);
    EXPECT_EQ(qm_test::read_file(path), point_line(1) + "\r\n" + point_line(2) + "\r\n");

    controller.reply("save_trajectory", save_reply(2));
    EXPECT_EQ(qm_save_trajectory(arm(), path.c_str(), &num), -6) << "no point at all";
}

}  // namespace
}  // namespace catalogue_test

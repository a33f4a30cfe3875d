// Programs, trajectory files and waypoints against the simulator: an uploaded project is
// listed and runs to its end event, a saved drag-teach trajectory holds the streamed points,
// stored files and waypoints are kept, listed and replaced.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "sim_session.h"
#include "test_io.h"

namespace e2e {
namespace {

// A file in /tmp that goes with the test.
class TempFile {
public:
    explicit TempFile(const std::string& stem, const std::string& content = {})
        : path_("/tmp/" + stem + "_" + std::to_string(::getpid()) + ".txt") {
        std::ofstream(path_) << content;
    }
    ~TempFile() { std::remove(path_.c_str()); }
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

qm_send_project_t project_of(const std::string& path, int save_id) {
    qm_send_project_t project{};
    std::strcpy(project.project_path, path.c_str());
    project.project_path_len = static_cast<int>(path.size());
    project.plan_speed = 100;
    project.only_save = 1;
    project.save_id = save_id;
    return project;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

class Programs : public BothModes {};

TEST_P(Programs, AnUploadedProjectIsListedAndRunsToItsEndEvent) {
    const TempFile project("qm_pick",
                           "{\"file\":6}\r\n"
                           "{\"command\":\"movej\",\"joint\":[0,-20000,-70000,0,-90000,0],\"v\":100,\"r\":0,\"trajectory_connect\":0}\r\n"
                           "{\"command\":\"movej\",\"joint\":[30000,-20000,-70000,0,-90000,0],\"v\":100,\"r\":0,\"trajectory_connect\":0}\r\n");
    int err_line = 0;
    ASSERT_EQ(qm_send_project(arm(), project_of(project.path(), 3), &err_line), 0);
    EXPECT_EQ(err_line, -1);
    qm_program_trajectorys_t programs{};
    ASSERT_EQ(qm_get_program_trajectory_list(arm(), 1, 10, "", &programs), 0);
    ASSERT_EQ(programs.list_size, 1);
    EXPECT_EQ(programs.trajectory_list[0].id, 3);
    EXPECT_STREQ(programs.trajectory_list[0].trajectory_name, ("qm_pick_" + std::to_string(::getpid())).c_str());

    clear_deliveries();
    ASSERT_EQ(qm_set_program_id_run(arm(), 3, 100, 1), 0);
    EXPECT_NEAR(joints_of(arm())[0], 30.0f, 0.002f);
    ASSERT_TRUE(wait_for([](const Deliveries& d) {
        return !d.events.empty() && d.events.back().event_type == QM_PROGRAM_RUN_FINISH_E &&
               d.events.back().program_id == 3;
    }));
    qm_program_run_state_t state{};
    ASSERT_EQ(qm_get_program_run_state(arm(), &state), 0);
    EXPECT_EQ(state.run_state, 0);

    const TempFile broken("qm_broken", "{\"file\":6}\r\nmovej to nowhere\r\n");
    EXPECT_EQ(qm_send_project(arm(), project_of(broken.path(), 4), &err_line), 1);
    EXPECT_EQ(err_line, 2);

    ASSERT_EQ(qm_update_program_trajectory(arm(), 3, 40, "pick"), 0);
    ASSERT_EQ(qm_set_default_run_program(arm(), 3), 0);
    int id = 0;
    ASSERT_EQ(qm_get_default_run_program(arm(), &id), 0);
    EXPECT_EQ(id, 3);
    ASSERT_EQ(qm_get_program_trajectory_list(arm(), 1, 10, "pi", &programs), 0);
    EXPECT_EQ(programs.trajectory_list[0].speed, 40);
    ASSERT_EQ(qm_delete_program_trajectory(arm(), 3), 0);
    EXPECT_EQ(qm_set_program_id_run(arm(), 3, 100, 0), 1) << "gone";
}

TEST_P(Programs, ASavedTrajectoryHoldsTheStreamedPointsAndReplaysFromAFile) {
    ASSERT_EQ(qm_start_drag_teach(arm(), 1), 0);
    float second[ARM_DOF] = {20, -30, -60, 0, -90, 10};
    for (float* pose : {const_cast<float*>(kReady), second}) {
        std::this_thread::sleep_for(10ms);
        ASSERT_EQ(qm_movej_canfd(arm(), qm_movej_canfd_mode_t{pose, 0.0f, false, 0, 0}), 0);
    }
    ASSERT_EQ(qm_stop_drag_teach(arm()), 0);

    const TempFile saved("qm_taught");
    int num = 0;
    ASSERT_EQ(qm_save_trajectory(arm(), saved.path().c_str(), &num), 0);
    const std::string text = qm_test::read_file(saved.path());
    const std::vector<std::string> lines = lines_of(text);
    ASSERT_GT(num, 1);
    ASSERT_EQ(static_cast<int>(lines.size()), num);
    EXPECT_EQ(lines.front(), "{\"point\":[0,0,0,0,0,0]}\r");
    EXPECT_EQ(lines.back(), "{\"point\":[20000,-30000,-60000,0,-90000,10000]}\r");

    ASSERT_EQ(qm_save_trajectory_file(arm(), "taught"), 0);
    qm_trajectory_list_t files{};
    ASSERT_EQ(qm_get_trajectory_file_list(arm(), 1, 10, "", &files), 0);
    ASSERT_EQ(files.list_len, 1);
    EXPECT_STREQ(files.tra_list[0].name, "taught");
    EXPECT_EQ(files.tra_list[0].point_num, num);
    ASSERT_EQ(qm_set_run_trajectory(arm(), "taught"), 0);
    EXPECT_TRUE(session().sim().view(0).moving) << "back to the first point, then the replay";
    for (int i = 0; i < 100 && session().sim().view(0).moving; ++i) std::this_thread::sleep_for(10ms);
    expect_joints_near(joints_of(arm()).data(), {second, second + 6});
    ASSERT_EQ(qm_delete_trajectory_file(arm(), "taught"), 0);
    EXPECT_EQ(qm_set_run_trajectory(arm(), "taught"), 1);
}

INSTANTIATE_TEST_SUITE_P(Modes, Programs, ::testing::Values(QM_DUAL_MODE_E, QM_TRIPLE_MODE_E), mode_name);

TEST(Waypoints, AreStoredListedReplacedAndDeleted) {
    Session session(QM_DUAL_MODE_E, fast_options());
    qm_waypoint_t point{};
    std::strcpy(point.point_name, "above_bin");
    std::copy(kReady, kReady + ARM_DOF, point.joint);
    point.pose = pose_of(0.3f, 0.1f, 0.2f, 3.1f, 0, 0);
    std::strcpy(point.work_frame, "World");
    std::strcpy(point.tool_frame, "Arm_Tip");
    ASSERT_EQ(qm_add_global_waypoint(session.arm(), point), 0);
    EXPECT_EQ(qm_add_global_waypoint(session.arm(), point), 1) << "the name is taken";
    point.pose.position.z = 0.25f;
    ASSERT_EQ(qm_update_global_waypoint(session.arm(), point), 0);

    qm_waypoint_t given{};
    ASSERT_EQ(qm_get_given_global_waypoint(session.arm(), "above_bin", &given), 0);
    EXPECT_NEAR(given.pose.position.z, 0.25f, 1e-6f);
    EXPECT_NEAR(given.joint[2], -70.0f, 1e-3f);
    EXPECT_EQ(std::strlen(given.time), 19u) << "stamped by the library";
    qm_waypoint_list_t list{};
    ASSERT_EQ(qm_get_global_waypoints_list(session.arm(), 1, 10, "bin", &list), 0);
    EXPECT_EQ(list.total_size, 1);
    EXPECT_STREQ(list.points_list[0].tool_frame, "Arm_Tip");
    ASSERT_EQ(qm_delete_global_waypoint(session.arm(), "above_bin"), 0);
    EXPECT_EQ(qm_delete_global_waypoint(session.arm(), "above_bin"), 1);
}

}  // namespace
}  // namespace e2e

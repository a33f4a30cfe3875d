// Recording a session with a controller through the proxy and replaying it: the library gets
// the same answers from the replay as from the controller, so a session becomes a test.
#include <unistd.h>

#include <cstdio>
#include <sstream>

#include "recorder.h"
#include "replayer.h"
#include "sim_session.h"
#include "test_io.h"

namespace e2e {
namespace {

// A session with queries, settings and blocking moves (the arc one sent formatted, over
// several lines), written down as text.
std::string run_session(int port) {
    std::ostringstream out;
    qm_init(QM_DUAL_MODE_E);
    qm_robot_handle* arm = qm_create_robot_arm("127.0.0.1", port);
    out << "id " << (arm ? arm->id : -1) << '\n';
    float joints[ARM_DOF] = {};
    out << "movej " << qm_movej(arm, kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK) << '\n';
    qm_pose_t via = pose_now(arm), to = via;
    via.position.x += 0.05f;
    via.position.y += 0.05f;
    to.position.x += 0.1f;
    out << "movec " << qm_movec(arm, via, to, 50, 0, 0, 0, QM_MOVE_MULTI_BLOCK) << '\n';
    out << "joints " << qm_get_joint_degree(arm, joints);
    for (int j = 0; j < 6; ++j) out << ' ' << joints[j];
    qm_current_arm_state_t state{};
    out << "\nstate " << qm_get_current_arm_state(arm, &state) << ' ' << state.pose.position.z << '\n';
    int outputs[4] = {};
    out << "DO " << qm_set_DO_state(arm, 1, 1) << ' ' << qm_get_IO_output(arm, outputs) << ' ' << outputs[0] << '\n';
    int written[2] = {5, 6}, read[2] = {};
    out << "registers " << qm_set_modbus_mode(arm, 0, 115200, 100) << ' '
        << qm_write_registers(arm, {0, 3, 1, 2}, written) << ' '
        << qm_read_multiple_holding_registers(arm, {0, 3, 1, 2}, read) << ' ' << read[0] << read[1] << '\n';
    qm_delete_robot_arm(arm);
    qm_destory();
    return out.str();
}

TEST(RecordReplay, AReplayedSessionGetsTheRecordedAnswers) {
    char path[] = "/tmp/qm_recording_XXXXXX";
    const int fd = ::mkstemp(path);
    ASSERT_GE(fd, 0);
    ::close(fd);
    const sim::NoteSink quiet = [](const std::string&) {};

    std::string live;
    {
        sim::SimulatorThread controller(fast_options(), quiet);
        sim::Options options;
        options.port = 0;
        options.record_path = path;
        options.upstream = "127.0.0.1:" + std::to_string(controller->port());
        sim::ServerThread<sim::Recorder> recorder(options, quiet);
        live = run_session(recorder->port());
    }
    const std::string recording = qm_test::read_file(path);
    EXPECT_NE(recording.find("> {\"command\":\"movej\""), std::string::npos);
    EXPECT_NE(recording.find("< {\"state\":\"current_trajectory_state\""), std::string::npos);

    std::string replayed;
    {
        sim::Options options;
        options.port = 0;
        options.replay_path = path;
        options.speed_factor = 4.0;  // its pauses a quarter as long
        sim::ServerThread<sim::Replayer> replayer(options, quiet);
        replayed = run_session(replayer->port());
    }
    EXPECT_NE(live.find("movej 0\nmovec 0\n"), std::string::npos) << live;
    EXPECT_EQ(replayed, live);
    std::remove(path);
}

}  // namespace
}  // namespace e2e
